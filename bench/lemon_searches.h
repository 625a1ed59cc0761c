// LEMON's answers to the questions of bench_questions.h, on its own graph without a copy; compiled as C++17
// (see lemon_peer.h).
#pragma once

#include <memory>
#include <vector>

#include "bench_graphs.h"

namespace bench {

// Every question writes what this library does: values of nodes and edges in maps, lists in vectors. It gives
// the size of its answer as bench_questions.h counts it. Questions about the whole graph do not look at the
// pairs.
class LemonSearches {
public:
    static constexpr int kRange = 500;

    explicit LemonSearches(const EdgeArray& array);
    ~LemonSearches();

    long breadthFirst(const Pairs&);
    long depthFirst(const Pairs&);
    long connected(const Pairs&);
    long biconnected(const Pairs&);
    long stronglyConnected(const Pairs&);
    long topologicalSort(const Pairs&);
    long acyclic(const Pairs&);
    // From the first to the second node of each pair.
    long pathExists(const Pairs& pairs);
    // Within kRange of the first node of each pair, at random costs.
    long reachable(const Pairs& pairs);

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_graph;
};

}  // namespace bench
