// One step of simplification of a graph, kept so that it can be undone.
#pragma once

#include <memory>

#include "rv/foundation/graph.h"

enum RVGraphReductionTypeEnum {
    RVNoReduction = 0,
    RVMultiEdgeReduction = 1,      // parallel edges merged into one
    RVOppositeEdgeReduction = 2,   // two opposite edges cancelled
    RVDegreeTwoNodeReduction = 3,  // a node with one in-edge and one out-edge bridged
};

// Copying leaves the members alone: a copy has the defaults.
class RV_EXPORT RVGraphReductionAction : public RVObject {
    RV_OBJECT(RVGraphReductionAction)

public:
    RVGraphReductionAction();

    RVGraphReductionTypeEnum reductionType() const { return m_reductionType; }
    RVGraphReductionTypeEnum reductionType(RVGraphReductionTypeEnum type) {
        m_reductionType = type;
        return type;
    }
    // The edge that took the place of the old ones; none where there is none. Not owned.
    RVEdge* pNewEdge() const { return m_pNewEdge; }
    RVEdge* pNewEdge(RVEdge* edge) {
        m_pNewEdge = edge;
        return edge;
    }
    // The edges taken out of the graph: all parallel edges in out-edge order; the edge that was a candidate,
    // then the opposite one; the bridged node's in-edge, then its out-edge. The list is owned, its edges are
    // not.
    RVEdgeDList* pOldEdgeList() const { return m_oldEdges.get().get(); }
    // Owns the given list from now on. The list before, unless it is the same, becomes the caller's.
    RVEdgeDList* pOldEdgeList(RVEdgeDList* list);
    // The bridged node; none for other types. Not owned.
    RVNode* pOldNode() const { return m_pOldNode; }
    RVNode* pOldNode(RVNode* node) {
        m_pOldNode = node;
        return node;
    }

private:
    rv::Uncopied<RVGraphReductionTypeEnum> m_reductionType = RVNoReduction;
    rv::Uncopied<RVEdge*> m_pNewEdge = nullptr;
    rv::Uncopied<std::unique_ptr<RVEdgeDList>> m_oldEdges;
    rv::Uncopied<RVNode*> m_pOldNode = nullptr;
};
