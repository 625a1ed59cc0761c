// Breadth-first and depth-first search.

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

using namespace rvtest;

// The nodes in visiting order, after comparing the numbers of all nodes.
template <class Output>
std::string order(const Output& output, RVGraph* graph) {
    std::map<RVNode*, int> numbers;
    for (RVNode* node : *output.pNodeList()) numbers.emplace(node, static_cast<int>(numbers.size()) + 1);
    for (RVNode* node : *graph->pNodeList()) EXPECT_EQ(output.orderNumber(node), numbers[node]) << text(node);
    RVNodeDList list;
    list.appendNode(graph->pFirstNode());
    output.buildNodeOrderList(list);
    EXPECT_EQ(text(list), text(*output.pNodeList()));
    return text(list);
}

// Visiting order / completion order / parents / kinds of edges.
std::string answer(const RVDepthFirstSearchOutputData& output, RVGraph* graph) {
    std::string all = order(output, graph) + " /";
    std::map<int, RVNode*> completed;
    std::string parents;
    for (RVNode* node : *graph->pNodeList()) {
        if (output.completionNumber(node) != 0) completed.emplace(output.completionNumber(node), node);
        RVNode* const parent = output.pParentNode(node);
        if (parent != nullptr) parents += " " + text(node) + "<" + text(parent);
    }
    EXPECT_EQ(static_cast<int>(completed.size()), output.pNodeList()->length());
    EXPECT_TRUE(completed.empty() || completed.rbegin()->first == output.pNodeList()->length());
    for (const auto& [number, node] : completed) all += " " + text(node);
    all += " /" + parents + " /";
    for (RVEdge* edge : *graph->pEdgeList())
        all += " " + text(edge) + "=" + std::to_string(output.edgeType(edge));
    return all;
}

TEST(Searches, NumberNodesAndTellKindsOfEdges) {
    const struct {
        const char* what;
        const char* graph;
        const char* start;
        int undirected;
        const char* breadthFirst;
        const char* depthFirst;
    } cases[] = {
        {"nothing", "", "", 0, "", " / / /"},
        {"first source, then isolated nodes", "f a->b a->c b->d c->d e", "", 0, "a b c d f e",
         "a c d b f e / d c b a f e / b<a c<a d<c / a->b=1 a->c=1 b->d=4 c->d=1"},
        {"parallels do not count", "b->a:1 b->a:2 a->b c->b", "", 0, "c b a",
         "c b a / a b c / b<c a<b / b->a:1=1 b->a:2=2 a->b=3 c->b=1"},
        {"parallels of a forward and a cross edge", "a->b:1 a->b:2 a->c c->b a->d d->c:1 d->c:2", "a", 0,
         "a b c d",
         "a d c b / b c d a / b<c c<d d<a / a->b:1=2 a->b:2=2 a->c=2 c->b=1 a->d=1 d->c:1=1 d->c:2=2"},
        {"a loop that is not reached", "e->e a->b", "a", 0, "a b", "a b / b a / b<a / e->e=0 a->b=1"},
        {"undirected edges: no forward edge", "a--b a--c b--c", "", 0, "a b c",
         "a c b / b c a / b<c c<a / a--b=3 a--c=1 b--c=1"},
        {"reverse edges from the last one to the first", "a->b b->c a->c", "c", 1, "c a b",
         "c b a / a b c / a<b b<c / a->b=1 b->c=1 a->c=3"},
    };
    BreadthFirst breadth;
    DepthFirst depth;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const TestGraph g(c.graph);
        RVNode* const start = *c.start == '\0' ? nullptr : g.node(c.start);
        EXPECT_EQ(runOn(breadth, g, start, nullptr, c.undirected), RV_NO_ERROR);
        EXPECT_EQ(runOn(depth, g, start, nullptr, c.undirected), RV_NO_ERROR);
        EXPECT_EQ(order(breadth.output, g), c.breadthFirst);
        EXPECT_EQ(answer(depth.output, g), c.depthFirst);
    }
}

