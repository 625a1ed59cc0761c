// What must be true of the answer of each algorithm, found in the most obvious way. For small graphs.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <map>
#include <set>
#include <vector>

#include "tests/algorithm_checks.h"

namespace rvfuzz {

#define RV_REQUIRE(condition) \
    ((condition) ? static_cast<void>(0) : rvfuzz::fail(#condition, __FILE__, __LINE__))

// The graph in hand, which is shown when something is not true.
inline const RVGraph* shownGraph = nullptr;

[[noreturn]] inline void fail(const char* condition, const char* file, int line) {
    std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, condition);
    if (shownGraph != nullptr) std::fprintf(stderr, "%s\n", rvtest::orders(shownGraph).c_str());
    std::abort();
}

template <class R>
struct Tag {};

template <class Member>
std::vector<Member*> membersOf(const auto& list) {
    std::vector<Member*> all;
    for (Member* member : list) all.push_back(member);
    return all;
}

constexpr std::int64_t kFar = std::numeric_limits<std::int64_t>::max() / 4;

// A way from one node to another, by position of the nodes in the graph.
struct Arc {
    std::size_t from;
    std::size_t to;
    std::int64_t cost;
    RVEdge* edge;
};

// A graph and what an input says of it.
class Net {
public:
    template <class Input>
    Net(const Input& input, const RVGraph* graph) {
        for (RVNode* node : *graph->pNodeList()) {
            m_positions[node] = nodes.size();
            nodes.push_back(node);
            std::int64_t cost = 0;
            if constexpr (requires { input.cost(node); }) cost = input.cost(node);
            nodeCosts.push_back(note(cost));
            if constexpr (requires { input.capacity(node); }) capacities.push_back(input.capacity(node));
        }
        bool allUndirected = false;
        if constexpr (requires { input.undirected(); }) allUndirected = input.undirected() != 0;
        if constexpr (
            requires { input.undirected(graph->pFirstEdge()); } && requires { input.directed(); })
            allUndirected = input.directed() == 0;
        for (RVEdge* edge : *graph->pEdgeList()) {
            std::int64_t cost = 1;
            bool undirected = allUndirected;
            if constexpr (requires { input.cost(edge); }) cost = input.cost(edge);
            if constexpr (requires { input.undirected(edge); })
                undirected = undirected || input.undirected(edge) != 0;
            note(cost);
            const std::size_t from = at(edge->pSourceNode());
            const std::size_t to = at(edge->pTargetNode());
            arcs.push_back({from, to, cost, edge});
            if (undirected) arcs.push_back({to, from, cost, edge});
        }
    }

    std::size_t at(const RVNode* node) const {
        const auto found = m_positions.find(node);
        RV_REQUIRE(found != m_positions.end());
        return found->second;
    }
    // Whether all costs are small enough for sums not to leave the 32 bits, and none is negative.
    bool isModest() const { return m_greatest <= 100000; }
    bool isNegative() const { return m_least < 0; }

    // Of a node: those that it reaches, itself included. Arcs may be left out, or be followed both ways.
    template <class Keep>
    std::vector<std::vector<bool>> reach(Keep keep, bool bothWays = false) const {
        std::vector<std::vector<bool>> all(nodes.size(), std::vector<bool>(nodes.size()));
        for (std::size_t start = 0; start < nodes.size(); ++start) {
            std::vector<std::size_t> pending{start};
            all[start][start] = true;
            const auto visit = [&](std::size_t node) {
                if (!all[start][node]) pending.push_back(node);
                all[start][node] = true;
            };
            while (!pending.empty()) {
                const std::size_t node = pending.back();
                pending.pop_back();
                for (const Arc& arc : arcs) {
                    if (!keep(arc)) continue;
                    if (arc.from == node) visit(arc.to);
                    if (bothWays && arc.to == node) visit(arc.from);
                }
            }
        }
        return all;
    }
    std::vector<std::vector<bool>> reach() const {
        return reach([](const Arc&) { return true; });
    }
    std::vector<std::vector<bool>> parts() const {
        return reach([](const Arc&) { return true; }, true);
    }
    template <class Keep>
    bool isAcyclic(Keep keep) const {
        const auto reached = reach(keep);
        return std::none_of(arcs.begin(), arcs.end(),
                            [&](const Arc& arc) { return keep(arc) && reached[arc.to][arc.from]; });
    }
    bool isAcyclic() const {
        return isAcyclic([](const Arc&) { return true; });
    }
    // What the cheapest ways cost: their edges and, if they count, the nodes in between. Empty when there is
    // a negative cycle.
    std::vector<std::int64_t> distances(std::size_t start, bool withNodes, bool reversed = false) const {
        std::vector<std::int64_t> all(nodes.size(), kFar);
        all[start] = 0;
        for (std::size_t pass = 0; pass <= nodes.size(); ++pass) {
            bool isChanged = false;
            for (const Arc& arc : arcs) {
                const std::size_t from = reversed ? arc.to : arc.from;
                const std::size_t to = reversed ? arc.from : arc.to;
                if (all[from] == kFar) continue;
                const std::int64_t cost =
                    all[from] + arc.cost + (withNodes && from != start ? nodeCosts[from] : 0);
                if (cost >= all[to]) continue;
                all[to] = cost;
                isChanged = true;
            }
            if (!isChanged) return all;
        }
        return {};
    }
    // Whether edges follow one another from one node to the other; gives their cost and that of the nodes in
    // between.
    bool isPath(const RVEdgeDList& path, const RVNode* from, const RVNode* to, std::int64_t* cost = nullptr,
                std::int64_t* nodeCost = nullptr) const {
        const RVNode* place = from;
        std::int64_t sum = 0;
        std::int64_t nodeSum = 0;
        bool isFirst = true;
        for (RVEdge* edge : path) {
            const RVNode* other = edge->pOtherNode(place);
            const auto found = std::find_if(arcs.begin(), arcs.end(), [&](const Arc& arc) {
                return arc.edge == edge && nodes[arc.from] == place && nodes[arc.to] == other;
            });
            if (found == arcs.end()) return false;
            if (!isFirst) nodeSum += nodeCosts[at(place)];
            isFirst = false;
            sum += found->cost;
            place = other;
        }
        if (cost != nullptr) *cost = sum;
        if (nodeCost != nullptr) *nodeCost = nodeSum;
        return place == to;
    }

    std::vector<RVNode*> nodes;
    std::vector<std::int64_t> nodeCosts;
    std::vector<std::int64_t> capacities;
    std::vector<Arc> arcs;

private:
    std::int64_t note(std::int64_t cost) {
        m_least = std::min(m_least, cost);
        m_greatest = std::max({m_greatest, cost, -cost});
        return cost;
    }
    std::map<const RVNode*, std::size_t> m_positions;
    std::int64_t m_least = 0;
    std::int64_t m_greatest = 0;
};

// A matrix of residual capacities between the entries and the exits of nodes: 2 v and 2 v + 1.
class Residuals {
public:
    explicit Residuals(std::size_t nodes) : m_size(2 * nodes), m_capacities(m_size * m_size) {}
    std::int64_t& operator()(std::size_t from, std::size_t to) { return m_capacities[from * m_size + to]; }

    // The most that can flow.
    std::int64_t maximumFlow(std::size_t from, std::size_t to) {
        std::int64_t all = 0;
        while (true) {
            std::vector<std::size_t> before(m_size, m_size);
            std::vector<std::size_t> reached{from};
            before[from] = from;
            for (std::size_t i = 0; i < reached.size(); ++i) {
                for (std::size_t next = 0; next < m_size; ++next) {
                    if (before[next] != m_size || (*this)(reached[i], next) == 0) continue;
                    before[next] = reached[i];
                    reached.push_back(next);
                }
            }
            if (before[to] == m_size) return all;
            std::int64_t most = kFar;
            for (std::size_t node = to; node != from; node = before[node])
                most = std::min(most, (*this)(before[node], node));
            for (std::size_t node = to; node != from; node = before[node]) {
                (*this)(before[node], node) -= most;
                (*this)(node, before[node]) += most;
            }
            all += most;
        }
    }

private:
    std::size_t m_size;
    std::vector<std::int64_t> m_capacities;
};

// The most that can flow between two different nodes, under capacities of the edges and of other nodes.
template <class Capacity>
std::int64_t maximumFlow(const Net& net, const RVNode* from, const RVNode* to, Capacity capacityOf) {
    Residuals residuals(net.nodes.size());
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        const bool isEnd = net.nodes[i] == from || net.nodes[i] == to;
        residuals(2 * i, 2 * i + 1) = isEnd || net.capacities.empty() ? kFar : net.capacities[i];
    }
    for (const Arc& arc : net.arcs) residuals(2 * arc.from + 1, 2 * arc.to) += capacityOf(arc);
    return residuals.maximumFlow(2 * net.at(from), 2 * net.at(to) + 1);
}

// Each node of the graph once, and no other.
inline bool isEachOnce(const Net& net, const RVNodeDList& list) {
    std::set<const RVNode*> seen;
    for (const RVNode* node : list) seen.insert(net.nodes[net.at(node)]);
    return seen.size() == net.nodes.size() && list.length() == static_cast<int>(net.nodes.size());
}

inline void certify(Tag<rvtest::TopologicalSort>, const auto& input, const auto& output,
                    const RVGraph* graph) {
    const Net net(input, graph);
    RV_REQUIRE(output.acyclic() == (net.isAcyclic() ? 1 : 0));
    if (output.acyclic() == 0) return;
    RV_REQUIRE(isEachOnce(net, *output.pNodeList()));
    int number = 0;
    for (RVNode* node : *output.pNodeList()) RV_REQUIRE(output.orderNumber(node) == ++number);
    for (const Arc& arc : net.arcs)
        RV_REQUIRE(output.orderNumber(net.nodes[arc.from]) < output.orderNumber(net.nodes[arc.to]));
}

inline void certify(Tag<rvtest::AcyclicTest>, const auto& input, const auto& output, const RVGraph* graph) {
    RV_REQUIRE(output.acyclic() == (Net(input, graph).isAcyclic() ? 1 : 0));
}

inline void certify(Tag<rvtest::Heuristic>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    RV_REQUIRE(output.acyclic() == (net.isAcyclic() ? 1 : 0));
    RV_REQUIRE(isEachOnce(net, *output.pNodeList()));
    for (const Arc& arc : net.arcs) {
        RV_REQUIRE(output.acyclic() == 0 ||
                   output.orderNumber(net.nodes[arc.from]) < output.orderNumber(net.nodes[arc.to]));
    }
}

inline void certify(Tag<rvtest::TreeTest>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const auto parts = net.parts();
    std::set<std::vector<bool>> distinct(parts.begin(), parts.end());
    bool isForest = !net.nodes.empty() && net.arcs.size() + distinct.size() == net.nodes.size();
    for (const RVNode* node : net.nodes)
        isForest = isForest && (input.directed() == 0 || node->inDegree() < 2);
    RV_REQUIRE(output.isForest() == (isForest ? 1 : 0));
    RV_REQUIRE(output.isTree() == (net.nodes.empty() || (isForest && distinct.size() == 1) ? 1 : 0));
}

// Nodes have the same number when, and only when, each can be reached from the other.
inline void requireNumbers(const Net& net, const std::vector<std::vector<bool>>& reached,
                           const auto& output) {
    int nodes = 0;
    for (RVDListIter component(output.pComponentList()); component; component++)
        nodes += RVNodeDList::castDown(component.pObject())->length();
    RV_REQUIRE(nodes == static_cast<int>(net.nodes.size()));
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        for (std::size_t j = 0; j < net.nodes.size(); ++j) {
            const int own = output.componentNumber(net.nodes[i]);
            const int other = output.componentNumber(net.nodes[j]);
            RV_REQUIRE((own == other) == (reached[i][j] && reached[j][i]));
            RV_REQUIRE(own >= other || !reached[i][j]);
        }
    }
}
inline void certify(Tag<rvtest::Connected>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    requireNumbers(net, net.parts(), output);
}
inline void certify(Tag<rvtest::Strong>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    requireNumbers(net, net.reach(), output);
}

