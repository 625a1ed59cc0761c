// Single-source shortest paths: the cost of a cheapest path from one node to every node, and a tree of such
// paths.
//
// Any graph. Edge costs may be negative; costs of nodes are kept but play no part. Edges are followed
// forward, undirected ones both ways. The method is chosen by the graph: one pass in topological order when
// nothing is undirected and what the start node reaches has no cycle; Dijkstra's method when no edge that it
// reaches has a negative cost; else the method of Bellman and Ford, which tells negative cycles.
//
// Ties: of equally cheap ways into a node the first that the method finds keeps the tree edge. That is the
// first in-edge in in-edge order; or the one from the node settled first, where nodes of equal distance are
// settled in the order in which they came to it; or the one of the first pass over the frontier.
//
// Costs are added exactly. A distance of 2147483647 and more counts as not reached, and such a node has no
// tree edge; one below -2147483648 is given as that.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH; RV_NEGATIVE_CYCLE when the start node reaches a negative cycle (an undirected
// edge of negative cost is one), with the costs found until then in the output; and the framework's.
// Method: relaxation in topological order O(n + m); Dijkstra 1959 O(n + m log C) for costs up to C; Bellman
// 1958, Ford 1956, in passes over the nodes whose distance has fallen, O(n m) at worst. O(n + m) space, in
// arrays made of the caller's graph. An object of a subclass runs on hooks and a copy; only there
// useOriginalGraph has a meaning.
//
//   RVSingleSourceShortestPathsAlgorithm paths;
//   RVSingleSourceShortestPathsInputData input(graph);
//   RVSingleSourceShortestPathsOutputData output;
//   input.pStartNode(node);
//   input.cost(edge, 5);
//   paths.pInputData(&input);
//   paths.pOutputData(&output);
//   if (paths.run() == RV_NO_ERROR) use(output.distance(other), output.pTreeEdge(other));
#pragma once

#include <span>

#include "rv/foundation/keyed_tree.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/map_on_request.h"
#include "rv/framework/references.h"

class RVSingleSourceShortestPathsAlgorithm;

// Named fields: "startNode" (of the graph), "cost" (of a node and of an edge), "edgeUndirected" (of an edge);
// "undirected" (of the graph) is answered by intField but not announced.
class RV_EXPORT RVSingleSourceShortestPathsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVSingleSourceShortestPathsInputData)

public:
    explicit RVSingleSourceShortestPathsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // 0 when all edges are followed in both directions; default 1.
    int directed() const { return m_directed; }
    int directed(int flag) { return m_directed = flag; }
    // A node of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }

    // Default 0 for a node and 1 for an edge.
    int cost(RVNode* node) const { return m_costMap.get(node, m_nodeCosts); }
    int cost(RVNode* node, int value) { return m_costMap.store(node, value, m_nodeCosts); }
    int cost(RVEdge* edge) const { return m_costMap.get(edge, m_edgeCosts); }
    int cost(RVEdge* edge, int value) { return m_costMap.store(edge, value, m_edgeCosts); }
    // Nonzero for an edge that is followed in both directions; default 0.
    int undirected(RVEdge* edge) const { return m_undirectedSet.get(edge, m_undirected); }
    int undirected(RVEdge* edge, int flag);

    // The costs, from node or edge to RVInt, and the undirected edges. The setters take map or set over and
    // destroy the present one, costs included; none stands for an empty one. Asking for them costs what they
    // hold, and from then on every cost is looked up there.
    RVHashMap* pCostMap() const { return m_costMap.handOut(m_nodeCosts, m_edgeCosts); }
    RVHashMap* pCostMap(RVHashMap* map) { return m_costMap.take(map, m_nodeCosts, m_edgeCosts); }
    RVHashSet* pUndirectedEdgeSet() const { return m_undirectedSet.handOut(m_undirected); }
    RVHashSet* pUndirectedEdgeSet(RVHashSet* edges) { return m_undirectedSet.take(edges, m_undirected); }

    // All of these values, for reading them at once: those of a graph's edges by dense index, as far as any
    // have been stored. The space is used if need be.
    std::span<const int> edgeCosts(const RVGraph* graph, rv::Buffer<int>& space) const {
        return m_costMap.values(graph, m_edgeCosts, space);
    }
    std::span<const int> undirectedEdges(const RVGraph* graph, rv::Buffer<int>& space) const {
        return m_undirectedSet.values(graph, m_undirected, space);
    }
    // Whether a cost of the graph's edges is below 0.
    bool hasNegativeCosts(const RVGraph* graph) const;

