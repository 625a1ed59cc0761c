#ifdef RV_BENCH_LEMON

#include "lemon_flows.h"

// The next header needs this one before it.
#include <lemon/core.h>
#include <lemon/edmonds_karp.h>
#include <lemon/kruskal.h>
#include <lemon/list_graph.h>
#include <lemon/network_simplex.h>
#include <lemon/preflow.h>

namespace bench {

using lemon::ListDigraph;

struct LemonFlows::Implementation {
    ListDigraph graph;
    ListDigraph::ArcMap<int> capacities{graph};
    ListDigraph::ArcMap<int> costs{graph};
    ListDigraph::Node source;
    ListDigraph::Node sink;
};

LemonFlows::LemonFlows(const EdgeArray& array, const std::vector<int>& capacities,
                       const std::vector<int>& costs)
    : m_graph(std::make_unique<Implementation>()) {
    std::vector<ListDigraph::Node> nodes;
    for (int i = 0; i < array.nodes; ++i) nodes.push_back(m_graph->graph.addNode());
    for (std::size_t i = 0; i < array.edges.size(); ++i) {
        const auto& [source, target] = array.edges[i];
        const ListDigraph::Arc arc = m_graph->graph.addArc(nodes[static_cast<std::size_t>(source)],
                                                           nodes[static_cast<std::size_t>(target)]);
        m_graph->capacities[arc] = capacities[i];
        m_graph->costs[arc] = costs[i];
    }
    m_graph->source = nodes.front();
    m_graph->sink = nodes.back();
}

LemonFlows::~LemonFlows() = default;

long LemonFlows::edmondsKarp() {
    lemon::EdmondsKarp<ListDigraph> flow(m_graph->graph, m_graph->capacities, m_graph->source, m_graph->sink);
    flow.run();
    return flow.flowValue();
}

long LemonFlows::preflow() {
    lemon::Preflow<ListDigraph> flow(m_graph->graph, m_graph->capacities, m_graph->source, m_graph->sink);
    flow.run();
    return flow.flowValue();
}

long LemonFlows::networkSimplex(int amount) {
    lemon::NetworkSimplex<ListDigraph, int, long> flow(m_graph->graph);
    flow.upperMap(m_graph->capacities)
        .costMap(m_graph->costs)
        .stSupply(m_graph->source, m_graph->sink, amount);
    flow.run();
    return flow.totalCost<long>();
}

long LemonFlows::kruskal() {
    ListDigraph::ArcMap<bool> tree(m_graph->graph);
    return lemon::kruskal(m_graph->graph, m_graph->costs, tree);
}

}  // namespace bench

#endif
