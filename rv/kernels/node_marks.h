// Marks of nodes that outlive a search, so that the next one costs what it touches. Internal to the library,
// not installed.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

#include "rv/foundation/buffer.h"
#include "rv/kernels/arcs.h"

namespace rv {

// By node a level, or nothing. Invariant: what was written before the last begin() is below m_base; what was
// written since is m_base plus the level, and below m_end.
class NodeMarks {
public:
    // Takes all marks off, in O(1) but for once in a long time and for numbers of nodes that are new. Levels
    // will be below a limit.
    void begin(Index nodeLimit, Index levelLimit) {
        if (nodeLimit > m_marks.size()) m_marks.resize(nodeLimit, 0);
        m_base = m_end;
        if (m_base <= std::numeric_limits<std::uint32_t>::max() - levelLimit) return;
        std::fill(m_marks.begin(), m_marks.end(), 0);
        m_base = m_end = 1;
    }

    bool isMarked(Index node) const { return m_marks[node] >= m_base; }
    bool isMarked(Index node, Index level) const { return m_marks[node] == m_base + level; }
    void mark(Index node, Index level = 0) {
        m_marks[node] = m_base + level;
        m_end = std::max(m_end, m_base + level + 1);
    }
    void unmark(Index node) { m_marks[node] = 0; }

private:
    Buffer<std::uint32_t> m_marks;
    std::uint32_t m_base = 1;
    std::uint32_t m_end = 1;
};

}  // namespace rv
