// Sets of numbers that are joined one by one. Internal to the library, not installed.
#pragma once

#include <numeric>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

// At first each number below a limit is a set of its own. Invariant: the parent of a number is a smaller one
// of its set, or itself for the smallest one, which stands for the set.
//
// Galler and Fischer 1964, with paths halved: O(log n) for a join on average, and seldom more than a few
// steps. 4 bytes a number.
class DisjointSets {
public:
    explicit DisjointSets(Index limit) : m_parents(limit) {
        std::iota(m_parents.begin(), m_parents.end(), Index{0});
    }

    // Whether the two were in different sets.
    bool join(Index a, Index b) {
        if (m_parents[a] == m_parents[b]) return false;
        a = find(a);
        b = find(b);
        if (a == b) return false;
        a < b ? m_parents[b] = a : m_parents[a] = b;
        return true;
    }

    // By number what stands for its set.
    Buffer<Index> sets() && {
        for (Index& parent : m_parents) parent = m_parents[parent];
        return std::move(m_parents);
    }

private:
    Index find(Index number) {
        while (m_parents[number] != number) {
            m_parents[number] = m_parents[m_parents[number]];
            number = m_parents[number];
        }
        return number;
    }

    Buffer<Index> m_parents;
};

}  // namespace rv
