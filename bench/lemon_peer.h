// LEMON's part of the benchmarks. Its maps do not compile as C++20, so its work stands in a source of its
// own, which is compiled as C++17; nothing of LEMON is seen here.
#pragma once

#include <memory>
#include <vector>

#include "bench_graphs.h"

namespace bench {

class LemonGraph {
public:
    static constexpr const char* kName = "lemon";

    explicit LemonGraph(const EdgeArray& array);
    ~LemonGraph();

    // Frees what the graph itself does not need.
    void forgetNodes();
    // Walks all arcs through the out-arcs of the nodes.
    int countLoops() const;
    void invertArcs();
    // Gives every arc from node i the source order[i].
    void changeSources(const std::vector<int>& order);
    // Destroys these arcs, then makes them again.
    void makeArcsAnew(const std::vector<int>& arcs);

private:
    friend class LemonCopy;
    struct Implementation;
    std::unique_ptr<Implementation> m_graph;
};

// A copy, with the mapping of nodes and arcs in both directions.
class LemonCopy {
public:
    explicit LemonCopy(const LemonGraph& original);
    ~LemonCopy();
    void run();

private:
    struct Implementation;
    std::unique_ptr<Implementation> m_copy;
};

}  // namespace bench
