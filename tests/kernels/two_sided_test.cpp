// Searches from both ends in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(TwoSided, FindsThePathOfTheOneSidedSearch) {
    rv::Pulse pulse;
    rv::TwoSidedScratch scratch;
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = seed % 3 == 0 ? randomArrays(dice) : randomDigraph(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        for (const Index from : graph.nodes) expectPaths(graph, from, scratch, pulse);
        if (HasFailure()) return;
    }
}

// What was left by a search that was broken off is nothing to the next one.
TEST(TwoSided, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}, {3, 0}, {5, 4}});
    rv::TwoSidedScratch scratch;
    breakOffEverywhere([&](rv::Pulse& pulse) { expectPaths(graph, 0, scratch, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) { expectPaths(graph, 4, scratch, pulse); });
}

// A chain into a great star, and one that passes it by: the search that has little to do ends both.
TEST(TwoSided, CostsLittleMoreThanTheCheaperSide) {
    constexpr Index kLeaf = 10000;
    std::vector<std::pair<Index, Index>> pairs{{0, 1}, {1, 2}, {0, 3}, {3, 4}, {4, 5}, {5, 6}};
    for (Index leaf = 7; leaf <= kLeaf; ++leaf) pairs.emplace_back(2, leaf);
    const ArrayGraph graph = ArrayGraph::plain(kLeaf + 1, pairs);
    const ArcArrays out = graph.arcs();
    const ArcArrays in = graph.arcs(true);
    const rv::Arcs ways = out.arcs();
    const rv::Arcs waysBack = in.arcs();
    const rv::ArcNeighbours neighbours(ways, waysBack);
    const rv::ArcNeighbours turned(waysBack, ways);
    rv::Pulse pulse;
    rv::TwoSidedScratch scratch;
    const auto expectCheap = [&](bool found, bool expected) {
        EXPECT_EQ(found, expected);
        EXPECT_LT(scratch.steps, 40);
    };
    expectCheap(rv::connects(neighbours, 0, kLeaf, scratch, pulse), true);
    expectCheap(rv::connects(neighbours, 0, 6, scratch, pulse), true);
    expectCheap(rv::connects(neighbours, 8, 0, scratch, pulse), false);
    expectCheap(rv::connects(turned, 0, 8, scratch, pulse), false);
    expectCheap(rv::shortestPath(neighbours, 0, 6, scratch, pulse), true);
    expectCheap(rv::shortestPath(turned, 6, 0, scratch, pulse), true);
    expectCheap(rv::shortestPath(turned, kLeaf, 0, scratch, pulse), true);
}

// Marks are wiped in earnest when their base is used up.
TEST(TwoSided, MarksBeginAnew) {
    constexpr Index kMany = 0x60000000;
    rv::NodeMarks marks;
    for (int round = 0; round < 6; ++round) {
        marks.begin(4, kMany + 1);
        for (Index node = 0; node < 4; ++node) EXPECT_FALSE(marks.isMarked(node)) << round;
        marks.mark(1);
        marks.mark(2, kMany);
        EXPECT_TRUE(marks.isMarked(1, 0));
        EXPECT_TRUE(marks.isMarked(2) && marks.isMarked(2, kMany) && !marks.isMarked(2, 0));
    }
}

}  // namespace
