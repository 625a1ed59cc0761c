// Components, blocks, reach and topological orders in arrays, found again by their definitions; the orders in
// which they stand follow from the numbers of a depth-first search.

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <vector>

#include "rv/kernels/blocks.h"
#include "rv/kernels/connected_components.h"
#include "rv/kernels/depth_first.h"
#include "rv/kernels/reach_marks.h"
#include "rv/kernels/strong_components.h"
#include "rv/kernels/topological_order.h"
#include "tests/kernels/array_graph.h"
#include "tests/kernels/breaking_pulse.h"

namespace {

using namespace rvtest;
using Lists = std::vector<std::vector<Index>>;

Lists listed(const rv::NodeGroups& groups) {
    Lists lists;
    for (Index group = 0; group < groups.size(); ++group) {
        const auto nodes = groups[group];
        lists.emplace_back(nodes.begin(), nodes.end());
    }
    return lists;
}

void expectNumbers(const rv::Components& components, Index nodeLimit) {
    std::vector<int> numbers(nodeLimit);
    for (Index group = 0; group < components.groups.size(); ++group) {
        for (const Index node : components.groups[group]) numbers[node] = static_cast<int>(group) + 1;
    }
    EXPECT_EQ(std::vector<int>(components.numbers.begin(), components.numbers.end()), numbers);
}

// What a node reaches without one that is left out.
std::set<Index> reachedFrom(Index start, const rv::Arcs& arcs, Index leftOut = kNoIndex) {
    std::set<Index> reached;
    std::vector<Index> waiting;
    const auto reach = [&](Index node) {
        if (node != leftOut && reached.insert(node).second) waiting.push_back(node);
    };
    reach(start);
    while (!waiting.empty()) {
        const Index node = waiting.back();
        waiting.pop_back();
        for (const Index target : arcs.targetsOf(node)) reach(target);
    }
    return reached;
}

struct Numbered {
    explicit Numbered(const rv::SearchSpace& space) : search(rv::depthFirst(space, pulse)) {}
    // In the reverse of the order in which they are reached.
    std::vector<Index> latestFirst(const std::set<Index>& nodes) const {
        std::vector<Index> list(nodes.begin(), nodes.end());
        std::sort(list.begin(), list.end(),
                  [&](Index a, Index b) { return search.numbers[a] > search.numbers[b]; });
        return list;
    }

