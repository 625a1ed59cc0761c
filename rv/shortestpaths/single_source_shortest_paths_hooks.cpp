// The hooks of single-source shortest paths. Subclasses run on them.

#include <optional>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/cheapest_tree.h"
#include "rv/shortestpaths/single_source_shortest_paths.h"
#include "rv/shortestpaths/unreached.h"

RV_OBJECT_IMPL(RVSingleSourceShortestPathsBinTree)

using rv::placeOf;

// Values by dense index of the working graph's edges.
struct RVSingleSourceShortestPathsAlgorithm::Run {
    // Edges that have come since the input was read have the defaults.
    void cover(const RVGraph* graph) {
        costs.resize(static_cast<std::size_t>(graph->edgeIndexLimit()), 1);
        undirectedEdges.resize(costs.size());
    }

    RVNode* start = nullptr;
    bool isUndirected = false;
    bool anyUndirectedEdge = false;
    std::vector<int> costs;
    std::vector<bool> undirectedEdges;
    RVNodeDList removedNodes;
    std::optional<rv::CheapestTree> tree;
};

RV_OBJECT_IMPL(RVSingleSourceShortestPathsAlgorithm)

int RVSingleSourceShortestPathsBinTree::keyOf(RVObject* node) const {
    const auto* run = m_pAlgorithm == nullptr ? nullptr : m_pAlgorithm->m_run.get();
    const bool isKnown =
        run != nullptr && run->tree && run->tree->covers(rv::indexOf(RVNode::castDown(node)));
    return isKnown ? rv::saturate(run->tree->distance(rv::indexOf(RVNode::castDown(node)))) : rv::kInfinite;
}

void RVSingleSourceShortestPathsAlgorithm::parseInputData() {
    const auto* input = RVSingleSourceShortestPathsInputData::castDown(pInputData());
    const RVGraph* graph = pAssociatedGraph();
    Run& run = *m_run;
    run.start = pInternalData()->pCopyNode(input->pStartNode());
    run.isUndirected = input->directed() == 0;
    run.cover(graph);
    for (RVEdge* edge : *graph->pEdgeList()) {
        RVEdge* original = pInternalData()->pOriginalEdge(edge);
        run.costs[placeOf(edge)] = input->cost(original);
        if (input->undirected(original) != 0)
            run.anyUndirectedEdge = run.undirectedEdges[placeOf(edge)] = true;
    }
}

// A part that fails has reached nothing, so that nothing is left.
void RVSingleSourceShortestPathsAlgorithm::privatePreprocessGraph() {
    RVGraph* graph = pAssociatedGraph();
    Run& run = *m_run;
    run.cover(graph);
    RVReachableNodesAlgorithm search;
    RVReachableNodesInputData input(graph);
    RVReachableNodesOutputData output;
    input.pStartNode(run.start);
    input.undirected(run.isUndirected ? 1 : 0);
    if (run.anyUndirectedEdge) {
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (run.undirectedEdges[placeOf(edge)]) input.undirected(edge, 1);
        }
    }
    rv::runPart(*this, search, input, output);
    rv::forEachOtherNode(graph, *output.pNodeList(), [&](RVNode* node) {
        noteOrders();
        run.removedNodes.appendNode(node);
        graph->removeNode(node);
    });
}

void RVSingleSourceShortestPathsAlgorithm::privatePostprocessGraph() { restoreWorkingGraph(); }

void RVSingleSourceShortestPathsAlgorithm::restoreWorkingGraph() {
    if (m_run.get() == nullptr) return;
    for (RVNode* node : m_run->removedNodes) pAssociatedGraph()->insertNode(node);
    m_run->removedNodes.deleteAllCells();
}

RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::algorithmBody() {
    Run& run = *m_run;
    const RVGraph* graph = pAssociatedGraph();
    run.cover(graph);
    rv::RunPulse pulse(pRunControl(), "cheapest paths", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    run.tree.emplace(
        flat->out(), [&]() -> const rv::Arcs& { return flat->in(); }, rv::indexOf(run.start),
        run.isUndirected || run.anyUndirectedEdge,
        [&](rv::Index edge) { return run.isUndirected || run.undirectedEdges[edge]; }, true,
        [&](rv::Index edge) { return run.costs[edge]; }, pulse);
    return run.tree->hasNegativeCycle() ? RV_NEGATIVE_CYCLE : RV_NO_ERROR;
}

void RVSingleSourceShortestPathsAlgorithm::generateOutputData() {
    const RVAlgorithmData* data = pInternalData();
    auto* output = RVSingleSourceShortestPathsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    const auto& tree = m_run->tree;
    if (!tree) return;
    const std::span<RVEdge* const> edges = rv::GraphAccess::edges(pAssociatedGraph());
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        const int distance = rv::saturate(tree->distance(rv::indexOf(node)));
        RVNode* const original = data->pOriginalNode(node);
        const rv::Index edge = tree->edge(rv::indexOf(node));
        output->distance(original, distance);
        if (edge != rv::kNoIndex && distance != rv::kInfinite)
            output->pTreeEdge(original, data->pOriginalEdge(edges[edge]));
    }
}
