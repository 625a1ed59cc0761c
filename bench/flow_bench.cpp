// Flows and spanning trees beside the same work in Boost.Graph and LEMON.
//
//   flow_bench                                       all rows
//   flow_bench --benchmark_filter='maximum/random'   one method on one family of networks
//   flow_bench --large                               the greatest networks too
//
// Rows are named algorithm/family/library/n and report the fastest processor time per edge (ns_per_edge).
// Flows and paths go from node 0 to the last one.
//   maximum   maximum flow; boost edmonds_karp_max_flow on vectors, and push_relabel_max_flow;
//             lemon EdmondsKarp and Preflow
//   cut       minimum cut; lemon Preflow
//   edges     edge-disjoint paths; lemon EdmondsKarp and Preflow with unit capacities, flows alone
//   nodes     node-disjoint paths
//   cost      a maximum flow of least cost; boost successive_shortest_path_nonnegative_weights on lists;
//             lemon NetworkSimplex. Also nanoseconds for each path that was found, and for one Dijkstra
//             traversal of the same graph without a copy
//   tree      minimum spanning tree, the whole run, on graphs made connected; boost copy_graph and
//             prim_minimum_spanning_tree on lists; lemon kruskal
// rv_cold is rv after a change of the graph; rv_hooks is a subclass, which copies the graph and runs on
// hooks. All libraries must find the same value.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>
#include <numeric>
#include <string>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/copy.hpp>
#include <boost/graph/edmonds_karp_max_flow.hpp>
#include <boost/graph/find_flow_cost.hpp>
#include <boost/graph/prim_minimum_spanning_tree.hpp>
#include <boost/graph/push_relabel_max_flow.hpp>
#include <boost/graph/successive_shortest_path_nonnegative_weights.hpp>
#endif
#ifdef RV_BENCH_LEMON
#include "lemon_flows.h"
#endif

