#ifdef RV_BENCH_LEMON

#include "lemon_searches.h"

#include <lemon/adaptors.h>
#include <lemon/bfs.h>
#include <lemon/connectivity.h>
#include <lemon/dfs.h>
#include <lemon/list_graph.h>

#include <vector>

namespace bench {

using lemon::ListDigraph;

struct LemonSearches::Implementation {
    ListDigraph graph;
};

LemonSearches::LemonSearches(const EdgeArray& array) : m_graph(std::make_unique<Implementation>()) {
    std::vector<ListDigraph::Node> nodes;
    for (int i = 0; i < array.nodes; ++i) nodes.push_back(m_graph->graph.addNode());
    for (const auto& [source, target] : array.edges) {
        m_graph->graph.addArc(nodes[static_cast<std::size_t>(source)],
                              nodes[static_cast<std::size_t>(target)]);
    }
}

LemonSearches::~LemonSearches() = default;

void LemonSearches::breadthFirst() {
    lemon::Bfs<ListDigraph> search(m_graph->graph);
    search.run();
}

void LemonSearches::depthFirst() {
    lemon::Dfs<ListDigraph> search(m_graph->graph);
    search.run();
}

void LemonSearches::connected() {
    lemon::Undirector<const ListDigraph> undirected(m_graph->graph);
    ListDigraph::NodeMap<int> components(m_graph->graph);
    lemon::connectedComponents(undirected, components);
}

void LemonSearches::biconnected() {
    lemon::Undirector<const ListDigraph> undirected(m_graph->graph);
    ListDigraph::ArcMap<int> components(m_graph->graph);
    lemon::biNodeConnectedComponents(undirected, components);
}

void LemonSearches::stronglyConnected() {
    ListDigraph::NodeMap<int> components(m_graph->graph);
    lemon::stronglyConnectedComponents(m_graph->graph, components);
}

}  // namespace bench

#endif
