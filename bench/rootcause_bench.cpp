// Root cause analysis beside one search per effect, by this library and by Boost.Graph.
//
//   rootcause_bench                                everything at 10^3, 10^4 and 10^5 nodes
//   rootcause_bench --benchmark_filter='all/grid'  one question on one family of graphs
//
// Rows are named question/family/library/n and report the fastest processor time per effect, in microseconds,
// of 300 effects.
//   all      causes of at least half of the effects, without a range; rv_each runs the reachable nodes
//            algorithm for each effect, boost a breadth-first search
//   near     causes of any effect within a range that few nodes are in; rv_each as before
// All must find the same number of pairs of a cause and an effect, of which they say how many there are.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

#include "bench_graphs.h"
#include "bench_measure.h"
#include "bench_peers.h"
#include "rv/analysis.h"

#ifdef RV_BENCH_BOOST
#include <boost/graph/breadth_first_search.hpp>
#endif

namespace {

using bench::EdgeArray;
using bench::kFamilies;
using bench::NamedFamily;

constexpr int kEffects = 300;
constexpr int kRange = 1000;

std::vector<std::size_t> effectsOf(int n) {
    bench::Random random(14);
    std::vector<std::size_t> effects;
    for (int i = 0; i < kEffects; ++i) effects.push_back(static_cast<std::size_t>(random.below(n)));
    return effects;
}

template <class Work>
void measure(benchmark::State& state, Work work) {
    std::size_t pairs = 0;
    bench::measure(state, "us_per_effect", kEffects * 1e3, [&] { pairs = work(); });
    state.counters["pairs"] = static_cast<double>(pairs);
}

// What every node explains, gathered effect by effect; gives the number of pairs that are left when the nodes
// that explain too little have been dropped.
class Gathered {
public:
    explicit Gathered(int nodes) : m_effects(static_cast<std::size_t>(nodes)) {}
    void add(std::size_t node, int effect) { m_effects[node].push_back(effect); }
    std::size_t pairs(double threshold) {
        std::size_t all = 0;
        for (auto& effects : m_effects) {
            if (static_cast<double>(effects.size()) < threshold * kEffects) effects = {};
            all += effects.size();
        }
        return all;
    }

private:
    std::vector<std::vector<int>> m_effects;
};

// This library

// Within a range few nodes explain several effects.
double thresholdOf(bool isNear) { return isNear ? 0.0 : 0.5; }

template <class Input>
void takeCosts(Input& input, const RVGraph* graph) {
    bench::Random random(11);
    for (RVEdge* edge : *graph->pEdgeList()) input.cost(edge, 1 + random.below(1000));
}

void analyse(benchmark::State& state, const EdgeArray& array, bool isNear) {
    const bench::RvGraph rv(array);
    RVNodeDList effects;
    for (const std::size_t i : effectsOf(array.nodes)) effects.appendNode(rv.nodes[i]);
    RVRootCauseInputData input(rv.graph.get());
    if (isNear) takeCosts(input, rv.graph.get());
    input.pEffectNodeList(&effects);
    input.range(isNear ? kRange : -1);
    input.threshold(thresholdOf(isNear));
    RVRootCauseAlgorithm analysis;
    analysis.pInputData(&input);
    measure(state, [&] {
        RVRootCauseOutputData output;
        analysis.pOutputData(&output);
        if (analysis.run() != RV_NO_ERROR) std::abort();
        std::size_t pairs = 0;
        for (RVHashMapIter it(output.pReachedNodeListMap()); it; it++)
            pairs += static_cast<std::size_t>(RVNodeDList::castDown(it.pValue())->length());
        return pairs;
    });
}

void searchEach(benchmark::State& state, const EdgeArray& array, bool isNear) {
    const bench::RvGraph rv(array);
    RVReachableNodesInputData input(rv.graph.get());
    if (isNear) takeCosts(input, rv.graph.get());
    input.reversed(1);
    input.range(isNear ? kRange : -1);
    RVReachableNodesOutputData output;
    RVReachableNodesAlgorithm search;
    search.pInputData(&input);
    search.pOutputData(&output);
    measure(state, [&] {
        Gathered gathered(rv.graph->nodeIndexLimit());
        int effect = 0;
        for (const std::size_t i : effectsOf(array.nodes)) {
            input.pStartNode(rv.nodes[i]);
            if (search.run() != RV_NO_ERROR) std::abort();
            for (RVNode* node : *output.pNodeList()) gathered.add(rv::placeOf(node), effect);
            ++effect;
        }
        return gathered.pairs(thresholdOf(isNear));
    });
}

// Boost.Graph

#ifdef RV_BENCH_BOOST

template <class Selector>
void boostEach(benchmark::State& state, EdgeArray array) {
    using Graph = bench::WeightedBoost<Selector, boost::directedS>;
    for (auto& [source, target] : array.edges) std::swap(source, target);
    const auto graph = bench::buildBoost<Graph>(array);
    using Node = typename boost::graph_traits<Graph>::vertex_descriptor;
    const std::vector<Node> nodes(boost::vertices(graph).first, boost::vertices(graph).second);
    const auto index = boost::get(boost::vertex_index, graph);

    struct Visitor : boost::bfs_visitor<> {
        Visitor(Gathered* to, decltype(index) numbers, int number)
            : gathered(to), indices(numbers), effect(number) {}
        void discover_vertex(Node node, const Graph&) { gathered->add(boost::get(indices, node), effect); }
        Gathered* gathered;
        decltype(index) indices;
        int effect;
    };
    measure(state, [&] {
        Gathered gathered(array.nodes);
        int effect = 0;
        for (const std::size_t i : effectsOf(array.nodes)) {
            bench::ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
            boost::breadth_first_search(
                graph, nodes[i], boost::color_map(colors.map()).visitor(Visitor(&gathered, index, effect++)));
        }
        return gathered.pairs(thresholdOf(false));
    });
}

#endif

void addRows(const NamedFamily& family, int n) {
    for (const bool isNear : {false, true}) {
        const std::string name = std::string(isNear ? "near/" : "all/") + family.name + "/";
        const auto make = family.make;
        bench::add(name + "rv", n, [=](benchmark::State& s) { analyse(s, make(n), isNear); });
        bench::add(name + "rv_each", n, [=](benchmark::State& s) { searchEach(s, make(n), isNear); });
#ifdef RV_BENCH_BOOST
        if (isNear) continue;
        bench::add(name + "boost_listS", n,
                   [=](benchmark::State& s) { boostEach<boost::listS>(s, make(n)); });
        bench::add(name + "boost_vecS", n, [=](benchmark::State& s) { boostEach<boost::vecS>(s, make(n)); });
#endif
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const int n : {1'000, 10'000, 100'000}) {
        for (const NamedFamily& family : kFamilies) addRows(family, n);
    }
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
