// Depth-first search: discovery and completion numbers and the parent of every node, and the kind of every
// edge, from a start node or over the whole graph.
//
// Any graph. Edges are followed forward, undirected ones both ways; a node's last out-edge is followed first.
// Of parallel edges one, the first in graph order, is followed. Without a start node the search starts where
// a breadth-first search does.
//
// Kinds: a tree edge led to the discovery of its target; a back edge leads to an ancestor or is a loop; a
// forward edge leads to a descendant; a cross edge to none of these. In an undirected search, and for an
// undirected edge, forward edges count as back edges. Edges that were not followed have no kind; parallels
// of followed edges have one that fits their ends.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_START_NODE_NOT_IN_GRAPH for a start
// node that is not in the input's graph, and the framework's.
// Method: Tarjan 1972, without recursion, in arrays made of the caller's graph; an object of a subclass runs
// on the hooks. O(n + m) time and space.
//
//   RVDepthFirstSearchAlgorithm search;
//   RVDepthFirstSearchInputData input(graph);
//   RVDepthFirstSearchOutputData output;
//   search.pInputData(&input);
//   search.pOutputData(&output);
//   if (search.run() == RV_NO_ERROR && output.edgeType(edge) == RVBackEdge) ...
#pragma once

#include "rv/traversal/traversal.h"

enum RVAnalysisEdgeTypeEnum {
    RVNoEdgeType = 0,
    RVTreeEdge = 1,
    RVForwardEdge = 2,
    RVBackEdge = 3,
    RVCrossEdge = 4
};

class RV_EXPORT RVNodeExtensionDepthFirstSearch : public RVNodeExtensionTraversal {
    RV_PLAIN_RECORD(RVNodeExtensionDepthFirstSearch)

public:
    RVNodeExtensionDepthFirstSearch() = default;
    RVNodeExtensionDepthFirstSearch(RVNode* node, const RVAlgorithmData* data)
        : RVNodeExtensionTraversal(node, data) {}

    int completionNumber() const { return m_completionNumber; }
    int completionNumber(int number) { return m_completionNumber = number; }
    // Edges traversed out of the node.
    int firedNumber() const { return m_firedNumber; }
    int firedNumber(int number) { return m_firedNumber = number; }

private:
    int m_completionNumber = 0;
    int m_firedNumber = 0;
};

class RV_EXPORT RVEdgeExtensionDepthFirstSearch : public RVEdgeExtensionTraversal {
    RV_PLAIN_RECORD(RVEdgeExtensionDepthFirstSearch)

public:
    RVEdgeExtensionDepthFirstSearch() = default;
    RVEdgeExtensionDepthFirstSearch(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeExtensionTraversal(edge, data) {}

    RVAnalysisEdgeTypeEnum edgeType() const { return m_edgeType; }
    RVAnalysisEdgeTypeEnum edgeType(RVAnalysisEdgeTypeEnum type) { return m_edgeType = type; }

private:
    RVAnalysisEdgeTypeEnum m_edgeType = RVNoEdgeType;
};

class RV_EXPORT RVDepthFirstSearchInternalData : public RVTraversalInternalData {
    RV_DATA_OBJECT(RVDepthFirstSearchInternalData)
    RV_NODE_RECORDS(RVNodeExtensionDepthFirstSearch)

public:
    RVDepthFirstSearchInternalData() = default;

    int nextCompletionNumber() const { return m_nextCompletionNumber; }
    int nextCompletionNumber(int number) { return m_nextCompletionNumber = number; }
    int completionNumber(RVNode* node) const { return load(node, &NodeRecord::completionNumber); }
    int completionNumber(RVNode* node, int number) {
        return store(node, &NodeRecord::completionNumber, number);
    }
    int firedNumber(RVNode* node) const { return load(node, &NodeRecord::firedNumber); }
    int firedNumber(RVNode* node, int number) { return store(node, &NodeRecord::firedNumber, number); }

private:
    int m_nextCompletionNumber = 1;
};

class RV_EXPORT RVDepthFirstSearchInputData : public RVTraversalInputData {
    RV_DATA_OBJECT(RVDepthFirstSearchInputData)

public:
    RVDepthFirstSearchInputData() = default;
    explicit RVDepthFirstSearchInputData(RVGraph* graph) : RVTraversalInputData(graph) {}
};

class RV_EXPORT RVDepthFirstSearchOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVDepthFirstSearchOutputData)
    RV_NODE_RECORDS(RVNodeExtensionDepthFirstSearch)
    RV_EDGE_RECORDS(RVEdgeExtensionDepthFirstSearch)

