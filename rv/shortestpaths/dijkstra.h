// Dijkstra traversal: a cheapest path between two nodes under edge costs that are not negative, and, if asked
// for, the distance of every node from the start.
//
// Any graph without negative edge costs; costs of nodes play no part. Edges are followed forward, undirected
// ones both ways. Distances, where they are asked for, are those of all nodes that the start node reaches;
// else the search ends at the finish node.
//
// Ties: of parallel edges the cheapest counts, the first of them in the out-edge order of their source
// (followed by the in-edge order in an undirected run). Nodes of equal distance are settled in the order in
// which they came to that distance, each with its out-edges in order, and a node keeps the first parent that
// led to its final distance.
//
// Sums saturate: a path whose cost reaches 2147483647 counts as none.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH, RV_ALGORITHM_FAILURE when any
// edge of the graph has a negative cost, and the framework's. A finish node that cannot be reached is no
// failure: pathExists 0, totalCost 2147483647 and no edges.
// Method: Dijkstra 1959, in arrays made of the caller's graph, with a radix queue: O(n + m log C) time for
// costs up to C, O(n + m) space. An object of a subclass runs on the hooks of the traversal engine, in O((n +
// m) log n) time; only there useOriginalGraph has a meaning.
//
//   RVDijkstraAlgorithm search;
//   RVShortestPathsInputData input(graph);
//   RVDijkstraOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   input.cost(edge, 5);
//   search.pInputData(&input);
//   search.pOutputData(&output);
//   if (search.run() == RV_NO_ERROR && output.pathExists()) use(*output.pEdgeList());
#pragma once

#include "rv/foundation/keyed_tree.h"
#include "rv/framework/references.h"
#include "rv/shortestpaths/shortest_paths_data.h"
#include "rv/traversal/traversal.h"

class RVDijkstraInternalData;

// Per node of the working graph: its distance from the start node as known so far.
class RV_EXPORT RVNodeExtensionShortestPaths : public RVNodeExtensionTraversal {
    RV_PLAIN_RECORD(RVNodeExtensionShortestPaths)

public:
    RVNodeExtensionShortestPaths() = default;
    RVNodeExtensionShortestPaths(RVNode* node, const RVAlgorithmData* data)
        : RVNodeExtensionTraversal(node, data) {}
    int currentCost() const { return m_currentCost; }
    int currentCost(int cost) { return m_currentCost = cost; }

private:
    int m_currentCost = 0;
};

// Per edge of the working graph.
class RV_EXPORT RVEdgeExtensionShortestPaths : public RVEdgeExtensionTraversal {
    RV_PLAIN_RECORD(RVEdgeExtensionShortestPaths)

public:
    RVEdgeExtensionShortestPaths() = default;
    RVEdgeExtensionShortestPaths(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeExtensionTraversal(edge, data) {}
    int cost() const { return m_cost; }
    int cost(int value) { return m_cost = value; }

private:
    int m_cost = 0;
};

// Per node of the caller's graph.
class RV_EXPORT RVNodeExtensionDijkstra : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionDijkstra)

public:
    RVNodeExtensionDijkstra() = default;
    RVNodeExtensionDijkstra(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    // -100: none recorded.
    int dist() const { return m_dist; }
    int dist(int value) { return m_dist = value; }

private:
    int m_dist = -100;
};

// Nodes of a working graph in the order of their current costs, equal ones in the order in which they came.
class RV_EXPORT RVShortestPathsBinTree : public rv::KeyedTree<RVShortestPathsBinTree> {
    RV_OBJECT(RVShortestPathsBinTree)

public:
    // Without data all nodes compare as equal.
    explicit RVShortestPathsBinTree(RVDijkstraInternalData* data = nullptr) : m_pData(data) {}

    // Whose costs count. Not owned.
    RVDijkstraInternalData* pData() const { return m_pData; }
    RVDijkstraInternalData* pData(RVDijkstraInternalData* data);

    // The current cost of a node.
    int keyOf(RVObject* node) const;

private:
    RVDijkstraInternalData* m_pData;
};

class RV_EXPORT RVDijkstraInternalData : public RVTraversalInternalData {
    RV_DATA_OBJECT(RVDijkstraInternalData)
    RV_NODE_RECORDS(RVNodeExtensionShortestPaths)
    RV_EDGE_RECORDS(RVEdgeExtensionShortestPaths)

public:
    RVDijkstraInternalData() = default;

    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }
    // The nodes that have been reached and wait for being settled.
    RVShortestPathsBinTree* pCandidateNodeList() const { return &m_candidateNodes; }

    int currentCost(RVNode* node) const { return load(node, &NodeRecord::currentCost); }
    int currentCost(RVNode* node, int cost) { return store(node, &NodeRecord::currentCost, cost); }
    int cost(RVEdge* edge) const { return load(edge, &EdgeRecord::cost); }
    int cost(RVEdge* edge, int value) { return store(edge, &EdgeRecord::cost, value); }

private:
    rv::NodeReference m_pFinishNode{this};
    mutable RVShortestPathsBinTree m_candidateNodes{this};
};

class RV_EXPORT RVDijkstraOutputData : public RVShortestPathsOutputData {
    RV_DATA_OBJECT(RVDijkstraOutputData)
    RV_NODE_RECORDS(RVNodeExtensionDijkstra)

public:
    RVDijkstraOutputData() = default;

    // The distance from the start node, 2147483647 for a node that it does not reach; -100 when distances
    // were not asked for (RVDijkstraAlgorithm::storeDistances).
    int dist(RVNode* node) const { return m_distances.get(node); }
    int dist(RVNode* node, int value) { return m_distances.store(node, value); }
    // The same, for writing all at once.
    rv::NodeColumn<int>& distances() { return m_distances; }

    // Empties path and distances.
    void reset() override;

private:
    rv::NodeColumn<int> m_distances{this, &NodeRecord::dist, &NodeRecord::dist, -100};
};

class RV_EXPORT RVDijkstraAlgorithm : public RVTraversalAlgorithm {
    RV_OBJECT(RVDijkstraAlgorithm)
    RV_WORKS_WITH(RVShortestPathsInputData, RVShortestPathsOutputData)

public:
    RVDijkstraAlgorithm();

    RVServiceErrorCodeEnum checkData() override;

    // Nonzero: the output, if it is an RVDijkstraOutputData, gets the distances of all nodes. Default 0.
    int storeDistances() const { return m_storeDistances; }
    int storeDistances(int flag) { return m_storeDistances = flag; }

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void initialize() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    void actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) override;
    RVEdge* selectRepresentativeEdge(RVEdge* edge) override;
    RVEdge* pNextEdge() override;
    RVNode* findStartNode() override;
    RVEdge* findStartEdge() override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;
    void copyEdgeProperties(RVEdge* newEdge, RVEdge* edge) override;

    RVDijkstraInternalData* pDijkstraInternalData() const {
        return static_cast<RVDijkstraInternalData*>(pInternalData());
    }

private:
    void announce() const;
    bool buildPath(RVEdgeDList& path) const;
    void storeDistances(RVDijkstraOutputData& output) const;

    int m_storeDistances = 0;
};
