// What the kernels find, found in the most obvious ways, and checks that both agree; for the tests and for
// the fuzzer.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <set>
#include <utility>
#include <vector>

#include "rv/kernels/blocking_flow.h"
#include "rv/kernels/blocks.h"
#include "rv/kernels/breadth_first.h"
#include "rv/kernels/cheapest_tree.h"
#include "rv/kernels/connected_components.h"
#include "rv/kernels/depth_first.h"
#include "rv/kernels/disjoint_paths.h"
#include "rv/kernels/nearest.h"
#include "rv/kernels/reach_marks.h"
#include "rv/kernels/spanning_tree.h"
#include "rv/kernels/strong_components.h"
#include "rv/kernels/topological_order.h"
#include "rv/kernels/two_sided.h"
#include "tests/kernels/array_graph.h"

namespace rvtest {

template <class T>
std::vector<T> listed(const rv::Buffer<T>& values) {
    return {values.begin(), values.end()};
}

// Searches

struct Visits {
    explicit Visits(Index limit) : numbers(limit), completions(limit), parents(limit, kNoIndex) {}
    bool isReached(Index node) const { return numbers[node] != 0; }

    std::vector<Index> order;
    std::vector<int> numbers;
    std::vector<int> completions;
    std::vector<Index> parents;
};

using SearchFrom = void (*)(const rv::Arcs& arcs, Index start, Visits& visits);

inline void reach(Visits& visits, Index node, Index parent) {
    visits.order.push_back(node);
    visits.numbers[node] = static_cast<int>(visits.order.size());
    visits.parents[node] = parent;
}

inline void slowBreadthFirst(const rv::Arcs& arcs, Index start, Visits& visits) {
    reach(visits, start, kNoIndex);
    for (auto next = visits.order.size() - 1; next < visits.order.size(); ++next) {
        const Index node = visits.order[next];
        for (const Index target : arcs.targetsOf(node)) {
            if (!visits.isReached(target)) reach(visits, target, node);
        }
    }
}

inline void slowDepthFirst(const rv::Arcs& arcs, Index start, Visits& visits) {
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

inline Visits slowSearch(const ArrayGraph& graph, const rv::SearchSpace& space, SearchFrom searchFrom) {
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

inline void expectBreadthFirst(const rv::BreadthFirst& search, const Visits& visits) {
    EXPECT_EQ(listed(search.order), visits.order);
    EXPECT_EQ(listed(search.numbers), visits.numbers);
}

inline void expectDepthFirst(const rv::DepthFirst& search, const Visits& visits) {
    EXPECT_EQ(listed(search.order), visits.order);
    EXPECT_EQ(listed(search.numbers), visits.numbers);
    EXPECT_EQ(listed(search.completions), visits.completions);
    EXPECT_EQ(listed(search.parents), visits.parents);
}

// By the paths in the tree.
inline void expectKinds(const ArrayGraph& graph, const rv::SearchSpace& space, const rv::DepthFirst& search,
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

inline void expectSearches(const ArrayGraph& graph, Dice& dice) {
    rv::Pulse pulse;
    const ArraySpace mixed = graph.mixed();
    const ArraySpace undirected = graph.undirected();
    for (const ArraySpace* space : {&mixed, &undirected}) {
        expectBreadthFirst(rv::breadthFirst(**space, pulse), slowSearch(graph, **space, slowBreadthFirst));
        const rv::DepthFirst search = rv::depthFirst(**space, pulse);
        expectDepthFirst(search, slowSearch(graph, **space, slowDepthFirst));
        expectKinds(graph, **space, search, space == &undirected);
        if (graph.nodes.empty()) continue;
        const rv::Arcs& arcs = (*space)->arcs;
        const Index start = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
        Visits visits(graph.nodeLimit);
        slowBreadthFirst(arcs, start, visits);
        expectBreadthFirst(rv::breadthFirst(arcs, start, pulse), visits);
        visits = Visits(graph.nodeLimit);
        slowDepthFirst(arcs, start, visits);
        const rv::DepthFirst part = rv::depthFirst(arcs, start, pulse);
        expectDepthFirst(part, visits);
        expectKinds(graph, **space, part, space == &undirected);
    }
}

// Components, blocks, reach and topological orders, by their definitions; the orders in which they stand
// follow from the numbers of a depth-first search.

using Lists = std::vector<std::vector<Index>>;

inline Lists listed(const rv::NodeGroups& groups) {
    Lists lists;
    for (Index group = 0; group < groups.size(); ++group) {
        const auto nodes = groups[group];
        lists.emplace_back(nodes.begin(), nodes.end());
    }
    return lists;
}

inline void expectNumbers(const rv::Components& components, Index nodeLimit) {
    std::vector<int> numbers(nodeLimit);
    for (Index group = 0; group < components.groups.size(); ++group) {
        for (const Index node : components.groups[group]) numbers[node] = static_cast<int>(group) + 1;
    }
    EXPECT_EQ(std::vector<int>(components.numbers.begin(), components.numbers.end()), numbers);
}

// What a node reaches without one that is left out.
inline std::set<Index> reachedFrom(Index start, const rv::Arcs& arcs, Index leftOut = kNoIndex) {
    std::set<Index> reached;
    std::vector<Index> waiting;
    const auto reach = [&](Index node) {
        if (node != leftOut && reached.insert(node).second) waiting.push_back(node);
    };
    reach(start);
    while (!waiting.empty()) {
        const Index node = waiting.back();
        waiting.pop_back();
        for (const Index target : arcs.targetsOf(node)) reach(target);
    }
    return reached;
}

struct Numbered {
    explicit Numbered(const rv::SearchSpace& space) : search(rv::depthFirst(space, pulse)) {}
    // In the reverse of the order in which they are reached.
    std::vector<Index> latestFirst(const std::set<Index>& nodes) const {
        std::vector<Index> list(nodes.begin(), nodes.end());
        std::sort(list.begin(), list.end(),
                  [&](Index a, Index b) { return search.numbers[a] > search.numbers[b]; });
        return list;
    }

    rv::Pulse pulse;
    rv::DepthFirst search;
};

inline Lists slowStrong(const ArrayGraph& graph, const rv::SearchSpace& space) {
    const Numbered numbered(space);
    std::map<int, std::vector<Index>> closed;  // by the completion of the node reached first
    for (const Index node : graph.nodes) {
        std::set<Index> component;
        for (const Index other : reachedFrom(node, space.arcs)) {
            if (reachedFrom(other, space.arcs).count(node) != 0) component.insert(other);
        }
        const auto list = numbered.latestFirst(component);
        closed[numbered.search.completions[list.back()]] = list;
    }
    Lists lists;
    for (const auto& [completion, list] : closed) lists.push_back(list);
    return lists;
}

// Those that hold together with an edge whichever other node is left out.
inline std::set<Index> blockOf(rv::Ends ends, const ArrayGraph& graph, const rv::Arcs& arcs) {
    std::set<Index> block(graph.nodes.begin(), graph.nodes.end());
    for (const Index leftOut : graph.nodes) {
        auto held = reachedFrom(ends.source, arcs, leftOut);
        held.merge(reachedFrom(ends.target, arcs, leftOut));
        held.insert(leftOut);
        std::erase_if(block, [&](Index node) { return held.count(node) == 0; });
    }
    return block;
}

inline void expectBlocks(const ArrayGraph& graph, const rv::SearchSpace& space) {
    const Numbered numbered(space);
    std::map<int, std::vector<Index>> closed;  // by the completion of the node before the joint
    for (const Index edge : graph.edges) {
        const rv::Ends ends = graph.ends[edge];
        if (ends.source == ends.target) continue;
        const auto list = numbered.latestFirst(blockOf(ends, graph, space.arcs));
        closed[numbered.search.completions[*(list.end() - 2)]] = list;
    }
    Lists lists;
    std::vector<Index> articulationNodes;
    std::map<Index, int> blocksBelow;
    for (const auto& [completion, list] : closed) {
        lists.push_back(list);
        const Index joint = list.back();
        const bool isRoot = numbered.search.parents[joint] == kNoIndex;
        if (++blocksBelow[joint] == (isRoot ? 2 : 1)) articulationNodes.push_back(joint);
    }
    for (const Index node : graph.nodes) {
        if (space.isIsolated(node)) lists.push_back({node});
    }
    rv::Pulse pulse;
    const rv::Blocks found = rv::blocks(space, pulse);
    EXPECT_EQ(listed(found.groups), lists);
    EXPECT_EQ(std::vector<Index>(found.articulationNodes.begin(), found.articulationNodes.end()),
              articulationNodes);
    for (const Index node : graph.nodes) {
        const auto isIn = [&](const auto& list) { return std::count(list.begin(), list.end(), node) != 0; };
        EXPECT_EQ(isIn(found.articulationNodes), std::count_if(lists.begin(), lists.end(), isIn) > 1) << node;
    }
}

inline Lists slowConnected(const ArrayGraph& graph, const rv::Arcs& arcs) {
    Lists lists;
    std::set<Index> done;
    const auto add = [&](Index from) {
        if (done.count(from) != 0) return;
        const auto component = reachedFrom(from, arcs);
        lists.emplace_back();
        for (const Index node : graph.nodes) {
            if (component.count(node) != 0) lists.back().push_back(node);
        }
        done.insert(component.begin(), component.end());
    };
    for (const Index edge : graph.edges) {
        if (graph.ends[edge].source != graph.ends[edge].target) add(graph.ends[edge].source);
    }
    for (const Index node : graph.nodes) add(node);
    return lists;
}

inline std::vector<Index> slowTopologicalOrder(const ArrayGraph& graph) {
    std::vector<Index> order;
    std::set<Index> left(graph.edges.begin(), graph.edges.end());
    const auto hasInEdge = [&](Index node) {
        return std::any_of(left.begin(), left.end(),
                           [&](Index edge) { return graph.ends[edge].target == node; });
    };
    for (const Index node : graph.nodes) {
        if (!hasInEdge(node)) order.push_back(node);
    }
    for (std::size_t next = 0; next < order.size(); ++next) {
        for (const Index edge : graph.edges) {
            if (graph.ends[edge].source != order[next]) continue;
            left.erase(edge);
            if (!hasInEdge(graph.ends[edge].target)) order.push_back(graph.ends[edge].target);
        }
    }
    return order;
}

inline void expectTopologicalOrder(const ArrayGraph& graph) {
    const std::vector<Index> order = slowTopologicalOrder(graph);
    const ArcArrays arrays = graph.arcs();
    std::vector<Index> inDegrees(graph.nodeLimit);
    for (const Index target : arrays.targets) ++inDegrees[target];
    rv::Pulse pulse;
    for (const auto& given : {std::span<const Index>(), std::span<const Index>(inDegrees)}) {
        const auto found = rv::topologicalOrder(arrays.arcs(), graph.order(), given, pulse);
        EXPECT_EQ(std::vector<Index>(found.nodes.begin(), found.nodes.end()), order);
        EXPECT_EQ(found.isComplete, order.size() == graph.nodes.size());
    }
}

// Which of some nodes, among them numbers that no node has, every node reaches.
inline void expectReach(const ArrayGraph& graph, const rv::SearchSpace& space, Dice& dice) {
    rv::Pulse pulse;
    rv::ReachMarks marks(space, pulse);
    for (const Index count : {Index{64}, dice.below(4)}) {
        std::vector<Index> targets(count);
        for (Index& target : targets) target = dice.oneIn(9) ? kNoIndex : dice.below(graph.nodeLimit + 1);
        std::map<Index, std::uint64_t> expected;
        for (const Index node : graph.nodes) {
            const std::set<Index> reached = reachedFrom(node, space.arcs);
            for (std::size_t i = 0; i < targets.size(); ++i) {
                if (reached.count(targets[i]) != 0) expected[node] |= std::uint64_t{1} << i;
            }
        }
        marks.ask(targets, pulse);
        std::map<Index, std::uint64_t> found;
        marks.forEachNode(
            [&](Index node, std::uint64_t bits) { EXPECT_TRUE(found.emplace(node, bits).second) << node; });
        EXPECT_EQ(found, expected);
    }
}

inline void expectComponents(const ArrayGraph& graph, Dice& dice) {
    rv::Pulse pulse;
    const ArraySpace mixed = graph.mixed();
    const ArraySpace undirected = graph.undirected();
    const rv::Components strong = rv::strongComponents(*mixed, pulse);
    EXPECT_EQ(listed(strong.groups), slowStrong(graph, *mixed));
    expectNumbers(strong, graph.nodeLimit);
    const rv::Components connected = rv::connectedComponents(graph.order(), graph.nodeLimit, pulse);
    EXPECT_EQ(listed(connected.groups), slowConnected(graph, undirected->arcs));
    expectNumbers(connected, graph.nodeLimit);
    expectBlocks(graph, *undirected);
    expectTopologicalOrder(graph);
    expectReach(graph, *mixed, dice);
}

// Searches from both ends

// The edges of the path in the tree of a search from one node; nothing, and the nodes reached, if there is
// none.
struct OneSided {
    OneSided(const rv::Arcs& arcs, Index from, Index to) : order{from} {
        std::vector<Index> parents(arcs.nodeLimit(), kNoIndex);
        std::vector<Index> edges(arcs.nodeLimit(), kNoIndex);
        for (std::size_t next = 0; next < order.size(); ++next) {
            const Index node = order[next];
            for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
                const Index target = arcs.targets[arc];
                if (std::count(order.begin(), order.end(), target) != 0) continue;
                order.push_back(target);
                parents[target] = node;
                edges[target] = arcs.edges[arc];
            }
        }
        exists = std::count(order.begin(), order.end(), to) != 0;
        for (Index node = to; exists && node != from; node = parents[node])
            path.insert(path.begin(), edges[node]);
    }

    std::vector<Index> order;
    bool exists;
    std::vector<Index> path;
};

inline void expectPaths(const ArrayGraph& graph, Index from, rv::TwoSidedScratch& scratch, rv::Pulse& pulse) {
    const ArcArrays out = graph.arcs();
    const ArcArrays in = graph.arcs(true);
    const rv::Arcs ways = out.arcs();
    const rv::Arcs waysBack = in.arcs();
    const rv::ArcNeighbours neighbours(ways, waysBack);
    for (const Index to : graph.nodes) {
        SCOPED_TRACE(testing::Message() << "from " << from << " to " << to);
        const OneSided expected(ways, from, to);
        EXPECT_EQ(rv::connects(neighbours, from, to, scratch, pulse), expected.exists);
        ASSERT_EQ(rv::shortestPath(neighbours, from, to, scratch, pulse), expected.exists);
        EXPECT_EQ(listed(scratch.path), expected.path);
        if (expected.exists) continue;
        EXPECT_EQ(listed(scratch.forward.queue), expected.order);
    }
}

// Cheapest paths, by a list of candidates that is kept in order

template <class D>
inline constexpr D kUnreached = rv::NearestLabels<D>::kUnreached;

// Out-edges, then the edges among the in-edges that are followed both ways.
struct Question {
    ArrayGraph graph;
    std::vector<int> edgeCosts;
    std::vector<int> nodeCosts;
    Index start = 0;
    Index stop = kNoIndex;
    std::int64_t greatest = std::numeric_limits<std::int64_t>::max();
};

template <class D>
struct Answer {
    explicit Answer(Index nodeLimit) : distances(nodeLimit, kUnreached<D>), edges(nodeLimit, kNoIndex) {}
    friend bool operator==(const Answer&, const Answer&) = default;

    std::vector<Index> settled;
    std::vector<D> distances;
    std::vector<Index> edges;
};

template <class D>
class SlowSearch {
public:
    explicit SlowSearch(const Question& question)
        : m_question(question), m_answer(question.graph.nodeLimit) {}

    Answer<D> find() {
        offer(m_question.start, 0, kNoIndex);
        while (!m_candidates.empty()) {
            const Index node = m_candidates.front();
            m_candidates.erase(m_candidates.begin());
            m_answer.settled.push_back(node);
            if (node == m_question.stop) break;
            follow(node);
        }
        return m_answer;
    }

private:
    void follow(Index node) {
        const ArrayGraph& graph = m_question.graph;
        std::int64_t left = m_answer.distances[node];
        if (node != m_question.start) left += m_question.nodeCosts[node];
        for (const bool isBackward : {false, true}) {
            for (const Index edge : graph.edges) {
                const auto [source, target] = graph.ends[edge];
                if ((isBackward ? target : source) != node || (isBackward && !graph.twoWay[edge])) continue;
                offer(isBackward ? source : target, left + m_question.edgeCosts[edge], edge);
            }
        }
    }
    // A candidate whose distance falls stands behind all others of the same distance.
    void offer(Index node, std::int64_t distance, Index edge) {
        auto& distances = m_answer.distances;
        if (distance > m_question.greatest || distance >= distances[node]) return;
        distances[node] = static_cast<D>(distance);
        m_answer.edges[node] = edge;
        std::erase(m_candidates, node);
        const auto place = std::find_if(m_candidates.begin(), m_candidates.end(), [&](Index candidate) {
            return distances[candidate] > distances[node];
        });
        m_candidates.insert(place, node);
    }

    const Question& m_question;
    Answer<D> m_answer;
    std::vector<Index> m_candidates;
};

template <class Labels>
Answer<typename Labels::Distance> answer(const Question& question, Labels& labels, rv::Pulse& pulse) {
    using D = typename Labels::Distance;
    const ArcArrays out = question.graph.arcs();
    const ArcArrays in = question.graph.arcs(true);
    const rv::Buffer<int> costs = rv::costsByArc(
        out.arcs(), [&](Index edge) { return question.edgeCosts[edge]; }, pulse);
    const rv::NearestWays ways([&](Index node) { return question.nodeCosts[node]; },
                               rv::ArcWays(out.arcs(), [&](Index arc, Index) { return costs[arc]; }),
                               rv::ArcWays(
                                   in.arcs(), [&](Index, Index edge) { return question.edgeCosts[edge]; },
                                   [&](Index edge) -> bool { return question.graph.twoWay[edge]; }));
    const auto greatest = static_cast<D>(std::min<std::int64_t>(question.greatest, kUnreached<D>));
    rv::Buffer<Index> settled;
    rv::findNearest(ways, question.start, {greatest, question.stop}, labels, settled, pulse);
    Answer<D> answer(question.graph.nodeLimit);
    answer.settled.assign(settled.begin(), settled.end());
    return answer;
}

template <class D>
Answer<D> freshAnswer(const Question& question, rv::Pulse& pulse) {
    rv::NearestLabels<D> labels(question.graph.nodeLimit);
    Answer<D> found = answer(question, labels, pulse);
    found.distances.assign(labels.distances.begin(), labels.distances.end());
    found.edges.assign(labels.edges.begin(), labels.edges.end());
    return found;
}

template <class D>
Answer<D> withoutEdges(Answer<D> answer) {
    answer.edges.assign(answer.edges.size(), kNoIndex);
    return answer;
}

template <class D>
Answer<D> reusedAnswer(const Question& question, rv::ReusedNearestLabels<D>& labels, rv::Pulse& pulse) {
    labels.begin(question.graph.nodeLimit);
    Answer<D> found = answer(question, labels, pulse);
    for (Index node = 0; node < question.graph.nodeLimit; ++node)
        found.distances[node] = labels.distance(node);
    return found;
}

inline Question randomQuestion(Dice& dice) {
    Question question;
    question.graph = randomArrays(dice);
    const ArrayGraph& graph = question.graph;
    if (graph.nodes.empty()) question.graph = ArrayGraph::plain(1, {});
    constexpr Index kRanges[] = {1, 2, 3, 5, 200, 70000, 2147483647};
    const Index range = kRanges[dice.below(7)];
    const Index least = dice.below(2);
    for (std::size_t i = 0; i < graph.ends.size(); ++i)
        question.edgeCosts.push_back(static_cast<int>(least + dice.below(range)));
    for (Index i = 0; i < graph.nodeLimit; ++i)
        question.nodeCosts.push_back(dice.oneIn(2) ? 0 : static_cast<int>(dice.below(range)));
    const auto drawn = [&] { return graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))]; };
    question.start = drawn();
    if (dice.oneIn(3)) question.stop = drawn();
    if (dice.oneIn(3)) question.greatest = static_cast<int>(dice.below(3 * (range / 2) + 1) & 0x7FFFFFFF);
    return question;
}

