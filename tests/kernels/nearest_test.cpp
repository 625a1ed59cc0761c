// Cheapest paths in arrays, against a list of candidates that is kept in order.

#include "rv/kernels/nearest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <vector>

#include "rv/kernels/breadth_first.h"
#include "tests/kernels/array_graph.h"
#include "tests/kernels/breaking_pulse.h"

namespace {

using namespace rvtest;

template <class D>
constexpr D kUnreached = rv::NearestLabels<D>::kUnreached;

// Out-edges, then the edges among the in-edges that are followed both ways.
struct Question {
    ArrayGraph graph;
    std::vector<int> edgeCosts;
    std::vector<int> nodeCosts;
    Index start = 0;
    Index stop = kNoIndex;
    std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
};

template <class D>
struct Answer {
    explicit Answer(Index nodeLimit) : distances(nodeLimit, kUnreached<D>), edges(nodeLimit, kNoIndex) {}
    friend bool operator==(const Answer&, const Answer&) = default;

    std::vector<Index> settled;
    std::vector<D> distances;
    std::vector<Index> edges;
};

template <class D>
class SlowSearch {
public:
    explicit SlowSearch(const Question& question)
        : m_question(question), m_answer(question.graph.nodeLimit) {}

    Answer<D> find() {
        offer(m_question.start, 0, kNoIndex);
        while (!m_candidates.empty()) {
            const Index node = m_candidates.front();
            m_candidates.erase(m_candidates.begin());
            m_answer.settled.push_back(node);
            if (node == m_question.stop) break;
            follow(node);
        }
        return m_answer;
    }

private:
    void follow(Index node) {
        const ArrayGraph& graph = m_question.graph;
        std::int64_t left = m_answer.distances[node];
        if (node != m_question.start) left += m_question.nodeCosts[node];
        for (const bool isBackward : {false, true}) {
            for (const Index edge : graph.edges) {
                const auto [source, target] = graph.ends[edge];
                if ((isBackward ? target : source) != node || (isBackward && !graph.twoWay[edge])) continue;
                offer(isBackward ? source : target, left + m_question.edgeCosts[edge], edge);
            }
        }
    }
    // A candidate whose distance falls stands behind all others of the same distance.
    void offer(Index node, std::int64_t distance, Index edge) {
        auto& distances = m_answer.distances;
        if (distance > m_question.greatest || distance >= distances[node]) return;
        distances[node] = static_cast<D>(distance);
        m_answer.edges[node] = edge;
        std::erase(m_candidates, node);
        const auto place = std::find_if(m_candidates.begin(), m_candidates.end(), [&](Index candidate) {
            return distances[candidate] > distances[node];
        });
        m_candidates.insert(place, node);
    }

    const Question& m_question;
    Answer<D> m_answer;
    std::vector<Index> m_candidates;
};

template <class Labels>
Answer<typename Labels::Distance> answer(const Question& question, Labels& labels, rv::Pulse& pulse) {
    using D = typename Labels::Distance;
    const ArcArrays out = question.graph.arcs();
    const ArcArrays in = question.graph.arcs(true);
    const rv::Buffer<int> costs = rv::costsByArc(
        out.arcs(), [&](Index edge) { return question.edgeCosts[edge]; }, pulse);
    const rv::NearestWays ways([&](Index node) { return question.nodeCosts[node]; },
                               rv::ArcWays(out.arcs(), [&](Index arc, Index) { return costs[arc]; }),
                               rv::ArcWays(
                                   in.arcs(), [&](Index, Index edge) { return question.edgeCosts[edge]; },
                                   [&](Index edge) -> bool { return question.graph.twoWay[edge]; }));
    const auto greatest = static_cast<D>(std::min<std::int64_t>(question.greatest, kUnreached<D>));
    rv::Buffer<Index> settled;
    rv::findNearest(ways, question.start, {greatest, question.stop}, labels, settled, pulse);
    Answer<D> answer(question.graph.nodeLimit);
    answer.settled.assign(settled.begin(), settled.end());
    return answer;
}

template <class D>
Answer<D> freshAnswer(const Question& question, rv::Pulse& pulse) {
    rv::NearestLabels<D> labels(question.graph.nodeLimit);
    Answer<D> found = answer(question, labels, pulse);
    found.distances.assign(labels.distances.begin(), labels.distances.end());
    found.edges.assign(labels.edges.begin(), labels.edges.end());
    return found;
}

template <class D>
Answer<D> reusedAnswer(const Question& question, rv::ReusedNearestLabels<D>& labels, rv::Pulse& pulse) {
    labels.begin(question.graph.nodeLimit);
    Answer<D> found = answer(question, labels, pulse);
    for (Index node = 0; node < question.graph.nodeLimit; ++node) {
        found.distances[node] = labels.distance(node);
        found.edges[node] = labels.edge(node);
    }
    return found;
}

Question randomQuestion(Dice& dice) {
    Question question;
    question.graph = randomArrays(dice);
    const ArrayGraph& graph = question.graph;
    if (graph.nodes.empty()) question.graph = ArrayGraph::plain(1, {});
    constexpr Index kRanges[] = {1, 2, 3, 5, 200, 70000, 2147483647};
    const Index range = kRanges[dice.below(7)];
    const Index least = dice.below(2);
    for (std::size_t i = 0; i < graph.ends.size(); ++i)
        question.edgeCosts.push_back(static_cast<int>(least + dice.below(range)));
    for (Index i = 0; i < graph.nodeLimit; ++i)
        question.nodeCosts.push_back(dice.oneIn(2) ? 0 : static_cast<int>(dice.below(range)));
    const auto drawn = [&] { return graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))]; };
    question.start = drawn();
    if (dice.oneIn(3)) question.stop = drawn();
    if (dice.oneIn(3)) question.greatest = static_cast<int>(dice.below(3 * (range / 2) + 1) & 0x7FFFFFFF);
    return question;
}

TEST(Nearest, SettlesInTheOrderOfTheList) {
    rv::Pulse pulse;
    rv::ReusedNearestLabels<int> labels;
    rv::ReusedNearestLabels<std::int64_t> exactLabels;
    for (std::uint64_t seed = 0; seed < 4000; ++seed) {
        Dice dice(seed);
        const Question question = randomQuestion(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(question.graph));
        const auto expected = SlowSearch<int>(question).find();
        EXPECT_EQ(freshAnswer<int>(question, pulse), expected);
        EXPECT_EQ(reusedAnswer(question, labels, pulse), expected);
        const auto exact = SlowSearch<std::int64_t>(question).find();
        EXPECT_EQ(freshAnswer<std::int64_t>(question, pulse), exact);
        EXPECT_EQ(reusedAnswer(question, exactLabels, pulse), exact);
        if (HasFailure()) return;
    }
}

// Labels that are taken up again show nothing of a search that was broken off.
TEST(Nearest, CanBeBrokenOff) {
    Question question;
    question.graph = ArrayGraph::plain(5, {{0, 1}, {0, 2}, {1, 3}, {2, 3}, {3, 4}});
    question.edgeCosts = {5, 1, 1, 1, 7};
    question.nodeCosts = {1, 1, 1, 1, 1};
    const auto expected = SlowSearch<int>(question).find();
    rv::ReusedNearestLabels<int> labels;
    breakOffEverywhere([&](rv::Pulse& pulse) { EXPECT_EQ(reusedAnswer(question, labels, pulse), expected); });
}

TEST(Nearest, WithEqualCostsIsBreadthFirstSearch) {
    Dice dice(1);
    std::vector<std::pair<Index, Index>> pairs;
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

}  // namespace
