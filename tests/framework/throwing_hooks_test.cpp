// Exceptions of hooks that subclasses override, at whatever point of a run.

#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

struct Thrown {};
int pointsLeft = -1;  // until one throws; none does below 0
void point() {
    if (pointsLeft >= 0 && pointsLeft-- == 0) throw Thrown();
}

template <class T>
T pointAfter(T result) {
    point();
    return result;
}

// Hooks that pass a point before and after what they override; only before what would be lost behind one.
template <class A>
class PipelineHooks : public A {
public:
    RVServiceErrorCodeEnum checkData() override { return point(), pointAfter(A::checkData()); }

protected:
    void initialize() override { point(), A::initialize(), point(); }
    void parseInputData() override { point(), A::parseInputData(), point(); }
    void preprocess() override { point(), A::preprocess(), point(); }
    RVServiceErrorCodeEnum algorithmBody() override { return point(), pointAfter(A::algorithmBody()); }
    void generateOutputData() override { point(), A::generateOutputData(), point(); }
    void postprocess() override { point(), A::postprocess(), point(); }
    void cleanup() override { point(), A::cleanup(), point(); }
};

template <class A>
class InternalHooks : public PipelineHooks<A> {
public:
    int directed() const override { return point(), pointAfter(A::directed()); }

protected:
    RVAlgorithmData* newInternalData() override { return point(), A::newInternalData(); }
    void createGraphCopy() override { point(), A::createGraphCopy(), point(); }
};

template <class A>
class GraphHooks : public InternalHooks<A> {
public:
    int canUseOriginalGraph() const override { return point(), pointAfter(A::canUseOriginalGraph()); }

protected:
    void preprocessGraph() override { point(), A::preprocessGraph(), point(); }
    void postprocessGraph() override { point(), A::postprocessGraph(), point(); }
    void privatePreprocessGraph() override { point(), A::privatePreprocessGraph(), point(); }
    void privatePostprocessGraph() override { point(), A::privatePostprocessGraph(), point(); }
    void preprocessUndirectedEdges() override { point(), A::preprocessUndirectedEdges(), point(); }
    void preprocessReflexiveEdges() override { point(), A::preprocessReflexiveEdges(), point(); }
    void preprocessMultiEdges() override { point(), A::preprocessMultiEdges(), point(); }
    void preprocessDisconnectedNodes() override { point(), A::preprocessDisconnectedNodes(), point(); }
    void actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) override {
        point(), A::actOnAddReverseEdge(newEdge, edge), point();
    }
    void actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list) override {
        point(), A::actOnRemoveMultiEdges(edge, list), point();
    }
    void actOnInsertMultiEdge(RVEdge* edge) override { point(), A::actOnInsertMultiEdge(edge), point(); }
    RVEdge* pRepresentativeEdge(RVEdge* edge, int direction) override {
        return point(), pointAfter(A::pRepresentativeEdge(edge, direction));
    }
    RVEdge* selectRepresentativeEdge(RVEdge* edge) override {
        return point(), pointAfter(A::selectRepresentativeEdge(edge));
    }
};

template <class A>
class TraversalHooks : public GraphHooks<A> {
protected:
    RVEdge* pNextEdge() override { return point(), pointAfter(A::pNextEdge()); }
    RVNode* findStartNode() override { return point(), pointAfter(A::findStartNode()); }
    RVEdge* findStartEdge() override { return point(), pointAfter(A::findStartEdge()); }
    void privateTraverseEdge(RVEdge* edge) override { point(), A::privateTraverseEdge(edge), point(); }
    void visitNodeBeforeTraverse(RVNode* node, RVEdge* edge) override {
        point(), A::visitNodeBeforeTraverse(node, edge), point();
    }
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override {
        point(), A::visitNodeAfterTraverse(node, edge), point();
    }
    void copyEdgeProperties(RVEdge* newEdge, RVEdge* edge) override {
        point(), A::copyEdgeProperties(newEdge, edge), point();
    }
};

template <class A>
class DepthFirstHooks : public TraversalHooks<A> {
protected:
    void completeNodeVisit(RVNode* node, RVNode* parent) override {
        point(), A::completeNodeVisit(node, parent), point();
    }
};

