// Reachable nodes: all nodes that one node can reach, or that can reach it, optionally within a cost range,
// in the order of their distance.
//
// Works on the caller's graph, any graph. Edges are followed forward, in a reversed search backward, and
// undirected ones both ways. With a range, a node's distance is the sum of the costs of the edges on the way
// and of the nodes in between; the costs of the start node and of the node itself do not count. Without one,
// costs play no part, and the distance is the number of edges. Nodes whose distance is at most the range are
// listed, the start node first, nodes of equal distance in the order in which they came to that distance.
// Distances of 2147483647 and more count as unreachable.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_INVALID_RANGE for a range below 0 that is not -1, RV_NEGATIVE_COST for any
// negative cost of an edge or node of the graph, whatever the range, and the framework's.
// Method: Dijkstra 1959, on buckets; without a range breadth-first search. A search within a range costs what
// it reaches, unless the input's class makes records of its own. O(n + m log C) time at worst for costs up to
// C, O(n + m) without a range; O(n + m) space.
//
//   RVReachableNodesAlgorithm search;
//   RVReachableNodesInputData input(graph);
//   RVReachableNodesOutputData output;
//   input.pStartNode(node);
//   input.range(10);
//   search.pInputData(&input);
//   search.pOutputData(&output);
//   if (search.run() == RV_NO_ERROR) use(*output.pNodeList());
#pragma once

#include "rv/foundation/keyed_tree.h"
#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/references.h"
#include "rv/shortestpaths/path_costs.h"

class RVReachableNodesAlgorithm;

// Named fields: "startNode", "range" (of the graph) and those of RVPathCostInputData.
class RV_EXPORT RVReachableNodesInputData : public RVPathCostInputData {
    RV_DATA_OBJECT(RVReachableNodesInputData)

public:
    explicit RVReachableNodesInputData(RVGraph* graph) : RVPathCostInputData(graph) {}

    // A node of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    // The greatest distance; -1, the default, means no limit.
    int range() const { return m_range; }
    int range(int value) { return m_range = value; }
    // Nonzero: the nodes that can reach the start node. Default 0. No named field: copyData leaves it.
    int reversed() const { return m_reversed; }
    int reversed(int flag) { return m_reversed = flag; }

protected:
    RVReachableNodesInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pStartNode{this};
    int m_range = -1;
    int m_reversed = 0;
};

class RV_EXPORT RVReachableNodesOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVReachableNodesOutputData)

public:
    RVReachableNodesOutputData() = default;

    // The nodes in the order of their distance.
    RVNodeDList* pNodeList() const { return m_nodes.get(); }
    // Empties the list, then fills it with the nodes.
    void buildReachableNodeList(RVNodeDList& list) const;

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_nodes;
};

// The nodes that wait for being settled, nearest first.
class RV_EXPORT RVReachableNodesBinTree : public rv::KeyedTree<RVReachableNodesBinTree> {
    RV_OBJECT(RVReachableNodesBinTree)

public:
    explicit RVReachableNodesBinTree(RVReachableNodesAlgorithm* algorithm = nullptr)
        : m_pAlgorithm(algorithm) {}

    // The distance that a search within a range has found for a node; 2147483647 otherwise, and outside a
    // run.
    int keyOf(RVObject* node) const;

private:
    RVReachableNodesAlgorithm* m_pAlgorithm;
};

class RV_EXPORT RVReachableNodesAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT_NO_COPY(RVReachableNodesAlgorithm)
    RV_WORKS_WITH(RVReachableNodesInputData, RVReachableNodesOutputData)

public:
    RVReachableNodesAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;

private:
    friend class RVReachableNodesBinTree;
    struct Run;

    int distance(const RVNode* node) const;

    rv::RunState<Run> m_run{this};
};
