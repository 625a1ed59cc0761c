// Searches from both ends, against one-sided ones.

#include "rv/kernels/two_sided.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "rv/kernels/breadth_first.h"
#include "tests/kernels/array_graph.h"
#include "tests/kernels/breaking_pulse.h"

namespace {

using namespace rvtest;
using rv::TwoSidedScratch;

// The edges of the path in the tree of a search from one node; nothing, and the nodes reached, if there is
// none.
struct OneSided {
    OneSided(const rv::Arcs& arcs, Index from, Index to) : order{from} {
        std::vector<Index> parents(arcs.nodeLimit(), kNoIndex);
        std::vector<Index> edges(arcs.nodeLimit(), kNoIndex);
        for (std::size_t next = 0; next < order.size(); ++next) {
            const Index node = order[next];
            for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
                const Index target = arcs.targets[arc];
                if (std::count(order.begin(), order.end(), target) != 0) continue;
                order.push_back(target);
                parents[target] = node;
                edges[target] = arcs.edges[arc];
            }
        }
        exists = std::count(order.begin(), order.end(), to) != 0;
        for (Index node = to; exists && node != from; node = parents[node])
            path.insert(path.begin(), edges[node]);
    }

    std::vector<Index> order;
    bool exists;
    std::vector<Index> path;
};

template <class T>
std::vector<T> listed(const rv::Buffer<T>& values) {
    return {values.begin(), values.end()};
}

void expectPaths(const ArrayGraph& graph, TwoSidedScratch& scratch, rv::Pulse& pulse) {
    const ArcArrays out = graph.arcs();
    const ArcArrays in = graph.arcs(true);
    const rv::Arcs ways = out.arcs();
    const rv::Arcs waysBack = in.arcs();
    const rv::ArcNeighbours neighbours(ways, waysBack);
    for (const Index from : graph.nodes) {
        for (const Index to : graph.nodes) {
            SCOPED_TRACE(testing::Message() << "from " << from << " to " << to);
            const OneSided expected(ways, from, to);
            EXPECT_EQ(rv::connects(neighbours, from, to, scratch, pulse), expected.exists);
            ASSERT_EQ(rv::shortestPath(neighbours, from, to, scratch, pulse), expected.exists);
            EXPECT_EQ(listed(scratch.path), expected.path);
            if (expected.exists) continue;
            EXPECT_EQ(listed(scratch.forward.queue), expected.order);
        }
    }
}

// Up to forty nodes, so that levels have many nodes and there are many shortest paths.
ArrayGraph randomDigraph(Dice& dice) {
    const Index nodes = 2 + dice.below(39);
    std::vector<std::pair<Index, Index>> pairs;
    for (Index left = nodes / 2 + dice.below(3 * nodes); left > 0; --left)
        pairs.emplace_back(dice.below(nodes), dice.below(nodes));
    return ArrayGraph::plain(nodes, pairs);
}

TEST(TwoSided, FindsThePathOfTheOneSidedSearch) {
    rv::Pulse pulse;
    TwoSidedScratch scratch;
    for (std::uint64_t seed = 0; seed < 300; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = seed % 3 == 0 ? randomArrays(dice) : randomDigraph(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectPaths(graph, scratch, pulse);
        if (HasFailure()) return;
    }
}

// What was left by a search that was broken off is nothing to the next one.
TEST(TwoSided, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}, {3, 0}, {5, 4}});
    TwoSidedScratch scratch;
    breakOffEverywhere([&](rv::Pulse& pulse) { expectPaths(graph, scratch, pulse); });
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
    TwoSidedScratch scratch;
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
