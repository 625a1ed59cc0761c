// Successive shortest paths.
//
// Without negative costs every node v of the flow graph has a potential p(v), at first 0, and the search goes
// by the reduced cost p(u) + c - p(w) of each edge from u to w, which is never negative. After a search with
// distances d, every potential is raised by d(v), or by D, the greatest distance found, where v was not
// reached. The reduced cost of an edge then changes to r + d'(u) - d'(w), where r is the one before and d' =
// min(d, D):
//   - if u was not reached, d'(u) = D >= d'(w), so it stays >= r >= 0;
//   - else d'(w) <= d(w) <= d(u) + r = d'(u) + r, so it is >= 0 as well;
//   - along the path that was found it is 0, and so it is for the backward edges that come into the graph
//   there.
// Potentials are distances in real costs, and are kept in 64 bits. A reduced cost past the 32-bit range is
// given to the search as infinite, which it is for it; each is formed anew from the real cost, so none stays
// wrong.
//
// Where no subclass can see it, the same is done in arrays (see cost_network.h).

#include "rv/flow/minimum_cost_flow.h"

#include <algorithm>
#include <memory>

#include "rv/flow/cost_network.h"
#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/run_pulse.h"
#include "rv/shortestpaths/dijkstra.h"
#include "rv/shortestpaths/shortest_paths.h"

RV_OBJECT_IMPL(RVEdgeExtensionMinimumCostFlowInput)
RV_OBJECT_IMPL(RVMinimumCostFlowInputData)
RV_OBJECT_IMPL(RVMinimumCostFlowOutputData)
RV_OBJECT_IMPL(RVNodeExtensionMinimumCostFlow)
RV_OBJECT_IMPL(RVEdgeExtensionMinimumCostFlowInternal)
RV_OBJECT_IMPL(RVMinimumCostFlowInternalData)
RV_OBJECT_IMPL(RVMinimumCostFlowAlgorithm)

// Input and output

