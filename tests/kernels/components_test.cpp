// Components, blocks, reach and topological orders in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(Components, AreThoseOfTheirDefinitions) {
    for (std::uint64_t seed = 0; seed < 1500; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = randomArrays(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectComponents(graph, dice);
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
