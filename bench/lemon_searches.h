// LEMON's searches and components, on its own graph without a copy; compiled as C++17 (see lemon_peer.h).
#pragma once

#include <memory>

#include "bench_graphs.h"

namespace bench {

class LemonSearches {
public:
    static constexpr const char* kName = "lemon";

    explicit LemonSearches(const EdgeArray& array);
    ~LemonSearches();

    // Each over the whole graph, with results by node.
    void breadthFirst();
    void depthFirst();
    void connected();
    void biconnected();
    void stronglyConnected();

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_graph;
};

}  // namespace bench
