// The core of flow algorithms that push flow along augmenting paths: a base for a search of one's own.
//
// From the working copy of the caller's graph it builds the flow graph: what can carry flow from source to
// sink, a node with a limit as two nodes with an edge between them, and for every edge a backward edge, which
// stands outside the graph until it can take flow back. The flow graph always holds exactly the edges with
// residual capacity. As long as the search that a subclass supplies finds a path from source to sink, flow is
// pushed along it. At the end the flows are written to the edges of the working copy.
//
// Parallel edges of the working copy become paths of two edges, so that all have capacities of their own.
// Self-loops carry nothing. A source or sink that is isolated, or of capacity 0, gives no flow and no
// failure. When source and sink are the same node, the flow is a circulation through it.
//
// A subclass overrides parseInputData and the hooks that are pure here. parseInputData stores source, sink
// and capacities of the working copy in the internal data. A search that fails records RV_ALGORITHM_FAILURE,
// or RV_NEGATIVE_CYCLE when that is what it gave, and its output tells whether the run goes on.
//
// O(n + m) time and space beside the searches and O(path length) for each path. The caller's graph itself is
// never used.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/flow/flow_data.h"
#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "rv/framework/references.h"

// Per node of the working copy and of the flow graph.
class RV_EXPORT RVNodeExtensionFlowInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionFlowInternal)

public:
    RVNodeExtensionFlowInternal() = default;
    RVNodeExtensionFlowInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}
    // Of a node of the working copy: its node in the flow graph.
    RVNode* pFlowCopyNode() const { return m_pFlowCopyNode; }
    RVNode* pFlowCopyNode(RVNode* node) { return m_pFlowCopyNode = node; }
    // Of a node of the flow graph: the node of the working copy for which it stands.
    RVNode* pFlowOriginalNode() const { return m_pFlowOriginalNode; }
    RVNode* pFlowOriginalNode(RVNode* node) { return m_pFlowOriginalNode = node; }

private:
    RVNode* m_pFlowCopyNode = nullptr;
    RVNode* m_pFlowOriginalNode = nullptr;
};

// Per edge of the working copy and of the flow graph.
class RV_EXPORT RVEdgeExtensionFlowInternal : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionFlowInternal)

public:
    RVEdgeExtensionFlowInternal() = default;
    RVEdgeExtensionFlowInternal(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}
    int flowValue() const { return m_flowValue; }
    int flowValue(int value) { return m_flowValue = value; }
    int capacity() const { return m_capacity; }
    int capacity(int value) { return m_capacity = value; }
    // Of an edge of the flow graph: the edge of the working copy for which it stands; none for added ones.
    RVEdge* pFlowOriginalEdge() const { return m_pFlowOriginalEdge; }
    RVEdge* pFlowOriginalEdge(RVEdge* edge) { return m_pFlowOriginalEdge = edge; }
    // Of a parallel edge that was detached: the first edge of the path that stands for it.
    RVEdge* pMultiEdgeReplacementEdge() const { return m_pMultiEdgeReplacementEdge; }
    RVEdge* pMultiEdgeReplacementEdge(RVEdge* edge) { return m_pMultiEdgeReplacementEdge = edge; }

private:
    int m_flowValue = 0;
    int m_capacity = 0;
    RVEdge* m_pFlowOriginalEdge = nullptr;
    RVEdge* m_pMultiEdgeReplacementEdge = nullptr;
};

class RV_EXPORT RVFlowInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVFlowInternalData)
    RV_NODE_RECORDS(RVNodeExtensionFlowInternal)
    RV_EDGE_RECORDS(RVEdgeExtensionFlowInternal)

public:
    RVFlowInternalData() = default;

    // The flow reached so far; 2147483647 also for more than that.
    int totalFlow() const;
    int totalFlow(int flow);
    std::int64_t exactTotalFlow() const { return m_totalFlow; }
    void addFlow(int amount) { m_totalFlow += amount; }

    // Of the search, made once per run. Not owned.
    RVAnalysisInputData* pPathExistsTestInputData() const { return m_pSearchInput; }
    RVAnalysisInputData* pPathExistsTestInputData(RVAnalysisInputData* data) { return m_pSearchInput = data; }
    // Nodes of the working copy.
    RVNode* pSourceNode() const { return m_pSourceNode; }
    RVNode* pSourceNode(RVNode* node) { return m_pSourceNode = node; }
    RVNode* pSinkNode() const { return m_pSinkNode; }
    RVNode* pSinkNode(RVNode* node) { return m_pSinkNode = node; }
    // The node of the flow graph at which paths start when source and sink are the same node; else none.
    RVNode* pDummyStartNode() const { return m_pDummyStartNode; }
    RVNode* pDummyStartNode(RVNode* node) { return m_pDummyStartNode = node; }
    // The flow graph, one of the secondary graphs.
    RVGraph* pCopyGraph() const { return m_pCopyGraph; }

    // 2147483647, the default, means unlimited.
    int capacity(RVNode* node) const { return m_nodeCapacities.get(node); }
    int capacity(RVNode* node, int value) { return m_nodeCapacities.store(node, value); }
    // Default 0.
    int capacity(RVEdge* edge) const { return load(edge, &EdgeRecord::capacity); }
    int capacity(RVEdge* edge, int value) { return store(edge, &EdgeRecord::capacity, value); }
    int flow(RVEdge* edge) const { return load(edge, &EdgeRecord::flowValue); }
    int flow(RVEdge* edge, int value) { return store(edge, &EdgeRecord::flowValue, value); }
    RVEdge* pFlowOriginalEdge(RVEdge* edge) const { return load(edge, &EdgeRecord::pFlowOriginalEdge); }
    RVEdge* pFlowOriginalEdge(RVEdge* edge, RVEdge* value) {
        return store(edge, &EdgeRecord::pFlowOriginalEdge, value);
    }
    RVEdge* pMultiEdgeReplacementEdge(RVEdge* edge) const {
        return load(edge, &EdgeRecord::pMultiEdgeReplacementEdge);
    }
    RVEdge* pMultiEdgeReplacementEdge(RVEdge* edge, RVEdge* value) {
        return store(edge, &EdgeRecord::pMultiEdgeReplacementEdge, value);
    }
    RVNode* pFlowCopyNode(RVNode* node) const { return load(node, &NodeRecord::pFlowCopyNode); }
    RVNode* pFlowCopyNode(RVNode* node, RVNode* value) {
        return store(node, &NodeRecord::pFlowCopyNode, value);
    }
    RVNode* pFlowOriginalNode(RVNode* node) const { return load(node, &NodeRecord::pFlowOriginalNode); }
    RVNode* pFlowOriginalNode(RVNode* node, RVNode* value) {
        return store(node, &NodeRecord::pFlowOriginalNode, value);
    }