    rv::Pulse pulse;
    rv::DepthFirst search;
};

Lists slowStrong(const ArrayGraph& graph, const rv::SearchSpace& space) {
    const Numbered numbered(space);
    std::map<int, std::vector<Index>> closed;  // by the completion of the node reached first
    for (const Index node : graph.nodes) {
        std::set<Index> component;
        for (const Index other : reachedFrom(node, space.arcs)) {
            if (reachedFrom(other, space.arcs).count(node) != 0) component.insert(other);
        }
        const auto list = numbered.latestFirst(component);
        closed[numbered.search.completions[list.back()]] = list;
    }
    Lists lists;
    for (const auto& [completion, list] : closed) lists.push_back(list);
    return lists;
}

// Those that hold together with an edge whichever other node is left out.
std::set<Index> blockOf(rv::Ends ends, const ArrayGraph& graph, const rv::Arcs& arcs) {
    std::set<Index> block(graph.nodes.begin(), graph.nodes.end());
    for (const Index leftOut : graph.nodes) {
        auto held = reachedFrom(ends.source, arcs, leftOut);
        held.merge(reachedFrom(ends.target, arcs, leftOut));
        held.insert(leftOut);
        std::erase_if(block, [&](Index node) { return held.count(node) == 0; });
    }
    return block;
}

void expectBlocks(const ArrayGraph& graph, const rv::SearchSpace& space) {
    const Numbered numbered(space);
    std::map<int, std::vector<Index>> closed;  // by the completion of the node before the joint
    for (const Index edge : graph.edges) {
        const rv::Ends ends = graph.ends[edge];
        if (ends.source == ends.target) continue;
        const auto list = numbered.latestFirst(blockOf(ends, graph, space.arcs));
        closed[numbered.search.completions[*(list.end() - 2)]] = list;
    }
    Lists lists;
    std::vector<Index> articulationNodes;
    std::map<Index, int> blocksBelow;
    for (const auto& [completion, list] : closed) {
        lists.push_back(list);
        const Index joint = list.back();
        const bool isRoot = numbered.search.parents[joint] == kNoIndex;
        if (++blocksBelow[joint] == (isRoot ? 2 : 1)) articulationNodes.push_back(joint);
    }
    for (const Index node : graph.nodes) {
        if (space.isIsolated(node)) lists.push_back({node});
    }
    rv::Pulse pulse;
    const rv::Blocks found = rv::blocks(space, pulse);
    EXPECT_EQ(listed(found.groups), lists);
    EXPECT_EQ(std::vector<Index>(found.articulationNodes.begin(), found.articulationNodes.end()),
              articulationNodes);
    for (const Index node : graph.nodes) {
        const auto isIn = [&](const auto& list) { return std::count(list.begin(), list.end(), node) != 0; };
        EXPECT_EQ(isIn(found.articulationNodes), std::count_if(lists.begin(), lists.end(), isIn) > 1) << node;
    }
}

Lists slowConnected(const ArrayGraph& graph, const rv::Arcs& arcs) {
    Lists lists;
    std::set<Index> done;
    const auto add = [&](Index from) {
        if (done.count(from) != 0) return;
        const auto component = reachedFrom(from, arcs);
        lists.emplace_back();
        for (const Index node : graph.nodes) {
            if (component.count(node) != 0) lists.back().push_back(node);
        }
        done.insert(component.begin(), component.end());
    };
    for (const Index edge : graph.edges) {
        if (graph.ends[edge].source != graph.ends[edge].target) add(graph.ends[edge].source);
    }
    for (const Index node : graph.nodes) add(node);
    return lists;
}

std::vector<Index> slowTopologicalOrder(const ArrayGraph& graph) {
    std::vector<Index> order;
    std::set<Index> left(graph.edges.begin(), graph.edges.end());
    const auto hasInEdge = [&](Index node) {
        return std::any_of(left.begin(), left.end(),
                           [&](Index edge) { return graph.ends[edge].target == node; });
    };
    for (const Index node : graph.nodes) {
        if (!hasInEdge(node)) order.push_back(node);
    }
    for (std::size_t next = 0; next < order.size(); ++next) {
        for (const Index edge : graph.edges) {
            if (graph.ends[edge].source != order[next]) continue;
            left.erase(edge);
            if (!hasInEdge(graph.ends[edge].target)) order.push_back(graph.ends[edge].target);
        }
    }
    return order;
}

void expectTopologicalOrder(const ArrayGraph& graph) {
    const std::vector<Index> order = slowTopologicalOrder(graph);
    const ArcArrays arrays = graph.arcs();
    std::vector<Index> inDegrees(graph.nodeLimit);
    for (const Index target : arrays.targets) ++inDegrees[target];
    rv::Pulse pulse;
    for (const auto& given : {std::span<const Index>(), std::span<const Index>(inDegrees)}) {
        const auto found = rv::topologicalOrder(arrays.arcs(), graph.order(), given, pulse);
        EXPECT_EQ(std::vector<Index>(found.nodes.begin(), found.nodes.end()), order);
        EXPECT_EQ(found.isComplete, order.size() == graph.nodes.size());
    }
}

// Which of some nodes, among them numbers that no node has, every node reaches.
void expectReach(const ArrayGraph& graph, const rv::SearchSpace& space, Dice& dice) {
    rv::Pulse pulse;
    rv::ReachMarks marks(space, pulse);
    for (const Index count : {Index{64}, dice.below(4)}) {
        std::vector<Index> targets(count);
        for (Index& target : targets) target = dice.oneIn(9) ? kNoIndex : dice.below(graph.nodeLimit + 1);
        std::map<Index, std::uint64_t> expected;
        for (const Index node : graph.nodes) {
            const std::set<Index> reached = reachedFrom(node, space.arcs);
            for (std::size_t i = 0; i < targets.size(); ++i) {
                if (reached.count(targets[i]) != 0) expected[node] |= std::uint64_t{1} << i;
            }
        }
        marks.ask(targets, pulse);
        std::map<Index, std::uint64_t> found;
        marks.forEachNode(
            [&](Index node, std::uint64_t bits) { EXPECT_TRUE(found.emplace(node, bits).second) << node; });
        EXPECT_EQ(found, expected);
    }
}

TEST(Components, AreThoseOfTheirDefinitions) {
    rv::Pulse pulse;
    for (std::uint64_t seed = 0; seed < 1500; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = randomArrays(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        const ArraySpace mixed = graph.mixed();
        const ArraySpace undirected = graph.undirected();
        const rv::Components strong = rv::strongComponents(*mixed, pulse);
        EXPECT_EQ(listed(strong.groups), slowStrong(graph, *mixed));
        expectNumbers(strong, graph.nodeLimit);
        const rv::Components connected = rv::connectedComponents(graph.order(), graph.nodeLimit, pulse);
        EXPECT_EQ(listed(connected.groups), slowConnected(graph, undirected->arcs));
        expectNumbers(connected, graph.nodeLimit);
        expectBlocks(graph, *undirected);
        expectTopologicalOrder(graph);
        expectReach(graph, *mixed, dice);
        if (HasFailure()) return;
    }
}

// A chain is one long path of the search; its sets are joined in the worst order.
TEST(Components, OfALongChain) {
    constexpr Index kNodes = 100000;
    std::vector<std::pair<Index, Index>> pairs;
    for (Index node = kNodes - 1; node > 0; --node) pairs.emplace_back(node - 1, node);
    const ArrayGraph graph = ArrayGraph::plain(kNodes, pairs);
    const ArraySpace directed = graph.mixed();
    const ArraySpace undirected = graph.undirected();
    rv::Pulse pulse;
    EXPECT_EQ(rv::strongComponents(*directed, pulse).groups.size(), kNodes);
    EXPECT_EQ(rv::connectedComponents(graph.order(), kNodes, pulse).groups.size(), 1U);
    EXPECT_EQ(rv::blocks(*undirected, pulse).articulationNodes.size(), kNodes - 2);
    EXPECT_TRUE(rv::topologicalOrder(directed->arcs, graph.order(), {}, pulse).isComplete);
}

TEST(Components, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {4, 3}});
    const ArraySpace directed = graph.mixed();
    const ArraySpace undirected = graph.undirected();
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::strongComponents(*directed, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::ReachMarks(*directed, pulse).ask({}, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::connectedComponents(graph.order(), 6, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::blocks(*undirected, pulse); });
    breakOffEverywhere(
        [&](rv::Pulse& pulse) { rv::topologicalOrder(directed->arcs, graph.order(), {}, pulse); });
}

}  // namespace
