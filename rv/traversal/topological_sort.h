// Topological sort: orders the nodes of a directed graph so that every edge goes from an earlier to a later
// node, and tells whether the graph is acyclic.
//
// Works on the caller's graph, any directed graph. Parallel edges are allowed; a self-loop is a cycle. A
// cycle is a result, not a failure: then there is no order at all, not even a partial one.
//
// Ties: nodes without in-edges come in graph order, all others in the order in which the last of their
// in-edges is consumed, where nodes consume their out-edges in out-edge order.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: Kahn 1962, in arrays made of the caller's graph. O(n + m) time and space.
//
//   RVTopologicalSortAlgorithm sort;
//   RVTopologicalSortInputData input(graph);
//   RVTopologicalSortOutputData output;
//   sort.pInputData(&input);
//   sort.pOutputData(&output);
//   if (sort.run() == RV_NO_ERROR && output.acyclic()) use(*output.pNodeList());
#pragma once

#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/columns.h"

class RV_EXPORT RVTopologicalSortInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVTopologicalSortInputData)

public:
    RVTopologicalSortInputData() = default;
    explicit RVTopologicalSortInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}
};

class RV_EXPORT RVTopologicalSortOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVTopologicalSortOutputData)

public:
    RVTopologicalSortOutputData() = default;

    // 1 before a run.
    int acyclic() const { return m_acyclic; }
    int acyclic(int flag) { return m_acyclic = flag; }

    // The node's number, from 1; 0 for a node without one.
    int orderNumber(RVNode* node) const { return m_orderNumbers.get(node); }
    int orderNumber(RVNode* node, int number) { return m_orderNumbers.store(node, number); }

    // The nodes in topological order; empty when the graph is not acyclic.
    RVNodeDList* pNodeList() const { return m_nodes.get(); }
    // Empties the list, then fills it with the nodes in topological order.
    void buildNodeOrderList(RVNodeDList& list) const;

    // The order numbers, for writing them all at once.
    rv::NodeColumn<int>& orderNumbers() { return m_orderNumbers; }

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_nodes;
    int m_acyclic = 1;
    rv::NodeColumn<int> m_orderNumbers{this};
};

// The number of a node, for callers' use; the algorithm makes no such records.
class RV_EXPORT RVNodeExtensionTopologicalSort : public RVNodeAnalysisExtension {
    RV_OBJECT(RVNodeExtensionTopologicalSort)

public:
    RVNodeExtensionTopologicalSort() = default;
    RVNodeExtensionTopologicalSort(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    int orderNumber() const { return m_orderNumber; }
    int orderNumber(int number) { return m_orderNumber = number; }

private:
    int m_orderNumber = 0;
};

class RV_EXPORT RVTopologicalSortAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT(RVTopologicalSortAlgorithm)
    RV_WORKS_WITH(RVTopologicalSortInputData, RVTopologicalSortOutputData)

public:
    RVTopologicalSortAlgorithm() = default;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
};
