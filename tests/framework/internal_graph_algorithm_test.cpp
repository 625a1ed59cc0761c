// The working copy: what the body sees, which hooks are called, and that nothing of it is left.

#include "rv/framework/internal_graph_algorithm.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Notes the calls of hooks: +reverse edge, ?edge that is to be represented, edge[its parallels], {graph /
// isolated nodes / loops} in the body, !edge that comes back, {graph} at last.
class Probe : public RVInternalGraphAlgorithm {
public:
    int direction = 1;
    int directed() const override { return direction; }
    bool takesLast = false;  // of a group
    RVGraph* forbidden = nullptr;
    std::string trace;

protected:
    void note(const std::string& step) { trace += " " + step; }
    RVServiceErrorCodeEnum algorithmBody() override {
        EXPECT_NE(pAssociatedGraph(), forbidden);
        const RVAnalysisInternalData* const data = pAnalysisInternalData();
        RVEdgeDList loops;
        for (const RVNodeDList* nodes : {pAssociatedGraph()->pNodeList(), data->pDisconnectedNodeList()}) {
            for (RVNode* node : *nodes) loops.copyAppendList(&data->reflexiveEdges(node));
        }
        note("{" + drawing(pAssociatedGraph()) + " / " + text(*data->pDisconnectedNodeList()) + " / " +
             text(loops) + "}");
        return RV_NO_ERROR;
    }
    void postprocessGraph() override {
        RVInternalGraphAlgorithm::postprocessGraph();
        note("{" + drawing(pAssociatedGraph()) + "}");
    }

    void parseInputData() override {
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
            EXPECT_EQ(text(pInternalData()->pOriginalEdge(edge)), text(edge));
            pAnalysisInternalData()->directed(edge, rvtest::undirected(edge) ? 0 : 1);
        }
    }
    void actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) override {
        newEdge->pNameString(L":r");
        note("+" + text(newEdge));
        RVInternalGraphAlgorithm::actOnAddReverseEdge(newEdge, edge);
        RVAnalysisInternalData* const data = pAnalysisInternalData();
        EXPECT_EQ(data->dummyEdge(newEdge), 1);
        EXPECT_EQ(data->directed(newEdge), 0);
        EXPECT_EQ(data->pOriginalEdge(newEdge), data->pOriginalEdge(edge));
    }
    void preprocessMultiEdges() override {
        const std::size_t from = trace.size();
        const std::string expected = multiEdgesByRule();
        RVInternalGraphAlgorithm::preprocessMultiEdges();
        EXPECT_EQ(trace.substr(from), expected);
    }
    RVEdge* selectRepresentativeEdge(RVEdge* edge) override {
        note("?" + text(edge));
        return takesLast ? parallelsByRule(edge).back()
                         : RVInternalGraphAlgorithm::selectRepresentativeEdge(edge);
    }
    void actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list) override {
        note(text(edge) + "[" + text(*list) + "]");
        for (RVEdge* parallel : *list) {
            EXPECT_EQ(parallel->pOwnerGraph(), pAssociatedGraph());
            EXPECT_EQ(pAnalysisInternalData()->removedAsMultiEdge(parallel), 1);
        }
    }
    void actOnInsertMultiEdge(RVEdge* edge) override {
        EXPECT_EQ(edge->pOwnerGraph(), nullptr);
        note("!" + text(edge));
    }

private:
    // Edge by edge and list by list.
    std::vector<RVEdge*> parallelsByRule(const RVEdge* edge) const {
        std::vector<RVEdge*> all;
        for (RVEdge* other : *edge->pSourceNode()->pOutEdgeList()) {
            if (other->pTargetNode() == edge->pTargetNode()) all.push_back(other);
        }
        for (RVEdge* other : *edge->pSourceNode()->pInEdgeList()) {
            if (direction == 0 && other->pSourceNode() == edge->pTargetNode()) all.push_back(other);
        }
        return all;
    }
    std::string multiEdgesByRule() const {
        std::set<RVEdge*> grouped;
        std::string asked;
        std::string removed;
        for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
            if (grouped.count(edge) != 0) continue;
            asked += " ?" + text(edge);
            std::vector<RVEdge*> parallels = parallelsByRule(edge);
            grouped.insert(parallels.begin(), parallels.end());
            RVEdge* const representative = takesLast ? parallels.back() : edge;
            std::erase(parallels, representative);
            removed += " " + text(representative) + "[" + listText(parallels) + "]";
        }
        return asked + removed;
    }
};

