// Topological heuristic: numbers all nodes of a directed graph so that few edges run backward, from a higher
// number to a lower one. On an acyclic graph none does, and the numbering is a topological order.
//
// Any graph. Nodes are taken one by one: first those without an in-edge from a node that is not yet numbered,
// in the order in which they came to that state; when there is none, the node with the fewest in-edges left,
// among those the one with the most out-edges left, among those the first one in graph order. Of parallel
// edges one counts; a self-loop counts as an in-edge and an out-edge. Nodes without edges come last, in graph
// order. Weights of edges have no influence.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: greedy, after Eades, Lin and Smyth 1993, with the candidates in a heap. O(n + m log m) time,
// O(n + m) space.
//
//   RVTopologicalHeuristicAlgorithm heuristic;
//   RVTopologicalHeuristicInputData input(graph);
//   RVTopologicalHeuristicOutputData output;
//   heuristic.pInputData(&input);
//   heuristic.pOutputData(&output);
//   if (heuristic.run() == RV_NO_ERROR) use(*output.pNodeList());
#pragma once

#include <cstdint>
#include <vector>

#include "rv/foundation/cell_handles.h"
#include "rv/framework/columns.h"
#include "rv/framework/internal_graph_algorithm.h"

// Per node of the output.
class RV_EXPORT RVNodeExtensionTopologicalHeuristic : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionTopologicalHeuristic)

public:
    RVNodeExtensionTopologicalHeuristic() = default;
    RVNodeExtensionTopologicalHeuristic(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    // 0 without a number.
    int orderNumber() const { return m_orderNumber; }
    int orderNumber(int number) { return m_orderNumber = number; }

private:
    int m_orderNumber = 0;
};

// Per node of a run.
class RV_EXPORT RVNodeExtensionTopologicalHeuristicInternal : public RVNodeAnalysisExtension {
    RV_PLAIN_RECORD(RVNodeExtensionTopologicalHeuristicInternal)

public:
    RVNodeExtensionTopologicalHeuristicInternal() = default;
    RVNodeExtensionTopologicalHeuristicInternal(RVNode* node, const RVAlgorithmData* data)
        : RVNodeAnalysisExtension(node, data) {}

    // Edges from and to nodes that are not yet numbered.
    int indegree() const { return m_indegree; }
    int indegree(int degree) { return m_indegree = degree; }
    int outdegree() const { return m_outdegree; }
    int outdegree(int degree) { return m_outdegree = degree; }

private:
    int m_indegree = 0;
    int m_outdegree = 0;
};

// Per edge of the input.
class RV_EXPORT RVEdgeExtensionTopologicalHeuristic : public RVEdgeAnalysisExtension {
    RV_PLAIN_RECORD(RVEdgeExtensionTopologicalHeuristic)

public:
    RVEdgeExtensionTopologicalHeuristic() = default;
    RVEdgeExtensionTopologicalHeuristic(RVEdge* edge, const RVAlgorithmData* data)
        : RVEdgeAnalysisExtension(edge, data) {}

    int weight() const { return m_weight; }
    int weight(int value) { return m_weight = value; }

private:
    int m_weight = 1;
};

// No named fields.
class RV_EXPORT RVTopologicalHeuristicInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVTopologicalHeuristicInputData)
    RV_EDGE_RECORDS(RVEdgeExtensionTopologicalHeuristic)

public:
    RVTopologicalHeuristicInputData() = default;
    explicit RVTopologicalHeuristicInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Default 1. Does not influence the numbering.
    int weight(RVEdge* edge) const { return m_weights.get(edge); }
    int weight(RVEdge* edge, int value) { return m_weights.store(edge, value); }

private:
    rv::EdgeColumn<int> m_weights{this, &EdgeRecord::weight, &EdgeRecord::weight, 1};
};

class RV_EXPORT RVTopologicalHeuristicOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVTopologicalHeuristicOutputData)
    RV_NODE_RECORDS(RVNodeExtensionTopologicalHeuristic)

