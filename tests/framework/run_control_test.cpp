// Runs that their control ends, at whatever look.

#include <gtest/gtest.h>

#include <chrono>
#include <string>
#include <thread>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;
using Clock = RVRunControl::Clock;

// Ends runs at their k-th look, counted from 0.
class EndAt : public RVRunControl {
public:
    explicit EndAt(int look) : m_left(look) {}
    bool stopped() const override { return m_left-- <= 0 || RVRunControl::stopped(); }

private:
    mutable int m_left;
};

template <class R>
class RunControl : public testing::Test {
protected:
    template <class Run>
    static void prepare(Run& run, RVGraph* graph, int flag, int original) {
        ask(run, graph, Question(graph, flag));
        useOriginalGraph(run, original);
    }
    template <class Run>
    static std::string answer(Run& run, RVGraph* graph) {
        EXPECT_EQ(run(), RV_NO_ERROR);
        return describe(run.output, graph);
    }
    static std::string nothing(RVGraph* graph) {
        decltype(R::output) output;
        output.pAssociatedGraph(graph);
        output.reset();
        return describe(output, graph);
    }

    // Looks of the first hundred steps one by one, later ones now and then.
    template <class Run>
    static void endAtEveryLook(RVGraph* graph, int flag, int original) {
        const std::string before = snapshot(graph);
        std::string expected;
        {
            Run undisturbed;
            prepare(undisturbed, graph, flag, original);
            expected = answer(undisturbed, graph);
        }
        const std::string empty = nothing(graph);
        bool isDone = false;
        for (int look = 0; !isDone; look += 1 + look / 8) {
            SCOPED_TRACE("look " + std::to_string(look));
            {
                Run run;
                prepare(run, graph, flag, original);
                EndAt control(look);
                run.algorithm.pRunControl(&control);
                const std::string ordersBefore = orders(graph);
                const RVServiceErrorCodeEnum code = run();
                isDone = code != RV_CANCELLED;
                ASSERT_EQ(describe(run.output, graph), isDone ? expected : empty);
                ASSERT_EQ(orders(graph), ordersBefore);
                run.algorithm.pRunControl(nullptr);
                ASSERT_EQ(answer(run, graph), expected);
            }
            ASSERT_EQ(snapshot(graph), before);
        }
    }
};
TYPED_TEST_SUITE(RunControl, Algorithms, AlgorithmNames);

TYPED_TEST(RunControl, EndsARunAtEveryLookAndLeavesNothing) {
    for (unsigned way = 0; way < 4; ++way) {
        SCOPED_TRACE("way " + std::to_string(way));
        const MarkedGraph g("a--b b->c b->c c->b a--a:1 d a->b b--c e->e b->f f->d", way);
        const int flag = static_cast<int>(way % 2);
        this->template endAtEveryLook<TypeParam>(g, flag, static_cast<int>(way / 2));
        this->template endAtEveryLook<OnHooks<TypeParam>>(g, flag, static_cast<int>(way / 2));
    }
}

TYPED_TEST(RunControl, EndsLoopsWithin) {
    const TestGraph g(randomText(7, {.nodes = 60, .edges = 400}));
    this->template endAtEveryLook<TypeParam>(g, 0, 0);
    this->template endAtEveryLook<OnHooks<TypeParam>>(g, 0, 1);
}

TYPED_TEST(RunControl, EndsAtADeadlineAndWhenStopped) {
    const TestGraph g("a->b b->c");
    TypeParam run;
    this->prepare(run, g, 0, 0);
    RVRunControl control;
    run.algorithm.pRunControl(&control);
    control.deadline(Clock::now() - std::chrono::seconds(1));
    EXPECT_EQ(run(), RV_CANCELLED);
    EXPECT_TRUE(control.stopped());
    control.restart();
    EXPECT_EQ(run(), RV_NO_ERROR);
    control.deadline(Clock::now() + std::chrono::hours(1));
    EXPECT_EQ(run(), RV_NO_ERROR);
    control.stop();
    EXPECT_EQ(run(), RV_CANCELLED);
    const decltype(run.algorithm)* algorithm = &run.algorithm;
    if constexpr (std::is_copy_constructible_v<decltype(run.algorithm)>) {
        EXPECT_EQ(decltype(run.algorithm)(*algorithm).pRunControl(), nullptr);
    }
    // What is wrong with the data comes first.
    run.input.pAssociatedGraph(nullptr);
    EXPECT_NE(run(), RV_CANCELLED);
}

// Tells another thread of the run's progress, which then ends it.
class Progress : public RVRunControl {
public:
    void progress(const char* phase, std::int64_t done, std::int64_t) override {
        EXPECT_NE(phase, nullptr);
        EXPECT_GE(done, 0);
        times.push_back(Clock::now());
        if (times.size() == 3) std::thread([this] { stop(); }).join();
    }
    std::vector<Clock::time_point> times;
};

TEST(RunControl, TellsOfProgressTenTimesASecondAtMost) {
    const TestGraph g(randomText(3, {.nodes = 20, .edges = 60}));
    Reachable run(g);
    run.input.pStartNode(g->pFirstNode());
    Progress control;
    run.algorithm.pRunControl(&control);
    const Clock::time_point begin = Clock::now();
    while (run() == RV_NO_ERROR && Clock::now() < begin + std::chrono::seconds(20)) continue;
    ASSERT_EQ(control.times.size(), 3U);
    EXPECT_GE(control.times.back() - begin, std::chrono::milliseconds(200));
}

}  // namespace
