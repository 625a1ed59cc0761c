// Threads with graphs of their own, which share nothing but their factory. Meant for the thread sanitizer.

#include <gtest/gtest.h>

#include <string>
#include <thread>

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
        const std::string answer = std::to_string(run()) + "; " + describe(run.output, g);
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

}  // namespace
