// Acyclic test: whether a directed graph has no cycle. A self-loop is a cycle, and so are two edges between
// two nodes that point in opposite directions.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_ALGORITHM_FAILURE when the
// topological sort that it runs fails, and the framework's. Debug mode then prints the sort's code.
// O(n + m) time and space, in arrays made of the caller's graph; an object of a subclass runs on hooks and a
// copy.
//
//   RVAcyclicTestAlgorithm test;
//   RVAcyclicTestInputData input(graph);
//   RVAcyclicTestOutputData output;
//   test.pInputData(&input);
//   test.pOutputData(&output);
//   if (test.run() == RV_NO_ERROR && output.acyclic()) ...
#pragma once

#include "rv/framework/internal_graph_algorithm.h"

class RV_EXPORT RVAcyclicTestInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVAcyclicTestInputData)

public:
    RVAcyclicTestInputData() = default;
    explicit RVAcyclicTestInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}
};

class RV_EXPORT RVAcyclicTestOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVAcyclicTestOutputData)

public:
    RVAcyclicTestOutputData() = default;

    // 1 before a run.
    int acyclic() const { return m_acyclic; }
    int acyclic(int flag) { return m_acyclic = flag; }

    void reset() override;

private:
    int m_acyclic = 1;
};

class RV_EXPORT RVAcyclicTestAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVAcyclicTestAlgorithm)
    RV_WORKS_WITH(RVAcyclicTestInputData, RVAcyclicTestOutputData)

public:
    RVAcyclicTestAlgorithm() = default;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Does nothing: self-loops stay in the working graph and make it cyclic.
    void preprocessReflexiveEdges() override;
};