inline void certify(Tag<rvtest::Blocks>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const auto parts = net.parts();
    for (std::size_t cut = 0; cut < net.nodes.size(); ++cut) {
        const auto left = net.reach([&](const Arc& arc) { return arc.from != cut && arc.to != cut; }, true);
        bool isArticulation = false;
        for (std::size_t i = 0; i < net.nodes.size(); ++i) {
            for (std::size_t j = 0; j < net.nodes.size(); ++j)
                isArticulation = isArticulation || (i != cut && j != cut && parts[i][j] && !left[i][j]);
        }
        int listed = 0;
        for (const RVNode* node : *output.pArticulationNodeList()) listed += node == net.nodes[cut] ? 1 : 0;
        RV_REQUIRE(listed == (isArticulation ? 1 : 0));
    }
}

// Exactly the nodes that are reached have a number, none twice.
inline void certifySearch(const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const auto reached = net.reach();
    std::set<int> numbers;
    int count = 0;
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        const int number = output.orderNumber(net.nodes[i]);
        RVNode* const start = input.pStartNode();
        RV_REQUIRE((number != 0) == (start == nullptr || reached[net.at(start)][i]));
        if (number != 0) ++count;
        if (number != 0) numbers.insert(number);
    }
    RV_REQUIRE(static_cast<int>(numbers.size()) == count);
    RV_REQUIRE(count == 0 || (*numbers.begin() == 1 && *numbers.rbegin() == count));
}
inline void certify(Tag<rvtest::DepthFirst>, const auto& input, const auto& output, const RVGraph* graph) {
    certifySearch(input, output, graph);
}
inline void certify(Tag<rvtest::BreadthFirst>, const auto& input, const auto& output, const RVGraph* graph) {
    certifySearch(input, output, graph);
    if (input.pStartNode() == nullptr) return;
    const Net net(input, graph);
    const auto steps = net.distances(net.at(input.pStartNode()), false);
    std::int64_t last = 0;
    for (const RVNode* node : *output.pNodeList()) {
        RV_REQUIRE(steps[net.at(node)] >= last);
        last = steps[net.at(node)];
    }
}