public:
    RVDepthFirstSearchOutputData() = default;

    // The nodes in discovery order.
    RVNodeDList* pNodeList() const { return m_nodes.get(); }
    // Empties the list, then fills it with the nodes in discovery order.
    void buildNodeOrderList(RVNodeDList& list) const;

    // Discovery and completion number, from 1; 0 for a node that the search did not reach.
    int orderNumber(RVNode* node) const { return m_orderNumbers.get(node); }
    int orderNumber(RVNode* node, int number) { return m_orderNumbers.store(node, number); }
    int completionNumber(RVNode* node) const { return m_completionNumbers.get(node); }
    int completionNumber(RVNode* node, int number) { return m_completionNumbers.store(node, number); }
    // None for a node from which the search started or that it did not reach.
    RVNode* pParentNode(RVNode* node) const { return m_parentNodes.get(node); }
    RVNode* pParentNode(RVNode* node, RVNode* parent) { return m_parentNodes.store(node, parent); }
    RVAnalysisEdgeTypeEnum edgeType(RVEdge* edge) const { return m_edgeTypes.get(edge); }
    RVAnalysisEdgeTypeEnum edgeType(RVEdge* edge, RVAnalysisEdgeTypeEnum type) {
        return m_edgeTypes.store(edge, type);
    }
    // These values, for writing them all at once.
    rv::NodeColumn<int>& orderNumbers() { return m_orderNumbers; }
    rv::NodeColumn<int>& completionNumbers() { return m_completionNumbers; }
    rv::NodeColumn<RVNode*>& parentNodes() { return m_parentNodes; }
    rv::EdgeColumn<RVAnalysisEdgeTypeEnum>& edgeTypes() { return m_edgeTypes; }

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_nodes;
    rv::NodeColumn<int> m_orderNumbers{this, &NodeRecord::orderNumber, &NodeRecord::orderNumber};
    rv::NodeColumn<int> m_completionNumbers{this, &NodeRecord::completionNumber,
                                            &NodeRecord::completionNumber};
    rv::NodeColumn<RVNode*> m_parentNodes{this, &NodeRecord::pParentNode, &NodeRecord::pParentNode};
    rv::EdgeColumn<RVAnalysisEdgeTypeEnum> m_edgeTypes{this, &EdgeRecord::edgeType, &EdgeRecord::edgeType};
};

class RV_EXPORT RVDepthFirstSearchAlgorithm : public RVTraversalAlgorithm {
    RV_OBJECT(RVDepthFirstSearchAlgorithm)
    RV_WORKS_WITH(RVDepthFirstSearchInputData, RVDepthFirstSearchOutputData)

public:
    RVDepthFirstSearchAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    RVEdge* pNextEdge() override;
    void visitNodeBeforeTraverse(RVNode* node, RVEdge* edge) override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;

    // All edges out of a node have been followed to the end. Gives the node the next completion number.
    virtual void completeNodeVisit(RVNode* node, RVNode* parent);

    RVDepthFirstSearchInternalData* pDepthFirstSearchInternalData() const {
        return static_cast<RVDepthFirstSearchInternalData*>(pInternalData());
    }

private:
    RVAnalysisEdgeTypeEnum typeOf(RVEdge* edge) const;
    RVAnalysisEdgeTypeEnum typeOfParallel(RVEdge* parallel, RVAnalysisEdgeTypeEnum representativeType) const;
};
