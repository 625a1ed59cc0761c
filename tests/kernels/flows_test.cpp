// Maximum flows and spanning trees in arrays.

#include "tests/kernels/breaking_pulse.h"
#include "tests/kernels/kernel_checks.h"

namespace {

using namespace rvtest;

TEST(MaximumFlow, IsThatOfShortestAugmentingPaths) {
    for (std::uint64_t seed = 0; seed < 4000; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = seed % 2 == 0 ? randomArrays(dice) : randomDigraph(dice);
        if (graph.nodes.empty()) continue;
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        expectMaximumFlow(graph, dice);
        if (HasFailure()) return;
    }
}

}  // namespace
