#include "rv/cycles/graph_reduction_action.h"

RV_OBJECT_IMPL(RVGraphReductionAction)

RVGraphReductionAction::RVGraphReductionAction() : m_oldEdges(std::make_unique<RVEdgeDList>()) {}

RVEdgeDList* RVGraphReductionAction::pOldEdgeList(RVEdgeDList* list) {
    if (list != m_oldEdges.get().get()) {
        static_cast<void>(m_oldEdges.get().release());
        m_oldEdges.get().reset(list);
    }
    return list;
}
