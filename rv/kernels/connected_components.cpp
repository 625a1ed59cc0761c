// Of the edges of a component the first one joins two sets, so its place among the edges that do is enough to
// number the components.

#include "rv/kernels/connected_components.h"

#include <numeric>
#include <utility>

#include "rv/kernels/disjoint_sets.h"

namespace rv {

namespace {

NodeGroups groupByNumber(const GraphOrder& order, const Buffer<int>& numbers, Index count) {
    NodeGroups groups;
    groups.begins.assign(std::size_t{count} + 2, 0);  // one place ahead while they are filled
    order.forEachNode([&](Index node) { ++groups.begins[numbers[node] + 1]; });
    std::partial_sum(groups.begins.begin(), groups.begins.end(), groups.begins.begin());
    groups.nodes.resize(order.nodeCount);
    order.forEachNode([&](Index node) { groups.nodes[groups.begins[numbers[node]]++] = node; });
    groups.begins.pop_back();
    return groups;
}

}  // namespace

Components connectedComponents(const GraphOrder& order, Index nodeLimit, Pulse& pulse) {
    DisjointSets sets(nodeLimit);
    Buffer<Index> joined;  // a node of each edge that joined two sets
    order.forEachEdge([&](Index edge) {
        pulse.beat();
        const Ends ends = order.ends[edge];
        if (sets.join(ends.source, ends.target)) joined.push_back(ends.source);
    });
    const Buffer<Index> setOf = std::move(sets).sets();

    Components components;
    Buffer<int>& numbers = components.numbers;
    numbers.assign(nodeLimit, 0);
    int count = 0;
    const auto number = [&](Index set) {
        if (numbers[set] == 0) numbers[set] = ++count;
        return numbers[set];
    };
    for (const Index node : joined) number(setOf[node]);
    order.forEachNode([&](Index node) { numbers[node] = number(setOf[node]); });
    components.groups = groupByNumber(order, numbers, static_cast<Index>(count));
    return components;
}

}  // namespace rv
