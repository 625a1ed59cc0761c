// Minimum spanning tree: edges of least total cost that connect all nodes, whatever the directions of edges.
//
// Any graph; self-loops play no part, and of parallel edges, whatever their directions, only the cheapest.
// Costs may be negative; an edge of cost 2147483647 counts as none. A graph that is not connected, or empty,
// has no tree: the output stays empty, and that is no failure.
//
// Ties: of equally cheap parallel edges the first in the in-edge order, then the out-edge order, of the
// source of the first of them in graph order. The tree grows from the first node of the graph; among nodes
// that can be joined at the same cost the one that came to that cost first is joined, by the edge that was
// found first, where a joined node's in-edges come before its out-edges.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: Prim 1957, with buckets of costs: O(n + m) time where costs lie no further apart than some 2 m,
// else O(m log m); in an object of a subclass with its hooks, on a copy, O(m log n). O(n + m) space.
//
//   RVMinimumSpanningTreeAlgorithm tree;
//   RVMinimumSpanningTreeInputData input(graph);
//   RVMinimumSpanningTreeOutputData output;
//   input.cost(edge, 5);
//   tree.pInputData(&input);
//   tree.pOutputData(&output);
//   if (tree.run() == RV_NO_ERROR) use(output.totalCost(), *output.pTreeEdgeList());
#pragma once

#include "rv/foundation/keyed_tree.h"
#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"

class RVMinimumSpanningTreeInternalData;

// Per edge of the input.
class RV_EXPORT RVEdgeExtensionMinimumSpanningTreeInput : public RVEdgeAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumSpanningTreeInput)

public:
    RVEdgeExtensionMinimumSpanningTreeInput() = default;
    RVEdgeExtensionMinimumSpanningTreeInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAlgorithmExtension(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }

private:
    int m_cost = 0;
};

// Per edge of the output.
class RV_EXPORT RVEdgeExtensionMinimumSpanningTreeOutput : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumSpanningTreeOutput)

public:
    RVEdgeExtensionMinimumSpanningTreeOutput() = default;
    RVEdgeExtensionMinimumSpanningTreeOutput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}
    int treeEdge() const { return m_treeEdge; }
    int treeEdge(int flag) { return m_treeEdge = flag; }

private:
    int m_treeEdge = 0;
};

// Per node of the working graph.
class RV_EXPORT RVNodeExtensionMinimumSpanningTreeInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionMinimumSpanningTreeInternal)

public:
    RVNodeExtensionMinimumSpanningTreeInternal() = default;
    RVNodeExtensionMinimumSpanningTreeInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    // Of the cheapest edge to the tree that is known, 2147483647 before one is.
    int currentCost() const { return m_currentCost; }
    int currentCost(int cost) { return m_currentCost = cost; }
    // 1 for a node of the tree.
    int touched() const { return m_touched; }
    int touched(int flag) { return m_touched = flag; }
    // That edge.
    RVEdge* pParentEdge() const { return m_pParentEdge; }
    RVEdge* pParentEdge(RVEdge* edge) { return m_pParentEdge = edge; }

private:
    int m_currentCost = 2147483647;
    int m_touched = 0;
    RVEdge* m_pParentEdge = nullptr;
};

// Per edge of the working graph.
class RV_EXPORT RVEdgeExtensionMinimumSpanningTreeInternal : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumSpanningTreeInternal)

public:
    RVEdgeExtensionMinimumSpanningTreeInternal() = default;
    RVEdgeExtensionMinimumSpanningTreeInternal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }
    int treeEdge() const { return m_treeEdge; }
    int treeEdge(int flag) { return m_treeEdge = flag; }

private:
    int m_cost = 0;
    int m_treeEdge = 0;
};

// Named fields: "cost" (of an edge).
class RV_EXPORT RVMinimumSpanningTreeInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVMinimumSpanningTreeInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumSpanningTreeInput)

public:
    explicit RVMinimumSpanningTreeInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Default 0.
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }
    // The costs, for reading all at once.
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }

protected:
    RVMinimumSpanningTreeInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::EdgeCosts m_edgeCosts{this, &EdgeRecord::cost, &EdgeRecord::cost};
};

class RV_EXPORT RVMinimumSpanningTreeOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVMinimumSpanningTreeOutputData)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumSpanningTreeOutput)

