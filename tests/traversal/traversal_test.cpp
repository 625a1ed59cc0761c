// The engine of the searches, through subclasses as a caller writes them.

#include "rv/traversal/traversal.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <stdexcept>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// Best-first search: of all candidates the one with the smallest number comes next. Notes its hooks.
class BestFirstSearch : public RVTraversalAlgorithm {
public:
    std::string steps;
    std::string result;
    std::string restored;
    std::function<void(RVTraversalInternalData*)> meddle;

protected:
    void parseInputData() override { parseTraversalInput(*RVTraversalInputData::castDown(pInputData())); }
    RVEdge* pNextEdge() override {
        if (RVTraversalAlgorithm::pNextEdge() == nullptr) {
            steps += " end";
            return nullptr;
        }
        RVEdgeDList* const candidates = pTraversalInternalData()->pCandidateEdgeList();
        RVEdge* best = candidates->pFirstEdge();
        for (RVEdge* edge : *candidates) {
            if (number(edge) < number(best)) best = edge;
        }
        delete candidates->searchAndRemoveObject(best);
        return best;
    }
    RVNode* findStartNode() override {
        RVNode* const node = RVTraversalAlgorithm::findStartNode();
        steps += " node:" + text(node);
        return node;
    }
    RVEdge* findStartEdge() override {
        RVEdge* const edge = RVTraversalAlgorithm::findStartEdge();
        steps += " edge:" + text(edge);
        return edge;
    }
    void visitNodeBeforeTraverse(RVNode* node, RVEdge* edge) override {
        EXPECT_EQ(edge == nullptr ? node : edge->pSourceNode(), node);
        if (edge == nullptr) steps += " isolated";
    }
    void privateTraverseEdge(RVEdge* edge) override {
        EXPECT_EQ(pTraversalInternalData()->traversed(edge), 0);
        RVTraversalAlgorithm::privateTraverseEdge(edge);
        EXPECT_EQ(pTraversalInternalData()->traversed(edge), 1);
        steps += " " + text(edge);
    }
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override {
        EXPECT_EQ(edge == nullptr ? node : edge->pTargetNode(), node);
        RVTraversalInternalData* const data = pTraversalInternalData();
        const bool isNew = data->orderNumber(node) == 0;
        RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
        if (isNew) {
            steps += " (" + text(node) + ")";
            for (RVEdge* next : *node->pOutEdgeList()) data->pCandidateEdgeList()->appendEdge(next);
        }
        if (meddle) meddle(data);
    }
    void generateOutputData() override {
        RVTraversalInternalData* const data = pTraversalInternalData();
        const RVTraversalInternalData early(*data);
        result.clear();
        int last = 0;
        for (RVNode* node : *data->pVisitedNodeList()) {
            EXPECT_EQ(data->orderNumber(node), ++last);
            result += text(node);
            if (data->pParentNode(node) != nullptr) result += "<" + text(data->pParentNode(node));
            result += " ";
        }
        EXPECT_EQ(data->traversalOrderNumber(), last + 1);
        const auto left = [](const RVTraversalInternalData& of) {
            return "| " + text(*of.pUnvisitedNodeList()) + " | " + text(*of.pUntraversedEdgeList());
        };
        result += left(*data);
        for (const RVTraversalInternalData& copy : {early, *data}) EXPECT_EQ(left(copy), left(*data));
    }
    void postprocess() override {
        RVTraversalAlgorithm::postprocess();
        restored = drawing(pAssociatedGraph());
        EXPECT_EQ(pTraversalInternalData()->wasMadeDirected(), 0);
    }

private:
    // A reverse edge has the number of its edge.
    int number(RVEdge* edge) const { return rvtest::number(pInternalData()->pOriginalEdge(edge)); }
};

using BestFirst = Runner<BestFirstSearch, RVTraversalInputData, NoOutput>;

