// Kahn's method that goes on where no source is left: it then takes the candidate with the least in-degree.
//
// The degrees of a candidate only fall. A fallen in-degree makes it a better choice, and enters the heap at
// once; a fallen out-degree makes it a worse one, and is seen when the entry comes to the top. So at most one
// entry per candidate and per lost edge is made in all.

#include "rv/cycles/topological_heuristic.h"

#include <algorithm>
#include <cassert>
#include <functional>

RV_OBJECT_IMPL(RVNodeExtensionTopologicalHeuristic)
RV_OBJECT_IMPL(RVNodeExtensionTopologicalHeuristicInternal)
RV_OBJECT_IMPL(RVEdgeExtensionTopologicalHeuristic)
RV_OBJECT_IMPL(RVTopologicalHeuristicInputData)
RV_OBJECT_IMPL(RVTopologicalHeuristicOutputData)
RV_OBJECT_IMPL(RVTopologicalHeuristicInternalData)
RV_OBJECT_IMPL(RVTopologicalHeuristicAlgorithm)

// Data

void RVTopologicalHeuristicOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

// The lists of a run

void RVTopologicalHeuristicInternalData::fillCandidateLists(const RVGraph* graph) {
    const int limit = graph->nodeIndexLimit();
    m_candidateCells.get().begin(m_candidates.get(), limit);
    m_places.get().resize(static_cast<std::size_t>(limit));
    for (RVNode* node : *graph->pNodeList()) {
        outdegree(node, node->outDegree());
        if (indegree(node, node->inDegree()) == 0) {
            m_sources->appendNode(node);
            continue;
        }
        const int index = node->denseIndex();
        m_candidateCells.get().note(index, m_candidates->appendNode(node));
        m_places.get()[static_cast<std::size_t>(index)] =
            static_cast<std::uint32_t>(m_nodesByPlace.get().size());
        m_nodesByPlace.get().push_back(node);
        pushChoice(node);
    }
}

void RVTopologicalHeuristicInternalData::pushChoice(RVNode* node) {
    const auto in = static_cast<std::uint32_t>(indegree(node));
    const auto out = static_cast<std::uint32_t>(outdegree(node));
    std::vector<Choice>& choices = m_choices.get();
    choices.push_back({std::uint64_t{in} << 32 | ~out, m_places.get()[rv::placeOf(node)]});
    std::push_heap(choices.begin(), choices.end(), std::greater<>());
}

RVNode* RVTopologicalHeuristicInternalData::takeBestCandidate() {
    std::vector<Choice>& choices = m_choices.get();
    while (!choices.empty()) {
        std::pop_heap(choices.begin(), choices.end(), std::greater<>());
        const Choice best = choices.back();
        choices.pop_back();
        RVNode* node = m_nodesByPlace.get()[best.place];
        RVDListCell* cell = m_candidateCells.get().noted(node);
        if (cell == nullptr || best.degrees >> 32 != static_cast<std::uint32_t>(indegree(node))) continue;
        if (static_cast<std::uint32_t>(best.degrees) != ~static_cast<std::uint32_t>(outdegree(node))) {
            pushChoice(node);
            continue;
        }
        m_candidates->discardCell(cell);
        return node;
    }
    return nullptr;
}

void RVTopologicalHeuristicInternalData::loseInEdge(RVNode* node) {
    const int left = indegree(node, indegree(node) - 1);
    RVDListCell* cell = m_candidateCells.get().noted(node);
    if (cell == nullptr) return;
    if (left != 0) {
        pushChoice(node);
        return;
    }
    m_candidates->discardCell(cell);
    m_sources->appendNode(node);
}

void RVTopologicalHeuristicInternalData::loseOutEdge(RVNode* node) { outdegree(node, outdegree(node) - 1); }

// Algorithm

RVAlgorithmData* RVTopologicalHeuristicAlgorithm::newInternalData() {
    return new RVTopologicalHeuristicInternalData();
}

void RVTopologicalHeuristicAlgorithm::parseInputData() {}

void RVTopologicalHeuristicAlgorithm::preprocessReflexiveEdges() {}

RVServiceErrorCodeEnum RVTopologicalHeuristicAlgorithm::algorithmBody() {
    RVTopologicalHeuristicInternalData* data = pData();
    auto* output = RVTopologicalHeuristicOutputData::castDown(pOutputData());
    data->fillCandidateLists(pAssociatedGraph());
    output->acyclic(1);
    const int nodes = pAssociatedGraph()->numberOfNodes();
    for (int i = 1; i <= nodes; ++i) {
        // A candidate has an in-edge from itself or from a node with a higher number.
        if (data->pSourceList()->length() == 0) output->acyclic(0);
        RVNode* node = pNextNode();
        assert(node != nullptr);
        data->pSortedNodeList()->appendNode(node);
        output->orderNumber(data->pOriginalNode(node), i);
        for (const RVEdge* edge : *node->pOutEdgeList()) data->loseInEdge(edge->pTargetNode());
        for (const RVEdge* edge : *node->pInEdgeList()) data->loseOutEdge(edge->pSourceNode());
    }
    return data->returnCode();
}

RVNode* RVTopologicalHeuristicAlgorithm::pNextNode() const {
    RVNodeDList* sources = pData()->pSourceList();
    if (sources->length() == 0) return pData()->takeBestCandidate();
    RVNode* first = sources->pFirstNode();
    sources->discardCell(sources->pFirstCell());
    return first;
}

void RVTopologicalHeuristicAlgorithm::generateOutputData() {
    const RVTopologicalHeuristicInternalData* data = pData();
    auto* output = RVTopologicalHeuristicOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVNode* node : *data->pSortedNodeList()) output->pNodeList()->appendNode(data->pOriginalNode(node));
    int number = pAssociatedGraph()->numberOfNodes();
    for (RVNode* node : *data->pDisconnectedNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->pNodeList()->appendNode(original);
        output->orderNumber(original, ++number);
    }
}
