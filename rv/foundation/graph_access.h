// What the framework and the algorithms of the library may do with a graph beyond its public operations.
// Internal to the library, not installed.
#pragma once

#include <cstdint>
#include <vector>

#include "rv/foundation/graph.h"

namespace rv {

// The orders of a graph at one time: of its nodes, its edges and each node's out- and in-edges. Objects are
// noted by index and hash, so that those that are destroyed meanwhile are told from later ones.
struct GraphOrders {
    struct Member {
        int index;
        std::uint32_t hash;
    };
    std::vector<Member> nodes;
    std::vector<Member> edges;
    std::vector<int> outEdges;  // by dense index, node after node
    std::vector<int> inEdges;
    bool listsInGraphOrder = true;
};

class GraphAccess {
public:
    // Stamps of observers grow in the order in which they came to the graph.
    static std::uint32_t addObserver(RVGraph* graph, GraphObserver* observer);
    static void removeObserver(RVGraph* graph, GraphObserver* observer);

    static bool isMappingTarget(const RVGraphMember* member) { return member->m_mappingTarget; }
    static void setMappingTarget(RVGraphMember* member) { member->m_mappingTarget = true; }

    // Fills an empty graph with a copy of what is attached in another: names and all orders, those of the
    // nodes' in- and out-lists included. nodeCopies and edgeCopies give the copies by the dense index of
    // the originals, none where there is no copy.
    static void copyGraph(const RVGraph* source, RVGraph* target, std::vector<RVGraphMember*>& nodeCopies,
                          std::vector<RVGraphMember*>& edgeCopies);

    static GraphOrders noteOrders(const RVGraph* graph);
    // Puts what is attached back into the noted orders; objects that were not noted go behind all others.
    static void restoreOrders(RVGraph* graph, const GraphOrders& orders);
};

}  // namespace rv
