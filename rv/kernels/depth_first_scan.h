// The walk that depth-first search, strong components and blocks have in common. Internal to the library, not
// installed.
//
// A node's last arc is followed first. 12 bytes for every number that a node may have.
#pragma once

#include <cstdint>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"
#include "rv/kernels/pulse.h"

namespace rv {

// Derived has
//   void reach(Index node)                    it has been given its number
//   void meet(Index node, Index target)       an arc leads to a node that had a number
//   void complete(Index node, Index parent)   all its arcs have been followed
// and may change the number of a node to another that is not 0.
template <class Derived>
class DepthFirstScan {
public:
    bool isReached(Index node) const { return m_numbers[node] != 0; }
    Index reached() const { return m_reached; }
    // REQUIRES: the node is not reached.
    void searchFrom(Index start) {
        reachFrom(kNoIndex, start);
        for (Index node = start; node != kNoIndex;) {
            const Index next = followArcs(node);
            if (next != kNoIndex) {
                reachFrom(node, next);
                node = next;
            } else {
                derived().complete(node, m_parents[node]);
                node = m_parents[node];
            }
        }
    }

protected:
    DepthFirstScan(const Arcs& arcs, Pulse& pulse)
        : m_numbers(arcs.nodeLimit(), 0),
          m_parents(arcs.nodeLimit(), kNoIndex),
          m_arcs(arcs),
          m_pulse(pulse),
          m_left(arcs.nodeLimit()) {}
    ~DepthFirstScan() = default;

    Buffer<int> m_numbers;  // by node, from 1
    Buffer<Index> m_parents;

private:
    Derived& derived() { return static_cast<Derived&>(*this); }
    void reachFrom(Index parent, Index node) {
        m_pulse.beat(1 + std::int64_t{m_arcs.degree(node)});
        m_numbers[node] = static_cast<int>(++m_reached);
        m_parents[node] = parent;
        m_left[node] = m_arcs.last[node];
        derived().reach(node);
    }
    // Gives the first target without a number, or kNoIndex.
    Index followArcs(Index node) {
        const Index first = m_arcs.first[node];
        for (Index arc = m_left[node]; arc != first;) {
            const Index target = m_arcs.targets[--arc];
            if (m_numbers[target] == 0) {
                m_left[node] = arc;
                return target;
            }
            derived().meet(node, target);
        }
        return kNoIndex;
    }

    const Arcs m_arcs;
    Pulse& m_pulse;
    Buffer<Index> m_left;  // by node, the end of its arcs that have not been followed
    Index m_reached = 0;
};

}  // namespace rv
