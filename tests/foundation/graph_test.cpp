#include "rv/foundation/graph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <random>
#include <set>
#include <sstream>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/framework/analysis_data.h"
#include "tests/small_stack.h"
#include "tests/test_graph.h"

namespace {

using Ids = std::vector<int>;
constexpr int kNone = -1;

// Every member has its number in its user field.
int idOf(const RVGraphObject* member) {
    return member->pUserField() == nullptr ? kNone : *static_cast<const int*>(member->pUserField());
}

template <class List>
Ids ids(const List& list) {
    Ids result;
    for (const auto* member : list) result.push_back(idOf(member));
    return result;
}

// Counts the edges that it knows, since an edge that is gone takes its record along.
class EdgeCounter : public RVAlgorithmData {
public:
    long edges() const { return m_token.use_count() - 1; }

private:
    struct Record : RVEdgeAlgorithmExtension {
        explicit Record(std::shared_ptr<int> t) : token(std::move(t)) {}
        std::shared_ptr<int> token;
    };
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge*) override { return new Record(m_token); }
    std::shared_ptr<int> m_token = std::make_shared<int>();
};

// Three graphs beside a model of what they should be after surgery of all kinds. An edge is attached; or it
// waits, and stands in the lists of exactly one detached end, its host; or it was removed by itself.
class Surgery {
public:
    explicit Surgery(unsigned seed)
        : m_random(seed + 1), m_graphs(1 + seed % 3), m_mostNodes(3 + seed % 8), m_mostEdges(3 + seed % 20) {
        for (std::size_t g = 0; g < m_graphs; ++g) m_real[g].emplace();
    }

    void step() {
        static const std::string actions[] = {
            "addNode",    "addNode",    "addEdge",    "addEdge",      "addEdge",      "removeNode",
            "removeNode", "insertNode", "insertNode", "insertNode",   "removeEdge",   "insertEdge",
            "insertEdge", "discard",    "invert",     "changeSource", "changeTarget", "newGraph"};
        const std::string& action = actions[m_random() % std::size(actions)];
        const std::size_t g = m_random() % m_graphs;
        RVGraph& graph = *m_real[g];
        const int n = pick(m_nodes);
        const int n2 = pick(m_nodes);
        const int e = pick(m_edges);
        RVNode* const node = n == kNone ? nullptr : m_nodes[n].real;
        RVNode* const node2 = n2 == kNone ? nullptr : m_nodes[n2].real;
        RVEdge* const edge = e == kNone ? nullptr : m_edges[e].real;
        const bool nodeIsHere = n != kNone && m_nodes[n].home == g;
        const bool bothAreHere = nodeIsHere && n2 != kNone && m_nodes[n2].home == g;
        const bool edgeIsHere = e != kNone && m_edges[e].home == g;
        log << action << " in " << g << " nodes " << n << " " << n2 << " edge " << e << "; ";
        if (action == "addNode" && m_nodes.size() < m_mostNodes) {
            addNode(g);
        } else if (action == "addEdge" && m_edges.size() < m_mostEdges) {
            RVEdge* const made = graph.addEdge(node, node2, 0);
            ASSERT_EQ(made != nullptr, bothAreHere);
            if (made != nullptr) addEdge(made, g, n, n2);
        } else if (action == "removeNode") {
            const bool expected = nodeIsHere && m_nodes[n].in;
            EXPECT_EQ(graph.removeNode(node), expected ? node : nullptr);
            if (expected) removeNode(n);
        } else if (action == "insertNode") {
            const bool expected = n != kNone && !m_nodes[n].in;
            EXPECT_EQ(graph.insertNode(node), expected ? node : nullptr);
            if (expected) insertNode(g, n);
        } else if (action == "removeEdge") {
            const bool expected = edgeIsHere && m_edges[e].state != Removed;
            EXPECT_EQ(graph.removeEdge(edge), expected ? edge : nullptr);
            if (!expected) return;
            leave(e);
            m_edges[e].state = Removed;
        } else if (action == "insertEdge") {
            const bool expected = bothAreHere && e != kNone && (edgeIsHere || m_edges[e].state != Attached);
            EXPECT_EQ(graph.insertEdge(edge, node, node2), expected ? edge : nullptr);
            if (!expected) return;
            leave(e);
            m_edges[e] = {edge, g, n, n2, Waiting};
            enter(e);
        } else if (action == "newGraph" && m_random() % 3 == 0) {
            destroyGraph(g);
            m_real[g].emplace();  // where the old one was
        } else if (action == "discard") {
            m_random() % 2 == 0 ? discard(graph, node, &RVGraph::discardNode)
                                : discard(graph, edge, &RVGraph::discardEdge);
        } else if (edge != nullptr && (action == "changeSource" || action == "changeTarget")) {
            const bool source = action == "changeSource";
            source ? edge->changeSourceNode(node) : edge->changeTargetNode(node);
            if (n != kNone && m_nodes[n].home == m_edges[e].home) changeEnd(e, n, source);
        } else if (edge != nullptr && action == "invert") {
            edge->invertDirection();
            Edge& model = m_edges[e];
            const Ids before = m_orders[model.home].edges;
            leave(e);
            std::swap(model.source, model.target);
            enter(e);
            m_orders[model.home].edges = before;
        }
    }

