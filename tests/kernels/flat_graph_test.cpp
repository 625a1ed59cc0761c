#include "rv/kernels/flat_graph.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using rv::Arcs;
using rv::Ends;
using rv::FlatGraph;
using rv::GraphOrder;
using rv::Index;
using rv::kNoIndex;
using rv::SimpleGraph;
using List = std::vector<Index>;

// A graph with gaps in its numbers, whose orders may be any.
struct Drawn {
    explicit Drawn(unsigned seed) : random(seed) {
        const Index nodeLimit = 1 + below(8);
        const Index edgeLimit = below(30);
        out.resize(nodeLimit);
        in.resize(nodeLimit);
        ends.resize(edgeLimit);
        for (Index node = 0; node < nodeLimit; ++node) {
            if (below(6) != 0) nodes.push_back(node);
        }
        for (Index edge = 0; edge < edgeLimit && !nodes.empty(); ++edge) {
            if (below(8) == 0) continue;
            ends[edge] = {nodes[below(nodes.size())], nodes[below(nodes.size())]};
            edges.push_back(edge);
        }
        areInOrder = below(2) == 0;
        if (below(2) == 0) std::shuffle(nodes.begin(), nodes.end(), random);
        edgesAreInOrder = below(2) == 0;
        if (!edgesAreInOrder) std::shuffle(edges.begin(), edges.end(), random);
        for (const Index edge : edges) {
            out[ends[edge].source].push_back(edge);
            in[ends[edge].target].push_back(edge);
        }
        for (std::vector<List>* lists : {&out, &in}) {
            for (List& list : *lists) {
                if (!areInOrder) std::shuffle(list.begin(), list.end(), random);
            }
        }
    }

    Index below(std::size_t limit) { return static_cast<Index>(random() % limit); }

    void describe(FlatGraph::Parts& parts) const {
        parts.nodeLimit = static_cast<Index>(out.size());
        parts.nodeCount = static_cast<Index>(nodes.size());
        parts.edgeCount = static_cast<Index>(edges.size());
        parts.ends = ends;
        parts.nodes.clear();
        parts.edges.clear();
        const bool nodesAreAll = nodes.size() == out.size() && std::ranges::is_sorted(nodes);
        if (!nodesAreAll) parts.nodes.assign(nodes.begin(), nodes.end());
        if (!edgesAreInOrder) parts.edges.assign(edges.begin(), edges.end());
        parts.writeLists = nullptr;
        if (areInOrder) return;
        parts.writeLists = [this](bool isOut, std::span<const Index> begins, std::span<Index> written) {
            for (Index node = 0; node < out.size(); ++node) {
                std::ranges::copy((isOut ? out : in)[node], written.begin() + begins[node]);
            }
        };
    }

    std::string text() const {
        std::ostringstream all;
        all << "nodes";
        for (const Index node : nodes) all << " " << node;
        all << "; edges";
        for (const Index edge : edges)
            all << " " << edge << ":" << ends[edge].source << "->" << ends[edge].target;
        for (const bool isOut : {true, false}) {
            all << (isOut ? "; out" : "; in");
            for (const List& list : isOut ? out : in) {
                for (const Index edge : list) all << " " << edge;
                all << " |";
            }
        }
        return all.str();
    }

    std::mt19937 random;
    std::vector<Ends> ends;
    List nodes;  // in graph order
    List edges;
    std::vector<List> out;  // by node
    std::vector<List> in;
    bool areInOrder;
    bool edgesAreInOrder;
};

