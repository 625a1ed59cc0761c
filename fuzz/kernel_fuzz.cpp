// Makes graphs as arrays of any bytes and puts every kernel to them, whose answers must be those that the
// most obvious ways give.
//
//   kernel_fuzz fuzz/kernel_corpus -max_total_time=120

#include <cstddef>
#include <cstdint>
#include <span>

#include "tests/kernels/kernel_checks.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    testing::GTEST_FLAG(break_on_failure) = true;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace rvtest;
    // What outlives a search is that of all inputs.
    static rv::TwoSidedScratch scratch;
    static rv::ReusedNearestLabels<int> labels;
    static rv::ReusedNearestLabels<std::int64_t> exactLabels;
    Dice dice(std::span(data, size));
    rv::Pulse pulse;
    const auto kind = dice.below(5);
    if (kind == 0) {
        expectPaths(randomDigraph(dice), 0, scratch, pulse);
    } else if (kind == 1) {
        expectNearest(randomQuestion(dice), labels, exactLabels);
    } else if (kind == 2) {
        expectTree(TreeQuestion(dice), dice.oneIn(2));
    } else {
        const ArrayGraph graph = randomArrays(dice);
        expectSearches(graph, dice);
        expectComponents(graph, dice);
        expectSpanningTree(graph, dice);
        if (graph.nodes.empty()) return 0;
        expectPaths(graph, graph.nodes.front(), scratch, pulse);
        expectMaximumFlow(graph, dice);
        expectDisjointPaths(graph, dice);
    }
    return 0;
}
