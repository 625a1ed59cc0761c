#include "rv/shortestpaths/dijkstra.h"

#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/check_input.h"
#include "rv/framework/run_pulse.h"
#include "rv/shortestpaths/path_answer.h"

RV_OBJECT_IMPL(RVNodeExtensionShortestPaths)
RV_OBJECT_IMPL(RVEdgeExtensionShortestPaths)
RV_OBJECT_IMPL(RVNodeExtensionDijkstra)
RV_OBJECT_IMPL(RVShortestPathsBinTree)
RV_OBJECT_IMPL(RVDijkstraOutputData)

// RVShortestPathsBinTree

int RVShortestPathsBinTree::keyOf(RVObject* node) const {
    return m_pData == nullptr ? 0 : m_pData->currentCost(RVNode::castDown(node));
}

RVDijkstraInternalData* RVShortestPathsBinTree::pData(RVDijkstraInternalData* data) {
    const bool hadNone = m_pData == nullptr;
    m_pData = data;
    if (hadNone) readKeys();
    return data;
}

// RVDijkstraInternalData

RVDijkstraInternalData::RVDijkstraInternalData(const RVDijkstraInternalData& other, RVDeepFlagEnum)
    : RVDijkstraInternalData() {
    RVDijkstraInternalData::copyObject(&other);
}

RVDijkstraInternalData::~RVDijkstraInternalData() = default;

// The candidates of a copy are compared by the copy's costs.
RVDijkstraInternalData& RVDijkstraInternalData::operator=(const RVDijkstraInternalData& other) {
    if (this == &other) return *this;
    RVTraversalInternalData::operator=(other);
    m_pFinishNode = other.m_pFinishNode;
    m_candidateNodes = other.m_candidateNodes;
    m_candidateNodes.pData(this);
    return *this;
}

RV_OBJECT_COPY_IMPL(RVDijkstraInternalData)

// RVDijkstraOutputData

void RVDijkstraOutputData::reset() {
    RVShortestPathsOutputData::reset();
    deleteDataReferences(pAssociatedGraph());
}

// RVDijkstraAlgorithm

RVDijkstraAlgorithm::RVDijkstraAlgorithm() { announce(); }

RVDijkstraAlgorithm::RVDijkstraAlgorithm(const RVDijkstraAlgorithm& other, RVDeepFlagEnum flag)
    : RVTraversalAlgorithm(other, flag), m_storeDistances(other.m_storeDistances) {
    announce();
}

RVDijkstraAlgorithm::~RVDijkstraAlgorithm() = default;
RVDijkstraAlgorithm& RVDijkstraAlgorithm::operator=(const RVDijkstraAlgorithm&) = default;
RV_OBJECT_COPY_IMPL(RVDijkstraAlgorithm)

void RVDijkstraAlgorithm::announce() const {
    if (debugMode() != 0) wprintf_s(L"Dijkstra algorithm running\n");
}

RVAlgorithmData* RVDijkstraAlgorithm::newInternalData() { return new RVDijkstraInternalData(); }

RVServiceErrorCodeEnum RVDijkstraAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    code = rv::checkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    return input->edgeCosts().hasNegatives(input->pAssociatedGraph()) ? RV_ALGORITHM_FAILURE : RV_NO_ERROR;
}

// What is known once the finish node is settled does not change, so that only distances take longer.
std::optional<RVServiceErrorCodeEnum> RVDijkstraAlgorithm::answer() {
    if (!isExactly<RVDijkstraAlgorithm>()) return std::nullopt;
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    auto* output = RVShortestPathsOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "cheapest paths", input->pAssociatedGraph()->numberOfEdges());
    const rv::PathView view(*input);
    const rv::Index start = rv::indexOf(input->pStartNode());
    const auto search = [&](auto& labels, rv::Buffer<rv::Index>& settled, rv::Index stop) {
        view.withTraversalWays(true, stop == rv::kNoIndex, pulse, [&](const auto& ways) {
            rv::findNearest(ways, start, {rv::kInfinite, stop}, labels, settled, pulse);
        });
        rv::writePath(view, labels, *input, *output);
    };
    auto* withDistances = m_storeDistances == 0 ? nullptr : dynamic_cast<RVDijkstraOutputData*>(output);
    if (withDistances == nullptr) {
        const rv::ScratchLoan<rv::PathScratch> scratch(input->pAssociatedGraph());
        scratch->begin(rv::nodeLimitOf(input->pAssociatedGraph()));
        search(scratch->labels, scratch->settled, rv::indexOf(input->pFinishNode()));
    } else {
        rv::NearestLabels<int> labels(rv::nodeLimitOf(input->pAssociatedGraph()));
        rv::Buffer<rv::Index> settled;
        search(labels, settled, rv::kNoIndex);
        rv::writeDistances(view, std::move(labels.distances), *withDistances);
    }
    return RV_NO_ERROR;
}