template <class D>
void expectNearest(const Question& question, rv::ReusedNearestLabels<D>& labels) {
    rv::Pulse pulse;
    const auto expected = SlowSearch<D>(question).find();
    EXPECT_EQ(freshAnswer<D>(question, pulse), expected);
    EXPECT_EQ(reusedAnswer(question, labels, pulse), withoutEdges(expected));
}

inline void expectNearest(const Question& question, rv::ReusedNearestLabels<int>& labels,
                          rv::ReusedNearestLabels<std::int64_t>& exactLabels) {
    expectNearest(question, labels);
    expectNearest(question, exactLabels);
}

// Flows, by one breadth-first search after another

class SlowFlow {
public:
    explicit SlowFlow(const rv::FlowNetwork& network)
        : flows(network.edgeLimit), m_network(network), m_entering(network.out.nodeLimit()) {
        while (findPath()) push();
    }

    std::vector<int> flows;
    std::int64_t total = 0;
    std::vector<Index> reached;

private:
    using State = std::pair<Index, bool>;  // a node, and whether flow may leave it
    struct Step {
        State from;
        Index edge;  // kNoIndex between the states of a node
        bool isForward;
        std::int64_t residual;
    };

    bool findPath() {
        const State source(m_network.source, true);
        const State sink(m_network.sink, false);
        m_steps = {{source, {}}};
        std::vector<State> queue{source};
        for (std::size_t next = 0; next < queue.size(); ++next) {
            for (const auto& [state, step] : stepsFrom(queue[next])) {
                if (step.residual <= 0 || !m_steps.emplace(state, step).second) continue;
                if (state == sink) return true;
                queue.push_back(state);
            }
        }
        reached.clear();
        for (const State& state : queue) {
            if (std::count(reached.begin(), reached.end(), state.first) == 0) reached.push_back(state.first);
        }
        return false;
    }
    std::vector<std::pair<State, Step>> stepsFrom(const State& state) const {
        constexpr std::int64_t kMany = std::numeric_limits<std::int64_t>::max();
        const auto [node, isOut] = state;
        std::vector<std::pair<State, Step>> steps;
        const auto& capacities = m_network.nodeCapacities;
        const bool isLimited = node < capacities.size() && capacities[node] != 2147483647;
        const std::int64_t inner = isLimited && !isOut ? capacities[node] - m_entering[node] : kMany;
        if (state != State(m_network.source, true))
            steps.push_back({{node, !isOut}, {state, kNoIndex, isOut, inner}});
        const rv::Arcs& arcs = isOut ? m_network.out : m_network.in;
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            const Index edge = arcs.edges[arc];
            const auto& all = m_network.edgeCapacities;
            const int residual = isOut ? (edge < all.size() ? all[edge] : 0) - flows[edge] : flows[edge];
            steps.push_back({{arcs.targets[arc], !isOut}, {state, edge, isOut, residual}});
        }
        return steps;
    }
    void push() {
        const State source(m_network.source, true);
        const State sink(m_network.sink, false);
        std::int64_t amount = std::numeric_limits<std::int64_t>::max();
        for (State state = sink; state != source; state = m_steps.at(state).from)
            amount = std::min(amount, m_steps.at(state).residual);
        for (State state = sink; state != source; state = m_steps.at(state).from) {
            const Step& step = m_steps.at(state);
            if (step.edge == kNoIndex) continue;
            const auto change = static_cast<int>(step.isForward ? amount : -amount);
            flows[step.edge] += change;
            m_entering[step.isForward ? state.first : step.from.first] += change;
        }
        total += amount;
    }

    const rv::FlowNetwork& m_network;
    std::vector<std::int64_t> m_entering;  // by node
    std::map<State, Step> m_steps;         // by the state to which they lead
};