inline void certify(Tag<rvtest::PathTest>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const std::int64_t steps = net.distances(net.at(input.pStartNode()), false)[net.at(input.pFinishNode())];
    RV_REQUIRE(output.pathExists() == (steps < kFar ? 1 : 0));
    if (output.pathExists() == 0) return;
    RV_REQUIRE(output.pEdgeList()->length() == steps);
    RV_REQUIRE(net.isPath(*output.pEdgeList(), input.pStartNode(), input.pFinishNode()));
}

inline void certify(Tag<rvtest::NewCycleTest>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const bool closes = net.reach()[net.at(input.pTargetNode())][net.at(input.pSourceNode())];
    RV_REQUIRE(output.willCreateCycle() == (closes ? 1 : 0));
}

// A path that is as cheap as can be.
inline void requireCheapest(const Net& net, const auto& input, const auto& output, bool withNodes) {
    const auto distances = net.distances(net.at(input.pStartNode()), withNodes);
    const std::int64_t least = distances[net.at(input.pFinishNode())];
    RV_REQUIRE(output.pathExists() == (least < kFar ? 1 : 0));
    RV_REQUIRE(output.totalCost() == (least < kFar ? least : rvtest::kInfinite));
    if (output.pathExists() == 0) return;
    std::int64_t edges = 0;
    std::int64_t nodes = 0;
    RV_REQUIRE(net.isPath(*output.pEdgeList(), input.pStartNode(), input.pFinishNode(), &edges, &nodes));
    RV_REQUIRE(edges + (withNodes ? nodes : 0) == least);
}
inline void certify(Tag<rvtest::Dijkstra>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (net.isModest()) requireCheapest(net, input, output, false);
}
inline void certify(Tag<rvtest::AcyclicPaths>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    std::map<std::size_t, int> places;
    for (const RVNode* node : *input.pCandidateNodeList())
        places[net.at(node)] = static_cast<int>(places.size());
    bool isOrder = net.isModest() && places.size() == net.nodes.size() &&
                   input.pCandidateNodeList()->length() == static_cast<int>(places.size());
    for (const Arc& arc : net.arcs) isOrder = isOrder && places[arc.from] < places[arc.to];
    if (isOrder) requireCheapest(net, input, output, false);
}
inline void certify(Tag<rvtest::ShortestPaths>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (net.isModest() && (!net.isNegative() || net.isAcyclic())) requireCheapest(net, input, output, true);
}
inline void certify(Tag<rvtest::AllPairs>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (!net.isModest() || (net.isNegative() && !net.isAcyclic())) return;
    for (RVNode* from : net.nodes) {
        const auto distances = net.distances(net.at(from), true);
        for (RVNode* to : net.nodes) {
            const std::int64_t least = std::min<std::int64_t>(distances[net.at(to)], rvtest::kInfinite);
            RV_REQUIRE(output.computeLengthOfShortestPath(from, to) == least);
            RVEdgeDList path;
            output.buildShortestPathEdgeList(from, to, path);
            RV_REQUIRE(least == rvtest::kInfinite || net.isPath(path, from, to));
        }
    }
}
inline void certify(Tag<rvtest::SingleSource>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (!net.isModest()) return;
    const auto distances = net.distances(net.at(input.pStartNode()), false);
    RV_REQUIRE(!distances.empty());
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        RV_REQUIRE(output.distance(net.nodes[i]) == std::min<std::int64_t>(distances[i], rvtest::kInfinite));
        RVEdge* const edge = output.pTreeEdge(net.nodes[i]);
        RV_REQUIRE((edge != nullptr) == (distances[i] < kFar && net.nodes[i] != input.pStartNode()));
        if (edge == nullptr) continue;
        const std::int64_t before = distances[net.at(edge->pOtherNode(net.nodes[i]))];
        RV_REQUIRE(before + input.cost(edge) == distances[i]);
    }
}