    void check() {
        m_indices.clear();
        for (std::size_t g = 0; g < m_graphs; ++g) {
            if (!m_real[g]) continue;
            const RVGraph& graph = *m_real[g];
            EXPECT_EQ(ids(*graph.pNodeList()), m_orders[g].nodes);
            EXPECT_EQ(ids(*graph.pEdgeList()), m_orders[g].edges);
            EXPECT_EQ(graph.numberOfEdges(), static_cast<int>(m_orders[g].edges.size()));
            if (m_random() % 4 == 0) checkArrays(*m_real[g]);
        }
        for (const auto& [id, node] : m_nodes) {
            SCOPED_TRACE(testing::Message() << "node " << id);
            EXPECT_EQ(ids(*node.real->pOutEdgeList()), node.out);
            EXPECT_EQ(ids(*node.real->pInEdgeList()), node.into);
            EXPECT_EQ(node.real->degree(), static_cast<int>(node.out.size() + node.into.size()));
            checkMember(*node.real, id, node.home, node.in);
        }
        EXPECT_EQ(m_counter.edges(), static_cast<long>(m_edges.size()));
        for (const auto& [id, edge] : m_edges) {
            SCOPED_TRACE(testing::Message() << "edge " << id);
            EXPECT_EQ(edge.real->pSourceNode(), edge.source == kNone ? nullptr : m_nodes[edge.source].real);
            EXPECT_EQ(edge.real->pTargetNode(), edge.target == kNone ? nullptr : m_nodes[edge.target].real);
            checkMember(*edge.real, id, edge.home, edge.state == Attached);
            EXPECT_EQ(m_data.directed(edge.real), id) << "the record stays with the edge";
        }
    }

    // Destroys the graphs one after the other.
    void finish() {
        for (std::size_t g = m_graphs; g-- > 0; check()) destroyGraph(g);
    }

    std::ostringstream log;

private:
    enum State { Attached, Waiting, Removed };
    struct Node {
        RVNode* real;
        std::size_t home;
        bool in;
        Ids out, into;
    };
    struct Edge {
        RVEdge* real;
        std::size_t home;
        int source, target;
        State state;
    };
    struct Orders {
        Ids nodes, edges;
    };

    template <class Map>
    int pick(const Map& map) {
        const std::size_t i = m_random() % (map.size() + 1);
        return i == map.size() ? kNone : std::next(map.begin(), static_cast<std::ptrdiff_t>(i))->first;
    }