inline void expectMaximumFlow(const ArrayGraph& graph, Dice& dice) {
    const ArcArrays out = graph.arcs();
    const ArcArrays in = graph.arcs(true);
    constexpr Index kRanges[] = {1, 2, 5, 100, 2147483647};
    const auto capacities = [&](std::size_t count) {
        const Index range = kRanges[dice.below(5)];
        std::vector<int> values;
        for (; count > 0; --count)
            values.push_back(
                static_cast<int>(dice.oneIn(5) ? 2147483647U : dice.below(range) + dice.below(2)));
        return values;
    };
    const auto edgeCapacities = capacities(graph.ends.size() - dice.below(2) % (graph.ends.size() + 1));
    const auto nodeCapacities = capacities(dice.oneIn(2) ? 0 : graph.nodeLimit - dice.below(2));
    const auto drawn = [&] { return graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))]; };
    const rv::FlowNetwork network{out.arcs(),    in.arcs(), static_cast<Index>(graph.ends.size()),
                                  drawn(),       drawn(),   edgeCapacities,
                                  nodeCapacities};
    rv::Pulse pulse;
    const rv::MaximumFlow found = rv::maximumFlow(network, pulse);
    const SlowFlow expected(network);
    SCOPED_TRACE(testing::Message() << "from " << network.source << " to " << network.sink << ", capacities "
                                    << testing::PrintToString(edgeCapacities) << " and "
                                    << testing::PrintToString(nodeCapacities));
    EXPECT_EQ(found.total, expected.total);
    EXPECT_EQ(listed(found.flows), expected.flows);
    EXPECT_EQ(listed(found.reached), expected.reached);
}

