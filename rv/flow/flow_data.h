// What the flow algorithms have in common: the two ends of a network, and records of capacities and flows.
//
// Capacities and flows are signed 32-bit integers; for nodes 2147483647 stands for unlimited. Sums are formed
// in wider arithmetic and stay at 2147483647 when they are given out.
#pragma once

#include <utility>

#include "rv/foundation/buffer.h"
#include "rv/framework/analysis_data.h"
#include "rv/framework/references.h"

// Per edge of the inputs with capacities.
class RV_EXPORT RVEdgeExtensionFlowInput : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionFlowInput)

public:
    RVEdgeExtensionFlowInput() = default;
    RVEdgeExtensionFlowInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}
    int capacity() const { return m_capacity; }
    int capacity(int value) { return m_capacity = value; }

private:
    int m_capacity = 0;
};

// Per edge of the outputs.
class RV_EXPORT RVEdgeExtensionFlowOutput : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionFlowOutput)

public:
    RVEdgeExtensionFlowOutput() = default;
    RVEdgeExtensionFlowOutput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}
    int flowValue() const { return m_flowValue; }
    int flowValue(int value) { return m_flowValue = value; }

private:
    int m_flowValue = 0;
};

// A question about a network. Named fields: "sourceNode", "sinkNode" (of the graph).
class RV_EXPORT RVNetworkInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVNetworkInputData)

public:
    explicit RVNetworkInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Nodes of the input's graph; default none.
    RVNode* pSourceNode() const { return m_pSourceNode; }
    RVNode* pSourceNode(RVNode* node) { return m_pSourceNode = node; }
    RVNode* pSinkNode() const { return m_pSinkNode; }
    RVNode* pSinkNode(RVNode* node) { return m_pSinkNode = node; }

protected:
    RVNetworkInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pSourceNode{this};
    rv::NodeReference m_pSinkNode{this};
};

namespace rv {

// Whether a node or an edge that is in the input's graph has one. O(1) where none has, unless the input keeps
// records.
template <class Input>
bool hasNegativeCapacity(const Input& input) {
    const RVGraph* graph = input.pAssociatedGraph();
    return input.nodeCapacities().hasNegatives(graph) || input.edgeCapacities().hasNegatives(graph);
}

// Takes all flows from an output, whatever its reset has left.
template <class Output>
void clearFlows(Output& output) {
    for (RVEdge* edge : *output.pAssociatedGraph()->pEdgeList()) {
        if (output.flow(edge) != 0) output.flow(edge, 0);
    }
}

// Gives an output all its flows, by dense index.
template <class Output>
void writeFlows(Output& output, Buffer<int>&& flows) {
    if (!output.flows().usable()) clearFlows(output);
    output.flows().assign(output.pAssociatedGraph(), std::move(flows));
}

}  // namespace rv
