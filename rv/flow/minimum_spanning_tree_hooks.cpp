// What subclasses run on: the tree grows over the objects of a copy without loops and parallel edges.

#include <cstdint>

#include "rv/flow/minimum_spanning_tree.h"
#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/framework/run_pulse.h"

// RVMinimumSpanningTreeBinTree

int RVMinimumSpanningTreeBinTree::keyOf(RVObject* node) const {
    return m_pData == nullptr ? 0 : m_pData->currentCost(RVNode::castDown(node));
}

RVMinimumSpanningTreeInternalData* RVMinimumSpanningTreeBinTree::pData(
    RVMinimumSpanningTreeInternalData* data) {
    const bool hadNone = m_pData == nullptr;
    m_pData = data;
    if (hadNone) readKeys();
    return data;
}

// RVMinimumSpanningTreeInternalData

RVMinimumSpanningTreeInternalData::RVMinimumSpanningTreeInternalData(
    const RVMinimumSpanningTreeInternalData& other, RVDeepFlagEnum)
    : RVMinimumSpanningTreeInternalData() {
    RVMinimumSpanningTreeInternalData::copyObject(&other);
}

RVMinimumSpanningTreeInternalData::~RVMinimumSpanningTreeInternalData() = default;

// The nodes of a copy are compared by the copy's costs.
RVMinimumSpanningTreeInternalData& RVMinimumSpanningTreeInternalData::operator=(
    const RVMinimumSpanningTreeInternalData& other) {
    if (this == &other) return *this;
    RVAnalysisInternalData::operator=(other);
    m_edgeCounter = other.m_edgeCounter;
    m_partialTreeNodes = other.m_partialTreeNodes;
    m_partialTreeNodes.pData(this);
    return *this;
}

RV_OBJECT_COPY_IMPL(RVMinimumSpanningTreeInternalData)

// RVMinimumSpanningTreeAlgorithm

int RVMinimumSpanningTreeAlgorithm::directed() const { return 0; }

RVAlgorithmData* RVMinimumSpanningTreeAlgorithm::newInternalData() {
    return new RVMinimumSpanningTreeInternalData();
}

void RVMinimumSpanningTreeAlgorithm::privatePreprocessGraph() {
    preprocessReflexiveEdges();
    preprocessMultiEdges();
}

void RVMinimumSpanningTreeAlgorithm::parseInputData() {
    const auto* input = RVMinimumSpanningTreeInputData::castDown(pInputData());
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        pData()->cost(edge, input->cost(pData()->pOriginalEdge(edge)));
    }
}

// The in-edges of the source come before its out-edges.
RVEdge* RVMinimumSpanningTreeAlgorithm::selectRepresentativeEdge(RVEdge* edge) {
    const RVNode* source = edge->pSourceNode();
    RVEdge* best = edge;
    int bestCost = rv::kInfinite;
    const auto parallels = parallelEdges(edge, 0);
    for (const bool isOut : {false, true}) {
        for (RVEdge* parallel : parallels) {
            if ((parallel->pSourceNode() == source) != isOut || pData()->cost(parallel) >= bestCost) continue;
            best = parallel;
            bestCost = pData()->cost(parallel);
        }
    }
    return best;
}

RVServiceErrorCodeEnum RVMinimumSpanningTreeAlgorithm::algorithmBody() {
    RVMinimumSpanningTreeInternalData* data = pData();
    RVMinimumSpanningTreeBinTree* candidates = data->pPartialTreeNodeList();
    RVNode* root = pAssociatedGraph()->pFirstNode();
    if (root == nullptr) return data->returnCode();
    data->touched(root, 1);
    data->currentCost(root, 0);
    candidates->addObject(root);
    rv::RunPulse pulse(pRunControl(), "spanning tree", pAssociatedGraph()->numberOfEdges());
    while (RVBinTreeCell* cheapest = candidates->pFirstCell()) {
        auto* node = RVNode::castDown(cheapest->pObject());
        pulse.beat(1 + node->degree());
        candidates->discardCell(cheapest);
        data->touched(node, 1);
        if (RVEdge* parent = data->pParentEdge(node)) {
            data->treeEdge(parent, 1);
            data->edgeCounter(data->edgeCounter() + 1);
        }
        for (RVInAndOutEdgeIter it(node); it; it++) {
            RVEdge* edge = it.pEdge();
            RVNode* other = edge->pOtherNode(node);
            const int cost = data->cost(edge);
            const int before = data->currentCost(other);
            if (data->touched(other) != 0 || before <= cost) continue;
            RVBinTreeCell* cell = before < rv::kInfinite ? candidates->searchAndRemoveObject(other) : nullptr;
            data->currentCost(other, cost);
            data->pParentEdge(other, edge);
            cell != nullptr ? candidates->insertCell(cell) : candidates->addObject(other);
        }
    }
    return data->returnCode();
}

void RVMinimumSpanningTreeAlgorithm::generateOutputData() {
    const RVMinimumSpanningTreeInternalData* data = pData();
    auto* output = RVMinimumSpanningTreeOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    if (data->edgeCounter() != pAssociatedGraph()->numberOfNodes() - 1) return;
    std::int64_t total = 0;
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (data->treeEdge(edge) == 0) continue;
        RVEdge* original = data->pOriginalEdge(edge);
        output->pTreeEdgeList()->appendEdge(original);
        output->treeEdge(original, 1);
        total += data->cost(edge);
    }
    output->totalCost(rv::saturate(total));
}
