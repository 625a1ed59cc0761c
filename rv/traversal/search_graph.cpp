#include "rv/traversal/search_graph.h"

#include <numeric>

#include "rv/foundation/graph_access.h"

namespace rv {

void SearchGraph::Chains::add(Index owner, RVEdge* edge) {
    if (owner >= m_ends.size()) m_ends.resize(std::size_t{owner} + 1);
    ChainEnds& ends = m_ends[owner];
    const auto link = static_cast<Index>(m_links.size());
    (ends.first == kNone ? ends.first : m_links[ends.last].next) = link;
    ends.last = link;
    m_links.push_back({edge, kNone});
}

SearchGraph SearchGraph::of(const RVTraversalInputData& input) {
    const RVGraph* graph = input.pAssociatedGraph();
    if (input.undirected() != 0) return undirected(graph);
    std::vector<RVEdge*> twoWayEdges;
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (input.undirected(edge) != 0) twoWayEdges.push_back(edge);
    }
    return {graph, true, twoWayEdges};
}

// A node's out-edges are those of the caller, in the caller's order, and then the reverse ones in the order
// in which they would be added: for single undirected edges the order of the edges, in an undirected search
// its reverse.
SearchGraph::SearchGraph(const RVGraph* graph, bool directed, const std::vector<RVEdge*>& twoWayEdges)
    : m_places(static_cast<std::size_t>(graph->nodeIndexLimit())) {
    m_nodes.reserve(static_cast<std::size_t>(graph->numberOfNodes()));
    for (RVNode* node : *graph->pNodeList()) {
        m_places[placeOf(node)] = size();
        m_nodes.push_back(node);
    }

    std::vector<Ends> ends;  // by number of the edge
    const std::size_t most = static_cast<std::size_t>(graph->numberOfEdges()) + twoWayEdges.size();
    ends.reserve(most);
    m_edges.reserve(most);
    const auto add = [&](RVEdge* edge, const Ends& itsEnds) {
        m_edges.push_back(edge);
        ends.push_back(itsEnds);
    };
    for (RVEdge* edge : *graph->pEdgeList()) {
        const Ends its = endsOf(edge);
        its.source == its.target ? m_loops.add(its.source, edge) : add(edge, its);
    }
    const std::size_t owned = m_edges.size();
    for (RVEdge* edge : twoWayEdges) {
        const Ends its = endsOf(edge);
        if (its.source != its.target) add(edge, {its.target, its.source});
    }

    const std::vector<Index> representative = representatives(ends, directed);
    std::vector<Index> kept;  // in the order of the out-lists
    kept.reserve(directed ? ends.size() : 2 * ends.size());
    const auto keep = [&](Index edge) {
        if (representative[edge] == edge) {
            kept.push_back(edge);
        } else {
            m_parallels.add(representative[edge], m_edges[edge]);
        }
    };
    for (Index edge = 0; edge < ends.size(); ++edge) {
        if (representative[edge] == edge) m_sources.push_back(ends[edge].source);
    }
    if (GraphAccess::areListsInGraphOrder(graph)) {
        for (Index edge = 0; edge < owned; ++edge) keep(edge);
    } else {
        std::vector<Index> numbers(static_cast<std::size_t>(graph->edgeIndexLimit()), kNone);
        for (Index edge = 0; edge < owned; ++edge) numbers[placeOf(m_edges[edge])] = edge;
        for (const RVNode* node : m_nodes) {
            for (const RVEdge* edge : *node->pOutEdgeList()) {
                if (numbers[placeOf(edge)] != kNone) keep(numbers[placeOf(edge)]);
            }
        }
    }
    for (auto edge = static_cast<Index>(owned); edge < ends.size(); ++edge) keep(edge);
    if (!directed) {
        for (auto edge = static_cast<Index>(owned); edge-- > 0;) {
            if (representative[edge] != edge) continue;
            kept.push_back(static_cast<Index>(m_edges.size()));
            add(m_edges[edge], {ends[edge].target, ends[edge].source});
        }
    }

    m_begins.resize(m_nodes.size() + 2);  // one place ahead while they are filled
    m_inDegrees.resize(m_nodes.size());
    for (const Index edge : kept) {
        ++m_begins[ends[edge].source + 2];
        ++m_inDegrees[ends[edge].target];
    }
    std::partial_sum(m_begins.begin(), m_begins.end(), m_begins.begin());
    m_outEdges.resize(kept.size());
    for (const Index edge : kept) m_outEdges[m_begins[ends[edge].source + 1]++] = {ends[edge].target, edge};
}

// By edge the first one parallel to it, in an undirected search whatever their directions. One walk over the
// edges of each node, in the undirected case over those to nodes behind it.
std::vector<SearchGraph::Index> SearchGraph::representatives(const std::vector<Ends>& ends,
                                                             bool directed) const {
    const auto inOrder = [&](const Ends& its) {
        return directed || its.source < its.target ? its : Ends{its.target, its.source};
    };
    std::vector<Index> begins(m_nodes.size() + 2);
    for (const Ends& its : ends) ++begins[inOrder(its).source + 2];
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    std::vector<OutEdge> edges(ends.size());
    for (Index edge = 0; edge < ends.size(); ++edge) {
        const Ends its = inOrder(ends[edge]);
        edges[begins[its.source + 1]++] = {its.target, edge};
    }

    std::vector<Index> first(ends.size());
    std::vector<OutEdge> joined(m_nodes.size(),
                                {kNone, kNone});  // from which node last, and by which edge first
    for (Index node = 0; node < size(); ++node) {
        for (Index i = begins[node]; i < begins[node + 1]; ++i) {
            OutEdge& last = joined[edges[i].target];
            if (last.target != node) last = {node, edges[i].edge};
            first[edges[i].edge] = last.edge;
        }
    }
    return first;
}

// A counting sort of the nodes that are not isolated.
std::vector<SearchGraph::Index> SearchGraph::nodesByInDegree() const {
    std::vector<Index> begins(1);
    const auto forEachNode = [&](auto f) {
        for (Index node = 0; node < size(); ++node) {
            if (!isIsolated(node)) f(node, m_inDegrees[node]);
        }
    };
    forEachNode([&](Index, Index degree) {
        if (degree + 2 > begins.size()) begins.resize(std::size_t{degree} + 2);
        ++begins[degree + 1];
    });
    std::partial_sum(begins.begin(), begins.end(), begins.begin());
    std::vector<Index> nodes(begins.back());
    forEachNode([&](Index node, Index degree) { nodes[begins[degree]++] = node; });
    return nodes;
}

}  // namespace rv