// Of the same flow over a graph in which every node is an entry 2 v and an exit 2 v + 1, if asked for.
inline std::vector<std::vector<Index>> slowDisjointPaths(const ArrayGraph& graph, Index start, Index finish,
                                                         bool areNodesDisjoint) {
    ArrayGraph split = graph;
    if (areNodesDisjoint) {
        split.nodeLimit = 2 * graph.nodeLimit;
        split.edges.clear();
        for (rv::Ends& ends : split.ends) ends = {2 * ends.source + 1, 2 * ends.target};
        for (const Index node : graph.nodes) {
            split.edges.push_back(static_cast<Index>(split.ends.size()));
            split.ends.push_back({2 * node, 2 * node + 1});
        }
        // As out-edges are listed, node after node.
        for (const Index node : graph.nodes) {
            for (const Index edge : graph.edges) {
                if (graph.ends[edge].source == node) split.edges.push_back(edge);
            }
        }
    }
    const ArcArrays out = split.arcs();
    const ArcArrays in = split.arcs(true);
    const std::vector<int> ones(split.ends.size(), 1);
    SlowFlow flow({out.arcs(),
                   in.arcs(),
                   static_cast<Index>(split.ends.size()),
                   areNodesDisjoint ? 2 * start + 1 : start,
                   areNodesDisjoint ? 2 * finish : finish,
                   ones,
                   {}});
    std::vector<std::vector<Index>> paths(static_cast<std::size_t>(flow.total));
    for (auto& path : paths) {
        Index node = start;
        do {
            const auto next = std::find_if(graph.edges.begin(), graph.edges.end(), [&](Index edge) {
                return graph.ends[edge].source == node && flow.flows[edge] == 1;
            });
            flow.flows[*next] = 0;
            path.push_back(*next);
            node = graph.ends[*next].target;
        } while (node != finish);
    }
    return paths;
}

