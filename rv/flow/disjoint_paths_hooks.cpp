// What subclasses run on: a maximum flow of unit capacities as a part, on a plain copy of the graph or on an
// auxiliary graph in which every node is an entry and an exit.

#include <vector>

#include "rv/flow/disjoint_paths.h"
#include "rv/flow/maximum_flow.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/sub_algorithm.h"

namespace {

using rv::placeOf;

}  // namespace

struct RVDisjointPathsAlgorithm::Run {
    bool nodeDisjoint = false;
    std::vector<RVEdge*> edges;        // of the working graph, by edge of the auxiliary graph
    std::vector<RVDListCell*> places;  // by node of the flow: the out-edge that is looked at next
    std::vector<bool> isStarted;       // whether that is set
    std::vector<RVEdge*> firstEdges;   // of the start node, by their target
};

RV_OBJECT_IMPL(RVDisjointPathsAlgorithm)

RVAlgorithmData* RVDisjointPathsAlgorithm::newInternalData() { return new RVDisjointPathsInternalData(); }

void RVDisjointPathsAlgorithm::privatePreprocessGraph() {}

void RVDisjointPathsAlgorithm::parseInputData() {
    const auto* input = RVDisjointPathsInputData::castDown(pInputData());
    pData()->pStartNode(pData()->pCopyNode(input->pStartNode()));
    pData()->pFinishNode(pData()->pCopyNode(input->pFinishNode()));
}

// Entries and exits of all nodes, then the edges between them.
RVGraph* RVDisjointPathsAlgorithm::buildAuxiliaryGraph() {
    RVDisjointPathsInternalData* data = pData();
    std::vector<RVEdge*>& edges = m_run->edges;
    std::unique_ptr<RVGraph> made = rv::newGraphLike(pAssociatedGraph());
    data->pSecondaryGraphs()->appendGraph(made.get());
    RVGraph* graph = made.release();
    const auto addEdge = [&](RVNode* from, RVNode* to, RVEdge* edge) {
        const RVEdge* added = graph->addEdge(from, to, 0);
        edges.resize(placeOf(added) + 1);
        edges[placeOf(added)] = edge;
    };
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        RVNode* entry = graph->addNode(0);
        data->pDisjointPathsNode(entry, node);
        data->pDisjointPathsCopyNode(node, entry);
        addEdge(entry, graph->addNode(0), nullptr);
    }
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        RVNode* exit = data->pDisjointPathsCopyNode(node)->pOutEdge()->pTargetNode();
        for (RVEdge* edge : *node->pOutEdgeList()) {
            addEdge(exit, data->pDisjointPathsCopyNode(edge->pTargetNode()), edge);
        }
    }
    return graph;
}

void RVDisjointPathsAlgorithm::copyInputData(RVMaximumFlowInputData& input) const {
    const RVDisjointPathsInternalData* data = pData();
    RVNode* start = data->pStartNode();
    RVNode* finish = data->pFinishNode();
    if (m_run->nodeDisjoint) {
        start = data->pDisjointPathsCopyNode(start)->pOutEdge()->pTargetNode();
        finish = data->pDisjointPathsCopyNode(finish);
    }
    input.pSourceNode(start);
    input.pSinkNode(finish);
    for (RVEdge* edge : *input.pAssociatedGraph()->pEdgeList()) input.capacity(edge, 1);
}

RVServiceErrorCodeEnum RVDisjointPathsAlgorithm::algorithmBody() {
    RVDisjointPathsInternalData* data = pData();
    Run& run = *m_run;
    run.nodeDisjoint = RVDisjointPathsInputData::castDown(pInputData())->nodeDisjointPaths() != 0;
    RVGraph* graph = run.nodeDisjoint ? buildAuxiliaryGraph() : pAssociatedGraph();
    RVMaximumFlowAlgorithm maximumFlow;
    RVMaximumFlowInputData input(graph);
    RVMaximumFlowOutputData output;
    data->pMaximumFlowInputData(&input);
    data->pMaximumFlowOutputData(&output);
    copyInputData(input);
    const RVServiceErrorCodeEnum code = rv::runPart(*this, maximumFlow, input, output);
    if (code != RV_NO_ERROR && debugMode() != 0) wprintf_s(L"Error in max flow.\n");
    rv::noteFailure(*data, code, debugMode(), L"Return code: %d\n");

    run.places.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));
    run.isStarted.resize(run.places.size());
    if (run.nodeDisjoint) {
        run.firstEdges.resize(static_cast<std::size_t>(pAssociatedGraph()->nodeIndexLimit()));
        for (RVEdge* edge : *data->pStartNode()->pOutEdgeList()) {
            RVEdge*& first = run.firstEdges[placeOf(edge->pTargetNode())];
            if (first == nullptr) first = edge;
        }
    }
    RVDisjointPathsOutputData::castDown(pOutputData())->numberOfDisjointPaths(output.totalFlow());
    for (int i = 0; i < output.totalFlow(); ++i) extractPath();
    data->pMaximumFlowInputData(nullptr);
    data->pMaximumFlowOutputData(nullptr);
    return data->returnCode();
}

void RVDisjointPathsAlgorithm::extractPath() {
    RVEdgeDList* path = RVDisjointPathsOutputData::castDown(pOutputData())->m_paths.add();
    RVNode* node = pData()->pStartNode();
    do {
        RVEdge* edge = findOutEdge(node);
        if (edge == nullptr) return;
        path->appendEdge(pData()->pOriginalEdge(edge));
        node = edge->pTargetNode();
    } while (node != pData()->pFinishNode());
}

// The first out-edge that still carries flow, which is consumed. Those before it stay without, so that each
// is looked at once.
RVEdge* RVDisjointPathsAlgorithm::findOutEdge(RVNode* node) {
    const RVDisjointPathsInternalData* data = pData();
    Run& run = *m_run;
    const RVNode* flowNode =
        run.nodeDisjoint ? data->pDisjointPathsCopyNode(node)->pOutEdge()->pTargetNode() : node;
    RVDListCell*& place = run.places[placeOf(flowNode)];
    if (!run.isStarted[placeOf(flowNode)]) {
        run.isStarted[placeOf(flowNode)] = true;
        place = flowNode->pOutEdgeList()->pFirstCell();
    }
    RVMaximumFlowOutputData* flows = data->pMaximumFlowOutputData();
    while (place != nullptr && flows->flow(RVEdge::castDown(place->pObject())) != 1)
        place = place->pNextCell();
    if (place == nullptr) return nullptr;
    auto* edge = RVEdge::castDown(place->pObject());
    flows->flow(edge, 0);
    place = place->pNextCell();
    if (!run.nodeDisjoint) return edge;
    RVNode* next = data->pDisjointPathsNode(edge->pTargetNode());
    if (node != data->pStartNode()) return findEdgeBetween(node, next);
    return next == data->pFinishNode() ? run.edges[placeOf(edge)] : run.firstEdges[placeOf(next)];
}
