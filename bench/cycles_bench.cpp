// Breaking cycles: the topological heuristic and cycle-breaking edge detection, beside a plain greedy
// numbering. Avoiding them: a new cycle test before each addition to a graph.
//
//   cycles_bench                                   all rows
//   cycles_bench --benchmark_filter='quality2/'    one method on all families
//   cycles_bench --large                           graphs of 10^6 nodes too
//
// Rows are named method/family/n and report the fastest processor time per edge (ns_per_edge), the number of
// edges broken, self-loops left out, and that number in per cent of the edges.
//   heuristic             the numbering of the topological heuristic
//   quality0 .. quality2  the detection, the working copy included
//   greedy                sources first, sinks last, in between the node with the greatest surplus of
//                         out-edges (Eades, Lin and Smyth 1993), on arrays and in linear time
//   addition              tests of 5 n additions to a graph of n nodes without edges, in microseconds for
//   each
//                         test alone (us_per_test); its families say which edges come:
//                           hidden   those of a random graph without cycles, in random order
//                           turned   random ones, turned around when they would close a cycle
//                         and for each test objects are made anew (rv_fresh) or used again (rv_reused)
// Every answer is checked: reversing the broken edges leaves no cycle, and additions close none.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

namespace {

using bench::EdgeArray;

constexpr const char* kPerEdge = "ns_per_edge";

// An edge between every two nodes, in random direction; so many nodes that there are about 5n edges.
EdgeArray tournament(int n) {
    bench::Random random;
    EdgeArray graph;
    while ((graph.nodes + 1) * (graph.nodes + 1) <= 10 * n) ++graph.nodes;
    for (int a = 0; a < graph.nodes; ++a) {
        for (int b = a + 1; b < graph.nodes; ++b)
            (random.next() & 1U) != 0 ? graph.add(a, b) : graph.add(b, a);
    }
    return graph;
}

// Rings of ten nodes, of which ten are linked into a ring, and ten such rings again, and so on.
EdgeArray ringsOfRings(int n) {
    EdgeArray graph{n, {}};
    for (int step = 1; step < n; step *= 10) {
        for (int node = 0; node < n; node += step) {
            const int ring = node / (10 * step) * 10 * step;
            const int next = ring + (node - ring + step) % (10 * step);
            if (next < n) graph.add(node, next);
        }
    }
    return graph;
}

// A random tree, each edge in both directions.
EdgeArray oppositeTree(int n) {
    bench::Random random;
    EdgeArray graph{n, {}};
    for (int node = 1; node < n; ++node) {
        const int parent = random.below(node);
        graph.add(parent, node);
        graph.add(node, parent);
    }
    return graph;
}

// A square grid, each edge in both directions.
EdgeArray oppositeGrid(int n) {
    EdgeArray graph = bench::gridGraph(n);
    for (int i = 0, size = graph.size(); i < size; ++i) {
        const auto [source, target] = graph.edges[static_cast<std::size_t>(i)];
        graph.add(target, source);
    }
    return graph;
}

EdgeArray ring(int n) {
    EdgeArray graph = bench::chainGraph(n);
    graph.add(n - 1, 0);
    return graph;
}

// Pairs of nodes with an edge each way: as many components.
EdgeArray pairs(int n) {
    EdgeArray graph{n / 2 * 2, {}};
    for (int node = 0; node < graph.nodes; node += 2) {
        graph.add(node, node + 1);
        graph.add(node + 1, node);
    }
    return graph;
}

constexpr bench::NamedFamily kFamilies[] = {
    {"random2", [](int n) { return bench::randomGraph(n, 2); }},
    {"random5", [](int n) { return bench::randomGraph(n, 5); }},
    {"tournament", tournament},
    {"rings", ringsOfRings},
    {"ring", ring},
    {"pairs", pairs},
    {"opposite_tree", oppositeTree},
    {"opposite_grid", oppositeGrid},
};

// Whether the edges that are not loops, some of them turned, form no cycle.
bool isAcyclic(const EdgeArray& graph, const std::vector<bool>& turned) {
    std::vector<std::vector<int>> next(static_cast<std::size_t>(graph.nodes));
    std::vector<int> inEdges(next.size());
    for (std::size_t i = 0; i < graph.edges.size(); ++i) {
        auto [source, target] = graph.edges[i];
        if (source == target) continue;
        if (turned[i]) std::swap(source, target);
        next[static_cast<std::size_t>(source)].push_back(target);
        ++inEdges[static_cast<std::size_t>(target)];
    }
    std::vector<int> order;
    for (int node = 0; node < graph.nodes; ++node) {
        if (inEdges[static_cast<std::size_t>(node)] == 0) order.push_back(node);
    }
    for (std::size_t i = 0; i < order.size(); ++i) {
        for (const int target : next[static_cast<std::size_t>(order[i])]) {
            if (--inEdges[static_cast<std::size_t>(target)] == 0) order.push_back(target);
        }
    }
    return order.size() == next.size();
}

void report(benchmark::State& state, const EdgeArray& graph, const std::vector<bool>& broken) {
    if (!isAcyclic(graph, broken)) std::abort();
    long count = 0;
    for (const bool each : broken) count += each ? 1 : 0;
    state.counters["broken"] = static_cast<double>(count);
    state.counters["per_cent"] = 100.0 * static_cast<double>(count) / graph.size();
}

// This library

void runHeuristic(benchmark::State& state, const EdgeArray& array) {
    const bench::RvGraph subject(array);
    RVTopologicalHeuristicAlgorithm heuristic;
    RVTopologicalHeuristicInputData input(subject.graph.get());
    RVTopologicalHeuristicOutputData output;
    heuristic.pInputData(&input);
    heuristic.pOutputData(&output);
    bench::measure(state, kPerEdge, array.size(), [&] {
        if (heuristic.run() != RV_NO_ERROR) std::abort();
    });
    std::vector<bool> broken;
    for (const RVEdge* edge : *subject.graph->pEdgeList())
        broken.push_back(output.orderNumber(edge->pSourceNode()) > output.orderNumber(edge->pTargetNode()));
    report(state, array, broken);
}

void runDetection(benchmark::State& state, const EdgeArray& array, int quality) {
    const bench::RvGraph subject(array);
    RVCycleBreakingEdgeDetectionAlgorithm detection;
    RVCycleBreakingEdgeDetectionInputData input(subject.graph.get());
    RVCycleBreakingEdgeDetectionOutputData output;
    input.quality(quality);
    detection.pInputData(&input);
    detection.pOutputData(&output);
    bench::measure(state, kPerEdge, array.size(), [&] {
        if (detection.run() != RV_NO_ERROR) std::abort();
    });
    std::vector<bool> broken;
    for (RVEdge* edge : *subject.graph->pEdgeList()) broken.push_back(output.backwardEdge(edge) != 0);
    report(state, array, broken);
}

// The greedy numbering

class Greedy {
public:
    explicit Greedy(const EdgeArray& graph)
        : m_size(static_cast<std::size_t>(graph.nodes)),
          m_out(m_size + 1),
          m_in(m_size + 1),
          m_surplus(m_size),
          m_outDegrees(m_size),
          m_inDegrees(m_size),
          m_place(m_size),
          m_previous(m_size),
          m_following(m_size) {
        for (const auto& [source, target] : graph.edges) {
            if (source == target) continue;
            ++m_outDegrees[at(source)];
            ++m_inDegrees[at(target)];
        }
        for (std::size_t i = 0; i < m_size; ++i) {
            m_out[i + 1] = m_out[i] + at(m_outDegrees[i]);
            m_in[i + 1] = m_in[i] + at(m_inDegrees[i]);
            m_most = std::max({m_most, m_outDegrees[i], m_inDegrees[i]});
        }
        std::vector<std::size_t> nextOut(m_out);
        std::vector<std::size_t> nextIn(m_in);
        m_targets.resize(m_out.back());
        m_sources.resize(m_in.back());
        for (const auto& [source, target] : graph.edges) {
            if (source == target) continue;
            m_targets[nextOut[at(source)]++] = target;
            m_sources[nextIn[at(target)]++] = source;
        }
    }

