#include "rv/kernels/spanning_tree.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <limits>
#include <tuple>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/kernels/nearest.h"

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
        Index link = m_free;
        if (link == kNoIndex) {
            link = static_cast<Index>(m_links.size());
            m_links.emplace_back();
        } else {
            m_free = m_links[link].next;
        }
        m_links[link] = {node, kNoIndex};
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
        const Index first = bucket.first;
        const Link link = m_links[first];
        bucket.first = link.next;
        m_links[first].next = m_free;
        m_free = first;
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
    Index m_free = kNoIndex;  // the first of the links that hold no entry
};

// Small numbers in the order of costs, kInfinite for edges that count as none.
struct Keys {
    Keys(const GraphOrder& order, std::span<const int> costs) : byEdge(order.ends.size(), kInfinite) {
        const auto costOf = [&](Index edge) { return edge < costs.size() ? costs[edge] : 0; };
        std::int64_t least = kInfinite;
        std::int64_t greatest = kSmallest;
        order.forEachEdge([&](Index edge) {
            const int cost = costOf(edge);
            if (cost == kInfinite) return;
            least = std::min<std::int64_t>(least, cost);
            greatest = std::max<std::int64_t>(greatest, cost);
        });
        if (greatest - least > std::min(2 * std::int64_t{order.edgeCount} + kFewCosts, kGreatestKey)) {
            rank(order, costOf);
        } else {
            order.forEachEdge([&](Index edge) {
                if (costOf(edge) != kInfinite) byEdge[edge] = static_cast<int>(costOf(edge) - least);
            });
            limit = static_cast<Index>(std::max<std::int64_t>(greatest - least, 0)) + 1;
        }
    }

    Buffer<int> byEdge;
    Index limit = 0;  // all are below

private:
    static constexpr std::int64_t kFewCosts = 4096;
    static constexpr std::int64_t kGreatestKey = kInfinite - 1;

    // Numbers the different costs.
    template <class CostOf>
    void rank(const GraphOrder& order, CostOf costOf) {
        Buffer<std::pair<int, Index>> sorted;
        sorted.reserve(order.edgeCount);
        order.forEachEdge([&](Index edge) {
            if (costOf(edge) != kInfinite) sorted.emplace_back(costOf(edge), edge);
        });
        std::sort(sorted.begin(), sorted.end());
        for (std::size_t i = 0; i < sorted.size(); ++i) {
            if (i == 0 || sorted[i].first != sorted[i - 1].first) ++limit;
            byEdge[sorted[i].second] = static_cast<int>(limit - 1);
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
void closeParallels(const FlatGraph& graph, Buffer<int>& keys) {
    if (!graph.undirected().leavesOut()) return;
    const GraphOrder order = graph.order();
    Buffer<Index> outPlaces;  // unless all lists stand in the order of the numbers
    Buffer<Index> inPlaces;
    if (!graph.areListsInGraphOrder() || !order.edges.empty()) {
        outPlaces = placesIn(graph.out(), order.ends.size());
        inPlaces = placesIn(graph.in(), order.ends.size());
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
            keys[isBetter ? best : edge] = kInfinite;
            if (isBetter) best = edge;
        });
    });
}

// Invariant: a node that can be joined has an entry of its key in the queue, and that key is below those of
// all its other entries.
class Prim {
public:
    Prim(const FlatGraph& graph, const Keys& keys, Pulse& pulse)
        : m_in(graph.in(), keys, pulse),
          m_out(graph.out(), keys, pulse),
          m_pulse(pulse),
          m_candidates(graph.out().nodeLimit()),
          m_queue(keys.limit),
          m_tree{Buffer<int>(graph.order().ends.size(), 0)} {}

    SpanningTree growFrom(Index root) {
        join(root);
        while (!m_queue.isEmpty()) {
            const auto [key, node] = m_queue.pop();
            const Candidate& candidate = m_candidates[node];
            if (candidate.key != static_cast<int>(key)) continue;
            m_tree.isTreeEdge[candidate.parent] = 1;
            ++m_tree.edgeCount;
            join(node);
        }
        return std::move(m_tree);
    }

private:
    struct Ways {
        Ways(const Arcs& all, const Keys& keys, Pulse& pulse)
            : arcs(all),
              byArc(costsByArc(
                  all, [&](Index edge) { return keys.byEdge[edge]; }, pulse)) {}
        const Arcs& arcs;
        Buffer<int> byArc;  // keys
    };
    struct Candidate {
        int key = kInfinite;      // of the cheapest edge to the tree that is known; -1 in the tree
        Index parent = kNoIndex;  // that edge
    };

    void join(Index node) {
        m_candidates[node].key = -1;
        m_pulse.beat(1 + std::int64_t{m_in.arcs.degree(node)} + m_out.arcs.degree(node));
        offer(m_in, node);
        offer(m_out, node);
    }
    void offer(const Ways& ways, Index node) {
        for (Index arc = ways.arcs.first[node]; arc < ways.arcs.last[node]; ++arc) {
            const int key = ways.byArc[arc];
            Candidate& target = m_candidates[ways.arcs.targets[arc]];
            if (key >= target.key) continue;
            target = {key, ways.arcs.edges[arc]};
            m_queue.push(static_cast<Index>(key), ways.arcs.targets[arc]);
        }
    }

    const Ways m_in;
    const Ways m_out;
    Pulse& m_pulse;
    std::vector<Candidate> m_candidates;  // by node
    BucketQueue m_queue;
    SpanningTree m_tree;
};

}  // namespace

SpanningTree spanningTree(const FlatGraph& graph, std::span<const int> costs, Pulse& pulse) {
    const GraphOrder order = graph.order();
    if (order.nodeCount == 0) return {};
    Keys keys(order, costs);
    closeParallels(graph, keys.byEdge);
    return Prim(graph, keys, pulse).growFrom(order.nodes.empty() ? 0 : order.nodes.front());
}

}  // namespace rv