// Whether more than one path that repeats no node leads on from a node.
inline void countPaths(const Net& net, std::size_t from, std::size_t to,
                       const std::vector<std::vector<bool>>& reached, std::vector<bool>& isOnWay,
                       int& count) {
    if (from == to) ++count;
    if (from == to || count > 1) return;
    isOnWay[from] = true;
    for (const Arc& arc : net.arcs) {
        if (arc.from == from && !isOnWay[arc.to] && reached[arc.to][to])
            countPaths(net, arc.to, to, reached, isOnWay, count);
    }
    isOnWay[from] = false;
}
inline void certify(Tag<rvtest::UniquePath>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    std::vector<bool> isOnWay(net.nodes.size());
    int count = 0;
    countPaths(net, net.at(input.pStartNode()), net.at(input.pFinishNode()), net.reach(), isOnWay, count);
    RV_REQUIRE(output.uniquePathExists() == (count == 1 ? 1 : 0));
}

inline void certify(Tag<rvtest::SortedPathsOnce>, const auto& input, const auto& output,
                    const RVGraph* graph) {
    const Net net(input, graph);
    const bool isReached = net.reach()[net.at(input.pStartNode())][net.at(input.pFinishNode())];
    if (net.isModest()) RV_REQUIRE(output.pathExists() == (isReached ? 1 : 0));
    if (output.pathExists() == 0) return;
    RVSortedPathsEnumerator paths(&output);
    std::set<std::vector<RVEdge*>> seen;
    std::int64_t last = std::numeric_limits<int>::min();
    for (int i = 0; i < 20 && paths.next(); ++i) {
        RVEdgeDList path;
        paths.buildEdgeList(path);
        std::int64_t edges = 0;
        std::int64_t nodes = 0;
        RV_REQUIRE(net.isPath(path, input.pStartNode(), input.pFinishNode(), &edges, &nodes));
        RV_REQUIRE(!net.isModest() || paths.totalCostWithoutFinishNode() == edges + nodes);
        RV_REQUIRE(paths.totalCost() >= last);
        RV_REQUIRE(seen.insert(membersOf<RVEdge>(path)).second);
        last = paths.totalCost();
        if (i > 0 || !net.isModest() || (net.isNegative() && !net.isAcyclic())) continue;
        const auto distances = net.distances(net.at(input.pStartNode()), true);
        if (!net.isNegative()) RV_REQUIRE(edges + nodes == distances[net.at(input.pFinishNode())]);
    }
    if (output.acyclic() == 1 && output.numberOfPaths() <= 20)
        RV_REQUIRE(static_cast<int>(seen.size()) == output.numberOfPaths());
}

