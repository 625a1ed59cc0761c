// Shortest paths and reachable nodes beside the same work in Boost.Graph and LEMON.
//
//   shortestpaths_bench                                       everything at 10^4 and 10^5 nodes
//   shortestpaths_bench --benchmark_filter='dijkstra/random'  one method on one family of graphs
//   shortestpaths_bench --large --benchmark_filter=...        10^6 nodes too
//
// Rows are named algorithm/family/library/n and report the fastest processor time per edge (ns_per_edge).
//   dijkstra     distances of all nodes from node 0 and the path to the last one; boost with copy_graph;
//                rv_cold after a change of the graph, rv_hooks by hooks
//   equal        the same with all costs 1
//   pair         a cheapest path between two nodes by Dijkstra's method, over some pairs
//   service_pair the same by the service
//   reachable    all nodes within an unlimited range of costs, on the caller's graph; boost Dijkstra without
//                a copy
//   hops         all nodes without a range; boost breadth-first search without a copy
//   service      a cheapest path from the first to the last node of a graph without cycles and with negative
//                costs; boost dag_shortest_paths with copy_graph
//   unique       the unique path test from node 0 to the last one
//   single       single-source shortest paths from node 0; boost Dijkstra with copy_graph
//   bellman_ford the same with some negative costs; boost bellman_ford_shortest_paths with copy_graph
//   sorted       the path graph of all paths from node 0 to the last one, with its size per edge of the graph
//   enumerate    the 10^5 cheapest of these paths, in ns per path: the walk alone, and with their edges
//   ten          path graph and ten cheapest paths of a small graph, in microseconds
//   all_pairs    all pairs of random graphs of some hundred nodes, in ns per node cubed (ns_per_n3)
// Phases/.../n gives the share of each step of a Dijkstra run, in ns per edge.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <limits>
#include <string>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/bellman_ford_shortest_paths.hpp>
#include <boost/graph/breadth_first_search.hpp>
#include <boost/graph/copy.hpp>
#include <boost/graph/dag_shortest_paths.hpp>
#include <boost/graph/dijkstra_shortest_paths.hpp>
#include <boost/graph/floyd_warshall_shortest.hpp>
#include <boost/property_map/property_map.hpp>
#endif
#ifdef RV_BENCH_LEMON
#include "lemon_paths.h"
#endif

namespace {

using bench::EdgeArray;
using bench::kFamilies;
using bench::NamedFamily;

constexpr const char* kPerEdge = "ns_per_edge";

// A graph with costs.
struct Subject {
    EdgeArray array;
    std::vector<int> costs;
};

Subject withCosts(EdgeArray array, int least, int most) {
    std::vector<int> costs = bench::randomCosts(array.size(), least, most);
    return {std::move(array), std::move(costs)};
}

// Some costs are negative, but no cycle is: each edge costs what is left of going up or down between heights.
Subject withHeights(EdgeArray array) {
    bench::Random random(12);
    std::vector<int> heights;
    for (int i = 0; i < array.nodes; ++i) heights.push_back(random.below(300));
    std::vector<int> costs;
    for (const auto& [source, target] : array.edges) {
        costs.push_back(1 + random.below(1000) + heights[static_cast<std::size_t>(source)] -
                        heights[static_cast<std::size_t>(target)]);
    }
    return {std::move(array), std::move(costs)};
}

// This library

struct RvSubject : bench::RvGraph {
    explicit RvSubject(const Subject& subject) : RvGraph(subject.array), costs(subject.costs) {}

