#include "rv/shortestpaths/all_pairs_shortest_paths.h"

#include <cstdint>
#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/path_matrix.h"

RV_OBJECT_IMPL(RVAllPairsShortestPathsInputData)
RV_OBJECT_IMPL(RVNodeExtensionAllPairsShortestPaths)
RV_OBJECT_IMPL(RVAllPairsShortestPathsOutputData)
RV_OBJECT_IMPL(RVAllPairsShortestPathsAlgorithm)

// Records and output

RVNodeExtensionAllPairsShortestPaths::RVNodeExtensionAllPairsShortestPaths(RVNode* node,
                                                                           const RVAlgorithmData* data)
    : RVNodeAnalysisExtension(node, data),
      m_pairs(static_cast<std::size_t>(node->pHomeGraph()->numberOfNodes())) {}

RVEdgeValuePair* RVAllPairsShortestPathsOutputData::pEdgeValuePair(RVNode* a, RVNode* b) const {
    if (a == nullptr || b == nullptr) return nullptr;
    auto* column = record<RVNodeExtensionAllPairsShortestPaths>(b);
    return column == nullptr ? nullptr : column->pEdgeValuePair(number(a));
}

bool RVAllPairsShortestPathsOutputData::isInGraph(const RVNode* node) const {
    return node != nullptr && pAssociatedGraph() != nullptr && node->pOwnerGraph() == pAssociatedGraph();
}

int RVAllPairsShortestPathsOutputData::computeLengthOfShortestPath(RVNode* a, RVNode* b) const {
    if (!isInGraph(a) || !isInGraph(b)) return rv::kInfinite;
    const RVEdgeValuePair* pair = pEdgeValuePair(a, b);
    return pair == nullptr ? rv::kInfinite : pair->value();
}

RVEdge* RVAllPairsShortestPathsOutputData::pLastEdge(RVNode* a, RVNode* b) const {
    if (!isInGraph(a) || !isInGraph(b)) return nullptr;
    const RVEdgeValuePair* pair = pEdgeValuePair(a, b);
    return pair == nullptr ? nullptr : pair->pEdge();
}

void RVAllPairsShortestPathsOutputData::buildShortestPathEdgeList(RVNode* a, RVNode* b,
                                                                  RVEdgeDList& list) const {
    if (!isInGraph(a) || !isInGraph(b)) return;
    list.deleteAllCells();
    RVNode* node = b;
    RVEdge* last = pLastEdge(a, b);
    if (last == nullptr) return;
    for (int steps = 0; steps == 0 || node != a; last = pLastEdge(a, node)) {
        if (last == nullptr || ++steps > pAssociatedGraph()->numberOfNodes()) {
            list.deleteAllCells();
            return;
        }
        list.prependEdge(last);
        node = node == last->pSourceNode() ? last->pTargetNode() : last->pSourceNode();
    }
}

void RVAllPairsShortestPathsOutputData::reset() { deleteDataReferences(pAssociatedGraph()); }

// By the numbers that the output gives the nodes.
void RVAllPairsShortestPathsOutputData::store(const RVGraph& graph, const rv::PathMatrix& matrix,
                                              std::span<RVEdge* const> edges) const {
    std::vector<RVNodeExtensionAllPairsShortestPaths*> records;
    std::vector<int> numbers;
    for (RVNode* node : *graph.pNodeList()) {
        records.push_back(static_cast<RVNodeExtensionAllPairsShortestPaths*>(pAlgorithmExtension(node)));
        numbers.push_back(number(node));
    }
    for (std::size_t i = 0; i < records.size(); ++i) {
        for (std::size_t j = 0; j < records.size(); ++j) {
            if (records[j] == nullptr) continue;
            RVEdgeValuePair* pair = records[j]->pEdgeValuePair(numbers[i]);
            if (pair == nullptr) continue;
            const rv::Index edge = matrix.lastEdge(i, j);
            pair->value(matrix.cost(i, j));
            pair->pEdge(edge == rv::kNoIndex ? nullptr : edges[edge]);
        }
    }
}

void RVAllPairsShortestPathsAlgorithm::initialize() {
    RVBaseGraphAlgorithm::initialize();
    const auto* output = RVAllPairsShortestPathsOutputData::castDown(pOutputData());
    int number = 0;
    for (RVNode* node : *pInputData()->pAssociatedGraph()->pNodeList()) output->number(node, number++);
}

RVServiceErrorCodeEnum RVAllPairsShortestPathsAlgorithm::algorithmBody() {
    const auto* input = RVAllPairsShortestPathsInputData::castDown(pInputData());
    auto* output = RVAllPairsShortestPathsOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    const std::int64_t n = graph->numberOfNodes();
    rv::RunPulse pulse(pRunControl(), "cheapest paths of all pairs", rv::saturatingProduct64(n * n, n));
    std::vector<std::size_t> places(static_cast<std::size_t>(graph->nodeIndexLimit()));
    std::vector<int> nodeCosts;
    for (RVNode* node : *graph->pNodeList()) {
        places[rv::placeOf(node)] = nodeCosts.size();
        nodeCosts.push_back(input->cost(node));
    }
    std::vector<RVEdge*> edges;
    std::vector<rv::PathMatrix::Edge> matrixEdges;
    for (RVEdge* edge : *graph->pEdgeList()) {
        edges.push_back(edge);
        matrixEdges.push_back({places[rv::placeOf(edge->pSourceNode())],
                               places[rv::placeOf(edge->pTargetNode())], input->cost(edge),
                               input->undirected() != 0 || input->undirected(edge) != 0});
    }
    rv::PathMatrix matrix(std::move(nodeCosts), std::move(matrixEdges), pulse);
    const bool hasNoNegativeCycle = matrix.compute();
    output->store(*graph, matrix, edges);
    output->pAssociatedGraph(graph);
    return hasNoNegativeCycle ? RV_NO_ERROR : RV_NEGATIVE_CYCLE;
}