// What enters a node leaves it, within the capacities; gives what leaves the source.
inline std::int64_t requireFlow(const Net& net, const auto& input, const auto& output) {
    std::vector<std::int64_t> in(net.nodes.size());
    std::vector<std::int64_t> out(net.nodes.size());
    for (const Arc& arc : net.arcs) {
        const int flow = output.flow(arc.edge);
        RV_REQUIRE(flow >= 0 && flow <= input.capacity(arc.edge));
        out[arc.from] += flow;
        in[arc.to] += flow;
    }
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        if (net.nodes[i] == input.pSourceNode() || net.nodes[i] == input.pSinkNode()) continue;
        RV_REQUIRE(in[i] == out[i] && in[i] <= net.capacities[i]);
    }
    const std::size_t source = net.at(input.pSourceNode());
    return out[source] - in[source];
}
inline void certify(Tag<rvtest::MaximumFlow>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    const std::int64_t flow = requireFlow(net, input, output);
    if (input.pSourceNode() == input.pSinkNode()) return;
    const auto capacityOf = [&](const Arc& arc) { return input.capacity(arc.edge); };
    const std::int64_t most = maximumFlow(net, input.pSourceNode(), input.pSinkNode(), capacityOf);
    RV_REQUIRE(flow == most && output.totalFlow() == std::min<std::int64_t>(most, rvtest::kInfinite));
}
inline void certify(Tag<rvtest::MinimumCostFlow>, const auto& input, const auto& output,
                    const RVGraph* graph) {
    const Net net(input, graph);
    const std::int64_t flow = requireFlow(net, input, output);
    if (input.pSourceNode() == input.pSinkNode() || !net.isModest() || net.isNegative()) return;
    const auto capacityOf = [&](const Arc& arc) { return input.capacity(arc.edge); };
    const std::int64_t most = maximumFlow(net, input.pSourceNode(), input.pSinkNode(), capacityOf);
    const std::int64_t wanted = input.desiredFlow() == 0 ? most : input.desiredFlow();
    RV_REQUIRE(flow == std::min(most, wanted));
    // No way round the residual network is cheaper than 0.
    std::int64_t total = 0;
    std::vector<Arc> residuals;
    std::vector<std::int64_t> through(net.nodes.size());
    for (const Arc& arc : net.arcs) {
        const int used = output.flow(arc.edge);
        total += used * arc.cost;
        through[arc.to] += used;
        if (used < input.capacity(arc.edge))
            residuals.push_back({2 * arc.from + 1, 2 * arc.to, arc.cost, nullptr});
        if (used > 0) residuals.push_back({2 * arc.to, 2 * arc.from + 1, -arc.cost, nullptr});
    }
    for (std::size_t i = 0; i < net.nodes.size(); ++i) {
        const bool isEnd = net.nodes[i] == input.pSourceNode() || net.nodes[i] == input.pSinkNode();
        const std::int64_t cost = isEnd ? 0 : net.nodeCosts[i];
        total += through[i] * cost;
        if (isEnd || through[i] < net.capacities[i]) residuals.push_back({2 * i, 2 * i + 1, cost, nullptr});
        if (through[i] > 0 || isEnd) residuals.push_back({2 * i + 1, 2 * i, -cost, nullptr});
    }
    RV_REQUIRE(output.totalCost() == std::min<std::int64_t>(total, rvtest::kInfinite));
    std::vector<std::int64_t> labels(2 * net.nodes.size());
    bool isChanged = true;
    for (std::size_t pass = 0; isChanged; ++pass) {
        RV_REQUIRE(pass <= labels.size());
        isChanged = false;
        for (const Arc& arc : residuals) {
            if (labels[arc.from] + arc.cost >= labels[arc.to]) continue;
            labels[arc.to] = labels[arc.from] + arc.cost;
            isChanged = true;
        }
    }
}
inline void certify(Tag<rvtest::MinimumCut>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    std::set<const RVEdge*> cut;
    std::int64_t total = 0;
    for (RVEdge* edge : *output.pEdgeList()) {
        RV_REQUIRE(cut.insert(edge).second);
        total += input.cost(edge);
    }
    RV_REQUIRE(output.totalCost() == std::min<std::int64_t>(total, rvtest::kInfinite));
    if (input.pSourceNode() == input.pSinkNode()) return;
    const auto left = net.reach([&](const Arc& arc) { return cut.count(arc.edge) == 0; });
    RV_REQUIRE(!left[net.at(input.pSourceNode())][net.at(input.pSinkNode())]);
    const auto costOf = [](const Arc& arc) { return arc.cost; };
    RV_REQUIRE(total == maximumFlow(net, input.pSourceNode(), input.pSinkNode(), costOf));
}
inline void certify(Tag<rvtest::DisjointPaths>, const auto& input, const auto& output, const RVGraph* graph) {
    Net net(input, graph);
    std::set<const void*> used;
    int paths = 0;
    for (RVDListIter it(output.pPathList()); it; it++, ++paths) {
        const RVEdgeDList& path = *RVEdgeDList::castDown(it.pObject());
        RV_REQUIRE(net.isPath(path, input.pStartNode(), input.pFinishNode()));
        for (const RVEdge* edge : path) {
            RV_REQUIRE(used.insert(edge).second);
            const bool isWithin = edge != path.pFirstEdge() && input.nodeDisjointPaths() != 0;
            RV_REQUIRE(!isWithin || used.insert(edge->pSourceNode()).second);
        }
    }
    RV_REQUIRE(paths == output.numberOfDisjointPaths());
    if (input.pStartNode() == input.pFinishNode()) return;
    if (input.nodeDisjointPaths() != 0) net.capacities.assign(net.nodes.size(), 1);
    RV_REQUIRE(paths == maximumFlow(net, input.pStartNode(), input.pFinishNode(),
                                    [](const Arc&) -> std::int64_t { return 1; }));
}

