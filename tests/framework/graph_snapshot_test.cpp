#include "rv/framework/graph_snapshot.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <new>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/framework/internal_graph_algorithm.h"
#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using rv::FlatGraph;
using rv::GraphAccess;
using rv::Index;
using List = std::vector<Index>;

Index indexOf(const RVGraphMember* member) { return static_cast<Index>(member->denseIndex()); }

template <class Objects>
List indices(const Objects& objects) {
    List all;
    for (const RVGraphMember* member : objects) all.push_back(indexOf(member));
    return all;
}

List listOf(std::span<const Index> values) { return {values.begin(), values.end()}; }

// The snapshot says what a walk over the objects says.
void check(RVGraph* graph) {
    const std::shared_ptr<const FlatGraph> flat = rv::snapshotOf(graph);
    EXPECT_EQ(rv::snapshotForPart(graph), flat);
    List nodes;
    List edges;
    flat->order().forEachNode([&](Index node) { nodes.push_back(node); });
    flat->order().forEachEdge([&](Index edge) { edges.push_back(edge); });
    EXPECT_EQ(nodes, indices(*graph->pNodeList()));
    EXPECT_EQ(edges, indices(*graph->pEdgeList()));
    EXPECT_EQ(flat->order().nodeCount, nodes.size());
    EXPECT_EQ(flat->order().edgeCount, edges.size());
    ASSERT_EQ(flat->out().nodeLimit(), static_cast<Index>(graph->nodeIndexLimit()));
    std::vector<bool> isThere(flat->out().nodeLimit());
    for (RVNode* node : *graph->pNodeList()) {
        const Index index = indexOf(node);
        isThere[index] = true;
        EXPECT_EQ(GraphAccess::nodes(graph)[index], node);
        EXPECT_EQ(listOf(flat->out().edgesOf(index)), indices(*node->pOutEdgeList()));
        EXPECT_EQ(listOf(flat->in().edgesOf(index)), indices(*node->pInEdgeList()));
    }
    for (Index node = 0; node < isThere.size(); ++node) {
        if (isThere[node]) continue;
        EXPECT_EQ(GraphAccess::nodes(graph)[node], nullptr);
        EXPECT_EQ(flat->out().degree(node) + flat->in().degree(node), 0U);
    }
    for (RVEdge* edge : *graph->pEdgeList()) {
        const rv::Ends ends = flat->order().ends[indexOf(edge)];
        EXPECT_EQ(ends.source, indexOf(edge->pSourceNode()));
        EXPECT_EQ(ends.target, indexOf(edge->pTargetNode()));
        EXPECT_EQ(GraphAccess::edges(graph)[indexOf(edge)], edge);
    }
}

// Detaches what is not normal, attaches it again and has the orders restored.
class Normalising : public RVInternalGraphAlgorithm {
    RVServiceErrorCodeEnum algorithmBody() override { return RV_NO_ERROR; }
};

// Two graphs that change and exchange objects.
class Changes {
public:
    explicit Changes(unsigned seed) : m_random(seed), m_watches{{*this, 0}, {*this, 1}} {}

    void step() {
        RVGraph& graph = *m_graphs[m_random() % 2].get();
        RVNode* const node = pick(m_nodes);
        RVNode* const other = pick(m_nodes);
        RVEdge* const edge = pick(m_edges);
        const auto action = m_random() % 20;
        log << action << " ";
        if (action < 2 || node == nullptr) {
            if (m_nodes.size() < 9) m_nodes.push_back(graph.addNode());
        } else if (action < 6 || edge == nullptr) {
            RVEdge* const made = m_edges.size() < 25 ? graph.addEdge(node, other) : nullptr;
            if (made != nullptr) m_edges.push_back(made);
        } else if (action < 9) {
            if (graph.removeNode(node) == nullptr) graph.insertNode(node);
        } else if (action < 12) {
            if (graph.removeEdge(edge) == nullptr) graph.insertEdge(edge, node, other);
        } else if (action == 12) {
            edge->invertDirection();
        } else if (action == 13) {
            m_random() % 2 == 0 ? edge->changeSourceNode(node) : edge->changeTargetNode(node);
        } else if (action == 14) {
            graph.discardNode(node);
        } else if (action == 15) {
            graph.discardEdge(edge);
        } else if (action == 16) {
            normalise(graph);
        } else if (action == 17) {
            graph.releaseSnapshot();
        } else if (action == 18) {
            while (m_random() % 4 == 0 && graph.numberOfNodes() > 0) graph.discardNode(graph.pFirstNode());
        } else {
            node->pNameString(L"is no change");
            edge->pUserField(this);
        }
    }
    // Not after every step, so that changes pile up.
    void check() {
        RVGraph& graph = *m_graphs[m_random() % 2].get();
        const std::uint64_t count = graph.modificationCount();
        const std::shared_ptr<const FlatGraph> kept = rv::snapshotForPart(&graph);
        const bool isHeld = m_random() % 2 == 0;
        if (isHeld) m_held = kept;
        ::check(&graph);
        const FlatGraph* now = rv::snapshotForPart(&graph).get();
        EXPECT_TRUE(kept == nullptr || now == kept.get());
        EXPECT_EQ(graph.modificationCount(), count) << "asking is no change";
    }

