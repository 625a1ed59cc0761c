// What costs what: the costs of nodes and edges, and which edges are followed in both directions. Part of the
// question of every algorithm that adds up costs along paths.
//
// Costs are signed 32-bit integers. A sum of costs that leaves their range stays at its end, unless a header
// says otherwise: 2147483647 stands for infinite, so a path of that cost or more counts as none, and
// -2147483648 is the least cost of all.
#pragma once

#include "rv/framework/analysis_data.h"
#include "rv/framework/columns.h"

// Per edge of these inputs.
class RV_EXPORT RVEdgeExtensionShortestPathsInput : public RVEdgeAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionShortestPathsInput)

public:
    RVEdgeExtensionShortestPathsInput() = default;
    RVEdgeExtensionShortestPathsInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAlgorithmExtension(edge, data) {}

    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }
    int directed() const { return m_directed; }
    int directed(int flag) { return m_directed = flag; }

private:
    int m_cost = 0;
    int m_directed = 1;
};

// May be used alone, to hold the costs of a graph once: copyData of any other of these inputs takes them
// over. Named fields: "undirected" (of the graph), "cost" (of a node and of an edge), "edgeUndirected" (of an
// edge).
class RV_EXPORT RVPathCostInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVPathCostInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionShortestPathsInput)

public:
    explicit RVPathCostInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // 1 when all edges are followed in both directions; default 0. Any nonzero flag is stored as 1.
    int undirected() const { return m_directed == 0 ? 1 : 0; }
    int undirected(int flag) {
        m_directed = flag == 0 ? 1 : 0;
        return undirected();
    }
    // The same for one edge.
    int undirected(RVEdge* edge) const { return m_edgesDirected.get(edge) == 0 ? 1 : 0; }
    int undirected(RVEdge* edge, int flag) { return 1 - m_edgesDirected.store(edge, flag == 0 ? 1 : 0); }
    // Default 0.
    int cost(RVNode* node) const { return m_nodeCosts.get(node); }
    int cost(RVNode* node, int value) { return m_nodeCosts.store(node, value); }
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }

    // All of these values, for reading them at once.
    const rv::NodeCosts& nodeCosts() const { return m_nodeCosts; }
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }
    // 0 for an edge that is followed in both directions.
    const rv::EdgeColumn<int>& edgesDirected() const { return m_edgesDirected; }

protected:
    RVPathCostInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    int m_directed = 1;
    rv::NodeCosts m_nodeCosts{this};
    rv::EdgeCosts m_edgeCosts{this, &EdgeRecord::cost, &EdgeRecord::cost};
    rv::EdgeColumn<int> m_edgesDirected{this, &EdgeRecord::directed, &EdgeRecord::directed, 1};
};
