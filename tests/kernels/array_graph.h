// Graphs as arrays for the tests of the kernels, made of lists of edges in the most obvious way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <span>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "rv/kernels/arcs.h"

namespace rvtest {

using rv::Index;
using rv::kNoIndex;

// Numbers below a limit: drawn, the same ones by every standard library, or read from bytes and 0 after them.
class Dice {
public:
    explicit Dice(std::uint64_t seed) : m_engine(seed) {}
    explicit Dice(std::span<const std::uint8_t> bytes) : m_bytes(bytes), m_areGiven(true) {}
    Index below(Index limit) { return static_cast<Index>((m_areGiven ? read(limit) : m_engine()) % limit); }
    bool oneIn(Index count) { return below(count) == count - 1; }

private:
    std::uint64_t read(Index limit) {
        std::uint64_t value = 0;
        for (; limit > 0; limit >>= 8) {
            value = value << 8 | (m_bytes.empty() ? 0U : m_bytes.front());
            m_bytes = m_bytes.subspan(m_bytes.empty() ? 0 : 1);
        }
        return value;
    }

    std::mt19937_64 m_engine;
    std::span<const std::uint8_t> m_bytes;
    bool m_areGiven = false;
};

// Owns arcs of all nodes.
struct ArcArrays {
    std::vector<Index> begins;
    std::vector<Index> targets;
    std::vector<Index> edges;

    rv::Arcs arcs() const {
        const std::span all(begins);
        return {all.first(begins.size() - 1), all.subspan(1), targets, edges};
    }
};

// A space with the arrays that it points to; it must stay where it is.
class ArraySpace {
public:
    struct Arc {
        Index target;
        Index edge;
    };

    ArraySpace(const std::vector<std::vector<Arc>>& lists, const rv::GraphOrder& order) {
        m_inDegrees.resize(lists.size());
        m_arrays.begins.push_back(0);
        for (const auto& list : lists) {
            for (const Arc& arc : list) {
                m_arrays.targets.push_back(arc.target);
                m_arrays.edges.push_back(arc.edge);
                ++m_inDegrees[arc.target];
            }
            m_arrays.begins.push_back(static_cast<Index>(m_arrays.targets.size()));
        }
        m_space = {m_arrays.arcs(), m_inDegrees, order};
    }
    ArraySpace(const ArraySpace&) = delete;
    ArraySpace& operator=(const ArraySpace&) = delete;

    const rv::SearchSpace& operator*() const { return m_space; }
    const rv::SearchSpace* operator->() const { return &m_space; }

private:
    ArcArrays m_arrays;
    std::vector<Index> m_inDegrees;
    rv::SearchSpace m_space;
};

// Nodes and edges in any order, with gaps in their numbers. Out- and in-lists stand in the order of the
// edges.
struct ArrayGraph {
    Index nodeLimit = 0;
    std::vector<Index> nodes;
    std::vector<Index> edges;
    std::vector<rv::Ends> ends;  // by edge
    std::vector<bool> twoWay;    // by edge, those of a mixed graph that are followed both ways
    bool hasPlainNodes = false;  // numbered from 0 in their order: the order is left out
    bool hasPlainEdges = false;  // in the order of their numbers: likewise

    // With numbers from 0 and no gaps.
    static ArrayGraph plain(Index nodeCount, const std::vector<std::pair<Index, Index>>& pairs) {
        ArrayGraph graph;
        graph.nodeLimit = nodeCount;
        graph.hasPlainNodes = graph.hasPlainEdges = true;
        for (Index node = 0; node < nodeCount; ++node) graph.nodes.push_back(node);
        for (const auto& [source, target] : pairs) {
            graph.edges.push_back(static_cast<Index>(graph.ends.size()));
            graph.ends.push_back({source, target});
        }
        graph.twoWay.resize(pairs.size());
        return graph;
    }

    rv::GraphOrder order() const {
        const auto count = [](const auto& list) { return static_cast<Index>(list.size()); };
        rv::GraphOrder order{count(nodes), count(edges), nodes, edges, ends};
        if (hasPlainNodes) order.nodes = {};
        if (hasPlainEdges) order.edges = {};
        return order;
    }

    ArcArrays arcs(bool areBackward = false) const {
        std::vector<std::vector<Index>> lists(nodeLimit);
        for (const Index edge : edges)
            lists[areBackward ? ends[edge].target : ends[edge].source].push_back(edge);
        ArcArrays arrays;
        arrays.begins.push_back(0);
        for (const auto& list : lists) {
            for (const Index edge : list) {
                arrays.targets.push_back(areBackward ? ends[edge].source : ends[edge].target);
                arrays.edges.push_back(edge);
            }
            arrays.begins.push_back(static_cast<Index>(arrays.targets.size()));
        }
        return arrays;
    }

