// Cheapest paths in arrays.

#include <algorithm>
#include <map>
#include <optional>

#include "rv/kernels/cheapest_tree.h"
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

// A question for a tree whose costs may be below 0, and its answer by relaxing every edge again and again.
struct TreeQuestion {
    explicit TreeQuestion(Dice& dice) : graph(randomArrays(dice)) {
        if (graph.nodes.empty()) graph = ArrayGraph::plain(1, {});
        if (dice.oneIn(2)) graph.twoWay.assign(graph.ends.size(), false);
        if (dice.oneIn(3)) {  // no cycle, as edges lead to greater numbers
            for (const Index edge : graph.edges) {
                auto& [source, target] = graph.ends[edge];
                if (source > target) std::swap(source, target);
            }
        }
        constexpr std::int64_t kGreatest[] = {3, 9, 2147483647};
        const std::int64_t greatest = kGreatest[dice.below(3)];
        const std::int64_t least = dice.oneIn(2) ? 0 : -greatest / (1 + dice.below(4));
        for (std::size_t i = 0; i < graph.ends.size(); ++i)
            costs.push_back(least + dice.below(static_cast<Index>(greatest - least)));
        start = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
    }

    rv::CheapestTree find(bool saysNegative, rv::Pulse& pulse) const {
        const ArcArrays out = graph.arcs();
        const ArcArrays in = graph.arcs(true);
        const bool anyTwoWay = std::count(graph.twoWay.begin(), graph.twoWay.end(), true) > 0;
        return {out.arcs(),
                [&] { return in.arcs(); },
                start,
                anyTwoWay,
                [&](Index edge) -> bool { return graph.twoWay[edge]; },
                saysNegative,
                [&](Index edge) { return costs[edge]; },
                pulse};
    }

    // Without a negative cycle.
    std::optional<std::map<Index, std::int64_t>> distances() const {
        std::map<Index, std::int64_t> known{{start, 0}};
        bool isChanged = true;
        for (std::size_t round = 0; isChanged; ++round) {
            if (round > graph.nodes.size()) return std::nullopt;
            isChanged = false;
            forEachWay([&](Index edge, Index from, Index to) {
                if (known.count(from) == 0) return;
                const std::int64_t offered = known[from] + costs[edge];
                if (known.count(to) > 0 && known[to] <= offered) return;
                known[to] = offered;
                isChanged = true;
            });
        }
        return known;
    }
    template <class F>
    void forEachWay(F f) const {
        for (const Index edge : graph.edges) {
            const auto [source, target] = graph.ends[edge];
            f(edge, source, target);
            if (graph.twoWay[edge]) f(edge, target, source);
        }
    }

    ArrayGraph graph;
    std::vector<std::int64_t> costs;
    Index start = 0;
};

TEST(CheapestTree, HasTheDistancesOfTheObviousWay) {
    rv::Pulse pulse;
    int negativeCycles = 0;
    for (std::uint64_t seed = 0; seed < 6000 && !HasFailure(); ++seed) {
        Dice dice(seed);
        const TreeQuestion question(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(question.graph));
        const bool isNegative =
            std::any_of(question.costs.begin(), question.costs.end(), [](auto c) { return c < 0; });
        const rv::CheapestTree tree = question.find(isNegative || seed % 2 == 0, pulse);
        const auto expected = question.distances();
        ASSERT_EQ(tree.hasNegativeCycle(), !expected);
        negativeCycles += tree.hasNegativeCycle() ? 1 : 0;
        if (!expected) continue;
        for (const Index node : question.graph.nodes) {
            const auto found = expected->find(node);
            const bool isFar = found != expected->end() && found->second >= 2147483647;
            if (isFar && tree.distance(node) == rv::CheapestTree::kUnreached) continue;
            ASSERT_EQ(tree.distance(node),
                      found == expected->end() ? rv::CheapestTree::kUnreached : found->second);
            const Index edge = tree.edge(node);
            ASSERT_EQ(edge == kNoIndex, node == question.start || found == expected->end());
            bool isTight = edge == kNoIndex;
            question.forEachWay([&](Index way, Index from, Index to) {
                isTight |= way == edge && to == node &&
                           tree.distance(from) + question.costs[way] == tree.distance(node);
            });
            ASSERT_TRUE(isTight);
        }
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
