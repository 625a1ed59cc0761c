// Searches, components, orders and reachability beside the same work in Boost.Graph and LEMON.
//
//   traversal_bench                                       everything at 10^4 and 10^5 nodes
//   traversal_bench --benchmark_filter='/random/'         one family of graphs
//   traversal_bench --large --benchmark_filter=...        10^6 nodes too
//   traversal_bench --threads --benchmark_filter=/two/    two threads against one
//
// Rows are named question/family/library/n and report the fastest processor time per edge (ns_per_edge). The
// questions stand in bench_questions.h. Those about the whole graph are asked once a round; whether there is
// a path, and what can be reached within a range, 50 times about random nodes (us_per_question).
//   rv                  the graph has not changed since the last question
//   rv_cold             it has changed before each question
//   rv_hooks            of a subclass: copy of the graph, normalisation, search by hooks, output, restoring
//   rv_hooks_original   likewise, on the caller's graph, without the copy
//   boost_listS         copy_graph of a graph of lists, the algorithm, its results in arrays
//   boost_vecS          the same with vectors
//   lemon               in place, with the same results as rv in maps and vectors
//   two                 rv in two threads, each with its own algorithm and data, about one graph: time on the
//                       wall for each question, and how much more they do together than one of them alone
//                       (throughput)
// All results are written as a whole and destroyed again. Libraries must agree about their sizes (found). The
// counter growth compares a row with the same one for fewer nodes.
// Phases/.../n gives the share of each step of a breadth-first run on hooks, in ns per edge.

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <iterator>
#include <latch>
#include <limits>
#include <map>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "bench_questions.h"
#include "rv/analysis.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/biconnected_components.hpp>
#include <boost/graph/breadth_first_search.hpp>
#include <boost/graph/connected_components.hpp>
#include <boost/graph/copy.hpp>
#include <boost/graph/depth_first_search.hpp>
#include <boost/graph/strong_components.hpp>
#include <boost/graph/topological_sort.hpp>
#endif

