// Flows, disjoint paths and spanning trees in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(Flows, AreThoseOfShortestAugmentingPaths) {
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = seed % 2 == 0 ? randomArrays(dice) : randomDigraph(dice);
        if (graph.nodes.empty()) continue;
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectMaximumFlow(graph, dice);
        expectDisjointPaths(graph, dice);
        if (HasFailure()) return;
    }
}

TEST(Flows, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {1, 4}, {4, 5}, {3, 5}});
    const rv::FlatGraph flat = flatGraphOf(graph);
    breakOffEverywhere([&](rv::Pulse& pulse) {
        rv::edgeDisjointPaths(flat, 0, 5, pulse);
        rv::nodeDisjointPaths(flat, 0, 5, pulse);
    });
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::spanningTree(flat, {}, pulse); });
}

TEST(SpanningTrees, AreThoseOfTheList) {
    for (std::uint64_t seed = 0; seed < 3000; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = randomArrays(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectSpanningTree(graph, dice);
        if (HasFailure()) return;
    }
}

// Keys of more than 64 words of 64 buckets, against the cheapest edges that join parts.
TEST(SpanningTrees, OfManyCosts) {
    constexpr Index kNodes = 20000;
    Dice dice(1);
    std::vector<std::pair<Index, Index>> pairs;
    std::vector<int> costs;
    for (Index node = 1; node < kNodes; ++node) pairs.emplace_back(dice.below(node), node);
    for (Index i = 0; i < kNodes; ++i) pairs.emplace_back(dice.below(kNodes), dice.below(kNodes));
    for (const Index range : {Index{60000}, Index{2000000000}}) {
        costs.clear();
        for (std::size_t i = 0; i < pairs.size(); ++i) costs.push_back(static_cast<int>(dice.below(range)));
        const ArrayGraph graph = ArrayGraph::plain(kNodes, pairs);
        rv::Pulse pulse;
        const rv::SpanningTree tree = rv::spanningTree(flatGraphOf(graph), costs, pulse);
        EXPECT_TRUE(tree.spans(graph.order()));
        std::int64_t total = 0;
        for (std::size_t i = 0; i < costs.size(); ++i) total += tree.isTreeEdge[i] * std::int64_t{costs[i]};

        std::vector<Index> sorted = graph.edges;
        std::sort(sorted.begin(), sorted.end(), [&](Index a, Index b) { return costs[a] < costs[b]; });
        std::vector<Index> roots = graph.nodes;
        const auto rootOf = [&](Index node) {
            while (roots[node] != node) node = roots[node] = roots[roots[node]];
            return node;
        };
        for (const Index edge : sorted) {
            const Index a = rootOf(pairs[edge].first);
            const Index b = rootOf(pairs[edge].second);
            if (a != b) total -= costs[edge];
            roots[a] = b;
        }
        EXPECT_EQ(total, 0);
    }
}

}  // namespace