    // The arrays say what the objects say.
    static void checkArrays(RVGraph& graph) {
        using rv::GraphAccess;
        GraphAccess::coverIndices(&graph);
        const auto limit = [](int value) { return static_cast<std::size_t>(value); };
        std::vector<RVNode*> nodes(limit(graph.nodeIndexLimit()));
        Ids nodeIndices;
        for (RVNode* node : *graph.pNodeList()) {
            nodes[rv::placeOf(node)] = node;
            nodeIndices.push_back(node->denseIndex());
        }
        EXPECT_TRUE(std::ranges::equal(GraphAccess::nodes(&graph), nodes));
        EXPECT_TRUE(!GraphAccess::areNodesInIndexOrder(&graph) || std::ranges::is_sorted(nodeIndices));

        std::vector<rv::Ends> ends(limit(graph.edgeIndexLimit()));
        Ids edgeIndices;
        for (const RVEdge* edge : *graph.pEdgeList()) {
            const auto index = [](const RVNode* end) { return static_cast<rv::Index>(end->denseIndex()); };
            ends[rv::placeOf(edge)] = {index(edge->pSourceNode()), index(edge->pTargetNode())};
            EXPECT_EQ(GraphAccess::edges(&graph)[rv::placeOf(edge)], edge);
            edgeIndices.push_back(edge->denseIndex());
        }
        const auto same = [](const rv::Ends& a, const rv::Ends& b) {
            return a.source == b.source && a.target == b.target;
        };
        EXPECT_TRUE(std::ranges::equal(GraphAccess::ends(&graph), ends, same));
        EXPECT_TRUE(!GraphAccess::areEdgesInIndexOrder(&graph) || std::ranges::is_sorted(edgeIndices));
    }
    void checkMember(const RVGraphMember& member, int id, std::size_t home, bool in) {
        RVGraph& graph = *m_real[home];
        EXPECT_EQ(member.pHomeGraph(), &graph);
        EXPECT_EQ(member.pOwnerGraph(), in ? &graph : nullptr);
        EXPECT_LT(member.denseIndex(), member.isNode() ? graph.nodeIndexLimit() : graph.edgeIndexLimit());
        EXPECT_TRUE(m_indices.emplace(home, member.isNode(), member.denseIndex()).second);
        EXPECT_EQ(member.pNameString(), std::to_wstring(id));
        EXPECT_EQ(idOf(&member), id);
        EXPECT_EQ(member.pIUserField(), id % 2 == 0 ? &m_data : nullptr);
    }
    // A new member has no name and empty fields, whatever one before it with its index had.
    int enroll(RVGraphMember* member) {
        EXPECT_STREQ(member->pNameString(), L"");
        EXPECT_EQ(member->pUserField(), nullptr);
        EXPECT_EQ(member->pIUserField(), nullptr);
        const int id = static_cast<int>(m_ids.size());
        member->pNameString(std::to_wstring(id).c_str());
        member->pUserField(&m_ids.emplace_back(id));
        if (id % 2 == 0) member->pIUserField(&m_data);
        return id;
    }
    void addNode(std::size_t g) {
        RVNode* const node = m_real[g]->addNode(0);
        const int id = enroll(node);
        m_nodes[id] = {node, g, true, {}, {}};
        m_orders[g].nodes.push_back(id);
    }
    void addEdge(RVEdge* edge, std::size_t g, int source, int target) {
        const int id = enroll(edge);
        m_data.directed(edge, id);
        m_counter.pAlgorithmExtension(edge);
        m_edges[id] = {edge, g, source, target, Waiting};
        enter(id);
    }

    // The edge leaves all lists.
    void leave(int id) {
        const Edge& edge = m_edges[id];
        std::erase(m_orders[edge.home].edges, id);
        if (edge.source != kNone) std::erase(m_nodes[edge.source].out, id);
        if (edge.target != kNone) std::erase(m_nodes[edge.target].into, id);
    }
    // And enters those where it belongs at the end.
    void enter(int id) {
        Edge& edge = m_edges[id];
        if (edge.state == Removed) return;
        Node& source = m_nodes[edge.source];
        Node& target = m_nodes[edge.target];
        if (source.in && target.in && source.home != target.home) {
            edge.state = Removed;
        } else if (source.in && target.in) {
            edge.state = Attached;
            edge.home = source.home;
            m_orders[edge.home].edges.push_back(id);
            source.out.push_back(id);
            target.into.push_back(id);
        } else {
            edge.state = Waiting;
            // Of two detached ends either may be the host.
            const int host = source.in                                                         ? edge.target
                             : target.in                                                       ? edge.source
                             : source.real->pOutEdgeList()->searchObject(edge.real) != nullptr ? edge.source
                                                                                               : edge.target;
            if (edge.source == host) source.out.push_back(id);
            if (edge.target == host) target.into.push_back(id);
        }
    }

