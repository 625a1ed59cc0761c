// The neighbours of nodes over the lists of the graph itself, for searches that touch little of it
// (two_sided.h). Internal to the library, not installed.
#pragma once

#include "rv/foundation/graph_access.h"

namespace rv {

class LiveNeighbours {
public:
    struct Cursor {
        const RVDListCell* next;
        const RVEdge* edge;
        bool isForward;
    };

    explicit LiveNeighbours(const RVGraph* graph) : m_graph(graph), m_nodes(GraphAccess::nodes(graph)) {}

    Index nodeLimit() const { return nodeLimitOf(m_graph); }
    Cursor forward(Index node) const { return {m_nodes[node]->pOutEdgeList()->pFirstCell(), nullptr, true}; }
    Cursor backward(Index node) const { return {m_nodes[node]->pInEdgeList()->pFirstCell(), nullptr, false}; }
    Index next(Cursor& at) const {
        if (at.next == nullptr) return kNoIndex;
        at.edge = static_cast<const RVEdge*>(at.next->pObject());
        at.next = at.next->pNextCell();
        return indexOf(at.isForward ? at.edge->pTargetNode() : at.edge->pSourceNode());
    }
    Index edge(const Cursor& at) const { return indexOf(at.edge); }
    Index forwardDegree(Index node) const { return static_cast<Index>(m_nodes[node]->outDegree()); }
    Index backwardDegree(Index node) const { return static_cast<Index>(m_nodes[node]->inDegree()); }

private:
    const RVGraph* m_graph;
    std::span<RVNode* const> m_nodes;
};

}  // namespace rv