    template <class Input>
    void describe(Input& input) const {
        if constexpr (requires(RVEdge * edge) { input.cost(edge, 0); }) setCosts(input, costs);
        if constexpr (requires { input.pStartNode(nodes.front()); }) input.pStartNode(nodes.front());
        if constexpr (requires { input.pFinishNode(nodes.back()); }) input.pFinishNode(nodes.back());
    }
    const std::vector<int>& costs;
};

// Runs of an algorithm on an input that has been filled before.
template <class Algorithm, class Input, class Output, class Set>
void runRv(benchmark::State& state, const Subject& subject, const char* unit, double items, Set set,
           bool isCold = false) {
    const RvSubject rv(subject);
    Input input(rv.graph.get());
    rv.describe(input);
    Algorithm algorithm;
    algorithm.pInputData(&input);
    set(algorithm, input);
    rv.measure(state, unit, items, isCold, [&] {
        Output output;
        algorithm.pOutputData(&output);
        if (algorithm.run() != RV_NO_ERROR) std::abort();
    });
}
constexpr auto kNothing = [](auto&, auto&) {};
template <class Algorithm>
struct OnHooks : Algorithm {};

// Cheapest paths between some pairs of nodes, one after the other; per pair and edge.
template <class Algorithm, class Output>
void runPairs(benchmark::State& state, const Subject& subject, bool isCold) {
    const bench::Pairs pairs = bench::randomPairs(subject.array.nodes);
    const RvSubject rv(subject);
    RVShortestPathsInputData input(rv.graph.get());
    rv.describe(input);
    Algorithm algorithm;
    algorithm.pInputData(&input);
    const double items = subject.array.size() * static_cast<double>(pairs.size());
    bench::measureRounds(state, kPerEdge, items, [&] {
        double seconds = 0;
        for (const auto& [from, to] : pairs) {
            input.pStartNode(rv.nodes[static_cast<std::size_t>(from)]);
            input.pFinishNode(rv.nodes[static_cast<std::size_t>(to)]);
            if (isCold) rv.change();
            seconds += bench::secondsOf([&] {
                Output output;
                algorithm.pOutputData(&output);
                if (algorithm.run() != RV_NO_ERROR) std::abort();
            });
        }
        return seconds;
    });
}

void phases(benchmark::State& state, const Subject& subject) {
    const RvSubject rv(subject);
    bench::Phased<RVDijkstraAlgorithm> search;
    RVShortestPathsInputData input(rv.graph.get());
    RVDijkstraOutputData output;
    rv.describe(input);
    search.storeDistances(1);
    search.pInputData(&input);
    search.pOutputData(&output);
    search.measure(state, subject.array.size());
}

// The path graph of a subject; the next run, or the end, disposes of it.
struct PathGraph {
    explicit PathGraph(const Subject& subject) : rv(subject), input(rv.graph.get()) {
        rv.describe(input);
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
    }
    ~PathGraph() { output.discardPathGraph(); }
    PathGraph(const PathGraph&) = delete;
    PathGraph& operator=(const PathGraph&) = delete;
    void run() {
        output.discardPathGraph();
        if (algorithm.run() != RV_NO_ERROR || output.pathExists() == 0) std::abort();
    }

