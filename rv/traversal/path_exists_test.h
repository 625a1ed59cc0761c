// Path exists test: whether one node can be reached from another, with a path of fewest edges, or the nodes
// that can be reached if there is none.
//
// Any graph. Edges are followed forward, undirected ones both ways; an undirected edge stands in the path
// whichever way it is used. A node reaches itself by the empty path.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH, and the framework's.
// Method: breadth-first searches from both ends, which cost what they touch; where no path exists, the nodes
// that can be reached and their edges. O(n + m) time and space at worst; an object of a subclass runs on the
// hooks of a breadth-first search that stops at the finish node.
//
//   RVPathExistsTestAlgorithm test;
//   RVPathExistsTestInputData input(graph);
//   RVPathExistsTestOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   test.pInputData(&input);
//   test.pOutputData(&output);
//   if (test.run() == RV_NO_ERROR && output.pathExists()) use(*output.pEdgeList());
#pragma once

#include "rv/framework/references.h"
#include "rv/traversal/breadth_first_search.h"

class RV_EXPORT RVPathExistsTestInternalData : public RVTraversalInternalData {
    RV_DATA_OBJECT(RVPathExistsTestInternalData)

public:
    RVPathExistsTestInternalData() = default;

    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }
    int reached() const { return m_reached; }
    int reached(int flag) { return m_reached = flag; }

private:
    rv::NodeReference m_pFinishNode{this};
    int m_reached = 0;
};

// Named fields: those of RVTraversalInputData and "finishNode".
class RV_EXPORT RVPathExistsTestInputData : public RVTraversalInputData {
    RV_DATA_OBJECT(RVPathExistsTestInputData)

public:
    RVPathExistsTestInputData() = default;
    explicit RVPathExistsTestInputData(RVGraph* graph) : RVTraversalInputData(graph) {}

    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

protected:
    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVPathExistsTestOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVPathExistsTestOutputData)

public:
    RVPathExistsTestOutputData() = default;

    int pathExists() const { return m_pathExists; }
    int pathExists(int flag) { return m_pathExists = flag; }
    // The path from start to finish; empty without one.
    RVEdgeDList* pEdgeList() const { return m_edges.get(); }
    // The nodes that can be reached, in visiting order, when the finish node cannot; else empty.
    RVNodeDList* pVisitedNodeList() const { return m_visitedNodes.get(); }
    // Empties the list, then fills it with the path.
    void buildEdgeList(RVEdgeDList& list) const;

    void reset() override;

private:
    rv::Owned<RVEdgeDList> m_edges;
    int m_pathExists = 0;
    rv::Owned<RVNodeDList> m_visitedNodes;
};

class RV_EXPORT RVPathExistsTestAlgorithm : public RVBreadthFirstSearchAlgorithm {
    RV_OBJECT(RVPathExistsTestAlgorithm)
    RV_WORKS_WITH(RVPathExistsTestInputData, RVPathExistsTestOutputData)

public:
    RVPathExistsTestAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    RVEdge* pNextEdge() override;
    RVNode* findStartNode() override;
    RVEdge* findStartEdge() override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;

private:
    RVPathExistsTestInternalData* pData() const {
        return static_cast<RVPathExistsTestInternalData*>(pInternalData());
    }
};