// The stated rules, slowly, on edges of our own.
class Model {
public:
    struct Arc {
        RVNode* source;
        RVNode* target;
        RVEdge* original;
        bool directed;
        bool isReverse;
        std::vector<RVEdge*> parallels;
    };

    Model(RVGraph* graph, int undirected) : m_undirected(undirected != 0), m_graph(graph) {
        std::vector<Arc> all;
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (edge->pSourceNode() == edge->pTargetNode()) continue;
            all.push_back(
                {edge->pSourceNode(), edge->pTargetNode(), edge, !rvtest::undirected(edge), false, {}});
        }
        const auto addReverse = [](std::vector<Arc>& arcs, const Arc& arc) {
            arcs.push_back({arc.target, arc.source, arc.original, false, true, {}});
        };
        for (std::size_t i = 0, n = all.size(); i < n && !m_undirected; ++i) {
            if (!all[i].directed) addReverse(all, all[i]);
        }
        for (const Arc& arc : all) {
            const auto first = std::find_if(m_arcs.begin(), m_arcs.end(), [&](const Arc& other) {
                return (other.source == arc.source && other.target == arc.target) ||
                       (m_undirected && other.source == arc.target && other.target == arc.source);
            });
            first == m_arcs.end() ? m_arcs.push_back(arc) : first->parallels.push_back(arc.original);
        }
        for (std::size_t i = m_arcs.size(); i > 0 && m_undirected; --i) addReverse(m_arcs, m_arcs[i - 1]);
    }

    // As the node's out-list has them, and behind them the reverse edges.
    std::vector<Arc> out(RVNode* node) const {
        std::vector<Arc> all;
        for (const RVEdge* edge : *node->pOutEdgeList()) {
            for (const Arc& arc : m_arcs) {
                if (arc.original == edge && !arc.isReverse) all.push_back(arc);
            }
        }
        for (const Arc& arc : m_arcs) {
            if (arc.isReverse && arc.source == node) all.push_back(arc);
        }
        return all;
    }

    // Where to start after a root: at the source of the first edge that is left if the root led nowhere, else
    // at the first unvisited node of smallest in-degree; isolated nodes last.
    RVNode* nextRoot(RVNode* root, const std::set<RVNode*>& visited) const {
        for (const Arc& arc : m_arcs) {
            if (root != nullptr && out(root).empty() && visited.count(arc.source) == 0) return arc.source;
        }
        RVNode* best = nullptr;
        std::size_t smallest = 0;
        for (RVNode* node : *m_graph->pNodeList()) {
            std::size_t degree = 0;
            for (const Arc& arc : m_arcs) degree += arc.target == node ? 1 : 0;
            if (degree == 0 && out(node).empty()) degree = m_arcs.size() + 1;
            if (visited.count(node) != 0 || (best != nullptr && degree >= smallest)) continue;
            best = node;
            smallest = degree;
        }
        return best;
    }
    // Searches from a node, or everywhere.
    void forEachRoot(RVNode* from, std::set<RVNode*>& visited,
                     const std::function<void(RVNode*)>& search) const {
        if (from != nullptr) return search(from);
        for (RVNode* root = nullptr; (root = nextRoot(root, visited)) != nullptr;) search(root);
    }

    std::string breadthFirst(RVNode* from) {
        std::vector<RVNode*> order;
        std::set<RVNode*> visited;
        forEachRoot(from, visited, [&](RVNode* root) {
            std::size_t next = order.size();
            visited.insert(root);
            for (order.push_back(root); next < order.size(); ++next) {
                for (const Arc& arc : out(order[next])) {
                    if (visited.insert(arc.target).second) order.push_back(arc.target);
                }
            }
        });
        RVNodeDList list;
        for (RVNode* node : order) list.appendNode(node);
        return text(list);
    }

    std::string depthFirst(RVNode* from) {
        std::set<RVNode*> visited;
        forEachRoot(from, visited, [&](RVNode* root) { visit(root, nullptr, visited); });
        for (const Arc& arc : m_traversed) {
            int kind = m_parents[arc.target] == arc.source  ? 1
                       : isAncestor(arc.source, arc.target) ? 2
                       : isAncestor(arc.target, arc.source) ? 3
                                                            : 4;
            const auto set = [&](RVEdge* edge, int value) {
                if (m_kinds[edge] != 1) m_kinds[edge] = value;
            };
            if (kind == 2 && (m_undirected || !arc.directed)) kind = 3;
            set(arc.original, kind);
            for (RVEdge* edge : arc.parallels) {
                const bool forward = !m_undirected && !rvtest::undirected(edge) &&
                                     isAncestor(edge->pSourceNode(), edge->pTargetNode());
                set(edge, kind == 4 ? 4 : forward ? 2 : 3);
            }
        }
        std::string all =
            text(m_order) + " /" + (m_completed.length() == 0 ? "" : " ") + text(m_completed) + " /";
        for (RVNode* node : *m_graph->pNodeList()) {
            if (m_parents[node] != nullptr) all += " " + text(node) + "<" + text(m_parents[node]);
        }
        all += " /";
        for (RVEdge* edge : *m_graph->pEdgeList()) {
            const bool isLoop = edge->pSourceNode() == edge->pTargetNode();
            const int loopKind = visited.count(edge->pSourceNode()) != 0 ? 3 : 0;
            all += " " + text(edge) + "=" + std::to_string(isLoop ? loopKind : m_kinds[edge]);
        }
        return all;
    }

