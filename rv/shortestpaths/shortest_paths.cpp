#include "rv/shortestpaths/shortest_paths.h"

#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/shortestpaths/all_pairs_shortest_paths.h"
#include "rv/shortestpaths/dijkstra.h"
#include "rv/shortestpaths/unreached.h"
#include "rv/traversal/topological_sort.h"

RV_OBJECT_IMPL(RVShortestPathsAlgorithm)

namespace {

using rv::placeOf;

}  // namespace

RVServiceErrorCodeEnum RVShortestPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*pQuestion());
}

int RVShortestPathsAlgorithm::canUseOriginalGraph() const { return 0; }

void RVShortestPathsAlgorithm::preprocessGraph() {}

void RVShortestPathsAlgorithm::postprocessGraph() {}

const RVShortestPathsInputData* RVShortestPathsAlgorithm::pQuestion() const {
    return RVShortestPathsInputData::castDown(pInputData());
}

RVShortestPathsOutputData* RVShortestPathsAlgorithm::pAnswer() const {
    return RVShortestPathsOutputData::castDown(pOutputData());
}

int RVShortestPathsAlgorithm::cost(const RVEdge* edge) const { return m_run->costs[placeOf(edge)]; }

int RVShortestPathsAlgorithm::cost(const RVEdge* edge, int value) {
    std::vector<int>& costs = m_run->costs;
    if (placeOf(edge) >= costs.size()) costs.resize(placeOf(edge) + 1);
    return costs[placeOf(edge)] = value;
}

// Edges that stand for the cost of a node are none of the caller's.
void RVShortestPathsAlgorithm::appendOriginal(RVEdge* edge, RVEdgeDList& list) const {
    RVEdge* original = pInternalData()->pOriginalEdge(edge);
    if (original != edge) list.appendEdge(original);
}

RVServiceErrorCodeEnum RVShortestPathsAlgorithm::algorithmBody() {
    const RVGraph* graph = pAssociatedGraph();
    processUndirectedEdges();
    filterGraph(0);
    if (graph->numberOfNodes() > 0) filterGraph(1);
    if (graph->numberOfNodes() == 0) {
        pAnswer()->totalCost(rv::kInfinite);
        return pAnalysisInternalData()->returnCode();
    }
    storeEdgeCosts();
    splitNodes();
    hasNegativeCost() ? sortAndRun() : runDijkstraAlgorithm();
    return pAnalysisInternalData()->returnCode();
}

// Preparing the copy

void RVShortestPathsAlgorithm::processUndirectedEdges() {
    RVGraph* graph = pAssociatedGraph();
    RVAlgorithmData* data = pInternalData();
    const bool all = pQuestion()->undirected() != 0;
    const RVEdgeDList edges(*graph->pEdgeList());
    for (RVEdge* edge : edges) {
        RVEdge* original = data->pOriginalEdge(edge);
        if (!all && pQuestion()->undirected(original) == 0) continue;
        data->pOriginalEdge(graph->addEdge(edge->pTargetNode(), edge->pSourceNode(), 0), original);
    }
}

// Keeps what the start node reaches, or, reversed, what reaches the finish node; nothing when that leaves out
// the other of the two.
void RVShortestPathsAlgorithm::filterGraph(int reverse) {
    RVGraph* graph = pAssociatedGraph();
    RVAnalysisInternalData* data = pAnalysisInternalData();
    RVNode* from = data->pCopyNode(pQuestion()->pStartNode());
    RVNode* to = data->pCopyNode(pQuestion()->pFinishNode());
    if (reverse != 0) std::swap(from, to);

    RVReachableNodesOutputData output;
    rv::noteFailure(*data, rv::findReachable(*this, graph, from, reverse, output), debugMode(),
                    L"Error in Reachable Nodes. Return code = %d\n");
    bool hasPath = true;
    rv::forEachOtherNode(graph, *output.pNodeList(), [&](const RVNode* node) { hasPath &= node != to; });
    const RVNodeDList none;
    rv::forEachOtherNode(graph, hasPath ? *output.pNodeList() : none,
                         [&](RVNode* node) { graph->discardNode(node); });
}

