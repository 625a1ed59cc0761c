// The result is its own queue. Nodes are joined to it without a branch: each target is written behind the
// last node, where it stays if its last arc has been consumed.

#include "rv/kernels/topological_order.h"

#include <algorithm>
#include <cstdint>

namespace rv {

namespace {

Buffer<Index> countInDegrees(const GraphOrder& order, Index nodeLimit) {
    Buffer<Index> degrees(nodeLimit, Index{0});
    order.forEachEdge([&](Index edge) { ++degrees[order.ends[edge].target]; });
    return degrees;
}

}  // namespace

TopologicalOrder topologicalOrder(const Arcs& arcs, const GraphOrder& order, std::span<const Index> inDegrees,
                                  Pulse& pulse) {
    Buffer<Index> left = inDegrees.empty() ? countInDegrees(order, arcs.nodeLimit())
                                           : Buffer<Index>(inDegrees.begin(), inDegrees.end());
    Buffer<Index> nodes(std::size_t{order.nodeCount} + 1);
    Index count = 0;
    order.forEachNode([&](Index node) {
        if (left[node] == 0) nodes[count++] = node;
    });
    for (Index next = 0; next < count; ++next) {
        const Index node = nodes[next];
        pulse.beat(1 + std::int64_t{arcs.degree(node)});
        for (const Index target : arcs.targetsOf(node)) {
            nodes[count] = target;
            count += --left[target] == 0 ? 1 : 0;
        }
    }
    nodes.resize(count);
    return {std::move(nodes), count == order.nodeCount};
}

Buffer<Index> topologicalOrderFrom(const Arcs& arcs, Index start, Pulse& pulse) {
    enum State : unsigned char { kNew, kOpen, kComplete };
    struct Open {
        Index node;
        Index arc;  // the next one to be followed
    };
    Buffer<State> states(arcs.nodeLimit(), kNew);
    Buffer<Index> nodes;
    Buffer<Open> path;
    const auto open = [&](Index node) {
        pulse.beat(1 + std::int64_t{arcs.degree(node)});
        states[node] = kOpen;
        path.push_back({node, arcs.first[node]});
    };
    open(start);
    while (!path.empty()) {
        const Index node = path.back().node;
        if (path.back().arc == arcs.last[node]) {
            states[node] = kComplete;
            nodes.push_back(node);
            path.pop_back();
            continue;
        }
        const Index target = arcs.targets[path.back().arc++];
        if (states[target] == kOpen) return {};
        if (states[target] == kNew) open(target);
    }
    std::ranges::reverse(nodes);
    return nodes;
}

}  // namespace rv
