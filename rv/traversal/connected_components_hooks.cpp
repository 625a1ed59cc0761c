// What subclasses run on: breadth-first search over the undirected graph, with the counter of nodes turned
// into one of components.
//
// Invariant: the counter rises whenever a new start is asked for and not when a node is reached, so all nodes
// of the k-th component found have number k + 1. Isolated nodes are reached after one more such request and
// all have the same number, the final one.

#include <cstddef>
#include <vector>

#include "rv/traversal/connected_components.h"

int RVConnectedComponentsAlgorithm::directed() const { return 0; }

void RVConnectedComponentsAlgorithm::parseInputData() {}

RVNode* RVConnectedComponentsAlgorithm::findStartNode() { return nullptr; }

RVEdge* RVConnectedComponentsAlgorithm::findStartEdge() {
    RVTraversalInternalData* data = pTraversalInternalData();
    data->traversalOrderNumber(data->traversalOrderNumber() + 1);
    return RVBreadthFirstSearchAlgorithm::findStartEdge();
}

void RVConnectedComponentsAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalInternalData* data = pTraversalInternalData();
    const bool isNew = data->orderNumber(node) == 0;
    RVBreadthFirstSearchAlgorithm::visitNodeAfterTraverse(node, edge);
    if (isNew) data->traversalOrderNumber(data->traversalOrderNumber() - 1);
}

void RVConnectedComponentsAlgorithm::generateOutputData() {
    const RVTraversalInternalData* data = pTraversalInternalData();
    auto* output = RVConnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());

    std::vector<RVNodeDList*> components;
    const auto put = [&](RVNode* node, int number) {
        if (number < 1) return;  // not reached by a search that was ended before
        RVNode* original = data->pOriginalNode(node);
        components[static_cast<std::size_t>(number - 1)]->appendNode(original);
        output->componentNumber(original, number);
    };
    const RVNodeDList* isolated = data->pDisconnectedNodeList();
    const int last = data->traversalOrderNumber();
    for (int i = last + isolated->length() - 2; i > 0; --i) components.push_back(output->addComponent());
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) put(node, data->orderNumber(node) - 1);
    int number = last - 1;
    for (RVNode* node : *isolated) put(node, number++);
}