    void removeNode(int n) {
        Node& node = m_nodes[n];
        node.in = false;
        std::erase(m_orders[node.home].nodes, n);
        for (const Ids* list : {&node.out, &node.into}) {
            for (int id : *list) {
                Edge& edge = m_edges[id];
                edge.state = Waiting;
                std::erase(m_orders[node.home].edges, id);
                if (edge.source != n) std::erase(m_nodes[edge.source].out, id);
                if (edge.target != n) std::erase(m_nodes[edge.target].into, id);
            }
        }
    }
    void insertNode(std::size_t g, int n) {
        Node& node = m_nodes[n];
        node.in = true;
        node.home = g;
        m_orders[g].nodes.push_back(n);
        const Ids out = node.out;
        const Ids into = node.into;
        for (const Ids* list : {&out, &into}) {
            for (int id : *list) {
                Edge& edge = m_edges[id];
                const bool isLoop = edge.source == edge.target;
                if (isLoop && list == &into) continue;
                const Node& other = m_nodes[edge.source == n ? edge.target : edge.source];
                if (!other.in || other.home != g) {
                    leave(id);
                    enter(id);
                    continue;
                }
                // Back from the node's own lists, where it keeps its place.
                edge.state = Attached;
                edge.home = g;
                m_orders[g].edges.push_back(id);
                if (isLoop) continue;
                if (list == &out) m_nodes[edge.target].into.push_back(id);
                if (list == &into) m_nodes[edge.source].out.push_back(id);
            }
        }
    }
    // The edge goes to the end of the new end's list and keeps its place in all others where it stays.
    void changeEnd(int id, int n, bool source) {
        Edge& edge = m_edges[id];
        int& end = source ? edge.source : edge.target;
        const int other = source ? edge.target : edge.source;
        if (end == n) return;
        const auto listOf = [&](int node) -> Ids& { return source ? m_nodes[node].out : m_nodes[node].into; };
        const bool otherIsHost =
            edge.state == Waiting &&
            std::ranges::count(source ? m_nodes[other].into : m_nodes[other].out, id) > 0;
        const bool staysAttached = edge.state == Attached && m_nodes[n].in;
        if (staysAttached || otherIsHost) {
            std::erase(listOf(end), id);
            end = n;
            if (staysAttached || n == other) listOf(n).push_back(id);
        } else {
            leave(id);
            end = n;
            enter(id);
        }
    }

    // A graph destroys its own members only. All ways to do so are one.
    template <class Member>
    void discard(RVGraph& graph, Member* member, void (RVGraph::*byGraph)(Member*)) {
        (graph.*byGraph)(member != nullptr && member->pHomeGraph() == &graph ? nullptr : member);
        check();
        if (member == nullptr) return;
        RVObject* const object = member;
        const auto way = m_random() % 3;
        if (way == 0) delete object;
        if (way == 1) object->vRelease();
        if (way == 2) (member->pHomeGraph()->*byGraph)(member);
        destroyed([&](const auto& each) { return each.real == object; });
    }
    void destroyGraph(std::size_t g) {
        m_real[g].reset();
        destroyed([&](const auto& each) { return each.home == g; });
    }
    // Edges that lose an end are destroyed with it, but for those that were removed.
    template <class IsDestroyed>
    void destroyed(IsDestroyed isDestroyed) {
        std::erase_if(m_edges, [&](const auto& entry) {
            Edge& edge = m_edges[entry.first];
            const bool sourceIs = edge.source != kNone && isDestroyed(m_nodes[edge.source]);
            const bool targetIs = edge.target != kNone && isDestroyed(m_nodes[edge.target]);
            const bool gone = isDestroyed(edge) || (edge.state != Removed && (sourceIs || targetIs));
            if (gone) leave(entry.first);
            if (sourceIs) edge.source = kNone;
            if (targetIs) edge.target = kNone;
            return gone;
        });
        std::erase_if(m_nodes, [&](const auto& entry) {
            const bool gone = isDestroyed(entry.second);
            if (gone) std::erase(m_orders[entry.second.home].nodes, entry.first);
            return gone;
        });
    }

