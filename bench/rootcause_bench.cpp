// Root cause analysis beside one search per effect, by this library and by Boost.Graph.
//
//   rootcause_bench                                everything at 10^3, 10^4 and 10^5 nodes
//   rootcause_bench --benchmark_filter='all/grid'  one question on one family of graphs
//
// Rows are named question/family/library/n and report the fastest processor time per effect, in microseconds,
// of 300 effects, or of 50 (all50, near50); the time of a row is that of all of them.
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

struct Question {
    const char* name;
    int effects;
    int range;
    double threshold;  // within a range few nodes explain several effects

    std::vector<std::size_t> effectsOf(int n) const {
        bench::Random random(14);
        std::vector<std::size_t> chosen;
        for (int i = 0; i < effects; ++i) chosen.push_back(static_cast<std::size_t>(random.below(n)));
        return chosen;
    }
    bool isNear() const { return range >= 0; }
};
constexpr Question kQuestions[] = {
    {"all", 300, -1, 0.5}, {"near", 300, 1000, 0.0}, {"all50", 50, -1, 0.5}, {"near50", 50, 1000, 0.0}};

template <class Work>
void measure(benchmark::State& state, const Question& question, Work work) {
    std::size_t pairs = 0;
    bench::measure(state, "us_per_effect", question.effects * 1e3, [&] { pairs = work(); });
    state.counters["pairs"] = static_cast<double>(pairs);
}

// What every node explains, gathered effect by effect; gives the number of pairs that are left when the nodes
// that explain too little have been dropped.
class Gathered {
public:
    explicit Gathered(int nodes) : m_effects(static_cast<std::size_t>(nodes)) {}
    void add(std::size_t node, int effect) { m_effects[node].push_back(effect); }
    std::size_t pairs(const Question& question) {
        std::size_t all = 0;
        for (auto& effects : m_effects) {
            if (static_cast<double>(effects.size()) < question.threshold * question.effects) effects = {};
            all += effects.size();
        }
        return all;
    }

private:
    std::vector<std::vector<int>> m_effects;
};

// This library

void analyse(benchmark::State& state, const EdgeArray& array, const Question& question) {
    const bench::RvGraph rv(array);
    RVNodeDList effects;
    for (const std::size_t i : question.effectsOf(array.nodes)) effects.appendNode(rv.nodes[i]);
    RVRootCauseInputData input(rv.graph.get());
    if (question.isNear()) rv.setCosts(input, bench::randomCosts(array.size()));
    input.pEffectNodeList(&effects);
    input.range(question.range);
    input.threshold(question.threshold);
    RVRootCauseAlgorithm analysis;
    analysis.pInputData(&input);
    measure(state, question, [&] {
        RVRootCauseOutputData output;
        analysis.pOutputData(&output);
        if (analysis.run() != RV_NO_ERROR) std::abort();
        std::size_t pairs = 0;
        for (RVHashMapIter it(output.pReachedNodeListMap()); it; it++)
            pairs += static_cast<std::size_t>(RVNodeDList::castDown(it.pValue())->length());
        return pairs;
    });
}

void searchEach(benchmark::State& state, const EdgeArray& array, const Question& question) {
    const bench::RvGraph rv(array);
    RVReachableNodesInputData input(rv.graph.get());
    if (question.isNear()) rv.setCosts(input, bench::randomCosts(array.size()));
    input.reversed(1);
    input.range(question.range);
    RVReachableNodesOutputData output;
    RVReachableNodesAlgorithm search;
    search.pInputData(&input);
    search.pOutputData(&output);
    measure(state, question, [&] {
        Gathered gathered(rv.graph->nodeIndexLimit());
        int effect = 0;
        for (const std::size_t i : question.effectsOf(array.nodes)) {
            input.pStartNode(rv.nodes[i]);
            if (search.run() != RV_NO_ERROR) std::abort();
            for (RVNode* node : *output.pNodeList()) gathered.add(rv::placeOf(node), effect);
            ++effect;
        }
        return gathered.pairs(question);
    });
}

// Boost.Graph

#ifdef RV_BENCH_BOOST

template <class Selector>
void boostEach(benchmark::State& state, EdgeArray array, const Question& question) {
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
    measure(state, question, [&] {
        Gathered gathered(array.nodes);
        int effect = 0;
        for (const std::size_t i : question.effectsOf(array.nodes)) {
            bench::ByNode<Graph, boost::default_color_type> colors(graph, boost::white_color);
            boost::breadth_first_search(
                graph, nodes[i], boost::color_map(colors.map()).visitor(Visitor(&gathered, index, effect++)));
        }
        return gathered.pairs(question);
    });
}

#endif

void addRows(const NamedFamily& family, int n) {
    for (const Question& question : kQuestions) {
        const std::string name = std::string(question.name) + "/" + family.name + "/";
        const auto make = family.make;
        bench::add(name + "rv", n, [=, &question](benchmark::State& s) { analyse(s, make(n), question); });
        bench::add(name + "rv_each", n,
                   [=, &question](benchmark::State& s) { searchEach(s, make(n), question); });
#ifdef RV_BENCH_BOOST
        if (question.isNear()) continue;
        bench::add(name + "boost_listS", n,
                   [=, &question](benchmark::State& s) { boostEach<boost::listS>(s, make(n), question); });
        bench::add(name + "boost_vecS", n,
                   [=, &question](benchmark::State& s) { boostEach<boost::vecS>(s, make(n), question); });
#endif
    }
}

}  // namespace

int main(int argc, char** argv) {
    for (const int n : {1'000, 10'000, 100'000}) {
        for (const NamedFamily& family : kFamilies) addRows(family, n);
    }
    return bench::runRows(argc, argv);
}