inline void certify(Tag<rvtest::SpanningTree>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (!net.isModest()) return;
    std::vector<Arc> byCost = net.arcs;
    std::sort(byCost.begin(), byCost.end(), [](const Arc& a, const Arc& b) { return a.cost < b.cost; });
    std::vector<std::size_t> part(net.nodes.size());
    for (std::size_t i = 0; i < part.size(); ++i) part[i] = i;
    std::size_t joined = 1;
    std::int64_t least = 0;
    for (const Arc& arc : byCost) {
        if (part[arc.from] == part[arc.to]) continue;
        std::replace(part.begin(), part.end(), std::size_t{part[arc.from]}, std::size_t{part[arc.to]});
        least += arc.cost;
        ++joined;
    }
    const bool isTree = joined == net.nodes.size();
    RV_REQUIRE(output.pTreeEdgeList()->length() == (isTree ? static_cast<int>(joined) - 1 : 0));
    RV_REQUIRE(output.totalCost() == (isTree ? least : 0));
}

inline void certify(Tag<rvtest::Reachable>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (!net.isModest()) return;
    const auto distances = net.distances(net.at(input.pStartNode()), true, input.reversed() != 0);
    const auto isNear = [&](std::int64_t distance) {
        return distance < kFar && (input.range() == -1 || distance <= input.range());
    };
    std::int64_t last = 0;
    for (const RVNode* node : *output.pNodeList()) {
        const std::int64_t distance = distances[net.at(node)];
        RV_REQUIRE(isNear(distance) && (input.range() == -1 || distance >= last));
        last = distance;
    }
    RV_REQUIRE(output.pNodeList()->length() == std::count_if(distances.begin(), distances.end(), isNear));
}

