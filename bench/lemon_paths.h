// LEMON's shortest paths, on its own graph without a copy; compiled as C++17 (see lemon_peer.h).
#pragma once

#include <memory>
#include <vector>

#include "bench_graphs.h"

namespace bench {

class LemonPaths {
public:
    LemonPaths(const EdgeArray& array, const std::vector<int>& costs);
    ~LemonPaths();

    // From node 0 to all, with distances and predecessors by node.
    void dijkstra();
    // For each pair a search that ends when the second node is reached. Gives the edges of all paths.
    long dijkstra(const Pairs& pairs);

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_graph;
};

}  // namespace bench
