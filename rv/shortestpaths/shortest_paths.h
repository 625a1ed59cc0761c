// Shortest paths: a cheapest path between two nodes, whatever the costs. The service for everyday use: it
// takes the cheapest of three methods that fits the costs and the graph.
//
// Any graph. Costs of edges and nodes may be negative. Edges are followed forward, undirected ones both ways.
// The cost of a path is the sum of the costs of its edges and of the nodes in between; start and finish node
// do not count. A node leads to itself at cost 0 by no edge, unless a cycle through it is cheaper than 0
// without the node's own cost but not with it: then that cycle is the path. Only nodes on some way from start
// to finish count, so negative cycles elsewhere do no harm.
//
// Ties: of equally cheap paths, the one that the method finds (see the three headers): without negative costs
// the Dijkstra traversal; in an acyclic graph the first in-edge, in in-edge order, on a cheapest path to each
// node; otherwise that of all-pairs shortest paths. For the methods a node with a cost is two nodes with an
// edge of that cost from the one that is entered to the one that is left, and an undirected edge has a
// reverse edge that stands behind all edges of the graph.
//
// Sums saturate step by step: a path whose cost reaches 2147483647, be it on the way, counts as none, and a
// cost stays at -2147483648 at least. Whether a cycle is negative is told from its 32-bit sum, which wraps,
// so cycles that cost more than that range holds may be taken for negative ones, and the other way round.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH; RV_NEGATIVE_CYCLE when a
// negative cycle lies on the way from start to finish (an undirected edge that costs less than 0 on its
// way there and back, with both its nodes, is one), with pathExists 0 and totalCost 0; RV_ALGORITHM_FAILURE
// when a part fails, and the framework's. A finish node that cannot be reached is no failure: pathExists 0,
// totalCost 2147483647 and no edges.
// O(n + m log C) time for costs up to C, with negative costs and without cycles O(n + m), with both O(n^3)
// and O(n^2) space, in arrays made of the caller's graph; an object of a subclass works on a copy.
//
//   RVShortestPathsAlgorithm paths;
//   RVShortestPathsInputData input(graph);
//   RVShortestPathsOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   input.cost(edge, -5);
//   paths.pInputData(&input);
//   paths.pOutputData(&output);
//   if (paths.run() == RV_NO_ERROR && output.pathExists()) use(*output.pEdgeList());
#pragma once

#include "rv/framework/internal_graph_algorithm.h"
#include "rv/shortestpaths/shortest_paths_data.h"

class RV_EXPORT RVShortestPathsAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVShortestPathsAlgorithm)
    RV_WORKS_WITH(RVShortestPathsInputData, RVShortestPathsOutputData)

public:
    RVShortestPathsAlgorithm() = default;

    RVServiceErrorCodeEnum checkData() override;
    // 0: what subclasses run on is a copy.
    int canUseOriginalGraph() const override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    // Both do nothing: the copy is not normalised.
    void preprocessGraph() override;
    void postprocessGraph() override;

private:
    RVServiceErrorCodeEnum findPath(const RVShortestPathsInputData& input, RVEdgeDList& edges);
};
