// The same graphs in this library and in those it is measured against, behind one interface: made from an
// edge array, with the nodes in the order of their numbers.
#pragma once

#include <cstddef>
#include <memory>
#include <type_traits>
#include <utility>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "rv/foundation/graph.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/adjacency_list.hpp>
#endif

namespace bench {

inline void addEdges(RVGraph& graph, const std::vector<RVNode*>& nodes, const EdgeArray& array) {
    for (const auto& [source, target] : array.edges) {
        graph.addEdge(nodes[static_cast<std::size_t>(source)], nodes[static_cast<std::size_t>(target)], 0);
    }
}

// Adds nodes and edges to a graph, in the order of their numbers, and gives the nodes.
inline std::vector<RVNode*> build(RVGraph& graph, const EdgeArray& array) {
    std::vector<RVNode*> nodes(static_cast<std::size_t>(array.nodes));
    for (RVNode*& node : nodes) node = graph.addNode(0);
    addEdges(graph, nodes, array);
    return nodes;
}

struct RvGraph {
    static constexpr const char* kName = "rv";

    explicit RvGraph(const EdgeArray& array)
        : graph(std::make_unique<RVGraph>(&factory)), nodes(build(*graph, array)) {}

    void forgetNodes() { std::vector<RVNode*>().swap(nodes); }
    template <class Input>
    void setCosts(Input& input, const std::vector<int>& costs) const {
        auto cost = costs.begin();
        for (RVEdge* edge : *graph->pEdgeList()) input.cost(edge, *cost++);
    }
    // Leaves the graph as it was, but what is known about it is out of date.
    void change() const { graph->discardEdge(graph->addEdge(nodes.front(), nodes.back(), 0)); }
    // Of a question about the graph: as it is, or cold, when it has just changed.
    template <class Work>
    void measure(benchmark::State& state, const char* unit, double items, bool isCold, Work work) const {
        measureRounds(state, unit, items, [&] {
            if (isCold) change();
            return secondsOf(work);
        });
    }

    RVAFactory factory;
    std::unique_ptr<RVGraph> graph;
    std::vector<RVNode*> nodes;
};

#ifdef RV_BENCH_BOOST

template <class Selector, class NodeProperty = boost::no_property>
struct BoostGraph {
    using Graph = boost::adjacency_list<Selector, Selector, boost::bidirectionalS, NodeProperty>;
    using Node = typename boost::graph_traits<Graph>::vertex_descriptor;
    using Edge = typename boost::graph_traits<Graph>::edge_descriptor;

    explicit BoostGraph(const EdgeArray& array) {
        nodes.reserve(static_cast<std::size_t>(array.nodes));
        for (int i = 0; i < array.nodes; ++i) {
            if constexpr (std::is_same_v<NodeProperty, boost::no_property>) {
                nodes.push_back(boost::add_vertex(graph));
            } else {
                nodes.push_back(boost::add_vertex(NodeProperty(static_cast<std::size_t>(i)), graph));
            }
        }
        for (const auto& [source, target] : array.edges) {
            boost::add_edge(nodes[static_cast<std::size_t>(source)], nodes[static_cast<std::size_t>(target)],
                            graph);
        }
    }

    void forgetNodes() { std::vector<Node>().swap(nodes); }

    Graph graph;
    std::vector<Node> nodes;
};

struct BoostListGraph : BoostGraph<boost::listS> {
    static constexpr const char* kName = "boost_listS";
    using BoostGraph::BoostGraph;
};
struct BoostVecGraph : BoostGraph<boost::vecS> {
    static constexpr const char* kName = "boost_vecS";
    using BoostGraph::BoostGraph;
};
// With the index that Boost's algorithms need of a graph whose nodes are not numbers.
struct BoostIndexedGraph : BoostGraph<boost::listS, boost::property<boost::vertex_index_t, std::size_t>> {
    static constexpr const char* kName = "boost_listS";
    using BoostGraph::BoostGraph;
};

// Graphs for algorithms: nodes with their numbers, edges with a weight.
template <class Selector, class Direction>
using WeightedBoost =
    boost::adjacency_list<Selector, Selector, Direction, boost::property<boost::vertex_index_t, std::size_t>,
                          boost::property<boost::edge_weight_t, int>>;

// Without weights all are 0.
template <class Graph>
Graph buildBoost(const EdgeArray& array, const std::vector<int>& weights = {}) {
    Graph graph;
    std::vector<typename boost::graph_traits<Graph>::vertex_descriptor> nodes;
    for (int i = 0; i < array.nodes; ++i) {
        nodes.push_back(boost::add_vertex(
            boost::property<boost::vertex_index_t, std::size_t>(static_cast<std::size_t>(i)), graph));
    }
    for (std::size_t i = 0; i < array.edges.size(); ++i) {
        const auto [source, target] = array.edges[i];
        boost::add_edge(nodes[static_cast<std::size_t>(source)], nodes[static_cast<std::size_t>(target)],
                        boost::property<boost::edge_weight_t, int>(weights.empty() ? 0 : weights[i]), graph);
    }
    return graph;
}

// Results by node number.
template <class Graph, class T>
class ByNode {
public:
    ByNode(const Graph& graph, T initial)
        : m_values(boost::num_vertices(graph), initial), m_index(boost::get(boost::vertex_index, graph)) {}
    auto map() { return boost::make_iterator_property_map(m_values.begin(), m_index); }

private:
    std::vector<T> m_values;
    typename boost::property_map<Graph, boost::vertex_index_t>::const_type m_index;
};

#endif

}  // namespace bench