inline rv::FlatGraph flatGraphOf(const ArrayGraph& graph) {
    const rv::GraphOrder order = graph.order();
    return rv::FlatGraph({graph.nodeLimit,
                          order.nodeCount,
                          order.edgeCount,
                          graph.ends,
                          {order.nodes.begin(), order.nodes.end()},
                          {order.edges.begin(), order.edges.end()},
                          {}});
}

inline void expectDisjointPaths(const ArrayGraph& graph, Dice& dice) {
    const rv::FlatGraph flat = flatGraphOf(graph);
    rv::Pulse pulse;
    const Index start = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
    const Index finish = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
    for (const bool areNodesDisjoint : {false, true}) {
        const auto find = areNodesDisjoint ? rv::nodeDisjointPaths : rv::edgeDisjointPaths;
        const rv::EdgePaths found = find(flat, start, finish, pulse);
        std::vector<std::vector<Index>> paths;
        for (Index path = 0; path < found.size(); ++path)
            paths.emplace_back(found[path].begin(), found[path].end());
        EXPECT_EQ(paths, slowDisjointPaths(graph, start, finish, areNodesDisjoint))
            << "from " << start << " to " << finish << (areNodesDisjoint ? " by nodes" : " by edges");
    }
}

// Spanning trees, by a list of candidates that is kept in order

