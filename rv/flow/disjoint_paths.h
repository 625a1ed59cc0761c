// Disjoint paths: as many paths as possible from one node to another that share no edge, or no node in
// between.
//
// Any directed graph, edges in their own direction, each as good as the other. When start and finish are the
// same node, each path is a cycle through it. In edge-disjoint paths nodes may be shared, and one path may
// come to a node again.
//
// Of parallel edges, node-disjoint paths have the first one, but distinct ones from the start straight to the
// finish. Paths come in the order of the start's out-edges.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH, RV_ALGORITHM_FAILURE when a
// part fails, and the framework's. A finish node that cannot be reached is no failure: no paths.
// Method: maximum flow of unit capacities (Menger 1927); in an object of a subclass with its hooks, on a
// copy. O(paths (n + m)) time, O(n + m) space.
//
//   RVDisjointPathsAlgorithm paths;
//   RVDisjointPathsInputData input(graph);
//   RVDisjointPathsOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   paths.pInputData(&input);
//   paths.pOutputData(&output);
//   if (paths.run() == RV_NO_ERROR) use(output.numberOfDisjointPaths(), *output.pPathList());
#pragma once

#include <memory>

#include "rv/foundation/owned_lists.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/references.h"

class RVMaximumFlowInputData;
class RVMaximumFlowOutputData;

// Named fields: "startNode", "finishNode", "nodeDisjointPaths" (of the graph).
class RV_EXPORT RVDisjointPathsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVDisjointPathsInputData)

public:
    explicit RVDisjointPathsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Nonzero: paths that share no node in between. Default 0.
    int nodeDisjointPaths() const { return m_nodeDisjointPaths; }
    int nodeDisjointPaths(int flag) { return m_nodeDisjointPaths = flag; }
    // Nodes of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

protected:
    RVDisjointPathsInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    int m_nodeDisjointPaths = 0;
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVDisjointPathsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVDisjointPathsOutputData)

public:
    RVDisjointPathsOutputData() = default;

    // Lists of the caller's edges (RVEdgeDList), one per path, from start to finish.
    RVDList* pPathList() const { return m_paths.get(); }
    // Destroys what the list holds and fills it with copies of the paths, which are then the caller's.
    void buildPathList(RVDList& list) const;
    int numberOfDisjointPaths() const { return m_numberOfDisjointPaths; }
    int numberOfDisjointPaths(int number) { return m_numberOfDisjointPaths = number; }

    void reset() override;

private:
    friend class RVDisjointPathsAlgorithm;

    rv::OwnedLists<RVEdgeDList> m_paths;
    int m_numberOfDisjointPaths = 0;
};

// Per node of the working graph, and of the auxiliary graph in which every node is an entry and an exit.
class RV_EXPORT RVNodeExtensionDisjointPaths : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionDisjointPaths)

public:
    RVNodeExtensionDisjointPaths() = default;
    RVNodeExtensionDisjointPaths(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    // Of an entry: the node of the working graph.
    RVNode* pDisjointPathsNode() const { return m_pNode; }
    RVNode* pDisjointPathsNode(RVNode* node) { return m_pNode = node; }
    // Of a node of the working graph: its entry.
    RVNode* pDisjointPathsCopyNode() const { return m_pCopyNode; }
    RVNode* pDisjointPathsCopyNode(RVNode* node) { return m_pCopyNode = node; }

private:
    RVNode* m_pNode = nullptr;
    RVNode* m_pCopyNode = nullptr;
};

class RV_EXPORT RVDisjointPathsInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVDisjointPathsInternalData)
    RV_NODE_RECORDS(RVNodeExtensionDisjointPaths)

public:
    RVDisjointPathsInternalData() = default;

    // Of the part, while the body runs. Not owned.
    RVMaximumFlowInputData* pMaximumFlowInputData() const { return m_pMaximumFlowInputData; }
    RVMaximumFlowInputData* pMaximumFlowInputData(RVMaximumFlowInputData* data) {
        return m_pMaximumFlowInputData = data;
    }
    RVMaximumFlowOutputData* pMaximumFlowOutputData() const { return m_pMaximumFlowOutputData; }
    RVMaximumFlowOutputData* pMaximumFlowOutputData(RVMaximumFlowOutputData* data) {
        return m_pMaximumFlowOutputData = data;
    }
    // Nodes of the working graph.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

    RVNode* pDisjointPathsNode(RVNode* node) const { return load(node, &NodeRecord::pDisjointPathsNode); }
    RVNode* pDisjointPathsNode(RVNode* node, RVNode* value) {
        return store(node, &NodeRecord::pDisjointPathsNode, value);
    }
    RVNode* pDisjointPathsCopyNode(RVNode* node) const {
        return load(node, &NodeRecord::pDisjointPathsCopyNode);
    }
    RVNode* pDisjointPathsCopyNode(RVNode* node, RVNode* value) {
        return store(node, &NodeRecord::pDisjointPathsCopyNode, value);
    }

private:
    RVMaximumFlowInputData* m_pMaximumFlowInputData = nullptr;
    RVMaximumFlowOutputData* m_pMaximumFlowOutputData = nullptr;
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVDisjointPathsAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVDisjointPathsAlgorithm)
    RV_WORKS_WITH(RVDisjointPathsInputData, RVDisjointPathsOutputData)

public:
    RVDisjointPathsAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Does nothing: the copy is not normalised.
    void privatePreprocessGraph() override;

private:
    struct Run;

    RVDisjointPathsInternalData* pData() const {
        return static_cast<RVDisjointPathsInternalData*>(pInternalData());
    }
    RVGraph* buildAuxiliaryGraph();
    void copyInputData(RVMaximumFlowInputData& input) const;
    RVEdge* findOutEdge(RVNode* node);
    void extractPath();

    rv::RunState<Run> m_run{this};
};
