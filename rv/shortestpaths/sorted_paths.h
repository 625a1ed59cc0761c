// Sorted paths: all paths from one node to another in the order of their cost, as a graph to be walked.
//
// Any graph, edges in their own direction. Paths are walks: in a graph with cycles they may repeat nodes and
// edges, and there are infinitely many. Costs may be negative. A path pays for its edges and for every node
// that it enters: for the finish node too, and for the start node when it comes back to it.
//
// The result is the tree of cheapest paths to the finish node, and a path graph. Each node of the path graph
// but its root stands for an edge that is not in the tree, its sidetrack edge. A path of the path graph that
// begins at its root stands for one path from start to finish. It takes the sidetrack edges of the nodes from
// which it follows cross edges, and then that of its last node, and in between and at both ends it follows
// the tree. Its cost is shortestPathLength plus the costs of its path-graph edges, which are never negative,
// so a best-first walk of the path graph gives the paths in order of cost. RVSortedPathsEnumerator is such a
// walk.
//
// Ties follow the order of the graph's edge list.
//
// Costs are added exactly. A path whose cost reaches 2147483647 counts as none; where all do, there is no
// path and nothing is counted, else numberOfPaths counts all, whatever their cost. What lies past the other
// end of the 32-bit range is given as -2147483648.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_START_NODE,
// RV_START_NODE_NOT_IN_GRAPH, RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH; RV_NEGATIVE_CYCLE when a
// negative cycle lies on the way from start to finish, with pathExists 0; and the framework's. A finish node
// that cannot be reached is no failure: pathExists 0, no path graph.
// Method: Eppstein 1998, with persistent heaps, in arrays made of the caller's graph; an object of a subclass
// runs on hooks and a copy, and only there useOriginalGraph has a meaning. O(n log n + m log C) time for
// costs up to C and O(n log n + m) space, with negative costs and cycles the time of single-source shortest
// paths. The path graph has at most m + n (log2 n + 2) nodes, each with at most three heap edges and one
// cross edge.
//
//   RVSortedPathsAlgorithm paths;
//   RVSortedPathsInputData input(graph);
//   RVSortedPathsOutputData output;
//   input.pStartNode(from);
//   input.pFinishNode(to);
//   paths.pInputData(&input);
//   paths.pOutputData(&output);
//   if (paths.run() != RV_NO_ERROR) return;
//   RVSortedPathsEnumerator path(&output);
//   for (int i = 0; i < 10 && path.next(); ++i) use(path.totalCost());
//   output.discardPathGraph();
#pragma once

#include <cstdint>
#include <memory>

#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/references.h"

namespace rv {
class PathGraphValues;
}

// Named fields: "startNode", "finishNode" (of the graph), "cost" (of a node and of an edge).
class RV_EXPORT RVSortedPathsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVSortedPathsInputData)

public:
    explicit RVSortedPathsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Nodes of the input's graph; default none.
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }
    // Default 0 for a node and 1 for an edge.
    int cost(RVNode* node) const { return m_nodeCosts.get(node); }
    int cost(RVNode* node, int value) { return m_nodeCosts.store(node, value); }
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }
    // The same, for reading all at once.
    const rv::NodeCosts& nodeCosts() const { return m_nodeCosts; }
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }

protected:
    RVSortedPathsInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
    rv::NodeCosts m_nodeCosts{this};
    rv::EdgeCosts m_edgeCosts{this, 1};
};

// The path graph belongs to the caller. Neither the output nor the algorithm destroys it: the output's reset,
// and so the next run, only forgets it, and whoever has not kept it then has lost it. discardPathGraph, or
// deleting it, disposes of it; what the output knew of it is gone then.
class RV_EXPORT RVSortedPathsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVSortedPathsOutputData)