inline void certify(Tag<rvtest::RootCauses>, const auto& input, const auto& output, const RVGraph* graph) {
    const Net net(input, graph);
    if (!net.isModest()) return;
    std::map<const RVNode*, std::vector<RVNode*>> explained;
    std::int64_t all = 0;
    for (RVNode* effect : *input.pEffectNodeList()) {
        all += input.weight(effect);
        const auto distances = net.distances(net.at(effect), true, true);
        for (std::size_t i = 0; i < net.nodes.size(); ++i) {
            if (distances[i] < kFar && (input.range() == -1 || distances[i] <= input.range()))
                explained[net.nodes[i]].push_back(effect);
        }
    }
    std::int64_t last = 0;
    std::set<const RVNode*> causes;
    const auto weightOf = [&](const std::vector<RVNode*>& effects) {
        std::int64_t weight = 0;
        for (RVNode* effect : effects) weight += input.weight(effect);
        return weight;
    };
    for (RVNode* cause : *output.pCauseNodeList()) {
        RVNodeDList listed;
        output.buildReachedNodeList(cause, listed);
        RV_REQUIRE(membersOf<RVNode>(listed) == explained[cause]);
        RV_REQUIRE(!explained[cause].empty() && causes.insert(cause).second);
        RV_REQUIRE(weightOf(explained[cause]) >= last);
        last = weightOf(explained[cause]);
    }
    // Numbers that are not exact may put a node on either side of the threshold.
    const double least = input.threshold() * static_cast<double>(all);
    for (const auto& [node, effects] : explained) {
        const auto weight = static_cast<double>(weightOf(effects));
        if (weight > least * 1.000001) RV_REQUIRE(effects.empty() || causes.count(node) == 1);
        if (weight < least * 0.999999) RV_REQUIRE(causes.count(node) == 0);
    }
}