// The graph as objects would be normalised, one edge after the other.
class Model {
public:
    Model(const Drawn& drawn, bool undirected, const List& twoWay) : m_out(drawn.out.size()), m_in(m_out) {
        List numbers(drawn.ends.size());
        for (const Index edge : drawn.edges) {
            numbers[edge] = add(drawn.ends[edge].source, drawn.ends[edge].target, edge);
        }
        for (Index node = 0; node < m_out.size(); ++node) {
            for (const Index edge : drawn.out[node]) m_out[node].push_back(numbers[edge]);
            for (const Index edge : drawn.in[node]) m_in[node].push_back(numbers[edge]);
        }
        for (const Index edge : twoWay) {
            const Ends ends = drawn.ends[edge];
            if (ends.source != ends.target) enter(add(ends.target, ends.source, edge));
        }
        loops.resize(m_out.size());
        for (Edge& edge : m_edges) {
            edge.isLeftOut = edge.source == edge.target;
            if (edge.isLeftOut) loops[edge.source].push_back(edge.number);
        }
        parallels.resize(drawn.ends.size());
        reverseParallels.resize(drawn.ends.size());
        for (Index edge = 0; edge < m_edges.size(); ++edge) leaveOutParallels(edge, undirected);
        const auto kept = static_cast<Index>(m_edges.size());
        for (Index edge = kept; undirected && edge-- > 0;) {
            const Edge each = m_edges[edge];
            if (!each.isLeftOut) enter(add(each.target, each.source, each.number));
        }
    }

    List targetsOf(Index node) const { return list(node, &Edge::target); }
    List edgesOf(Index node) const { return list(node, &Edge::number); }
    Index inDegree(Index node) const {
        return static_cast<Index>(
            std::ranges::count_if(m_in[node], [this](Index edge) { return !m_edges[edge].isLeftOut; }));
    }

    std::vector<List> loops;             // by node
    std::vector<List> parallels;         // by edge
    std::vector<List> reverseParallels;  // by edge

private:
    struct Edge {
        Index source;
        Index target;
        Index number;
        bool isReverse = false;
        bool isLeftOut = false;
    };
    Index add(Index source, Index target, Index number) {
        m_edges.push_back({source, target, number});
        return static_cast<Index>(m_edges.size() - 1);
    }
    void enter(Index edge) {
        m_edges[edge].isReverse = true;
        m_out[m_edges[edge].source].push_back(edge);
        m_in[m_edges[edge].target].push_back(edge);
    }
    void leaveOutParallels(Index kept, bool undirected) {
        const Edge& edge = m_edges[kept];
        if (edge.isLeftOut) return;
        const auto leaveOut = [&](Index other) {
            if (other == kept || m_edges[other].isLeftOut) return;
            m_edges[other].isLeftOut = true;
            (edge.isReverse ? reverseParallels : parallels)[edge.number].push_back(m_edges[other].number);
        };
        for (const Index other : m_out[edge.source]) {
            if (m_edges[other].target == edge.target) leaveOut(other);
        }
        for (const Index other : m_in[edge.source]) {
            if (undirected && m_edges[other].source == edge.target) leaveOut(other);
        }
    }
    List list(Index node, Index Edge::*what) const {
        List result;
        for (const Index edge : m_out[node]) {
            if (!m_edges[edge].isLeftOut) result.push_back(m_edges[edge].*what);
        }
        return result;
    }

    std::vector<Edge> m_edges;  // in graph order
    std::vector<List> m_out;    // by node
    std::vector<List> m_in;
};

List listOf(std::span<const Index> values) { return {values.begin(), values.end()}; }

void checkSections(const Drawn& drawn, const FlatGraph& flat) {
    const GraphOrder order = flat.order();
    List nodes;
    List edges;
    order.forEachNode([&](Index node) { nodes.push_back(node); });
    order.forEachEdge([&](Index edge) { edges.push_back(edge); });
    EXPECT_EQ(nodes, drawn.nodes);
    EXPECT_EQ(edges, drawn.edges);
    for (const bool isOut : {true, false}) {
        const Arcs& arcs = isOut ? flat.out() : flat.in();
        ASSERT_EQ(arcs.nodeLimit(), drawn.out.size());
        for (Index node = 0; node < arcs.nodeLimit(); ++node) {
            const List& expected = (isOut ? drawn.out : drawn.in)[node];
            EXPECT_EQ(listOf(arcs.edgesOf(node)), expected);
            for (Index i = 0; i < expected.size(); ++i) {
                const Ends ends = drawn.ends[expected[i]];
                EXPECT_EQ(arcs.targetsOf(node)[i], isOut ? ends.target : ends.source);
            }
        }
    }
}

