#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

constexpr int kLargest = std::numeric_limits<int>::max();

// The numbers of a node are its weight and its cost, that of an edge its cost.
void takeNumbers(RVRootCauseInputData& input, const RVGraph* graph) {
    for (RVNode* node : *graph->pNodeList()) {
        input.weight(node, number(node, 0, 1));
        input.cost(node, number(node, 1, 0));
    }
    for (RVEdge* edge : *graph->pEdgeList()) input.cost(edge, number(edge, 0, 1));
    takeDrawnDirections(input, graph);
}

int run(RootCauses& test, RVGraph* graph, RVNodeDList* effects, int range, double threshold) {
    takeNumbers(test.input, graph);
    test.input.pEffectNodeList(effects);
    test.input.range(range);
    test.input.threshold(threshold);
    return test(graph);
}

// The causes with what they explain, as `cause(effect effect)`.
std::string answer(const RVRootCauseOutputData& output) {
    std::string all;
    RVNodeDList causes;
    RVNodeDList reached;
    causes.appendNode(nullptr);
    output.buildCauseNodeList(causes);
    EXPECT_EQ(text(causes), text(*output.pCauseNodeList()));
    EXPECT_EQ(output.pReachedNodeListMap()->length(), causes.length());
    for (RVNode* cause : causes) {
        output.buildReachedNodeList(cause, reached);
        all += (all.empty() ? "" : " ") + text(cause) + "(" + text(reached) + ")";
    }
    output.buildReachedNodeList(nullptr, reached);
    EXPECT_EQ(reached.length(), 0);
    return all;
}

TEST(RootCauses, ExplainEffects) {
    const struct {
        const char* what;
        const char* graph;
        const char* effects;
        int range;
        double threshold;
        const char* causes;
    } cases[] = {
        {"all that reach the effect", "a->b b->c c->d", "c", -1, 1, "a(c) b(c) c(c)"},
        {"what explains everything", "a->x a->y b->x", "x y", -1, 1, "a(x y)"},
        {"what explains half of it", "a->x a->y b->x", "x y", -1, 0.5, "x(x) y(y) b(x) a(x y)"},
        {"what explains anything", "a->x a->y b->x c", "y x", -1, 0, "x(x) y(y) b(x) a(y x)"},
        {"just less than the threshold", "x:1 y:9 a->x", "x y", -1, 0.11, "y(y)"},
        {"just the threshold", "x:1 y:3 a->x", "x y", -1, 0.25, "x(x) a(x) y(y)"},
        {"equal weights in graph order", "c b a a->x b->y c->x", "x y", -1, 0, "c(x) b(y) a(x) x(x) y(y)"},
        {"repeated effects", "a->x b->y", "x y x", -1, 0.5, "a(x x) x(x x)"},
        {"no weight", "x:0 y:0 a->x", "x y", -1, 1, "x(x) y(y) a(x)"},
        {"no weight beside others", "x:0 y:1 a->x b->y", "x y", -1, 1, "y(y) b(y)"},
        {"no weight, but an effect", "x:0 y:1 a->x b->y c", "x y", -1, 0, "x(x) a(x) y(y) b(y)"},
        {"weights of other nodes", "a:-7 a->x", "x", -1, 1, "a(x) x(x)"},
        {"large weights", "x:2147483647 y:2147483647 z:1 a->x b->x b->y c->b c->z", "x y z", -1, 1,
         "c(x y z)"},
        {"the effect alone", "a->b:1 b->x:0", "x", 0, 1, "b(x) x(x)"},
        {"costs that nobody gave", "a->b b->x", "x", 1, 1, "b(x) x(x)"},
        {"costs of nodes in between", "c->b a:1,9 a->b b:1,5 b->x x:1,9", "x", 7, 1, "c(x) b(x) a(x) x(x)"},
        {"just too far", "c->b a:1,9 a->b b:1,5 b->x x:1,9", "x", 6, 1, "b(x) x(x)"},
        {"costs without a range", "a:1,9 a->b:9 b->x:2147483647", "x", -1, 1, "a(x) b(x) x(x)"},
        {"as far as can be counted", "a->x:2147483646 b->x:2147483647", "x", kLargest, 1, "a(x) x(x)"},
        {"an undirected edge", "a--b b->x x->c", "a x", -1, 0.5, "x(x) a(a x) b(a x)"},
        {"an undirected edge within a range", "a--b b->x x->c", "a x", 1, 0.5, "a(a) x(x) b(a x)"},
        {"loops, parallels and cycles", "x->x a->x a->x x->a a->b", "x", 3, 1, "x(x) a(x)"},
    };
    RootCauses test;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        RVNodeDList effects = g.nodes(c.effects);
        EXPECT_EQ(run(test, g, &effects, c.range, c.threshold), RV_NO_ERROR);
        EXPECT_EQ(answer(test.output), c.causes);
        EXPECT_EQ(text(effects), c.effects);
    }
}

