// Root cause analysis: the nodes from which a set of observed effects can be reached, and which best explain
// them.
//
// Works on the caller's graph, any graph: edges lead from causes to effects. A node explains an effect, one
// of the nodes of a list, when the effect can be reached from it; every effect explains itself. Edges are
// followed forward, undirected ones both ways. With a range, the costs of the edges on the way and of the
// nodes in between must not exceed it; the costs of the node and of the effect themselves do not count.
// Without one, costs play no part.
//
// A node is a cause when it explains some effect, and the effects that it explains weigh at least a given
// part of the weight of all effects, the threshold: with 0 all nodes that explain an effect are causes, with
// 1 those that explain every effect of a weight above 0. An effect that is listed several times counts, and
// is listed as explained, as often. The causes stand in the order of the weight that they explain, smallest
// first, those of equal weight in graph order; the effects that one explains stand in the order of the effect
// list. Weights are added exactly.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, then RV_NO_EFFECT_NODES for a missing or
// empty list, RV_EFFECT_NODE_NOT_IN_GRAPH, RV_INVALID_RANGE for a range below 0 that is not -1,
// RV_INVALID_THRESHOLD for one outside 0 to 1 or not a number, RV_NEGATIVE_WEIGHT of an effect,
// RV_NEGATIVE_COST of any node or edge of the graph, whatever the range, and the framework's.
// Method: with a range one backward search for each of k effects (see reachable_nodes.h), O((n + m) log n) at
// worst and otherwise what it reaches; without one the strong components (Gabow 2000), and one pass over them
// for every 64 effects, O((n + m) k / 64). Beside that O(n + m), and the size of the answer. Space O(n + m),
// the answer, and 16 bytes for each node and 64 effects of which it explains some.
//
//   RVRootCauseAlgorithm analysis;
//   RVRootCauseInputData input(graph);
//   RVRootCauseOutputData output;
//   input.pEffectNodeList(&effects);
//   input.threshold(0.8);
//   analysis.pInputData(&input);
//   analysis.pOutputData(&output);
//   if (analysis.run() == RV_NO_ERROR) use(*output.pCauseNodeList());
#pragma once

#include <memory>

#include "rv/foundation/hash_map.h"
#include "rv/framework/base_graph_algorithm.h"
#include "rv/framework/columns.h"

// Named fields: "undirected", "effectNodeList", "range", "threshold" (of the graph), "cost" (of a node and of
// an edge), "weight" (of a node), "edgeUndirected" (of an edge).
namespace rv {
class Pulse;
}

class RV_EXPORT RVRootCauseInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVRootCauseInputData)

public:
    explicit RVRootCauseInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}

    // Nonzero when all edges are followed in both directions; default 0.
    int undirected() const { return m_undirected; }
    int undirected(int flag) { return m_undirected = flag; }
    // The observed effects, nodes of the input's graph; default none. The list stays the caller's, and must
    // not be one of the run's output, which a run empties before it reads this one.
    RVNodeDList* pEffectNodeList() const { return m_pEffectNodes; }
    RVNodeDList* pEffectNodeList(RVNodeDList* nodes) { return m_pEffectNodes = nodes; }
    // The greatest cost of the way from a cause to an effect; -1, the default, means no limit.
    int range() const { return m_range; }
    int range(int value) { return m_range = value; }
    // From 0 to 1; default 1.
    double threshold() const { return m_threshold; }
    double threshold(double value) { return m_threshold = value; }

    // Nonzero for an edge that is followed in both directions; default 0.
    int undirected(RVEdge* edge) const { return m_edgesUndirected.get(edge); }
    int undirected(RVEdge* edge, int flag) {
        m_edgesUndirected.store(edge, flag != 0 ? 1 : 0);
        return flag;
    }
    // Default 0 for a node and 1 for an edge.
    int cost(RVNode* node) const { return m_nodeCosts.get(node); }
    int cost(RVNode* node, int value) { return m_nodeCosts.store(node, value); }
    int cost(RVEdge* edge) const { return m_edgeCosts.get(edge); }
    int cost(RVEdge* edge, int value) { return m_edgeCosts.store(edge, value); }
    // Of an effect; default 1.
    int weight(RVNode* node) const { return m_nodeWeights.get(node); }
    int weight(RVNode* node, int value) { return m_nodeWeights.store(node, value); }
    // The same, for reading all at once.
    const rv::EdgeColumn<int>& edgesUndirected() const { return m_edgesUndirected; }
    const rv::NodeCosts& nodeCosts() const { return m_nodeCosts; }
    const rv::EdgeCosts& edgeCosts() const { return m_edgeCosts; }
    const rv::NodeCosts& nodeWeights() const { return m_nodeWeights; }

protected:
    RVRootCauseInputData() = default;

    std::span<const RVInputField> inputFields() const override;

private:
    int m_undirected = 0;
    RVNodeDList* m_pEffectNodes = nullptr;
    int m_range = -1;
    double m_threshold = 1.0;
    rv::EdgeColumn<int> m_edgesUndirected{this};
    rv::NodeCosts m_nodeCosts{this};
    rv::EdgeCosts m_edgeCosts{this, 1};
    rv::NodeCosts m_nodeWeights{this, 1};
};

class RV_EXPORT RVRootCauseOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVRootCauseOutputData)

public:
    RVRootCauseOutputData() = default;

    // The causes, smallest explained weight first. The setter takes a list over and destroys the present one;
    // none stands for an empty one.
    RVNodeDList* pCauseNodeList() const { return m_causes.get(); }
    RVNodeDList* pCauseNodeList(RVNodeDList* nodes) { return m_causes.take(nodes); }
    // From each cause to the RVNodeDList of the effects that it explains. The setter takes a map over and
    // destroys the present one with its lists; none stands for an empty one.
    RVHashMap* pReachedNodeListMap() const { return m_reachedLists.get(); }
    RVHashMap* pReachedNodeListMap(RVHashMap* map) { return m_reachedLists.take(map); }

    // Both empty the list, then fill it: with the causes, or with the effects that a cause explains, none for
    // a node that is not a cause.
    void buildCauseNodeList(RVNodeDList& list) const;
    void buildReachedNodeList(RVNode* cause, RVNodeDList& list) const;

    // Empties the list of causes and, when the output is bound to a graph, the lists of what they explain.
    // The next run destroys those.
    void reset() override;

private:
    rv::Exchangeable<RVNodeDList> m_causes;
    rv::OwnedMap<rv::Values::Destroy> m_reachedLists;
};

class RV_EXPORT RVRootCauseAlgorithm : public RVBaseGraphAlgorithm {
    RV_OBJECT(RVRootCauseAlgorithm)
    RV_WORKS_WITH(RVRootCauseInputData, RVRootCauseOutputData)

public:
    RVRootCauseAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;

protected:
    RVServiceErrorCodeEnum algorithmBody() override;
    void generateOutputData() override;
    void parseInputData() override;
    // Both do nothing.
    void preprocess() override;
    void postprocess() override;

private:
    struct Run;
    class RVRootCauseNodeListSort;

    void searchTogether(RVGraph* graph, const RVRootCauseInputData& input, rv::Pulse& pulse);
    void searchOneByOne(RVGraph* graph, const RVRootCauseInputData& input, rv::Pulse& pulse);
    void createRootCauseNodeList(const RVGraph* graph);

    rv::RunState<Run> m_run{this};
};