private:
    friend class RVFlowAlgorithm;

    std::int64_t m_totalFlow = 0;
    RVAnalysisInputData* m_pSearchInput = nullptr;
    rv::NodeReference m_pSourceNode{this};
    rv::NodeReference m_pSinkNode{this};
    rv::NodeReference m_pDummyStartNode{this};
    RVGraph* m_pCopyGraph = nullptr;
    rv::NodeColumn<int> m_nodeCapacities{this, 2147483647};
};

class RV_EXPORT RVFlowAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVFlowAlgorithm)

public:
    // 1: edges are followed forward.
    int directed() const override;
    // 0: flows are found on a copy.
    int canUseOriginalGraph() const override;

protected:
    RVFlowAlgorithm() = default;

    RVServiceErrorCodeEnum algorithmBody() override;
    RVAlgorithmData* newInternalData() override;
    // Puts a path of two edges in the place of each edge of the list.
    void actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list) override;

    // The search. Whether it found a path, and the path's edges of the flow graph, from start to finish.
    virtual int pathExists(RVAnalysisOutputData* output) const = 0;
    virtual void buildEdgeList(RVAnalysisOutputData* output, RVEdgeDList& list) const = 0;
    // Tell the search where paths start and end.
    virtual void pStartNode(RVAnalysisInputData* input, RVNode* node) const = 0;
    virtual void pFinishNode(RVAnalysisInputData* input, RVNode* node) const = 0;
    // Nonzero for nodes of the flow graph that are split. Here: those whose capacity is limited.
    virtual int hasToBeSplit(RVNode* node);
    // Make the search and its input, about the flow graph, once per run, and an output for each search. The
    // core destroys them, and calls the search's internalRun where there is one.
    virtual RVAlgorithm* newPathExistsTestAlgorithm() const = 0;
    virtual RVAlgorithmInputData* newPathExistsTestInputData() const = 0;
    virtual RVAlgorithmOutputData* newPathExistsTestOutputData() const = 0;
    // Nonzero ends the run before the next search. Here: 0.
    virtual int finished() const;
    // Called after each search, also with amount 0 after one that found nothing. Here: pushes the amount
    // along the path.
    virtual void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount);
    // Called once, before the first search, to give the search what it wants to know of edges. Does nothing.
    virtual void copyEdgeProperties(RVAnalysisInputData* input);
    // How much can be pushed along the path that was found. Here: its least residual capacity, 0 without a
    // path.
    virtual int flowValue(RVAnalysisOutputData* output) const;
    // Gives an edge of a replacement path what it has of the parallel edge for which it stands; first is 1
    // for the first edge of the path. Here: the capacity.
    virtual void copyEdgeData(RVEdge* from, RVEdge* to, int first);

    // 0 for a backward edge of the flow graph, 1 for any other edge.
    int forwardEdge(const RVEdge* edge) const;
    // The partner of an edge of the flow graph: the backward edge of a forward one, and the other way round.
    RVEdge* pReverseEdge(const RVEdge* edge) const;
    RVEdge* pReverseEdge(const RVEdge* edge, RVEdge* partner);

    RVFlowInternalData* pFlowInternalData() const {
        return static_cast<RVFlowInternalData*>(pInternalData());
    }

private:
    static constexpr std::size_t kNowhere = static_cast<std::size_t>(-1);

    std::size_t placeOf(const RVEdge* edge) const;
    void createGraphCopyForFlowAlgorithm();
    void keepReachable(RVGraph* graph);
    void splitNodes();
    void addBackwardEdges();
    void copyEdgeCapacities();
    void findAugmentingPaths(RVAnalysisInputData& input);
    void noteFailedSearch(RVServiceErrorCodeEnum code);
    int residualCapacity(RVEdge* edge) const;
    void storeFlowValues();

    // By dense index of the flow graph's edges.
    rv::Uncopied<std::vector<RVEdge*>> m_reverseEdges;
    rv::Uncopied<std::vector<bool>> m_isBackward;
};