inline std::vector<int> slowSpanningTree(const ArrayGraph& graph, const std::vector<int>& costs) {
    const auto costOf = [&](Index edge) { return edge < costs.size() ? costs[edge] : 0; };
    const auto otherEnd = [&](Index edge, Index node) {
        const auto [source, target] = graph.ends[edge];
        return source == node ? target : source;
    };
    // In-edges first; loops neither.
    const auto edgesOf = [&](Index node) {
        std::vector<Index> edges;
        for (const bool isOut : {false, true}) {
            for (const Index edge : graph.edges) {
                const auto [source, target] = graph.ends[edge];
                if (source != target && (isOut ? source : target) == node) edges.push_back(edge);
            }
        }
        return edges;
    };
    const auto representative = [&](Index edge) {
        const auto isParallel = [&](Index other) {
            return std::minmax(graph.ends[edge].source, graph.ends[edge].target) ==
                   std::minmax(graph.ends[other].source, graph.ends[other].target);
        };
        const Index first = *std::find_if(graph.edges.begin(), graph.edges.end(), isParallel);
        std::vector<Index> group = edgesOf(graph.ends[first].source);
        std::erase_if(group, [&](Index other) { return !isParallel(other); });
        return *std::min_element(group.begin(), group.end(),
                                 [&](Index a, Index b) { return costOf(a) < costOf(b); });
    };
    struct Candidate {
        Index node;
        Index edge;
    };
    std::vector<Candidate> candidates;
    std::set<Index> joined;
    std::vector<int> isTreeEdge(graph.ends.size());
    const auto isOf = [](Index node) { return [=](const Candidate& other) { return other.node == node; }; };
    const auto offer = [&](const Candidate& offered) {
        if (costOf(offered.edge) == 2147483647 || joined.count(offered.node) != 0) return;
        const auto before = std::find_if(candidates.begin(), candidates.end(), isOf(offered.node));
        if (before != candidates.end()) {
            if (costOf(before->edge) <= costOf(offered.edge)) return;
            candidates.erase(before);
        }
        const auto place = std::find_if(candidates.begin(), candidates.end(), [&](const Candidate& other) {
            return costOf(other.edge) > costOf(offered.edge);
        });
        candidates.insert(place, offered);
    };
    const auto join = [&](Index node) {
        joined.insert(node);
        for (const Index edge : edgesOf(node)) {
            if (representative(edge) == edge) offer({otherEnd(edge, node), edge});
        }
    };
    if (!graph.nodes.empty()) join(graph.nodes.front());
    while (!candidates.empty()) {
        const Candidate next = candidates.front();
        candidates.erase(candidates.begin());
        isTreeEdge[next.edge] = 1;
        join(next.node);
    }
    return isTreeEdge;
}

