// New cycle test: whether a new edge from a source node to a target node would close a cycle, which it does
// when the graph has a directed path from the target to the source.
//
// Any graph; all edges are followed forward only. A source that is its own target closes a cycle.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_SOURCE_NODE,
// RV_SOURCE_NODE_NOT_IN_GRAPH, RV_NO_TARGET_NODE, RV_TARGET_NODE_NOT_IN_GRAPH, RV_ALGORITHM_FAILURE when the
// search for the path fails, and the framework's.
// Method: searches from both ends that take steps in turn, so that a test costs at most twice what the
// cheaper of the two would alone, and nothing for the rest of the graph. O(n + m) time and space at worst; an
// object of a subclass runs on hooks and a copy, O(n + m).
//
//   RVNewCycleTestAlgorithm test;
//   RVNewCycleTestInputData input(graph);
//   RVNewCycleTestOutputData output;
//   input.pSourceNode(from);
//   input.pTargetNode(to);
//   test.pInputData(&input);
//   test.pOutputData(&output);
//   if (test.run() == RV_NO_ERROR && !output.willCreateCycle()) graph->addEdge(from, to, 0);
#pragma once

#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/references.h"

// Named fields: "sourceNode" and "targetNode" (of the graph).
class RV_EXPORT RVNewCycleTestInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVNewCycleTestInputData)

public:
    RVNewCycleTestInputData() = default;
    explicit RVNewCycleTestInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // The ends of the new edge, nodes of the input's graph; default none.
    RVNode* pSourceNode() const { return m_pSourceNode; }
    RVNode* pSourceNode(RVNode* node) { return m_pSourceNode = node; }
    RVNode* pTargetNode() const { return m_pTargetNode; }
    RVNode* pTargetNode(RVNode* node) { return m_pTargetNode = node; }

protected:
    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pSourceNode{this};
    rv::NodeReference m_pTargetNode{this};
};

class RV_EXPORT RVNewCycleTestOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVNewCycleTestOutputData)

public:
    RVNewCycleTestOutputData() = default;

    // 1 when the new edge would close a cycle; 0 before a run.
    int willCreateCycle() const { return m_willCreateCycle; }
    int willCreateCycle(int flag) { return m_willCreateCycle = flag; }

    void reset() override;

private:
    int m_willCreateCycle = 0;
};

class RV_EXPORT RVNewCycleTestInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVNewCycleTestInternalData)

public:
    RVNewCycleTestInternalData() = default;

    // Whether there is a path from the target to the source.
    int pathFound() const { return m_pathFound; }
    int pathFound(int flag) { return m_pathFound = flag; }
    // Of the working graph.
    RVNode* pSourceNode() const { return m_pSourceNode; }
    RVNode* pSourceNode(RVNode* node) { return m_pSourceNode = node; }
    RVNode* pTargetNode() const { return m_pTargetNode; }
    RVNode* pTargetNode(RVNode* node) { return m_pTargetNode = node; }

private:
    int m_pathFound = 0;
    rv::NodeReference m_pSourceNode{this};
    rv::NodeReference m_pTargetNode{this};
};

class RV_EXPORT RVNewCycleTestAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVNewCycleTestAlgorithm)
    RV_WORKS_WITH(RVNewCycleTestInputData, RVNewCycleTestOutputData)

public:
    RVNewCycleTestAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // The working graph stays as it was copied.
    void preprocessGraph() override;
    void postprocessGraph() override;

private:
    RVNewCycleTestInternalData* pData() const {
        return static_cast<RVNewCycleTestInternalData*>(pInternalData());
    }
};