using ProbeRun = Runner<Probe, RVAnalysisInputData, NoOutput>;

TEST(InternalGraphAlgorithm, NormalisesAndRestoresStepByStep) {
    const struct {
        const char* what;
        int directed;
        bool takesLast;
        const char* graph;
        const char* trace;
    } cases[] = {
        {"nothing", 1, false, "", " { /  / } {}"},
        {"reverse of an undirected edge", 1, false, "a--b",
         " +b->a:r ?a--b ?b->a:r a--b[] b->a:r[] {a b a--b b->a:r /  / } {a b a--b}"},
        {"none in an undirected run", 0, false, "a--b", " ?a--b a--b[] {a b a--b /  / } {a b a--b}"},
        {"none of a loop", 1, false, "a--a a->b", " ?a->b a->b[] {a b a->b /  / a--a} {a b a->b a--a}"},
        {"reverse edges behind all others", 1, false, "a--b b->a b--c",
         " +b->a:r +c->b:r ?a--b ?b->a ?b--c ?c->b:r a--b[] b->a[b->a:r] b--c[] c->b:r[]"
         " {a b c a--b b->a b--c c->b:r /  / } !b->a:r {a b c a--b b->a b--c}"},
        {"parallels in a directed run", 1, false, "a->b:1 a->b:2 b->a a->b:3",
         " ?a->b:1 ?b->a a->b:1[a->b:2 a->b:3] b->a[] {a b a->b:1 b->a /  / }"
         " !a->b:2 !a->b:3 {a b a->b:1 b->a a->b:2 a->b:3}"},
        {"and in an undirected one: out-edges before in-edges", 0, false, "b->a:1 a->b:2 b--a:3 a->b:4",
         " ?b->a:1 b->a:1[b--a:3 a->b:2 a->b:4] {b a b->a:1 /  / }"
         " !b--a:3 !a->b:2 !a->b:4 {b a b->a:1 b--a:3 a->b:2 a->b:4}"},
        {"groups in the order of their first edges", 1, true, "a->b:1 c->d a->b:2 c->d:5",
         " ?a->b:1 ?c->d a->b:2[a->b:1] c->d:5[c->d] {a b c d a->b:2 c->d:5 /  / }"
         " !a->b:1 !c->d {a b c d a->b:2 c->d:5 a->b:1 c->d}"},
        {"the last of an undirected group is an in-edge", 0, true, "b->a:1 a->b:2 b->a:3",
         " ?b->a:1 a->b:2[b->a:1 b->a:3] {b a a->b:2 /  / } !b->a:1 !b->a:3 {b a a->b:2 b->a:1 b->a:3}"},
        {"loops leave nodes isolated, which come back before them", 1, false, "c a->a:1 b->d a->a:2 e b->b",
         " ?b->d b->d[] {b d b->d / c a e / b->b a->a:1 a->a:2}"
         " {b d c a e b->d b->b a->a:1 a->a:2}"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        ProbeRun run(g);
        run.algorithm.direction = c.directed;
        run.algorithm.takesLast = c.takesLast;
        run.algorithm.forbidden = g;
        EXPECT_EQ(run(), RV_NO_ERROR);
        EXPECT_EQ(run.algorithm.trace, c.trace);
    }
}

// Many runs of one object in all four ways, on graphs whose lists stand in all orders.
TEST(InternalGraphAlgorithm, LeavesTheCallersGraphAsItWas) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        const std::string tokens = randomText(seed, {.edges = 14, .least = 0, .most = 9, .undirected = 30});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const MarkedGraph g(tokens, seed);
        const std::string before = snapshot(g);
        ProbeRun run(g);
        std::string traces[2][2];
        for (const int way : {0, 1, 2, 3, 2, 1}) {
            run.algorithm.direction = way % 2;
            run.algorithm.useOriginalGraph(way / 2);
            run.algorithm.takesLast = seed % 2 != 0;
            run.algorithm.trace.clear();
            const std::uint64_t changes = g->modificationCount();
            ASSERT_EQ(run(), RV_NO_ERROR);
            ASSERT_EQ(snapshot(g), before);
            EXPECT_EQ(way < 2 ? g->modificationCount() : changes, changes);
            std::string& trace = traces[way % 2][way / 2];
            if (trace.empty()) trace = run.algorithm.trace;
            EXPECT_EQ(run.algorithm.trace, trace);
        }
        for (const auto& sameDirection : traces) EXPECT_EQ(sameDirection[0], sameDirection[1]);
    }
}

