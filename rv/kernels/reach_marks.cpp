// A component stands after all that it leads to, so what it reaches is known when it has been gathered from
// those in the order of the components.

#include "rv/kernels/reach_marks.h"

#include <algorithm>
#include <utility>

#include "rv/kernels/strong_components.h"

namespace rv {

ReachMarks::ReachMarks(const SearchSpace& space, Pulse& pulse)
    : m_components(strongComponents(space, pulse)) {
    const NodeGroups& groups = m_components.groups;
    m_words.resize(groups.size(), 0);
    m_ends.reserve(groups.size());
    Buffer<Index> lastSources(groups.size(), Index{kNoIndex});  // by component, the last that leads to it
    for (Index group = 0; group < groups.size(); ++group) {
        for (const Index node : groups[group]) {
            pulse.beat(1 + std::int64_t{space.arcs.degree(node)});
            for (const Index target : space.arcs.targetsOf(node)) {
                const auto other = static_cast<Index>(m_components.numbers[target] - 1);
                if (std::exchange(lastSources[other], group) != group) m_targets.push_back(other);
            }
        }
        m_ends.push_back(static_cast<Index>(m_targets.size()));
    }
}

void ReachMarks::ask(std::span<const Index> targets, Pulse& pulse) {
    std::fill(m_words.begin(), m_words.end(), Word{0});
    for (std::size_t i = 0; i < targets.size(); ++i) {
        const Index node = targets[i];
        const int number = node < m_components.numbers.size() ? m_components.numbers[node] : 0;
        if (number != 0) m_words[static_cast<std::size_t>(number - 1)] |= Word{1} << i;
    }
    std::size_t target = 0;
    for (std::size_t group = 0; group < m_ends.size(); ++group) {
        pulse.beat(1 + std::int64_t{m_ends[group]} - static_cast<std::int64_t>(target));
        Word word = m_words[group];
        for (; target < m_ends[group]; ++target) word |= m_words[m_targets[target]];
        m_words[group] = word;
    }
}

}  // namespace rv
