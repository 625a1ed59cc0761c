#include "rv/flow/flow_algorithm.h"

#include <algorithm>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/rootcause/reachable_nodes.h"

RV_OBJECT_IMPL(RVNodeExtensionFlowInternal)
RV_OBJECT_IMPL(RVEdgeExtensionFlowInternal)
RV_OBJECT_IMPL(RVFlowInternalData)

// RVFlowInternalData

int RVFlowInternalData::totalFlow() const { return rv::saturate(m_totalFlow); }

int RVFlowInternalData::totalFlow(int flow) {
    m_totalFlow = flow;
    return flow;
}

// RVFlowAlgorithm: what can be copied of it is what its base has.

RVFlowAlgorithm::RVFlowAlgorithm(const RVFlowAlgorithm& other, RVDeepFlagEnum) : RVFlowAlgorithm() {
    RVFlowAlgorithm::copyObject(&other);
}
RVFlowAlgorithm::~RVFlowAlgorithm() = default;
RVFlowAlgorithm& RVFlowAlgorithm::operator=(const RVFlowAlgorithm&) = default;
RV_OBJECT_COPY_IMPL(RVFlowAlgorithm)

int RVFlowAlgorithm::directed() const { return 1; }

int RVFlowAlgorithm::canUseOriginalGraph() const { return 0; }

RVAlgorithmData* RVFlowAlgorithm::newInternalData() { return new RVFlowInternalData(); }

int RVFlowAlgorithm::finished() const { return 0; }

void RVFlowAlgorithm::copyEdgeProperties(RVAnalysisInputData*) {}

int RVFlowAlgorithm::hasToBeSplit(RVNode* node) {
    const RVFlowInternalData* data = pFlowInternalData();
    return data->capacity(data->pFlowOriginalNode(node)) < rv::kInfinite ? 1 : 0;
}

void RVFlowAlgorithm::copyEdgeData(RVEdge* from, RVEdge* to, int) {
    pFlowInternalData()->capacity(to, pFlowInternalData()->capacity(from));
}

void RVFlowAlgorithm::actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list) {
    RVInternalGraphAlgorithm::actOnRemoveMultiEdges(edge, list);
    RVGraph* graph = pAssociatedGraph();
    for (RVEdge* parallel : *list) {
        RVNode* middle = graph->addNode(0);
        RVEdge* first = graph->addEdge(parallel->pSourceNode(), middle, 0);
        RVEdge* second = graph->addEdge(middle, parallel->pTargetNode(), 0);
        pFlowInternalData()->pMultiEdgeReplacementEdge(parallel, first);
        copyEdgeData(parallel, first, 1);
        copyEdgeData(parallel, second, 0);
    }
}

RVServiceErrorCodeEnum RVFlowAlgorithm::algorithmBody() {
    RVFlowInternalData* data = pFlowInternalData();
    for (const RVNode* end : {data->pSourceNode(), data->pSinkNode()}) {
        if (end == nullptr || end->pOwnerGraph() == nullptr) return data->returnCode();  // isolated
    }
    createGraphCopyForFlowAlgorithm();
    addBackwardEdges();
    copyEdgeCapacities();
    const std::unique_ptr<RVAnalysisInputData> input(
        static_cast<RVAnalysisInputData*>(newPathExistsTestInputData()));
    data->pPathExistsTestInputData(input.get());
    copyEdgeProperties(input.get());
    if (data->pCopyGraph()->numberOfNodes() > 0) {
        pStartNode(input.get(), data->pFlowCopyNode(data->pSourceNode()));
        pFinishNode(input.get(), data->pFlowCopyNode(data->pSinkNode()));
        findAugmentingPaths(*input);
        storeFlowValues();
    }
    data->pPathExistsTestInputData(nullptr);
    return data->returnCode();
}

namespace {

// As a part of another algorithm, where the algorithm tells that.
RVServiceErrorCodeEnum runAsPart(RVAlgorithm& algorithm) {
    if (auto* base = dynamic_cast<RVBaseGraphAlgorithm*>(&algorithm)) return base->internalRun();
    if (auto* internal = dynamic_cast<RVInternalGraphAlgorithm*>(&algorithm)) return internal->internalRun();
    return algorithm.run();
}

}  // namespace

