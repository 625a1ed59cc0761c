// Base of the algorithms that work on a normalised copy of the caller's graph.
//
// Before the body, the working graph is normalised in four steps, and restored in reverse after the output
// has been written:
//   1. In a directed run, every undirected edge (its record says directed 0) that is no self-loop gets a
//      reverse edge.
//   2. Self-loops are detached and listed at their node (pReflexiveEdgeList).
//   3. Of parallel edges one, the representative, stays; the others are detached and listed at it
//      (pMultiEdgeList). Edges between the same two nodes are parallel when they point the same way, in an
//      undirected run whatever their direction.
//   4. Isolated nodes are detached and listed in the internal data (pDisconnectedNodeList).
// Subclasses steer this through the hooks.
//
// useOriginalGraph(1) makes no copy: the caller's graph itself is normalised, and afterwards holds the same
// objects with the same ends in the same orders again, also when a hook throws or memory runs out: restoring
// allocates nothing. The caller's graph is never changed otherwise.
//
// Classes that answer without the hooks (RVAlgorithm::answer) make no copy and normalise nothing, whatever
// useOriginalGraph says; their subclasses do both.
//
// O(n + m) time and space beside the algorithm.
#pragma once

#include <span>

#include "rv/framework/algorithm.h"
#include "rv/framework/analysis_data.h"

class RV_EXPORT RVInternalGraphAlgorithm : public RVInternalAlgorithm {
    RV_OBJECT(RVInternalGraphAlgorithm)

public:
    RVInternalGraphAlgorithm() = default;

    // Runs the pipeline and gives its result code: the entry for callers.
    RVServiceErrorCodeEnum run() override;
    // The framework's codes; then RV_NO_INPUT_GRAPH when the input has no associated graph, and
    // RV_NO_GRAPH_FACTORY when that graph has no factory. Subclasses call this first.
    RVServiceErrorCodeEnum checkData() override;

    // Nonzero: work on the caller's graph itself. Default 0. Changes nothing where a class answers without
    // its hooks.
    int useOriginalGraph() const { return m_useOriginalGraph; }
    int useOriginalGraph(int flag) { return m_useOriginalGraph = flag; }

    // The first out-edge of a, in out-edge order, that leads to b; none if there is none.
    static RVEdge* findEdgeBetween(const RVNode* a, const RVNode* b);

protected:
    void initialize() override;
    void cleanup() override;
    void preprocess() override;
    void postprocess() override;
    // A new RVAnalysisInternalData. Overrides give that or a class derived from it.
    RVAlgorithmData* newInternalData() override;

public:
    // The same as run: the entry for algorithms that use this one as a part.
    virtual RVServiceErrorCodeEnum internalRun();
    // Whether a run works on the caller's graph: useOriginalGraph(), unless a subclass needs a copy.
    virtual int canUseOriginalGraph() const;

protected:
    // preprocess calls the first, that the private one; likewise for postprocess. Override the first to add
    // steps around the normalisation, the private one to change it.
    virtual void preprocessGraph();
    virtual void postprocessGraph();
    virtual void privatePreprocessGraph();
    virtual void privatePostprocessGraph();

    // The steps, on the working graph.
    virtual void preprocessUndirectedEdges();
    virtual void preprocessReflexiveEdges();
    virtual void preprocessMultiEdges();
    // A reverse edge was added for an edge. Marks it as a dummy, gives it the edge's original edge, and marks
    // it as undirected.
    virtual void actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge);
    // The edges of the list are about to be detached in favour of their representative. Called for every
    // representative in the order of the first edges of their groups, also with an empty list.
    virtual void actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list);
    // A parallel edge is about to be attached again.
    virtual void actOnInsertMultiEdge(RVEdge* edge);
    virtual void preprocessDisconnectedNodes();
    // Lists and marks the edges parallel to an edge that has not been dealt with, and gives their
    // representative; none for an edge that has.
    virtual RVEdge* pRepresentativeEdge(RVEdge* edge, int directed);
    // Picks the representative of an edge and its parallels. Here: the edge, which is the first of its
    // group in graph order.
    virtual RVEdge* selectRepresentativeEdge(RVEdge* edge);

    // The steps on any graph whose objects have records of the internal data.
    void preprocessReflexiveEdges(RVGraph* graph);
    void preprocessMultiEdges(RVGraph* graph);
    void preprocessDisconnectedNodes(RVGraph* graph);
    void privatePostprocessGraph(RVGraph* graph);

    // What checkData of this class asks, for subclasses that ask no more than that.
    RVServiceErrorCodeEnum checkInputGraph();

    // The internal data of this run.
    RVAnalysisInternalData* pAnalysisInternalData() const {
        return static_cast<RVAnalysisInternalData*>(pInternalData());
    }

    // The edges parallel to an edge, itself included: the out-edges of its source that lead to its target, in
    // out-edge order, then, unless directed, the in-edges of its source that come from its target, in in-edge
    // order. Valid until the next call. O(number of parallels) while preprocessMultiEdges runs, O(degree)
    // otherwise.
    std::span<RVEdge* const> parallelEdges(RVEdge* edge, int directed);

    // To be called before the working graph is first changed: if it is the caller's graph, its orders are
    // noted, for postprocess to put them back.
    void noteOrders();
    // Makes room for so many edges to be detached from the caller's graph while it is restored.
    void prepareRemovals(int edges);

    // Undoes privatePreprocessGraph where its counterpart, as overridden, has thrown before doing so. Here:
    // what privatePostprocessGraph does. A class with a normalisation of its own overrides this too.
    virtual void restoreWorkingGraph();
    // Takes away what a run has added to the caller's graph, at the beginning of cleanup, also where an
    // override of that has thrown before it called its base. Here nothing.
    virtual void clearInputGraph() {}
    void cleanupAfterFailure() noexcept override;

private:
    struct Run;

    void restoreAfterFailure();
    void restoreOrders();

    int m_useOriginalGraph = 0;
    rv::RunState<Run> m_run{this};
};
