// What holds for all algorithms.

#include <gtest/gtest.h>
#include <malloc.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

template <class R, class... Others>
constexpr bool kIsOneOf = (std::is_same_v<R, Others> || ...);

// What is said of numbers that are all below 0.
template <class R>
int codeOfNumbers() {
    if (kIsOneOf<R, AllPairs, ShortestPaths, SingleSource>) return RV_NEGATIVE_CYCLE;
    if (kIsOneOf<R, Reachable, RootCauses>) return RV_INVALID_RANGE;
    if (kIsOneOf<R, Dijkstra>) return RV_ALGORITHM_FAILURE;
    if (kIsOneOf<R, MaximumFlow>) return RV_NEGATIVE_CAPACITY;
    if (kIsOneOf<R, MinimumCostFlow>) return RV_NEGATIVE_DESIRED_FLOW;
    return kIsOneOf<R, MinimumCut> ? RV_NEGATIVE_COST : RV_NO_ERROR;
}

template <class R>
class AlgorithmContract : public testing::Test {
protected:
    static std::string answer(R& run, RVGraph* graph, int flag) {
        ask(run, graph, Question(graph, flag));
        EXPECT_EQ(run(), RV_NO_ERROR);
        EXPECT_EQ(run.output.pAssociatedGraph(), graph);
        return describe(run.output, graph);
    }
    // The code for the first node that is missing or another one than the right one.
    static int codeOfNodes(const R& run, const Question& question, const RVNode* right) {
        constexpr bool isSearch = kIsOneOf<R, BreadthFirst, DepthFirst>;
        const struct {
            const char* field;
            int missing;
            int foreign;
        } nodes[] = {
            {"startNode", isSearch ? RV_NO_ERROR : RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH},
            {"sourceNode", RV_NO_SOURCE_NODE, RV_SOURCE_NODE_NOT_IN_GRAPH},
            {"finishNode", RV_NO_FINISH_NODE, RV_FINISH_NODE_NOT_IN_GRAPH},
            {"sinkNode", RV_NO_SINK_NODE, RV_SINK_NODE_NOT_IN_GRAPH},
            {"targetNode", RV_NO_TARGET_NODE, RV_TARGET_NODE_NOT_IN_GRAPH},
        };
        for (const auto& node : nodes) {
            const RVObject* const given = question.pObjectField(node.field, nullptr);
            if (!run.input.hasField(node.field) || given == right) continue;
            return given == nullptr ? node.missing : node.foreign;
        }
        return RV_NO_ERROR;
    }
};

TYPED_TEST_SUITE(AlgorithmContract, Algorithms, AlgorithmNames);

TYPED_TEST(AlgorithmContract, AnswersAlwaysTheSameAndChangesNothing) {
    TypeParam kept;
    const TestGraph other("v->w w--x x->v y->y");
    for (unsigned seed = 0; seed < 120; ++seed) {
        const std::string tokens = randomText(seed, {.edges = 11, .undirected = 25});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const int flag = static_cast<int>(seed % 2);
        const MarkedGraph g(tokens, seed / 2);
        const std::string before = snapshot(g);
        const std::string ordersBefore = orders(g);
        {
            const std::uint64_t changes = g->modificationCount();
            TypeParam fresh;
            if constexpr (requires { fresh.output.orderNumber(g->pFirstNode(), 99); }) {
                for (RVNode* node : *g->pNodeList()) fresh.output.orderNumber(node, 99);
            }
            const std::string expected = this->answer(fresh, g, flag);
            EXPECT_EQ(this->answer(fresh, g, flag), expected);
            // The components are found on the graph itself, which is put in order again.
            if (!std::is_same_v<TypeParam, rvtest::Disconnected>) {
                EXPECT_EQ(g->modificationCount(), changes);
            }
            EXPECT_EQ(this->answer(kept, g, flag), expected);
            this->answer(kept, other, 1 - flag);
            // Nothing is left of the answer for the first graph.
            this->answer(fresh, other, 1 - flag);
            EXPECT_EQ(describe(kept.output, g), describe(fresh.output, g));
            EXPECT_EQ(this->answer(kept, g, flag), expected);

            useOriginalGraph(kept, 1);
            EXPECT_EQ(this->answer(kept, g, flag), expected);
            EXPECT_EQ(orders(g), ordersBefore);
            const int limits[] = {g->nodeIndexLimit(), g->edgeIndexLimit()};
            EXPECT_EQ(this->answer(kept, g, flag), expected);
            EXPECT_EQ(g->nodeIndexLimit(), limits[0]);
            EXPECT_EQ(g->edgeIndexLimit(), limits[1]);
            useOriginalGraph(kept, 0);

            TypeParam copied;
            copied.input = kept.input;
            if constexpr (std::is_copy_assignable_v<decltype(kept.algorithm)>)
                copied.algorithm = kept.algorithm;
            copied.algorithm.pInputData(&copied.input);
            copied.algorithm.pOutputData(&copied.output);
            EXPECT_EQ(copied(), RV_NO_ERROR);
            EXPECT_EQ(describe(copied.output, g), expected);
            const auto output = std::make_unique<decltype(copied.output)>(copied.output);
            copied.output.reset();
            EXPECT_EQ(describe(*output, g), expected);
            decltype(copied.output) empty;
            empty.pAssociatedGraph(g);
            if constexpr (std::is_same_v<TypeParam, Heuristic>) empty.acyclic(copied.output.acyclic());
            EXPECT_EQ(describe(copied.output, g), describe(empty, g));
        }
        // Only what the kept input and output know is on the graph now.
        this->answer(kept, other, flag);
        kept.input.deleteDataReferences(g);
        EXPECT_EQ(snapshot(g), before);
    }
}