inline void expectSpanningTree(const ArrayGraph& graph, Dice& dice) {
    constexpr int kCosts[] = {0, 1, 2, 2147483647, -2147483647 - 1, 2147483646};
    const Index kinds = 1 + dice.below(6);
    std::vector<int> costs;
    for (std::size_t left = graph.ends.size() - dice.below(2) % (graph.ends.size() + 1); left > 0; --left)
        costs.push_back(kCosts[dice.below(kinds)]);
    SCOPED_TRACE("costs " + testing::PrintToString(costs));
    rv::Pulse pulse;
    const rv::SpanningTree tree = rv::spanningTree(flatGraphOf(graph), costs, pulse);
    EXPECT_EQ(listed(tree.isTreeEdge), slowSpanningTree(graph, costs));
    EXPECT_EQ(tree.edgeCount, std::count(tree.isTreeEdge.begin(), tree.isTreeEdge.end(), 1));
}

// A question for a tree whose costs may be below 0, and its answer by relaxing every edge again and again.
struct TreeQuestion {
    explicit TreeQuestion(Dice& dice) : graph(randomArrays(dice)) {
        if (graph.nodes.empty()) graph = ArrayGraph::plain(1, {});
        if (dice.oneIn(2)) graph.twoWay.assign(graph.ends.size(), false);
        if (dice.oneIn(3)) {  // no cycle, as edges lead to greater numbers
            for (const Index edge : graph.edges) {
                auto& [source, target] = graph.ends[edge];
                if (source > target) std::swap(source, target);
            }
        }
        constexpr std::int64_t kGreatest[] = {3, 9, 2147483647};
        const std::int64_t greatest = kGreatest[dice.below(3)];
        const std::int64_t least = dice.oneIn(2) ? 0 : -greatest / (1 + dice.below(4));
        for (std::size_t i = 0; i < graph.ends.size(); ++i)
            costs.push_back(least + dice.below(static_cast<Index>(greatest - least)));
        start = graph.nodes[dice.below(static_cast<Index>(graph.nodes.size()))];
    }

