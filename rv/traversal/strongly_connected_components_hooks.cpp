// What subclasses run on: path-based strong components (Gabow 2000) on the completion hook of the depth-first
// search.
//
// Invariant: the unfinished stack holds every discovered node without a component, in discovery order; the
// root stack is a subsequence of it. All unfinished nodes from one root up to the next reach one another. A
// node that completes while it is the top root closes a component: itself and all above it.

#include "rv/traversal/strongly_connected_components.h"

int RVStronglyConnectedComponentsAlgorithm::directed() const { return 1; }

void RVStronglyConnectedComponentsAlgorithm::parseInputData() {}

RVAlgorithmData* RVStronglyConnectedComponentsAlgorithm::newInternalData() {
    return new RVStronglyConnectedComponentsInternalData();
}

void RVStronglyConnectedComponentsAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVStronglyConnectedComponentsInternalData* data = pData();
    const int number = data->orderNumber(node);
    if (number == 0) {
        data->pUnfinishedStack()->prependNode(node);
        data->pRootStack()->prependNode(node);
        data->inUnfinished(node, 1);
    }
    RVDepthFirstSearchAlgorithm::visitNodeAfterTraverse(node, edge);
    if (number == 0 || data->inUnfinished(node) == 0) return;
    RVNodeDList* roots = data->pRootStack();
    while (data->orderNumber(roots->pFirstNode()) > number) roots->discardCell(roots->pFirstCell());
}

void RVStronglyConnectedComponentsAlgorithm::completeNodeVisit(RVNode* node, RVNode* parent) {
    RVDepthFirstSearchAlgorithm::completeNodeVisit(node, parent);
    RVStronglyConnectedComponentsInternalData* data = pData();
    RVNodeDList* roots = data->pRootStack();
    if (roots->pFirstNode() != node) return;
    data->nextComponentNumber(data->nextComponentNumber() + 1);
    RVNodeDList* component = data->addComponent();
    RVNodeDList* stack = data->pUnfinishedStack();
    for (RVNode* top = nullptr; top != node && stack->length() > 0;) {
        top = stack->pFirstNode();
        stack->discardCell(stack->pFirstCell());
        data->inUnfinished(top, 0);
        component->appendNode(top);
    }
    roots->discardCell(roots->pFirstCell());
}

void RVStronglyConnectedComponentsAlgorithm::generateOutputData() {
    const RVStronglyConnectedComponentsInternalData* data = pData();
    auto* output = RVStronglyConnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    int number = 0;
    for (RVDListIter it(data->pComponentList()); it; it++) {
        const RVNodeDList& nodes = *RVNodeDList::castDown(it.pObject());
        RVNodeDList* component = output->addComponent();
        ++number;
        for (RVNode* node : nodes) {
            RVNode* original = data->pOriginalNode(node);
            component->appendNode(original);
            output->componentNumber(original, number);
        }
        RVEdgeDList& edges = *output->addEdgeComponent();
        nodes.length() > 1 ? createEdgeList(nodes, edges) : handleReflexiveEdges(nodes, edges);
    }
}

void RVStronglyConnectedComponentsAlgorithm::createEdgeList(const RVNodeDList& componentNodes,
                                                            RVEdgeDList& edges) {
    RVStronglyConnectedComponentsInternalData* data = pData();
    for (RVNode* node : componentNodes) data->touched(node, 1);
    for (RVNode* node : componentNodes) {
        for (RVEdge* edge : *node->pOutEdgeList()) {
            if (data->touched(edge->pTargetNode()) == 0) continue;
            edges.appendEdge(data->pOriginalEdge(edge));
            for (RVEdge* parallel : data->multiEdges(edge)) edges.appendEdge(data->pOriginalEdge(parallel));
        }
        for (RVEdge* loop : data->reflexiveEdges(node)) edges.appendEdge(data->pOriginalEdge(loop));
    }
    for (RVNode* node : componentNodes) data->touched(node, 0);
}

void RVStronglyConnectedComponentsAlgorithm::handleReflexiveEdges(const RVNodeDList& componentNodes,
                                                                  RVEdgeDList& edges) {
    const RVStronglyConnectedComponentsInternalData* data = pData();
    for (RVEdge* loop : data->reflexiveEdges(componentNodes.pFirstNode())) {
        edges.appendEdge(data->pOriginalEdge(loop));
    }
}
