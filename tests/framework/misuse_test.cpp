// What callers do in haste: data of the wrong class, nodes that have died, data that are gone, a run in a
// run.

#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>
#include <type_traits>

#include "tests/algorithm_checks.h"
#include "tests/exported_classes.h"

namespace {

using namespace rvtest;

template <class R>
using Input = decltype(R::input);
// What is asked of an output: the two searches for one path do without distances.
template <class R>
using Output = std::conditional_t<std::is_same_v<R, Dijkstra> || std::is_same_v<R, AcyclicPaths>,
                                  RVShortestPathsOutputData, decltype(R::output)>;

TEST(Misuse, OfDataOfOtherClasses) {
    const TestGraph g("a->b b->c");
    int wrong = 0;
    forEachClass(Algorithms(), [&]<class R>() {
        forEachClass(Algorithms(), [&]<class S>() {
            if constexpr (!std::is_same_v<Output<S>, OwnPathGraph>) {
                R run(g);
                S other(g);
                const bool takesInput = std::is_base_of_v<Input<R>, Input<S>>;
                const bool takesOutput = std::is_base_of_v<Output<R>, decltype(S::output)>;
                run.algorithm.pInputData(&other.input);
                EXPECT_EQ(run() == RV_WRONG_INPUT_DATA, !takesInput);
                run.algorithm.pOutputData(&other.output);
                EXPECT_EQ(run.algorithm.run() == RV_WRONG_INPUT_DATA, !takesInput);
                run.algorithm.pInputData(&run.input);
                EXPECT_EQ(run() == RV_WRONG_OUTPUT_DATA, !takesOutput);
                wrong += takesInput && takesOutput ? 0 : 1;
            }
        });
    });
    EXPECT_GT(wrong, 700);
}

// A pointer to a node that has died is none, also where another node takes its place; one to a node that has
// moved stays.
TEST(Misuse, OfNodesThatHaveDied) {
    int pointers = 0;
    forEachClass(Algorithms(), [&]<class R>() {
        const auto check = [&](auto set, auto get) {
            ++pointers;
            TestGraph g("a->b b->c");
            TestGraph other("d");
            R run(g);
            set(run.input, g.node("b"));
            const auto copy = std::make_unique<Input<R>>(run.input);
            RVNode* const moved = g->removeNode(g.node("b"));
            EXPECT_EQ(get(run.input), moved);
            EXPECT_NE(run(), RV_NO_ERROR);
            other->insertNode(moved);
            EXPECT_EQ(get(run.input), moved);
            other->discardNode(moved);
            other->addNode();
            EXPECT_EQ(get(run.input), nullptr);
            EXPECT_EQ(get(*copy), nullptr);
            set(run.input, g.node("a"));
            *copy = run.input;
            g.release();
            EXPECT_EQ(get(run.input), nullptr);
            EXPECT_EQ(get(*copy), nullptr);
        };
        RVNode* const none = nullptr;
        if constexpr (requires(Input<R> & input) { input.pStartNode(none); } &&
                      !std::is_same_v<R, BreadthFirst> && !std::is_same_v<R, DepthFirst>)
            check([](auto& input, RVNode* node) { input.pStartNode(node); },
                  [](auto& input) { return input.pStartNode(); });
        if constexpr (requires(Input<R> & input) { input.pFinishNode(none); })
            check([](auto& input, RVNode* node) { input.pFinishNode(node); },
                  [](auto& input) { return input.pFinishNode(); });
        if constexpr (requires(Input<R> & input) { input.pSourceNode(none); })
            check([](auto& input, RVNode* node) { input.pSourceNode(node); },
                  [](auto& input) { return input.pSourceNode(); });
        if constexpr (requires(Input<R> & input) { input.pSinkNode(none); })
            check([](auto& input, RVNode* node) { input.pSinkNode(node); },
                  [](auto& input) { return input.pSinkNode(); });
        if constexpr (requires(Input<R> & input) { input.pTargetNode(none); })
            check([](auto& input, RVNode* node) { input.pTargetNode(node); },
                  [](auto& input) { return input.pTargetNode(); });
    });
    EXPECT_GT(pointers, 15);
}

TEST(Misuse, OfDataThatAreGone) {
    const TestGraph g("a->b");
    RVTopologicalSortAlgorithm sort;
    auto input = std::make_unique<RVTopologicalSortInputData>(g);
    auto output = std::make_unique<RVTopologicalSortOutputData>();
    EXPECT_EQ(rv::run(sort, *input, *output), RV_NO_ERROR);
    RVTopologicalSortAlgorithm copy(sort);
    output = nullptr;
    EXPECT_EQ(sort.run(), RV_NO_OUTPUT_DATA);
    EXPECT_EQ(copy.run(), RV_NO_OUTPUT_DATA);
    RVTopologicalSortOutputData another;
    sort.pOutputData(&another);
    EXPECT_EQ(sort.run(), RV_NO_ERROR);
    input = nullptr;
    EXPECT_EQ(sort.run(), RV_NO_INPUT_DATA);
    EXPECT_EQ(sort.pInputData(), nullptr);
}

// Runs itself, and another algorithm on the same data, in a hook.
struct Nested : RVBreadthFirstSearchAlgorithm {
    void visitNodeBeforeTraverse(RVNode* node, RVEdge* edge) override {
        codes.insert(run());
        RVBreadthFirstSearchAlgorithm::visitNodeBeforeTraverse(node, edge);
    }
    std::set<int> codes;
};

TEST(Misuse, OfARunInItself) {
    const TestGraph g("a->b b->c");
    Runner<Nested, RVBreadthFirstSearchInputData, RVBreadthFirstSearchOutputData> run(g);
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(run(), RV_NO_ERROR);
        EXPECT_EQ(run.algorithm.codes, std::set<int>{RV_ALREADY_RUNNING});
        EXPECT_EQ(text(*run.output.pNodeList()), "a b c");
    }
}

}  // namespace
