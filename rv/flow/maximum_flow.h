// Maximum flow: as much as can flow from a source to a sink of a directed graph whose edges, and nodes if
// wanted, have capacities; and the nodes on the source's side of a minimum cut.
//
// Works on the caller's graph, any directed graph. An edge without a capacity carries nothing, a node without
// one is unlimited; source and sink are unlimited whatever their capacity. When source and sink are the same
// node, the flow goes around cycles through it.
//
// Ties: each augmenting path is the first that a breadth-first search finds which expands a node's out-edges
// and in-edges in their orders, so the flow on every edge is fixed.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_SOURCE_NODE,
// RV_SOURCE_NODE_NOT_IN_GRAPH, RV_NO_SINK_NODE, RV_SINK_NODE_NOT_IN_GRAPH, RV_NEGATIVE_CAPACITY of any node
// or edge, and the framework's.
// Method: blocking flows (Dinitz 1970) over in and out states of nodes, which give the flows of Edmonds and
// Karp 1972. O(n^2 m) time, O(n + m) space.
//
//   RVMaximumFlowAlgorithm flow;
//   RVMaximumFlowInputData input(graph);
//   RVMaximumFlowOutputData output;
//   input.pSourceNode(from);
//   input.pSinkNode(to);
//   input.capacity(edge, 5);
//   flow.pInputData(&input);
//   flow.pOutputData(&output);
//   if (flow.run() == RV_NO_ERROR) use(output.totalFlow(), output.flow(edge));
#pragma once

#include "rv/flow/flow_data.h"
#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/columns.h"

// Named fields: those of RVNetworkInputData, "capacity" (of a node and of an edge).
class RV_EXPORT RVMaximumFlowInputData : public RVNetworkInputData {
    RV_DATA_OBJECT(RVMaximumFlowInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionFlowInput)

public:
    explicit RVMaximumFlowInputData(RVGraph* graph) : RVNetworkInputData(graph) {}

    // Default 2147483647, unlimited, for a node and 0 for an edge.
    int capacity(RVNode* node) const { return m_nodeCapacities.get(node); }
    int capacity(RVNode* node, int value) { return m_nodeCapacities.store(node, value); }
    int capacity(RVEdge* edge) const { return m_edgeCapacities.get(edge); }
    int capacity(RVEdge* edge, int value) { return m_edgeCapacities.store(edge, value); }
    // The same, for reading all at once.
    const rv::NodeCosts& nodeCapacities() const { return m_nodeCapacities; }
    const rv::EdgeCosts& edgeCapacities() const { return m_edgeCapacities; }

protected:
    RVMaximumFlowInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeCosts m_nodeCapacities{this, 2147483647};
    rv::EdgeCosts m_edgeCapacities{this, &EdgeRecord::capacity, &EdgeRecord::capacity};
};

class RV_EXPORT RVMaximumFlowOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVMaximumFlowOutputData)
    RV_EDGE_RECORDS(RVEdgeExtensionFlowOutput)

public:
    RVMaximumFlowOutputData() = default;

    int totalFlow() const { return m_totalFlow; }
    int totalFlow(int flow) { return m_totalFlow = flow; }
    int flow(RVEdge* edge) const { return m_flows.get(edge); }
    int flow(RVEdge* edge, int value) { return m_flows.store(edge, value); }
    // The flows, for writing them all at once.
    rv::EdgeColumn<int>& flows() { return m_flows; }
    // The nodes that could still be reached at the end, in the order of the search: the source first. The
    // edges that leave them are a minimum cut.
    RVNodeDList* pVisitedNodeList() const { return m_visitedNodes.get(); }

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_visitedNodes;
    int m_totalFlow = 0;
    rv::EdgeColumn<int> m_flows{this, &EdgeRecord::flowValue, &EdgeRecord::flowValue};
};

class RV_EXPORT RVMaximumFlowAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT_NO_COPY(RVMaximumFlowAlgorithm)
    RV_WORKS_WITH(RVMaximumFlowInputData, RVMaximumFlowOutputData)

public:
    RVMaximumFlowAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
};
