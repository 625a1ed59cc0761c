// The engine of the searches: walks the working graph edge by edge, numbers nodes in the order in which they
// are first reached, and remembers each node's parent. Which edge comes next is left to hooks, by which a
// subclass becomes a breadth-first, depth-first or best-first search.
//
// A run without a start node covers the whole graph: it starts, as long as nodes are unvisited, from the
// first one of smallest in-degree; when that has no out-edges, it goes on from the source of the first edge
// that was not traversed; isolated nodes are visited last. A run with a start node covers what can be reached
// from it. An undirected search runs on a graph in which every edge has been given a reverse edge for the
// time of the run; a single undirected edge in a directed search likewise.
//
// A minimal subclass overrides pNextEdge and visitNodeAfterTraverse, calls the engine's in both, takes the
// edge that pNextEdge gives off the candidate list, and puts the out-edges of a node that is reached for the
// first time on it, in the order that it wants.
//
// O(n + m) time and space beside the hooks.
#pragma once

#include <vector>

#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/references.h"
#include "rv/traversal/pending_members.h"

// Per node of a search.
class RV_EXPORT RVNodeExtensionTraversal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionTraversal)

public:
    RVNodeExtensionTraversal() = default;
    RVNodeExtensionTraversal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    // For the subclass's use; the searches count how often the node was reached.
    int counter() const { return m_counter; }
    int counter(int value) { return m_counter = value; }
    // 0 until the node is reached.
    int orderNumber() const { return m_orderNumber; }
    int orderNumber(int value) { return m_orderNumber = value; }
    // None for a node from which the search started.
    RVNode* pParentNode() const { return m_pParentNode; }
    RVNode* pParentNode(RVNode* node) { return m_pParentNode = node; }

private:
    int m_counter = 0;
    int m_orderNumber = 0;
    RVNode* m_pParentNode = nullptr;
};

// Per edge of a search.
class RV_EXPORT RVEdgeExtensionTraversal : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionTraversal)

public:
    RVEdgeExtensionTraversal() = default;
    RVEdgeExtensionTraversal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    int traversed() const { return m_traversed; }
    int traversed(int flag) { return m_traversed = flag; }
    // 1 for a reverse edge that an undirected search added.
    int dummyReversedEdge() const { return m_dummyReversedEdge; }
    int dummyReversedEdge(int flag) { return m_dummyReversedEdge = flag; }

private:
    int m_traversed = 0;
    int m_dummyReversedEdge = 0;
};

// Per edge of the searches' inputs.
class RV_EXPORT RVEdgeExtensionTraversalInput : public RVEdgeAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionTraversalInput)

public:
    RVEdgeExtensionTraversalInput() = default;
    RVEdgeExtensionTraversalInput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAlgorithmExtension(edge, data) {}

    int directed() const { return m_directed; }
    int directed(int flag) { return m_directed = flag; }

private:
    int m_directed = 1;
};

// The question of a search: where to start, and which edges are followed in both directions. Named fields:
// "startNode", "undirected" (of the graph), "edgeUndirected" (of an edge).
class RV_EXPORT RVTraversalInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVTraversalInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionTraversalInput)

public:
    RVTraversalInputData() = default;
    explicit RVTraversalInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // A node of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    // 1 when all edges are followed in both directions; default 0. Any nonzero flag is stored as 1.
    int undirected() const { return m_directed == 0 ? 1 : 0; }
    int undirected(int flag) {
        m_directed = flag == 0 ? 1 : 0;
        return undirected();
    }
    // The same for one edge.
    int undirected(RVEdge* edge) const { return m_edgesDirected.get(edge) == 0 ? 1 : 0; }
    int undirected(RVEdge* edge, int flag) { return 1 - m_edgesDirected.store(edge, flag == 0 ? 1 : 0); }
    // The same for reading all at once: 0 for an edge that is followed in both directions.
    const rv::EdgeColumn<int>& edgesDirected() const { return m_edgesDirected; }

protected:
    std::span<const RVInputField> inputFields() const override;

private:
    int m_directed = 1;
    rv::NodeReference m_pStartNode{this};
    rv::EdgeColumn<int> m_edgesDirected{this, &EdgeRecord::directed, &EdgeRecord::directed, 1};
};

// What a search keeps for the time of a run. All nodes and edges are those of the working graph.
class RV_EXPORT RVTraversalInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVTraversalInternalData)
    RV_NODE_RECORDS(RVNodeExtensionTraversal)
    RV_EDGE_RECORDS(RVEdgeExtensionTraversal)

