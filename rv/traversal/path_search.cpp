#include "rv/traversal/path_search.h"

#include "rv/framework/live_neighbours.h"
#include "rv/traversal/search_view.h"

namespace rv {

namespace {

// Arcs back are those of the edges that come in, or, where all edges are followed both ways, the arcs
// themselves. Where single edges are, the search goes forward only.
bool findInSnapshot(const RVTraversalInputData& input, Index from, Index to, TwoSidedScratch& scratch,
                    Pulse& pulse) {
    const SearchView view(input);
    const Arcs& arcs = view.space().arcs;
    if (input.undirected() != 0) return shortestPath(ArcNeighbours(arcs, arcs), from, to, scratch, pulse);
    if (!view.isMixed()) return shortestPath(ArcNeighbours(arcs, view.flat().in()), from, to, scratch, pulse);
    const Buffer<Index> nowhere(arcs.nodeLimit(), 0);
    return shortestPath(ArcNeighbours(arcs, {nowhere, nowhere, {}, {}}), from, to, scratch, pulse);
}

}  // namespace

// The lists of the graph itself show the same as the snapshot where the first of parallel edges in an
// out-list is the first in the graph, and no edge is followed both ways.
PathSearch::PathSearch(const RVTraversalInputData& input, const RVNode* from, const RVNode* to, Pulse& pulse)
    : m_scratch(input.pAssociatedGraph()) {
    const RVGraph* graph = input.pAssociatedGraph();
    const bool isPlain = GraphAccess::areListsInGraphOrder(graph) && input.undirected() == 0 &&
                         input.edgesDirected().usable() && input.edgesDirected().values(graph).empty();
    if (!isPlain || snapshotForPart(graph) != nullptr) {
        m_isFound = findInSnapshot(input, indexOf(from), indexOf(to), *m_scratch, pulse);
        return;
    }
    m_isFound = shortestPath(LiveNeighbours(graph), indexOf(from), indexOf(to), *m_scratch, pulse);
    noteWalk(graph, static_cast<std::size_t>(m_scratch->steps));
}

}  // namespace rv