    std::minstd_rand m_random;
    std::size_t m_graphs, m_mostNodes, m_mostEdges;
    RVAnalysisInternalData m_data;
    EdgeCounter m_counter;
    std::array<std::optional<RVGraph>, 3> m_real;
    std::array<Orders, 3> m_orders;
    std::map<int, Node> m_nodes;
    std::map<int, Edge> m_edges;
    std::set<std::tuple<std::size_t, bool, int>> m_indices;
    std::deque<int> m_ids;
};

TEST(Graph, SurgeryAgreesWithAModel) {
    for (unsigned seed = 0; seed < 360; ++seed) {
        Surgery surgery(seed);
        for (int i = 0; i < 200 && !HasFailure(); ++i) {
            surgery.step();
            surgery.check();
        }
        if (!HasFailure()) surgery.finish();
        ASSERT_FALSE(HasFailure()) << "seed " << seed << "; " << surgery.log.str();
    }
}

TEST(Graph, KnowsWhereItsListsStandInTheOrderOfIndices) {
    using rv::GraphAccess;
    rvtest::TestGraph graph("a->b b->c c->d");
    RVNode* const a = graph.node("a");
    const auto flags = [&] {
        return std::pair(GraphAccess::areNodesInIndexOrder(graph), GraphAccess::areEdgesInIndexOrder(graph));
    };
    EXPECT_EQ(flags(), std::pair(true, true));
    graph->insertNode(graph->removeNode(graph.node("d")));
    EXPECT_EQ(flags(), std::pair(true, true)) << "the last ones went and came back";
    graph->insertNode(graph->removeNode(a));
    EXPECT_EQ(flags(), std::pair(false, false));
    RVGraph copy;
    RVAlgorithmData().copyGraph(graph, &copy);
    EXPECT_TRUE(GraphAccess::areNodesInIndexOrder(&copy)) << "a copy has indices of its own";
    while (graph->numberOfNodes() > 1) graph->discardNode(graph->pFirstNode());
    EXPECT_EQ(flags(), std::pair(false, false)) << "nothing has come since";
    graph->insertNode(graph->removeNode(graph->pFirstNode()));
    graph->addEdge(a, a);
    EXPECT_EQ(flags(), std::pair(true, true)) << "the lists were empty";
}

// Notes when it is told of something, and may then go, alone or with another one.
struct Observer final : rv::GraphObserver {
    explicit Observer(RVGraph* watched, Ids& heard, int n) : graph(watched), told(heard), number(n) {
        rv::GraphAccess::addObserver(graph, this);
    }
    Observer(const Observer&) = delete;
    Observer& operator=(const Observer&) = delete;
    ~Observer() { leave(); }
    void leave() {
        if (graph != nullptr) rv::GraphAccess::removeObserver(graph, this);
        graph = nullptr;
    }
    void graphDies(RVGraph*) override {
        graph = nullptr;
        note();
    }
    void memberDies(RVGraphMember*) override { note(); }
    void memberMoved(RVGraphMember*, RVGraph*, int) override { note(); }
    void note() {
        told.push_back(number);
        if (leavesWhenTold) leave();
        if (takesAway != nullptr) takesAway->leave();
    }

    RVGraph* graph;
    Ids& told;
    int number;
    bool leavesWhenTold = false;
    Observer* takesAway = nullptr;
};

TEST(Graph, TellsItsObserversLastFirst) {
    for (unsigned seed = 0; seed < 200; ++seed) {
        std::minstd_rand random(seed + 1);
        auto graph = std::make_unique<RVGraph>();
        RVGraph other;
        Ids told;
        std::vector<std::unique_ptr<Observer>> all;  // in the order in which they came
        for (int number = 0; number < 60; ++number) {
            all.push_back(std::make_unique<Observer>(graph.get(), told, number));
            while (all.size() > 1 && random() % 5 < 2) {
                all.erase(all.begin() + static_cast<std::ptrdiff_t>(random() % all.size()));
            }
            if (random() % 4 != 0) continue;
            Observer& leaving = *all[random() % all.size()];
            leaving.leavesWhenTold = true;
            Observer& taken = *all[random() % all.size()];
            leaving.takesAway = &taken;
            Ids expected;
            for (auto it = all.rbegin(); it != all.rend(); ++it) {
                // One that came before the one by which it is taken away is not told any more.
                if (it->get() != &taken || taken.number >= leaving.number) expected.push_back((*it)->number);
            }
            if (random() % 2 == 0) {
                graph->discardNode(graph->addNode());
            } else {
                other.insertNode(graph->removeNode(graph->addNode()));
            }
            EXPECT_EQ(told, expected) << "seed " << seed;
            told.clear();
            std::erase_if(all, [](const auto& each) { return each->graph == nullptr; });
        }
        Ids expected;
        for (auto it = all.rbegin(); it != all.rend(); ++it) expected.push_back((*it)->number);
        graph.reset();
        ASSERT_EQ(told, expected) << "seed " << seed;
    }
}

