// Walks the path graph of sorted paths best first, and so goes through the paths from start to finish in the
// order of their cost.
//
// Paths of equal cost come in the order in which the walk finds them, which is always the same. A path whose
// cost reaches 2147483647 ends the walk. The algorithm and its input may be gone; the output, its path graph
// and the caller's graph must stay as they are. Without a path, or once the path graph is gone or the output
// has another one, there is nothing to go through.
//
// The k-th call of next takes O(log k), and all memory is O(k), whatever the length of the paths; the length
// of a path counts when it is asked for. Paths that repeat no node are had by a filter: every path is looked
// at, in time that grows with its length, and those that repeat a node are passed over; of a path whose
// beginning repeats a node no continuation is looked at, so that the walk ends. Between two paths without
// repetition there may be exponentially many with, and k counts them all; the marks of nodes take O(n)
// memory.
//
//   RVSortedPathsEnumerator path(&output);
//   while (path.next()) use(path.totalCost());
#pragma once

#include <cstdint>
#include <vector>

#include "rv/shortestpaths/sorted_paths.h"

class RV_EXPORT RVSortedPathsEnumerator : public RVObject {
    RV_OBJECT(RVSortedPathsEnumerator)

public:
    // Not owned.
    explicit RVSortedPathsEnumerator(const RVSortedPathsOutputData* output = nullptr);

    // Nonzero: only paths that repeat no node. Default 0. To be set before the first call of next.
    int simplePathsOnly() const { return m_simplePathsOnly; }
    int simplePathsOnly(int flag) { return m_simplePathsOnly = flag; }

    // Goes to the next path, the first time to the cheapest; false when there is none.
    bool next();

    // Of the present path; 0 and empty when there is none. Cost with and without that of the finish node, for
    // which a path without edges does not pay.
    int totalCost() const;
    int totalCostWithoutFinishNode() const;
    // Empties the list, then fills it with the path's edges, from start to finish.
    void buildEdgeList(RVEdgeDList& list) const;
    // How many paths have been given, the present one included.
    int pathNumber() const { return m_pathNumber; }

private:
    // A path of the path graph: an earlier one and the node to which it goes on.
    struct Walk {
        int before;  // place in m_walks, -1 for the root alone
        RVNode* node;
        bool byCrossEdge;
    };
    struct Candidate {
        std::int64_t cost;
        std::uint64_t number;  // in the order of finding
        int before;
        RVEdge* edge;
        // A heap has its greatest on top.
        bool operator<(const Candidate& other) const {
            return cost != other.cost ? cost > other.cost : number > other.number;
        }
    };

    bool advance();
    void addCandidates();
    bool repeatsNode();
    std::vector<RVEdge*> detours() const;
    template <class F>
    bool forEachEdge(F f) const;

    const RVSortedPathsOutputData* m_pOutput;
    int m_simplePathsOnly = 0;
    std::vector<Walk> m_walks;  // in the order of their cost; the last one is the present one
    std::vector<Candidate> m_candidates;
    std::uint64_t m_found = 0;
    std::int64_t m_cost = 0;
    std::uint64_t m_generation = 0;  // of the path graph
    int m_pathNumber = 0;
    bool m_hasPath = false;
    bool m_beginningRepeats = false;     // of the present path, up to the end of its last detour
    std::vector<std::uint32_t> m_marks;  // by caller's node: the last walk that came there
};
