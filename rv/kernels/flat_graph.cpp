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
#include <cstddef>
#include <numeric>
#include <utility>

#include "rv/foundation/prefetch.h"

namespace rv {

namespace {

constexpr std::size_t kAhead = 16;  // so far ahead memory is asked for, to have time to answer

// Calls f(edge, ends) in graph order, or from last to first.
template <class F>
void forEachEdge(const GraphOrder& order, bool forward, F f) {
    const bool byNumber = order.edges.empty();
    const std::size_t size = byNumber ? order.ends.size() : order.edges.size();
    for (std::size_t i = 0; i < size; ++i) {
        const auto placeAfter = [&](std::size_t steps) { return forward ? steps : size - 1 - steps; };
        if (!byNumber && i + kAhead < size) prefetch(&order.ends[order.edges[placeAfter(i + kAhead)]]);
        const std::size_t edge = byNumber ? placeAfter(i) : order.edges[placeAfter(i)];
        const Ends ends = order.ends[edge];
        if (ends.source != kNoIndex) f(static_cast<Index>(edge), ends);
    }
}

// Puts each arc after those that its node has already.
class ArcWriter {
public:
    // Counts come first: add(node) once for each arc, then begin.
    explicit ArcWriter(Buffer<Index>& begins, Index nodeLimit) : m_begins(begins) {
        begins.assign(std::size_t{nodeLimit} + 2, 0);
    }
    void count(Index node, Index arcs = 1) { m_begins[std::size_t{node} + 2] += arcs; }
    // Makes room for what was counted, and for some more arcs after it.
    Index begin(Buffer<Index>& targets, Buffer<Index>& edges, std::size_t more = 0) {
        std::partial_sum(m_begins.begin(), m_begins.end(), m_begins.begin());
        targets.resize(m_begins.back() + more);
        edges.resize(m_begins.back() + more);
        m_targets = targets.data();
        m_edges = edges.data();
        return m_begins.back();
    }
    void write(Index node, Index target, Index edge) {
        const Index place = m_begins[std::size_t{node} + 1]++;
        m_targets[place] = target;
        m_edges[place] = edge;
    }
    // What has been written.
    Arcs arcs() const {
        const std::span<const Index> begins(m_begins);
        const std::size_t nodes = begins.size() - 2;
        return {begins.first(nodes),
                begins.subspan(1, nodes),
                {m_targets, begins[nodes]},
                {m_edges, begins[nodes]}};
    }

private:
    Buffer<Index>& m_begins;
    Index* m_targets = nullptr;
    Index* m_edges = nullptr;
};

}  // namespace

void EdgeChains::clear() {
    m_last.clear();
    m_links.clear();
}

void EdgeChains::add(Index owner, Index edge) {
    if (owner >= m_last.size()) m_last.resize(std::size_t{owner} + 1, kNoIndex);
    Index& last = m_last[owner];
    const auto link = static_cast<Index>(m_links.size());
    m_links.push_back({edge, link});
    if (last != kNoIndex) std::swap(m_links[last].next, m_links[link].next);
    last = link;
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
    void noteParallels(Index node, const Index* targets, const Index* edges);

    const FlatGraph& m_graph;
    Kind m_kind;
    SimpleGraph& m_made;
    std::span<const Ends> m_ends;
    std::vector<Index> m_ranks;  // by edge: where it stands in graph order, unless its number says so
    std::vector<Index>
        m_marks;  // by node: the last one with an arc to it; in sift, the arc to it that is kept
};

std::vector<Index> Sieve::search() {
    const Arcs& arcs = m_made.space.arcs;
    m_made.inDegrees.assign(arcs.nodeLimit(), 0);
    m_made.space.inDegrees = m_made.inDegrees;
    Index* const marks = m_marks.data();
    Index* const inDegrees = m_made.inDegrees.data();
    std::vector<Index> found;
    for (Index node = 0; node < arcs.nodeLimit(); ++node) {
        bool isFound = false;
        for (const Index target : arcs.targetsOf(node)) {
            isFound |= target == node || marks[target] == node;
            marks[target] = node;
            ++inDegrees[target];
        }
        if (isFound) found.push_back(node);
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
        if (targets[arc] == node) continue;
        Index& kept = m_marks[targets[arc]];
        if (kept == kNoIndex || isBefore(node, edges[arc], edges[kept])) kept = arc;
    }
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

// Where an edge is parallel to others by both its arcs, this is noted at the source of the one that is kept.
void Sieve::noteParallels(Index node, const Index* targets, const Index* edges) {
    const auto note = [&](Index target, Index edge) {
        if (target == node) return;
        const Index kept = edges[m_marks[target]];
        if (kept == edge) return;
        if (isForward(node, kept)) {
            m_made.parallels.add(kept, edge);
        } else if (m_kind == kMixed) {
            m_made.reverseParallels.add(kept, edge);
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

void collectLoops(SimpleGraph& made) {
    made.space.order.forEachEdge([&](Index edge) {
        const Ends ends = made.space.order.ends[edge];
        if (ends.source == ends.target) made.loops.add(ends.source, edge);
    });
}

// In a graph that has arrays of its own.
void siftInPlace(Sieve sieve, SimpleGraph& made) {
    const std::vector<Index> found = sieve.search();
    if (found.empty()) return;
    made.last.assign(made.space.arcs.last.begin(), made.space.arcs.last.end());
    for (const Index node : found) {
        made.last[node] = sieve.sift(node, made.targets.data(), made.edges.data(), made.first[node]);
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

const Arcs& FlatGraph::out() const { return outArrays().arcs; }

const Arcs& FlatGraph::in() const {
    return m_in.get([this](Arrays& made) { makeArcs(false, made); }).arcs;
}

const SimpleGraph& FlatGraph::directed() const {
    return m_directed.get([this](SimpleGraph& made) { makeDirected(made); });
}

const SimpleGraph& FlatGraph::undirected() const {
    return m_undirected.get([this](SimpleGraph& made) { makeUndirected(made); });
}

// The room after the out-arcs is for those that are written again without loops and parallels.
FlatGraph::Arrays& FlatGraph::outArrays() const {
    return m_out.get([this](Arrays& made) { makeArcs(true, made); });
}

void FlatGraph::makeArcs(bool out, Arrays& made) const {
    ArcWriter writer(made.begins, m_parts.nodeLimit);
    for (const Ends& ends : m_parts.ends) {
        if (ends.source != kNoIndex) writer.count(out ? ends.source : ends.target);
    }
    const Index arcs = writer.begin(made.targets, made.edges, out ? m_parts.edgeCount / 16 : 0);
    if (areListsInGraphOrder()) {
        forEachEdge(order(), true, [&](Index edge, const Ends& ends) {
            out ? writer.write(ends.source, ends.target, edge) : writer.write(ends.target, ends.source, edge);
        });
    } else {
        // The begins move to their places.
        m_parts.writeLists(out, std::span(made.begins).subspan(1, m_parts.nodeLimit), made.edges);
        made.begins.erase(made.begins.begin());
        made.begins.push_back(arcs);
        for (Index arc = 0; arc < arcs; ++arc) {
            if (arc + kAhead < arcs) prefetch(&m_parts.ends[made.edges[arc + kAhead]]);
            const Ends ends = m_parts.ends[made.edges[arc]];
            made.targets[arc] = out ? ends.target : ends.source;
        }
    }
    made.arcs = writer.arcs();
}

void FlatGraph::begin(SimpleGraph& made, const Arcs& arcs) const {
    made.space = {arcs, {}, order()};
    made.parallels.clear();
    made.reverseParallels.clear();
    made.loops.clear();
}

void FlatGraph::makeDirected(SimpleGraph& made) const {
    Arrays& all = outArrays();
    begin(made, all.arcs);
    Sieve sieve(*this, Sieve::kDirected, made);
    const std::vector<Index> found = sieve.search();
    if (found.empty()) return;
    collectLoops(made);

    std::size_t room = all.arcs.targets.size();
    for (const Index node : found) room += all.arcs.degree(node);
    const bool isEnough = room <= all.targets.size();
    if (!isEnough) {
        made.targets.resize(room);
        made.edges.resize(room);
        std::ranges::copy(all.arcs.targets, made.targets.begin());
        std::ranges::copy(all.arcs.edges, made.edges.begin());
    }
    Index* const targets = (isEnough ? all.targets : made.targets).data();
    Index* const edges = (isEnough ? all.edges : made.edges).data();
    made.first.assign(all.arcs.first.begin(), all.arcs.first.end());
    made.last.assign(all.arcs.last.begin(), all.arcs.last.end());
    auto to = static_cast<Index>(all.arcs.targets.size());
    for (const Index node : found) {
        made.first[node] = to;
        made.last[node] = to = sieve.sift(node, targets, edges, to);
    }
    made.space.arcs = {made.first, made.last, {targets, to}, {edges, to}};
}

void FlatGraph::makeUndirected(SimpleGraph& made) const {
    ArcWriter writer(made.first, m_parts.nodeLimit);
    const auto isArc = [](const Ends& ends) {
        return ends.source != ends.target;
    };  // that of an edge, no loop
    for (const Ends& ends : m_parts.ends) {
        if (!isArc(ends)) continue;
        writer.count(ends.source);
        writer.count(ends.target);
    }
    const Index arcs = writer.begin(made.targets, made.edges);
    const auto writeForward = [&](Index edge, const Ends& ends) {
        if (isArc(ends)) writer.write(ends.source, ends.target, edge);
    };
    if (areListsInGraphOrder()) {
        forEachEdge(order(), true, writeForward);
    } else {
        for (const Index edge : out().edges) writeForward(edge, m_parts.ends[edge]);
    }
    forEachEdge(order(), false, [&](Index edge, const Ends& ends) {
        if (isArc(ends)) writer.write(ends.target, ends.source, edge);
    });
    begin(made, writer.arcs());
    if (arcs != 2 * m_parts.edgeCount) collectLoops(made);
    siftInPlace(Sieve(*this, Sieve::kUndirected, made), made);
}

SimpleGraph FlatGraph::mixed(std::span<const Index> twoWayEdges) const {
    SimpleGraph made;
    ArcWriter writer(made.first, m_parts.nodeLimit);
    const auto forEachReverse = [&](auto f) {
        for (const Index edge : twoWayEdges) {
            const Ends ends = m_parts.ends[edge];
            if (ends.source != ends.target) f(edge, ends);
        }
    };
    for (Index node = 0; node < m_parts.nodeLimit; ++node) writer.count(node, out().degree(node));
    forEachReverse([&](Index, const Ends& ends) { writer.count(ends.target); });
    writer.begin(made.targets, made.edges);
    for (const Index edge : out().edges)
        writer.write(m_parts.ends[edge].source, m_parts.ends[edge].target, edge);
    forEachReverse([&](Index edge, const Ends& ends) { writer.write(ends.target, ends.source, edge); });
    begin(made, writer.arcs());
    collectLoops(made);
    siftInPlace(Sieve(*this, Sieve::kMixed, made), made);
    return made;
}

}  // namespace rv