inline void certify(Tag<rvtest::CycleBreaking>, const auto& input, const auto& output, const RVGraph* graph) {
    Net net(input, graph);
    RVEdgeDList broken;
    RVEdgeDList loops;
    output.buildEdgeList(broken);
    output.buildReflexiveEdgeList(loops);
    int backward = 0;
    int reflexive = 0;
    for (Arc& arc : net.arcs) {
        if (arc.from == arc.to) ++reflexive;
        if (output.backwardEdge(arc.edge) == 0) continue;
        RV_REQUIRE(arc.from != arc.to);
        ++backward;
        std::swap(arc.from, arc.to);
    }
    RV_REQUIRE(broken.length() == backward && loops.length() == reflexive);
    RV_REQUIRE(net.isAcyclic([](const Arc& arc) { return arc.from != arc.to; }));
    if (input.quality() < 2) return;
    // No edge could have stayed as it was.
    for (Arc& arc : net.arcs) {
        if (output.backwardEdge(arc.edge) == 0) continue;
        std::swap(arc.from, arc.to);
        RV_REQUIRE(!net.isAcyclic([](const Arc& each) { return each.from != each.to; }));
        std::swap(arc.from, arc.to);
    }
}

// Every node is in one cluster, and no cluster is empty where there are as many nodes.
inline void certifyClusters(const auto& output, const RVGraph* graph) {
    std::set<const RVObject*> seen;
    for (RVDListIter cluster(output.pClusters()); cluster; cluster++) {
        const auto* nodes = RVDList::castDown(cluster.pObject());
        RV_REQUIRE(nodes->length() > 0 || output.pClusters()->length() > graph->numberOfNodes());
        for (RVDListIter node(nodes); node; node++) RV_REQUIRE(seen.insert(node.pObject()).second);
    }
    RV_REQUIRE(static_cast<int>(seen.size()) == graph->numberOfNodes());
    for (const RVNode* node : *graph->pNodeList()) RV_REQUIRE(seen.count(node) == 1);
}
inline void certify(Tag<rvtest::RatioCut>, const auto&, const auto& output, const RVGraph* graph) {
    certifyClusters(output, graph);
    RV_REQUIRE(output.pClusters()->length() == 2);
}
inline void certify(Tag<rvtest::Splitting>, const auto&, const auto& output, const RVGraph* graph) {
    certifyClusters(output, graph);
}
inline void certify(Tag<rvtest::Disconnected>, const auto&, const auto& output, const RVGraph* graph) {
    certifyClusters(output, graph);
}
inline void certify(Tag<rvtest::Clustering>, const auto& input, const auto& output, const RVGraph* graph) {
    certifyClusters(output, graph);
    for (RVDListIter it(input.getConstraintList()); it; it++) {
        const auto* constraint = static_cast<RVClusteringConstraint*>(it.pObject());
        if (input.getConstraintList()->length() > 1) return;
        RV_REQUIRE(constraint->fulfilled() != 0);
    }
}

}  // namespace rvfuzz
