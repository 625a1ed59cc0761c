// Counting sorts of the edges by their ends, and a sieve for parallel arcs.
//
// While arcs are being written, begins[v + 1] is where the next one of node v goes, so that in the end its
// arcs are those from begins[v] up to begins[v + 1].
//
// The sieve finds the nodes with loops or parallel arcs in one pass, in which every node marks the targets of
// its arcs. Only the arcs of these nodes are written again: in place, or, in a directed graph, which shares
// the arcs of the section out, in the room that this section keeps after its own.
#include "rv/kernels/flat_graph.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <numeric>
#include <utility>

#include "rv/foundation/prefetch.h"

namespace rv {

namespace {

constexpr std::size_t kAhead = 16;  // so far ahead memory is asked for, to have time to answer

// Calls f(edge, ends) in graph order, or from last to first.
template <bool kForward = true, class F>
void forEachEdge(const GraphOrder& order, F f) {
    const std::size_t size = order.edges.empty() ? order.ends.size() : order.edges.size();
    const auto at = [size](std::size_t i) { return kForward ? i : size - 1 - i; };
    if (order.edges.empty()) {
        for (std::size_t i = 0; i < size; ++i) {
            const Ends ends = order.ends[at(i)];
            if (ends.source != kNoIndex) f(static_cast<Index>(at(i)), ends);
        }
    } else {
        for (std::size_t i = 0; i < size; ++i) {
            if (i + kAhead < size) prefetch(&order.ends[order.edges[at(i + kAhead)]]);
            f(order.edges[at(i)], order.ends[order.edges[at(i)]]);
        }
    }
}

// Calls f(node, target, edge) with all arcs.
template <class F>
void forEachArc(const Arcs& arcs, F f) {
    for (Index node = 0; node < arcs.nodeLimit(); ++node) {
        for (Index arc = arcs.first[node]; arc < arcs.last[node]; ++arc) {
            f(node, arcs.targets[arc], arcs.edges[arc]);
        }
    }
}

// Sorts arcs by their nodes, those of one node in the order in which they come.
class ArcSorter {
public:
    ArcSorter(ArcArrays& arrays, Index nodeLimit) : m_arrays(arrays), m_nodeLimit(nodeLimit) {
        arrays.begins.assign(std::size_t{nodeLimit} + 2, 0);
        m_next = arrays.begins.data() + 1;
    }
    // First every node is given the number of its arcs.
    void count(Index node, Index arcs = 1) { m_next[std::size_t{node} + 1] += arcs; }
    // Makes room for them, and for some more after them.
    void makeRoom(std::size_t more = 0) {
        Buffer<Index>& begins = m_arrays.begins;
        std::partial_sum(begins.begin(), begins.end(), begins.begin());
        m_arrays.makeRoom(begins.back() + more);
    }
    // Calls forEachArc(f), which calls f(node, target, edge) with every arc.
    template <class F>
    void sort(F forEachArc) {
        const std::size_t arcs = m_arrays.begins.back();
        arcs < kManyArcs || m_nodeLimit < kManyNodes ? forEachArc(put()) : sortByBlocks(arcs, forEachArc);
    }
    // What has been sorted.
    Arcs arcs() const {
        const std::span<const Index> begins(m_arrays.begins);
        const std::size_t arcs = begins[m_nodeLimit];
        return {begins.first(m_nodeLimit),
                begins.subspan(1, m_nodeLimit),
                {m_arrays.targets(), arcs},
                {m_arrays.edges(), arcs}};
    }

private:
    static constexpr std::size_t kManyArcs = std::size_t{1} << 20;
    static constexpr Index kManyNodes = Index{1} << 17;
    static constexpr int kBlocksBits = 9;  // of the number of blocks

    // Puts an arc in its place.
    struct Put {
        void operator()(Index node, Index target, Index edge) const {
            const Index place = next[node]++;
            targets[place] = target;
            edges[place] = edge;
        }
        Index* targets;
        Index* edges;
        Index* next;  // by node
    };
    Put put() const { return {m_arrays.targets(), m_arrays.edges(), m_next}; }
    // The arcs of some nodes are put together first, so that the memory written at a time lies close
    // together.
    template <class F>
    void sortByBlocks(std::size_t arcs, F forEachArc) {
        const int blockBits = std::max(static_cast<int>(std::bit_width(m_nodeLimit)) - kBlocksBits, 0);
        std::vector<Index> next;
        for (std::size_t node = 0; node < m_nodeLimit; node += std::size_t{1} << blockBits) {
            next.push_back(m_next[node]);
        }
        struct Arc {
            Index node, target, edge;
        };
        Buffer<Arc> byBlock(arcs);
        forEachArc([&](Index node, Index target, Index edge) {
            byBlock[next[node >> blockBits]++] = {node, target, edge};
        });
        for (const Arc& arc : byBlock) put()(arc.node, arc.target, arc.edge);
    }