void RVFlowAlgorithm::findAugmentingPaths(RVAnalysisInputData& input) {
    const std::unique_ptr<RVAlgorithm> search(newPathExistsTestAlgorithm());
    bool isFound = true;
    while (isFound && finished() == 0) {
        const std::unique_ptr<RVAnalysisOutputData> output(
            static_cast<RVAnalysisOutputData*>(newPathExistsTestOutputData()));
        search->pInputData(&input);
        search->pOutputData(output.get());
        noteFailedSearch(runAsPart(*search));
        isFound = pathExists(output.get()) != 0;
        updateGraphData(&input, output.get(), flowValue(output.get()));
    }
}

void RVFlowAlgorithm::noteFailedSearch(RVServiceErrorCodeEnum code) {
    if (code == RV_NEGATIVE_CYCLE) {
        pFlowInternalData()->returnCode(code);
    } else {
        if (code != RV_NO_ERROR && debugMode() != 0) wprintf_s(L"Error in path exists algorithm\n");
        rv::noteFailure(*pFlowInternalData(), code, debugMode(), L"return code = %d\n");
    }
}

// The flow graph

void RVFlowAlgorithm::createGraphCopyForFlowAlgorithm() {
    RVFlowInternalData* data = pFlowInternalData();
    std::unique_ptr<RVGraph> made = rv::newGraphLike(pAssociatedGraph());
    data->pSecondaryGraphs()->appendGraph(made.get());
    RVGraph* graph = made.release();
    data->m_pCopyGraph = graph;
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        if (data->capacity(node) <= 0) continue;
        RVNode* copy = graph->addNode(0);
        data->pFlowOriginalNode(copy, node);
        data->pFlowCopyNode(node, copy);
        if (debugMode() != 0) copy->pNameString(node->pNameString());
    }
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVNode* source = data->pFlowCopyNode(edge->pSourceNode());
        RVNode* target = data->pFlowCopyNode(edge->pTargetNode());
        if (data->capacity(edge) <= 0 || source == nullptr || target == nullptr) continue;
        data->pFlowOriginalEdge(graph->addEdge(source, target, 0), edge);
    }
    keepReachable(graph);
    RVNode* source = data->pFlowCopyNode(data->pSourceNode());
    if (data->pSourceNode() == data->pSinkNode() && source != nullptr) {
        RVNode* start = graph->addNode(0);
        if (debugMode() != 0) start->pNameString(source->pNameString());
        data->pFlowOriginalNode(start, data->pSourceNode());
        data->pDummyStartNode(start);
        const RVEdgeDList outEdges(*source->pOutEdgeList());
        for (RVEdge* edge : outEdges) edge->changeSourceNode(start);
    }
    splitNodes();
}

// What the source reaches; nothing if that is not the sink.
void RVFlowAlgorithm::keepReachable(RVGraph* graph) {
    RVFlowInternalData* data = pFlowInternalData();
    RVNode* source = data->pFlowCopyNode(data->pSourceNode());
    const RVNode* sink = data->pFlowCopyNode(data->pSinkNode());
    std::vector<bool> isKept(static_cast<std::size_t>(graph->nodeIndexLimit()));
    const auto keeps = [&](const RVNode* node) { return node != nullptr && isKept[rv::placeOf(node)]; };
    if (source != nullptr && sink != nullptr) {  // their capacities are not 0
        RVReachableNodesAlgorithm search;
        RVReachableNodesInputData input(graph);
        RVReachableNodesOutputData output;
        input.pStartNode(source);
        rv::noteFailure(*data, rv::runPart(search, input, output), debugMode(),
                        L"Error in Reachable Nodes. Return code = %d\n");
        for (const RVNode* node : *output.pNodeList()) {
            isKept[rv::placeOf(node)] = true;
        }
    }
    const bool hasWay = keeps(sink);
    for (RVNodeIter it(graph); it;) {
        RVNode* node = it.pNode();
        it++;
        if (hasWay && keeps(node)) continue;
        data->pFlowCopyNode(data->pFlowOriginalNode(node), nullptr);
        graph->discardNode(node);
    }
}

// What enters a node with a limit enters a node before it; the edge between them has the limit.
void RVFlowAlgorithm::splitNodes() {
    RVGraph* graph = pFlowInternalData()->pCopyGraph();
    const RVNodeDList nodes(*graph->pNodeList());
    for (RVNode* node : nodes) {
        if (hasToBeSplit(node) == 0) continue;
        RVNode* before = graph->addNode(0);
        const RVEdgeDList inEdges(*node->pInEdgeList());
        for (RVEdge* edge : inEdges) edge->changeTargetNode(before);
        graph->addEdge(before, node, 0);
    }
}