TEST(Graph, HasAnyNumberOfObserversThatLeaveInAnyOrder) {
    RVGraph graph;
    std::vector<std::unique_ptr<RVAlgorithmData>> all(300000);
    for (auto& data : all) data = std::make_unique<RVAlgorithmData>(&graph);
    all.clear();  // first to last
    graph.discardNode(graph.addNode());
}

TEST(Graph, WalksItsEdges) {
    rvtest::TestGraph graph("a->b b->b c->b b->a");
    RVNode* const b = graph.node("b");
    const auto walk = [&](auto it, RVIterDirectionEnum direction) {
        std::string all;
        for (it.init(b, direction); it; it++) all += rvtest::text(it.pEdge()) + " ";
        return all;
    };
    EXPECT_EQ(walk(RVInAndOutEdgeIter(), RVForward), "a->b b->b c->b b->b b->a ");
    EXPECT_EQ(walk(RVInAndOutEdgeIter(), RVBackward), "b->a b->b c->b b->b a->b ");
    EXPECT_EQ(walk(RVOutEdgeIter(), RVBackward), "b->a b->b ");
    EXPECT_EQ(walk(RVInEdgeIter(), RVForward), "a->b b->b c->b ");

    RVInAndOutEdgeIter it(b);
    for (int i = 0; i < 3; ++i) it++;
    it--;
    EXPECT_EQ(rvtest::text(it.pEdge()), "c->b") << "back from the out-edges to the in-edges";
    EXPECT_EQ(graph.edge("b->b")->pOtherNode(b), b);
    EXPECT_EQ(graph.edge("a->b")->pOtherNode(b), graph.node("a"));
    EXPECT_EQ(graph.edge("a->b")->pOtherNode(graph.node("c")), nullptr);

    // Each walk is live: edges that are added behind are reached, and those before it may go.
    int met = 0;
    for (RVOutEdgeIter out(b); out; ++met) {
        RVEdge* const edge = out.pEdge();
        if (met < 5) graph->addEdge(b, b, 0);
        out++;
        graph->discardEdge(edge);
    }
    EXPECT_EQ(met, 7);
}

// Nothing goes deep, and nothing searches: either would not come to an end here.
void buildAndDestroyLargeGraphs() {
    constexpr int kSize = 1000000;
    auto star = std::make_unique<RVGraph>();
    RVNode* const center = star->addNode(0);
    for (int i = 0; i < kSize; ++i) star->addEdge(center, star->addNode(0), 0);
    for (RVNodeIter it(star.get(), RVBackward); it.pNode() != center;) {
        RVNode* const leaf = it.pNode();
        it++;
        if (leaf->denseIndex() % 4 == 0) star->removeNode(leaf);
        if (leaf->denseIndex() % 8 == 0) star->insertNode(leaf);
    }
    EXPECT_EQ(center->outDegree(), kSize - kSize / 8);
    star->insertNode(star->removeNode(center));
    EXPECT_EQ(star->numberOfEdges(), kSize - kSize / 8);
    star->discardNode(center);
    EXPECT_EQ(star->numberOfEdges(), 0);

    const auto chain = std::make_unique<RVGraph>();
    rvtest::addChain(chain.get(), kSize);
    EXPECT_EQ(chain->numberOfEdges(), kSize - 1);
}

TEST(Graph, LargeGraphsNeedLittleStack) { rvtest::withSmallStack(buildAndDestroyLargeGraphs); }

}  // namespace
