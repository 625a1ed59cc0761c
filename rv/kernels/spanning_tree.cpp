#include "rv/kernels/spanning_tree.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <tuple>
#include <vector>

#include "rv/foundation/arithmetic.h"

namespace rv {

namespace {

// Gives the smallest key, of equal ones the one that came first. An entry that was overtaken stays until it
// is given.
//
// A bucket for each key, and above them words of bits: one of the lowest words tells which of 64 buckets hold
// entries, one of the next which of 64 words have bits, up to a single word.
class BucketQueue {
public:
    struct Entry {
        Index key;
        Index node;
    };

    // Keys are below the limit.
    explicit BucketQueue(Index limit) : m_buckets(limit) {
        for (std::size_t words = limit; words > 1 || m_bits.empty();) {
            words = (words + 63) / 64;
            m_bits.emplace_back(words, std::uint64_t{0});
        }
    }
    bool isEmpty() const { return m_bits.back()[0] == 0; }
    void push(Index key, Index node) {
        const auto link = static_cast<Index>(m_links.size());
        m_links.push_back({node, kNoIndex});
        Bucket& bucket = m_buckets[key];
        if (isUsed(key)) {
            m_links[bucket.last].next = link;
        } else {
            bucket.first = link;
            setUsed(key);
        }
        bucket.last = link;
    }
    // REQUIRES: it is not empty.
    Entry pop() {
        Index key = 0;
        for (auto words = m_bits.rbegin(); words != m_bits.rend(); ++words)
            key = 64 * key + static_cast<Index>(std::countr_zero((*words)[key]));
        Bucket& bucket = m_buckets[key];
        const Link link = m_links[bucket.first];
        bucket.first = link.next;
        if (link.next == kNoIndex) setUnused(key);
        return {key, link.node};
    }

private:
    struct Bucket {
        Index first;
        Index last;
    };
    struct Link {
        Index node;
        Index next;
    };

    static std::uint64_t bitOf(Index place) { return std::uint64_t{1} << place % 64; }
    bool isUsed(Index key) const { return (m_bits[0][key / 64] & bitOf(key)) != 0; }
    void setUsed(Index place) {
        for (Buffer<std::uint64_t>& words : m_bits) {
            const std::uint64_t before = words[place / 64];
            words[place / 64] |= bitOf(place);
            if (before != 0) return;
            place /= 64;
        }
    }
    void setUnused(Index place) {
        for (Buffer<std::uint64_t>& words : m_bits) {
            if ((words[place / 64] &= ~bitOf(place)) != 0) return;
            place /= 64;
        }
    }

    Buffer<Bucket> m_buckets;  // those that are used
    std::vector<Buffer<std::uint64_t>> m_bits;
    Buffer<Link> m_links;
};

// Small numbers in the order of costs, kNoIndex for edges that count as none.
struct Keys {
    Keys(const GraphOrder& order, std::span<const int> costs) : byEdge(order.ends.size(), Index{kNoIndex}) {
        const auto costOf = [&](Index edge) { return edge < costs.size() ? costs[edge] : 0; };
        int least = kInfinite;
        int greatest = kSmallest;
        order.forEachEdge([&](Index edge) {
            if (costOf(edge) == kInfinite) return;
            least = std::min(least, costOf(edge));
            greatest = std::max(greatest, costOf(edge));
        });
        if (least > greatest) return;
        const std::int64_t span = std::int64_t{greatest} - least + 1;
        if (span > 2 * std::int64_t{order.edgeCount} + kFewCosts) {
            rank(order, costOf);
            return;
        }
        limit = static_cast<Index>(span);
        order.forEachEdge([&](Index edge) {
            if (costOf(edge) != kInfinite)
                byEdge[edge] = static_cast<Index>(std::int64_t{costOf(edge)} - least);
        });
    }

    Buffer<Index> byEdge;
    Index limit = 1;

private:
    static constexpr std::int64_t kFewCosts = 4096;

    // Numbers the different costs.
    template <class CostOf>
    void rank(const GraphOrder& order, CostOf costOf) {
        Buffer<std::pair<int, Index>> sorted;
        sorted.reserve(order.edgeCount);
        order.forEachEdge([&](Index edge) {
            if (costOf(edge) != kInfinite) sorted.emplace_back(costOf(edge), edge);
        });
        std::sort(sorted.begin(), sorted.end());
        limit = 0;
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            if (i == 0 || sorted[i].first != sorted[i - 1].first) ++limit;
            byEdge[sorted[i].second] = limit - 1;
        }
    }
};

// By edge its place among the arcs.
Buffer<Index> placesIn(const Arcs& arcs, std::size_t edgeLimit) {
    Buffer<Index> places(edgeLimit);
    for (Index node = 0; node < arcs.nodeLimit(); ++node) {
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) places[arcs.edges[arc]] = arc;
    }
    return places;
}

// Leaves one edge of each group of parallels.
void closeParallels(const FlatGraph& graph, Buffer<Index>& keys) {
    if (!graph.undirected().leavesOut()) return;
    const GraphOrder order = graph.order();
    Buffer<Index> outPlaces;  // unless all lists stand in the order of the numbers
    Buffer<Index> inPlaces;
    if (!graph.areListsInGraphOrder() || !order.edges.empty()) {
        outPlaces = placesIn(graph.out(), keys.size());
        inPlaces = placesIn(graph.in(), keys.size());
    }
    order.forEachEdge([&](Index first) {
        const auto rankOf = [&](Index edge) {
            const bool isOut = order.ends[edge].source == order.ends[first].source;
            const Buffer<Index>& places = isOut ? outPlaces : inPlaces;
            return std::tuple(keys[edge], isOut, places.empty() ? edge : places[edge]);
        };
        Index best = first;
        graph.undirected().forEachParallel(first, [&](Index edge) {
            const bool isBetter = rankOf(edge) < rankOf(best);
            keys[isBetter ? best : edge] = kNoIndex;
            if (isBetter) best = edge;
        });
    });
}

}  // namespace

SpanningTree spanningTree(const FlatGraph& graph, std::span<const int> costs, Pulse& pulse) {
    const GraphOrder order = graph.order();
    const Arcs& in = graph.in();
    const Arcs& out = graph.out();
    Keys keys(order, costs);
    closeParallels(graph, keys.byEdge);
    struct Candidate {
        Index key = kNoIndex;     // of the cheapest edge to the tree that is known; 0 in the tree
        Index parent = kNoIndex;  // that edge
    };
    std::vector<Candidate> candidates(out.nodeLimit());
    BucketQueue queue(keys.limit);
    SpanningTree tree{Buffer<int>(order.ends.size(), 0)};
    const auto join = [&](Index node) {
        candidates[node].key = 0;
        pulse.beat(1 + std::int64_t{in.degree(node)} + out.degree(node));
        for (const Arcs* arcs : {&in, &out}) {
            for (Index arc = arcs->first[node]; arc < arcs->last[node]; ++arc) {
                Candidate& target = candidates[arcs->targets[arc]];
                if (target.key == 0) continue;
                const Index key = keys.byEdge[arcs->edges[arc]];
                if (key >= target.key) continue;
                target = {key, arcs->edges[arc]};
                queue.push(key, arcs->targets[arc]);
            }
        }
    };
    if (order.nodeCount > 0) join(order.nodes.empty() ? 0 : order.nodes.front());
    while (!queue.isEmpty()) {
        const auto [key, node] = queue.pop();
        if (candidates[node].key != key) continue;
        tree.isTreeEdge[candidates[node].parent] = 1;
        ++tree.edgeCount;
        join(node);
    }
    return tree;
}

}  // namespace rv
