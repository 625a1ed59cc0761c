// Cycle-breaking edge detection: a small set of edges of a directed graph, the backward edges, such that the
// graph has no cycle any more when they are reversed; nor has it when they are removed. Self-loops, which
// reversing does not break, are reported by themselves.
//
// Any graph; edges are directed. How small the set is depends on the quality:
//   0  the backward edges of one run of the topological heuristic on the whole graph
//   1  (default) every strongly connected component by itself, simplified before: parallel edges are merged,
//      opposite edges cancelled, nodes with one in-edge and one out-edge bridged; and simplified again as
//      long as that helps
//   2  the same; then no backward edge of a component could be turned back without closing a cycle
// The smallest set is not always found; to find it is NP-hard.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, RV_ALGORITHM_FAILURE when a part fails,
// and the framework's.
//
// Time and space: O(n + m log m) for quality 0. Reducing a component and undoing it is O(n + m) beside one
// path test per pair of opposite edges, and at quality 2 one per backward edge and pass; a path test is
// O(n + m) of its component, and as a rule far less. Components that fall apart and reduce again and again
// are simplified in up to n/2 rounds inside one another, each of O(n + m) time, and space until it ends. No
// recursion.
//
//   RVCycleBreakingEdgeDetectionAlgorithm detection;
//   RVCycleBreakingEdgeDetectionInputData input(graph);
//   RVCycleBreakingEdgeDetectionOutputData output;
//   input.quality(2);
//   detection.pInputData(&input);
//   detection.pOutputData(&output);
//   if (detection.run() == RV_NO_ERROR && output.backwardEdge(edge)) edge->invertDirection();
#pragma once

#include <memory>

#include "rv/cycles/graph_reduction_action.h"
#include "rv/foundation/owned_lists.h"
#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"

class RVTopologicalHeuristicOutputData;

namespace rv {
template <class Neighbours>
class AcyclicPaths;
class ListNeighbours;
using ListPaths = AcyclicPaths<ListNeighbours>;
struct ReductionState;
}  // namespace rv

// Per node of the working graph and of the pieces.
class RV_EXPORT RVNodeExtensionCycleBreakingEdgeDetectionInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionCycleBreakingEdgeDetectionInternal)

public:
    RVNodeExtensionCycleBreakingEdgeDetectionInternal() = default;
    RVNodeExtensionCycleBreakingEdgeDetectionInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    // Of a node of a piece: the node of the working graph.
    RVNode* pLocalOriginalNode() const { return m_pLocalOriginalNode; }
    RVNode* pLocalOriginalNode(RVNode* node) { return m_pLocalOriginalNode = node; }
    // Of a node of the working graph: the node of its piece, while there is one.
    RVNode* pLocalCopyNode() const { return m_pLocalCopyNode; }
    RVNode* pLocalCopyNode(RVNode* node) { return m_pLocalCopyNode = node; }

private:
    RVNode* m_pLocalOriginalNode = nullptr;
    RVNode* m_pLocalCopyNode = nullptr;
};

// Per edge of the working graph and of the pieces.
class RV_EXPORT RVEdgeExtensionCycleBreakingEdgeDetectionInternal : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionCycleBreakingEdgeDetectionInternal)

public:
    RVEdgeExtensionCycleBreakingEdgeDetectionInternal() = default;
    RVEdgeExtensionCycleBreakingEdgeDetectionInternal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    // As for nodes.
    RVEdge* pLocalOriginalEdge() const { return m_pLocalOriginalEdge; }
    RVEdge* pLocalOriginalEdge(RVEdge* edge) { return m_pLocalOriginalEdge = edge; }
    RVEdge* pLocalCopyEdge() const { return m_pLocalCopyEdge; }
    RVEdge* pLocalCopyEdge(RVEdge* edge) { return m_pLocalCopyEdge = edge; }
    // How many edges an edge stands for that a reduction has added.
    int weight() const { return m_weight; }
    int weight(int value) { return m_weight = value; }
    int touched() const { return m_touched; }
    int touched(int flag) { return m_touched = flag; }
    // 1 when the edge stands reversed relative to the one that it copies.
    int reversed() const { return m_reversed; }
    int reversed(int flag) { return m_reversed = flag; }

private:
    RVEdge* m_pLocalOriginalEdge = nullptr;
    RVEdge* m_pLocalCopyEdge = nullptr;
    int m_weight = 1;
    int m_touched = 0;
    int m_reversed = 0;
};

// Per edge of the output.
class RV_EXPORT RVEdgeExtensionCycleBreakingEdgeDetectionOutput : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionCycleBreakingEdgeDetectionOutput)

