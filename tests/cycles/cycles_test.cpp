// New cycle test, topological heuristic and cycle-breaking edge detection.

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

TEST(NewCycleTest, AgreesWithAllDistances) {
    NewCycleTest run;
    for (unsigned seed = 0; seed < 150; ++seed) {
        const MarkedGraph g(randomText(seed, {.edges = 10, .undirected = 20}), seed);
        const Distances distances(g, Ways::directed);
        run.input.pAssociatedGraph(g);
        for (RVNode* source : *g->pNodeList()) {
            for (RVNode* target : *g->pNodeList()) {
                run.input.pSourceNode(source);
                run.input.pTargetNode(target);
                run.algorithm.useOriginalGraph(static_cast<int>(seed % 2));
                ASSERT_EQ(run(), RV_NO_ERROR);
                ASSERT_EQ(run.output.willCreateCycle(), distances.reaches(target, source) ? 1 : 0)
                    << "seed " << seed << ": " << text(source) << " " << text(target);
            }
        }
    }
}

// Heuristic

// The rule as it is stated, with a scan over all nodes for each number.
std::vector<RVNode*> numberByScanning(const RVGraph* graph) {
    std::set<std::pair<RVNode*, RVNode*>> seen;
    std::set<RVEdge*> edges;  // between nodes without a number, one of parallel ones
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (seen.emplace(edge->pSourceNode(), edge->pTargetNode()).second) edges.insert(edge);
    }
    // In-edges and, counted downward, out-edges.
    const auto degrees = [&](const RVNode* node) {
        std::pair<int, int> counts;
        for (const RVEdge* edge : edges) {
            if (edge->pTargetNode() == node) ++counts.first;
            if (edge->pSourceNode() == node) --counts.second;
        }
        return counts;
    };
    std::vector<RVNode*> sources;
    std::vector<RVNode*> candidates;
    std::vector<RVNode*> isolated;
    for (RVNode* node : *graph->pNodeList())
        (node->degree() == 0 ? isolated : degrees(node).first == 0 ? sources : candidates).push_back(node);
    std::vector<RVNode*> order;
    while (!sources.empty() || !candidates.empty()) {
        if (sources.empty()) {
            const auto best = std::min_element(candidates.begin(), candidates.end(),
                                               [&](auto* a, auto* b) { return degrees(a) < degrees(b); });
            sources.push_back(*best);
            candidates.erase(best);
        }
        RVNode* const node = order.emplace_back(sources.front());
        sources.erase(sources.begin());
        std::vector<RVNode*> targets;
        for (RVEdge* edge : *node->pOutEdgeList())
            if (edges.erase(edge) != 0) targets.push_back(edge->pTargetNode());
        std::erase_if(edges, [&](const RVEdge* edge) { return edge->pTargetNode() == node; });
        for (RVNode* target : targets)
            if (degrees(target).first == 0 && std::erase(candidates, target) != 0) sources.push_back(target);
    }
    order.insert(order.end(), isolated.begin(), isolated.end());
    return order;
}

TEST(TopologicalHeuristic, AgreesWithScanning) {
    Heuristic run;
    for (unsigned seed = 0; seed < 400; ++seed) {
        const std::string tokens = seed == 0 ? "" : randomText(seed, {.nodes = 12, .edges = 40});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        for (RVEdge* edge : *g->pEdgeList()) run.input.weight(edge, 1 + edge->denseIndex() * 100);
        run.algorithm.useOriginalGraph(static_cast<int>(seed % 2));
        ASSERT_EQ(run(g), RV_NO_ERROR);
        int number = 0;
        int acyclic = 1;
        RVNodeDList expected;
        for (RVNode* node : numberByScanning(g)) {
            expected.appendNode(node);
            EXPECT_EQ(run.output.orderNumber(node), ++number);
        }
        EXPECT_EQ(text(*run.output.pNodeList()), text(expected));
        for (RVEdge* edge : *g->pEdgeList()) {
            if (run.output.orderNumber(edge->pSourceNode()) >= run.output.orderNumber(edge->pTargetNode()))
                acyclic = 0;
        }
        EXPECT_EQ(run.output.acyclic(), acyclic);
    }
}

// Detection

std::string backwardEdges(const CycleBreaking& run) {
    RVEdgeDList list;
    run.output.buildEdgeList(list);
    return text(list);
}

