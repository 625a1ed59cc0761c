// Path-based strong components (Gabow 2000) on the completion hook of the depth-first search.
//
// Invariant: the unfinished stack holds every discovered node without a component, in discovery order; the
// root stack is a subsequence of it. All unfinished nodes from one root up to the next reach one another. A
// node that completes while it is the top root closes a component: itself and all above it.
//
// Where no subclass looks on, the same search is made in arrays (StrongSearch).

#include "rv/traversal/strongly_connected_components.h"

#include <vector>

#include "rv/traversal/depth_first_walk.h"

RV_OBJECT_IMPL(RVNodeExtensionStronglyConnectedComponents)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInternalData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsOutputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsAlgorithm)

void RVStronglyConnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::buildEdgeComponentList(RVDList& list) const {
    m_edgeComponents.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::reset() {
    m_components.clear();
    m_edgeComponents.clear();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVStronglyConnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

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

namespace {

class StrongSearch : public rv::DepthFirstWalk<StrongSearch> {
public:
    StrongSearch(const rv::SearchGraph& graph, RVStronglyConnectedComponentsOutputData& output)
        : DepthFirstWalk(graph), m_output(output), m_components(graph.size()) {}

    void reach(Index node) {
        m_unfinished.push_back(node);
        m_roots.push_back(node);
    }
    void traverse(Index, const rv::SearchGraph::OutEdge&) {}
    void meet(Index, Index target) {
        if (m_components[target] != 0) return;
        while (number(m_roots.back()) > number(target)) m_roots.pop_back();
    }
    void complete(Index node) {
        if (m_roots.back() != node) return;
        m_roots.pop_back();
        closeComponent(node);
    }

private:
    void closeComponent(Index root);

    RVStronglyConnectedComponentsOutputData& m_output;
    std::vector<int> m_components;  // by node: its number, 0 while it is unfinished
    int m_closed = 0;
    std::vector<Index> m_unfinished;  // the top is the last
    std::vector<Index> m_roots;
    std::vector<Index> m_members;  // of the component that is being closed
};

void StrongSearch::closeComponent(Index root) {
    ++m_closed;
    RVNodeDList* nodes = m_output.addComponent();
    m_members.clear();
    for (Index top = kNone; top != root;) {
        top = m_unfinished.back();
        m_unfinished.pop_back();
        m_components[top] = m_closed;
        m_members.push_back(top);
        nodes->appendNode(graph().pNode(top));
        m_output.componentNumber(graph().pNode(top), m_closed);
    }
    RVEdgeDList* edges = m_output.addEdgeComponent();
    const auto append = [edges](RVEdge* edge) { edges->appendEdge(edge); };
    for (const Index node : m_members) {
        for (const rv::SearchGraph::OutEdge& out : graph().outEdges(node)) {
            if (m_components[out.target] != m_closed) continue;
            append(graph().pEdge(out.edge));
            graph().forEachParallel(out.edge, append);
        }
        graph().forEachLoop(node, append);
    }
}

}  // namespace

bool RVStronglyConnectedComponentsAlgorithm::worksInArrays() const {
    return isExactly<RVStronglyConnectedComponentsAlgorithm>();
}

RVServiceErrorCodeEnum RVStronglyConnectedComponentsAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVDepthFirstSearchAlgorithm::algorithmBody();
    auto* output = RVStronglyConnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pInternalData()->pInputGraph());
    const auto graph = rv::SearchGraph::directed(pInternalData()->pInputGraph());
    StrongSearch(graph, *output).searchAll();
    return RV_NO_ERROR;
}

void RVStronglyConnectedComponentsAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // algorithmBody has listed them
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
