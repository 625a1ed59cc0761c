// Searches from both ends: whether a path leads from one node to another, and a path of fewest edges.
// Internal to the library, not installed.
//
// They cost what they touch: marks and queues belong to the caller and are taken up again by the next search.
//
// Both run on whatever tells the neighbours of a node:
//   Index nodeLimit()
//   cursor forward(Index node), backward(Index node)   over the arcs out of it, into it
//   Index next(cursor&)                                the other end of the next arc; kNoIndex at the end
// where the order of arcs backward plays no part, nor do loops and parallel arcs. For shortestPath they also
// have
//   Index edge(const cursor&)                          of the arc that next() followed last
//   Index forwardDegree(Index node), backwardDegree(Index node)
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/node_marks.h"
#include "rv/kernels/pulse.h"

namespace rv {

// The neighbours over arcs and the same ones backward.
class ArcNeighbours {
public:
    struct Cursor {
        const Arcs* arcs;
        Index arc;
        Index last;
    };

    ArcNeighbours(const Arcs& out, const Arcs& in) : m_out(out), m_in(in) {}

    Index nodeLimit() const { return m_out.nodeLimit(); }
    Cursor forward(Index node) const { return {&m_out, m_out.first[node], m_out.last[node]}; }
    Cursor backward(Index node) const { return {&m_in, m_in.first[node], m_in.last[node]}; }
    Index next(Cursor& at) const { return at.arc == at.last ? kNoIndex : at.arcs->targets[at.arc++]; }
    Index edge(const Cursor& at) const { return at.arcs->edges[at.arc - 1]; }
    Index forwardDegree(Index node) const { return m_out.degree(node); }
    Index backwardDegree(Index node) const { return m_in.degree(node); }

private:
    const Arcs& m_out;
    const Arcs& m_in;
};

// What is taken up by one search after another: 8 bytes for every number that a node may have, and up to 16
// for the nodes that a search touches.
struct TwoSidedScratch {
    struct Side {
        void begin(Index nodeLimit, Index start) {
            marks.begin(nodeLimit, nodeLimit);
            queue.clear();
            reach(start);
        }
        void reach(Index node, Index level = 0) {
            queue.push_back(node);
            marks.mark(node, level);
        }

        NodeMarks marks;
        Buffer<Index> queue;  // the nodes reached by the last search, in their order
    };

    struct Link {
        Index parent;  // its place in the forward queue
        Index edge;
    };

    Side forward;
    Side backward;
    std::int64_t steps = 0;  // of the last search
    Buffer<Link> links;      // of shortestPath, by place in the forward queue
    Buffer<Index> path;      // the edges that it found
};

namespace two_sided {

enum class Step { going, met, ended };

// Half of connects: one step is to follow an arc or to go on to the next node.
template <class Neighbours, class Cursor>
class Half {
public:
    Half(const Neighbours& neighbours, Cursor cursor, TwoSidedScratch::Side& side)
        : m_neighbours(neighbours), m_cursor(cursor), m_side(side) {}

    // open(node) is the cursor of a node.
    template <class Open>
    Step step(const NodeMarks& others, Open open) {
        const Index node = m_neighbours.next(m_cursor);
        if (node == kNoIndex) {
            if (++m_open == m_side.queue.size()) return Step::ended;
            m_cursor = open(m_side.queue[m_open]);
        } else if (others.isMarked(node)) {
            return Step::met;
        } else if (!m_side.marks.isMarked(node)) {
            m_side.reach(node);
        }
        return Step::going;
    }

private:
    const Neighbours& m_neighbours;
    Cursor m_cursor;
    TwoSidedScratch::Side& m_side;
    std::size_t m_open = 0;  // the place in the queue of the node whose cursor it is
};

}  // namespace two_sided

// Whether a path leads from one node to the other; every node has one to itself. The two searches take steps
// in turn, so both together cost at most twice what the cheaper one alone would.
template <class Neighbours>
bool connects(const Neighbours& neighbours, Index from, Index to, TwoSidedScratch& scratch, Pulse& pulse) {
    scratch.forward.begin(neighbours.nodeLimit(), from);
    scratch.backward.begin(neighbours.nodeLimit(), to);
    scratch.steps = 0;
    if (from == to) return true;
    two_sided::Half forward(neighbours, neighbours.forward(from), scratch.forward);
    two_sided::Half backward(neighbours, neighbours.backward(to), scratch.backward);
    for (;;) {
        pulse.beat(2);
        scratch.steps += 2;
        const auto ahead =
            forward.step(scratch.backward.marks, [&](Index node) { return neighbours.forward(node); });
        if (ahead != two_sided::Step::going) return ahead == two_sided::Step::met;
        const auto back =
            backward.step(scratch.forward.marks, [&](Index node) { return neighbours.backward(node); });
        if (back != two_sided::Step::going) return back == two_sided::Step::met;
    }
}

// Whether a path leads from one node to the other. If so, scratch.path is one of fewest edges, the very one
// in the tree of a breadth-first search from the first node that follows arcs in their order; otherwise
// scratch.forward.queue lists the nodes that this search reaches, in its order.
//
// The forward half is that search. The backward half finds the distance of nodes to the other end, one level
// after the other. Of the nodes of the tree in the level where the halves meet, the first one that is as near
// to the other end as it can be lies on the path: what is reached from it comes first in every later level.
// So the path goes on over the first arc, node by node, that leads one level nearer.
template <class Neighbours>
class ShortestPath {
public:
    ShortestPath(const Neighbours& neighbours, Index from, Index to, TwoSidedScratch& scratch, Pulse& pulse)
        : m_neighbours(neighbours), m_to(to), m_scratch(scratch), m_pulse(pulse) {
        scratch.forward.begin(neighbours.nodeLimit(), from);
        scratch.backward.begin(neighbours.nodeLimit(), to);
        scratch.links.assign(1, {kNoIndex, kNoIndex});
        scratch.path.clear();
        scratch.steps = 0;
        m_forward.arcs = neighbours.forwardDegree(from);
        m_backward.arcs = neighbours.backwardDegree(to);
        if (from == to) m_middle = 0;
    }

