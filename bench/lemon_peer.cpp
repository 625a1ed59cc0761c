#ifdef RV_BENCH_LEMON

#include "lemon_peer.h"

#include <lemon/list_graph.h>

#include <cstddef>

namespace bench {

using lemon::INVALID;
using Graph = lemon::ListDigraph;

struct LemonGraph::Implementation {
    Graph graph;
    std::vector<Graph::Node> nodes;
    std::vector<std::pair<int, int>> ends;
};

LemonGraph::LemonGraph(const EdgeArray& array) : m_graph(std::make_unique<Implementation>()) {
    auto& [graph, nodes, ends] = *m_graph;
    nodes.reserve(static_cast<std::size_t>(array.nodes));
    for (int i = 0; i < array.nodes; ++i) nodes.push_back(graph.addNode());
    for (const auto& [source, target] : array.edges) {
        graph.addArc(nodes[static_cast<std::size_t>(source)], nodes[static_cast<std::size_t>(target)]);
    }
}

LemonGraph::~LemonGraph() = default;

void LemonGraph::forgetNodes() { std::vector<Graph::Node>().swap(m_graph->nodes); }

int LemonGraph::countLoops() const {
    const Graph& graph = m_graph->graph;
    int loops = 0;
    for (Graph::NodeIt node(graph); node != INVALID; ++node) {
        for (Graph::OutArcIt arc(graph, node); arc != INVALID; ++arc)
            loops += graph.target(arc) == node ? 1 : 0;
    }
    return loops;
}

// By number, since arcs that change their ends move in the lists that an iterator walks.
void LemonGraph::invertArcs() {
    Graph& graph = m_graph->graph;
    for (int i = 0; i <= graph.maxArcId(); ++i) graph.reverseArc(Graph::arcFromId(i));
}

void LemonGraph::changeSources(const std::vector<int>& order) {
    Graph& graph = m_graph->graph;
    for (int i = 0; i <= graph.maxArcId(); ++i) {
        const Graph::Arc arc = Graph::arcFromId(i);
        const auto source = static_cast<std::size_t>(Graph::id(graph.source(arc)));
        graph.changeSource(arc, m_graph->nodes[static_cast<std::size_t>(order[source])]);
    }
}

void LemonGraph::makeArcsAnew(const std::vector<int>& arcs) {
    auto& [graph, nodes, ends] = *m_graph;
    ends.clear();
    for (int i : arcs) {
        const Graph::Arc arc = Graph::arcFromId(i);
        ends.emplace_back(Graph::id(graph.source(arc)), Graph::id(graph.target(arc)));
        graph.erase(arc);
    }
    for (const auto& [source, target] : ends) {
        graph.addArc(nodes[static_cast<std::size_t>(source)], nodes[static_cast<std::size_t>(target)]);
    }
}

struct LemonCopy::Implementation {
    explicit Implementation(const Graph& from)
        : original(from), nodes(from), arcs(from), originalNodes(graph), originalArcs(graph) {}
    const Graph& original;
    Graph graph;
    Graph::NodeMap<Graph::Node> nodes;
    Graph::ArcMap<Graph::Arc> arcs;
    Graph::NodeMap<Graph::Node> originalNodes;
    Graph::ArcMap<Graph::Arc> originalArcs;
};

LemonCopy::LemonCopy(const LemonGraph& original)
    : m_copy(std::make_unique<Implementation>(original.m_graph->graph)) {}

LemonCopy::~LemonCopy() = default;

void LemonCopy::run() {
    lemon::digraphCopy(m_copy->original, m_copy->graph)
        .nodeRef(m_copy->nodes)
        .arcRef(m_copy->arcs)
        .nodeCrossRef(m_copy->originalNodes)
        .arcCrossRef(m_copy->originalArcs)
        .run();
}

}  // namespace bench

#endif