    // The place of every node.
    std::vector<int> run() {
        m_heads.assign(at(2 * m_most + 3), -1);
        for (std::size_t i = 0; i < m_size; ++i) enter(static_cast<int>(i));
        int first = 0;
        int last = static_cast<int>(m_size);
        while (first < last) {
            if (m_heads[0] >= 0) {
                take(m_heads[0], --last);
            } else if (m_heads.back() >= 0) {
                take(m_heads.back(), first++);
            } else {
                while (m_heads[at(m_best)] < 0) --m_best;
                take(m_heads[at(m_best)], first++);
            }
        }
        return m_place;
    }

private:
    static std::size_t at(int i) { return static_cast<std::size_t>(i); }
    // Buckets: sinks, surpluses in ascending order, sources.
    int bucketOf(int node) const {
        if (m_outDegrees[at(node)] == 0) return 0;
        if (m_inDegrees[at(node)] == 0) return 2 * m_most + 2;
        return m_outDegrees[at(node)] - m_inDegrees[at(node)] + m_most + 1;
    }
    void enter(int node) {
        const int bucket = bucketOf(node);
        int& head = m_heads[at(bucket)];
        m_surplus[at(node)] = bucket;
        m_previous[at(node)] = -1;
        m_following[at(node)] = head;
        if (head >= 0) m_previous[at(head)] = node;
        head = node;
        if (bucket < 2 * m_most + 2) m_best = std::max(m_best, bucket);
    }
    void leave(int node) {
        const int previous = m_previous[at(node)];
        const int following = m_following[at(node)];
        (previous < 0 ? m_heads[at(m_surplus[at(node)])] : m_following[at(previous)]) = following;
        if (following >= 0) m_previous[at(following)] = previous;
    }
    void take(int node, int place) {
        leave(node);
        m_place[at(node)] = place;
        m_surplus[at(node)] = -1;
        const auto lose = [&](int other, std::vector<int>& degrees) {
            if (m_surplus[at(other)] < 0) return;
            leave(other);
            --degrees[at(other)];
            enter(other);
        };
        for (std::size_t i = m_out[at(node)]; i < m_out[at(node) + 1]; ++i) lose(m_targets[i], m_inDegrees);
        for (std::size_t i = m_in[at(node)]; i < m_in[at(node) + 1]; ++i) lose(m_sources[i], m_outDegrees);
    }

