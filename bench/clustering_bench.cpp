// Clustering.
//
//   clustering_bench                                    all rows
//   clustering_bench --benchmark_filter='ratiocut/grid'  one method on one family of graphs
//
// Rows are named method/family/n and report processor times.
//   ratiocut  one bipartitioning: nanoseconds per edge and iteration (ns_per_edge), milliseconds per
//   iteration
//             and by what factor they grow when n doubles, the number of iterations, the ratio that was found
//             and the number of edges that are cut; of planted partitions, by how much the ratio exceeds that
//             of the plan
//   cluster   clustering from one end to the other: microseconds per node, and the number of clusters; with
//             /constrained ten nodes in a hundred are tied in pairs, as many are kept apart in pairs, and one
//             in a hundred belongs to a complete cluster of twenty
//   alone     the same for nodes without edges that are merged into ten clusters
//   ties      the same for n same-cluster constraints on neighbours of a chain
//
// Families: grid (a square grid with one diagonal in each cell), geometric (points of a square, with edges
// between those that are near), planted (two halves, each a random tree and random edges, and in all one edge
// to ten nodes between them).

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdlib>
#include <deque>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

namespace {

using bench::EdgeArray;

EdgeArray trianglesGrid(int n) {
    EdgeArray graph = bench::gridGraph(n);
    const int side = static_cast<int>(std::lround(std::sqrt(graph.nodes)));
    for (int row = 0; row + 1 < side; ++row) {
        for (int column = 0; column + 1 < side; ++column) {
            graph.add(row * side + column, (row + 1) * side + column + 1);
        }
    }
    return graph;
}

// One point in each cell of a square grid, at random.
EdgeArray geometricGraph(int n) {
    constexpr double kReach = 1.6;
    bench::Random random(3);
    const int side = static_cast<int>(std::sqrt(n));
    std::vector<double> x;
    std::vector<double> y;
    const auto within = [&] { return static_cast<double>(random.below(1 << 20)) / (1 << 20); };
    EdgeArray graph{side * side, {}};
    for (int node = 0; node < side * side; ++node) {
        x.push_back(node % side + within());
        y.push_back(node / side + within());
        for (int other = std::max(0, node - 2 * side - 2); other < node; ++other) {
            const auto i = static_cast<std::size_t>(other);
            if (std::hypot(x[i] - x.back(), y[i] - y.back()) < kReach) graph.add(other, node);
        }
    }
    return graph;
}

EdgeArray plantedGraph(int n) {
    bench::Random random(9);
    EdgeArray graph{n, {}};
    const int half = n / 2;
    for (int node = 1; node < half; ++node) {
        graph.add(random.below(node), node);
        graph.add(half + random.below(node), half + node);
    }
    for (int i = 0; i < 2 * n; ++i) {
        const int side = half * (i % 2);
        const int other = i % 20 == 0 ? half - side : side;
        const int source = side + random.below(half);
        graph.add(source, other + random.below(half));
    }
    return graph;
}

struct Family {
    const char* name;
    EdgeArray (*make)(int n);
};
constexpr Family kFamilies[] = {
    {"grid", trianglesGrid}, {"geometric", geometricGraph}, {"planted", plantedGraph}};

void runRatioCut(benchmark::State& state, const Family& family, int n) {
    const EdgeArray array = family.make(n);
    const bench::RvGraph rv(array);
    RVRatioCutBipartitioningInputData input(rv.graph.get());
    RVRatioCutBipartitioningOutputData output;
    RVRatioCutBipartitioningAlgorithm algorithm;
    algorithm.pInputData(&input);
    algorithm.pOutputData(&output);
    bench::measure(state, "ns_per_edge", array.size(), [&] {
        if (algorithm.run() != RV_NO_ERROR) std::abort();
    });
    auto& counters = state.counters;
    counters["iterations"] = algorithm.iterations();
    counters["ms_per_iteration"] = counters["ns_per_edge"] * array.size() * 1e-6 / algorithm.iterations();
    counters["ns_per_edge"] = counters["ns_per_edge"] / algorithm.iterations();
    static std::map<std::string, std::pair<int, double>> previous;  // by family: nodes, time of an iteration
    const auto last = previous.find(family.name);
    const double time = counters["ms_per_iteration"];
    if (last != previous.end()) {
        const auto [nodes, before] = last->second;
        const double doublings = std::log2(static_cast<double>(array.nodes) / nodes);
        counters["growth_per_doubling"] = std::pow(time / before, 1 / doublings);
    }
    previous[family.name] = {array.nodes, time};
    counters["ratio"] = output.totalCost();
    const double first = RVDList::castDown(output.pClusters()->pFirstObject())->length();
    counters["cut"] = output.totalCost() * first * (array.nodes - first);
    if (std::string(family.name) == "planted") {
        const double half = array.nodes / 2;
        counters["worse_than_plan"] = output.totalCost() * half * half / (2.0 * n / 20) - 1;
    }
}

enum class Wanted { nothing, constraints, ties };

void runClustering(benchmark::State& state, const EdgeArray& array, Wanted wanted, int most) {
    const bench::RvGraph rv(array);
    RVClusteringInputData input(rv.graph.get());
    RVClusteringOutputData output;
    RVClusteringAlgorithm algorithm;
    algorithm.pInputData(&input);
    algorithm.pOutputData(&output);
    input.maxClusterCount(most);
    std::deque<RVClusteringConstraint> constraints;
    const auto constrain = [&](RVClusteringConstraintTypeEnum type, std::initializer_list<int> nodes) {
        RVClusteringConstraint& constraint = constraints.emplace_back(0, nullptr);
        constraint.type(type);
        for (const int node : nodes) constraint.addNode(rv.nodes[static_cast<std::size_t>(node)]);
        input.addConstraint(&constraint);
        return &constraint;
    };
    for (int node = 0; wanted == Wanted::ties && node + 1 < array.nodes; ++node) {
        constrain(RVSameClusterConstraint, {node, node + 1});
    }
    bench::Random random(21);
    RVClusteringConstraint* complete = nullptr;  // of twenty nodes
    for (int i = 0; wanted == Wanted::constraints && i < array.nodes / 20; ++i) {
        const auto any = [&] { return random.below(array.nodes - 1); };
        const int node = any();
        constrain(RVSameClusterConstraint, {node, node + 1});
        constrain(RVDifferentClusterConstraint, {node, (node + array.nodes / 2) % array.nodes});
        if (i % 100 == 0) complete = constrain(RVCompleteClusterConstraint, {});
        if (i % 5 == 0) complete->addNode(rv.nodes[static_cast<std::size_t>(i * 20)]);
    }
    bench::measure(state, "us_per_node", array.nodes, [&] {
        if (algorithm.run() != RV_NO_ERROR) std::abort();
    });
    state.counters["us_per_node"] = state.counters["us_per_node"] * 1e-3;
    state.counters["clusters"] = output.pClusters()->length();
    int fulfilled = 0;
    for (const RVClusteringConstraint& constraint : constraints) fulfilled += constraint.fulfilled();
    state.counters["constraints"] = static_cast<double>(constraints.size());
    state.counters["fulfilled"] = fulfilled;
}

void addClustering(const std::string& name, int n, EdgeArray (*make)(int n), Wanted wanted, int most) {
    bench::add(name, n, [=](benchmark::State& state) { runClustering(state, make(n), wanted, most); });
}

EdgeArray noEdges(int n) { return {n, {}}; }

}  // namespace

int main(int argc, char** argv) {
    for (const Family& family : kFamilies) {
        for (const int n : {1000, 2000, 4000, 10000, 20000, 40000, 100000}) {
            bench::add(std::string("ratiocut/") + family.name, n,
                       [&family, n](benchmark::State& state) { runRatioCut(state, family, n); });
        }
    }
    constexpr int kMany = RVClusteringInputData::kManyClusters;
    for (const int n : {1000, 10000, 100000}) {
        for (const Family& family : kFamilies) {
            const std::string name = std::string("cluster/") + family.name;
            addClustering(name, n, family.make, Wanted::nothing, kMany);
            addClustering(name + "/constrained", n, family.make, Wanted::constraints, kMany);
        }
        addClustering("alone", n, noEdges, Wanted::nothing, 10);
        addClustering("ties", n, bench::chainGraph, Wanted::ties, kMany);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
