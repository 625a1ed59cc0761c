// Minimum cut: edges of least total cost whose removal separates a sink from a source of a directed graph.
//
// Any directed graph. Edges that cost nothing are always part of the cut, needed or not. When source and sink
// are the same node, what is cut are the cycles through it.
//
// Order: the edges that leave the source's side, node by node as a search from the source finds them, each
// with its out-edges in order; then all edges without cost that are not there yet, in graph order; then
// self-loops of a source that is the sink.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_SOURCE_NODE,
// RV_SOURCE_NODE_NOT_IN_GRAPH, RV_NO_SINK_NODE, RV_SINK_NODE_NOT_IN_GRAPH, RV_NEGATIVE_COST of any edge,
// RV_ALGORITHM_FAILURE when a part fails, and the framework's.
// Method: maximum flow (Ford and Fulkerson 1956), whose header tells time and space; in an object of a
// subclass with its hooks, on a copy.
//
//   RVMinimumCutAlgorithm cut;
//   RVMinimumCutInputData input(graph);
//   RVMinimumCutOutputData output;
//   input.pSourceNode(from);
//   input.pSinkNode(to);
//   input.cost(edge, 5);
//   cut.pInputData(&input);
//   cut.pOutputData(&output);
//   if (cut.run() == RV_NO_ERROR) use(output.totalCost(), *output.pEdgeList());
#pragma once

#include "rv/flow/flow_data.h"
#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"

class RVMaximumFlowInputData;

// Per edge of the input.
class RV_EXPORT RVEdgeExtensionMinimumCutInput : public RVEdgeAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumCutInput)

public:
    RVEdgeExtensionMinimumCutInput() = default;
    RVEdgeExtensionMinimumCutInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAlgorithmExtension(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }

private:
    int m_cost = 0;
};

// Named fields: those of RVNetworkInputData, "cost" (of an edge; hasField announces it too).
class RV_EXPORT RVMinimumCutInputData : public RVNetworkInputData {
    RV_DATA_OBJECT(RVMinimumCutInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumCutInput)

public:
    explicit RVMinimumCutInputData(RVGraph* graph) : RVNetworkInputData(graph) {}

    // Default 0.
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }
    // The costs, for reading all at once.
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }

protected:
    RVMinimumCutInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::EdgeCosts m_edgeCosts{this, &EdgeRecord::cost, &EdgeRecord::cost};
};

// Per node of the working graph.
class RV_EXPORT RVNodeExtensionMinimumCutInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionMinimumCutInternal)

public:
    RVNodeExtensionMinimumCutInternal() = default;
    RVNodeExtensionMinimumCutInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    // 1 for a node on the source's side.
    int touched() const { return m_touched; }
    int touched(int flag) { return m_touched = flag; }

private:
    int m_touched = 0;
};

class RV_EXPORT RVMinimumCutInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVMinimumCutInternalData)
    RV_NODE_RECORDS(RVNodeExtensionMinimumCutInternal)

public:
    RVMinimumCutInternalData() = default;

    // The edges of the working graph that leave the source's side.
    RVEdgeDList* pEdgeList() const { return m_edges.get(); }
    int touched(RVNode* node) const { return load(node, &NodeRecord::touched); }
    int touched(RVNode* node, int flag) { return store(node, &NodeRecord::touched, flag); }

private:
    rv::Owned<RVEdgeDList> m_edges;
};

class RV_EXPORT RVMinimumCutOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVMinimumCutOutputData)

public:
    RVMinimumCutOutputData() = default;

    // The caller's edges in the cut, each once.
    RVEdgeDList* pEdgeList() const { return m_edges.get(); }
    // Empties the list, then fills it with the cut.
    void buildEdgeList(RVEdgeDList& list) const;
    int totalCost() const { return m_totalCost; }
    int totalCost(int cost) { return m_totalCost = cost; }

    void reset() override;

private:
    rv::Owned<RVEdgeDList> m_edges;
    int m_totalCost = 0;
};

class RV_EXPORT RVMinimumCutAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVMinimumCutAlgorithm)
    RV_WORKS_WITH(RVMinimumCutInputData, RVMinimumCutOutputData)

public:
    RVMinimumCutAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Both do nothing: the copy is not normalised.
    void preprocessGraph() override;
    void postprocessGraph() override;

private:
    RVMinimumCutInternalData* pData() const {
        return static_cast<RVMinimumCutInternalData*>(pInternalData());
    }
    void copyInputData(RVMaximumFlowInputData& input) const;
};