TYPED_TEST(AlgorithmContract, AnswersMissingAndForeignDataWithCodes) {
    const TestGraph g("a->b c->b d");
    const TestGraph other("x");
    const std::string before = orders(g);
    RVGraph factoryless;
    TypeParam run;
    const std::string expected = this->answer(run, g, 0);
    EXPECT_EQ(run(nullptr), RV_NO_INPUT_GRAPH);
    EXPECT_EQ(run(&factoryless), RV_NO_GRAPH_FACTORY);
    run.algorithm.pOutputData(nullptr);
    EXPECT_EQ(run(nullptr), RV_NO_OUTPUT_DATA);
    EXPECT_EQ(run.algorithm.internalRun(), RV_NO_OUTPUT_DATA);
    run.algorithm.pInputData(nullptr);
    EXPECT_EQ(run(g), RV_NO_INPUT_DATA);
    EXPECT_EQ(describe(run.output, g), expected);
    run.algorithm.pInputData(&run.input);
    run.algorithm.pOutputData(&run.output);

    // A node that is detached, of another graph, or discarded, which is no object to the sanitizers.
    g->removeNode(g.node("d"));
    RVNode* gone = g->addNode();
    g->discardNode(gone);
#ifdef RV_SANITIZED
    gone = nullptr;
#endif
    RVNode* const nodes[] = {g.node("a"), nullptr, g.node("d"), other.node("x"), gone};
    for (RVNode* first : nodes) {
        for (RVNode* second : nodes) {
            const std::string kept = this->answer(run, g, 0);
            Question question(g, -5);
            question.pStart = first;
            question.pFinish = second;
            ask(run, g, question);
            const int code = this->codeOfNodes(run, question, nodes[0]);
            EXPECT_EQ(run(), code != 0 ? code : codeOfNumbers<TypeParam>()) << code;
            EXPECT_TRUE(code == 0 || describe(run.output, g) == kept) << kept;
            EXPECT_EQ(run(&factoryless), RV_NO_GRAPH_FACTORY);
            EXPECT_EQ(run(nullptr), RV_NO_INPUT_GRAPH);
        }
    }
    g->insertNode(g.node("d"));
    EXPECT_EQ(orders(g), before);

    auto factory = std::make_unique<RVAFactory>();
    const TestGraph orphan("a", factory.get());
    factory.reset();
    EXPECT_EQ(orphan.node("a")->pFactory(), nullptr);
    EXPECT_EQ(TypeParam(orphan)(), RV_NO_GRAPH_FACTORY);
}

#ifndef RV_SANITIZED
// Not by one block in each run: that would be 32 bytes. What malloc keeps at hand, and counts as in use,
// grows at first, so runs are looked at until they leave it alone; what is lost grows for ever.
TYPED_TEST(AlgorithmContract, DoesNotGrow) {
    const TestGraph g("a->b b->a b--c c->c a->b c->e d");
    for (const int original : {0, 1}) {
        TypeParam run;
        ask(run, g, Question(g, 1));
        useOriginalGraph(run, original);
        const auto bytesAfter = [&](int runs) {
            for (int i = 0; i < runs; ++i) EXPECT_EQ(run(), RV_NO_ERROR);
            return mallinfo2().uordblks;
        };
        std::size_t before = bytesAfter(100);
        bool isGrowing = true;
        for (int tries = 0; isGrowing && tries < 10; ++tries) {
            const std::size_t after = bytesAfter(900);
            isGrowing = after >= before + std::size_t{900 * 32};
            before = after;
        }
        EXPECT_FALSE(isGrowing);
    }
}
#endif

