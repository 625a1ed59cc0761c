// The question for a cheapest path between two nodes, and its answer, shared by every algorithm that finds
// one: the shortest-path service, the Dijkstra traversal, acyclic shortest paths, minimum cost flow.
#pragma once

#include "rv/framework/references.h"
#include "rv/shortestpaths/path_costs.h"

// Named fields: "startNode", "finishNode" and those of RVPathCostInputData.
class RV_EXPORT RVShortestPathsInputData : public RVPathCostInputData {
    RV_DATA_OBJECT(RVShortestPathsInputData)

public:
    explicit RVShortestPathsInputData(RVGraph* graph) : RVPathCostInputData(graph) {}

    // Nodes of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }

protected:
    RVShortestPathsInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
};

class RV_EXPORT RVShortestPathsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVShortestPathsOutputData)

public:
    RVShortestPathsOutputData() = default;

    // The edges of the caller's graph on the path, from the start node to the finish node.
    RVEdgeDList* pEdgeList() const { return m_edges.get(); }
    // Empties the list, then fills it with the path.
    void buildEdgeList(RVEdgeDList& list) const;
    // 0 before a run, and after one that found a negative cycle; 2147483647 when there is no path.
    int totalCost() const { return m_totalCost; }
    int totalCost(int cost) { return m_totalCost = cost; }
    int pathExists() const { return m_pathExists; }
    int pathExists(int flag) { return m_pathExists = flag; }

    void reset() override;

private:
    rv::Owned<RVEdgeDList> m_edges;
    int m_totalCost = 0;
    int m_pathExists = 0;
};
