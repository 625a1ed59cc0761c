// What subclasses run on: low points (Hopcroft and Tarjan 1973) on the hooks of an undirected depth-first
// search.
//
// Invariant: the unfinished stack holds every discovered node that is not yet in a block but as the joint of
// blocks below it, in discovery order; a node's low point is the smallest order number seen from it or from a
// completed child. The reverse of a tree edge counts, so a child's low point is at most its parent's number:
// it equals that number exactly when the parent joins the child's block to the rest.

#include "rv/traversal/biconnected_components.h"

int RVBiconnectedComponentsAlgorithm::directed() const { return 0; }

void RVBiconnectedComponentsAlgorithm::parseInputData() {}

RVAlgorithmData* RVBiconnectedComponentsAlgorithm::newInternalData() {
    return new RVBiconnectedComponentsInternalData();
}

void RVBiconnectedComponentsAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVBiconnectedComponentsInternalData* data = pData();
    const int number = data->orderNumber(node);
    if (number == 0) {
        data->pUnfinishedStack()->prependNode(node);
        data->lowptr(node, data->traversalOrderNumber());
    }
    RVDepthFirstSearchAlgorithm::visitNodeAfterTraverse(node, edge);
    if (number != 0 && edge != nullptr && number < data->lowptr(edge->pSourceNode())) {
        data->lowptr(edge->pSourceNode(), number);
    }
}

void RVBiconnectedComponentsAlgorithm::completeNodeVisit(RVNode* node, RVNode* parent) {
    RVDepthFirstSearchAlgorithm::completeNodeVisit(node, parent);
    RVBiconnectedComponentsInternalData* data = pData();
    if (node->degree() == 0) {
        data->nextComponentNumber(data->nextComponentNumber() + 1);
        data->addComponent()->appendNode(node);
    }
    RVNode* joint = data->pParentNode(node);
    if (joint == nullptr) return;
    const int low = data->lowptr(node);
    if (low == data->orderNumber(joint)) closeBlock(node, joint);
    if (data->lowptr(joint) > low) data->lowptr(joint, low);
}

void RVBiconnectedComponentsAlgorithm::closeBlock(RVNode* node, RVNode* joint) {
    RVBiconnectedComponentsInternalData* data = pData();
    data->nextComponentNumber(data->nextComponentNumber() + 1);
    RVNodeDList* block = data->addComponent();
    RVNodeDList* stack = data->pUnfinishedStack();
    for (RVNode* top = nullptr; top != node && stack->length() > 0;) {
        top = stack->pFirstNode();
        stack->discardCell(stack->pFirstCell());
        block->appendNode(top);
    }
    block->appendNode(joint);
    // A root's blocks close one after the other, and only the second one makes it an articulation node.
    const bool joins = data->pParentNode(joint) != nullptr || data->pJoiningRoot() == joint;
    if (data->pParentNode(joint) == nullptr) data->pJoiningRoot(joint);
    if (!joins || data->isArticulationNode(joint) != 0) return;
    data->pArticulationNodeList()->appendNode(joint);
    data->isArticulationNode(joint, 1);
}

void RVBiconnectedComponentsAlgorithm::generateOutputData() {
    const RVBiconnectedComponentsInternalData* data = pData();
    auto* output = RVBiconnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVDListIter it(data->pComponentList()); it; it++) {
        RVNodeDList* block = output->addComponent();
        for (RVNode* node : *RVNodeDList::castDown(it.pObject()))
            block->appendNode(data->pOriginalNode(node));
    }
    for (RVNode* node : *data->pArticulationNodeList()) {
        output->pArticulationNodeList()->appendNode(data->pOriginalNode(node));
    }
}
