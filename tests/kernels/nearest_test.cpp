// Cheapest paths in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(Nearest, SettlesInTheOrderOfTheList) {
    rv::ReusedNearestLabels<int> labels;
    rv::ReusedNearestLabels<std::int64_t> exactLabels;
    for (std::uint64_t seed = 0; seed < 4000; ++seed) {
        Dice dice(seed);
        const Question question = randomQuestion(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(question.graph));
        expectNearest(question, labels, exactLabels);
        if (HasFailure()) return;
    }
}

// Labels that are taken up again show nothing of a search that was broken off.
TEST(Nearest, CanBeBrokenOff) {
    Question question;
    question.graph = ArrayGraph::plain(5, {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}});
    question.edgeCosts = {5, 1, 1, 1, 7};
    question.nodeCosts = {1, 1, 1, 1, 1};
    const auto expected = withoutEdges(SlowSearch<int>(question).find());
    rv::ReusedNearestLabels<int> labels;
    breakOffEverywhere([&](rv::Pulse& pulse) { EXPECT_EQ(reusedAnswer(question, labels, pulse), expected); });
}

TEST(Nearest, WithEqualCostsIsBreadthFirstSearch) {
    Dice dice(1);
    std::vector<std::pair<Index, Index>> pairs;
    pairs.reserve(60000);
    for (int i = 0; i < 60000; ++i) pairs.emplace_back(dice.below(20000), dice.below(20000));
    const ArcArrays arrays = ArrayGraph::plain(20000, pairs).arcs();
    rv::Pulse pulse;
    const rv::BreadthFirst search = rv::breadthFirst(arrays.arcs(), 0, pulse);
    for (const int cost : {1, 1000}) {
        rv::NearestLabels<int> labels(20000);
        rv::Buffer<Index> settled;
        const rv::NearestWays ways(rv::NoCost(),
                                   rv::ArcWays(arrays.arcs(), [&](Index, Index) { return cost; }));
        rv::findNearest(ways, 0, {}, labels, settled, pulse);
        EXPECT_EQ(settled, search.order);
    }
}

// Keys of all sizes, many of them equal, against a list kept in order.
template <class Key>
void expectOrder(std::uint64_t seed, Key greatestStep) {
    Dice dice(seed);
    std::vector<std::pair<Key, Index>> waiting;
    rv::NearestQueue<Key> queue;
    Key last = 0;
    for (Index round = 0; round < 3000; ++round) {
        if (waiting.empty() || dice.below(5) < (round < 1500 ? 3 : 2)) {
            const Key step =
                dice.oneIn(4) ? greatestStep : static_cast<Key>(dice.below(8)) * (greatestStep / 16);
            const Key key = last + std::min<Key>(step, std::numeric_limits<Key>::max() - last);
            const auto place = std::find_if(waiting.begin(), waiting.end(),
                                            [&](const auto& entry) { return entry.first > key; });
            waiting.insert(place, {key, round});
            queue.push(key, round);
        } else {
            const auto [key, node] = queue.pop();
            ASSERT_EQ(std::pair(key, node), waiting.front()) << "seed " << seed << ", round " << round;
            waiting.erase(waiting.begin());
            last = key;
        }
        ASSERT_EQ(queue.isEmpty(), waiting.empty());
    }
}

TEST(Nearest, QueueKeepsTheOrderOfEqualKeys) {
    for (std::uint64_t seed = 0; seed < 30; ++seed) {
        for (const int greatestStep : {16, 64, 1000, 1 << 20, 0x7FFFFFFF})
            expectOrder<int>(seed, greatestStep);
        expectOrder<std::int64_t>(seed, std::int64_t{1} << (seed + 30));
    }
}

TEST(CheapestTree, HasTheDistancesOfTheObviousWay) {
    int negativeCycles = 0;
    for (std::uint64_t seed = 0; seed < 6000 && !HasFailure(); ++seed) {
        Dice dice(seed);
        const TreeQuestion question(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(question.graph));
        negativeCycles += expectTree(question, seed % 2 == 0) ? 1 : 0;
    }
    EXPECT_GT(negativeCycles, 500);
}

TEST(CheapestTree, CanBeBrokenOff) {
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        Dice dice(seed);
        const TreeQuestion question(dice);
        rv::Pulse pulse;
        const rv::CheapestTree expected = question.find(true, pulse);
        breakOffEverywhere([&](rv::Pulse& broken) {
            const rv::CheapestTree tree = question.find(true, broken);
            for (const Index node : question.graph.nodes)
                EXPECT_EQ(tree.distance(node), expected.distance(node)) << seed;
        });
    }
}

}  // namespace
