#ifdef RV_BENCH_LEMON

#include "lemon_searches.h"

#include <lemon/adaptors.h>
#include <lemon/bfs.h>
#include <lemon/connectivity.h>
#include <lemon/dfs.h>
#include <lemon/dijkstra.h>
#include <lemon/list_graph.h>

#include <algorithm>
#include <vector>

namespace bench {

using lemon::INVALID;
using lemon::ListDigraph;
using Node = ListDigraph::Node;
using Arc = ListDigraph::Arc;
using NodeList = std::vector<Node>;
using ArcList = std::vector<Arc>;

struct LemonSearches::Implementation {
    ListDigraph graph;
    ListDigraph::ArcMap<int> costs{graph};
    NodeList nodes;
};

LemonSearches::LemonSearches(const EdgeArray& array) : m_graph(std::make_unique<Implementation>()) {
    auto& [graph, costs, nodes] = *m_graph;
    for (int i = 0; i < array.nodes; ++i) nodes.push_back(graph.addNode());
    const std::vector<int> costOf = randomCosts(array.size());
    for (std::size_t i = 0; i < array.edges.size(); ++i) {
        const auto& [source, target] = array.edges[i];
        costs[graph.addArc(nodes[static_cast<std::size_t>(source)],
                           nodes[static_cast<std::size_t>(target)])] = costOf[i];
    }
}

LemonSearches::~LemonSearches() = default;

namespace {

struct BreadthNumbers : lemon::BfsVisitor<ListDigraph> {
    explicit BreadthNumbers(const ListDigraph& graph) : numbers(graph) {}
    void reach(const Node& node) {
        order.push_back(node);
        numbers[node] = static_cast<int>(order.size());
    }
    ListDigraph::NodeMap<int> numbers;
    NodeList order;
};

enum class Kind : char { tree, forward, back, cross };

struct DepthNumbers : lemon::DfsVisitor<ListDigraph> {
    explicit DepthNumbers(const ListDigraph& g)
        : graph(g), discovered(g), completed(g, 0), parents(g, INVALID), kinds(g) {}
    void reach(const Node& node) {
        order.push_back(node);
        discovered[node] = static_cast<int>(order.size());
    }
    void leave(const Node& node) { completed[node] = ++lastCompleted; }
    void discover(const Arc& arc) {
        parents[graph.target(arc)] = graph.source(arc);
        kinds[arc] = Kind::tree;
    }
    void examine(const Arc& arc) {
        const Node target = graph.target(arc);
        kinds[arc] = completed[target] == 0                               ? Kind::back
                     : discovered[target] > discovered[graph.source(arc)] ? Kind::forward
                                                                          : Kind::cross;
    }
    const ListDigraph& graph;
    ListDigraph::NodeMap<int> discovered;
    ListDigraph::NodeMap<int> completed;
    ListDigraph::NodeMap<Node> parents;
    ListDigraph::ArcMap<Kind> kinds;
    NodeList order;
    int lastCompleted = 0;
};

template <class Search, class Visitor>
long numberNodes(const ListDigraph& graph) {
    Visitor visitor(graph);
    Search(graph, visitor).run();
    return static_cast<long>(visitor.order.size());
}

std::vector<NodeList> listNodes(const ListDigraph& graph, const ListDigraph::NodeMap<int>& components,
                                int count) {
    std::vector<NodeList> lists(static_cast<std::size_t>(count));
    for (ListDigraph::NodeIt node(graph); node != INVALID; ++node)
        lists[static_cast<std::size_t>(components[node])].push_back(node);
    return lists;
}

}  // namespace

long LemonSearches::breadthFirst(const Pairs&) {
    return numberNodes<lemon::BfsVisit<ListDigraph, BreadthNumbers>, BreadthNumbers>(m_graph->graph);
}

long LemonSearches::depthFirst(const Pairs&) {
    return numberNodes<lemon::DfsVisit<ListDigraph, DepthNumbers>, DepthNumbers>(m_graph->graph);
}

long LemonSearches::connected(const Pairs&) {
    const ListDigraph& graph = m_graph->graph;
    const lemon::Undirector<const ListDigraph> undirected(graph);
    ListDigraph::NodeMap<int> components(graph);
    const int count = lemon::connectedComponents(undirected, components);
    return static_cast<long>(listNodes(graph, components, count).size());
}

// LEMON makes a block of each loop; it has no nodes here.
long LemonSearches::biconnected(const Pairs&) {
    const ListDigraph& graph = m_graph->graph;
    const lemon::Undirector<const ListDigraph> undirected(graph);
    ListDigraph::ArcMap<int> blocks(graph);
    std::vector<NodeList> lists(
        static_cast<std::size_t>(lemon::biNodeConnectedComponents(undirected, blocks)));
    for (ListDigraph::ArcIt arc(graph); arc != INVALID; ++arc) {
        if (graph.source(arc) == graph.target(arc)) continue;
        NodeList& nodes = lists[static_cast<std::size_t>(blocks[arc])];
        nodes.push_back(graph.source(arc));
        nodes.push_back(graph.target(arc));
    }
    long count = 0;
    ListDigraph::NodeMap<const NodeList*> latest(graph, nullptr);
    ListDigraph::NodeMap<int> memberships(graph, 0);
    for (NodeList& nodes : lists) {
        std::size_t kept = 0;
        for (const Node node : nodes) {
            if (latest[node] == &nodes) continue;
            latest[node] = &nodes;
            ++memberships[node];
            nodes[kept++] = node;
        }
        nodes.resize(kept);
        count += kept > 0 ? 1 : 0;
    }
    NodeList joints;
    for (ListDigraph::NodeIt node(graph); node != INVALID; ++node) {
        if (memberships[node] > 1) joints.push_back(node);
        if (memberships[node] > 0) continue;
        lists.push_back({node});
        ++count;
    }
    return count + static_cast<long>(joints.size());
}

long LemonSearches::stronglyConnected(const Pairs&) {
    const ListDigraph& graph = m_graph->graph;
    ListDigraph::NodeMap<int> components(graph);
    const int count = lemon::stronglyConnectedComponents(graph, components);
    const std::vector<NodeList> nodes = listNodes(graph, components, count);
    std::vector<ArcList> arcs(nodes.size());
    for (ListDigraph::ArcIt arc(graph); arc != INVALID; ++arc) {
        const int component = components[graph.source(arc)];
        if (component == components[graph.target(arc)])
            arcs[static_cast<std::size_t>(component)].push_back(arc);
    }
    return static_cast<long>(nodes.size() + arcs.size());
}

long LemonSearches::topologicalSort(const Pairs&) {
    const ListDigraph& graph = m_graph->graph;
    ListDigraph::NodeMap<int> numbers(graph);
    NodeList order;
    if (!lemon::checkedTopologicalSort(graph, numbers)) return 0;
    order.resize(m_graph->nodes.size());
    for (ListDigraph::NodeIt node(graph); node != INVALID; ++node)
        order[static_cast<std::size_t>(numbers[node])] = node;
    return static_cast<long>(order.size());
}

long LemonSearches::acyclic(const Pairs&) { return lemon::dag(m_graph->graph) ? 1 : 0; }

long LemonSearches::pathExists(const Pairs& pairs) {
    long found = 0;
    lemon::Bfs<ListDigraph> search(m_graph->graph);
    for (const auto& [from, to] : pairs) {
        const Node source = m_graph->nodes[static_cast<std::size_t>(from)];
        const Node target = m_graph->nodes[static_cast<std::size_t>(to)];
        NodeList visited;
        ArcList path;
        search.init();
        search.addSource(source);
        bool isReached = source == target;
        while (!isReached && !search.emptyQueue())
            visited.push_back(search.processNextNode(target, isReached));
        if (isReached) {
            visited.clear();
            for (Node node = target; node != source; node = search.predNode(node))
                path.push_back(search.predArc(node));
            std::reverse(path.begin(), path.end());
        }
        found += static_cast<long>(visited.size() + path.size());
    }
    return found;
}

long LemonSearches::reachable(const Pairs& pairs) {
    long found = 0;
    lemon::Dijkstra<ListDigraph> search(m_graph->graph, m_graph->costs);
    for (const auto& pair : pairs) {
        NodeList nodes;
        search.init();
        search.addSource(m_graph->nodes[static_cast<std::size_t>(pair.first)]);
        while (!search.emptyQueue() && search.currentDist(search.nextNode()) <= kRange)
            nodes.push_back(search.processNextNode());
        found += static_cast<long>(nodes.size());
    }
    return found;
}

}  // namespace bench

#endif