std::span<const RVInputField> RVMinimumCostFlowInputData::inputFields() const {
    using namespace rv::field;
    using E = RVNetworkInputData;
    using B = RVMaximumFlowInputData;
    using D = RVMinimumCostFlowInputData;
    static constexpr RVInputField fields[] = {
        graphObject<E, RVNode, &E::pSourceNode, &E::pSourceNode>("sourceNode"),
        graphObject<E, RVNode, &E::pSinkNode, &E::pSinkNode>("sinkNode"),
        graphInt<D, &D::desiredFlow, &D::desiredFlow>("desiredFlow"),
        nodeInt<B, &B::capacity, &B::capacity>("capacity"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<B, &B::capacity, &B::capacity>("capacity"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
    };
    return fields;
}

void RVMinimumCostFlowOutputData::reset() {
    m_totalFlow = m_totalCost = 0;
    deleteDataReferences(pAssociatedGraph());
}

// Internal data

int RVNodeExtensionMinimumCostFlow::originalDist() const { return rv::saturate(m_potential); }

int RVNodeExtensionMinimumCostFlow::originalDist(int value) {
    m_potential = value;
    return value;
}

int RVMinimumCostFlowInternalData::totalCost() const { return rv::saturate(m_totalCost); }

int RVMinimumCostFlowInternalData::totalCost(int cost) {
    m_totalCost = cost;
    return cost;
}

void RVMinimumCostFlowInternalData::addCost(std::int64_t cost, int amount) {
    m_totalCost = rv::saturatingSum64(m_totalCost, rv::saturatingProduct64(cost, amount));
}

void RVMinimumCostFlowInternalData::raisePotential(RVNode* node, int amount) {
    if (auto* own = record<RVNodeExtensionMinimumCostFlow>(node)) own->raisePotential(amount);
}

// RVMinimumCostFlowAlgorithm

RVServiceErrorCodeEnum RVMinimumCostFlowAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    code = rv::checkNetworkEnds(*input);
    if (code != RV_NO_ERROR) return code;
    if (input->desiredFlow() < 0) return RV_NEGATIVE_DESIRED_FLOW;
    return rv::hasNegativeCapacity(*input) ? RV_NEGATIVE_CAPACITY : RV_NO_ERROR;
}

RVAlgorithmData* RVMinimumCostFlowAlgorithm::newInternalData() { return new RVMinimumCostFlowInternalData(); }

bool RVMinimumCostFlowAlgorithm::hasNegativeCost() const {
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    return input->edgeCosts().hasNegatives(graph) || input->nodeCosts().hasNegatives(graph);
}

void RVMinimumCostFlowAlgorithm::initialize() {
    RVFlowAlgorithm::initialize();
    if (hasNegativeCost()) pMinimumCostFlowInternalData()->simpleCase(0);
}

// Without negative costs arrays stand for working copy and flow graph. The hooks would fail on graphs without
// a factory, so these take them.
std::optional<RVServiceErrorCodeEnum> RVMinimumCostFlowAlgorithm::answer() {
    if (!isExactly<RVMinimumCostFlowAlgorithm>() || hasNegativeCost()) return std::nullopt;
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    if (!rv::hasCopyFactory(input->pAssociatedGraph())) return std::nullopt;
    rv::CostNetwork network(*input);
    RVMinimumCostFlowInternalData data;
    rv::RunPulse pulse(pRunControl(), "minimum cost flow");
    while (!isSatisfied(data) && network.findPath()) {
        pulse.beat(input->pAssociatedGraph()->numberOfEdges());
        const int amount = withinDesiredFlow(network.pathCapacity(), data);
        data.addFlow(amount);
        data.addCost(network.pathCost(), amount);
        network.push(amount);
    }
    auto* output = RVMinimumCostFlowOutputData::castDown(pOutputData());
    rv::writeFlows(*output, network.flows(input->pAssociatedGraph()));
    writeTotals(data);
    return RV_NO_ERROR;
}

void RVMinimumCostFlowAlgorithm::parseInputData() {
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    data->pSourceNode(data->pCopyNode(input->pSourceNode()));
    data->pSinkNode(data->pCopyNode(input->pSinkNode()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVEdge* original = data->pOriginalEdge(edge);
        data->capacity(edge, input->capacity(original));
        data->cost(edge, input->cost(original));
    }
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        data->capacity(node, input->capacity(original));
        data->cost(node, input->cost(original));
    }
    for (RVNode* end : {data->pSourceNode(), data->pSinkNode()}) {
        data->capacity(end, rv::kInfinite);
        data->cost(end, 0);
    }
}

int RVMinimumCostFlowAlgorithm::desiredFlow() const {
    return RVMinimumCostFlowInputData::castDown(pInputData())->desiredFlow();
}

// The search

int RVMinimumCostFlowAlgorithm::pathExists(RVAnalysisOutputData* output) const {
    return RVShortestPathsOutputData::castDown(output)->pathExists();
}

void RVMinimumCostFlowAlgorithm::buildEdgeList(RVAnalysisOutputData* output, RVEdgeDList& list) const {
    RVShortestPathsOutputData::castDown(output)->buildEdgeList(list);
}

void RVMinimumCostFlowAlgorithm::pStartNode(RVAnalysisInputData* input, RVNode* node) const {
    RVNode* dummy = pMinimumCostFlowInternalData()->pDummyStartNode();
    RVShortestPathsInputData::castDown(input)->pStartNode(dummy != nullptr ? dummy : node);
}

void RVMinimumCostFlowAlgorithm::pFinishNode(RVAnalysisInputData* input, RVNode* node) const {
    RVShortestPathsInputData::castDown(input)->pFinishNode(node);
}

RVAlgorithm* RVMinimumCostFlowAlgorithm::newPathExistsTestAlgorithm() const {
    if (pMinimumCostFlowInternalData()->simpleCase() == 0) return new RVShortestPathsAlgorithm();
    auto search = std::make_unique<RVDijkstraAlgorithm>();
    search->useOriginalGraph(1);
    search->storeDistances(1);
    return search.release();
}

RVAlgorithmInputData* RVMinimumCostFlowAlgorithm::newPathExistsTestInputData() const {
    return new RVShortestPathsInputData(pMinimumCostFlowInternalData()->pCopyGraph());
}

RVAlgorithmOutputData* RVMinimumCostFlowAlgorithm::newPathExistsTestOutputData() const {
    if (pMinimumCostFlowInternalData()->simpleCase() == 0) return new RVShortestPathsOutputData();
    return new RVDijkstraOutputData();
}

int RVMinimumCostFlowAlgorithm::hasToBeSplit(RVNode* node) {
    const RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    if (RVFlowAlgorithm::hasToBeSplit(node) != 0) return 1;
    return data->cost(data->pFlowOriginalNode(node)) > 0 ? 1 : 0;
}

void RVMinimumCostFlowAlgorithm::copyEdgeData(RVEdge* from, RVEdge* to, int first) {
    RVFlowAlgorithm::copyEdgeData(from, to, first);
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    if (first == 1) data->cost(to, data->cost(from));
}

void RVMinimumCostFlowAlgorithm::copyEdgeProperties(RVAnalysisInputData* input) {
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    auto* question = RVShortestPathsInputData::castDown(input);
    const auto setCost = [&](RVEdge* edge, int cost) {
        question->cost(edge, cost);
        if (data->simpleCase() != 0) data->realCost(edge, cost);
    };
    for (RVEdge* edge : *data->pCopyGraph()->pEdgeList()) {
        RVEdge* original = data->pFlowOriginalEdge(edge);
        const int cost = original != nullptr ? data->cost(original)
                                             : data->cost(data->pFlowOriginalNode(edge->pTargetNode()));
        setCost(edge, cost);
        setCost(pReverseEdge(edge), rv::saturatingDifference(0, cost));
    }
}

// Pushing

int RVMinimumCostFlowAlgorithm::finished() const {
    return isSatisfied(*pMinimumCostFlowInternalData()) ? 1 : 0;
}

bool RVMinimumCostFlowAlgorithm::isSatisfied(const RVMinimumCostFlowInternalData& data) const {
    return desiredFlow() >= 1 && data.exactTotalFlow() >= desiredFlow();
}

int RVMinimumCostFlowAlgorithm::flowValue(RVAnalysisOutputData* output) const {
    return withinDesiredFlow(RVFlowAlgorithm::flowValue(output), *pMinimumCostFlowInternalData());
}

int RVMinimumCostFlowAlgorithm::withinDesiredFlow(int amount,
                                                  const RVMinimumCostFlowInternalData& data) const {
    if (desiredFlow() < 1) return amount;
    const std::int64_t missing = desiredFlow() - data.exactTotalFlow();
    return static_cast<int>(std::min<std::int64_t>(amount, missing));
}

// Edges that leave the graph keep their real costs as costs of the search, as those do that come into it.
void RVMinimumCostFlowAlgorithm::updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output,
                                                 int amount) {
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    auto* question = RVShortestPathsInputData::castDown(input);
    const auto* answer = RVShortestPathsOutputData::castDown(output);
    if (data->simpleCase() == 0) {
        RVFlowAlgorithm::updateGraphData(input, output, amount);
        data->addCost(answer->totalCost(), amount);
        return;
    }
    std::int64_t pathCost = 0;
    for (RVEdge* edge : *answer->pEdgeList()) {
        question->cost(edge, data->realCost(edge));
        pathCost += data->realCost(edge);
    }
    data->addCost(pathCost, amount);
    RVFlowAlgorithm::updateGraphData(input, output, amount);
    raisePotentials(*static_cast<const RVDijkstraOutputData*>(answer));
    for (RVEdge* edge : *data->pCopyGraph()->pEdgeList()) {
        const std::int64_t reduced = data->potential(edge->pSourceNode()) + data->realCost(edge) -
                                     data->potential(edge->pTargetNode());
        question->cost(edge, rv::saturate(reduced));
    }
}

