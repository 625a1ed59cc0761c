// A path of fewest edges between two nodes, as the path exists test gives it. Internal to the library, not
// installed.
#pragma once

#include <span>

#include "rv/framework/graph_snapshot.h"
#include "rv/kernels/two_sided.h"
#include "rv/traversal/traversal.h"

namespace rv {

class PathSearch {
public:
    // Follows edges as the input says.
    PathSearch(const RVTraversalInputData& input, const RVNode* from, const RVNode* to, Pulse& pulse);

    bool isFound() const { return m_isFound; }
    // The edges of the path.
    std::span<const Index> edges() const { return m_scratch->path; }
    // Without a path: the nodes that can be reached, in breadth-first order.
    std::span<const Index> reachedNodes() const { return m_scratch->forward.queue; }

private:
    ScratchLoan<TwoSidedScratch> m_scratch;
    bool m_isFound = false;
};

}  // namespace rv