TEST(TraversalEngine, DrivesACallersSearch) {
    const struct {
        const char* what;
        const char* graph;
        const char* start;
        int undirected;
        const char* result;  // visited nodes with their parents | unvisited nodes | untraversed edges
        const char* steps;
    } cases[] = {
        {"the best edge, not the first one", "a->b:5 a->c:1 c->d:2 c->b:3", "a", 0, "a c<a d<c b<c |  | ",
         " node:a (a) a->c:1 (c) c->d:2 (d) c->b:3 (b) a->b:5 node:none edge:none end"},
        {"what cannot be reached stays", "e a->b c->a:3 d->c:4", "a", 0, "a b<a | c d | c->a:3 d->c:4",
         " node:a (a) a->b (b) node:none edge:none end"},
        {"sources first, isolated nodes last", "e a->b:2 b->a:2 c->a:9 f", "", 0, "c a<c b<a e f |  | ",
         " node:c (c) c->a:9 (a) a->b:2 (b) b->a:2 node:none edge:none end isolated (e) isolated (f)"},
        {"a leaf first", "a->b:3 a->c:2 c->b:4 d->c", "", 1, "d c<d a<c b<a |  | ",
         " node:d (d) d->c (c) c->d c->a (a) a->c:2 a->b:3 (b) b->a c->b:4 b->c node:none edge:none end"},
        {"both ways over an undirected edge", "a--b:1 c->b:2 b->b b->a:3", "b", 0, "b a<b | c | c->b:2",
         " node:b (b) b->a:3 (a) a--b:1 node:none edge:none end"},
    };
    for (const auto& c : cases) {
        const TestGraph g(c.graph);
        const std::string before = snapshot(g);
        for (const int original : {0, 1, 1, 0}) {
            SCOPED_TRACE(c.what + std::string(original != 0 ? " without a copy" : ""));
            BestFirst search(g);
            search.algorithm.useOriginalGraph(original);
            search.input.undirected(c.undirected);
            takeDrawnDirections(search.input, g);
            if (*c.start != '\0') search.input.pStartNode(g.node(c.start));
            EXPECT_EQ(search(), RV_NO_ERROR);
            EXPECT_EQ(search.algorithm.result, c.result);
            EXPECT_EQ(search.algorithm.steps, c.steps);
            // Without the reverse edges; in a copy, what was detached stands behind.
            const std::string& left = search.algorithm.restored;
            const std::string all = drawing(g);
            EXPECT_TRUE(std::is_permutation(left.begin(), left.end(), all.begin(), all.end())) << left;
            EXPECT_TRUE(original == 0 || left == all) << left;
        }
        EXPECT_EQ(snapshot(g), before) << c.what;
    }
}

// Walks only some edges, so that it has to start often, and compares each start with the rule.
class OftenStarting : public RVTraversalAlgorithm {
public:
    std::mt19937 random;
    bool readsList = false;
    bool changesGraph = false;
    bool changesList = false;
    int starts = 0;

protected:
    void parseInputData() override { parseTraversalInput(*RVTraversalInputData::castDown(pInputData())); }
    RVEdge* pNextEdge() override {
        RVEdge* const edge = RVTraversalAlgorithm::pNextEdge();
        RVEdgeDList* const candidates = pTraversalInternalData()->pCandidateEdgeList();
        candidates->discardCell(candidates->pFirstCell());
        return edge;
    }
    RVNode* findStartNode() override {
        RVTraversalInternalData* const data = pTraversalInternalData();
        RVNode* expected = nullptr;
        int smallest = 2147483647;
        RVNodeDList unvisited;
        if (changesList) changeList(*data->pUnvisitedNodeList());
        if (readsList) unvisited = *data->pUnvisitedNodeList();
        for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
            if (!readsList && data->orderNumber(node) == 0) unvisited.appendNode(node);
        }
        for (RVNode* node : unvisited) {
            if (node->inDegree() >= smallest) continue;
            expected = node;
            smallest = node->inDegree();
            if (smallest == 0 || (smallest == 1 && data->wasMadeDirected() == 1)) break;
        }
        RVNode* const node = RVTraversalAlgorithm::findStartNode();
        EXPECT_EQ(node, expected) << text(node) << ", expected " << text(expected);
        starts += node != nullptr ? 1 : 0;
        return node;
    }
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override {
        RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
        if (node->pOutEdge() == nullptr) return;
        RVEdge* const next = node->pOutEdgeList()->pEdgeInPosition(1 + below(node->outDegree()));
        if (below(2) == 0 || pTraversalInternalData()->traversed(next) != 0) return;
        pTraversalInternalData()->pCandidateEdgeList()->appendEdge(next);
        if (changesGraph && below(2) == 0) pAssociatedGraph()->removeEdge(node->pOutEdgeList()->pLastEdge());
    }