void check(const SimpleGraph& graph, const Model& model) {
    for (Index node = 0; node < graph.space.nodeLimit(); ++node) {
        SCOPED_TRACE(testing::Message() << "node " << node);
        EXPECT_EQ(listOf(graph.space.arcs.targetsOf(node)), model.targetsOf(node));
        EXPECT_EQ(listOf(graph.space.arcs.edgesOf(node)), model.edgesOf(node));
        EXPECT_EQ(graph.space.inDegrees[node], model.inDegree(node));
        List loops;
        graph.forEachLoop(node, [&](Index edge) { loops.push_back(edge); });
        EXPECT_EQ(loops, model.loops[node]);
    }
    for (Index edge = 0; edge < model.parallels.size(); ++edge) {
        SCOPED_TRACE(testing::Message() << "edge " << edge);
        List parallels;
        List reverseParallels;
        graph.forEachParallel(edge, [&](Index each) { parallels.push_back(each); });
        graph.forEachReverseParallel(edge, [&](Index each) { reverseParallels.push_back(each); });
        EXPECT_EQ(parallels, model.parallels[edge]);
        EXPECT_EQ(reverseParallels, model.reverseParallels[edge]);
    }
}

// Asked for in any order, in the memory of other graphs.
TEST(FlatGraph, AgreesWithAModel) {
    FlatGraph flat;
    for (unsigned seed = 0; seed < 3000; ++seed) {
        Drawn drawn(seed);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << drawn.text());
        drawn.describe(flat.rebuild());
        List twoWay;
        for (const Index edge : drawn.edges) {
            if (drawn.below(3) == 0) twoWay.push_back(edge);
        }
        for (unsigned first = drawn.below(4), i = 0; i < 4; ++i) {
            switch ((first + i) % 4) {
                case 0:
                    checkSections(drawn, flat);
                    break;
                case 1:
                    check(flat.directed(), Model(drawn, false, {}));
                    break;
                case 2:
                    check(flat.undirected(), Model(drawn, true, {}));
                    break;
                default:
                    check(flat.mixedWhere([&](Index edge) { return std::ranges::count(twoWay, edge) > 0; }),
                          Model(drawn, false, twoWay));
            }
        }
        if (HasFailure()) return;
    }
}

// So many that they are sorted block by block.
TEST(FlatGraph, SortsManyEdges) {
    std::mt19937 random(1);
    constexpr Index kNodes = (1U << 17) + 3;
    std::vector<Ends> ends((1U << 20) + 5);
    for (Ends& each : ends)
        each = {static_cast<Index>(random() % kNodes), static_cast<Index>(random() % kNodes)};
    FlatGraph::Parts parts;
    parts.nodeLimit = parts.nodeCount = kNodes;
    parts.edgeCount = static_cast<Index>(ends.size());
    parts.ends = ends;
    const FlatGraph flat(std::move(parts));
    for (const bool isOut : {true, false}) {
        const Arcs& arcs = isOut ? flat.out() : flat.in();
        ASSERT_EQ(arcs.targets.size(), ends.size());
        for (Index node = 0; node < kNodes; ++node) {
            Index least = 0;
            for (Index i = 0; i < arcs.degree(node); ++i) {
                const Index edge = arcs.edgesOf(node)[i];
                ASSERT_GE(edge, least);
                least = edge + 1;
                ASSERT_EQ(isOut ? ends[edge].source : ends[edge].target, node);
                ASSERT_EQ(arcs.targetsOf(node)[i], isOut ? ends[edge].target : ends[edge].source);
            }
        }
    }
}

}  // namespace
