// The algorithms of the library with their data, and what their tests compare.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "rv/analysis.h"
#include "tests/test_graph.h"

namespace rvtest {

constexpr int kInfinite = 2147483647;

// An algorithm with its data, for one graph after another.
template <class Algorithm, class Input, class Output>
struct Runner {
    explicit Runner(RVGraph* graph = nullptr) : input(graph) {
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
    }
    RVServiceErrorCodeEnum operator()() { return algorithm.run(); }
    RVServiceErrorCodeEnum operator()(RVGraph* graph) {
        input.pAssociatedGraph(graph);
        return algorithm.run();
    }

    Input input;
    Output output;
    Algorithm algorithm;
};

// The same with an object of a subclass, which runs on the hooks where the class itself works in arrays.
template <class Algorithm>
struct Subclass : Algorithm {};
template <class Run>
using OnHooks = Runner<Subclass<decltype(Run::algorithm)>, decltype(Run::input), decltype(Run::output)>;

using TopologicalSort =
    Runner<RVTopologicalSortAlgorithm, RVTopologicalSortInputData, RVTopologicalSortOutputData>;
using BreadthFirst =
    Runner<RVBreadthFirstSearchAlgorithm, RVBreadthFirstSearchInputData, RVBreadthFirstSearchOutputData>;
using DepthFirst =
    Runner<RVDepthFirstSearchAlgorithm, RVDepthFirstSearchInputData, RVDepthFirstSearchOutputData>;
using Connected =
    Runner<RVConnectedComponentsAlgorithm, RVConnectedComponentsInputData, RVConnectedComponentsOutputData>;
using Blocks = Runner<RVBiconnectedComponentsAlgorithm, RVBiconnectedComponentsInputData,
                      RVBiconnectedComponentsOutputData>;
using Strong = Runner<RVStronglyConnectedComponentsAlgorithm, RVStronglyConnectedComponentsInputData,
                      RVStronglyConnectedComponentsOutputData>;
using PathTest = Runner<RVPathExistsTestAlgorithm, RVPathExistsTestInputData, RVPathExistsTestOutputData>;
using AcyclicTest = Runner<RVAcyclicTestAlgorithm, RVAcyclicTestInputData, RVAcyclicTestOutputData>;
using TreeTest = Runner<RVTreeTestAlgorithm, RVTreeTestInputData, RVTreeTestOutputData>;
using Dijkstra = Runner<RVDijkstraAlgorithm, RVShortestPathsInputData, RVDijkstraOutputData>;
using AcyclicPaths =
    Runner<RVShortestPathsAcyclicAlgorithm, RVShortestPathsAcyclicInputData, RVDijkstraOutputData>;
using AllPairs = Runner<RVAllPairsShortestPathsAlgorithm, RVAllPairsShortestPathsInputData,
                        RVAllPairsShortestPathsOutputData>;
using ShortestPaths = Runner<RVShortestPathsAlgorithm, RVShortestPathsInputData, RVShortestPathsOutputData>;
using UniquePath = Runner<RVUniquePathTestAlgorithm, RVUniquePathTestInputData, RVUniquePathTestOutputData>;
using SingleSource = Runner<RVSingleSourceShortestPathsAlgorithm, RVSingleSourceShortestPathsInputData,
                            RVSingleSourceShortestPathsOutputData>;
using SortedPaths = Runner<RVSortedPathsAlgorithm, RVSortedPathsInputData, RVSortedPathsOutputData>;
using MaximumFlow = Runner<RVMaximumFlowAlgorithm, RVMaximumFlowInputData, RVMaximumFlowOutputData>;
using MinimumCostFlow =
    Runner<RVMinimumCostFlowAlgorithm, RVMinimumCostFlowInputData, RVMinimumCostFlowOutputData>;
using MinimumCut = Runner<RVMinimumCutAlgorithm, RVMinimumCutInputData, RVMinimumCutOutputData>;
using DisjointPaths = Runner<RVDisjointPathsAlgorithm, RVDisjointPathsInputData, RVDisjointPathsOutputData>;
using SpanningTree =
    Runner<RVMinimumSpanningTreeAlgorithm, RVMinimumSpanningTreeInputData, RVMinimumSpanningTreeOutputData>;
using NewCycleTest = Runner<RVNewCycleTestAlgorithm, RVNewCycleTestInputData, RVNewCycleTestOutputData>;
using Heuristic = Runner<RVTopologicalHeuristicAlgorithm, RVTopologicalHeuristicInputData,
                         RVTopologicalHeuristicOutputData>;
using CycleBreaking = Runner<RVCycleBreakingEdgeDetectionAlgorithm, RVCycleBreakingEdgeDetectionInputData,
                             RVCycleBreakingEdgeDetectionOutputData>;
using Reachable = Runner<RVReachableNodesAlgorithm, RVReachableNodesInputData, RVReachableNodesOutputData>;
using RootCauses = Runner<RVRootCauseAlgorithm, RVRootCauseInputData, RVRootCauseOutputData>;
using RatioCut = Runner<RVRatioCutBipartitioningAlgorithm, RVRatioCutBipartitioningInputData,
                        RVRatioCutBipartitioningOutputData>;
using Splitting = Runner<RVClusterSplittingAlgorithm, RVClusterSplittingInputData, RVClusteringOutputData>;
using Disconnected = Runner<RVDisconnectedClusteringAlgorithm, RVClusteringInputData, RVClusteringOutputData>;
using Clustering = Runner<RVClusteringAlgorithm, RVClusteringInputData, RVClusteringOutputData>;

// Disposes of its path graphs, which otherwise are the caller's.
struct OwnPathGraph : RVSortedPathsOutputData {
    OwnPathGraph() = default;
    OwnPathGraph(const OwnPathGraph&) = default;
    OwnPathGraph& operator=(const OwnPathGraph&) = delete;
    ~OwnPathGraph() override { discardPathGraph(); }
    void reset() override {
        discardPathGraph();
        RVSortedPathsOutputData::reset();
    }
};
using SortedPathsOnce = Runner<RVSortedPathsAlgorithm, RVSortedPathsInputData, OwnPathGraph>;

// A new algorithm goes here, and into describe() if its output has other results.
using Algorithms =
    testing::Types<TopologicalSort, BreadthFirst, DepthFirst, Connected, Blocks, Strong, PathTest,
                   AcyclicTest, TreeTest, Dijkstra, AcyclicPaths, AllPairs, ShortestPaths, UniquePath,
                   SingleSource, SortedPathsOnce, MaximumFlow, MinimumCostFlow, MinimumCut, DisjointPaths,
                   SpanningTree, Reachable, NewCycleTest, Heuristic, CycleBreaking, RootCauses, RatioCut,
                   Splitting, Disconnected, Clustering>;

struct AlgorithmNames {
    template <class R>
    static std::string GetName(int) {
        return testing::internal::GetTypeName<decltype(R::algorithm)>();
    }
};

// Answers nothing.
class NoOutput : public RVAnalysisOutputData {
public:
    void reset() override {}
};

// Makes the graphs of callers, but none that has a factory while an algorithm works.
class FactorylessFactory : public RVAFactory {
public:
    RVGraph* newGraph() override { return new RVGraph(); }
};

// Tells a search which edges are drawn as undirected.
template <class Input>
void takeDrawnDirections(Input& input, const RVGraph* graph) {
    for (RVEdge* edge : *graph->pEdgeList()) input.undirected(edge, undirected(edge) ? 1 : 0);
}

// Gives nodes and edges the costs that their names say, 0 where they say none, or, if the input has none,
// such capacities; those of other nodes are without limit.
template <class Input>
void takeCosts(Input& input, const RVGraph* graph) {
    for ([[maybe_unused]] RVNode* node : *graph->pNodeList()) {
        if constexpr (requires { input.cost(node, 0); })
            input.cost(node, number(node, 0, 0));
        else if constexpr (requires { input.capacity(node, 0); })
            input.capacity(node, number(node, 0, kInfinite));
    }
    for ([[maybe_unused]] RVEdge* edge : *graph->pEdgeList()) {
        if constexpr (requires { input.cost(edge, 0); })
            input.cost(edge, number(edge, 0, 0));
        else if constexpr (requires { input.capacity(edge, 0); })
            input.capacity(edge, number(edge, 0, 0));
    }
}

// Asks an algorithm about nodes of a graph as it is drawn.
template <class Run>
int runOn(Run& test, RVGraph* graph, RVNode* first, RVNode* second = nullptr, int undirected = 0) {
    auto& input = test.input;
    if constexpr (requires { input.pStartNode(first); }) input.pStartNode(first);
    if constexpr (requires { input.pFinishNode(second); }) input.pFinishNode(second);
    if constexpr (requires { input.pSourceNode(first); }) input.pSourceNode(first);
    if constexpr (requires { input.pSinkNode(second); }) input.pSinkNode(second);
    if constexpr (requires { input.undirected(undirected); }) {
        input.undirected(undirected);
        takeDrawnDirections(input, graph);
    }
    takeCosts(input, graph);
    return test(graph);
}

// Nodes weigh, and edges cost, what their names say.
template <class Input>
void takeWeights(Input& input, const RVGraph* graph) {
    for (RVNode* node : *graph->pNodeList()) input.setWeight(node, number(node));
    for (RVEdge* edge : *graph->pEdgeList()) input.setCost(edge, number(edge));
}

// The clusters of an output, one in brackets after the other.
inline std::string clusterText(const RVClusteringOutputData& output) {
    std::string all;
    for (RVDListIter cluster(output.pClusters()); cluster; cluster++) {
        all += "[";
        for (RVDListIter iter(RVDList::castDown(cluster.pObject())); iter; iter++) {
            all += (all.back() == '[' ? "" : " ") + text(static_cast<RVNode*>(iter.pObject()));
        }
        all += "]";
    }
    return all;
}

// All that can be seen of a graph: its orders, and per object its address, index, name, user fields and the
// records of data, in order.
inline std::string snapshot(const RVGraph* graph) {
    std::ostringstream all;
    all << orders(graph);
    const auto add = [&](const RVGraphMember* member) {
        all << '\n' << member << '#' << member->denseIndex() << ' ' << token(member);
        all << ' ' << member->pUserField() << ' ' << member->pIUserField() << ':';
        const RVAlgorithmExtension* record = member->pAnalysisExtensions()->pFirstExtension();
        for (; record != nullptr; record = record->pNextExtension()) all << ' ' << record;
    };
    for (const RVNode* node : *graph->pNodeList()) add(node);
    for (const RVEdge* edge : *graph->pEdgeList()) add(edge);
    return all.str();
}

// A graph whose lists do not stand in the order of its edges, with records of data and user fields.
struct MarkedGraph : TestGraph {
    explicit MarkedGraph(const std::string& tokens, unsigned seed) : TestGraph(tokens) {
        std::mt19937 random(seed);
        for (RVEdge* edge : edges()) {
            if (random() % 4 == 0) edge->invertDirection();
            if (random() % 6 == 0) edge->changeTargetNode(get()->pFirstNode());
            if (random() % 6 == 0) get()->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
            m_data.directed(edge, 7);
        }
        for (RVNode* node : *get()->pNodeList()) node->pUserField(m_data.pReflexiveEdgeList(node));
    }

private:
    std::vector<RVEdge*> edges() const {
        std::vector<RVEdge*> all;
        for (RVEdge* edge : *get()->pEdgeList()) all.push_back(edge);
        return all;
    }
    RVAnalysisInternalData m_data;
};

enum class Ways { directed, drawn, both };

// Where an edge leads from a node; none where it does not.
inline RVNode* follow(const RVEdge* edge, const RVNode* from, Ways ways) {
    if (edge->pSourceNode() == from) return edge->pTargetNode();
    const bool isBothWays = ways == Ways::both || (ways == Ways::drawn && undirected(edge));
    return isBothWays && edge->pTargetNode() == from ? edge->pSourceNode() : nullptr;
}

// The fewest edges from node to node, over every node in between, without those that are left out.
class Distances {
public:
    static constexpr int kNone = 1000000;