    // Forward, but for the edges that are followed both ways; the reverse arcs come after all others.
    ArraySpace mixed() const {
        std::vector<std::vector<ArraySpace::Arc>> lists(nodeLimit);
        std::map<std::pair<Index, Index>, bool> seen;
        const auto add = [&](Index from, Index to, Index edge) {
            if (from != to && seen.emplace(std::pair(from, to), true).second)
                lists[from].push_back({to, edge});
        };
        for (const Index edge : edges) add(ends[edge].source, ends[edge].target, edge);
        for (const Index edge : edges) {
            if (twoWay[edge]) add(ends[edge].target, ends[edge].source, edge);
        }
        return {lists, order()};
    }
    // All both ways; the reverse arcs after the others and in the reverse order.
    ArraySpace undirected() const {
        std::vector<std::vector<ArraySpace::Arc>> lists(nodeLimit);
        std::map<std::pair<Index, Index>, bool> seen;
        std::vector<Index> kept;
        for (const Index edge : edges) {
            const auto [source, target] = ends[edge];
            if (source == target || !seen.emplace(std::minmax(source, target), true).second) continue;
            kept.push_back(edge);
            lists[source].push_back({target, edge});
        }
        std::reverse(kept.begin(), kept.end());
        for (const Index edge : kept) lists[ends[edge].target].push_back({ends[edge].source, edge});
        return {lists, order()};
    }
};

// Shown when a test fails: the nodes, then the edges with their numbers.
inline std::string text(const ArrayGraph& graph) {
    std::ostringstream out;
    for (const Index node : graph.nodes) out << node << ' ';
    for (const Index edge : graph.edges) {
        const auto [source, target] = graph.ends[edge];
        out << ' ' << source << (graph.twoWay[edge] ? "--" : "->") << target << '#' << edge;
    }
    return out.str();
}

// Up to seven nodes, with loops and parallel edges; half of them with gaps and in other orders.
inline ArrayGraph randomArrays(Dice& dice) {
    ArrayGraph graph;
    const Index nodeCount = dice.below(8);
    const Index edgeCount = nodeCount == 0 ? 0 : dice.below(3 * nodeCount);
    graph.hasPlainNodes = dice.oneIn(2);
    graph.hasPlainEdges = dice.oneIn(2);
    const auto number = [&](Index count, bool isPlain) {
        std::vector<Index> numbers;
        for (Index i = 0, next = 0; i < count; ++i, ++next) {
            while (!isPlain && dice.oneIn(4)) ++next;
            numbers.push_back(next);
        }
        return numbers;
    };
    const auto shuffle = [&](std::vector<Index>& numbers) {
        for (auto i = static_cast<Index>(numbers.size()); i > 1; --i)
            std::swap(numbers[i - 1], numbers[dice.below(i)]);
    };
    graph.nodes = number(nodeCount, graph.hasPlainNodes);
    graph.nodeLimit = nodeCount == 0 ? dice.below(3) : graph.nodes.back() + 1 + dice.below(2);
    if (graph.hasPlainNodes) {
        graph.nodeLimit = nodeCount;
    } else {
        shuffle(graph.nodes);
    }
    graph.edges = number(edgeCount, false);
    graph.ends.resize(edgeCount == 0 ? 0 : graph.edges.back() + 1 + dice.below(2));
    graph.twoWay.resize(graph.ends.size());
    if (!graph.hasPlainEdges) shuffle(graph.edges);
    const bool isMixed = dice.oneIn(2);
    for (const Index edge : graph.edges) {
        graph.ends[edge] = {graph.nodes[dice.below(nodeCount)], graph.nodes[dice.below(nodeCount)]};
        graph.twoWay[edge] = isMixed && dice.oneIn(3);
    }
    return graph;
}

// Up to forty nodes, so that levels have many nodes and there are many shortest paths.
inline ArrayGraph randomDigraph(Dice& dice) {
    const Index nodes = 2 + dice.below(39);
    std::vector<std::pair<Index, Index>> pairs;
    for (Index left = nodes / 2 + dice.below(3 * nodes); left > 0; --left)
        pairs.emplace_back(dice.below(nodes), dice.below(nodes));
    return ArrayGraph::plain(nodes, pairs);
}

}  // namespace rvtest