namespace {

using bench::EdgeArray;
using bench::kFamilies;
using bench::NamedFamily;
using bench::Pairs;
using bench::Question;

constexpr const char* kPerEdge = "ns_per_edge";

// This library

enum class Way { warm, cold, hooks, hooksOriginal };
constexpr const char* kWays[] = {"rv", "rv_cold", "rv_hooks", "rv_hooks_original"};

void report(benchmark::State& state, const std::string& row, long found) {
    state.counters["found"] = static_cast<double>(found);
    bench::expectSame(row, static_cast<double>(found));
}

void runRv(benchmark::State& state, const std::string& row, const Question& question, const EdgeArray& array,
           Way way) {
    const bench::RvGraph rv(array);
    const bool onHooks = way == Way::hooks || way == Way::hooksOriginal;
    const auto asker =
        (onHooks ? question.makeOnHooks : question.make)(rv, way == Way::hooksOriginal ? 1 : 0);
    const Pairs pairs = question.pairs(array);
    long found = 0;
    bench::measureRounds(state, question.unit(), question.items(array), [&] {
        found = 0;
        const auto askAll = [&] {
            for (const auto& pair : pairs) found += asker->ask(pair);
        };
        if (way != Way::cold) return bench::secondsOf(askAll);
        double seconds = 0;
        for (const auto& pair : pairs) {
            rv.change();
            seconds += bench::secondsOf([&] { found += asker->ask(pair); });
        }
        return seconds;
    });
    report(state, row, found);
}

// The seconds on the wall that so many threads need until each has asked all its questions so many times.
double wallSeconds(const Question& question, const bench::RvGraph& rv, const Pairs& pairs, int threads,
                   int times) {
    using Clock = std::chrono::steady_clock;
    std::latch start(threads + 1);
    std::vector<std::jthread> running;
    for (int i = 0; i < threads; ++i) {
        running.emplace_back([&] {
            const auto asker = question.make(rv, 0);
            asker->ask(pairs.front());
            start.arrive_and_wait();
            for (int time = 0; time < times; ++time) {
                for (const auto& pair : pairs) asker->ask(pair);
            }
        });
    }
    start.arrive_and_wait();
    const Clock::time_point begin = Clock::now();
    for (std::jthread& thread : running) thread.join();
    return std::chrono::duration<double>(Clock::now() - begin).count();
}

void runThreads(benchmark::State& state, const Question& question, const EdgeArray& array) {
    constexpr int kRounds = 5;
    constexpr double kRoundSeconds = 0.1;
    const bench::RvGraph rv(array);
    const Pairs pairs = question.pairs(array);
    const int times = 1 + static_cast<int>(kRoundSeconds / wallSeconds(question, rv, pairs, 1, 1));
    double one = std::numeric_limits<double>::max();
    double two = one;
    for (auto _ : state) {
        for (int round = 0; round < kRounds; ++round) {
            one = std::min(one, wallSeconds(question, rv, pairs, 1, times));
            two = std::min(two, wallSeconds(question, rv, pairs, 2, times));
        }
        state.SetIterationTime(two / times);
    }
    state.counters[question.unit()] = two / 2 / times * 1e9 / question.items(array);
    state.counters["throughput"] = 2 * one / two;
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

struct BoostTopological {
    template <class Selector>
    using Copy = Directed<Selector>;
    template <class Graph>
    static void run(Graph& graph) {
        std::vector<typename boost::graph_traits<Graph>::vertex_descriptor> order;
        ByNode<Graph, int> numbers(graph, 0);
        ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
        boost::topological_sort(graph, std::back_inserter(order), boost::color_map(colors.map()));
        std::reverse(order.begin(), order.end());
        int number = 0;
        for (const auto node : order) boost::put(numbers.map(), node, ++number);
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

// LEMON

#ifdef RV_BENCH_LEMON
void runLemon(benchmark::State& state, const std::string& row, const Question& question,
              const EdgeArray& array) {
    bench::LemonSearches subject(array);
    const Pairs pairs = question.pairs(array);
    long found = 0;
    bench::measure(state, question.unit(), question.items(array),
                   [&] { found = (subject.*question.lemon)(pairs); });
    report(state, row, found);
}
#endif

// Rows

// Compares a row with the same one for fewer nodes, which was run before it.
void noteGrowth(benchmark::State& state, const std::string& name, double value) {
    static std::map<std::string, double> latest;
    double& before = latest[name];
    if (before > 0) state.counters["growth"] = value / before;
    before = value;
}

template <class Body>
void addRow(const std::string& name, const char* unit, int n, Body body) {
    bench::add(name, n, [=](benchmark::State& state) {
        body(state);
        noteGrowth(state, name, state.counters[unit]);
    });
}

void addRows(const Question& question, const NamedFamily& family, int n, bool withThreads) {
    const std::string name = std::string(question.name) + "/" + family.name + "/";
    const std::string row = name + std::to_string(n);
    const auto make = family.make;
    for (const Way way : {Way::warm, Way::cold, Way::hooks, Way::hooksOriginal}) {
        if (way == Way::hooksOriginal && !question.mayCopy) continue;
        addRow(name + kWays[static_cast<int>(way)], question.unit(), n,
               [=, &question](benchmark::State& s) { runRv(s, row, question, make(n), way); });
    }
#ifdef RV_BENCH_LEMON
    addRow(name + "lemon", question.unit(), n,
           [=, &question](benchmark::State& s) { runLemon(s, row, question, make(n)); });
#endif
    if (!withThreads) return;
    bench::add(name + "two", n, [=, &question](benchmark::State& s) { runThreads(s, question, make(n)); });
}

#ifdef RV_BENCH_BOOST
template <class Boost>
void addBoostRows(const char* question, const NamedFamily& family, int n) {
    const std::string name = std::string(question) + "/" + family.name + "/";
    const auto make = family.make;
    addRow(name + "boost_listS", kPerEdge, n,
           [=](benchmark::State& s) { runBoost<Boost, boost::listS>(s, make(n)); });
    addRow(name + "boost_vecS", kPerEdge, n,
           [=](benchmark::State& s) { runBoost<Boost, boost::vecS>(s, make(n)); });
}
#endif

void addFamily(const NamedFamily& family, int n, bool withThreads) {
    for (const Question& question : bench::kQuestions) {
        if (!question.isOfDags || family.isAcyclic) addRows(question, family, n, withThreads);
    }
#ifdef RV_BENCH_BOOST
    addBoostRows<BoostBreadth>("breadth_first", family, n);
    addBoostRows<BoostDepth>("depth_first", family, n);
    addBoostRows<BoostConnected>("connected", family, n);
    // Of a star Boost searches all edges for each.
    if (std::strcmp(family.name, "star") != 0) addBoostRows<BoostBiconnected>("biconnected", family, n);
    addBoostRows<BoostStrong>("strong", family, n);
    if (family.isAcyclic) addBoostRows<BoostTopological>("topological", family, n);
#endif
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<int> sizes = {10'000, 100'000};
    if (bench::takeOption(argc, argv, "--large")) sizes.push_back(1'000'000);
    const bool withThreads = bench::takeOption(argc, argv, "--threads");
    for (const int n : sizes) {
        for (const NamedFamily& family : kFamilies) addFamily(family, n, withThreads);
        const auto make = kFamilies[0].make;
        bench::add("Phases/random/rv", n, [=](benchmark::State& s) { phases(s, make(n)); });
    }
    return bench::runRows(argc, argv);
}