TEST(RootCauses, FollowEdgesBothWaysInAnUndirectedGraph) {
    const TestGraph g("x->a a->b c");
    RVNodeDList effects = g.nodes("x");
    RootCauses test;
    test.input.undirected(1);
    EXPECT_EQ(run(test, g, &effects, -1, 1), RV_NO_ERROR);
    EXPECT_EQ(answer(test.output), "x(x) a(x) b(x)");
    EXPECT_EQ(run(test, g, &effects, 1, 1), RV_NO_ERROR);
    EXPECT_EQ(answer(test.output), "x(x) a(x)");
}

TEST(RootCauses, ChecksItsDataInOrder) {
    const TestGraph other("z");
    const struct {
        const char* graph;
        const char* effects;
        double threshold;
        int range;
        int code;
    } cases[] = {
        {"a:-1,-1 a->b:-1", "", 7, -5, 29},      {"a:-1,-1 a->b:-1", "a z", 7, -5, 30},
        {"a:-1,-1 a->b:-1", "a", 7, -2, 11},     {"a:-1,-1 a->b:-1", "a", 1.5, -1, 31},
        {"a:-1,-1 a->b:-1", "a", -0.1, 0, 31},   {"a:-1,-1 a->b:-1", "a", std::nan(""), 0, 31},
        {"a:-1,-1 a->b:-1", "b a", 0, 0, 25},    {"a:-1,-1 a->b", "b", 1, kLargest, 17},
        {"a:-1 a->b:-1", "b", 1, -1, 17},        {"a:-1,0 a->b:0", "b", 1, 0, 0},
        {"a->b", "b", 0.5, -2147483647 - 1, 11},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.code);
        const TestGraph g(c.graph);
        RVNodeDList effects;
        for (const char name : std::string(c.effects)) {
            if (name != ' ') effects.appendNode((name == 'z' ? other : g).node(std::string(1, name)));
        }
        RootCauses test;
        EXPECT_EQ(run(test, g, nullptr, c.range, c.threshold), 29);
        EXPECT_EQ(run(test, g, &effects, c.range, c.threshold), c.code);
        effects.prependNode(nullptr);
        EXPECT_EQ(run(test, g, &effects, c.range, c.threshold), 30);
    }
}

// Of more effects than are searched for at once, and many more on a path.
TEST(RootCauses, TakeAnyNumberOfEffects) {
    constexpr int kLength = 400;
    std::string tokens = "n0";
    for (int i = 1; i < kLength; ++i) tokens += " n" + std::to_string(i - 1) + "->n" + std::to_string(i);
    const TestGraph g(tokens);
    RootCauses test;
    for (const int range : {-1, 1}) {
        ASSERT_EQ(run(test, g, g->pNodeList(), range, 0), RV_NO_ERROR);
        int place = 0;
        for (RVNode* cause : *test.output.pCauseNodeList()) {
            // Without a range the last node explains least. Within one they all explain two but for that one.
            int from = range == -1 || place == 0 ? kLength - 1 - place : place - 1;
            ASSERT_EQ(text(cause), "n" + std::to_string(from));
            RVNodeDList reached;
            test.output.buildReachedNodeList(cause, reached);
            ASSERT_EQ(reached.length(), range == -1 ? place + 1 : place == 0 ? 1 : 2);
            for (RVNode* effect : reached) ASSERT_EQ(text(effect), "n" + std::to_string(from++));
            ++place;
        }
        EXPECT_EQ(place, kLength);
    }
}