namespace {

using bench::EdgeArray;
using bench::kFamilies;
using bench::NamedFamily;

constexpr const char* kPerEdge = "ns_per_edge";

struct Network {
    EdgeArray array;
    std::vector<int> capacities;
    std::vector<int> costs;
};

Network withCapacities(EdgeArray array, int mostCapacity) {
    bench::Random random(13);
    Network network{std::move(array), {}, {}};
    for (int i = 0; i < network.array.size(); ++i) {
        network.capacities.push_back(1 + random.below(mostCapacity));
        network.costs.push_back(1 + random.below(100));
    }
    return network;
}

// With edges from node 0 to what does not hang together with it.
EdgeArray connected(EdgeArray array) {
    std::vector<int> parents(static_cast<std::size_t>(array.nodes));
    std::iota(parents.begin(), parents.end(), 0);
    const auto rootOf = [&](int node) {
        while (parents[static_cast<std::size_t>(node)] != node) {
            int& parent = parents[static_cast<std::size_t>(node)];
            node = parent = parents[static_cast<std::size_t>(parent)];
        }
        return node;
    };
    const auto unite = [&](int a, int b) { parents[static_cast<std::size_t>(rootOf(a))] = rootOf(b); };
    for (const auto& [source, target] : array.edges) unite(source, target);
    for (int node = 1; node < array.nodes; ++node) {
        if (rootOf(node) == rootOf(0)) continue;
        array.add(0, node);
        unite(node, 0);
    }
    return array;
}

// A source, a sink, and between them two halves of nodes with four random edges from each of the first half.
Network bipartite(int n) {
    bench::Random random(17);
    EdgeArray array{n, {}};
    const int half = (n - 2) / 2;
    for (int i = 1; i <= half; ++i) {
        array.add(0, i);
        for (int k = 0; k < 4; ++k) array.add(i, half + 1 + random.below(half));
        array.add(half + i, n - 1);
    }
    return withCapacities(std::move(array), 1);
}

struct NamedNetwork {
    const char* name;
    Network (*make)(int n);
};

constexpr NamedNetwork kNetworks[] = {
    {"random", [](int n) { return withCapacities(bench::randomGraph(n), 100); }},
    {"grid", [](int n) { return withCapacities(bench::gridGraph(n), 100); }},
    {"layered", [](int n) { return withCapacities(bench::layeredDag(n), 100); }},
    {"bipartite", bipartite},
};

// This library

struct RvNetwork : bench::RvGraph {
    explicit RvNetwork(const Network& network) : RvGraph(network.array), input(graph.get()) {
        std::size_t i = 0;
        for (RVEdge* edge : *graph->pEdgeList()) input.capacity(edge, network.capacities[i++]);
        setCosts(input, network.costs);
        input.pSourceNode(nodes.front());
        input.pSinkNode(nodes.back());
    }
    RVMinimumCostFlowInputData input;  // of a maximum flow too
};

int maximumFlow(const Network& network) {
    RvNetwork rv(network);
    RVMaximumFlowAlgorithm algorithm;
    RVMaximumFlowOutputData output;
    algorithm.pInputData(&rv.input);
    algorithm.pOutputData(&output);
    if (algorithm.run() != RV_NO_ERROR) std::abort();
    return output.totalFlow();
}

void expect(long found, long expected) {
    if (found != expected) std::abort();
}

enum class Way { warm, cold, hooks };
constexpr const char* kWays[] = {"rv", "rv_cold", "rv_hooks"};

// Runs on hooks where the class itself works in arrays.
template <class Algorithm>
struct Subclass : Algorithm {};

// Runs an algorithm again and again; found(output) is its answer.
template <class Algorithm, class Output, class Input, class Found>
void runRv(benchmark::State& state, const std::string& row, const bench::RvGraph& rv, Input& input, Way way,
           Found found) {
    Algorithm plain;
    Subclass<Algorithm> hooked;
    Algorithm& algorithm = way == Way::hooks ? hooked : plain;
    algorithm.pInputData(&input);
    rv.measure(state, kPerEdge, rv.graph->numberOfEdges(), way == Way::cold, [&] {
        Output output;
        algorithm.pOutputData(&output);
        if (algorithm.run() != RV_NO_ERROR) std::abort();
        bench::expectSame(row, found(output));
    });
}

void runMaximum(benchmark::State& state, const std::string& row, const Network& network, Way way) {
    RvNetwork rv(network);
    runRv<RVMaximumFlowAlgorithm, RVMaximumFlowOutputData>(state, row, rv, rv.input, way,
                                                           [](auto& output) { return output.totalFlow(); });
}

void runCut(benchmark::State& state, const std::string& row, const Network& network, Way way) {
    const bench::RvGraph rv(network.array);
    RVMinimumCutInputData input(rv.graph.get());
    rv.setCosts(input, network.capacities);
    input.pSourceNode(rv.nodes.front());
    input.pSinkNode(rv.nodes.back());
    runRv<RVMinimumCutAlgorithm, RVMinimumCutOutputData>(state, row, rv, input, way,
                                                         [](auto& output) { return output.totalCost(); });
}

void runPaths(benchmark::State& state, const std::string& row, const Network& network, bool byNodes,
              Way way) {
    const bench::RvGraph rv(network.array);
    RVDisjointPathsInputData input(rv.graph.get());
    input.pStartNode(rv.nodes.front());
    input.pFinishNode(rv.nodes.back());
    input.nodeDisjointPaths(byNodes ? 1 : 0);
    runRv<RVDisjointPathsAlgorithm, RVDisjointPathsOutputData>(
        state, row, rv, input, way, [](auto& output) { return output.numberOfDisjointPaths(); });
}

// Counts the searches.
class CountingFlow : public RVMinimumCostFlowAlgorithm {
public:
    int searches = 0;

protected:
    void updateGraphData(RVAnalysisInputData* input, RVAnalysisOutputData* output, int amount) override {
        ++searches;
        RVMinimumCostFlowAlgorithm::updateGraphData(input, output, amount);
    }
};

void runCost(benchmark::State& state, const Network& network, bool isCold) {
    RvNetwork rv(network);
    RVMinimumCostFlowAlgorithm algorithm;
    algorithm.pInputData(&rv.input);
    const int expected = maximumFlow(network);
    rv.measure(state, kPerEdge, network.array.size(), isCold, [&] {
        RVMinimumCostFlowOutputData output;
        algorithm.pOutputData(&output);
        if (algorithm.run() != RV_NO_ERROR) std::abort();
        expect(output.totalFlow(), expected);
        state.counters["cost"] = output.totalCost();
    });
    CountingFlow counting;
    RVMinimumCostFlowOutputData counted;
    counting.pInputData(&rv.input);
    counting.pOutputData(&counted);
    counting.run();
    state.counters["ns_per_path"] = state.counters[kPerEdge] * network.array.size() / counting.searches;

    RVDijkstraAlgorithm dijkstra;
    RVShortestPathsInputData question(rv.graph.get());
    question.copyData(&rv.input);
    question.pStartNode(rv.nodes.front());
    question.pFinishNode(rv.nodes.back());
    RVDijkstraOutputData answer;
    dijkstra.useOriginalGraph(1);
    dijkstra.storeDistances(1);
    dijkstra.pInputData(&question);
    dijkstra.pOutputData(&answer);
    const double start = bench::processorSeconds();
    dijkstra.run();
    state.counters["ns_of_dijkstra"] = (bench::processorSeconds() - start) * 1e9;
}

void runTree(benchmark::State& state, const std::string& row, const Network& network, Way way) {
    const bench::RvGraph rv(network.array);
    RVMinimumSpanningTreeInputData input(rv.graph.get());
    rv.setCosts(input, network.costs);
    runRv<RVMinimumSpanningTreeAlgorithm, RVMinimumSpanningTreeOutputData>(
        state, row, rv, input, way, [](auto& output) { return output.totalCost(); });
}

// Boost.Graph

#ifdef RV_BENCH_BOOST

template <class Selector>
struct BoostNetwork {
    using Traits = boost::adjacency_list_traits<Selector, Selector, boost::directedS>;
    using Graph = boost::adjacency_list<
        Selector, Selector, boost::directedS, boost::property<boost::vertex_index_t, std::size_t>,
        boost::property<
            boost::edge_capacity_t, int,
            boost::property<boost::edge_residual_capacity_t, int,
                            boost::property<boost::edge_reverse_t, typename Traits::edge_descriptor,
                                            boost::property<boost::edge_weight_t, int>>>>>;