void RVFlowAlgorithm::addBackwardEdges() {
    RVGraph* graph = pFlowInternalData()->pCopyGraph();
    m_reverseEdges.get().clear();
    m_isBackward.get().clear();
    const RVEdgeDList edges(*graph->pEdgeList());
    for (RVEdge* edge : edges) {
        RVEdge* backward = graph->addEdge(edge->pTargetNode(), edge->pSourceNode(), 0);
        pReverseEdge(edge, backward);
        pReverseEdge(backward, edge);
        m_isBackward.get()[placeOf(backward)] = true;
        graph->removeEdge(backward);
    }
}

// Where an edge of the flow graph stands in the arrays; edges of other graphs stand nowhere, and outside a
// run there is no flow graph.
std::size_t RVFlowAlgorithm::placeOf(const RVEdge* edge) const {
    const RVFlowInternalData* data = pFlowInternalData();
    const bool isOurs = edge != nullptr && data != nullptr && edge->pHomeGraph() == data->pCopyGraph();
    return isOurs ? rv::placeOf(edge) : kNowhere;
}

int RVFlowAlgorithm::forwardEdge(const RVEdge* edge) const {
    const std::size_t place = placeOf(edge);
    return place < m_isBackward.get().size() && m_isBackward.get()[place] ? 0 : 1;
}

RVEdge* RVFlowAlgorithm::pReverseEdge(const RVEdge* edge) const {
    const std::size_t place = placeOf(edge);
    return place < m_reverseEdges.get().size() ? m_reverseEdges.get()[place] : nullptr;
}

RVEdge* RVFlowAlgorithm::pReverseEdge(const RVEdge* edge, RVEdge* partner) {
    const std::size_t place = placeOf(edge);
    if (place == kNowhere) return partner;
    if (place >= m_reverseEdges.get().size()) {
        m_reverseEdges.get().resize(place + 1);
        m_isBackward.get().resize(place + 1);
    }
    return m_reverseEdges.get()[place] = partner;
}

void RVFlowAlgorithm::copyEdgeCapacities() {
    RVFlowInternalData* data = pFlowInternalData();
    for (RVEdge* edge : *data->pCopyGraph()->pEdgeList()) {
        RVEdge* original = data->pFlowOriginalEdge(edge);
        data->capacity(edge, original != nullptr
                                 ? data->capacity(original)
                                 : data->capacity(data->pFlowOriginalNode(edge->pTargetNode())));
    }
}

// Pushing

// A backward edge can take back what its partner carries.
int RVFlowAlgorithm::residualCapacity(RVEdge* edge) const {
    const RVFlowInternalData* data = pFlowInternalData();
    if (forwardEdge(edge) == 0) return data->flow(pReverseEdge(edge));
    return data->capacity(edge) - data->flow(edge);
}

int RVFlowAlgorithm::flowValue(RVAnalysisOutputData* output) const {
    RVEdgeDList path;
    buildEdgeList(output, path);
    if (path.length() == 0) return 0;
    int least = rv::kInfinite;
    for (RVEdge* edge : path) least = std::min(least, residualCapacity(edge));
    return least;
}

void RVFlowAlgorithm::updateGraphData(RVAnalysisInputData*, RVAnalysisOutputData* output, int amount) {
    RVFlowInternalData* data = pFlowInternalData();
    RVGraph* graph = data->pCopyGraph();
    data->addFlow(amount);
    if (amount == 0) return;
    RVEdgeDList path;
    buildEdgeList(output, path);
    for (RVEdge* edge : path) {
        RVEdge* partner = pReverseEdge(edge);
        const bool isForward = forwardEdge(edge) != 0;
        RVEdge* forward = isForward ? edge : partner;
        const int before = data->flow(forward);
        const int after = isForward ? before + amount : before - amount;
        // Where the partner had no residual capacity, it has now; where the edge has none any more, it goes.
        if (before == (isForward ? 0 : data->capacity(forward))) {
            graph->insertEdge(partner, partner->pSourceNode(), partner->pTargetNode());
        }
        data->flow(forward, after);
        if (after == (isForward ? data->capacity(forward) : 0)) graph->removeEdge(edge);
    }
}

void RVFlowAlgorithm::storeFlowValues() {
    RVFlowInternalData* data = pFlowInternalData();
    for (RVEdge* edge : *data->pCopyGraph()->pEdgeList()) {
        RVEdge* forward = forwardEdge(edge) != 0 ? edge : pReverseEdge(edge);
        if (RVEdge* original = data->pFlowOriginalEdge(forward)) data->flow(original, data->flow(forward));
    }
}