// The definition, word by word.
std::string definition(const RVGraph* graph, const RVNodeDList& effects, int range, double threshold,
                       bool undirected) {
    std::map<RVNode*, std::vector<RVNode*>> explained;
    std::int64_t total = 0;
    for (RVNode* effect : effects) {
        total += number(effect, 0, 1);
        std::map<RVNode*, std::int64_t> distance{{effect, 0}};
        for (int round = 0; round < graph->numberOfNodes(); ++round) {
            for (RVEdge* edge : *graph->pEdgeList()) {
                for (RVNode* from : {edge->pSourceNode(), edge->pTargetNode()}) {
                    RVNode* const to = follow(edge, from, undirected ? Ways::both : Ways::drawn);
                    if (to == nullptr || distance.count(to) == 0) continue;
                    std::int64_t through = distance[to] + number(edge, 0, 1);
                    if (to != effect) through += number(to, 1, 0);
                    if (range != -1 && (through > range || through == kLargest)) continue;
                    const auto known = distance.emplace(from, through).first;
                    known->second = std::min(known->second, through);
                }
            }
        }
        for (const auto& [node, length] : distance) explained[node].push_back(effect);
    }
    std::vector<std::pair<std::int64_t, std::string>> causes;
    for (RVNode* node : *graph->pNodeList()) {
        if (explained.count(node) == 0) continue;
        std::int64_t weight = 0;
        std::string list;
        for (RVNode* effect : explained[node]) {
            weight += number(effect, 0, 1);
            list += (list.empty() ? "" : " ") + text(effect);
        }
        if (threshold > 0 && static_cast<double>(weight) < threshold * static_cast<double>(total)) continue;
        causes.emplace_back(weight, text(node) + "(" + list + ")");
    }
    std::stable_sort(causes.begin(), causes.end(),
                     [](const auto& a, const auto& b) { return a.first < b.first; });
    std::string all;
    for (const auto& cause : causes) all += (all.empty() ? "" : " ") + cause.second;
    return all;
}

TEST(RootCauses, AgreeWithTheirDefinition) {
    constexpr double kThresholds[] = {0, 0.2, 0.5, 0.75, 1};
    RootCauses test;
    std::size_t letters = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const std::string tokens = randomText(
            seed,
            {.nodes = 8, .edges = 14, .least = 0, .most = 4, .undirected = 20, .nodeNumbers = seed % 2 == 0});
        SCOPED_TRACE(std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        std::mt19937 random(seed);
        std::vector<RVNode*> nodes;
        for (RVNode* node : *g->pNodeList()) nodes.push_back(node);
        // Repeated ones, and on some graphs more than are searched for at once.
        RVNodeDList effects;
        for (unsigned left = seed % 50 == 0 ? 150 : 1 + random() % 4; left > 0; --left)
            effects.appendNode(nodes[random() % nodes.size()]);
        const int range = static_cast<int>(seed % 8) - 1;
        const double threshold = kThresholds[random() % 5];
        test.input.undirected(seed % 5 == 0 ? 1 : 0);
        ASSERT_EQ(run(test, g, &effects, range, threshold), RV_NO_ERROR);
        const std::string expected = definition(g, effects, range, threshold, seed % 5 == 0);
        ASSERT_EQ(answer(test.output), expected) << "of " << text(effects) << " within " << range;
        letters += expected.size();
    }
    EXPECT_GT(letters, 10000U);
}

}  // namespace
