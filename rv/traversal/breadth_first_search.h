// Breadth-first search: numbers the nodes in the order in which they are reached, nearest first, from a start
// node or over the whole graph.
//
// Any graph; loops and parallel edges play no part. Edges are followed forward, undirected ones both ways. A
// node's out-edges are followed in out-edge order. Without a start node the search starts, as long as
// nodes are left, at the first one of smallest in-degree; when that has no out-edges, it goes on from the
// source of the first edge that was not followed; isolated nodes are visited last. With one, nodes that it
// does not reach keep number 0.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_START_NODE_NOT_IN_GRAPH for a start
// node that is not in the input's graph, and the framework's.
// O(n + m) time and space, in arrays made of the caller's graph; an object of a subclass runs on the hooks.
//
//   RVBreadthFirstSearchAlgorithm search;
//   RVBreadthFirstSearchInputData input(graph);
//   RVBreadthFirstSearchOutputData output;
//   input.pStartNode(node);
//   search.pInputData(&input);
//   search.pOutputData(&output);
//   if (search.run() == RV_NO_ERROR) use(*output.pNodeList());
#pragma once

#include "rv/traversal/traversal.h"

class RV_EXPORT RVBreadthFirstSearchInputData : public RVTraversalInputData {
    RV_DATA_OBJECT(RVBreadthFirstSearchInputData)

public:
    RVBreadthFirstSearchInputData() = default;
    explicit RVBreadthFirstSearchInputData(RVGraph* graph) : RVTraversalInputData(graph) {}
};

class RV_EXPORT RVBreadthFirstSearchOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVBreadthFirstSearchOutputData)
    RV_NODE_RECORDS(RVNodeExtensionTraversal)

public:
    RVBreadthFirstSearchOutputData() = default;

    // The nodes in visiting order.
    RVNodeDList* pNodeList() const { return m_nodes.get(); }
    // Empties the list, then fills it with the nodes in visiting order.
    void buildNodeOrderList(RVNodeDList& list) const;
    // From 1; 0 for a node that the search did not reach.
    int orderNumber(RVNode* node) const { return m_orderNumbers.get(node); }
    int orderNumber(RVNode* node, int number) { return m_orderNumbers.store(node, number); }
    // The order numbers, for writing them all at once.
    rv::NodeColumn<int>& orderNumbers() { return m_orderNumbers; }

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_nodes;
    rv::NodeColumn<int> m_orderNumbers{this, &NodeRecord::orderNumber, &NodeRecord::orderNumber};
};

class RV_EXPORT RVBreadthFirstSearchAlgorithm : public RVTraversalAlgorithm {
    RV_OBJECT(RVBreadthFirstSearchAlgorithm)
    RV_WORKS_WITH(RVBreadthFirstSearchInputData, RVBreadthFirstSearchOutputData)

public:
    RVBreadthFirstSearchAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVEdge* pNextEdge() override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;
};