public:
    RVSortedPathsOutputData();

    int pathExists() const { return m_pathExists; }
    int pathExists(int flag) { return m_pathExists = flag; }
    // None without a path, and when the path graph or its root has been destroyed. A graph that is set takes
    // the place of the one before, whose values go.
    RVGraph* pPathGraph() const;
    RVGraph* pPathGraph(RVGraph* graph);
    RVNode* pRootNode() const;
    RVNode* pRootNode(RVNode* node);
    // Destroys the path graph and forgets it.
    void discardPathGraph();

    // Of the members of the path graph; none or 0 for others.
    RVEdge* pSidetrackEdge(RVNode* node) const;
    RVEdge* pSidetrackEdge(RVNode* node, RVEdge* edge);
    int cost(RVEdge* edge) const;
    int cost(RVEdge* edge, int value);
    // The same where it is past the 32-bit range.
    std::int64_t exactCost(RVEdge* edge) const;
    // 0 the root's edge, 1 an edge within heaps, 2 a cross edge.
    int type(RVEdge* edge) const;
    int type(RVEdge* edge, int value);

    // Of a cheapest path, the finish node's cost included.
    int shortestPathLength() const;
    int shortestPathLength(int length);
    std::int64_t exactShortestPathLength() const { return m_shortestPathLength; }
    // The first edge of a cheapest path from a node of the caller's graph to the finish node; none for the
    // finish node and for nodes that are on no path.
    RVEdge* pTreeEdge(RVNode* node) const { return m_treeEdges.get(node); }
    RVEdge* pTreeEdge(RVNode* node, RVEdge* edge) { return m_treeEdges.store(node, edge); }
    // The same, for writing all at once.
    rv::NodeColumn<RVEdge*>& treeEdges() { return m_treeEdges; }
    RVNode* pStartNode() const { return m_pStartNode; }
    RVNode* pStartNode(RVNode* node) { return m_pStartNode = node; }
    RVNode* pFinishNode() const { return m_pFinishNode; }
    RVNode* pFinishNode(RVNode* node) { return m_pFinishNode = node; }
    // Parallel edges make paths of their own. 2147483647: as many or more, or infinitely many.
    int numberOfPaths() const { return m_numberOfPaths; }
    int numberOfPaths(int number) { return m_numberOfPaths = number; }
    // 1 after a run that found no cycle on the way from start to finish; also when it did not look for one,
    // without a path and after RV_NEGATIVE_CYCLE.
    int acyclic() const { return m_acyclic; }
    int acyclic(int flag) { return m_acyclic = flag; }
    int finishNodeCost() const { return m_finishNodeCost; }
    int finishNodeCost(int cost) { return m_finishNodeCost = cost; }

    // Empties everything; the path graph itself stays.
    void reset() override;

private:
    friend class RVSortedPathsAlgorithm;
    friend class RVSortedPathsEnumerator;

    void exactCost(RVEdge* edge, std::int64_t value);
    // Counts the path graphs that this output has had.
    std::uint64_t pathGraphGeneration() const;

    int m_pathExists = 0;
    std::int64_t m_shortestPathLength = 0;
    int m_numberOfPaths = 0;
    int m_acyclic = 0;
    int m_finishNodeCost = 0;
    rv::NodeReference m_pStartNode{this};
    rv::NodeReference m_pFinishNode{this};
    std::unique_ptr<rv::PathGraphValues> m_pathGraph;
    rv::NodeColumn<RVEdge*> m_treeEdges{this};
};

class RV_EXPORT RVSortedPathsAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVSortedPathsAlgorithm)
    RV_WORKS_WITH(RVSortedPathsInputData, RVSortedPathsOutputData)

public:
    RVSortedPathsAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    // The copy is not normalised: what is on no path from start to finish is detached, and attached again.
    void privatePreprocessGraph() override;
    void privatePostprocessGraph() override;
    void restoreWorkingGraph() override;

private:
    struct Run;

    void removeOtherNodes(RVNode* end, int reversed);
    void addNodeCosts();

    rv::RunState<Run> m_run{this};
};