void RVShortestPathsAlgorithm::storeEdgeCosts() {
    m_run->costs.resize(static_cast<std::size_t>(pAssociatedGraph()->edgeIndexLimit()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        cost(edge, pQuestion()->cost(pInternalData()->pOriginalEdge(edge)));
    }
}

// A node with a cost gets another one before it, which takes its in-edges, and an edge of that cost from
// there. Paths end before the finish node's edge and begin behind the start node's.
void RVShortestPathsAlgorithm::splitNodes() {
    RVGraph* graph = pAssociatedGraph();
    RVAlgorithmData* data = pInternalData();
    Run& run = *m_run;
    run.start = data->pCopyNode(pQuestion()->pStartNode());
    run.finish = data->pCopyNode(pQuestion()->pFinishNode());
    run.startIsFinish = run.start == run.finish;
    const RVNodeDList nodes(*graph->pNodeList());
    for (RVNode* node : nodes) {
        const int nodeCost = pQuestion()->cost(data->pOriginalNode(node));
        if (nodeCost == 0) continue;
        const RVEdgeDList inEdges(*node->pInEdgeList());
        RVNode* before = graph->addNode(0);
        cost(graph->addEdge(before, node, 0), nodeCost);
        for (RVEdge* edge : inEdges) edge->changeTargetNode(before);
        if (node == run.finish) run.finish = before;
    }
}

bool RVShortestPathsAlgorithm::hasNegativeCost() const {
    for (const RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (cost(edge) < 0) return true;
    }
    return false;
}

// The three methods

void RVShortestPathsAlgorithm::answerEmptyPath() {
    pAnswer()->pathExists(1);
    pAnswer()->totalCost(0);
}

void RVShortestPathsAlgorithm::runDijkstraAlgorithm() {
    if (m_run->startIsFinish) {
        answerEmptyPath();
        return;
    }
    RVGraph* graph = pAssociatedGraph();
    RVDijkstraAlgorithm dijkstra;
    RVShortestPathsInputData input(graph);
    RVDijkstraOutputData output;
    dijkstra.useOriginalGraph(1);
    input.pStartNode(m_run->start);
    input.pFinishNode(m_run->finish);
    for (RVEdge* edge : *graph->pEdgeList()) input.cost(edge, cost(edge));
    const RVServiceErrorCodeEnum code = rv::runPart(*this, dijkstra, input, output);
    rv::noteFailure(*pAnalysisInternalData(), code, debugMode(), L"Error in Dijkstra. Return code = %d\n");
    if (code != RV_NO_ERROR) return;
    pAnswer()->totalCost(output.totalCost());
    pAnswer()->pathExists(output.pathExists());
    for (RVEdge* edge : *output.pEdgeList()) appendOriginal(edge, *pAnswer()->pEdgeList());
}

void RVShortestPathsAlgorithm::sortAndRun() {
    RVTopologicalSortAlgorithm sort;
    RVTopologicalSortInputData input(pAssociatedGraph());
    RVTopologicalSortOutputData output;
    rv::noteFailure(*pAnalysisInternalData(), rv::runPart(*this, sort, input, output), debugMode(),
                    L"Error in Top Sort. Return code = %d\n");
    output.acyclic() != 0 ? runAcyclicAlgorithm(output) : runAllPairsAlgorithm();
}

// One pass in topological order: the distance of a node is that of its best predecessor.
void RVShortestPathsAlgorithm::runAcyclicAlgorithm(const RVTopologicalSortOutputData& sorted) {
    const Run& run = *m_run;
    if (run.startIsFinish) {
        answerEmptyPath();
        return;
    }
    struct Reached {
        int distance = rv::kInfinite;
        RVEdge* last = nullptr;
    };
    std::vector<Reached> reached(static_cast<std::size_t>(pAssociatedGraph()->nodeIndexLimit()));
    for (const RVNode* node : *sorted.pNodeList()) {
        Reached& best = reached[placeOf(node)];
        if (node == run.start) {
            best.distance = 0;
            continue;
        }
        for (RVEdge* edge : *node->pInEdgeList()) {
            const int before = reached[placeOf(edge->pSourceNode())].distance;
            if (before == rv::kInfinite) continue;
            const int distance = rv::saturatingSum(before, cost(edge));
            if (distance < best.distance) best = {distance, edge};
        }
    }
    const int distance = reached[placeOf(run.finish)].distance;
    pAnswer()->totalCost(distance);
    pAnswer()->pathExists(distance != rv::kInfinite ? 1 : 0);
    if (distance == rv::kInfinite) return;
    RVEdgeDList backward;
    for (const RVNode* node = run.finish; node != run.start;) {
        RVEdge* last = reached[placeOf(node)].last;
        appendOriginal(last, backward);
        node = last->pSourceNode();
    }
    for (RVEdge* edge : backward) pAnswer()->pEdgeList()->prependEdge(edge);
}

void RVShortestPathsAlgorithm::runAllPairsAlgorithm() {
    RVGraph* graph = pAssociatedGraph();
    RVAnalysisInternalData* data = pAnalysisInternalData();
    RVAllPairsShortestPathsAlgorithm paths;
    RVAllPairsShortestPathsInputData input(graph);
    auto output = std::make_unique<RVAllPairsShortestPathsOutputData>();
    for (RVEdge* edge : *graph->pEdgeList()) input.cost(edge, cost(edge));
    const RVServiceErrorCodeEnum code = rv::runPart(*this, paths, input, *output);
    if (code == RV_NEGATIVE_CYCLE) {
        data->returnCode(code);
    } else {
        rv::noteFailure(*data, code, debugMode(), L"Error in All Pairs. Return code = %d\n");
    }
    if (code != RV_NO_ERROR) return;
    if (goesRound(*output)) {
        data->returnCode(RV_NEGATIVE_CYCLE);
    } else {
        m_run->allPairs = std::move(output);
    }
}

// Whether the way back from the finish node never ends: then there is a negative cycle whose sum has wrapped.
bool RVShortestPathsAlgorithm::goesRound(const RVAllPairsShortestPathsOutputData& paths) const {
    const Run& run = *m_run;
    RVNode* node = run.finish;
    for (int steps = 0; steps <= pAssociatedGraph()->numberOfNodes(); ++steps) {
        if (steps > 0 && node == run.start) return false;
        const RVEdge* last = paths.pLastEdge(run.start, node);
        if (last == nullptr) return false;
        node = last->pSourceNode();
    }
    return true;
}

void RVShortestPathsAlgorithm::generateOutputData() {
    RVShortestPathsOutputData* answer = pAnswer();
    Run& run = *m_run;
    answer->pAssociatedGraph(pInternalData()->pInputGraph());
    if (run.allPairs == nullptr) return;  // the other methods have answered
    RVEdgeDList path;
    int length = run.allPairs->computeLengthOfShortestPath(run.start, run.finish);
    run.allPairs->buildShortestPathEdgeList(run.start, run.finish, path);
    run.allPairs = nullptr;
    if (run.startIsFinish && length >= 0) {
        length = 0;
        path.deleteAllCells();
    } else if (path.length() == 0) {
        length = rv::kInfinite;  // none, or one that is infinite on the way
    }
    answer->totalCost(length);
    answer->pathExists(length != rv::kInfinite ? 1 : 0);
    for (RVEdge* edge : path) appendOriginal(edge, *answer->pEdgeList());
}
