// Which of some nodes every node reaches: a bit for each of up to 64 at a time. Internal to the library, not
// installed.
//
// The strong components of the space are found once. All nodes of one reach the same, so each question is one
// pass over what leads from component to component. A node reaches itself.
//
// O(n + m) time for the components and at most as much for each question; 8 bytes for every number that a
// node may have, 20 for a component and 4 for each pair of components of which one leads to the other.
#pragma once

#include <cstdint>
#include <span>

#include "rv/kernels/node_groups.h"
#include "rv/kernels/pulse.h"

namespace rv {

class ReachMarks {
public:
    using Word = std::uint64_t;
    static constexpr std::size_t kMost = 64;

    ReachMarks(const SearchSpace& space, Pulse& pulse);

    // Asks for up to 64 nodes. A number that no node has, or kNoIndex, is reached by no node; one that is
    // given twice has two bits.
    void ask(std::span<const Index> targets, Pulse& pulse);
    // Calls f(node, bits) with the nodes that reach some of them. Bit i stands for the i-th.
    template <class F>
    void forEachNode(F f) const {
        for (Index group = 0; group < m_components.groups.size(); ++group) {
            if (m_words[group] == 0) continue;
            for (const Index node : m_components.groups[group]) f(node, m_words[group]);
        }
    }

private:
    Components m_components;
    Buffer<Index> m_targets;  // components to which the first one leads, the second one, ...
    Buffer<Index> m_ends;     // of those of each, in m_targets
    Buffer<Word> m_words;     // by component, the answer
};

}  // namespace rv
