#ifdef RV_BENCH_LEMON

#include "lemon_paths.h"

#include <lemon/dijkstra.h>
#include <lemon/list_graph.h>

namespace bench {

using lemon::ListDigraph;

struct LemonPaths::Implementation {
    ListDigraph graph;
    ListDigraph::ArcMap<int> costs{graph};
    std::vector<ListDigraph::Node> nodes;
};

LemonPaths::LemonPaths(const EdgeArray& array, const std::vector<int>& costs)
    : m_graph(std::make_unique<Implementation>()) {
    std::vector<ListDigraph::Node>& nodes = m_graph->nodes;
    for (int i = 0; i < array.nodes; ++i) nodes.push_back(m_graph->graph.addNode());
    for (std::size_t i = 0; i < array.edges.size(); ++i) {
        const auto& [source, target] = array.edges[i];
        m_graph->costs[m_graph->graph.addArc(nodes[static_cast<std::size_t>(source)],
                                             nodes[static_cast<std::size_t>(target)])] = costs[i];
    }
}

LemonPaths::~LemonPaths() = default;

void LemonPaths::dijkstra() {
    lemon::Dijkstra<ListDigraph> search(m_graph->graph, m_graph->costs);
    search.run(m_graph->nodes.front());
}

long LemonPaths::dijkstra(const Pairs& pairs) {
    long edges = 0;
    for (const auto& [from, to] : pairs) {
        lemon::Dijkstra<ListDigraph> search(m_graph->graph, m_graph->costs);
        const ListDigraph::Node end = m_graph->nodes[static_cast<std::size_t>(to)];
        if (search.run(m_graph->nodes[static_cast<std::size_t>(from)], end))
            edges += search.path(end).length();
    }
    return edges;
}

}  // namespace bench

#endif
