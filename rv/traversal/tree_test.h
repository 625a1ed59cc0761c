// Tree test: whether a graph is a forest and whether it is a tree.
//
// Directions are ignored, unless the input says directed: then every tree of a forest must have one root, a
// node without in-edges, and no node more than one in-edge. Self-loops and parallel edges count as edges, so
// a graph with either is neither. The empty graph is a tree but no forest.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_ALGORITHM_FAILURE when the graph has
// lost its factory meanwhile, and the framework's. Debug mode then prints the code. O(n) time and space where
// there are fewer edges than nodes, otherwise O(1).
//
//   RVTreeTestAlgorithm test;
//   RVTreeTestInputData input(graph);
//   RVTreeTestOutputData output;
//   test.pInputData(&input);
//   test.pOutputData(&output);
//   if (test.run() == RV_NO_ERROR && output.isTree()) ...
#pragma once

#include "rv/framework/base_graph_algorithm.h"

// Named fields: "directed" (of the graph).
class RV_EXPORT RVTreeTestInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVTreeTestInputData)

public:
    RVTreeTestInputData() = default;
    explicit RVTreeTestInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Nonzero asks for rooted trees; default 0.
    int directed() const { return m_directed; }
    int directed(int flag) { return m_directed = flag; }

protected:
    std::span<const RVInputField> inputFields() const override;

private:
    int m_directed = 0;
};

class RV_EXPORT RVTreeTestOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVTreeTestOutputData)

public:
    RVTreeTestOutputData() = default;

    // Both 1 before a run.
    int isTree() const { return m_isTree; }
    int isTree(int flag) { return m_isTree = flag; }
    int isForest() const { return m_isForest; }
    int isForest(int flag) { return m_isForest = flag; }

    void reset() override;

private:
    int m_isTree = 1;
    int m_isForest = 1;
};

class RV_EXPORT RVTreeTestAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT(RVTreeTestAlgorithm)
    RV_WORKS_WITH(RVTreeTestInputData, RVTreeTestOutputData)

public:
    RVTreeTestAlgorithm() = default;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;

private:
    bool isForest(const RVGraph* graph) const;

    int m_isForest = 1;
};