    ArcArrays& m_arrays;
    Index m_nodeLimit;
    Index* m_next;  // by node: where its next arc goes
};

}  // namespace

// What stood there is not kept. Memory that is too small once is likely to be so again.
void ArcArrays::makeRoom(std::size_t arcs) {
    std::size_t room = 2 * arcs;
    if (room > memory.capacity()) {
        if (memory.capacity() > 0) room += room / 8;
        memory = {};
        memory.reserve(room);
    }
    memory.resize(2 * arcs);
}

void EdgeChains::clear() {
    m_last.clear();
    m_links.clear();
}

void EdgeChains::addFirst(Index owner, Index edge) {
    if (owner >= m_last.size()) m_last.resize(std::size_t{owner} + 1, kNoIndex);
    Index& last = m_last[owner];
    const auto link = static_cast<Index>(m_links.size());
    m_links.push_back({edge, link});
    if (last == kNoIndex) last = link;
    std::swap(m_links[last].next, m_links[link].next);
}

void EdgeChains::addLast(Index owner, Index edge) {
    addFirst(owner, edge);
    m_last[owner] = static_cast<Index>(m_links.size() - 1);
}

// Finds the loops and parallel arcs of a graph that is being made, and leaves them out.
class Sieve {
public:
    enum Kind { kDirected, kMixed, kUndirected };

    Sieve(const FlatGraph& graph, Kind kind, SimpleGraph& made)
        : m_graph(graph),
          m_kind(kind),
          m_made(made),
          m_ends(made.space.order.ends),
          m_marks(made.space.nodeLimit(), kNoIndex) {}

    // Counts the arcs that lead to each node. Gives the nodes with loops or parallel arcs.
    std::vector<Index> search();
    // Writes those of a node's arcs that are kept to the place given, and gives the place after them.
    // REQUIRES: search has found the node.
    Index sift(Index node, Index* targets, Index* edges, Index to);

private:
    bool areInListOrder() const { return m_kind != kUndirected && m_graph.areListsInGraphOrder(); }
    Index rank(Index edge) const { return m_ranks.empty() ? edge : m_ranks[edge]; }
    bool isForward(Index node, Index edge) const { return m_ends[edge].source == node; }
    bool isBefore(Index node, Index edge, Index other) const;
    void noteLoops(Index node);
    void noteParallels(Index node, const Index* targets, const Index* edges);