    explicit BoostNetwork(const Network& network) {
        for (int i = 0; i < network.array.nodes; ++i) {
            nodes.push_back(boost::add_vertex(
                boost::property<boost::vertex_index_t, std::size_t>(static_cast<std::size_t>(i)), graph));
        }
        for (std::size_t i = 0; i < network.array.edges.size(); ++i) {
            const auto [source, target] = network.array.edges[i];
            const auto from = nodes[static_cast<std::size_t>(source)];
            const auto to = nodes[static_cast<std::size_t>(target)];
            const auto edge = boost::add_edge(from, to, graph).first;
            const auto back = boost::add_edge(to, from, graph).first;
            boost::put(boost::edge_capacity, graph, edge, network.capacities[i]);
            boost::put(boost::edge_capacity, graph, back, 0);
            boost::put(boost::edge_weight, graph, edge, network.costs[i]);
            boost::put(boost::edge_weight, graph, back, -network.costs[i]);
            boost::put(boost::edge_reverse, graph, edge, back);
            boost::put(boost::edge_reverse, graph, back, edge);
        }
    }

    Graph graph;
    std::vector<typename Traits::vertex_descriptor> nodes;
};

void runBoostMaximum(benchmark::State& state, const Network& network, bool pushes) {
    BoostNetwork<boost::vecS> boost(network);
    const int expected = maximumFlow(network);
    bench::measure(state, kPerEdge, network.array.size(), [&] {
        const int flow =
            pushes ? boost::push_relabel_max_flow(boost.graph, boost.nodes.front(), boost.nodes.back())
                   : boost::edmonds_karp_max_flow(boost.graph, boost.nodes.front(), boost.nodes.back());
        expect(flow, expected);
    });
}

void runBoostCost(benchmark::State& state, const Network& network) {
    BoostNetwork<boost::listS> boost(network);
    bench::measure(state, kPerEdge, network.array.size(), [&] {
        boost::successive_shortest_path_nonnegative_weights(boost.graph, boost.nodes.front(),
                                                            boost.nodes.back());
        state.counters["cost"] = boost::find_flow_cost(boost.graph);
    });
}

void runBoostTree(benchmark::State& state, const Network& network) {
    using Graph = bench::WeightedBoost<boost::listS, boost::undirectedS>;
    const auto original = bench::buildBoost<Graph>(network.array, network.costs);
    bench::measure(state, kPerEdge, network.array.size(), [&] {
        Graph copy;
        boost::copy_graph(original, copy);
        using Node = boost::graph_traits<Graph>::vertex_descriptor;
        bench::ByNode<Graph, Node> parents(copy, Node());
        boost::prim_minimum_spanning_tree(copy, parents.map());
    });
}

#endif

#ifdef RV_BENCH_LEMON
template <class Work>
void runLemon(benchmark::State& state, const Network& network, Work work) {
    bench::LemonFlows lemon(network.array, network.capacities, network.costs);
    bench::measure(state, kPerEdge, network.array.size(), [&] { work(lemon); });
}
#endif

// Rows

// A row for each of these ways.
template <class Run>
void addRvRows(const std::string& name, int n, Run run,
               std::initializer_list<Way> ways = {Way::warm, Way::cold, Way::hooks}) {
    for (const Way way : ways) {
        bench::add(name + kWays[static_cast<std::size_t>(way)], n,
                   [=](benchmark::State& s) { run(s, name + std::to_string(n), way); });
    }
}

#ifdef RV_BENCH_LEMON
template <class Make>
void addLemonFlow(const std::string& name, int n, Make make, long (bench::LemonFlows::*flow)()) {
    bench::add(name, n, [=](benchmark::State& s) {
        const Network network = make(n);
        const int expected = maximumFlow(network);
        runLemon(s, network, [=](auto& lemon) { expect((lemon.*flow)(), expected); });
    });
}
#endif

void addMaximumRows(const NamedNetwork& network, int n) {
    const std::string name = std::string("maximum/") + network.name + "/";
    const auto make = network.make;
    addRvRows(name, n, [=](auto& s, const auto& row, Way way) { runMaximum(s, row, make(n), way); },
              {Way::warm, Way::cold});
#ifdef RV_BENCH_BOOST
    bench::add(name + "boost", n, [=](benchmark::State& s) { runBoostMaximum(s, make(n), false); });
    bench::add(name + "boost_push", n, [=](benchmark::State& s) { runBoostMaximum(s, make(n), true); });
#endif
#ifdef RV_BENCH_LEMON
    addLemonFlow(name + "lemon", n, make, &bench::LemonFlows::edmondsKarp);
    addLemonFlow(name + "lemon_push", n, make, &bench::LemonFlows::preflow);
#endif
}

void addCutRows(const NamedNetwork& network, int n) {
    const std::string name = std::string("cut/") + network.name + "/";
    const auto make = network.make;
    addRvRows(name, n, [=](auto& s, const auto& row, Way way) { runCut(s, row, make(n), way); });
#ifdef RV_BENCH_LEMON
    addLemonFlow(name + "lemon_push", n, make, &bench::LemonFlows::preflow);
#endif
}

void addPathRows(const NamedNetwork& network, int n) {
    const auto make = [original = network.make](int size) {
        Network unit = original(size);
        unit.capacities.assign(unit.capacities.size(), 1);
        return unit;
    };
    for (const bool byNodes : {false, true}) {
        const std::string name = (byNodes ? "nodes/" : "edges/") + std::string(network.name) + "/";
        addRvRows(name, n,
                  [=](auto& s, const auto& row, Way way) { runPaths(s, row, make(n), byNodes, way); });
#ifdef RV_BENCH_LEMON
        if (byNodes) continue;
        addLemonFlow(name + "lemon", n, make, &bench::LemonFlows::edmondsKarp);
        addLemonFlow(name + "lemon_push", n, make, &bench::LemonFlows::preflow);
#endif
    }
}

void addCostRows(const NamedNetwork& network, int n) {
    const std::string name = std::string("cost/") + network.name + "/";
    const auto make = network.make;
    addRvRows(name, n, [=](auto& s, const auto&, Way way) { runCost(s, make(n), way == Way::cold); },
              {Way::warm, Way::cold});
#ifdef RV_BENCH_BOOST
    bench::add(name + "boost_listS", n, [=](benchmark::State& s) { runBoostCost(s, make(n)); });
#endif
#ifdef RV_BENCH_LEMON
    bench::add(name + "lemon_simplex", n, [=](benchmark::State& s) {
        const Network subject = make(n);
        const int flow = maximumFlow(subject);
        runLemon(s, subject,
                 [&](auto& lemon) { s.counters["cost"] = static_cast<double>(lemon.networkSimplex(flow)); });
    });
#endif
}

void addTreeRows(const NamedFamily& family, int n) {
    const std::string name = std::string("tree/") + family.name + "/";
    const std::string row = name + std::to_string(n);
    const auto make = [=, &family] { return withCapacities(connected(family.make(n)), 1); };
    addRvRows(name, n, [=](auto& s, const auto&, Way way) { runTree(s, row, make(), way); });
#ifdef RV_BENCH_BOOST
    bench::add(name + "boost_listS", n, [=](benchmark::State& s) { runBoostTree(s, make()); });
#endif
#ifdef RV_BENCH_LEMON
    bench::add(name + "lemon", n, [=](benchmark::State& s) {
        runLemon(s, make(),
                 [&](auto& lemon) { bench::expectSame(row, static_cast<double>(lemon.kruskal())); });
    });
#endif
}

}  // namespace

int main(int argc, char** argv) {
    const bool large = bench::takeOption(argc, argv, "--large");
    for (const NamedNetwork& network : kNetworks) {
        for (const int n : {1'000, 10'000, 100'000}) {
            if (n == 100'000 && !large) continue;
            addMaximumRows(network, n);
            addCutRows(network, n);
            addPathRows(network, n);
        }
        addCostRows(network, 1'000);
        if (large) addCostRows(network, 10'000);
    }
    for (const NamedFamily& family : kFamilies) {
        for (const int n : {10'000, 100'000}) addTreeRows(family, n);
        if (large) addTreeRows(family, 1'000'000);
    }
    return bench::runRows(argc, argv);
}