void RVMinimumCostFlowAlgorithm::raisePotentials(const RVDijkstraOutputData& output) {
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    const RVNodeDList& nodes = *data->pCopyGraph()->pNodeList();
    int greatest = 0;
    for (RVNode* node : nodes) {
        if (output.dist(node) != rv::kInfinite) greatest = std::max(greatest, output.dist(node));
    }
    for (RVNode* node : nodes) data->raisePotential(node, std::clamp(output.dist(node), 0, greatest));
}

// The flow of each caller's edge

// The edge itself notes the flow too, so that it does not matter whether the output is written before or
// after.
void RVMinimumCostFlowAlgorithm::actOnInsertMultiEdge(RVEdge* edge) {
    RVFlowAlgorithm::actOnInsertMultiEdge(edge);
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    RVEdge* replacement = data->pMultiEdgeReplacementEdge(edge);
    if (replacement == nullptr) return;
    const int flow = data->flow(edge, data->flow(replacement));
    if (flow != 0)
        RVMinimumCostFlowOutputData::castDown(pOutputData())->flow(data->pOriginalEdge(edge), flow);
    data->pMultiEdgeReplacementEdge(edge, nullptr);
    pAssociatedGraph()->discardNode(replacement->pTargetNode());
}

void RVMinimumCostFlowAlgorithm::generateOutputData() {
    RVMinimumCostFlowInternalData* data = pMinimumCostFlowInternalData();
    auto* output = RVMinimumCostFlowOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    rv::clearFlows(*output);
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVEdge* original = data->pOriginalEdge(edge);
        if (original != edge && data->flow(edge) != 0) output->flow(original, data->flow(edge));
    }
    writeTotals(*data);
}

void RVMinimumCostFlowAlgorithm::writeTotals(RVMinimumCostFlowInternalData& data) const {
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    if (input->pSourceNode() == input->pSinkNode()) fillSelfLoops(data);
    auto* output = RVMinimumCostFlowOutputData::castDown(pOutputData());
    output->totalCost(data.totalCost());
    output->totalFlow(data.totalFlow());
}

// The self-loops of a source that is the sink, cheapest first.
void RVMinimumCostFlowAlgorithm::fillSelfLoops(RVMinimumCostFlowInternalData& data) const {
    const auto* input = RVMinimumCostFlowInputData::castDown(pInputData());
    auto* output = RVMinimumCostFlowOutputData::castDown(pOutputData());
    std::vector<RVEdge*> loops;
    for (RVEdge* edge : *input->pSourceNode()->pOutEdgeList()) {
        if (edge->pTargetNode() == edge->pSourceNode()) loops.push_back(edge);
    }
    std::stable_sort(loops.begin(), loops.end(),
                     [&](RVEdge* a, RVEdge* b) { return input->cost(a) < input->cost(b); });
    for (RVEdge* loop : loops) {
        if (isSatisfied(data)) break;
        const int amount = withinDesiredFlow(input->capacity(loop), data);
        if (amount == 0) continue;
        output->flow(loop, amount);
        data.addFlow(amount);
        data.addCost(input->cost(loop), amount);
    }
}