public:
    RVEdgeExtensionCycleBreakingEdgeDetectionOutput() = default;
    RVEdgeExtensionCycleBreakingEdgeDetectionOutput(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    int backwardEdge() const { return m_backwardEdge; }
    int backwardEdge(int flag) { return m_backwardEdge = flag; }

private:
    int m_backwardEdge = 0;
};

// No named fields.
class RV_EXPORT RVCycleBreakingEdgeDetectionInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVCycleBreakingEdgeDetectionInputData)

public:
    RVCycleBreakingEdgeDetectionInputData() = default;
    explicit RVCycleBreakingEdgeDetectionInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // 0, 1 or 2; default 1.
    int quality() const { return m_reduces + m_switchesBack; }
    // More than 2 counts as 2; a negative value changes nothing. Gives its argument.
    int quality(int value);

private:
    int m_reduces = 1;
    int m_switchesBack = 0;
};

class RV_EXPORT RVCycleBreakingEdgeDetectionOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVCycleBreakingEdgeDetectionOutputData)
    RV_EDGE_RECORDS(RVEdgeExtensionCycleBreakingEdgeDetectionOutput)

public:
    RVCycleBreakingEdgeDetectionOutputData() = default;

    // Empty the list, then fill it with the backward edges, component after component, or with the
    // self-loops, node after node in graph order.
    void buildEdgeList(RVEdgeDList& list) const;
    void buildReflexiveEdgeList(RVEdgeDList& list) const;
    // 1 for a backward edge; 0 for all others, self-loops included.
    int backwardEdge(RVEdge* edge) const { return m_isBackward.get(edge); }
    int backwardEdge(RVEdge* edge, int flag) { return m_isBackward.store(edge, flag); }
    // The same, for writing all at once.
    rv::EdgeColumn<int>& isBackward() { return m_isBackward; }

    void reset() override;

private:
    friend class RVCycleBreakingEdgeDetectionAlgorithm;
    rv::Owned<RVEdgeDList> m_edges;
    rv::Owned<RVEdgeDList> m_reflexiveEdges;
    rv::EdgeColumn<int> m_isBackward{this, &EdgeRecord::backwardEdge, &EdgeRecord::backwardEdge};
};

// What a run keeps. A piece is a graph of its own that is made from edges of the working graph and destroyed
// when it has been dealt with.
class RV_EXPORT RVCycleBreakingEdgeDetectionInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVCycleBreakingEdgeDetectionInternalData)
    RV_NODE_RECORDS(RVNodeExtensionCycleBreakingEdgeDetectionInternal)
    RV_EDGE_RECORDS(RVEdgeExtensionCycleBreakingEdgeDetectionInternal)

public:
    RVCycleBreakingEdgeDetectionInternalData();

    // The backward edges, of the working graph.
    RVEdgeDList* pOutputEdgeList() const { return m_outputEdges.get(); }
    // 1 once a reduction has been made in this run.
    int reduced() const { return m_reduced; }
    int reduced(int flag) { return m_reduced = flag; }
    int quality() const { return m_quality; }
    int quality(int value) { return m_quality = value; }

    // The reductions of the piece in hand that have not been undone. The stack owns its actions and passes
    // them on with popAction; none on an empty stack. Pushing none does nothing. A copy of the data has an
    // empty stack.
    void pushAction(RVGraphReductionAction* action);
    RVGraphReductionAction* popAction();
    RVGraphReductionAction* topAction() const;
    bool actionStackEmpty() const { return m_actionStack.get()->length() == 0; }

    RVNode* pLocalOriginalNode(RVNode* node) const { return load(node, &NodeRecord::pLocalOriginalNode); }
    RVNode* pLocalOriginalNode(RVNode* node, RVNode* original) {
        return store(node, &NodeRecord::pLocalOriginalNode, original);
    }
    RVNode* pLocalCopyNode(RVNode* node) const { return load(node, &NodeRecord::pLocalCopyNode); }
    RVNode* pLocalCopyNode(RVNode* node, RVNode* copy) {
        return store(node, &NodeRecord::pLocalCopyNode, copy);
    }
    RVEdge* pLocalOriginalEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::pLocalOriginalEdge); }
    RVEdge* pLocalOriginalEdge(RVEdge* edge, RVEdge* original) {
        return store(edge, &EdgeRecord::pLocalOriginalEdge, original);
    }
    RVEdge* pLocalCopyEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::pLocalCopyEdge); }
    RVEdge* pLocalCopyEdge(RVEdge* edge, RVEdge* copy) {
        return store(edge, &EdgeRecord::pLocalCopyEdge, copy);
    }
    int weight(RVEdge* edge) const { return load(edge, &EdgeRecord::weight); }
    int weight(RVEdge* edge, int value) { return store(edge, &EdgeRecord::weight, value); }
    int reversed(RVEdge* edge) const { return load(edge, &EdgeRecord::reversed); }
    int reversed(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::reversed, flag); }
    int touched(RVEdge* edge) const { return load(edge, &EdgeRecord::touched); }
    int touched(RVEdge* edge, int flag) { return store(edge, &EdgeRecord::touched, flag); }

