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

// A chain into a great star: the search that has little to do ends both.
TEST(TwoSided, CostsLittleMoreThanTheCheaperSide) {
    constexpr Index kLeaves = 10000;
    std::vector<std::pair<Index, Index>> pairs{{0, 1}, {1, 2}};
    for (Index leaf = 3; leaf < kLeaves; ++leaf) pairs.emplace_back(2, leaf);
    const ArrayGraph graph = ArrayGraph::plain(kLeaves, pairs);
    const ArcArrays out = graph.arcs();
    const ArcArrays in = graph.arcs(true);
    const rv::Arcs ways = out.arcs();
    const rv::Arcs waysBack = in.arcs();
    const rv::ArcNeighbours neighbours(ways, waysBack);
    const rv::ArcNeighbours turned(waysBack, ways);
    rv::Pulse pulse;
    rv::TwoSidedScratch scratch;
    EXPECT_TRUE(rv::connects(neighbours, 0, kLeaves - 1, scratch, pulse));
    EXPECT_LT(scratch.steps, 20);
    EXPECT_TRUE(rv::shortestPath(turned, kLeaves - 1, 0, scratch, pulse));
    EXPECT_LT(scratch.steps, 20);
    EXPECT_FALSE(rv::connects(turned, 0, 5, scratch, pulse));
    EXPECT_FALSE(rv::connects(neighbours, 5, 0, scratch, pulse));
    EXPECT_LT(scratch.steps, 20);
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
