// A graph as arrays, in the orders of its lists. Internal to the library, not installed.
//
// Nodes and edges have the numbers that they have in the graph, with gaps. What is asked for is made then and
// kept, by any number of threads at once; it stays as it is until the flat graph is built anew.
//
// The graph's ends of edges are not copied. Once the graph has changed, what has been made may still be read,
// but for the orders, and nothing more may be asked for.
//
// Bytes by edge and by node: out 8.5 and 4, in 8 and 4, undirected 16 and 8, directed 0 and 4, besides 4 and
// 8 for a section in which loops or parallel edges are left out. Sorting 2^20 arcs or more takes 12 an arc
// meanwhile.
#pragma once

#include <atomic>
#include <functional>
#include <mutex>
#include <span>
#include <vector>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

// Arrays in which arcs stand: for each node where its arcs begin, and for each arc its target and its edge.
struct ArcArrays {
    void makeRoom(std::size_t arcs);
    Index* targets() { return memory.data(); }
    Index* edges() { return memory.data() + memory.size() / 2; }

    Buffer<Index> begins;
    Buffer<Index> memory;  // all targets, then all edges
};

struct SortedArcs {
    ArcArrays arrays;
    Arcs arcs;
};

// Edges by the node or edge to which they belong, those of one owner in the order in which they came.
class EdgeChains {
public:
    void clear();
    bool isEmpty() const { return m_links.empty(); }
    void addFirst(Index owner, Index edge);
    void addLast(Index owner, Index edge);
    template <class F>
    void forEach(Index owner, F f) const {
        if (owner >= m_last.size() || m_last[owner] == kNoIndex) return;
        Index link = m_last[owner];
        do {
            link = m_links[link].next;
            f(m_links[link].edge);
        } while (link != m_last[owner]);
    }

private:
    struct Link {
        Index edge;
        Index next;  // the first one after the last
    };
    std::vector<Index> m_last;  // by owner
    std::vector<Link> m_links;
};

// What a search follows, and what was left out for that: loops, and of parallel arcs all but one, that of the
// edge which is the first in graph order.
struct SimpleGraph {
    SimpleGraph() = default;
    SimpleGraph(SimpleGraph&&) = default;
    SimpleGraph& operator=(SimpleGraph&&) = default;

    SearchSpace space;
    EdgeChains parallels;
    EdgeChains reverseParallels;
    EdgeChains loops;

    // Calls f(edge) with the edges that were left out in favour of an edge; in graph order with a node's
    // loops. Where edges are followed both ways, an edge is kept or left out with both its arcs, and parallel
    // to another one whatever their directions.
    template <class F>
    void forEachParallel(Index edge, F f) const {
        parallels.forEach(edge, f);
    }
    template <class F>
    void forEachLoop(Index node, F f) const {
        loops.forEach(node, f);
    }
    // The same for the reverse arc of an edge, where only some edges have one.
    template <class F>
    void forEachReverseParallel(Index edge, F f) const {
        reverseParallels.forEach(edge, f);
    }

    bool leavesOut() const { return !parallels.isEmpty() || !reverseParallels.isEmpty() || !loops.isEmpty(); }

    // What the space refers to, unless that is the flat graph's.
    ArcArrays arrays;
    Buffer<Index> last;
    Buffer<Index> inDegrees;
};

// Something that is made when it is first asked for.
template <class T>
class Section {
public:
    template <class F>
    T& get(F make) const {
        if (!m_isMade.load(std::memory_order_acquire)) {
            const std::lock_guard lock(m_mutex);
            if (!m_isMade.load(std::memory_order_relaxed)) make(m_value);
            m_isMade.store(true, std::memory_order_release);
        }
        return m_value;
    }
    // Keeps the memory.
    void forget() { m_isMade.store(false, std::memory_order_relaxed); }

private:
    mutable T m_value;
    mutable std::mutex m_mutex;
    mutable std::atomic<bool> m_isMade = false;
};

class FlatGraph {
public:
    // Writes the edges of every node in the order of its out-list, or of its in-list, those of node v from
    // begins[v] on.
    using WriteLists = std::function<void(bool out, std::span<const Index> begins, std::span<Index> edges)>;

    // What it is built from.
    struct Parts {
        Index nodeLimit = 0;
        Index nodeCount = 0;
        Index edgeCount = 0;
        std::span<const Ends> ends;  // by edge; belong to somebody else
        Buffer<Index> nodes;         // as in GraphOrder
        Buffer<Index> edges;
        WriteLists writeLists;  // nothing where all lists stand in the order of the edges
    };

    FlatGraph() = default;
    explicit FlatGraph(Parts parts) : m_parts(std::move(parts)) {}
    // Forgets everything but keeps the memory. The caller fills the parts again.
    // REQUIRES: nobody reads.
    Parts& rebuild();

    GraphOrder order() const;
    bool areListsInGraphOrder() const { return m_parts.writeLists == nullptr; }
    // Every edge by its source in the order of the out-list; every edge by its target in the order of the
    // in-list, where it leads to its source.
    const Arcs& out() const;
    const Arcs& in() const;

    // Parallel edges have the same source and target. Those left out in favour of an edge come in the order
    // of the source's out-list.
    const SimpleGraph& directed() const;
    // Every edge both ways, and parallel edges whatever their directions. A node's arcs are those of its
    // out-list, then those of the edges that come in, in reverse graph order. The edges left out in favour of
    // an edge come in the order of its source's out-list and then in that of its source's in-list.
    const SimpleGraph& undirected() const;
    // As directed, but some edges, given in graph order, have a reverse arc as well. These come after all
    // edges, in graph order, as edges of their own. Loops have none.
    SimpleGraph mixed(std::span<const Index> twoWayEdges) const;
    template <class IsTwoWay>
    SimpleGraph mixedWhere(IsTwoWay isTwoWay) const {
        std::vector<Index> twoWayEdges;
        order().forEachEdge([&](Index edge) {
            if (isTwoWay(edge)) twoWayEdges.push_back(edge);
        });
        return mixed(twoWayEdges);
    }

    // Arcs that follow some edges back, each node's in the order in which the edges are given.
    SortedArcs backArcs(std::span<const Index> edges) const;

private:
    SortedArcs& sortedOut() const;
    void makeArcs(bool out, SortedArcs& made) const;
    void begin(SimpleGraph& made) const;
    void makeDirected(SimpleGraph& made) const;
    void makeUndirected(SimpleGraph& made) const;

    Parts m_parts;
    Section<SortedArcs> m_out;
    Section<SortedArcs> m_in;
    Section<SimpleGraph> m_directed;
    Section<SimpleGraph> m_undirected;
};

}  // namespace rv
