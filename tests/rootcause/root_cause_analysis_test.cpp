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
        {"what explains half of it", "a->x a->y b->x", "x y", -1, 0.5, "x(x) y(y) b(x) a(x y)"},
        {"just the threshold", "x:1 y:3 a->x", "x y", -1, 0.25, "x(x) a(x) y(y)"},
        {"weights of other nodes", "a:-7 a->x", "x", -1, 1, "a(x) x(x)"},
        {"large weights", "x:2147483647 y:2147483647 z:1 a->x b->x b->y c->b c->z", "x y z", -1, 1,
         "c(x y z)"},
        {"costs of nodes in between", "c->b a:1,9 a->b b:1,5 b->x x:1,9", "x", 7, 1, "c(x) b(x) a(x) x(x)"},
        {"just too far", "c->b a:1,9 a->b b:1,5 b->x x:1,9", "x", 6, 1, "b(x) x(x)"},
        {"costs without a range", "a:1,9 a->b:9 b->x:2147483647", "x", -1, 1, "a(x) b(x) x(x)"},
        {"as far as can be counted", "a->x:2147483646 b->x:2147483647", "x", kLargest, 1, "a(x) x(x)"},
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

// The definition, word by word.
std::string definition(const RVGraph* graph, const RVNodeDList& effects, int range, double threshold,
                       bool undirected) {
    std::map<RVNode*, std::vector<RVNode*>> explained;
    std::int64_t total = 0;
    for (RVNode* effect : effects) {
        total += number(effect, 0, 1);
        const auto distances =
            relaxedDistances(graph, effect, undirected ? Ways::both : Ways::drawn, true,
                             [&](const RVEdge* edge, const RVNode* from) {
                                 return number(edge, 0, 1) + (from == effect ? 0 : number(from, 1, 0));
                             });
        for (const auto& [node, distance] : distances)
            if (range == -1 || distance <= range) explained[node].push_back(effect);
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

// Of more effects than are searched for at once, and none of which all causes explain.
TEST(RootCauses, TakeAnyNumberOfEffects) {
    const TestGraph g;
    addChain(g, 70);
    for (RVNode* node : *g->pNodeList())
        node->pNameString((L"n" + std::to_wstring(node->denseIndex())).c_str());
    RootCauses test;
    for (const int range : {-1, 1}) {
        ASSERT_EQ(run(test, g, g->pNodeList(), range, 0), RV_NO_ERROR);
        EXPECT_EQ(answer(test.output), definition(g, *g->pNodeList(), range, 0, false));
    }
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