    Distances(const RVGraph* graph, Ways ways, const std::set<RVNode*>& without = {}) {
        const RVNodeDList& nodes = *graph->pNodeList();
        for (RVNode* node : nodes) {
            improve(node, node, 0);
            for (RVEdge* edge : *graph->pEdgeList()) {
                RVNode* const there = follow(edge, node, ways);
                if (there != nullptr && without.count(node) + without.count(there) == 0)
                    improve(node, there, 1);
            }
        }
        for (RVNode* via : nodes)
            for (RVNode* from : nodes)
                for (RVNode* to : nodes) improve(from, to, (*this)(from, via) + (*this)(via, to));
    }
    int operator()(RVNode* from, RVNode* to) const {
        const auto found = m_steps.find({from, to});
        return found == m_steps.end() ? kNone : found->second;
    }
    bool reaches(RVNode* from, RVNode* to) const { return (*this)(from, to) < kNone; }

private:
    void improve(RVNode* from, RVNode* to, int length) {
        int& known = m_steps.emplace(std::pair(from, to), kNone).first->second;
        known = std::min(known, length);
    }
    std::map<std::pair<RVNode*, RVNode*>, int> m_steps;
};

// How far nodes are from a node, or backward from them to it: every edge is relaxed as often as there are
// nodes. The cost of a step is that of an edge and of the node from which it is taken.
template <class Cost>
std::map<RVNode*, std::int64_t> relaxedDistances(const RVGraph* graph, RVNode* start, Ways ways,
                                                 bool isBackward, Cost cost) {
    std::map<RVNode*, std::int64_t> distances{{start, 0}};
    for (int round = 0; round < graph->numberOfNodes(); ++round) {
        for (RVEdge* edge : *graph->pEdgeList()) {
            for (RVNode* end : {edge->pSourceNode(), edge->pTargetNode()}) {
                RVNode* from = end;
                RVNode* to = follow(edge, from, ways);
                if (isBackward) std::swap(from, to);
                if (from == nullptr || to == nullptr || distances.count(from) == 0) continue;
                const std::int64_t through = distances[from] + cost(edge, from);
                const auto known = distances.emplace(to, through).first;
                known->second = std::min(known->second, through);
            }
        }
    }
    return distances;
}

// With all its digits.
inline std::string exactText(double value) {
    char digits[32];
    std::snprintf(digits, sizeof digits, "%.17g", value);
    return digits;
}

// All that an output tells about a graph.
template <class Output>
std::string describe(const Output& output, const RVGraph* graph) {
    std::string all;
    const auto add = [&](const auto& value) {
        if constexpr (std::is_convertible_v<decltype(value), std::string>)
            all += value + "; ";
        else if constexpr (std::is_floating_point_v<std::decay_t<decltype(value)>>)
            all += exactText(value) + "; ";
        else
            all += std::to_string(value) + "; ";
    };
    const auto addLists = [&](const RVDList* lists, bool ofNodes) {
        for (RVDListIter it(lists); it; it++) {
            add(ofNodes ? text(*RVNodeDList::castDown(it.pObject()))
                        : text(*RVEdgeDList::castDown(it.pObject())));
        }
    };
    if constexpr (requires { output.pNodeList(); }) add(text(*output.pNodeList()));
    if constexpr (requires { output.pEdgeList(); }) add(text(*output.pEdgeList()));
    if constexpr (requires { output.pVisitedNodeList(); }) add(text(*output.pVisitedNodeList()));
    if constexpr (requires { output.pArticulationNodeList(); }) add(text(*output.pArticulationNodeList()));
    if constexpr (requires { output.pComponentList(); }) addLists(output.pComponentList(), true);
    if constexpr (requires { output.pEdgeComponentList(); }) addLists(output.pEdgeComponentList(), false);
    if constexpr (requires { output.acyclic(); }) add(output.acyclic());
    if constexpr (requires { output.pathExists(); }) add(output.pathExists());
    if constexpr (requires { output.isTree(); }) add(output.isTree() + 2 * output.isForest());
    if constexpr (requires { output.totalCost(); }) add(output.totalCost());
    if constexpr (requires { output.totalFlow(); }) add(output.totalFlow());
    if constexpr (requires { output.pTreeEdgeList(); }) add(text(*output.pTreeEdgeList()));
    if constexpr (requires { output.pPathList(); }) addLists(output.pPathList(), false);
    if constexpr (requires { output.uniquePathExists(); }) add(output.uniquePathExists());
    if constexpr (requires { output.willCreateCycle(); }) add(output.willCreateCycle());
    if constexpr (requires(RVEdgeDList list) { output.buildReflexiveEdgeList(list); }) {
        RVEdgeDList list;
        output.buildEdgeList(list);
        add(text(list));
        output.buildReflexiveEdgeList(list);
        add(text(list));
    }
    if constexpr (requires { output.pCauseNodeList(); }) add(text(*output.pCauseNodeList()));
    if constexpr (requires { output.pClusters(); }) add(clusterText(output));
    for (RVNode* node : *graph->pNodeList()) {
        if constexpr (requires(RVNodeDList & list) { output.buildReachedNodeList(node, list); }) {
            RVNodeDList reached;
            output.buildReachedNodeList(node, reached);
            add(text(reached));
        }
        if constexpr (requires { output.dist(node); }) add(output.dist(node));
        if constexpr (requires { output.computeLengthOfShortestPath(node, node); }) {
            for (RVNode* from : *graph->pNodeList()) {
                add(output.computeLengthOfShortestPath(from, node));
                add(text(output.pLastEdge(from, node)));
            }
        }
        if constexpr (requires { output.orderNumber(node); }) add(output.orderNumber(node));
        if constexpr (requires { output.completionNumber(node); }) add(output.completionNumber(node));
        if constexpr (requires { output.componentNumber(node); }) add(output.componentNumber(node));
        if constexpr (requires { output.pParentNode(node); }) add(text(output.pParentNode(node)));
        if constexpr (requires { output.getClusterNumber(node); }) add(output.getClusterNumber(node));
        if constexpr (requires { output.getX(node); }) add(output.getX(node));
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        if constexpr (requires { output.flow(edge); }) add(output.flow(edge));
        if constexpr (requires { output.backwardEdge(edge); }) add(output.backwardEdge(edge));
        if constexpr (requires { output.edgeType(edge); }) add(static_cast<int>(output.edgeType(edge)));
    }
    return all;
}

// Runs, and says how it went and what was found.
template <class R>
std::string codeAndAnswer(R& run, const RVGraph* graph) {
    const std::string code = std::to_string(run());
    return code + "; " + describe(run.output, graph);
}

// Answers every question of an input: nodes by name, the other nodes with the last one, effects with all
// nodes, numbers from the objects.
class Question : public RVAlgorithmInputData {
public:
    explicit Question(const RVGraph* graph, int flag = 0)
        : pStart(graph->pFirstNode()),
          pFinish(graph->pLastNode()),
          m_pNodes(graph->pNodeList()),
          m_flag(flag) {}
    bool hasField(const char*) const override { return true; }
    bool hasNodeField(const char*) const override { return true; }
    bool hasEdgeField(const char*) const override { return true; }
    int intField(const char*, RVGraphObject* object) const override {
        auto* const edge = object != nullptr && object->isEdge() ? static_cast<RVEdge*>(object) : nullptr;
        return edge != nullptr && undirected(edge) ? 1 : m_flag;
    }
    double doubleField(const char*, RVGraphObject*) const override { return m_flag; }
    RVObject* pObjectField(const char* name, RVGraphObject*) const override {
        if (std::string(name) == "effectNodeList") return m_pNodes;
        const bool isFirst = std::string(name) == "startNode" || std::string(name) == "sourceNode";
        return isFirst ? pStart : pFinish;
    }
    RVNode* pStart;
    RVNode* pFinish;

private:
    RVNodeDList* m_pNodes;
    int m_flag;
};

// Puts a question to an algorithm, about a graph.
template <class R>
void ask(R& run, RVGraph* graph, const Question& question) {
    run.input.pAssociatedGraph(graph);
    run.input.copyData(&question);
    if constexpr (requires { run.algorithm.storeDistances(1); }) run.algorithm.storeDistances(1);
    if constexpr (requires { run.input.quality(2); }) run.input.quality(2);
    if constexpr (requires { run.input.pCandidateNodeList(); })
        *run.input.pCandidateNodeList() = *graph->pNodeList();
}

template <class R>
void useOriginalGraph(R& run, int flag) {
    if constexpr (requires { run.algorithm.useOriginalGraph(flag); }) run.algorithm.useOriginalGraph(flag);
}

// Binds the nodes c, d and f of a clustering by a constraint of each kind.
template <class R>
void constrain(R& run, const TestGraph& g, std::array<RVClusteringConstraint, 3>& constraints) {
    if constexpr (requires { run.input.addConstraint(&constraints[0]); }) {
        for (std::size_t i = 0; i < constraints.size(); ++i) {
            constraints[i].type(static_cast<RVClusteringConstraintTypeEnum>(i));
            for (const char* name : {i == 2 ? "d" : "c", "f"}) constraints[i].addNode(g.node(name));
            run.input.addConstraint(&constraints[i]);
        }
        run.input.minClusterCount(3);
    }
}

// Whether no edge can be followed back to where it starts.
inline bool isAcyclic(const RVGraph* graph) {
    const Distances steps(graph, Ways::directed);
    for (RVEdge* edge : *graph->pEdgeList())
        if (steps.reaches(edge->pTargetNode(), edge->pSourceNode())) return false;
    return true;
}

}  // namespace rvtest
