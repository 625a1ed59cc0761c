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

std::optional<RVServiceErrorCodeEnum> RVConnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVConnectedComponentsAlgorithm>()) return std::nullopt;
    RVGraph* graph = pInputData()->pAssociatedGraph();
    auto* output = RVConnectedComponentsOutputData::castDown(pOutputData());

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
    return RV_NO_ERROR;
}
