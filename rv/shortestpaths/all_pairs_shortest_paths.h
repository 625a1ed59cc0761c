// All-pairs shortest paths: the cost of a cheapest path between every two nodes, and the last edge of one, so
// that every path can be read.
//
// Works on the caller's graph, any graph. Costs may be negative. Edges are followed forward, undirected ones
// both ways. The cost of a path is the sum of the costs of its edges and of the nodes in between; its first
// and its last node do not count. A node reaches itself at cost 0, or at that of a cycle which is cheaper
// without the node's own cost.
//
// A cycle is negative when its edges and all its nodes together cost less than 0; then the run ends with
// RV_NEGATIVE_CYCLE, and the output holds what had been found until then, which are costs of walks, but not
// of the cheapest. An undirected edge of negative cost between nodes without costs is such a cycle, as long
// as twice its cost fits into 32 bits.
//
// Ties: of parallel edges the cheapest counts, the first in graph order. A path is replaced only by a cheaper
// one, where the nodes in between are tried in graph order.
//
// Sums saturate: a path whose cost reaches 2147483647 counts as none, and a cost stays at -2147483648 at
// least. Whether a cycle is negative is told from its 32-bit sum, which wraps.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_NEGATIVE_CYCLE, and the framework's.
// Method: Floyd 1962, Warshall 1962. O(n^3) time, O(n^2) space: 24 bytes per pair of nodes in the output, and
// 8 for the time of the run.
//
//   RVAllPairsShortestPathsAlgorithm paths;
//   RVAllPairsShortestPathsInputData input(graph);
//   RVAllPairsShortestPathsOutputData output;
//   input.cost(edge, 5);
//   paths.pInputData(&input);
//   paths.pOutputData(&output);
//   if (paths.run() == RV_NO_ERROR) use(output.computeLengthOfShortestPath(a, b));
#pragma once

#include <span>
#include <vector>

#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/columns.h"
#include "rv/shortestpaths/path_costs.h"

namespace rv {
class PathMatrix;
}

// Named fields: those of RVPathCostInputData.
class RV_EXPORT RVAllPairsShortestPathsInputData : public RVPathCostInputData {
    RV_DATA_OBJECT(RVAllPairsShortestPathsInputData)

public:
    explicit RVAllPairsShortestPathsInputData(RVGraph* graph) : RVPathCostInputData(graph) {}

protected:
    RVAllPairsShortestPathsInputData() = default;
};

// Per node b: what leads to it from each node.
class RV_EXPORT RVNodeExtensionAllPairsShortestPaths : public RVNodeAnalysisExtension {
    RV_OBJECT(RVNodeExtensionAllPairsShortestPaths)

public:
    RVNodeExtensionAllPairsShortestPaths() = default;
    // With as many pairs as the node's graph has nodes.
    RVNodeExtensionAllPairsShortestPaths(RVNode* node, const RVAlgorithmData* data);

    // The node's index, from 0; default 0.
    int number() const { return m_number; }
    int number(int value) { return m_number = value; }
    // For the node a of number i: the cost of the path from a to this node, and its last edge. At first 0 and
    // none. None where there is no such pair.
    RVEdgeValuePair* pEdgeValuePair(int i) {
        return i < 0 || static_cast<std::size_t>(i) >= m_pairs.size() ? nullptr
                                                                      : &m_pairs[static_cast<std::size_t>(i)];
    }

private:
    int m_number = 0;
    std::vector<RVEdgeValuePair> m_pairs;
};

// Nodes that were added to the graph after the run have no valid entries.
class RV_EXPORT RVAllPairsShortestPathsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVAllPairsShortestPathsOutputData)
    RV_NODE_RECORDS(RVNodeExtensionAllPairsShortestPaths)

public:
    RVAllPairsShortestPathsOutputData() = default;

    int number(RVNode* node) const { return m_numbers.get(node); }
    int number(RVNode* node, int value) const { return m_numbers.store(node, value); }
    // What leads from a to b: cost and last edge. None where there is no such pair.
    RVEdgeValuePair* pEdgeValuePair(RVNode* a, RVNode* b) const;

    // 2147483647 when there is no path, and for nodes that are missing or not in the output's graph.
    int computeLengthOfShortestPath(RVNode* a, RVNode* b) const;
    // The edge that enters b on the path from a; none without a path and for such nodes.
    RVEdge* pLastEdge(RVNode* a, RVNode* b) const;
    // Empties the list, then fills it with the path from a to b; it stays empty when there is none, also
    // when the last edges do not lead back to a, after a negative cycle or where sums have saturated. Nodes
    // that are missing or not in the output's graph leave the list as it is. O(length).
    void buildShortestPathEdgeList(RVNode* a, RVNode* b, RVEdgeDList& list) const;

    void reset() override;

private:
    friend class RVAllPairsShortestPathsAlgorithm;

    bool isInGraph(const RVNode* node) const;
    void store(const RVGraph& graph, const rv::PathMatrix& matrix, std::span<RVEdge* const> edges) const;

    mutable rv::NodeColumn<int> m_numbers{this, &NodeRecord::number, &NodeRecord::number};
};

class RV_EXPORT RVAllPairsShortestPathsAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT(RVAllPairsShortestPathsAlgorithm)
    RV_WORKS_WITH(RVAllPairsShortestPathsInputData, RVAllPairsShortestPathsOutputData)

public:
    RVAllPairsShortestPathsAlgorithm() = default;

protected:
    void initialize() override;
    RVServiceErrorCodeEnum algorithmBody() override;
};
