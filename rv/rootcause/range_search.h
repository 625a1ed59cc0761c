// Searches for what one node after another reaches within a range of costs. Internal to the library, not
// installed.
//
// Nodes come in the order of their distance; those of equal distance in the order in which they came to it
// last. A node's arcs are taken as reachable_nodes.h says: out-edges first, then in-edges. The searches run
// on the snapshot of the graph if there is one, and otherwise over the graph itself, and cost what they
// reach.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "rv/framework/graph_snapshot.h"
#include "rv/kernels/nearest.h"

namespace rv {

// Arrays by number, which may be shorter than the graph: the rest are defaults.
struct RangeQuestion {
    const RVGraph* graph = nullptr;
    bool isReversed = false;
    bool isUndirected = false;     // all edges are followed both ways
    std::vector<bool> isBothWays;  // by edge: this one is
    bool hasCosts = true;          // otherwise every edge costs 1 and every node nothing
    std::span<const int> nodeCosts;
    std::span<const int> edgeCosts;
    int edgeDefault = 0;
    int range = 0;

    bool hasBothWays() const { return isUndirected || !isBothWays.empty(); }
    int costOfNode(Index node) const { return node < nodeCosts.size() ? nodeCosts[node] : 0; }
    int costOfEdge(Index edge) const {
        if (!hasCosts) return 1;
        return edge < edgeCosts.size() ? edgeCosts[edge] : edgeDefault;
    }
    // Whether an edge is followed along its direction, or against it.
    bool isFollowed(Index edge, bool isForward) const {
        return isForward != isReversed || isUndirected || (edge < isBothWays.size() && isBothWays[edge]);
    }
};

class RangeSearch {
public:
    // The question must outlive the search.
    explicit RangeSearch(const RangeQuestion& question);

    // The start first. Valid until the next search.
    std::span<const Index> reach(Index start, Pulse& pulse);
    // Of a node in the last search; 2147483647 for one that it did not reach.
    int distance(Index node) const { return m_scratch->labels.distance(node); }

private:
    struct Scratch {
        ReusedNearestLabels<int> labels;
        Buffer<Index> reached;
    };

    template <class WaysOf>
    void search(Index start, Pulse& pulse, WaysOf waysOf);

    const RangeQuestion& m_question;
    std::shared_ptr<const FlatGraph> m_flat;  // nullptr where the graph itself is searched
    ScratchLoan<Scratch> m_scratch;
    std::size_t m_steps = 0;  // of the last search over the graph itself
};

}  // namespace rv
