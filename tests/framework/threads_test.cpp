// Threads with graphs of their own, which share nothing but their factory, and threads that ask about one
// graph. Meant for the thread sanitizer.

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

template <class R>
class Threads : public testing::Test {};
TYPED_TEST_SUITE(Threads, Algorithms, AlgorithmNames);

// Two of them give the results of one.
TYPED_TEST(Threads, ShareAFactory) {
    constexpr unsigned kRuns = 20;  // of each
    RVAFactory factory;
    const auto work = [&factory](unsigned seed) {
        const TestGraph g(randomText(seed, {.nodes = 12, .edges = 25, .undirected = 25}), &factory);
        TypeParam run;
        ask(run, g, Question(g, static_cast<int>(seed % 2)));
        useOriginalGraph(run, static_cast<int>(seed / 2 % 2));
        const std::string answer = codeAndAnswer(run, g);
        while (g->numberOfNodes() > 3) g->discardNode(g->pFirstNode());
        return answer + drawing(g);
    };
    std::string results[2 * kRuns];
    const auto half = [&](unsigned first) {
        for (unsigned seed = first; seed < first + kRuns; ++seed) results[seed] = work(seed);
    };
    std::thread one(half, 0);
    std::thread two(half, kRuns);
    one.join();
    two.join();
    for (unsigned seed = 0; seed < 2 * kRuns; ++seed) EXPECT_EQ(results[seed], work(seed)) << seed;
}

// Those of which any number may run on one graph at a time.
using Sharing = testing::Types<TopologicalSort, BreadthFirst, DepthFirst, Connected, Blocks, Strong, PathTest,
                               AcyclicTest, TreeTest, UniquePath, Reachable, NewCycleTest, RootCauses,
                               Dijkstra, AcyclicPaths, ShortestPaths, SingleSource, SortedPathsOnce,
                               MaximumFlow, MinimumCostFlow, MinimumCut, DisjointPaths, SpanningTree>;
template <class R>
class SharedGraph : public testing::Test {};
TYPED_TEST_SUITE(SharedGraph, Sharing, AlgorithmNames);

// Each thread makes, binds and destroys its own data again and again, and different threads ask different
// questions. Between the rounds the graph changes.
TYPED_TEST(SharedGraph, GivesEveryThreadTheAnswersOfOne) {
    const TestGraph g(randomText(7, {.nodes = 40, .edges = 200, .undirected = 25}));
    const auto answer = [&g](int flag, int range) {
        TypeParam run;
        ask(run, g, Question(g, flag));
        if constexpr (requires { run.input.range(range); }) run.input.range(range);
        return codeAndAnswer(run, g);
    };
    for (int round = 0; round < 4; ++round) {
        std::string answers[4][5];
        const auto ask = [&](int thread) {
            for (int turn = 0; turn < 5; ++turn) answers[thread][turn] = answer(thread % 2, turn - 1);
        };
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) threads.emplace_back(ask, thread);
        for (std::thread& thread : threads) thread.join();
        for (int thread = 0; thread < 4; ++thread) {
            for (int turn = 0; turn < 5; ++turn)
                EXPECT_EQ(answers[thread][turn], answer(thread % 2, turn - 1));
        }
        g->discardEdge(g->pFirstEdge());
        if (round == 1) g->pLastEdge()->invertDirection();
    }
}

}  // namespace
