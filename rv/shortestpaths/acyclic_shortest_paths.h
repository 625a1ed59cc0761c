// Acyclic shortest paths: a cheapest path between two nodes of a directed acyclic graph whose edge costs may
// be negative, given the nodes in a topological order.
//
// The nodes are settled in the caller's order, each once per appearance, with their out-edges in order; nodes
// that are not listed are not expanded. Costs of nodes play no part. That the order is topological is not
// checked: if it is not, the costs are those that the order produces, and there is no path where the way back
// from the finish node never comes to the start node. Undirected edges, parallel edges and ties are treated
// as the Dijkstra traversal treats them.
//
// Sums saturate: a path whose cost reaches 2147483647 counts as none.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH, RV_ALGORITHM_FAILURE when a
// listed node is not in the graph, and the framework's. The output is that of the Dijkstra traversal.
// Method: relaxation in topological order. O(n + m) time and space, in arrays made of the caller's graph. An
// object of a subclass runs on the hooks, in O(n + m log n) time, since the traversal keeps its queue; only
// there useOriginalGraph has a meaning.
//
//   RVShortestPathsAcyclicAlgorithm search;
//   RVShortestPathsAcyclicInputData input(graph);
//   RVDijkstraOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   input.pCandidateNodeList()->copyAppendList(sorted.pNodeList());
//   search.pInputData(&input);
//   search.pOutputData(&output);
//   if (search.run() == RV_NO_ERROR && output.pathExists()) use(*output.pEdgeList());
#pragma once

#include "rv/shortestpaths/dijkstra.h"

// Named fields: those of RVShortestPathsInputData.
class RV_EXPORT RVShortestPathsAcyclicInputData : public RVShortestPathsInputData {
    RV_DATA_OBJECT(RVShortestPathsAcyclicInputData)

public:
    explicit RVShortestPathsAcyclicInputData(RVGraph* graph) : RVShortestPathsInputData(graph) {}

    // The nodes of the input's graph in a topological order, which the caller fills in. Default empty.
    RVNodeDList* pCandidateNodeList() const { return m_candidateNodes.get(); }

protected:
    RVShortestPathsAcyclicInputData() = default;

private:
    rv::Owned<RVNodeDList> m_candidateNodes;
};

class RV_EXPORT RVShortestPathsAcyclicInternalData : public RVDijkstraInternalData {
    RV_DATA_OBJECT(RVShortestPathsAcyclicInternalData)

public:
    RVShortestPathsAcyclicInternalData() = default;

    // The nodes of the working graph that are still to be settled, in order. The setter takes the list over
    // and destroys the one before; none stands for an empty list.
    RVNodeDList* pTopologicalSortedNodeList() const { return m_sortedNodes.get(); }
    RVNodeDList* pTopologicalSortedNodeList(RVNodeDList* list) { return m_sortedNodes.take(list); }

private:
    rv::Exchangeable<RVNodeDList> m_sortedNodes;
};

class RV_EXPORT RVShortestPathsAcyclicAlgorithm : public RVDijkstraAlgorithm {
    RV_OBJECT(RVShortestPathsAcyclicAlgorithm)
    RV_WORKS_WITH(RVShortestPathsAcyclicInputData, RVShortestPathsOutputData)

public:
    RVShortestPathsAcyclicAlgorithm();

    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    RVNode* findStartNode() override;

private:
    RVShortestPathsAcyclicInternalData* pData() const {
        return static_cast<RVShortestPathsAcyclicInternalData*>(pInternalData());
    }
    void announce() const;
};
