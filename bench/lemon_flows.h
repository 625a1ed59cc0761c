// LEMON's flows and spanning trees, on its own graph without a copy; compiled as C++17 (see lemon_peer.h).
#pragma once

#include <memory>
#include <vector>

#include "bench_graphs.h"

namespace bench {

class LemonFlows {
public:
    // From node 0 to the last one.
    LemonFlows(const EdgeArray& array, const std::vector<int>& capacities, const std::vector<int>& costs);
    ~LemonFlows();

    // Each gives the value of a flow, or the cost.
    long edmondsKarp();
    long preflow();
    long networkSimplex(int flow);
    long kruskal();

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_graph;
};

}  // namespace bench
