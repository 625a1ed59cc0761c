// Breadth-first search over the undirected graph, with the counter of nodes turned into one of components.
//
// Invariant: the counter rises whenever a new start is asked for and not when a node is reached, so all nodes
// of the k-th component found have number k + 1. Isolated nodes are reached after one more such request and
// all have the same number, the final one.
//
// Where no subclass looks on, disjoint sets give the same components: the edges that join two sets are walked
// in graph order, and the first one of a component is the first of its edges in the graph.

#include "rv/traversal/connected_components.h"

#include <cstddef>
#include <utility>
#include <vector>

RV_OBJECT_IMPL(RVConnectedComponentsInputData)
RV_OBJECT_IMPL(RVConnectedComponentsOutputData)
RV_OBJECT_IMPL(RVConnectedComponentsAlgorithm)

void RVConnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVConnectedComponentsOutputData::reset() {
    m_components.clear();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVConnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

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

bool RVConnectedComponentsAlgorithm::worksInArrays() const {
    return isExactly<RVConnectedComponentsAlgorithm>();
}

RVServiceErrorCodeEnum RVConnectedComponentsAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVBreadthFirstSearchAlgorithm::algorithmBody();
    listComponents();
    return RV_NO_ERROR;
}

namespace {

// Sets of nodes, at first of one each, by dense index.
class DisjointSets {
public:
    explicit DisjointSets(int limit) : m_sets(static_cast<std::size_t>(limit), -1) {}

    // The node that stands for a node's set.
    int find(int node) {
        while (at(node) >= 0) {
            const int next = at(node);
            if (at(next) >= 0) at(node) = at(next);
            node = next;
        }
        return node;
    }
    // Whether the two were in different sets.
    bool join(int a, int b) {
        a = find(a);
        b = find(b);
        if (a == b) return false;
        if (at(a) > at(b)) std::swap(a, b);
        at(a) += at(b);
        at(b) = a;
        return true;
    }

private:
    int& at(int node) { return m_sets[static_cast<std::size_t>(node)]; }

    std::vector<int> m_sets;  // a node of the same set, or minus the size of the set
};

}  // namespace

void RVConnectedComponentsAlgorithm::listComponents() {
    RVGraph* graph = pInternalData()->pInputGraph();
    auto* output = RVConnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(graph);

    DisjointSets sets(graph->nodeIndexLimit());
    std::vector<int> joined;  // a node of each edge that joined two sets
    for (const RVEdge* edge : *graph->pEdgeList()) {
        const int source = edge->pSourceNode()->denseIndex();
        if (sets.join(source, edge->pTargetNode()->denseIndex())) joined.push_back(source);
    }

    std::vector<int> numbers(static_cast<std::size_t>(graph->nodeIndexLimit()));  // by what stands for a set
    const auto numberOf = [&](int node) -> int& {
        return numbers[static_cast<std::size_t>(sets.find(node))];
    };
    std::vector<RVNodeDList*> components;
    const auto addComponent = [&] {
        components.push_back(output->addComponent());
        return static_cast<int>(components.size());
    };
    for (const int node : joined) {
        if (int& number = numberOf(node); number == 0) number = addComponent();
    }
    for (RVNode* node : *graph->pNodeList()) {
        int& number = numberOf(node->denseIndex());
        if (number == 0) number = addComponent();
        components[static_cast<std::size_t>(number - 1)]->appendNode(node);
        output->componentNumber(node, number);
    }
}

void RVConnectedComponentsAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // algorithmBody has listed them
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