TEST(CycleBreaking, ReducesSolvesAndUndoes) {
    const struct {
        const char* what;
        const char* graph;
        int quality;
        const char* backward;
        const char* messages;
    } cases[] = {
        {"nothing to break", "a->b b->c a->c", 2, "", ""},
        {"loops only", "a->a b->b", 0, "", ""},
        {"the heuristic's backward edges", "a->b b->c c->a d->a b->a", 0, "a->b",
         "out degree first: 1  pEdges\n"},
        {"a pair", "a->b b->a", 1, "b->a", "opposite pEdge reduction: b, a\nrestore opposite edges:\n"},
        {"the lighter side of a pair", "a->b a->b b->a", 1, "b->a",
         "multi pEdge reduction: a, b\nopposite pEdge reduction: b, a\n"
         "restore opposite edges:\nrestore multi edges:\n"},
        {"a triangle", "a->b b->c c->a", 1, "c->a",
         "degree two node reduction: c\nopposite pEdge reduction: b, a\n"
         "restore opposite edges:\nrestore degree two nodes:\n"},
        {"the edge shared by two triangles", "a->b b->c c->a b->d d->a", 1, "a->b",
         "degree two node reduction: c\nopposite pEdge reduction: b, a\ndegree two node reduction: d\n"
         "restore degree two nodes:\nrestore opposite edges:\nrestore degree two nodes:\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        for (const int debugMode : {1, 0}) {
            CycleBreaking run(g);
            run.input.quality(c.quality);
            run.algorithm.debugMode(debugMode);
            testing::internal::CaptureStdout();
            EXPECT_EQ(run(), RV_NO_ERROR);
            EXPECT_EQ(testing::internal::GetCapturedStdout(), debugMode == 0 ? "" : c.messages);
            EXPECT_EQ(backwardEdges(run), c.backward);
        }
    }
}

TEST(CycleBreaking, KeepsItsQualityInRange) {
    RVCycleBreakingEdgeDetectionInputData input;
    for (const auto& [quality, kept] : {std::pair(-1, 1), {5, 2}, {-1, 2}, {0, 0}}) {
        EXPECT_EQ(input.quality(quality), quality);
        EXPECT_EQ(input.quality(), kept);
    }
}

std::set<RVEdge*> asSet(const RVEdgeDList& list) {
    std::set<RVEdge*> edges;
    for (RVEdge* edge : list) edges.insert(edge);
    return edges;
}

// Whether no cycle but loops is left when some edges are reversed, and so neither when they are left out.
bool isBroken(const RVGraph* graph, const std::set<RVEdge*>& reversed) {
    std::vector<std::pair<RVNode*, RVNode*>> arcs;
    for (RVEdge* edge : *graph->pEdgeList()) {
        RVNode* const source = edge->pSourceNode();
        RVNode* const target = edge->pTargetNode();
        if (source == target) continue;
        arcs.push_back(reversed.count(edge) == 0 ? std::pair(source, target) : std::pair(target, source));
    }
    // Those that do not come from the target of another one are on no cycle.
    for (bool isChanged = true; isChanged;) {
        std::set<RVNode*> targets;
        for (const auto& arc : arcs) targets.insert(arc.second);
        isChanged = std::erase_if(arcs, [&](const auto& arc) { return targets.count(arc.first) == 0; }) != 0;
    }
    return arcs.empty();
}

std::size_t leastFeedbackSet(const RVGraph* graph) {
    std::vector<RVEdge*> edges;
    for (RVEdge* edge : *graph->pEdgeList()) edges.push_back(edge);
    std::size_t least = edges.size();
    for (unsigned subset = 0; subset < 1U << edges.size(); ++subset) {
        std::set<RVEdge*> broken;
        for (std::size_t i = 0; i < edges.size(); ++i) {
            if ((subset >> i & 1U) != 0) broken.insert(edges[i]);
        }
        if (broken.size() < least && isBroken(graph, broken)) least = broken.size();
    }
    return least;
}

