// Minimum cost flow: so much flow from a source to a sink, or as much as can be, at the least total cost.
//
// Any directed graph. Edges have capacities and costs per unit, and nodes may have both; what passes through
// a node pays for it. An edge without a capacity carries nothing, a node without one is unlimited; capacities
// and costs of source and sink play no part, and neither does the negative cost of a node without a limit.
// Flow goes along edges in their direction. When source and sink are the same node, the flow is a circulation
// through it, then its self-loops, cheapest first.
//
// Only cycles on ways from source to sink that can carry something are looked at, so negative cycles
// elsewhere do no harm, and do not count for the least cost.
//
// Without negative costs, potentials keep the costs of the searches from being negative (see the source).
// With negative costs the searches are those of the shortest-path service.
//
// Totals saturate. A path that the search finds to cost 2147483647 or more, by the costs that it is given,
// counts as none; with negative costs what the service says of large costs and cycles holds.
//
// Ties: each path is the one that the Dijkstra traversal, or the service, finds in the graph of residual
// edges.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_SOURCE_NODE,
// RV_SOURCE_NODE_NOT_IN_GRAPH, RV_NO_SINK_NODE, RV_SINK_NODE_NOT_IN_GRAPH, RV_NEGATIVE_DESIRED_FLOW,
// RV_NEGATIVE_CAPACITY of any edge or node; RV_NEGATIVE_CYCLE when such a cycle costs less than 0,
// RV_ALGORITHM_FAILURE when a part fails, and the framework's. Less flow than desired is no failure.
// Method: successive shortest paths (Jewell 1958, Edmonds and Karp 1972). O(paths (n + m) log n) time without
// negative costs, with them paths times what the service takes; O(n + m) space beside that. Without negative
// costs an object of a subclass finds the same paths by the hooks of the flow core, which takes ten times as
// long on small graphs and a hundred times and more on large ones.
//
//   RVMinimumCostFlowAlgorithm flow;
//   RVMinimumCostFlowInputData input(graph);
//   RVMinimumCostFlowOutputData output;
//   input.pSourceNode(from);
//   input.pSinkNode(to);
//   input.capacity(edge, 5);
//   input.cost(edge, 2);
//   flow.pInputData(&input);
//   flow.pOutputData(&output);
//   if (flow.run() == RV_NO_ERROR) use(output.totalFlow(), output.totalCost(), output.flow(edge));
#pragma once

#include "rv/flow/flow_algorithm.h"
#include "rv/flow/maximum_flow.h"

class RVDijkstraOutputData;

// Per edge of the input.
class RV_EXPORT RVEdgeExtensionMinimumCostFlowInput : public RVEdgeExtensionFlowInput {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumCostFlowInput)

public:
    RVEdgeExtensionMinimumCostFlowInput() = default;
    RVEdgeExtensionMinimumCostFlowInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeExtensionFlowInput(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }

private:
    int m_cost = 0;
};

// Named fields: those of RVMaximumFlowInputData, "desiredFlow" (of the graph), "cost" (of a node and of an
// edge).
class RV_EXPORT RVMinimumCostFlowInputData : public RVMaximumFlowInputData {
    RV_DATA_OBJECT(RVMinimumCostFlowInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumCostFlowInput)

public:
    explicit RVMinimumCostFlowInputData(RVGraph* graph) : RVMaximumFlowInputData(graph) {}

    // 0, the default: as much as can be.
    int desiredFlow() const { return m_desiredFlow; }
    int desiredFlow(int flow) { return m_desiredFlow = flow; }
    // Per unit of flow; default 0.
    int cost(RVNode* node) const { return m_nodeCosts.get(node); }
    int cost(RVNode* node, int value) { return m_nodeCosts.store(node, value); }
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }
    // The same, for reading all at once.
    const rv::NodeCosts& nodeCosts() const { return m_nodeCosts; }
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }

protected:
    RVMinimumCostFlowInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    int m_desiredFlow = 0;
    rv::NodeCosts m_nodeCosts{this};
    rv::EdgeCosts m_edgeCosts{this, &EdgeRecord::cost, &EdgeRecord::cost};
};

class RV_EXPORT RVMinimumCostFlowOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVMinimumCostFlowOutputData)
    RV_EDGE_RECORDS(RVEdgeExtensionFlowOutput)

public:
    RVMinimumCostFlowOutputData() = default;

    int totalFlow() const { return m_totalFlow; }
    int totalFlow(int flow) { return m_totalFlow = flow; }
    int totalCost() const { return m_totalCost; }
    int totalCost(int cost) { return m_totalCost = cost; }
    int flow(RVEdge* edge) const { return m_flows.get(edge); }
    int flow(RVEdge* edge, int value) { return m_flows.store(edge, value); }
    // The flows, for writing them all at once.
    rv::EdgeColumn<int>& flows() { return m_flows; }

    void reset() override;

private:
    int m_totalFlow = 0;
    int m_totalCost = 0;
    rv::EdgeColumn<int> m_flows{this, &EdgeRecord::flowValue, &EdgeRecord::flowValue};
};