    std::ostringstream log;

private:
    struct Watch final : rv::GraphObserver {
        Watch(Changes& changes, int i) : all(changes), graph(all.m_graphs[i]) {
            GraphAccess::addObserver(graph, this);
        }
        Watch(const Watch&) = delete;
        Watch& operator=(const Watch&) = delete;
        ~Watch() { GraphAccess::removeObserver(graph, this); }
        void graphDies(RVGraph*) override {}
        void memberDies(RVGraphMember* member) override {
            std::erase(all.m_nodes, member);
            std::erase(all.m_edges, member);
        }
        void memberMoved(RVGraphMember*, RVGraph*, int) override {}
        Changes& all;
        RVGraph* graph;
    };

    template <class Member>
    Member* pick(const std::vector<Member*>& members) {
        return members.empty() ? nullptr : members[m_random() % members.size()];
    }
    static void normalise(RVGraph& graph) {
        rvtest::Runner<Normalising, RVAnalysisInputData, rvtest::NoOutput> run;
        run.input.pAssociatedGraph(&graph);
        run.algorithm.useOriginalGraph(1);
        EXPECT_EQ(run(), RV_NO_ERROR);
    }

    std::mt19937 m_random;
    std::vector<RVNode*> m_nodes;
    std::vector<RVEdge*> m_edges;
    rvtest::TestGraph m_graphs[2];
    Watch m_watches[2];
    std::shared_ptr<const FlatGraph> m_held;
};

TEST(GraphSnapshot, AgreesWithTheObjectsAfterAnyChange) {
    for (unsigned seed = 0; seed < 300; ++seed) {
        Changes changes(seed);
        for (int i = 0; i < 100 && !HasFailure(); ++i) {
            changes.step();
            if (i % 3 == 0) changes.check();
        }
        ASSERT_FALSE(HasFailure()) << "seed " << seed << "; " << changes.log.str();
    }
}

TEST(GraphSnapshot, IsKeptUntilTheGraphChanges) {
    rvtest::TestGraph graph("a->b b->c");
    EXPECT_EQ(rv::snapshotForPart(graph), nullptr);
    const FlatGraph* first = rv::snapshotOf(graph).get();
    EXPECT_EQ(rv::snapshotOf(graph).get(), first);
    graph->addNode();
    EXPECT_EQ(rv::snapshotForPart(graph), nullptr);
    std::shared_ptr<const FlatGraph> held = rv::snapshotOf(graph);
    EXPECT_EQ(held.get(), first) << "its memory is used again";
    EXPECT_EQ(held->order().nodeCount, 4U);
    held->out();
    graph->discardNode(graph.node("a"));
    EXPECT_NE(rv::snapshotOf(graph), held) << "somebody reads the old one";
    EXPECT_EQ(held->out().degree(0), 1U);
    graph->releaseSnapshot();
    EXPECT_EQ(rv::snapshotForPart(graph), nullptr);
    check(graph);
}

TEST(GraphSnapshot, PaysOnceWalksHaveTouchedMoreThanTheGraph) {
    rvtest::TestGraph graph("a->b b->c");
    rv::noteWalk(graph, 3);
    rv::noteWalk(graph, 2);
    EXPECT_EQ(rv::snapshotForPart(graph), nullptr);
    rv::noteWalk(graph, 1);
    EXPECT_NE(rv::snapshotForPart(graph), nullptr);
    graph->addNode();
    rv::noteWalk(graph, 3);
    EXPECT_EQ(rv::snapshotForPart(graph), nullptr) << "counted anew after a change";
}

struct Memory {
    std::vector<int> values;
};
struct OtherMemory {};

TEST(GraphSnapshot, LendsEachSearchScratchMemoryOfItsOwn) {
    rvtest::TestGraph graph("a");
    const auto use = [&graph] {
        const rv::ScratchLoan<Memory> one(graph);
        const rv::ScratchLoan<Memory> two(graph);
        const rv::ScratchLoan<OtherMemory> other(graph);
        EXPECT_NE(&*one, &*two);
        one->values.push_back(1);
        return one->values.size() + two->values.size();
    };
    EXPECT_EQ(use(), 1U);
    EXPECT_EQ(use(), 2U);
    EXPECT_EQ(use(), 3U) << "as the searches before have left it";
    const rv::ScratchLoan<Memory> outlivesThePool(graph);
    graph->releaseSnapshot();
    EXPECT_EQ(use(), 1U);
}

// Meant for the thread sanitizer.
TEST(GraphSnapshot, AnswersSeveralThreads) {
    rvtest::TestGraph graph(rvtest::randomText(7, {.nodes = 40, .edges = 200}));
    graph->pFirstEdge()->invertDirection();
    for (int round = 0; round < 20; ++round) {
        graph->insertEdge(graph->removeEdge(graph->pFirstEdge()), graph->pFirstNode(), graph->pLastNode());
        const auto ask = [&graph] {
            std::size_t arcs = 0;
            for (int i = 0; i < 5; ++i) {
                const RVAlgorithmData data(graph.get());
                RVAlgorithmData copy(data);
                EXPECT_EQ(copy.pInputGraph(graph), graph.get());
                const rv::ScratchLoan<Memory> memory(graph);
                const auto flat = rv::snapshotOf(graph);
                memory->values.assign(flat->out().targets.begin(), flat->out().targets.end());
                arcs = memory->values.size() + flat->in().targets.size() +
                       flat->directed().space.arcs.targets.size() +
                       flat->undirected().space.arcs.targets.size();
                rv::noteWalk(graph, arcs);
            }
            return arcs;
        };
        std::size_t one = 0;
        std::thread thread([&] { one = ask(); });
        const std::size_t two = ask();
        thread.join();
        EXPECT_EQ(one, two);
    }
}

}  // namespace
