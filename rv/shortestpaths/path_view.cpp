#include "rv/shortestpaths/path_view.h"

#include <algorithm>

namespace rv {

PathView::PathView(const RVPathCostInputData& input)
    : m_flat(snapshotOf(input.pAssociatedGraph())), m_isUndirected(input.undirected() != 0) {
    const RVGraph* graph = input.pAssociatedGraph();
    m_costs.byEdge = input.edgeCosts().values(graph, m_gathered[0]);
    m_nodeCosts = input.nodeCosts().values(graph, m_gathered[1]);
    if (m_isUndirected) return;
    m_directed = input.edgesDirected().values(graph, m_gathered[2]);
    m_isMixed = std::ranges::find(m_directed, 0) != m_directed.end();
}

SortedArcs PathView::undirectedBack(bool inGraphOrder) const {
    std::vector<Index> edges;
    if (hasUndirectedEdges()) {
        m_flat->order().forEachEdge([&](Index edge) {
            if (isUndirected(edge)) edges.push_back(edge);
        });
    }
    if (!inGraphOrder) std::ranges::reverse(edges);
    return m_flat->backArcs(edges);
}

// Parallel edges are such of one direction, and an arc back is an edge of its own. Where all edges are
// undirected, those of both directions are parallel, and the source of the first of them in graph order looks
// at its out-edges, then at its in-edges.
PathView::Kept PathView::cheapestOfParallels(const Arcs& back) const {
    Kept kept;
    kept.out.resize(m_flat->order().ends.size());
    if (m_isUndirected) {
        keepCheapest(m_flat->out(), m_flat->in(), kept);
        kept.back = kept.out;
    } else {
        kept.back.resize(kept.out.size());
        keepCheapest(m_flat->out(), back, kept);
    }
    return kept;
}

void PathView::keepCheapest(const Arcs& first, const Arcs& second, Kept& kept) const {
    struct Group {
        Index node = kNoIndex;  // whose arcs these are
        Index best = kNoIndex;
        bool isBack = false;
        Index firstEdge = kNoIndex;  // in graph order
    };
    std::vector<Group> groups(first.nodeLimit());  // by target
    std::vector<Index> ranks(m_flat->order().ends.size());
    Index rank = 0;
    m_flat->order().forEachEdge([&](Index edge) { ranks[edge] = rank++; });
    std::vector<Index> targets;
    for (Index node = 0; node < first.nodeLimit(); ++node) {
        targets.clear();
        for (const bool isBack : {false, true}) {
            const Arcs& arcs = isBack ? second : first;
            for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
                const Index edge = arcs.edges[arc];
                Group& group = groups[arcs.targets[arc]];
                if (arcs.targets[arc] == node) continue;
                if (group.node != node) {
                    group = {node, edge, isBack, edge};
                    targets.push_back(arcs.targets[arc]);
                    continue;
                }
                if (cost(edge) < cost(group.best)) {
                    group.best = edge;
                    group.isBack = isBack;
                }
                if (ranks[edge] < ranks[group.firstEdge]) group.firstEdge = edge;
            }
        }
        for (const Index target : targets) {
            const Group& group = groups[target];
            if (m_isUndirected && m_flat->order().ends[group.firstEdge].source != node) continue;
            (group.isBack && !m_isUndirected ? kept.back : kept.out)[group.best] = true;
        }
    }
}

}  // namespace rv