    bool find() {
        while (m_middle == kNoIndex) {
            const bool isForwardCheaper = m_forward.arcs <= m_backward.arcs;
            if (m_forward.begin == m_scratch.forward.queue.size()) return false;
            const bool isBackwardDone = m_backward.begin == m_scratch.backward.queue.size();
            isForwardCheaper || isBackwardDone ? expandForward() : expandBackward();
        }
        listPath();
        return true;
    }

private:
    // The last level of a half.
    struct Level {
        std::size_t begin = 0;  // in the queue
        std::int64_t arcs = 0;  // out of, or into, its nodes
    };

    void expandForward() {
        auto& [marks, queue] = m_scratch.forward;
        const std::size_t end = startLevel(m_forward, queue);
        for (std::size_t place = m_forward.begin; place < end; ++place) {
            auto cursor = m_neighbours.forward(queue[place]);
            for (Index node = 0; (node = m_neighbours.next(cursor)) != kNoIndex;) {
                if (marks.isMarked(node)) continue;
                m_scratch.links.push_back({static_cast<Index>(place), m_neighbours.edge(cursor)});
                m_scratch.forward.reach(node);
                m_forward.arcs += m_neighbours.forwardDegree(node);
                if (!m_scratch.backward.marks.isMarked(node)) continue;
                m_middle = static_cast<Index>(queue.size() - 1);
                return;
            }
        }
        m_forward.begin = end;
    }

    void expandBackward() {
        auto& [marks, queue] = m_scratch.backward;
        const std::size_t end = startLevel(m_backward, queue);
        bool isMet = false;
        ++m_backwardLevel;
        for (std::size_t place = m_backward.begin; place < end; ++place) {
            auto cursor = m_neighbours.backward(queue[place]);
            for (Index node = 0; (node = m_neighbours.next(cursor)) != kNoIndex;) {
                if (marks.isMarked(node)) continue;
                m_scratch.backward.reach(node, m_backwardLevel);
                m_backward.arcs += m_neighbours.backwardDegree(node);
                isMet = isMet || m_scratch.forward.marks.isMarked(node);
            }
        }
        m_backward.begin = end;
        if (!isMet) return;
        const auto& ahead = m_scratch.forward.queue;
        const auto first =
            std::find_if(ahead.begin() + static_cast<std::ptrdiff_t>(m_forward.begin), ahead.end(),
                         [&](Index node) { return m_scratch.backward.marks.isMarked(node); });
        m_middle = static_cast<Index>(first - ahead.begin());
    }

    // Gives the end of the level that is there.
    std::size_t startLevel(Level& level, const Buffer<Index>& queue) {
        m_pulse.beat(level.arcs + static_cast<std::int64_t>(queue.size() - level.begin));
        m_scratch.steps += level.arcs;
        level.arcs = 0;
        return queue.size();
    }

    void listPath() {
        auto& path = m_scratch.path;
        for (Index place = m_middle; place != 0; place = m_scratch.links[place].parent)
            path.push_back(m_scratch.links[place].edge);
        std::reverse(path.begin(), path.end());
        Index level = m_backwardLevel;
        for (Index node = m_scratch.forward.queue[m_middle]; node != m_to;) {
            --level;
            auto cursor = m_neighbours.forward(node);
            do {
                node = m_neighbours.next(cursor);
                ++m_scratch.steps;
            } while (!m_scratch.backward.marks.isMarked(node, level));
            path.push_back(m_neighbours.edge(cursor));
        }
    }

    const Neighbours& m_neighbours;
    const Index m_to;
    TwoSidedScratch& m_scratch;
    Pulse& m_pulse;
    Level m_forward;
    Level m_backward;
    Index m_backwardLevel = 0;
    Index m_middle = kNoIndex;  // where the halves meet, its place in the forward queue
};

template <class Neighbours>
bool shortestPath(const Neighbours& neighbours, Index from, Index to, TwoSidedScratch& scratch,
                  Pulse& pulse) {
    return ShortestPath(neighbours, from, to, scratch, pulse).find();
}

}  // namespace rv