// Graph, input, output and algorithm are destroyed in every order, after a run each with and without a copy.
TYPED_TEST(AlgorithmContract, LetsEverythingGoInAnyOrder) {
    std::array<int, 4> order = {0, 1, 2, 3};
    do {
        for (const int original : {0, 1}) {
            auto g = std::make_unique<TestGraph>("a->b b->a b--c c->c a->b d");
            auto input = std::make_unique<decltype(TypeParam::input)>(g->get());
            auto output = std::make_unique<decltype(TypeParam::output)>();
            auto algorithm = std::make_unique<decltype(TypeParam::algorithm)>();
            input->copyData(std::make_unique<Question>(g->get()).get());
            algorithm->pInputData(input.get());
            algorithm->pOutputData(output.get());
            if constexpr (requires { algorithm->useOriginalGraph(0); }) algorithm->useOriginalGraph(original);
            ASSERT_EQ(algorithm->run(), RV_NO_ERROR);
            for (const int which : order) {
                if (which == 0) g.reset();
                if (which == 1) input.reset();
                if (which == 2) output.reset();
                if (which == 3) algorithm.reset();
                if (input != nullptr && output != nullptr && algorithm != nullptr) {
                    EXPECT_EQ(algorithm->run(), RV_NO_INPUT_GRAPH);
                }
                if (g == nullptr && output != nullptr) {
                    EXPECT_EQ(output->pAssociatedGraph(), nullptr);
                    output->reset();
                }
            }
        }
    } while (std::next_permutation(order.begin(), order.end()));
}

// A class of the library may work in arrays; its subclasses work on hooks and find the same, ties and all.
// From the start of the rule too, and where lists stand in any order.
TYPED_TEST(AlgorithmContract, IsTheSameOnHooks) {
    for (unsigned seed = 0; seed < 200 && !this->HasFailure(); ++seed) {
        const std::string tokens = randomText(seed, {.edges = seed % 3 == 0 ? 16 : 11, .undirected = 25});
        const MarkedGraph g(tokens, seed);
        for (int way = 0; way < 4; ++way) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", way " + std::to_string(way) + ": " + tokens);
            Question question(g, way % 2);
            if (way / 2 != 0) question.pStart = nullptr;
            TypeParam run;
            OnHooks<TypeParam> hooked;
            ask(run, g, question);
            ask(hooked, g, question);
            EXPECT_EQ(codeAndAnswer(run, g), codeAndAnswer(hooked, g));
        }
    }
}

// Gives its factory once, so that a part of an algorithm misses it.
class ForgetfulGraph : public RVGraph {
public:
    using RVGraph::RVGraph;
    RVAFactory* pFactory() const override { return m_asked++ == 0 ? RVGraph::pFactory() : nullptr; }

private:
    mutable int m_asked = 0;
};

// Runs on a graph of which no part can make a copy.
template <class R, class Graph = RVGraph>
void expectFailure(const char* message, const char* answer, const std::function<void(R&)>& prepare = {}) {
    FactorylessFactory factory;
    for (const int debugMode : {0, 1}) {
        Graph graph(&factory);
        graph.addEdge(graph.addNode(), graph.addNode());
        R run(&graph);
        const Question question(&graph, 1);
        run.input.copyData(&question);
        if (prepare) prepare(run);
        run.algorithm.debugMode(debugMode);
        testing::internal::CaptureStdout();
        EXPECT_EQ(run(), RV_ALGORITHM_FAILURE);
        EXPECT_EQ(testing::internal::GetCapturedStdout(), debugMode == 0 ? "" : message);
        EXPECT_EQ(describe(run.output, &graph), answer) << message;
        EXPECT_EQ(graph.numberOfEdges(), 1);
    }
}

TEST(Algorithms, FailWithTheirParts) {
    expectFailure<ShortestPaths>("Error in Reachable Nodes. Return code = 21\n", "; 0; 2147483647; ");
    expectFailure<UniquePath>("Error in path exists. return code is 21\n", "; 0; ");
    expectFailure<MinimumCut>("Error in max flow. Return code = 21\n", "; 0; ");
    expectFailure<AcyclicTest>("Error in Top Sort. Return code = 21\n", "1; ");
    expectFailure<TreeTest, ForgetfulGraph>("Error in cc alg. Return code is 999\n", "0; ");
    for (const int flag : {0, 1}) {
        expectFailure<DisjointPaths>("Error in max flow.\nReturn code: 21\n", "",
                                     [&](auto& run) { run.input.nodeDisjointPaths(flag); });
        expectFailure<MinimumCostFlow>(
            "Error in Reachable Nodes. Return code = 21\n", "0; 0; 0; ",
            [&](auto& run) { run.input.cost(run.input.pAssociatedGraph()->pFirstEdge(), 1 - 2 * flag); });
    }
}

}  // namespace
