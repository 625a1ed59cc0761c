// Breadth-first and depth-first search in arrays.

#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <vector>

#include "rv/kernels/breadth_first.h"
#include "rv/kernels/depth_first.h"
#include "tests/kernels/array_graph.h"
#include "tests/kernels/breaking_pulse.h"

namespace {

using namespace rvtest;
using rv::BreadthFirst;
using rv::DepthFirst;

struct Visits {
    explicit Visits(Index limit) : numbers(limit), completions(limit), parents(limit, kNoIndex) {}
    bool isReached(Index node) const { return numbers[node] != 0; }

    std::vector<Index> order;
    std::vector<int> numbers;
    std::vector<int> completions;
    std::vector<Index> parents;
};

using SearchFrom = void (*)(const rv::Arcs& arcs, Index start, Visits& visits);

void reach(Visits& visits, Index node, Index parent) {
    visits.order.push_back(node);
    visits.numbers[node] = static_cast<int>(visits.order.size());
    visits.parents[node] = parent;
}

void slowBreadthFirst(const rv::Arcs& arcs, Index start, Visits& visits) {
    reach(visits, start, kNoIndex);
    for (auto next = visits.order.size() - 1; next < visits.order.size(); ++next) {
        const Index node = visits.order[next];
        for (const Index target : arcs.targetsOf(node)) {
            if (!visits.isReached(target)) reach(visits, target, node);
        }
    }
}

void slowDepthFirst(const rv::Arcs& arcs, Index start, Visits& visits) {
    std::vector<Index> path{start};
    reach(visits, start, kNoIndex);
    int completed = *std::max_element(visits.completions.begin(), visits.completions.end());
    while (!path.empty()) {
        const Index node = path.back();
        const auto targets = arcs.targetsOf(node);
        const auto next = std::find_if(targets.rbegin(), targets.rend(),
                                       [&](Index target) { return !visits.isReached(target); });
        if (next != targets.rend()) {
            reach(visits, *next, node);
            path.push_back(*next);
        } else {
            visits.completions[node] = ++completed;
            path.pop_back();
        }
    }
}

Visits slowSearch(const ArrayGraph& graph, const rv::SearchSpace& space, SearchFrom searchFrom) {
    Visits visits(graph.nodeLimit);
    for (;;) {
        Index first = kNoIndex;
        for (const Index node : graph.nodes) {
            if (visits.isReached(node) || space.isIsolated(node)) continue;
            if (first == kNoIndex || space.inDegrees[node] < space.inDegrees[first]) first = node;
        }
        if (first == kNoIndex) break;
        searchFrom(space.arcs, first, visits);
        if (space.arcs.degree(first) != 0) continue;
        for (const Index edge : graph.edges) {
            const auto [source, target] = graph.ends[edge];
            if (source == target || visits.isReached(source)) continue;
            searchFrom(space.arcs, source, visits);
            break;
        }
    }
    for (const Index node : graph.nodes) {
        if (space.isIsolated(node)) searchFrom(space.arcs, node, visits);
    }
    return visits;
}

template <class T>
std::vector<T> listed(const rv::Buffer<T>& values) {
    return {values.begin(), values.end()};
}

void expectBreadthFirst(const BreadthFirst& search, const Visits& visits) {
    EXPECT_EQ(listed(search.order), visits.order);
    EXPECT_EQ(listed(search.numbers), visits.numbers);
}

void expectDepthFirst(const DepthFirst& search, const Visits& visits) {
    EXPECT_EQ(listed(search.order), visits.order);
    EXPECT_EQ(listed(search.numbers), visits.numbers);
    EXPECT_EQ(listed(search.completions), visits.completions);
    EXPECT_EQ(listed(search.parents), visits.parents);
}

// By the paths in the tree.
void expectKinds(const ArrayGraph& graph, const rv::SearchSpace& space, const DepthFirst& search,
                 bool allUndirected) {
    const auto isAncestor = [&](Index ancestor, Index node) {
        while (node != kNoIndex && node != ancestor) node = search.parents[node];
        return node == ancestor;
    };
    const auto isUndirected = [&](Index edge) { return allUndirected || graph.twoWay[edge]; };
    std::vector<std::set<int>> possible(graph.ends.size());
    for (const Index node : search.order) {
        for (Index arc = space.arcs.first[node]; arc < space.arcs.last[node]; ++arc) {
            const Index target = space.arcs.targets[arc];
            const Index edge = space.arcs.edges[arc];
            possible[edge].insert(search.parents[target] == node ? rv::kTreeEdge
                                  : isAncestor(target, node)     ? rv::kBackEdge
                                  : !isAncestor(node, target)    ? rv::kCrossEdge
                                  : isUndirected(edge)           ? rv::kBackEdge
                                                                 : rv::kForwardEdge);
        }
    }
    rv::Pulse pulse;
    const rv::Buffer<int> kinds = rv::edgeKinds<int>(space, search, isUndirected, pulse);
    ASSERT_EQ(kinds.size(), possible.size());
    for (Index edge = 0; edge < kinds.size(); ++edge) {
        // Of the two arcs of an edge one may be a tree edge's; else they agree.
        auto& its = possible[edge];
        if (its.count(rv::kTreeEdge) != 0) its = {rv::kTreeEdge};
        EXPECT_LE(its.size(), 1U);
        EXPECT_EQ(kinds[edge], its.empty() ? rv::kNoKind : *its.begin()) << "of edge " << edge;
    }
}

TEST(Searches, GiveTheNumbersOfTheObviousWay) {
    rv::Pulse pulse;
    for (std::uint64_t seed = 0; seed < 2000; ++seed) {
        Dice dice(seed);
        const ArrayGraph graph = randomArrays(dice);
        SCOPED_TRACE(testing::Message() << "seed " << seed << ": " << text(graph));
        const ArraySpace mixed = graph.mixed();
        const ArraySpace undirected = graph.undirected();
        for (const ArraySpace* space : {&mixed, &undirected}) {
            expectBreadthFirst(rv::breadthFirst(**space, pulse),
                               slowSearch(graph, **space, slowBreadthFirst));
            const DepthFirst search = rv::depthFirst(**space, pulse);
            expectDepthFirst(search, slowSearch(graph, **space, slowDepthFirst));
            expectKinds(graph, **space, search, space == &undirected);
            if (graph.nodes.empty()) continue;
            const Index start = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
            Visits visits(graph.nodeLimit);
            slowBreadthFirst((*space)->arcs, start, visits);
            expectBreadthFirst(rv::breadthFirst((*space)->arcs, start, pulse), visits);
            visits = Visits(graph.nodeLimit);
            slowDepthFirst((*space)->arcs, start, visits);
            const DepthFirst part = rv::depthFirst((*space)->arcs, start, pulse);
            expectDepthFirst(part, visits);
            expectKinds(graph, **space, part, space == &undirected);
        }
        if (HasFailure()) return;
    }
}

// A parallel says nothing of the edge that was followed but whether that is a cross edge.
TEST(Searches, KindsOfParallels) {
    for (const bool pointsForward : {false, true}) {
        EXPECT_EQ(rv::kindOfParallel(rv::kCrossEdge, pointsForward, false), rv::kCrossEdge);
        EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, pointsForward, true), rv::kBackEdge);
    }
    EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, true, false), rv::kForwardEdge);
    EXPECT_EQ(rv::kindOfParallel(rv::kTreeEdge, false, false), rv::kBackEdge);
}

