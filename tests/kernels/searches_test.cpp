// Breadth-first and depth-first search in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(Searches, GiveTheNumbersOfTheObviousWay) {
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = randomArrays(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectSearches(graph, dice);
        if (HasFailure()) return;
    }
}

// A parallel says nothing of the edge that was followed but whether that is a cross edge.
TEST(Searches, KindsOfParallels) {
    for (const bool pointsForward : {false, true}) {
        EXPECT_EQ(rv::kindOfParallel(rv::kCrossEdge, pointsForward, false), rv::kCrossEdge);
        EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, pointsForward, true), rv::kBackEdge);
    }
    EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, true, false), rv::kForwardEdge);
    EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, false, false), rv::kBackEdge);
}

TEST(Searches, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {4, 3}});
    const ArraySpace space = graph.mixed();
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::breadthFirst(*space, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) {
        const rv::DepthFirst search = rv::depthFirst(*space, pulse);
        rv::edgeKinds<int>(
            *space, search, [](Index) { return false; }, pulse);
    });
}

// Long enough for what is fetched ahead, and for a walk that must not end in the stack.
TEST(Searches, OfManyNodes) {
    constexpr Index kNodes = 200000;
    std::vector<std::pair<Index, Index>> pairs;
    for (Index node = 0; node + 1 < kNodes; ++node) pairs.emplace_back(node, node + 1);
    for (Index node = 0; node < kNodes; node += 2) pairs.emplace_back(node, node * std::uint64_t{7} % kNodes);
    const ArrayGraph graph = ArrayGraph::plain(kNodes, pairs);
    const ArraySpace space = graph.undirected();
    rv::Pulse pulse;
    Visits visits(kNodes);
    slowBreadthFirst(space->arcs, 5, visits);
    expectBreadthFirst(rv::breadthFirst(space->arcs, 5, pulse), visits);
    visits = Visits(kNodes);
    slowDepthFirst(space->arcs, 5, visits);
    expectDepthFirst(rv::depthFirst(space->arcs, 5, pulse), visits);
}

}  // namespace