    RvSubject rv;
    RVSortedPathsInputData input;
    RVSortedPathsOutputData output;
    RVSortedPathsAlgorithm algorithm;
};

void buildPathGraph(benchmark::State& state, const Subject& subject) {
    PathGraph paths(subject);
    bench::measure(state, kPerEdge, subject.array.size(), [&] { paths.run(); });
    const double edges = subject.array.size();
    state.counters["path_nodes_per_edge"] = paths.output.pPathGraph()->numberOfNodes() / edges;
    state.counters["path_edges_per_edge"] = paths.output.pPathGraph()->numberOfEdges() / edges;
}

void enumeratePaths(benchmark::State& state, const Subject& subject, bool withEdges) {
    constexpr int kPaths = 100'000;
    PathGraph paths(subject);
    paths.run();
    bench::measure(state, "ns_per_path", kPaths, [&] {
        RVSortedPathsEnumerator path(&paths.output);
        RVEdgeDList edges;
        while (path.pathNumber() < kPaths && path.next()) {
            if (withEdges) path.buildEdgeList(edges);
        }
        benchmark::DoNotOptimize(path.totalCost());
    });
}

void findTenPaths(benchmark::State& state, const Subject& subject) {
    PathGraph paths(subject);
    bench::measure(state, "microseconds", 1e3, [&] {
        paths.run();
        RVSortedPathsEnumerator path(&paths.output);
        RVEdgeDList edges;
        while (path.pathNumber() < 10 && path.next()) path.buildEdgeList(edges);
        benchmark::DoNotOptimize(edges.length());
    });
}

// Boost.Graph

#ifdef RV_BENCH_BOOST

template <class Selector>
using Graph = bench::WeightedBoost<Selector, boost::bidirectionalS>;

template <class Selector>
struct Distances {
    using Node = typename boost::graph_traits<Graph<Selector>>::vertex_descriptor;
    explicit Distances(const Graph<Selector>& graph)
        : distances(graph, std::numeric_limits<int>::max()), parents(graph, Node()) {}
    bench::ByNode<Graph<Selector>, int> distances;
    bench::ByNode<Graph<Selector>, Node> parents;
};

template <class Selector>
void boostDijkstra(const Graph<Selector>& graph) {
    Distances<Selector> results(graph);
    boost::dijkstra_shortest_paths(
        graph, *boost::vertices(graph).first,
        boost::distance_map(results.distances.map()).predecessor_map(results.parents.map()));
}

template <class Selector>
void boostDag(const Graph<Selector>& graph) {
    Distances<Selector> results(graph);
    bench::ByNode<Graph<Selector>, boost::default_color_type> colors(graph, boost::white_color);
    boost::dag_shortest_paths(graph, *boost::vertices(graph).first,
                              boost::distance_map(results.distances.map())
                                  .predecessor_map(results.parents.map())
                                  .color_map(colors.map()));
}

template <class Selector>
void boostBellmanFord(const Graph<Selector>& graph) {
    Distances<Selector> results(graph);
    const auto start = *boost::vertices(graph).first;
    auto distances = results.distances.map();
    boost::put(distances, start, 0);
    boost::bellman_ford_shortest_paths(graph, static_cast<int>(boost::num_vertices(graph)),
                                       boost::distance_map(distances).predecessor_map(results.parents.map()));
}

template <class Selector>
void boostHops(const Graph<Selector>& graph) {
    bench::ByNode<Graph<Selector>, boost::default_color_type> colors(graph, boost::white_color);
    boost::breadth_first_search(graph, *boost::vertices(graph).first, boost::color_map(colors.map()));
}

template <class Selector>
void runBoost(benchmark::State& state, const Subject& subject, bool withCopy,
              void (*work)(const Graph<Selector>&)) {
    const auto original = bench::buildBoost<Graph<Selector>>(subject.array, subject.costs);
    bench::measure(state, kPerEdge, subject.array.size(), [&] {
        if (!withCopy) {
            work(original);
            return;
        }
        Graph<Selector> copy;
        boost::copy_graph(original, copy);
        work(copy);
    });
}

template <class Selector>
void runBoostAllPairs(benchmark::State& state, const Subject& subject, double items) {
    const auto graph = bench::buildBoost<Graph<Selector>>(subject.array, subject.costs);
    const auto n = boost::num_vertices(graph);
    const auto index = boost::get(boost::vertex_index, graph);
    std::vector<std::vector<int>> rows(n, std::vector<int>(n));
    using Row = decltype(boost::make_iterator_property_map(rows[0].begin(), index));
    std::vector<Row> matrix;
    for (auto& row : rows) matrix.push_back(boost::make_iterator_property_map(row.begin(), index));
    auto distances = boost::make_iterator_property_map(matrix.begin(), index);
    bench::measure(state, "ns_per_n3", items,
                   [&] { boost::floyd_warshall_all_pairs_shortest_paths(graph, distances); });
}

template <class ListWork, class VectorWork>
void addBoostRows(const std::string& name, int n, Subject (*make)(const NamedFamily&, int),
                  const NamedFamily& family, bool withCopy, ListWork listWork, VectorWork vectorWork) {
    bench::add(name + "boost_listS", n, [=, &family](benchmark::State& s) {
        runBoost<boost::listS>(s, make(family, n), withCopy, listWork);
    });
    bench::add(name + "boost_vecS", n, [=, &family](benchmark::State& s) {
        runBoost<boost::vecS>(s, make(family, n), withCopy, vectorWork);
    });
}

#endif

// Rows

Subject various(const NamedFamily& family, int n) { return withCosts(family.make(n), 1, 1000); }
Subject equal(const NamedFamily& family, int n) { return withCosts(family.make(n), 1, 1); }
Subject hilly(const NamedFamily& family, int n) { return withHeights(family.make(n)); }
Subject withNegative(const NamedFamily& family, int n) { return withCosts(family.make(n), -100, 900); }

void addDijkstraRows(const char* algorithm, const NamedFamily& family, int n,
                     Subject (*make)(const NamedFamily&, int)) {
    const std::string name = std::string(algorithm) + "/" + family.name + "/";
    const auto addRow = [&]<class Algorithm>(Algorithm*, const char* library, bool isCold) {
        bench::add(name + library, n, [=, &family](benchmark::State& s) {
            const Subject subject = make(family, n);
            runRv<Algorithm, RVShortestPathsInputData, RVDijkstraOutputData>(
                s, subject, kPerEdge, subject.array.size(),
                [](auto& search, auto&) { search.storeDistances(1); }, isCold);
        });
    };
    RVDijkstraAlgorithm* const itself = nullptr;
    addRow(itself, "rv", false);
    addRow(itself, "rv_cold", true);
    addRow(static_cast<OnHooks<RVDijkstraAlgorithm>*>(nullptr), "rv_hooks", false);
#ifdef RV_BENCH_BOOST
    addBoostRows(name, n, make, family, true, boostDijkstra<boost::listS>, boostDijkstra<boost::vecS>);
#endif
#ifdef RV_BENCH_LEMON
    bench::add(name + "lemon", n, [=, &family](benchmark::State& s) {
        const Subject subject = make(family, n);
        bench::LemonPaths paths(subject.array, subject.costs);
        bench::measure(s, kPerEdge, subject.array.size(), [&] { paths.dijkstra(); });
    });
#endif
}

template <class Algorithm, class Output>
void addPairRows(const char* algorithm, const NamedFamily& family, int n) {
    const std::string name = std::string(algorithm) + "/" + family.name + "/";
    for (const bool isCold : {false, true}) {
        bench::add(name + (isCold ? "rv_cold" : "rv"), n, [=, &family](benchmark::State& s) {
            runPairs<Algorithm, Output>(s, various(family, n), isCold);
        });
    }
#ifdef RV_BENCH_LEMON
    bench::add(name + "lemon", n, [=, &family](benchmark::State& s) {
        const Subject subject = various(family, n);
        const bench::Pairs pairs = bench::randomPairs(n);
        bench::LemonPaths paths(subject.array, subject.costs);
        bench::measure(s, kPerEdge, subject.array.size() * static_cast<double>(pairs.size()),
                       [&] { benchmark::DoNotOptimize(paths.dijkstra(pairs)); });
    });
#endif
}

void addReachableRows(const NamedFamily& family, int n) {
    for (const bool hasCosts : {true, false}) {
        const std::string name = std::string(hasCosts ? "reachable/" : "hops/") + family.name + "/";
        bench::add(name + "rv", n, [=, &family](benchmark::State& s) {
            const Subject subject = various(family, n);
            runRv<RVReachableNodesAlgorithm, RVReachableNodesInputData, RVReachableNodesOutputData>(
                s, subject, kPerEdge, subject.array.size(), [=](auto&, auto& input) {
                    if (hasCosts) input.range(std::numeric_limits<int>::max());
                });
        });
#ifdef RV_BENCH_BOOST
        if (hasCosts) {
            addBoostRows(name, n, various, family, false, boostDijkstra<boost::listS>,
                         boostDijkstra<boost::vecS>);
        } else {
            addBoostRows(name, n, various, family, false, boostHops<boost::listS>, boostHops<boost::vecS>);
        }
#endif
    }
}

constexpr NamedFamily kAcyclicFamilies[] = {
    {"dag", [](int n) { return bench::randomDag(n); }},
    {"layered", [](int n) { return bench::layeredDag(n); }},
    {"grid", [](int n) { return bench::gridGraph(n); }},
};

void addServiceRows(const NamedFamily& family, int n) {
    const std::string name = std::string("service/") + family.name + "/";
    bench::add(name + "rv", n, [=, &family](benchmark::State& s) {
        const Subject subject = withNegative(family, n);
        runRv<RVShortestPathsAlgorithm, RVShortestPathsInputData, RVShortestPathsOutputData>(
            s, subject, kPerEdge, subject.array.size(), kNothing);
    });
#ifdef RV_BENCH_BOOST
    addBoostRows(name, n, withNegative, family, true, boostDag<boost::listS>, boostDag<boost::vecS>);
#endif
}

void addSingleSourceRows(const char* algorithm, const NamedFamily& family, int n,
                         Subject (*make)(const NamedFamily&, int), bool isNegative) {
    const std::string name = std::string(algorithm) + "/" + family.name + "/";
    for (const bool isCold : {false, true}) {
        bench::add(name + (isCold ? "rv_cold" : "rv"), n, [=, &family](benchmark::State& s) {
            const Subject subject = make(family, n);
            runRv<RVSingleSourceShortestPathsAlgorithm, RVSingleSourceShortestPathsInputData,
                  RVSingleSourceShortestPathsOutputData>(s, subject, kPerEdge, subject.array.size(), kNothing,
                                                         isCold);
        });
    }
#ifdef RV_BENCH_BOOST
    if (isNegative) {
        addBoostRows(name, n, make, family, true, boostBellmanFord<boost::listS>,
                     boostBellmanFord<boost::vecS>);
    } else {
        addBoostRows(name, n, make, family, true, boostDijkstra<boost::listS>, boostDijkstra<boost::vecS>);
    }
#endif
}

void addSortedPathsRows(const NamedFamily& family, int n) {
    const std::string name = std::string(family.name) + "/rv";
    bench::add("sorted/" + name, n,
               [=, &family](benchmark::State& s) { buildPathGraph(s, various(family, n)); });
    for (const bool withEdges : {false, true}) {
        bench::add((withEdges ? "enumerate_edges/" : "enumerate/") + name, n,
                   [=, &family](benchmark::State& s) { enumeratePaths(s, various(family, n), withEdges); });
    }
}

void addUniqueRow(const NamedFamily& family, int n) {
    bench::add(std::string("unique/") + family.name + "/rv", n, [=, &family](benchmark::State& s) {
        const Subject subject = various(family, n);
        runRv<RVUniquePathTestAlgorithm, RVUniquePathTestInputData, RVUniquePathTestOutputData>(
            s, subject, kPerEdge, subject.array.size(), kNothing);
    });
}

void addAllPairsRows(int n) {
    const double items = static_cast<double>(n) * n * n;
    bench::add("all_pairs/random/rv", n, [=](benchmark::State& s) {
        runRv<RVAllPairsShortestPathsAlgorithm, RVAllPairsShortestPathsInputData,
              RVAllPairsShortestPathsOutputData>(s, various(kFamilies[0], n), "ns_per_n3", items, kNothing);
    });
#ifdef RV_BENCH_BOOST
    bench::add("all_pairs/random/boost_listS", n, [=](benchmark::State& s) {
        runBoostAllPairs<boost::listS>(s, various(kFamilies[0], n), items);
    });
    bench::add("all_pairs/random/boost_vecS", n, [=](benchmark::State& s) {
        runBoostAllPairs<boost::vecS>(s, various(kFamilies[0], n), items);
    });
#endif
}

void addSize(int n) {
    for (const NamedFamily& family : kFamilies) {
        addDijkstraRows("dijkstra", family, n, various);
        addDijkstraRows("equal", family, n, equal);
        addPairRows<RVDijkstraAlgorithm, RVDijkstraOutputData>("pair", family, n);
        addPairRows<RVShortestPathsAlgorithm, RVShortestPathsOutputData>("service_pair", family, n);
        addReachableRows(family, n);
        addUniqueRow(family, n);
        addSingleSourceRows("single", family, n, various, false);
    }
    for (const NamedFamily& family : kAcyclicFamilies) addServiceRows(family, n);
    addSingleSourceRows("bellman_ford", kFamilies[0], n, hilly, true);
    addSortedPathsRows(kFamilies[0], n);
    addSortedPathsRows(kFamilies[1], n);
    bench::add("Phases/random/rv", n, [=](benchmark::State& s) { phases(s, various(kFamilies[0], n)); });
}

}  // namespace

int main(int argc, char** argv) {
    const bool large = bench::takeOption(argc, argv, "--large");
    addSize(10'000);
    addSize(100'000);
    if (large) addSize(1'000'000);
    for (const NamedFamily& family : {kFamilies[0], kAcyclicFamilies[1]}) {
        bench::add(std::string("ten/") + family.name + "/rv", 1000,
                   [=](benchmark::State& s) { findTenPaths(s, various(family, 1000)); });
    }
    for (const int n : {500, 1000}) addAllPairsRows(n);
    if (large) addAllPairsRows(2000);
    return bench::runRows(argc, argv);
}
