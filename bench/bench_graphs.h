// The graphs that benchmarks measure on, as arrays of edges, so that every library builds the same one in
// the same order. All are fixed by their arguments.
#pragma once

#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

namespace bench {

// SplitMix64; the seeds are fixed so that two runs measure the same graph.
class Random {
public:
    explicit Random(std::uint64_t seed = 1) : m_state(seed) {}
    std::uint64_t next() {
        std::uint64_t z = m_state += 0x9E3779B97F4A7C15ULL;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }
    // Uniform in [0, limit).
    int below(int limit) {
        return static_cast<int>((next() >> 32) * static_cast<std::uint64_t>(limit) >> 32);
    }

private:
    std::uint64_t m_state;
};

template <class T>
std::vector<T> shuffled(std::vector<T> values, std::uint64_t seed = 7) {
    Random random(seed);
    for (std::size_t i = values.size(); i > 1; --i) {
        std::swap(values[i - 1], values[static_cast<std::size_t>(random.below(static_cast<int>(i)))]);
    }
    return values;
}

// 0, 1, ... n - 1 in random order.
inline std::vector<int> randomOrder(int n, std::uint64_t seed = 7) {
    std::vector<int> numbers(static_cast<std::size_t>(n));
    std::iota(numbers.begin(), numbers.end(), 0);
    return shuffled(std::move(numbers), seed);
}

// Nodes are numbered from 0; edges go from first to second.
struct EdgeArray {
    int nodes = 0;
    std::vector<std::pair<int, int>> edges;

    void add(int source, int target) { edges.emplace_back(source, target); }
    int size() const { return static_cast<int>(edges.size()); }
};

// Independent uniform ends, loops and parallel edges included.
inline EdgeArray randomGraph(int n, int edgesPerNode = 5) {
    Random random;
    EdgeArray graph{n, {}};
    for (int i = 0; i < n * edgesPerNode; ++i) {
        const int source = random.below(n);
        graph.add(source, random.below(n));
    }
    return graph;
}

// A square grid with edges to the right and down; n is rounded down to a square.
inline EdgeArray gridGraph(int n) {
    int side = 1;
    while ((side + 1) * (side + 1) <= n) ++side;
    EdgeArray graph{side * side, {}};
    for (int row = 0; row < side; ++row) {
        for (int column = 0; column < side; ++column) {
            const int node = row * side + column;
            if (column + 1 < side) graph.add(node, node + 1);
            if (row + 1 < side) graph.add(node, node + side);
        }
    }
    return graph;
}

// Preferential attachment: every node sends edges to ends of earlier edges, so degrees follow a power law
// and the first nodes are hubs. Every other edge is turned around.
inline EdgeArray powerLawGraph(int n, int edgesPerNode = 5) {
    Random random;
    EdgeArray graph{n, {}};
    for (int node = 1; node < n; ++node) {
        for (int i = 0; i < edgesPerNode; ++i) {
            int other = random.below(node);
            if (graph.size() > 0 && (random.next() & 3U) != 0) {
                const auto& edge = graph.edges[static_cast<std::size_t>(random.below(graph.size()))];
                other = (random.next() & 1U) != 0 ? edge.first : edge.second;
            }
            if (i % 2 == 0) {
                graph.add(node, other);
            } else {
                graph.add(other, node);
            }
        }
    }
    return graph;
}

// From node 0 to all others.
inline EdgeArray starGraph(int n) {
    EdgeArray graph{n, {}};
    for (int node = 1; node < n; ++node) graph.add(0, node);
    return graph;
}

inline EdgeArray chainGraph(int n) {
    EdgeArray graph{n, {}};
    for (int node = 1; node < n; ++node) graph.add(node - 1, node);
    return graph;
}

// Many components, each a directed cycle of four nodes; n is rounded down to a multiple of four.
inline EdgeArray cyclesOfFour(int n) {
    EdgeArray graph{n / 4 * 4, {}};
    for (int node = 0; node < graph.nodes; node += 4) {
        for (int i = 0; i < 4; ++i) graph.add(node + i, node + (i + 1) % 4);
    }
    return graph;
}

// Layers of a hundred nodes; every node but those of the last layer sends edges to random nodes of the
// next one.
inline EdgeArray layeredDag(int n, int edgesPerNode = 5) {
    constexpr int kWidth = 100;
    Random random;
    EdgeArray graph{n, {}};
    for (int node = 0; node + kWidth < n; ++node) {
        const int next = (node / kWidth + 1) * kWidth;
        for (int i = 0; i < edgesPerNode; ++i)
            graph.add(node, next + random.below(std::min(kWidth, n - next)));
    }
    return graph;
}

// Random edges, each turned so that it follows one random order of the nodes.
inline EdgeArray randomDag(int n, int edgesPerNode = 5) {
    const std::vector<int> order = randomOrder(n, 3);
    EdgeArray graph = randomGraph(n, edgesPerNode);
    const auto isLoop = [](const auto& edge) { return edge.first == edge.second; };
    graph.edges.erase(std::remove_if(graph.edges.begin(), graph.edges.end(), isLoop), graph.edges.end());
    for (auto& [source, target] : graph.edges) {
        if (order[static_cast<std::size_t>(source)] > order[static_cast<std::size_t>(target)]) {
            std::swap(source, target);
        }
    }
    return graph;
}

// Of edges, in the order of their numbers.
inline std::vector<int> randomCosts(int count, int least = 1, int most = 1000) {
    Random random(11);
    std::vector<int> costs(static_cast<std::size_t>(count));
    for (int& cost : costs) cost = least + random.below(most - least + 1);
    return costs;
}

// Numbers of nodes between which something is asked.
using Pairs = std::vector<std::pair<int, int>>;

inline Pairs randomPairs(int n, int count = 50) {
    Random random(5);
    Pairs pairs(static_cast<std::size_t>(count));
    for (auto& [from, to] : pairs) {
        from = random.below(n);
        to = random.below(n);
    }
    return pairs;
}

struct NamedFamily {
    const char* name;
    EdgeArray (*make)(int n);
    bool isAcyclic = false;
};

inline constexpr NamedFamily kFamilies[] = {
    {"random", [](int n) { return randomGraph(n); }},
    {"grid", gridGraph, true},
    {"powerlaw", [](int n) { return powerLawGraph(n); }},
    {"star", starGraph, true},
    {"chain", chainGraph, true},
    {"cycles", cyclesOfFour},
    {"layered", [](int n) { return layeredDag(n); }, true},
};

}  // namespace bench