// Per node of the working copy and of the flow graph.
class RV_EXPORT RVNodeExtensionMinimumCostFlow : public RVNodeExtensionFlowInternal {
    RV_PLAIN_RECORD(RVNodeExtensionMinimumCostFlow)

public:
    RVNodeExtensionMinimumCostFlow() = default;
    RVNodeExtensionMinimumCostFlow(RVNode* node, const RVAlgorithmData* data)
        : RVNodeExtensionFlowInternal(node, data) {}
    // The potential of a node of the flow graph; at the ends of the 32-bit range also what lies beyond.
    int originalDist() const;
    int originalDist(int value);
    std::int64_t potential() const { return m_potential; }
    void raisePotential(int amount) { m_potential += amount; }

private:
    std::int64_t m_potential = 0;
};

// Per edge of the working copy and of the flow graph.
class RV_EXPORT RVEdgeExtensionMinimumCostFlowInternal : public RVEdgeExtensionFlowInternal {
    RV_PLAIN_RECORD(RVEdgeExtensionMinimumCostFlowInternal)

public:
    RVEdgeExtensionMinimumCostFlowInternal() = default;
    RVEdgeExtensionMinimumCostFlowInternal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeExtensionFlowInternal(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }
    // Of an edge of the flow graph, without potentials.
    int realCost() const { return m_realCost; }
    int realCost(int value) { return m_realCost = value; }

private:
    int m_cost = 0;
    int m_realCost = 0;
};

class RV_EXPORT RVMinimumCostFlowInternalData : public RVFlowInternalData {
    RV_DATA_OBJECT(RVMinimumCostFlowInternalData)
    RV_NODE_RECORDS(RVNodeExtensionMinimumCostFlow)
    RV_EDGE_RECORDS(RVEdgeExtensionMinimumCostFlowInternal)

public:
    RVMinimumCostFlowInternalData() = default;

    // Of the flow reached so far; at the ends of the 32-bit range also what lies beyond.
    int totalCost() const;
    int totalCost(int cost);
    // Adds what an amount of flow at a cost per unit costs.
    void addCost(std::int64_t cost, int amount);
    // 1 when no cost is negative.
    int simpleCase() const { return m_simpleCase; }
    int simpleCase(int flag) { return m_simpleCase = flag; }

    // Of the working copy's nodes; default 0.
    int cost(RVNode* node) const { return m_nodeCosts.get(node); }
    int cost(RVNode* node, int value) { return m_nodeCosts.store(node, value); }
    int originalDist(RVNode* node) const { return load(node, &NodeRecord::originalDist); }
    int originalDist(RVNode* node, int value) { return store(node, &NodeRecord::originalDist, value); }
    std::int64_t potential(RVNode* node) const { return load(node, &NodeRecord::potential); }
    void raisePotential(RVNode* node, int amount);
    int cost(RVEdge* edge) const { return load(edge, &EdgeRecord::cost); }
    int cost(RVEdge* edge, int value) { return store(edge, &EdgeRecord::cost, value); }
    int realCost(RVEdge* edge) const { return load(edge, &EdgeRecord::realCost); }
    int realCost(RVEdge* edge, int value) { return store(edge, &EdgeRecord::realCost, value); }

private:
    std::int64_t m_totalCost = 0;
    int m_simpleCase = 1;
    rv::NodeColumn<int> m_nodeCosts{this};
};

class RV_EXPORT RVMinimumCostFlowAlgorithm : public RVFlowAlgorithm {
    RV_OBJECT(RVMinimumCostFlowAlgorithm)
    RV_WORKS_WITH(RVMinimumCostFlowInputData, RVMinimumCostFlowOutputData)

public:
    RVMinimumCostFlowAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void initialize() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // Gives the caller's edge the flow of the path that stood for it, and destroys that path.
    void actOnInsertMultiEdge(RVEdge* edge) override;

    int pathExists(RVAnalysisOutputData* output) const override;
    void buildEdgeList(RVAnalysisOutputData* output, RVEdgeDList& list) const override;
    void pStartNode(RVAnalysisInputData* input, RVNode* node) const override;
    void pFinishNode(RVAnalysisInputData* input, RVNode* node) const override;
    int hasToBeSplit(RVNode* node) override;
    RVAlgorithm* newPathExistsTestAlgorithm() const override;
    RVAlgorithmInputData* newPathExistsTestInputData() const override;
    RVAlgorithmOutputData* newPathExistsTestOutputData() const override;
    int finished() const override;
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override;
    void copyEdgeProperties(RVAnalysisInputData* input) override;
    int flowValue(RVAnalysisOutputData* output) const override;
    void copyEdgeData(RVEdge* from, RVEdge* to, int first) override;

    RVMinimumCostFlowInternalData* pMinimumCostFlowInternalData() const {
        return static_cast<RVMinimumCostFlowInternalData*>(pInternalData());
    }

private:
    bool hasNegativeCost() const;
    bool isSatisfied(const RVMinimumCostFlowInternalData& data) const;
    int desiredFlow() const;
    int withinDesiredFlow(int amount, const RVMinimumCostFlowInternalData& data) const;
    void raisePotentials(const RVDijkstraOutputData& output);
    void writeTotals(RVMinimumCostFlowInternalData& data) const;
    void fillSelfLoops(RVMinimumCostFlowInternalData& data) const;
};