private:
    friend class RVCycleBreakingEdgeDetectionAlgorithm;

    // Lives and dies with its objects.
    struct ActionStack : RVDList {
        ActionStack() = default;
        ActionStack(const ActionStack&) = delete;
        ActionStack& operator=(const ActionStack&) = delete;
        ~ActionStack() override { deleteAllCellsAndObjects(); }
    };

    rv::Owned<RVEdgeDList> m_outputEdges;
    int m_reduced = 0;
    int m_quality = 1;
    // A run inside another one, whose data nobody else sees, spares the records of the working graph's edges.
    bool m_isInnerRun = false;
    rv::Uncopied<std::unique_ptr<ActionStack>> m_actionStack;
    // Of the piece in hand, while it is reduced and while reductions are undone.
    rv::Uncopied<std::unique_ptr<rv::ReductionState>> m_reduction;
    rv::Uncopied<std::unique_ptr<rv::ListPaths>> m_paths;
};

class RV_EXPORT RVCycleBreakingEdgeDetectionAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVCycleBreakingEdgeDetectionAlgorithm)
    RV_WORKS_WITH(RVCycleBreakingEdgeDetectionInputData, RVCycleBreakingEdgeDetectionOutputData)

public:
    RVCycleBreakingEdgeDetectionAlgorithm() = default;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    // The working graph keeps its parallel and undirected edges and its isolated nodes.
    void privatePreprocessGraph() override;

private:
    // A run on a piece, as a part of the run that made the piece.
    struct InnerRun;
    using EdgeLists = rv::OwnedLists<RVEdgeDList>;

    RVCycleBreakingEdgeDetectionInternalData* pData() const {
        return static_cast<RVCycleBreakingEdgeDetectionInternalData*>(pInternalData());
    }

    void performFullAlgorithm();
    void findComponents(EdgeLists& components);
    RVGraph* constructPiece(EdgeLists& components) const;
    // None without edges.
    RVGraph* constructGraph(RVEdgeDList* edges) const;
    void treatStronglyConnectedGraph(RVGraph* piece);
    void finishPiece(RVGraph* piece);
    void discardPiece(RVGraph* piece) const;

    // Reducing. The counts are of entries added less entries removed.
    RVGraph* reduceGraph(RVGraph* piece);
    void initializeCandidateLists(RVGraph* piece, RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                                  RVNodeDList* degreeTwoNodes) const;
    int updateCandidateLists(RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                             RVNodeDList* degreeTwoNodes) const;
    int updateDegreeTwoNodes(RVEdge* edge, RVNodeDList* degreeTwoNodes) const;
    void performReductionAction(RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                                RVNodeDList* degreeTwoNodes) const;
    void performMultiEdgeReduction(RVEdge* edge) const;
    void performOppositeEdgeReduction(RVEdge* edge) const;
    void performDegreeTwoNodeReduction(RVNode* node) const;

    // Solving.
    void solveAtomicGraph(RVGraph* piece);
    void solveAtomicGraphRecursive(RVGraph* piece);
    void takeSolution(const InnerRun& run) const;
    void solveAtomicGraphFinal(RVGraph* piece);
    int numberOfBackwardEdges(RVGraph* piece, RVTopologicalHeuristicOutputData* output) const;

    // Undoing.
    void restoreGraph(RVGraph* piece) const;
    void restoreGraph(RVGraph* piece, RVGraphReductionAction* action) const;
    void restoreGraphMultiEdges(RVGraph* piece, RVGraphReductionAction* action) const;
    void restoreGraphOppositeEdges(RVGraph* piece, RVGraphReductionAction* action) const;
    void restoreGraphDegreeTwoNode(RVGraph* piece, RVGraphReductionAction* action) const;
    void reverse(RVEdge* edge) const;
    bool canSearch(RVGraph* piece, const wchar_t* failure) const;
    void avoidExtraEdges(RVGraph* piece) const;
    void transferOutputData(RVGraph* piece);
};