    rv::CheapestTree find(bool saysNegative, rv::Pulse& pulse) const {
        const ArcArrays out = graph.arcs();
        const ArcArrays in = graph.arcs(true);
        const bool anyTwoWay = std::count(graph.twoWay.begin(), graph.twoWay.end(), true) > 0;
        return {out.arcs(),
                [&] { return in.arcs(); },
                start,
                anyTwoWay,
                [&](Index edge) -> bool { return graph.twoWay[edge]; },
                saysNegative,
                [&](Index edge) { return costs[edge]; },
                pulse};
    }

    // Without a negative cycle.
    std::optional<std::map<Index, std::int64_t>> distances() const {
        std::map<Index, std::int64_t> known{{start, 0}};
        bool isChanged = true;
        for (std::size_t round = 0; isChanged; ++round) {
            if (round > graph.nodes.size()) return std::nullopt;
            isChanged = false;
            forEachWay([&](Index edge, Index from, Index to) {
                if (known.count(from) == 0) return;
                const std::int64_t offered = known[from] + costs[edge];
                if (known.count(to) > 0 && known[to] <= offered) return;
                known[to] = offered;
                isChanged = true;
            });
        }
        return known;
    }
    template <class F>
    void forEachWay(F f) const {
        for (const Index edge : graph.edges) {
            const auto [source, target] = graph.ends[edge];
            f(edge, source, target);
            if (graph.twoWay[edge]) f(edge, target, source);
        }
    }

    ArrayGraph graph;
    std::vector<std::int64_t> costs;
    Index start = 0;
};

// Gives whether there is a negative cycle. It may be said that costs are negative where none is.
inline bool expectTree(const TreeQuestion& question, bool saysNegative) {
    rv::Pulse pulse;
    const bool isNegative =
        std::any_of(question.costs.begin(), question.costs.end(), [](std::int64_t cost) { return cost < 0; });
    const rv::CheapestTree tree = question.find(isNegative || saysNegative, pulse);
    const auto expected = question.distances();
    EXPECT_EQ(tree.hasNegativeCycle(), !expected);
    if (!expected) return true;
    for (const Index node : question.graph.nodes) {
        const auto found = expected->find(node);
        const bool isFar = found != expected->end() && found->second >= 2147483647;
        if (isFar && tree.distance(node) == rv::CheapestTree::kUnreached) continue;
        EXPECT_EQ(tree.distance(node),
                  found == expected->end() ? rv::CheapestTree::kUnreached : found->second);
        const Index edge = tree.edge(node);
        EXPECT_EQ(edge == kNoIndex, node == question.start || found == expected->end());
        bool isTight = edge == kNoIndex;
        question.forEachWay([&](Index way, Index from, Index to) {
            isTight |=
                way == edge && to == node && tree.distance(from) + question.costs[way] == tree.distance(node);
        });
        EXPECT_TRUE(isTight);
    }
    return false;
}

}  // namespace rvtest
