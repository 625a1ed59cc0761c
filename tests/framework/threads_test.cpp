// Threads with graphs of their own, which share nothing but their factory. Meant for the thread sanitizer.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// A sort, records, mappings and copies; says what came out.
std::string work(unsigned seed, RVAFactory* factory) {
    const TestGraph g(randomText(seed, {.nodes = 20, .edges = 40, .acyclic = true}), factory);
    TopologicalSort sort(g);
    sort();

    RVAnalysisInternalData data;
    const std::unique_ptr<RVGraph> copy(factory->newGraph());
    data.copyGraph(g, copy.get());
    std::string flags;
    for (RVEdge* edge : *copy->pEdgeList()) {
        if (sort.output.orderNumber(data.pOriginalNode(edge->pTargetNode())) % 2 == 0) data.directed(edge, 0);
        flags += std::to_string(data.directed(edge) + RVAnalysisInternalData(data).directed(edge));
    }
    while (copy->numberOfNodes() > 3) copy->discardNode(copy->pFirstNode());
    return text(*sort.output.pNodeList()) + "; " + flags + "; " + drawing(copy.get());
}

TEST(Threads, ShareAFactory) {
    constexpr unsigned kRuns = 60;
    RVAFactory factory;
    std::vector<std::string> results(2 * kRuns);
    const auto half = [&](unsigned first) {
        for (unsigned seed = first; seed < first + kRuns; ++seed) results[seed] = work(seed, &factory);
    };
    std::thread one(half, 0);
    std::thread two(half, kRuns);
    one.join();
    two.join();
    for (unsigned seed = 0; seed < 2 * kRuns; ++seed) EXPECT_EQ(results[seed], work(seed, &factory));
}

}  // namespace