// A subclass that hides edges which are no parallels, and one that must have a copy.
TEST(InternalGraphAlgorithm, LetsSubclassesDecide) {
    class Hider : public Probe {
    public:
        bool usesOwnList = false;
        int canUseOriginalGraph() const override { return 0; }

    protected:
        void actOnRemoveMultiEdges(RVEdge* edge, RVEdgeDList* list) override {
            Probe::actOnRemoveMultiEdges(edge, list);
            if (usesOwnList) list = pAnalysisInternalData()->pMultiEdgeList(edge);
            if (text(edge) == "a->b")
                list->appendEdge(findEdgeBetween(edge->pTargetNode(), edge->pSourceNode()));
        }
    };
    const TestGraph g("a->b c->b b->a a->c");
    Runner<Hider, RVAnalysisInputData, NoOutput> run(g);
    run.algorithm.useOriginalGraph(1);
    run.algorithm.forbidden = g;
    for (const bool usesOwnList : {false, true}) {
        run.algorithm.usesOwnList = usesOwnList;
        run.algorithm.trace.clear();
        EXPECT_EQ(run(), RV_NO_ERROR);
        EXPECT_NE(run.algorithm.trace.find("{a b c a->b c->b a->c /  / } !b->a {a b c a->b c->b a->c b->a}"),
                  std::string::npos)
            << run.algorithm.trace;
    }
}

// A hook that directs one edge and discards another, in whose place the next reverse edge comes to stand.
TEST(InternalGraphAlgorithm, AsksForDirectionsAsItReachesTheEdges) {
    class Director : public Probe {
        void actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) override {
            Probe::actOnAddReverseEdge(newEdge, edge);
            if (text(edge) != "a--b") return;
            const RVEdgeDList& edges = *pAssociatedGraph()->pEdgeList();
            pAnalysisInternalData()->directed(edges.pEdgeInPosition(3), 1);
            pAssociatedGraph()->discardEdge(edges.pEdgeInPosition(4));
        }
    };
    const TestGraph g("a--b b--c c--d d--e");
    Runner<Director, RVAnalysisInputData, NoOutput> run(g);
    EXPECT_EQ(run(), RV_NO_ERROR);
    EXPECT_EQ(run.algorithm.trace.substr(0, 18), " +b->a:r +c->b:r ?");
}

TEST(InternalGraphAlgorithm, FindsTheFirstEdgeBetween) {
    const TestGraph g("c->a a->b:1 a->b:2");
    const auto between = [&](const char* a, const char* b) {
        return text(RVInternalGraphAlgorithm::findEdgeBetween(g.node(a), g.node(b)));
    };
    EXPECT_EQ(between("a", "b"), "a->b:1");
    g.edge("a->b:1")->invertDirection();
    EXPECT_EQ(between("a", "b"), "a->b:2");
    EXPECT_EQ(between("a", "c"), "none");
    EXPECT_EQ(RVInternalGraphAlgorithm::findEdgeBetween(nullptr, g.node("a")), nullptr);
}

}  // namespace
