// From numbers in arrays back to the lists of results. Internal to the library, not installed.
#pragma once

#include <span>

#include "rv/foundation/graph_access.h"
#include "rv/kernels/node_groups.h"

namespace rv {

// The objects of a graph by their numbers. To be used until the graph changes.
class Members {
public:
    // REQUIRES: the graph has a snapshot.
    explicit Members(const RVGraph* graph)
        : m_nodes(GraphAccess::nodes(graph)), m_edges(GraphAccess::edges(graph)) {}

    RVNode* node(Index number) const { return number == kNoIndex ? nullptr : m_nodes[number]; }
    RVEdge* edge(Index number) const { return number == kNoIndex ? nullptr : m_edges[number]; }

    void append(std::span<const Index> nodes, RVNodeDList& list) const {
        for (const Index number : nodes) list.appendNode(m_nodes[number]);
    }
    void append(std::span<const Index> edges, RVEdgeDList& list) const {
        for (const Index number : edges) list.appendEdge(m_edges[number]);
    }

    // A list of the output for each group.
    template <class Output>
    void append(const NodeGroups& groups, Output& output) const {
        for (Index group = 0; group < groups.size(); ++group) append(groups[group], *output.addComponent());
    }

private:
    std::span<RVNode* const> m_nodes;
    std::span<RVEdge* const> m_edges;
};

}  // namespace rv