TEST(Searches, CanBeBrokenOff) {
    const ArrayGraph graph = ArrayGraph::plain(6, {{0, 1}, {1, 2}, {2, 0}, {2, 3}, {4, 3}});
    const ArraySpace space = graph.mixed();
    breakOffEverywhere([&](rv::Pulse& pulse) { rv::breadthFirst(*space, pulse); });
    breakOffEverywhere([&](rv::Pulse& pulse) {
        const DepthFirst search = rv::depthFirst(*space, pulse);
        rv::edgeKinds<int>(
            *space, search, [](Index) { return false; }, pulse);
    });
}

// Long enough for what is fetched ahead, and for a walk that must not end in the stack.
TEST(Searches, OfManyNodes) {
    constexpr Index kNodes = 200000;
    std::vector<std::pair<Index, Index>> pairs;
    for (Index node = 0; node + 1 < kNodes; ++node) pairs.emplace_back(node, node + 1);
    for (Index node = 0; node < kNodes; node += 2) pairs.emplace_back(node, node * std::uint64_t{7} % kNodes);
    const ArrayGraph graph = ArrayGraph::plain(kNodes, pairs);
    const ArraySpace space = graph.undirected();
    rv::Pulse pulse;
    Visits visits(kNodes);
    slowBreadthFirst(space->arcs, 5, visits);
    expectBreadthFirst(rv::breadthFirst(space->arcs, 5, pulse), visits);
    visits = Visits(kNodes);
    slowDepthFirst(space->arcs, 5, visits);
    expectDepthFirst(rv::depthFirst(space->arcs, 5, pulse), visits);
}

}  // namespace
