// Unique path test: whether exactly one path leads from one node to another, and one such path.
//
// Any graph. Edges are followed forward, undirected ones both ways. Paths repeat no node. Two paths differ
// when one has an edge that the other has not, so parallel edges make two paths. A node reaches itself by the
// empty path alone.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH, RV_ALGORITHM_FAILURE when a
// part fails, and the framework's.
// Method: a path of fewest edges, then a path that has as few of its edges as can be: if it has fewer, the
// first is not unique. O(n + m) time and space; an object of a subclass runs on hooks and a copy.
//
//   RVUniquePathTestAlgorithm test;
//   RVUniquePathTestInputData input(graph);
//   RVUniquePathTestOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   test.pInputData(&input);
//   test.pOutputData(&output);
//   if (test.run() == RV_NO_ERROR && output.uniquePathExists()) use(*output.pEdgeList());
#pragma once

#include "rv/framework/references.h"
#include "rv/traversal/traversal.h"

// Named fields: those of RVTraversalInputData and "finishNode".
class RV_EXPORT RVUniquePathTestInputData : public RVTraversalInputData {
    RV_DATA_OBJECT(RVUniquePathTestInputData)

public:
    explicit RVUniquePathTestInputData(RVGraph* graph) : RVTraversalInputData(graph) {}

    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

protected:
    RVUniquePathTestInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVUniquePathTestInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVUniquePathTestInternalData)

public:
    RVUniquePathTestInternalData() = default;

    int undirected() const { return m_undirected; }
    int undirected(int flag) { return m_undirected = flag; }
    // Nodes of the working graph.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

private:
    int m_undirected = 0;
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVUniquePathTestOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVUniquePathTestOutputData)

public:
    RVUniquePathTestOutputData() = default;

    // One path from start to finish, of fewest edges, unique or not; empty when there is none.
    RVEdgeDList* pEdgeList() const { return m_edges.get(); }
    // Empties the list, then fills it with the path.
    void buildEdgeList(RVEdgeDList& list) const;
    int uniquePathExists() const { return m_uniquePathExists; }
    int uniquePathExists(int flag) { return m_uniquePathExists = flag; }

    void reset() override;

private:
    rv::Owned<RVEdgeDList> m_edges;
    int m_uniquePathExists = 0;
};

class RV_EXPORT RVUniquePathTestAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVUniquePathTestAlgorithm)
    RV_WORKS_WITH(RVUniquePathTestInputData, RVUniquePathTestOutputData)

public:
    RVUniquePathTestAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Both do nothing: the copy is not normalised.
    void preprocessGraph() override;
    void postprocessGraph() override;

private:
    RVUniquePathTestInternalData* pData() const {
        return static_cast<RVUniquePathTestInternalData*>(pInternalData());
    }
    template <class Input>
    void describe(Input& input) const;
    bool isUnique(const RVEdgeDList& path);
};