    std::size_t m_size;
    std::vector<std::size_t> m_out;  // by node: where its edges begin
    std::vector<std::size_t> m_in;
    std::vector<int> m_targets;
    std::vector<int> m_sources;
    std::vector<int> m_surplus;  // the node's bucket, -1 when it has a place
    std::vector<int> m_outDegrees;
    std::vector<int> m_inDegrees;
    std::vector<int> m_place;
    std::vector<int> m_previous;  // in the bucket
    std::vector<int> m_following;
    std::vector<int> m_heads;
    int m_most = 0;
    int m_best = 0;
};

void runGreedy(benchmark::State& state, const EdgeArray& array) {
    std::vector<int> places;
    bench::measure(state, kPerEdge, array.size(), [&] { places = Greedy(array).run(); });
    std::vector<bool> broken;
    for (const auto& [source, target] : array.edges)
        broken.push_back(places[static_cast<std::size_t>(source)] > places[static_cast<std::size_t>(target)]);
    report(state, array, broken);
}

// Additions with tests

class CycleTest {
public:
    explicit CycleTest(const bench::RvGraph& rv) : m_input(rv.graph.get()) {
        m_test.pInputData(&m_input);
        m_test.pOutputData(&m_output);
    }
    bool closesCycle(RVNode* source, RVNode* target) {
        m_input.pSourceNode(source);
        m_input.pTargetNode(target);
        if (m_test.run() != RV_NO_ERROR) std::abort();
        return m_output.willCreateCycle() != 0;
    }

private:
    RVNewCycleTestInputData m_input;
    RVNewCycleTestOutputData m_output;
    RVNewCycleTestAlgorithm m_test;
};

EdgeArray nodesOf(const EdgeArray& array) { return {array.nodes, {}}; }

// Adds all edges, those that would close a cycle turned around, and gives them as they were added.
EdgeArray addTested(const bench::RvGraph& rv, const EdgeArray& wanted, bool reuses) {
    EdgeArray added = nodesOf(wanted);
    CycleTest reused(rv);
    for (auto [source, target] : wanted.edges) {
        RVNode* from = rv.nodes[static_cast<std::size_t>(source)];
        RVNode* to = rv.nodes[static_cast<std::size_t>(target)];
        if (from == to) continue;
        if (reuses ? reused.closesCycle(from, to) : CycleTest(rv).closesCycle(from, to)) {
            std::swap(source, target);
            std::swap(from, to);
        }
        rv.graph->addEdge(from, to, 0);
        added.add(source, target);
    }
    return added;
}

// What the same additions take without tests is taken off.
void runAdditions(benchmark::State& state, const EdgeArray& wanted, bool reuses) {
    EdgeArray added;
    for (auto _ : state) {
        const double tested = bench::fewestSeconds([&] {
            const bench::RvGraph rv(nodesOf(wanted));
            return bench::secondsOf([&] { added = addTested(rv, wanted, reuses); });
        });
        const double untested = bench::fewestSeconds([&] {
            const bench::RvGraph rv(nodesOf(wanted));
            return bench::secondsOf([&] { bench::addEdges(*rv.graph, rv.nodes, added); });
        });
        state.SetIterationTime(tested);
        state.counters["us_per_test"] = (tested - untested) * 1e6 / wanted.size();
    }
    if (!isAcyclic(added, std::vector<bool>(added.edges.size()))) std::abort();
}

constexpr bench::NamedFamily kAdditions[] = {
    {"hidden", [](int n) { return bench::randomDag(n); }},
    {"turned", [](int n) { return bench::randomGraph(n); }},
};

void registerRows(bool large) {
    for (const bench::NamedFamily& family : kAdditions) {
        for (const bool reuses : {false, true}) {
            const std::string row =
                std::string("addition/") + family.name + (reuses ? "/rv_reused" : "/rv_fresh");
            const auto make = family.make;
            bench::add(row, 10'000, [=](benchmark::State& s) { runAdditions(s, make(10'000), reuses); });
        }
    }
    for (const bench::NamedFamily& family : kFamilies) {
        for (int n = 1000; n <= (large ? 1000000 : 100000); n *= 10) {
            const std::string row = std::string("/") + family.name;
            const auto make = family.make;
            bench::add("heuristic" + row, n, [=](benchmark::State& s) { runHeuristic(s, make(n)); });
            for (int quality = 0; quality <= 2; ++quality) {
                bench::add("quality" + std::to_string(quality) + row, n,
                           [=](benchmark::State& s) { runDetection(s, make(n), quality); });
            }
            bench::add("greedy" + row, n, [=](benchmark::State& s) { runGreedy(s, make(n)); });
        }
    }
}

}  // namespace

int main(int argc, char** argv) {
    registerRows(bench::takeOption(argc, argv, "--large"));
    return bench::runRows(argc, argv);
}
