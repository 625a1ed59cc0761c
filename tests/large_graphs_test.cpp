// Large graphs, deep ones and such with huge degrees: all algorithms do with a small stack, and with time
// that grows with the graph as their headers tell.

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/small_stack.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

#ifdef RV_SANITIZED
constexpr int kSize = 5000;
constexpr int kStack = 256;
#elif defined NDEBUG
constexpr int kSize = 1000000;
constexpr int kStack = 256;
#else
constexpr int kSize = 20000;
constexpr int kStack = 64;
#endif

// What is known of a graph: how many components, strong components and blocks it has, and how many edges
// break its cycles.
struct Known {
    int components;
    int strong;
    int blocks;
    int broken;
};

void addRing(RVGraph* graph, int length) {
    const std::vector<RVNode*> nodes = addChain(graph, length);
    graph->addEdge(nodes.back(), nodes.front());
}

Known addComb(RVGraph* graph, int size) {
    RVNode* last = graph->addNode();
    while (graph->numberOfNodes() < size) {
        RVNode* const next = graph->addNode();
        graph->addEdge(last, next);
        if (graph->numberOfNodes() % 2 == 1) last = next;
    }
    return {1, size, size - 1, 0};
}

// Cycle breaking reduces it in as many runs inside one another: two nodes and four edges per level beside a
// core that nothing simplifies. Bridging the trigger of a level makes an edge opposite to the one from the
// hub to the gate; both cancel, which leaves the gate without a way out. The next run drops the edge from the
// next trigger to that gate, so that this trigger can be bridged.
Known addNestedCycles(RVGraph* graph, int size) {
    const int levels = size / 2;
    RVNode* core[5];
    for (RVNode*& node : core) node = graph->addNode();
    for (int i = 0; i < 5; ++i) {
        graph->addEdge(core[i], core[(i + 1) % 5]);
        graph->addEdge(core[i], core[(i + 2) % 5]);
    }
    RVNode* gateBefore = nullptr;
    for (int i = 0; i < levels; ++i) {
        RVNode* const gate = graph->addNode();
        RVNode* const trigger = graph->addNode();
        graph->addEdge(gate, trigger);
        graph->addEdge(trigger, core[0]);
        graph->addEdge(core[0], gate);
        if (gateBefore != nullptr) graph->addEdge(trigger, gateBefore);
        gateBefore = gate;
    }
    graph->addEdge(core[1], gateBefore);
    return {1, 1, 1, levels + 3};
}

// Edges between a node and others, a number of times.
Known addStar(RVGraph* graph, int size, bool isOutward, bool isInward, int times) {
    RVNode* const centre = graph->addNode();
    while (graph->numberOfNodes() < size) graph->addNode();
    for (int i = 0; i < times; ++i) {
        for (RVNode* node : *graph->pNodeList()) {
            if (node != centre && isOutward) graph->addEdge(centre, node);
            if (node != centre && isInward) graph->addEdge(node, centre);
        }
    }
    const bool isStrong = isOutward && isInward;
    return {1, isStrong ? 1 : size, size - 1, isStrong ? times * (size - 1) : 0};
}

enum class Kind { deep, nested, wide, parallel };

const struct LargeShape {
    const char* name;
    Kind kind;
    Known (*build)(RVGraph* graph, int size);
} kShapes[] = {
    {"chain", Kind::deep,
     [](RVGraph* graph, int size) {
         addChain(graph, size);
         return Known{1, size, size - 1, 0};
     }},
    {"backward chain", Kind::deep,
     [](RVGraph* graph, int size) {
         addChain(graph, size);
         for (RVEdge* edge : *graph->pEdgeList()) edge->invertDirection();
         return Known{1, size, size - 1, 0};
     }},
    {"comb", Kind::deep, addComb},
    {"ring", Kind::deep,
     [](RVGraph* graph, int size) {
         addRing(graph, size);
         return Known{1, 1, 1, 1};
     }},
    // No node at which a search for the smallest in-degree could stop early.
    {"rings of four", Kind::deep,
     [](RVGraph* graph, int size) {
         for (int i = 0; i < size / 4; ++i) addRing(graph, 4);
         return Known{size / 4, size / 4, size / 4, size / 4};
     }},
    {"nested cycles", Kind::nested, addNestedCycles},
    {"star, out of the centre", Kind::wide,
     [](RVGraph* graph, int size) { return addStar(graph, size, true, false, 1); }},
    {"star, into the centre", Kind::wide,
     [](RVGraph* graph, int size) { return addStar(graph, size, false, true, 1); }},
    {"star of parallel edges", Kind::wide,
     [](RVGraph* graph, int size) { return addStar(graph, size, true, true, 2); }},
    {"parallel edges", Kind::parallel,
     [](RVGraph* graph, int size) { return addStar(graph, 2, true, true, size / 2); }},
    {"loops", Kind::wide,
     [](RVGraph* graph, int size) {
         RVNode* const nodes[] = {graph->addNode(), graph->addNode()};
         graph->addEdge(nodes[0], nodes[1]);
         for (int i = 0; i < size; ++i) graph->addEdge(nodes[i % 2], nodes[i % 2]);
         return Known{1, 2, 1, 0};
     }},
};