TEST(CycleBreaking, BreaksAllCycles) {
    CycleBreaking run;
    std::size_t found[3] = {};
    std::size_t least = 0;
    for (unsigned seed = 0; seed < 500; ++seed) {
        const bool isSmall = seed % 10 == 0;
        const std::string tokens =
            randomText(seed, {.nodes = isSmall ? 6 : 12, .edges = isSmall ? 12 : 40, .undirected = 10});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        if (isSmall) least += leastFeedbackSet(g);
        for (int quality = 0; quality <= 2; ++quality) {
            run.input.quality(quality);
            run.algorithm.useOriginalGraph(static_cast<int>(seed / 2 % 2));
            ASSERT_EQ(run(g), RV_NO_ERROR);
            RVEdgeDList list;
            run.output.buildEdgeList(list);
            const std::set<RVEdge*> broken = asSet(list);
            if (isSmall) found[quality] += broken.size();
            ASSERT_EQ(static_cast<int>(broken.size()), list.length());
            ASSERT_TRUE(isBroken(g, broken)) << text(list);

            std::set<RVEdge*> loops;
            for (RVEdge* edge : *g->pEdgeList()) {
                EXPECT_EQ(run.output.backwardEdge(edge), broken.count(edge) != 0 ? 1 : 0);
                if (edge->pSourceNode() == edge->pTargetNode()) loops.insert(edge);
            }
            run.output.buildReflexiveEdgeList(list);
            EXPECT_EQ(asSet(list), loops);

            for (RVEdge* edge : broken) {
                if (quality < 2) break;
                std::set<RVEdge*> fewer = broken;
                fewer.erase(edge);
                EXPECT_FALSE(isBroken(g, fewer)) << text(edge) << " could go back";
            }
        }
    }
    EXPECT_LE(found[2], found[1]);
    EXPECT_LE(found[1], least * 11 / 10);
    EXPECT_LE(found[0], least * 5 / 4);
}

TEST(CycleBreaking, FailsWithItsParts) {
    FactorylessFactory factory;
    for (const int original : {0, 1}) {
        for (const int quality : {0, 1, 2}) {
            RVGraph graph(&factory);
            RVNode* const a = graph.addNode();
            RVNode* const b = graph.addNode();
            graph.addEdge(a, b);
            graph.addEdge(b, a);
            CycleBreaking run(&graph);
            run.input.quality(quality);
            run.algorithm.useOriginalGraph(original);
            run.algorithm.debugMode(1);
            testing::internal::CaptureStdout();
            EXPECT_EQ(run(), RV_ALGORITHM_FAILURE);
            const std::string messages = testing::internal::GetCapturedStdout();
            const char* failure = quality == 0    ? "Error in topological heuristic alg. Return code = 21\n"
                                  : original == 0 ? "Error in SCC alg. Return code = 21\n"
                                                  : "Error in recursive call. Return code = 21\n";
            EXPECT_NE(messages.find(failure), std::string::npos) << messages;
        }
    }
}

TEST(GraphReductionAction, OwnsItsListOnly) {
    const TestGraph g("a->b");
    auto action = std::make_unique<RVGraphReductionAction>();
    const std::unique_ptr<RVEdgeDList> first(action->pOldEdgeList());
    auto* second = new RVEdgeDList();
    EXPECT_EQ(action->pOldEdgeList(second), second);
    EXPECT_EQ(action->pOldEdgeList(second), second);
    second->appendEdge(g.edge("a->b"));
    action->pNewEdge(g.edge("a->b"));
    const RVGraphReductionAction copy(*action, RVDeep);
    EXPECT_EQ(copy.pNewEdge(), nullptr);
    EXPECT_EQ(copy.pOldEdgeList()->length(), 0);
    action.reset();
    EXPECT_EQ(g->numberOfEdges(), 1);
}

// A stack of actions is the data's, as far as they are not popped.
TEST(CycleBreaking, OwnsItsActions) {
    RVCycleBreakingEdgeDetectionInternalData data;
    EXPECT_TRUE(data.actionStackEmpty());
    EXPECT_EQ(data.popAction(), nullptr);
    auto* lower = new RVGraphReductionAction();
    auto* upper = new RVGraphReductionAction();
    data.pushAction(lower);
    data.pushAction(upper);
    const RVCycleBreakingEdgeDetectionInternalData copy(data);
    EXPECT_TRUE(copy.actionStackEmpty());
    EXPECT_EQ(data.topAction(), upper);
    const std::unique_ptr<RVGraphReductionAction> popped(data.popAction());
    EXPECT_EQ(popped.get(), upper);
    EXPECT_EQ(data.topAction(), lower);
}

}  // namespace
