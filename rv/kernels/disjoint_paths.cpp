// For node-disjoint paths every node is split into an entry, to which its in-edges lead, and an exit, which
// its out-edges leave, joined by an edge that carries at most 1. That is not the same as a capacity of the
// node, under which shortest paths are others.

#include "rv/kernels/disjoint_paths.h"

#include <algorithm>
#include <numeric>

#include "rv/kernels/blocking_flow.h"

namespace rv {

namespace {

// Node v is split into an entry and an exit, joined by edge v; an arc of the graph is the edge with the arc's
// place added to the number of nodes. In-edges stand in the order of the nodes, then of their out-lists.
class SplitGraph {
public:
    explicit SplitGraph(const FlatGraph& graph)
        : m_nodes(graph.out().nodeLimit()),
          m_edges(m_nodes + static_cast<Index>(graph.out().targets.size())) {
        const Arcs& arcs = graph.out();
        for (ArcLists* lists : {&m_out, &m_in}) {
            for (Buffer<Index>* byNode : {&lists->first, &lists->last})
                byNode->resize(2 * std::size_t{m_nodes});
            for (Buffer<Index>* byArc : {&lists->targets, &lists->edges}) byArc->resize(m_edges);
        }
        std::iota(m_out.edges.begin(), m_out.edges.end(), Index{0});
        for (Index node = 0; node < m_nodes; ++node) {
            const Index entry = entryOf(node);
            const Index exit = exitOf(node);
            m_out.first[entry] = m_in.first[exit] = node;
            m_out.last[entry] = m_in.last[exit] = node + 1;
            m_out.targets[node] = exit;
            m_in.targets[node] = entry;
            m_in.edges[node] = node;
            m_out.first[exit] = m_nodes + arcs.first[node];
            m_out.last[exit] = m_nodes + arcs.last[node];
        }
        for (Index edge = m_nodes; edge < m_edges; ++edge)
            m_out.targets[edge] = entryOf(arcs.targets[edge - m_nodes]);
        listInEdges(graph);
    }

    FlowNetwork network(Index start, Index finish) const {
        return {m_out.arcs(), m_in.arcs(), m_edges, exitOf(start), entryOf(finish), {}, {}};
    }
    Index edgeOfArc(Index arc) const { return m_nodes + arc; }

private:
    struct ArcLists {
        Arcs arcs() const { return {first, last, targets, edges}; }
        Buffer<Index> first;
        Buffer<Index> last;
        Buffer<Index> targets;
        Buffer<Index> edges;
    };

    static constexpr Index entryOf(Index node) { return 2 * node; }
    static constexpr Index exitOf(Index node) { return 2 * node + 1; }

    void listInEdges(const FlatGraph& graph) {
        Index begin = m_nodes;
        for (Index node = 0; node < m_nodes; ++node) {
            const Index entry = entryOf(node);
            m_in.first[entry] = m_in.last[entry] = begin;
            begin += graph.in().degree(node);
        }
        graph.order().forEachNode([&](Index node) {
            const Index exit = exitOf(node);
            for (Index edge = m_out.first[exit]; edge < m_out.last[exit]; ++edge) {
                const Index place = m_in.last[m_out.targets[edge]]++;
                m_in.targets[place] = exit;
                m_in.edges[place] = edge;
            }
        });
    }

    Index m_nodes;
    Index m_edges;
    ArcLists m_out;
    ArcLists m_in;
};

// By unit flows, of which flowOf(arc) tells whether there is one on an arc.
template <class FlowOf>
EdgePaths takeApart(const Arcs& arcs, Index start, Index finish, std::int64_t count, FlowOf flowOf) {
    EdgePaths paths;
    Buffer<Index> next(arcs.first.begin(), arcs.first.end());  // by node the arc that is looked at next
    for (; count > 0; --count) {
        Index node = start;
        do {
            Index& arc = next[node];
            while (flowOf(arc) == 0) ++arc;
            paths.edges.push_back(arcs.edges[arc]);
            node = arcs.targets[arc++];
        } while (node != finish);
        paths.begins.push_back(static_cast<Index>(paths.edges.size()));
    }
    return paths;
}

MaximumFlow unitFlow(FlowNetwork network, Pulse& pulse) {
    const Buffer<int> capacities(network.edgeLimit, 1);
    network.edgeCapacities = capacities;
    return maximumFlow(network, pulse);
}

}  // namespace

EdgePaths edgeDisjointPaths(const FlatGraph& graph, Index start, Index finish, Pulse& pulse) {
    const MaximumFlow flow = unitFlow(flowNetworkOf(graph, start, finish), pulse);
    const Arcs& arcs = graph.out();
    return takeApart(arcs, start, finish, flow.total, [&](Index arc) { return flow.flows[arcs.edges[arc]]; });
}

EdgePaths nodeDisjointPaths(const FlatGraph& graph, Index start, Index finish, Pulse& pulse) {
    const SplitGraph split(graph);
    const MaximumFlow flow = unitFlow(split.network(start, finish), pulse);
    return takeApart(graph.out(), start, finish, flow.total,
                     [&](Index arc) { return flow.flows[split.edgeOfArc(arc)]; });
}

}  // namespace rv
