// Kahn's method, with the resulting list as its own queue: a node joins the list when the last of its
// in-edges is consumed, and consumes its out-edges when the walk over the list reaches it.

#include "rv/traversal/topological_sort.h"

RV_OBJECT_IMPL(RVTopologicalSortInputData)
RV_OBJECT_IMPL(RVTopologicalSortOutputData)
RV_OBJECT_IMPL(RVNodeExtensionTopologicalSort)
RV_OBJECT_IMPL(RVTopologicalSortAlgorithm)

void RVTopologicalSortOutputData::buildNodeOrderList(RVNodeDList& list) const {
    if (&list == m_nodes.get()) return;
    list.deleteAllCells();
    list.copyAppendList(m_nodes.get());
}

void RVTopologicalSortOutputData::reset() {
    m_nodes->deleteAllCells();
    m_acyclic = 1;
    m_orderNumbers.clear();
}

RVServiceErrorCodeEnum RVTopologicalSortAlgorithm::algorithmBody() {
    RVGraph* graph = pInputData()->pAssociatedGraph();
    auto* output = RVTopologicalSortOutputData::castDown(pOutputData());
    m_inDegrees.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));

    RVNodeDList order;
    for (RVNode* node : *graph->pNodeList()) {
        if (inDegree(node, node->inDegree()) == 0) order.appendNode(node);
    }
    for (const RVNode* node : order) {
        for (const RVEdge* edge : *node->pOutEdgeList()) {
            RVNode* target = edge->pTargetNode();
            const int remaining = inDegree(target);
            if (remaining == 1) {
                order.appendNode(target);
            } else {
                inDegree(target, remaining - 1);
            }
        }
    }

    if (order.length() != graph->numberOfNodes()) {
        output->acyclic(0);
        return RV_NO_ERROR;
    }
    output->acyclic(1);
    output->pNodeList()->copyAppendList(&order);
    int number = 0;
    for (RVNode* node : order) output->orderNumber(node, ++number);
    return RV_NO_ERROR;
}