// The size for an algorithm: all of it, or where the method takes more than linear time, what takes about a
// second: time n^3; many ratio cuts of some hundred passes each; as many searches as there are paths; as many
// rounds as there are levels.
template <class R>
int sizeFor(Kind kind, int size) {
    constexpr int kSome = kSize == 1000000 ? 2000 : 400;
    constexpr bool isCut = std::is_base_of_v<RVBasicClusteringInputData, decltype(R::input)>;
    if (std::is_same_v<R, AllPairs>) return 200;
    if (isCut) return kSome;
    if (std::is_same_v<R, MinimumCostFlow> && kind == Kind::parallel) return 5 * kSome;
    if (std::is_same_v<R, CycleBreaking> && kind == Kind::nested) return kSome;
    return kind == Kind::deep ? size : size / 5;
}

// Costs, capacities and weights are 1. The edges, or the graph, may be undirected.
class LargeQuestion : public Question {
public:
    LargeQuestion(const RVGraph* graph, int way) : Question(graph), m_way(way) {
        m_effects.appendNode(graph->pFirstNode());
        m_effects.appendNode(graph->pLastNode());
    }
    int intField(const char* field, RVGraphObject*) const override {
        const std::string name = field;
        if (name == "range") return m_way == 0 ? -1 : kInfinite - 1;
        if (name == "desiredFlow") return kInfinite;
        if (name == "edgeUndirected") return m_way == 1 ? 1 : 0;
        return name == "undirected" && m_way != 2 ? 0 : 1;
    }
    RVObject* pObjectField(const char* field, RVGraphObject* object) const override {
        if (std::string(field) == "effectNodeList") return const_cast<RVNodeDList*>(&m_effects);
        return Question::pObjectField(field, object);
    }

private:
    RVNodeDList m_effects;
    int m_way;
};

template <class R>
class LargeGraphs : public testing::Test {
protected:
    static void expect(const Known& known, const R& run, const RVGraph* graph) {
        const auto& output = run.output;
        const int nodes = graph->numberOfNodes();
        if constexpr (std::is_same_v<R, Connected>) {
            EXPECT_EQ(output.pComponentList()->length(), known.components);
        } else if constexpr (std::is_same_v<R, Strong>) {
            EXPECT_EQ(output.pComponentList()->length(), known.strong);
        } else if constexpr (std::is_same_v<R, Blocks>) {
            EXPECT_EQ(output.pComponentList()->length(), known.blocks);
        } else if constexpr (std::is_same_v<R, SpanningTree>) {
            EXPECT_EQ(output.pTreeEdgeList()->length(), known.components == 1 ? nodes - 1 : 0);
        } else if constexpr (std::is_same_v<R, CycleBreaking>) {
            RVEdgeDList broken;
            output.buildEdgeList(broken);
            EXPECT_EQ(broken.length(), known.broken);
        } else if constexpr (std::is_same_v<R, TopologicalSort>) {
            const bool isAcyclic = known.broken == 0 && graph->numberOfEdges() < nodes;
            EXPECT_EQ(output.pNodeList()->length(), isAcyclic ? nodes : 0);
            for (RVEdge* edge : *graph->pEdgeList())
                ASSERT_LE(output.orderNumber(edge->pSourceNode()), output.orderNumber(edge->pTargetNode()));
        } else if constexpr (std::is_same_v<R, BreadthFirst> || std::is_same_v<R, DepthFirst>) {
            EXPECT_EQ(output.pNodeList()->length(), nodes);
        }
    }
};
TYPED_TEST_SUITE(LargeGraphs, Algorithms, AlgorithmNames);

// Directed; a tenth as large with undirected edges, in place; a tenth as large and undirected as a whole.
TYPED_TEST(LargeGraphs, TakeLittleStackAndTheirTime) {
    const auto runAll = [] {
        for (const LargeShape& shape : kShapes) {
            for (int way = 0; way < 3; ++way) {
                SCOPED_TRACE(shape.name + std::string(", way ") + std::to_string(way));
                RVAFactory factory;
                const std::unique_ptr<RVGraph> graph(factory.newGraph());
                const int size = sizeFor<TypeParam>(shape.kind, way == 0 ? kSize : kSize / 10);
                const Known known = shape.build(graph.get(), size);
                TypeParam run(graph.get());
                if (way == 2 && !run.input.hasField("undirected")) continue;
                LargeQuestion question(graph.get(), way);
                if (std::is_same_v<TypeParam, BreadthFirst> || std::is_same_v<TypeParam, DepthFirst>)
                    question.pStart = nullptr;  // search everything
                ask(run, graph.get(), question);
                useOriginalGraph(run, way == 1);
                const int edges = graph->numberOfEdges();
                ASSERT_EQ(run(), RV_NO_ERROR);
                EXPECT_EQ(graph->numberOfEdges(), edges);
                if (way == 0) TestFixture::expect(known, run, graph.get());
            }
        }
    };
    withSmallStack(runAll, kStack);
}

}  // namespace