template <class A>
class FlowHooks : public GraphHooks<A> {
protected:
    void buildEdgeList(RVAnalysisOutputData* output, RVEdgeDList& list) const override {
        point(), A::buildEdgeList(output, list), point();
    }
    void pStartNode(RVAnalysisInputData* input, RVNode* node) const override {
        point(), A::pStartNode(input, node), point();
    }
    int hasToBeSplit(RVNode* node) override { return point(), pointAfter(A::hasToBeSplit(node)); }
    RVAlgorithm* newPathExistsTestAlgorithm() const override {
        return point(), A::newPathExistsTestAlgorithm();
    }
    RVAlgorithmInputData* newPathExistsTestInputData() const override {
        return point(), A::newPathExistsTestInputData();
    }
    RVAlgorithmOutputData* newPathExistsTestOutputData() const override {
        return point(), A::newPathExistsTestOutputData();
    }
    int finished() const override { return point(), pointAfter(A::finished()); }
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override {
        point(), A::updateGraphData(input, output, amount), point();
    }
    void copyEdgeProperties(RVAnalysisInputData* input) override {
        point(), A::copyEdgeProperties(input), point();
    }
    int flowValue(RVAnalysisOutputData* output) const override {
        return point(), pointAfter(A::flowValue(output));
    }
    void copyEdgeData(RVEdge* from, RVEdge* to, int first) override {
        point(), A::copyEdgeData(from, to, first), point();
    }
};

// Without standard records, each is asked for.
template <class A>
class Records : public A {
public:
    using A::A;

protected:
    RVNodeAlgorithmExtension* newNodeAlgorithmExtension(RVNode* node) override {
        return point(), A::newNodeAlgorithmExtension(node);
    }
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge* edge) override {
        return point(), A::newEdgeAlgorithmExtension(edge);
    }
};

template <class A>
auto hooked() {
    if constexpr (std::is_base_of_v<RVFlowAlgorithm, A>)
        return std::type_identity<FlowHooks<A>>();
    else if constexpr (std::is_base_of_v<RVDepthFirstSearchAlgorithm, A>)
        return std::type_identity<DepthFirstHooks<A>>();
    else if constexpr (std::is_base_of_v<RVTraversalAlgorithm, A>)
        return std::type_identity<TraversalHooks<A>>();
    else if constexpr (std::is_base_of_v<RVInternalGraphAlgorithm, A>)
        return std::type_identity<GraphHooks<A>>();
    else if constexpr (std::is_base_of_v<RVInternalAlgorithm, A>)
        return std::type_identity<InternalHooks<A>>();
    else
        return std::type_identity<PipelineHooks<A>>();
}

template <class R>
using Hooked = Runner<typename decltype(hooked<decltype(R::algorithm)>())::type, Records<decltype(R::input)>,
                      Records<decltype(R::output)>>;

template <class R>
class ThrowingHooks : public testing::Test {
protected:
    template <class Run>
    static std::string answer(Run& run, const MarkedGraph& g, int flag, int original) {
        ask(run, g, Question(g, flag));
        useOriginalGraph(run, original);
        EXPECT_EQ(run(), RV_NO_ERROR);
        return describe(run.output, g);
    }
};
TYPED_TEST_SUITE(ThrowingHooks, Algorithms, AlgorithmNames);

TYPED_TEST(ThrowingHooks, LeaveTheCallersGraphAndTheAlgorithmAsTheyWere) {
    const char* const graphs[] = {"a--b b->c b->c c->b a--a:1 d a->b b--c e->e b->f f->d",
                                  "a->b b->c c->a c->b a->c d->c b->b"};
    for (unsigned way = 0; way < 8; ++way) {
        const MarkedGraph g(graphs[way / 4], way);
        const int flag = static_cast<int>(way % 2);
        const int original = static_cast<int>(way / 2 % 2);
        const std::string before = snapshot(g);
        std::string expected;
        {
            TypeParam plain;
            expected = this->answer(plain, g, flag, original);
            Hooked<TypeParam> hooked;
            EXPECT_EQ(this->answer(hooked, g, flag, original), expected);
        }
        const int edges = g->edgeIndexLimit();  // with those that a run on the graph itself adds for its time
        bool isDone = false;
        for (int points = 0; !isDone; ++points) {
            SCOPED_TRACE("way " + std::to_string(way) + ", point " + std::to_string(points));
            {
                Hooked<TypeParam> run;
                ask(run, g, Question(g, flag));
                useOriginalGraph(run, original);
                const std::string ordersBefore = orders(g);
                pointsLeft = points;
                try {
                    EXPECT_EQ(run(), RV_NO_ERROR);
                    isDone = pointsLeft >= 0;
                    EXPECT_TRUE(isDone) << "the exception went astray";
                } catch (const Thrown&) {
                }
                pointsLeft = -1;
                if constexpr (std::is_base_of_v<RVInternalGraphAlgorithm, decltype(run.algorithm)>) {
                    ASSERT_EQ(run.algorithm.pInternalData(), nullptr);
                }
                ASSERT_EQ(orders(g), ordersBefore);
                ASSERT_EQ(g->edgeIndexLimit(), edges);
                ASSERT_EQ(this->answer(run, g, flag, original), expected);
            }
            ASSERT_EQ(snapshot(g), before);
        }
    }
}

}  // namespace
