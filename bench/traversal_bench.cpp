// Searches and components beside the same work in Boost.Graph and LEMON.
//
//   traversal_bench                                       everything at 10^4 and 10^5 nodes
//   traversal_bench --benchmark_filter='/random/'         one family of graphs
//   traversal_bench --large --benchmark_filter=...        10^6 nodes too
//
// Rows are named algorithm/family/library/n and report the fastest processor time per edge (ns_per_edge).
//   rv                  the whole run: arrays made of the graph, search, output
//   rv_hooks            the same of a subclass: copy of the graph, normalisation, search by hooks, output,
//   restoring rv_hooks_original   likewise, on the caller's graph, without the copy boost_listS copy_graph of
//   a graph of lists, the algorithm, its results in arrays boost_vecS          the same with vectors lemon
//   the algorithm with its results in maps, without a copy
// All cover the whole graph. The row of a size can be compared with the one before for the growth.
// Phases/.../n gives the share of each step of a breadth-first run on hooks, in ns per edge.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/biconnected_components.hpp>
#include <boost/graph/breadth_first_search.hpp>
#include <boost/graph/connected_components.hpp>
#include <boost/graph/copy.hpp>
#include <boost/graph/depth_first_search.hpp>
#include <boost/graph/strong_components.hpp>
#endif
#ifdef RV_BENCH_LEMON
#include "lemon_searches.h"
#endif

namespace {

using bench::EdgeArray;
using bench::kFamilies;
using bench::NamedFamily;

constexpr const char* kPerEdge = "ns_per_edge";

// This library

template <class Algorithm>
struct Subclass : Algorithm {};

template <class Class, class Input, class Output>
struct Family {
    using OnHooks = Family<Subclass<Class>, Input, Output>;

    static void run(RVGraph* graph, int useOriginalGraph) {
        Class algorithm;
        Input input(graph);
        Output output;
        algorithm.useOriginalGraph(useOriginalGraph);
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
        if (algorithm.run() != RV_NO_ERROR) std::abort();
    }
};
using Breadth =
    Family<RVBreadthFirstSearchAlgorithm, RVBreadthFirstSearchInputData, RVBreadthFirstSearchOutputData>;
using Depth = Family<RVDepthFirstSearchAlgorithm, RVDepthFirstSearchInputData, RVDepthFirstSearchOutputData>;
using Connected =
    Family<RVConnectedComponentsAlgorithm, RVConnectedComponentsInputData, RVConnectedComponentsOutputData>;
using Biconnected = Family<RVBiconnectedComponentsAlgorithm, RVBiconnectedComponentsInputData,
                           RVBiconnectedComponentsOutputData>;
using Strong = Family<RVStronglyConnectedComponentsAlgorithm, RVStronglyConnectedComponentsInputData,
                      RVStronglyConnectedComponentsOutputData>;

template <class F>
void runRv(benchmark::State& state, const EdgeArray& array, int useOriginalGraph) {
    const bench::RvGraph subject(array);
    bench::measure(state, kPerEdge, array.size(), [&] { F::run(subject.graph.get(), useOriginalGraph); });
}

void phases(benchmark::State& state, const EdgeArray& array) {
    const bench::RvGraph subject(array);
    bench::Phased<RVBreadthFirstSearchAlgorithm> search;
    RVBreadthFirstSearchInputData input(subject.graph.get());
    RVBreadthFirstSearchOutputData output;
    search.pInputData(&input);
    search.pOutputData(&output);
    search.measure(state, array.size());
}

// Boost.Graph

#ifdef RV_BENCH_BOOST

using bench::ByNode;
template <class Selector>
using Directed = bench::WeightedBoost<Selector, boost::bidirectionalS>;
template <class Selector>
using Undirected = bench::WeightedBoost<Selector, boost::undirectedS>;

struct BoostBreadth {
    template <class Selector>
    using Copy = Directed<Selector>;

    template <class Map>
    struct Numbering : boost::default_bfs_visitor {
        explicit Numbering(Map target) : numbers(target) {}
        template <class Node, class Graph>
        void discover_vertex(Node node, const Graph&) {
            boost::put(numbers, node, ++*last);
        }
        Map numbers;
        std::shared_ptr<int> last = std::make_shared<int>(0);
    };

    template <class Graph>
    static void run(Graph& graph) {
        ByNode<Graph, int> numbers(graph, 0);
        ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
        auto color = colors.map();
        Numbering<decltype(numbers.map())> visitor(numbers.map());
        boost::queue<typename boost::graph_traits<Graph>::vertex_descriptor> queue;
        for (auto [node, end] = boost::vertices(graph); node != end; ++node) {
            if (boost::get(color, *node) != boost::white_color) continue;
            boost::breadth_first_visit(graph, *node, queue, visitor, color);
        }
    }
};

struct BoostDepth {
    template <class Selector>
    using Copy = Directed<Selector>;

    template <class Graph, class Map>
    struct Visitor : boost::default_dfs_visitor {
        Visitor(Graph& g, Map d, Map f) : graph(&g), discovered(d), finished(f) {}
        template <class Node, class G>
        void discover_vertex(Node node, const G&) {
            boost::put(discovered, node, ++*last);
        }
        template <class Node, class G>
        void finish_vertex(Node node, const G&) {
            boost::put(finished, node, ++*last);
        }
        template <class Edge, class G>
        void tree_edge(Edge edge, const G&) {
            boost::put(boost::edge_weight, *graph, edge, 1);
        }
        template <class Edge, class G>
        void back_edge(Edge edge, const G&) {
            boost::put(boost::edge_weight, *graph, edge, 3);
        }
        template <class Edge, class G>
        void forward_or_cross_edge(Edge edge, const G&) {
            boost::put(boost::edge_weight, *graph, edge, 4);
        }
        Graph* graph;
        Map discovered;
        Map finished;
        std::shared_ptr<int> last = std::make_shared<int>(0);
    };