public:
    RVTopologicalHeuristicOutputData() = default;

    // All nodes in the order of their numbers.
    RVNodeDList* pNodeList() const { return m_nodes.get(); }
    // From 1 to the number of nodes; 0 before a run.
    int orderNumber(RVNode* node) const { return m_orderNumbers.get(node); }
    int orderNumber(RVNode* node, int number) { return m_orderNumbers.store(node, number); }
    // The order numbers, for writing them all at once.
    rv::NodeColumn<int>& orderNumbers() { return m_orderNumbers; }
    // 1 when no edge runs backward, self-loops included, so when the graph is acyclic, else 0. Set by every
    // run; 1 before the first one, left alone by reset.
    int acyclic() const { return m_acyclic; }
    int acyclic(int flag) { return m_acyclic = flag; }

    void reset() override;

private:
    rv::Owned<RVNodeDList> m_nodes;
    int m_acyclic = 1;
    rv::NodeColumn<int> m_orderNumbers{this, &NodeRecord::orderNumber, &NodeRecord::orderNumber};
};

// What a run keeps. All nodes are those of the working graph; every one that is not numbered stands in the
// source list or in the candidate list.
class RV_EXPORT RVTopologicalHeuristicInternalData : public RVAnalysisInternalData {
    RV_DATA_OBJECT(RVTopologicalHeuristicInternalData)
    RV_NODE_RECORDS(RVNodeExtensionTopologicalHeuristicInternal)

public:
    RVTopologicalHeuristicInternalData() = default;

    // The numbered nodes, in the order of their numbers.
    RVNodeDList* pSortedNodeList() const { return m_sortedNodes.get(); }
    // Nodes without an in-edge from a node that is not numbered: a queue.
    RVNodeDList* pSourceList() const { return m_sources.get(); }
    // The others, in graph order.
    RVNodeDList* pCandidateList() const { return m_candidates.get(); }

    int indegree(RVNode* node) const { return load(node, &NodeRecord::indegree); }
    int indegree(RVNode* node, int degree) { return store(node, &NodeRecord::indegree, degree); }
    int outdegree(RVNode* node) const { return load(node, &NodeRecord::outdegree); }
    int outdegree(RVNode* node, int degree) { return store(node, &NodeRecord::outdegree, degree); }

private:
    friend class RVTopologicalHeuristicAlgorithm;

    // A candidate and what it is chosen by: smaller comes first.
    struct Choice {
        std::uint64_t degrees;  // in-degree, then the complement of the out-degree
        std::uint32_t place;    // in the candidate list at first
        bool operator>(const Choice& other) const {
            return degrees != other.degrees ? degrees > other.degrees : place > other.place;
        }
    };
    void fillCandidateLists(const RVGraph* graph);
    void pushChoice(RVNode* node);
    RVNode* takeBestCandidate();
    void loseInEdge(RVNode* node);
    void loseOutEdge(RVNode* node);

    rv::Owned<RVNodeDList> m_sortedNodes;
    rv::Owned<RVNodeDList> m_sources;
    rv::Owned<RVNodeDList> m_candidates;
    // A heap with an entry for every candidate that is no worse than the candidate, and outdated ones.
    rv::Uncopied<std::vector<Choice>> m_choices;
    rv::Uncopied<std::vector<RVNode*>> m_nodesByPlace;
    rv::Uncopied<std::vector<std::uint32_t>> m_places;  // by dense index
    rv::Uncopied<rv::CellHandles> m_candidateCells;
};

class RV_EXPORT RVTopologicalHeuristicAlgorithm : public RVInternalGraphAlgorithm {
    RV_OBJECT(RVTopologicalHeuristicAlgorithm)
    RV_WORKS_WITH(RVTopologicalHeuristicInputData, RVTopologicalHeuristicOutputData)

public:
    RVTopologicalHeuristicAlgorithm() = default;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    using RVInternalGraphAlgorithm::preprocessReflexiveEdges;
    // Self-loops stay.
    void preprocessReflexiveEdges() override;

private:
    RVTopologicalHeuristicInternalData* pData() const {
        return static_cast<RVTopologicalHeuristicInternalData*>(pInternalData());
    }
    // Takes the node that is to be numbered next from its list.
    RVNode* pNextNode() const;
};
