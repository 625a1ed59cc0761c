// Threads with graphs of their own, which share nothing but their factory. Meant for the thread sanitizer.

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Two threads give the results of one.
void expectSameInThreads(const std::function<std::string(unsigned seed)>& work, unsigned runs) {
    std::vector<std::string> results(2 * runs);
    const auto half = [&](unsigned first) {
        for (unsigned seed = first; seed < first + runs; ++seed) results[seed] = work(seed);
    };
    std::thread one(half, 0);
    std::thread two(half, runs);
    one.join();
    two.join();
    for (unsigned seed = 0; seed < 2 * runs; ++seed) EXPECT_EQ(results[seed], work(seed)) << seed;
}

TEST(Threads, ShareAFactory) {
    RVAFactory factory;
    const auto work = [&factory](unsigned seed) {
        const TestGraph g(randomText(seed, {.nodes = 20, .edges = 40}), &factory);
        RVAnalysisInternalData data;
        const std::unique_ptr<RVGraph> copy(factory.newGraph());
        data.copyGraph(g, copy.get());
        std::string flags;
        for (RVEdge* edge : *copy->pEdgeList()) {
            if (data.pOriginalEdge(edge)->denseIndex() % 2 == 0) data.directed(edge, 0);
            flags += std::to_string(data.directed(edge) + RVAnalysisInternalData(data).directed(edge));
        }
        while (copy->numberOfNodes() > 3) copy->discardNode(copy->pFirstNode());
        return flags + "; " + drawing(copy.get());
    };
    expectSameInThreads(work, 60);
}

template <class R>
class ThreadsOfRuns : public testing::Test {};
TYPED_TEST_SUITE(ThreadsOfRuns, Algorithms, AlgorithmNames);

TYPED_TEST(ThreadsOfRuns, ShareAFactory) {
    RVAFactory factory;
    const auto work = [&factory](unsigned seed) {
        const TestGraph g(randomText(seed, {.nodes = 12, .edges = 25, .undirected = 25}), &factory);
        TypeParam run;
        ask(run, g, Question(g, static_cast<int>(seed % 2)));
        useOriginalGraph(run, static_cast<int>(seed / 2 % 2));
        return std::to_string(run()) + "; " + describe(run.output, g);
    };
    expectSameInThreads(work, 20);
}

}  // namespace