public:
    RVMinimumSpanningTreeOutputData() = default;

    // The caller's edges in the tree, in graph order; empty when there is no tree.
    RVEdgeDList* pTreeEdgeList() const { return m_treeEdges.get(); }
    // Empties the list, then fills it with these edges.
    void buildTreeEdgeList(RVEdgeDList& list) const;
    int totalCost() const { return m_totalCost; }
    int totalCost(int cost) { return m_totalCost = cost; }
    // 1 for an edge of the tree.
    int treeEdge(RVEdge* edge) const { return m_isTreeEdge.get(edge); }
    int treeEdge(RVEdge* edge, int flag) { return m_isTreeEdge.store(edge, flag); }
    // The same, for writing all at once.
    rv::EdgeColumn<int>& isTreeEdge() { return m_isTreeEdge; }

    void reset() override;

private:
    rv::Owned<RVEdgeDList> m_treeEdges;
    int m_totalCost = 0;
    rv::EdgeColumn<int> m_isTreeEdge{this, &EdgeRecord::treeEdge, &EdgeRecord::treeEdge};
};

// Nodes of a working graph in the order of their current costs.
class RV_EXPORT RVMinimumSpanningTreeBinTree : public rv::KeyedTree<RVMinimumSpanningTreeBinTree> {
    RV_OBJECT(RVMinimumSpanningTreeBinTree)

public:
    // Without data all nodes compare as equal.
    explicit RVMinimumSpanningTreeBinTree(RVMinimumSpanningTreeInternalData* data = nullptr)
        : m_pData(data) {}

    // Whose costs count. Not owned.
    RVMinimumSpanningTreeInternalData* pData() const { return m_pData; }
    RVMinimumSpanningTreeInternalData* pData(RVMinimumSpanningTreeInternalData* data);

    // The current cost of a node.
    int keyOf(RVObject* node) const;

private:
    RVMinimumSpanningTreeInternalData* m_pData;
};

class RV_EXPORT RVMinimumSpanningTreeInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVMinimumSpanningTreeInternalData)
    RV_NODE_RECORDS(RVNodeExtensionMinimumSpanningTreeInternal)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumSpanningTreeInternal)

public:
    RVMinimumSpanningTreeInternalData() = default;

    // How many tree edges have been found.
    int edgeCounter() const { return m_edgeCounter; }
    int edgeCounter(int number) { return m_edgeCounter = number; }
    // The nodes that can be joined to the tree.
    RVMinimumSpanningTreeBinTree* pPartialTreeNodeList() const { return &m_partialTreeNodes; }

    int currentCost(RVNode* node) const { return load(node, &NodeRecord::currentCost); }
    int currentCost(RVNode* node, int cost) { return store(node, &NodeRecord::currentCost, cost); }
    int touched(RVNode* node) const { return load(node, &NodeRecord::touched); }
    int touched(RVNode* node, int flag) { return store(node, &NodeRecord::touched, flag); }
    RVEdge* pParentEdge(RVNode* node) const { return load(node, &NodeRecord::pParentEdge); }
    RVEdge* pParentEdge(RVNode* node, RVEdge* edge) { return store(node, &NodeRecord::pParentEdge, edge); }
    int cost(RVEdge* edge) const { return load(edge, &EdgeRecord::cost); }
    int cost(RVEdge* edge, int value) { return store(edge, &EdgeRecord::cost, value); }
    int treeEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::treeEdge); }
    int treeEdge(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::treeEdge, flag); }

private:
    int m_edgeCounter = 0;
    mutable RVMinimumSpanningTreeBinTree m_partialTreeNodes{this};
};

class RV_EXPORT RVMinimumSpanningTreeAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVMinimumSpanningTreeAlgorithm)
    RV_WORKS_WITH(RVMinimumSpanningTreeInputData, RVMinimumSpanningTreeOutputData)

public:
    RVMinimumSpanningTreeAlgorithm() = default;

    // 0: all edges are followed both ways.
    int directed() const override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Self-loops and parallel edges are detached; nodes are not.
    void privatePreprocessGraph() override;
    RVEdge* selectRepresentativeEdge(RVEdge* edge) override;

private:
    RVMinimumSpanningTreeInternalData* pData() const {
        return static_cast<RVMinimumSpanningTreeInternalData*>(pInternalData());
    }
};