    template <class Graph>
    static void run(Graph& graph) {
        ByNode<Graph, int> discovered(graph, 0);
        ByNode<Graph, int> finished(graph, 0);
        ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
        using Map = decltype(discovered.map());
        Visitor<Graph, Map> visitor(graph, discovered.map(), finished.map());
        boost::depth_first_search(graph, boost::visitor(visitor).color_map(colors.map()));
    }
};

struct BoostConnected {
    template <class Selector>
    using Copy = Undirected<Selector>;
    template <class Graph>
    static void run(Graph& graph) {
        ByNode<Graph, int> components(graph, 0);
        ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
        boost::connected_components(graph, components.map(), boost::color_map(colors.map()));
    }
};

struct BoostBiconnected {
    template <class Selector>
    using Copy = Undirected<Selector>;
    template <class Graph>
    static void run(Graph& graph) {
        std::vector<typename boost::graph_traits<Graph>::vertex_descriptor> joints;
        boost::biconnected_components(graph, boost::get(boost::edge_weight, graph),
                                      std::back_inserter(joints));
    }
};

struct BoostStrong {
    template <class Selector>
    using Copy = Directed<Selector>;
    template <class Graph>
    static void run(Graph& graph) {
        using Node = typename boost::graph_traits<Graph>::vertex_descriptor;
        ByNode<Graph, int> components(graph, 0);
        ByNode<Graph, int> discovered(graph, 0);
        ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
        ByNode<Graph, Node> roots(graph, Node());
        boost::strong_components(
            graph, components.map(),
            boost::root_map(roots.map()).discover_time_map(discovered.map()).color_map(colors.map()));
    }
};

template <class Work, class Selector>
void runBoost(benchmark::State& state, const EdgeArray& array) {
    const auto original = bench::buildBoost<Directed<Selector>>(array);
    bench::measure(state, kPerEdge, array.size(), [&] {
        typename Work::template Copy<Selector> copy;
        boost::copy_graph(original, copy);
        Work::run(copy);
    });
}

#endif

#ifdef RV_BENCH_LEMON
void runLemon(benchmark::State& state, const EdgeArray& array, void (bench::LemonSearches::*search)()) {
    bench::LemonSearches subject(array);
    bench::measure(state, kPerEdge, array.size(), [&] { (subject.*search)(); });
}
#endif

// Rows

template <class F, class Boost>
void addRows(const char* algorithm, const NamedFamily& family, int n, [[maybe_unused]] bool withPeers) {
    const std::string name = std::string(algorithm) + "/" + family.name + "/";
    const auto make = family.make;
    bench::add(name + "rv", n, [=](benchmark::State& s) { runRv<F>(s, make(n), 0); });
    using OnHooks = typename F::OnHooks;
    bench::add(name + "rv_hooks", n, [=](benchmark::State& s) { runRv<OnHooks>(s, make(n), 0); });
    bench::add(name + "rv_hooks_original", n, [=](benchmark::State& s) { runRv<OnHooks>(s, make(n), 1); });
#ifdef RV_BENCH_BOOST
    if (!withPeers) return;
    bench::add(name + "boost_listS", n,
               [=](benchmark::State& s) { runBoost<Boost, boost::listS>(s, make(n)); });
    bench::add(name + "boost_vecS", n,
               [=](benchmark::State& s) { runBoost<Boost, boost::vecS>(s, make(n)); });
#endif
}

#ifdef RV_BENCH_LEMON
void addLemonRow(const char* algorithm, const NamedFamily& family, int n,
                 void (bench::LemonSearches::*search)()) {
    const auto make = family.make;
    bench::add(std::string(algorithm) + "/" + family.name + "/lemon", n,
               [=](benchmark::State& s) { runLemon(s, make(n), search); });
}
#endif

#ifndef RV_BENCH_BOOST
using BoostBreadth = void;
using BoostDepth = void;
using BoostConnected = void;
using BoostBiconnected = void;
using BoostStrong = void;
#endif

void addSize(int n) {
    for (const NamedFamily& family : kFamilies) {
        const bool isStar = std::strcmp(family.name, "star") == 0;
        addRows<Breadth, BoostBreadth>("breadth_first", family, n, true);
        addRows<Depth, BoostDepth>("depth_first", family, n, true);
        addRows<Connected, BoostConnected>("connected", family, n, true);
        addRows<Biconnected, BoostBiconnected>("biconnected", family, n, !isStar);
        addRows<Strong, BoostStrong>("strong", family, n, true);
#ifdef RV_BENCH_LEMON
        using L = bench::LemonSearches;
        addLemonRow("breadth_first", family, n, &L::breadthFirst);
        addLemonRow("depth_first", family, n, &L::depthFirst);
        addLemonRow("connected", family, n, &L::connected);
        addLemonRow("biconnected", family, n, &L::biconnected);
        addLemonRow("strong", family, n, &L::stronglyConnected);
#endif
    }
    const auto make = kFamilies[0].make;
    bench::add("Phases/random/rv", n, [=](benchmark::State& s) { phases(s, make(n)); });
}

}  // namespace

int main(int argc, char** argv) {
    const bool large = bench::takeOption(argc, argv, "--large");
    addSize(10'000);
    addSize(100'000);
    if (large) addSize(1'000'000);
    return bench::runRows(argc, argv);
}