public:
    RVTraversalInternalData() = default;

    // Edges waiting to be traversed, in the order that the subclass keeps.
    RVEdgeDList* pCandidateEdgeList() const { return m_candidateEdges.get(); }
    // Both in graph order at first. O(n) or O(m) when first asked for.
    RVEdgeDList* pUntraversedEdgeList() const { return m_untraversedEdges.list(); }
    RVNodeDList* pUnvisitedNodeList() const { return m_unvisitedNodes.list(); }
    // In the order in which they were traversed and visited.
    RVEdgeDList* pTraversedEdgeList() const { return m_traversedEdges.get(); }
    RVNodeDList* pVisitedNodeList() const { return m_visitedNodes.get(); }

    // The number that the next newly reached node gets.
    int traversalOrderNumber() const { return m_traversalOrderNumber; }
    int traversalOrderNumber(int number) { return m_traversalOrderNumber = number; }
    // 1 while reverse edges of an undirected search are in the graph.
    int wasMadeDirected() const { return m_wasMadeDirected; }
    int wasMadeDirected(int flag) { return m_wasMadeDirected = flag; }
    using RVAnalysisInternalData::directed;
    // 0 for an undirected search.
    int directed() const { return m_directed; }
    int directed(int flag) { return m_directed = flag; }
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }

    int counter(RVNode* node) const { return load(node, &NodeRecord::counter); }
    int counter(RVNode* node, int value) { return store(node, &NodeRecord::counter, value); }
    int orderNumber(RVNode* node) const { return load(node, &NodeRecord::orderNumber); }
    int orderNumber(RVNode* node, int value) { return store(node, &NodeRecord::orderNumber, value); }
    RVNode* pParentNode(RVNode* node) const { return load(node, &NodeRecord::pParentNode); }
    RVNode* pParentNode(RVNode* node, RVNode* parent) {
        return store(node, &NodeRecord::pParentNode, parent);
    }
    int traversed(RVEdge* edge) const { return load(edge, &EdgeRecord::traversed); }
    int traversed(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::traversed, flag); }
    int dummyReversedEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::dummyReversedEdge); }
    int dummyReversedEdge(RVEdge* edge, int flag) {
        return store(edge, &EdgeRecord::dummyReversedEdge, flag);
    }

    // Empties the five lists and starts numbering from 1.
    void clearLists();
    // Fills the untraversed and the unvisited list with a graph's edges and nodes, in graph order.
    void listUnvisited(const RVGraph* graph);
    // Take an object out of these lists; nothing where it is not in them. O(1).
    void removeUntraversed(RVEdge* edge) { m_untraversedEdges.take(edge); }
    void removeUnvisited(RVNode* node) { m_unvisitedNodes.take(node); }

    RVEdge* pFirstUntraversedEdge() { return m_untraversedEdges.first(); }
    // The unvisited node that comes first among those of smallest in-degree, where degrees up to
    // `enough` count as equal; none when all are visited. O(1) amortised while the graph and the unvisited
    // list are not changed by others.
    RVNode* pFirstUnvisitedNode(int enough);

private:
    void sortUnvisited(int enough);

    rv::Owned<RVEdgeDList> m_candidateEdges;
    mutable rv::PendingMembers<RVEdge, RVEdgeDList> m_untraversedEdges;
    rv::Owned<RVEdgeDList> m_traversedEdges;
    rv::Owned<RVNodeDList> m_visitedNodes;
    mutable rv::PendingMembers<RVNode, RVNodeDList> m_unvisitedNodes;
    int m_traversalOrderNumber = 1;
    int m_wasMadeDirected = 0;
    int m_directed = 1;
    rv::NodeReference m_pStartNode{this};

    // The unvisited nodes by in-degree, in the state of the graph that the count tells.
    struct StartNodes {
        std::vector<RVNode*> nodes;
        std::size_t next = 0;
        std::uint64_t modifications = 0;
        int enough = -1;  // -1 before sorting
    };
    rv::Uncopied<StartNodes> m_startNodes;
};

class RV_EXPORT RVTraversalAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVTraversalAlgorithm)

public:
    RVTraversalAlgorithm() = default;

    // The internal data's setting.
    int directed() const override;

protected:
    void initialize() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    void clearInputGraph() override;
    void privatePreprocessGraph() override;
    void privatePostprocessGraph() override;

    // The edge to be traversed next; none ends the search. Here: the first candidate, which stays in its
    // list; before that, when there is no candidate, findStartNode's node is visited, and when there still is
    // none, the source of findStartEdge's edge.
    virtual RVEdge* pNextEdge();
    // Where to start, or to start again; none ends the search unless findStartEdge gives an edge.
    virtual RVNode* findStartNode();
    virtual RVEdge* findStartEdge();
    // Marks an edge as traversed and moves it from the untraversed to the end of the traversed list.
    virtual void privateTraverseEdge(RVEdge* edge);
    // Called with the source of an edge before the edge is traversed. Does nothing here.
    virtual void visitNodeBeforeTraverse(RVNode* node, RVEdge* edge);
    // Called with the target of an edge after it has been traversed, and without an edge for nodes from which
    // the search starts. Here: a node that is reached for the first time gets the next number and the edge's
    // source as its parent, and moves from the unvisited to the end of the visited list.
    virtual void visitNodeAfterTraverse(RVNode* node, RVEdge* edge);
    // A reverse edge was added for an edge of an undirected search. Gives it the edge's original edge and
    // marks it as undirected.
    virtual void copyEdgeProperties(RVEdge* newEdge, RVEdge* edge);

    RVTraversalInternalData* pTraversalInternalData() const {
        return static_cast<RVTraversalInternalData*>(pInternalData());
    }

    // Takes start node and directions from the input, for the searches' parseInputData.
    void parseTraversalInput(const RVTraversalInputData& input);

private:
    void addReverseEdges();
    void removeReverseEdges();

    struct Run;
    rv::RunState<Run> m_run{this};
};
