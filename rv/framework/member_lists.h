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

    // By place the objects of some numbers.
    auto nodesAt(std::span<const Index> numbers) const {
        return [this, numbers](std::size_t place) { return m_nodes[numbers[place]]; };
    }
    auto edgesAt(std::span<const Index> numbers) const {
        return [this, numbers](std::size_t place) { return m_edges[numbers[place]]; };
    }

    void append(std::span<const Index> nodes, RVNodeDList& list) const {
        ListAccess::append(list, nodes.size(), nodesAt(nodes));
    }
    void append(std::span<const Index> edges, RVEdgeDList& list) const {
        ListAccess::append(list, edges.size(), edgesAt(edges));
    }

    // A list of the output for each group.
    template <class Output>
    void append(const NodeGroups& groups, Output& output) const {
        for (Index group = 0; group < groups.size(); ++group)
            output.addComponent(groups[group].size(), nodesAt(groups[group]));
    }

private:
    std::span<RVNode* const> m_nodes;
    std::span<RVEdge* const> m_edges;
};

}  // namespace rv