private:
    void visit(RVNode* node, RVNode* parent, std::set<RVNode*>& visited) {
        visited.insert(node);
        m_order.appendNode(node);
        m_parents[node] = parent;
        std::vector<Arc> arcs = out(node);
        for (; !arcs.empty(); arcs.pop_back()) {
            m_traversed.push_back(arcs.back());
            if (visited.count(arcs.back().target) == 0) visit(arcs.back().target, node, visited);
        }
        m_completed.appendNode(node);
    }
    bool isAncestor(RVNode* node, RVNode* of) {
        while (of != nullptr && of != node) of = m_parents[of];
        return of == node;
    }

    bool m_undirected;
    RVGraph* m_graph;
    std::vector<Arc> m_arcs;
    RVNodeDList m_order;
    RVNodeDList m_completed;
    std::map<RVNode*, RVNode*> m_parents;
    std::vector<Arc> m_traversed;
    std::map<RVEdge*, int> m_kinds;
};

// Directed and undirected, from the start of the rule and from a given one, with lists in all orders.
TEST(Searches, FollowTheRules) {
    BreadthFirst breadth;
    DepthFirst depth;
    OnHooks<BreadthFirst> hookedBreadth;
    OnHooks<DepthFirst> hookedDepth;
    for (unsigned seed = 0; seed < 300 && !HasFailure(); ++seed) {
        const std::string tokens = randomText(seed, {.nodes = 8, .edges = 14, .undirected = 25});
        const MarkedGraph g(tokens, seed);
        for (int way = 0; way < 4; ++way) {
            SCOPED_TRACE("seed " + std::to_string(seed) + ", way " + std::to_string(way) + ": " + tokens);
            RVNode* const start = way / 2 == 0 ? nullptr : g->pLastNode();
            const int undirected = way % 2 == 0 ? 0 : 2;  // any nonzero flag
            ASSERT_EQ(runOn(breadth, g, start, nullptr, undirected), RV_NO_ERROR);
            ASSERT_EQ(runOn(depth, g, start, nullptr, undirected), RV_NO_ERROR);
            ASSERT_EQ(runOn(hookedBreadth, g, start, nullptr, undirected), RV_NO_ERROR);
            ASSERT_EQ(runOn(hookedDepth, g, start, nullptr, undirected), RV_NO_ERROR);
            const std::string breadthFirst = Model(g, undirected).breadthFirst(start);
            const std::string depthFirst = Model(g, undirected).depthFirst(start);
            EXPECT_EQ(order(breadth.output, g), breadthFirst);
            EXPECT_EQ(order(hookedBreadth.output, g), breadthFirst);
            EXPECT_EQ(answer(depth.output, g), depthFirst);
            EXPECT_EQ(answer(hookedDepth.output, g), depthFirst);
        }
    }
}

}  // namespace
