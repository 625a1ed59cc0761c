// Low points (Hopcroft and Tarjan 1973) on the hooks of an undirected depth-first search.
//
// Invariant: the unfinished stack holds every discovered node that is not yet in a block but as the joint of
// blocks below it, in discovery order; a node's low point is the smallest order number seen from it or from a
// completed child. The reverse of a tree edge counts, so a child's low point is at most its parent's number:
// it equals that number exactly when the parent joins the child's block to the rest.
//
// Where no subclass looks on, the same search is made in arrays (BlockSearch).

#include "rv/traversal/biconnected_components.h"

#include <algorithm>
#include <vector>

#include "rv/traversal/depth_first_walk.h"

RV_OBJECT_IMPL(RVNodeExtensionBiconnectedComponents)
RV_OBJECT_IMPL(RVBiconnectedComponentsInternalData)
RV_OBJECT_IMPL(RVBiconnectedComponentsInputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsOutputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsAlgorithm)

void RVBiconnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVBiconnectedComponentsOutputData::buildArticulationNodeList(RVNodeDList& list) const {
    list = *m_articulationNodes;
}

void RVBiconnectedComponentsOutputData::reset() {
    m_components.clear();
    m_articulationNodes->deleteAllCells();
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

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

namespace {

class BlockSearch : public rv::DepthFirstWalk<BlockSearch> {
public:
    BlockSearch(const rv::SearchGraph& graph, RVBiconnectedComponentsOutputData& output)
        : DepthFirstWalk(graph), m_output(output), m_low(graph.size()), m_isArticulationNode(graph.size()) {}

    void reach(Index node) {
        m_low[node] = number(node);
        m_unfinished.push_back(node);
    }
    void traverse(Index, const rv::SearchGraph::OutEdge&) {}
    void meet(Index node, Index target) { m_low[node] = std::min(m_low[node], number(target)); }
    void complete(Index node) {
        if (graph().isIsolated(node)) m_output.addComponent()->appendNode(graph().pNode(node));
        const Index joint = parent(node);
        if (joint == kNone) return;
        if (m_low[node] == number(joint)) closeBlock(node, joint);
        m_low[joint] = std::min(m_low[joint], m_low[node]);
    }

private:
    void closeBlock(Index node, Index joint);

    RVBiconnectedComponentsOutputData& m_output;
    std::vector<Index> m_low;
    std::vector<bool> m_isArticulationNode;
    std::vector<Index> m_unfinished;  // the top is the last
    Index m_joiningRoot = kNone;      // the root of which a block was closed last
};

void BlockSearch::closeBlock(Index node, Index joint) {
    RVNodeDList* block = m_output.addComponent();
    for (Index top = kNone; top != node;) {
        top = m_unfinished.back();
        m_unfinished.pop_back();
        block->appendNode(graph().pNode(top));
    }
    block->appendNode(graph().pNode(joint));
    const bool isRoot = parent(joint) == kNone;
    const bool joins = !isRoot || m_joiningRoot == joint;
    if (isRoot) m_joiningRoot = joint;
    if (!joins || m_isArticulationNode[joint]) return;
    m_output.pArticulationNodeList()->appendNode(graph().pNode(joint));
    m_isArticulationNode[joint] = true;
}

}  // namespace

bool RVBiconnectedComponentsAlgorithm::worksInArrays() const {
    return isExactly<RVBiconnectedComponentsAlgorithm>();
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVDepthFirstSearchAlgorithm::algorithmBody();
    auto* output = RVBiconnectedComponentsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pInternalData()->pInputGraph());
    const auto graph = rv::SearchGraph::undirected(pInternalData()->pInputGraph());
    BlockSearch(graph, *output).searchAll();
    return RV_NO_ERROR;
}

void RVBiconnectedComponentsAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // algorithmBody has listed them
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