protected:
    RVSingleSourceShortestPathsInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    int undirectedFlag() const { return m_directed == 0 ? 1 : 0; }
    int undirectedFlag(int flag) { return m_directed = flag == 0 ? 1 : 0; }

    int m_directed = 1;
    rv::NodeReference m_pStartNode{this};
    mutable rv::NodeColumn<int> m_nodeCosts{this};
    mutable rv::EdgeCosts m_edgeCosts{this, 1};
    mutable rv::EdgeColumn<int> m_undirected{this};
    rv::IntMapOnRequest m_costMap;
    rv::SetOnRequest m_undirectedSet;
};

class RV_EXPORT RVSingleSourceShortestPathsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVSingleSourceShortestPathsOutputData)

public:
    RVSingleSourceShortestPathsOutputData() = default;

    // The maps behind what follows: from node to edge, and from node to RVInt. The setters take a map over
    // and destroy the present one, distances included; none stands for an empty one.
    // Asking for one costs what it holds, and from then on every such value is looked up there.
    RVHashMap* pTreeEdgeMap() const { return m_treeEdgeMap.handOut(m_treeEdges); }
    RVHashMap* pTreeEdgeMap(RVHashMap* map) { return m_treeEdgeMap.take(map, m_treeEdges); }
    RVHashMap* pDistanceMap() const { return m_distanceMap.handOut(m_distances); }
    RVHashMap* pDistanceMap(RVHashMap* map) { return m_distanceMap.take(map, m_distances); }
    // The edge by which a cheapest path enters the node; none for the start node and nodes not reached. A
    // node that negative costs bring back from infinity has its way through nodes that count as not reached.
    RVEdge* pTreeEdge(RVNode* node) const { return m_treeEdgeMap.get(node, m_treeEdges); }
    RVEdge* pTreeEdge(RVNode* node, RVEdge* edge) { return m_treeEdgeMap.store(node, edge, m_treeEdges); }
    // 2147483647 for a node that the start node does not reach.
    int distance(RVNode* node) const { return m_distanceMap.get(node, m_distances); }
    int distance(RVNode* node, int value) { return m_distanceMap.store(node, value, m_distances); }
    // Those of all nodes of a graph at once, by dense index. The default stands where there is no node.
    void assign(RVGraph* graph, rv::Buffer<int>&& distances, rv::Buffer<RVEdge*>&& treeEdges);

    void reset() override;

private:
    mutable rv::NodeColumn<RVEdge*> m_treeEdges{this};
    mutable rv::NodeColumn<int> m_distances{this, 2147483647};
    rv::ObjectMapOnRequest<RVEdge> m_treeEdgeMap;
    rv::IntMapOnRequest m_distanceMap;
};

// The nodes that wait for being settled, nearest first.
class RV_EXPORT RVSingleSourceShortestPathsBinTree
    : public rv::KeyedTree<RVSingleSourceShortestPathsBinTree> {
    RV_OBJECT(RVSingleSourceShortestPathsBinTree)

public:
    explicit RVSingleSourceShortestPathsBinTree(RVSingleSourceShortestPathsAlgorithm* algorithm = nullptr)
        : m_pAlgorithm(algorithm) {}

    // The distance of a node; 2147483647 outside a run.
    int keyOf(RVObject* node) const;

private:
    RVSingleSourceShortestPathsAlgorithm* m_pAlgorithm;
};

class RV_EXPORT RVSingleSourceShortestPathsAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVSingleSourceShortestPathsAlgorithm)
    RV_WORKS_WITH(RVSingleSourceShortestPathsInputData, RVSingleSourceShortestPathsOutputData)

public:
    RVSingleSourceShortestPathsAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    // The copy is not normalised: what the start node does not reach is detached, and attached again.
    void privatePreprocessGraph() override;
    void privatePostprocessGraph() override;
    void restoreWorkingGraph() override;

private:
    friend class RVSingleSourceShortestPathsBinTree;

    struct Run;

    rv::RunState<Run> m_run{this};
};