private:
    // Leaves a node out, comes back with it, or turns the list round.
    void changeList(RVNodeDList& list) {
        if (below(3) == 0) list.reverse();
        if (list.length() > 1 && below(2) == 0) {
            if (m_leftOut != nullptr) list.appendNode(m_leftOut);
            m_leftOut = list.pFirstNode();
            list.discardCell(list.pFirstCell());
        }
    }
    RVNode* m_leftOut = nullptr;

    int below(int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); }
};

TEST(TraversalEngine, StartsByTheRule) {
    int starts = 0;
    for (unsigned seed = 0; seed < 600; ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 12, .edges = 25, .undirected = 20});
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + tokens);
        const TestGraph g(tokens);
        Runner<OftenStarting, RVTraversalInputData, NoOutput> search(g);
        search.algorithm.random.seed(seed);
        search.algorithm.readsList = seed % 2 != 0;
        search.algorithm.changesGraph = seed % 3 == 0;
        search.algorithm.changesList = seed % 4 == 1;
        search.input.undirected(seed % 5 < 2 ? 1 : 0);
        EXPECT_EQ(search(), RV_NO_ERROR);
        starts += search.algorithm.starts;
    }
    EXPECT_GT(starts, 900);
}

// Throws in every call of some hooks once.
TEST(TraversalEngine, RestoresTheGraphWhereAHookNeverLetsItself) {
    struct Stubborn : BestFirstSearch {
        bool isStubborn = true;
        void privatePostprocessGraph() override {
            if (isStubborn) throw std::runtime_error("in place of restoring");
            BestFirstSearch::privatePostprocessGraph();
        }
    };
    const TestGraph g("a->b b->a c->b:2 c->b:3 b->b d");
    const std::string before = snapshot(g);
    Runner<Stubborn, RVTraversalInputData, NoOutput> search(g);
    search.input.undirected(1);
    search.algorithm.useOriginalGraph(1);
    EXPECT_THROW(search(), std::runtime_error);
    EXPECT_EQ(snapshot(g), before);
    search.algorithm.isStubborn = false;
    EXPECT_EQ(search(), RV_NO_ERROR);
    EXPECT_EQ(g->edgeIndexLimit(), 7);
}

// Lists that somebody else changes may change the search, but it ends and leaves the graph as it was.
TEST(TraversalEngine, BearsHooksThatChangeItsLists) {
    using Data = RVTraversalInternalData;
    const std::function<void(Data*)> meddlers[] = {
        [](Data* data) { data->pUnvisitedNodeList()->reverse(); },
        [](Data* data) { data->pUntraversedEdgeList()->reverse(); },
        [](Data* data) { data->pUnvisitedNodeList()->discardCell(data->pUnvisitedNodeList()->pLastCell()); },
        [](Data* data) {
            data->pUntraversedEdgeList()->discardCell(data->pUntraversedEdgeList()->pFirstCell());
        },
        [](Data* data) { data->pUnvisitedNodeList()->deleteAllCells(); },
        [](Data* data) { data->pUntraversedEdgeList()->deleteAllCells(); },
        [](Data* data) { data->pUnvisitedNodeList()->appendNode(data->pVisitedNodeList()->pLastNode()); },
        [](Data* data) {
            RVNodeDList* const list = data->pUnvisitedNodeList();
            if (list->length() != 0) list->appendObject(list->pFirstObject());
            list->discardCell(list->pFirstCell());
        },
        [](Data* data) {
            RVEdgeDList again = *data->pUntraversedEdgeList();
            *data->pUntraversedEdgeList() = again;
        },
        [](Data* data) { data->pCandidateEdgeList()->reverse(); },
        [](Data* data) { data->pCandidateEdgeList()->deleteAllCells(); },
    };
    for (unsigned seed = 0; seed < 60; ++seed) {
        const MarkedGraph g(randomText(seed, {.nodes = 9, .edges = 16}), seed);
        const std::string before = snapshot(g);
        for (const auto& meddler : meddlers) {
            BestFirst search(g);
            search.algorithm.meddle = meddler;
            search.algorithm.useOriginalGraph(static_cast<int>(seed % 2));
            search.input.undirected(static_cast<int>(seed / 2 % 2));
            EXPECT_EQ(search(), RV_NO_ERROR);
            EXPECT_EQ(snapshot(g), before) << "seed " << seed << ", meddler " << &meddler - meddlers;
        }
    }
}

}  // namespace