    const FlatGraph& m_graph;
    Kind m_kind;
    SimpleGraph& m_made;
    std::span<const Ends> m_ends;
    std::vector<Index> m_ranks;  // by edge: where it stands in graph order, unless its number says so
    std::vector<Index> m_marks;  // by node: which one had an arc to it last; in sift, which arc to it is kept
    std::vector<Index> m_loops;  // of the node that is sifted
};

std::vector<Index> Sieve::search() {
    const Arcs& arcs = m_made.space.arcs;
    Buffer<Index>& inDegrees = m_made.inDegrees;
    inDegrees.assign(arcs.nodeLimit(), 0);
    m_made.space.inDegrees = inDegrees;
    std::vector<Index> found;
    const auto search = [&arcs, &found, marks = m_marks.data()](auto count) {
        for (Index node = 0; node < arcs.nodeLimit(); ++node) {
            bool isFound = false;
            marks[node] = node;  // a loop looks like an arc that is parallel to another one
            for (const Index target : arcs.targetsOf(node)) {
                isFound |= marks[target] == node;
                marks[target] = node;
                count(target);
            }
            if (isFound) found.push_back(node);
        }
    };
    if (m_kind == kUndirected) {
        for (Index node = 0; node < arcs.nodeLimit(); ++node) inDegrees[node] = arcs.degree(node);
        search([](Index) {});
    } else {
        search([degrees = inDegrees.data()](Index target) { ++degrees[target]; });
    }
    if (found.empty()) return found;

    std::fill(m_marks.begin(), m_marks.end(), kNoIndex);
    const GraphOrder& order = m_made.space.order;
    if (!areInListOrder() && !order.edges.empty()) {
        m_ranks.resize(m_ends.size());
        Index rank = 0;
        for (const Index edge : order.edges) m_ranks[edge] = rank++;
    }
    return found;
}

// Of two arcs of a node with the same target, the second one being that which is kept so far.
bool Sieve::isBefore(Index node, Index edge, Index other) const {
    if (areInListOrder()) return false;
    if (m_kind == kMixed && !isForward(node, edge)) return false;  // reverse arcs stand in graph order
    return rank(edge) < rank(other);
}

Index Sieve::sift(Index node, Index* targets, Index* edges, Index to) {
    const Index begin = m_made.space.arcs.first[node];
    const Index end = m_made.space.arcs.last[node];
    for (Index arc = begin; arc < end; ++arc) {
        if (targets[arc] == node) {
            m_loops.push_back(edges[arc]);
            continue;
        }
        Index& kept = m_marks[targets[arc]];
        if (kept == kNoIndex || isBefore(node, edges[arc], edges[kept])) kept = arc;
    }
    noteLoops(node);
    noteParallels(node, targets, edges);
    const Index first = to;
    for (Index arc = begin; arc < end; ++arc) {
        const Index target = targets[arc];
        if (m_marks[target] == arc) {
            targets[to] = target;
            edges[to++] = edges[arc];
        } else {
            --m_made.inDegrees[target];
        }
    }
    for (Index arc = first; arc < to; ++arc) m_marks[targets[arc]] = kNoIndex;
    return to;
}

void Sieve::noteLoops(Index node) {
    if (!areInListOrder()) std::ranges::sort(m_loops, {}, [this](Index edge) { return rank(edge); });
    for (const Index edge : m_loops) m_made.loops.addLast(node, edge);
    m_loops.clear();
}

// Where an edge is parallel to others by both its arcs, this is noted at the source of the one that is kept.
void Sieve::noteParallels(Index node, const Index* targets, const Index* edges) {
    const auto note = [&](Index target, Index edge) {
        if (target == node) return;
        const Index kept = edges[m_marks[target]];
        if (kept == edge) return;
        if (isForward(node, kept)) {
            m_made.parallels.addLast(kept, edge);
        } else if (m_kind == kMixed) {
            m_made.reverseParallels.addLast(kept, edge);
        }
    };
    Index arc = m_made.space.arcs.first[node];
    Index end = m_made.space.arcs.last[node];
    for (; arc < end && (m_kind != kUndirected || isForward(node, edges[arc])); ++arc) {
        note(targets[arc], edges[arc]);
    }
    if (m_graph.areListsInGraphOrder()) {
        for (; end > arc; --end) note(targets[end - 1], edges[end - 1]);
    } else if (arc < end) {
        for (const Index edge : m_graph.in().edgesOf(node)) note(m_ends[edge].source, edge);
    }
}

namespace {

// In a graph that has arrays of its own.
void siftInPlace(Sieve sieve, SimpleGraph& made) {
    const std::vector<Index> found = sieve.search();
    if (found.empty()) return;
    made.last.assign(made.space.arcs.last.begin(), made.space.arcs.last.end());
    for (const Index node : found) {
        const Index first = made.space.arcs.first[node];
        made.last[node] = sieve.sift(node, made.arrays.targets(), made.arrays.edges(), first);
    }
    made.space.arcs.last = made.last;
}

}  // namespace

FlatGraph::Parts& FlatGraph::rebuild() {
    m_out.forget();
    m_in.forget();
    m_directed.forget();
    m_undirected.forget();
    return m_parts;
}

GraphOrder FlatGraph::order() const {
    return {m_parts.nodeCount, m_parts.edgeCount, m_parts.nodes, m_parts.edges, m_parts.ends};
}

const Arcs& FlatGraph::out() const { return sortedOut().arcs; }

const Arcs& FlatGraph::in() const {
    return m_in.get([this](SortedArcs& made) { makeArcs(false, made); }).arcs;
}

const SimpleGraph& FlatGraph::directed() const {
    return m_directed.get([this](SimpleGraph& made) { makeDirected(made); });
}

const SimpleGraph& FlatGraph::undirected() const {
    return m_undirected.get([this](SimpleGraph& made) { makeUndirected(made); });
}

// The room after the out-arcs is for those that are written again without loops and parallels.
SortedArcs& FlatGraph::sortedOut() const {
    return m_out.get([this](SortedArcs& made) { makeArcs(true, made); });
}

void FlatGraph::makeArcs(bool out, SortedArcs& made) const {
    ArcSorter sorter(made.arrays, m_parts.nodeLimit);
    Index Ends::*const from = out ? &Ends::source : &Ends::target;
    Index Ends::*const to = out ? &Ends::target : &Ends::source;
    for (const Ends& ends : m_parts.ends) {
        if (ends.source != kNoIndex) sorter.count(ends.*from);
    }
    sorter.makeRoom(out ? m_parts.edgeCount / 16 : 0);
    if (areListsInGraphOrder()) {
        sorter.sort([&](auto put) {
            forEachEdge(order(), [&](Index edge, const Ends& ends) { put(ends.*from, ends.*to, edge); });
        });
    } else {
        Buffer<Index>& begins = made.arrays.begins;
        std::shift_left(begins.begin(), begins.end(), 1);  // all are written at once
        const std::span edges(made.arrays.edges(), m_parts.edgeCount);
        m_parts.writeLists(out, begins, edges);
        Index* target = made.arrays.targets();
        for (std::size_t arc = 0; arc < edges.size(); ++arc) {
            if (arc + kAhead < edges.size()) prefetch(&m_parts.ends[edges[arc + kAhead]]);
            *target++ = m_parts.ends[edges[arc]].*to;
        }
    }
    made.arcs = sorter.arcs();
}

void FlatGraph::begin(SimpleGraph& made) const {
    made.space = {{}, {}, order()};
    made.parallels.clear();
    made.loops.clear();
}

void FlatGraph::makeDirected(SimpleGraph& made) const {
    SortedArcs& all = sortedOut();
    begin(made);
    made.space.arcs = all.arcs;
    Sieve sieve(*this, Sieve::kDirected, made);
    const std::vector<Index> found = sieve.search();
    if (found.empty()) return;

    std::size_t room = all.arcs.targets.size();
    for (const Index node : found) room += all.arcs.degree(node);
    const bool isEnough = 2 * room <= all.arrays.memory.size();
    ArcArrays& arrays = isEnough ? all.arrays : made.arrays;
    if (!isEnough) {
        arrays.makeRoom(room);
        std::ranges::copy(all.arcs.targets, arrays.targets());
        std::ranges::copy(all.arcs.edges, arrays.edges());
    }
    made.arrays.begins.assign(all.arcs.first.begin(), all.arcs.first.end());
    made.last.assign(all.arcs.last.begin(), all.arcs.last.end());
    auto to = static_cast<Index>(all.arcs.targets.size());
    for (const Index node : found) {
        made.arrays.begins[node] = to;
        made.last[node] = to = sieve.sift(node, arrays.targets(), arrays.edges(), to);
    }
    made.space.arcs = {made.arrays.begins, made.last, {arrays.targets(), to}, {arrays.edges(), to}};
}

void FlatGraph::makeUndirected(SimpleGraph& made) const {
    begin(made);
    const auto isLoop = [](const Ends& ends) { return ends.source == ends.target; };
    ArcSorter sorter(made.arrays, m_parts.nodeLimit);
    for (const Ends& ends : m_parts.ends) {
        if (ends.source == kNoIndex || isLoop(ends)) continue;
        sorter.count(ends.source);
        sorter.count(ends.target);
    }
    sorter.makeRoom();
    sorter.sort([&](auto put) {
        const auto putForward = [&](Index source, Index target, Index edge) {
            if (source != target) put(source, target, edge);
        };
        if (areListsInGraphOrder()) {
            forEachEdge(order(),
                        [&](Index edge, const Ends& ends) { putForward(ends.source, ends.target, edge); });
        } else {
            forEachArc(out(), putForward);
        }
        forEachEdge<false>(order(), [&](Index edge, const Ends& ends) {
            if (isLoop(ends)) {
                made.loops.addFirst(ends.source, edge);
            } else {
                put(ends.target, ends.source, edge);
            }
        });
    });
    made.space.arcs = sorter.arcs();
    siftInPlace(Sieve(*this, Sieve::kUndirected, made), made);
}

SimpleGraph FlatGraph::mixed(std::span<const Index> twoWayEdges) const {
    SimpleGraph made;
    begin(made);
    ArcSorter sorter(made.arrays, m_parts.nodeLimit);
    const auto forEachReverse = [&](auto f) {
        for (const Index edge : twoWayEdges) {
            const Ends ends = m_parts.ends[edge];
            if (ends.source != ends.target) f(ends.target, ends.source, edge);
        }
    };
    for (Index node = 0; node < m_parts.nodeLimit; ++node) sorter.count(node, out().degree(node));
    forEachReverse([&](Index node, Index, Index) { sorter.count(node); });
    sorter.makeRoom();
    sorter.sort([&](auto put) {
        forEachArc(out(), put);
        forEachReverse(put);
    });
    made.space.arcs = sorter.arcs();
    siftInPlace(Sieve(*this, Sieve::kMixed, made), made);
    return made;
}

SortedArcs FlatGraph::backArcs(std::span<const Index> edges) const {
    SortedArcs made;
    ArcSorter sorter(made.arrays, m_parts.nodeLimit);
    for (const Index edge : edges) sorter.count(m_parts.ends[edge].target);
    sorter.makeRoom();
    sorter.sort([&](auto put) {
        for (const Index edge : edges) put(m_parts.ends[edge].target, m_parts.ends[edge].source, edge);
    });
    made.arcs = sorter.arcs();
    return made;
}

}  // namespace rv
