// The snapshot of a search's graph, as its input says which edges are followed both ways. Internal to the
// library, not installed.
#pragma once

#include <memory>
#include <span>

#include "rv/framework/graph_snapshot.h"
#include "rv/kernels/flat_graph.h"
#include "rv/traversal/traversal.h"

namespace rv {

class SearchView {
public:
    explicit SearchView(const RVTraversalInputData& input);
    SearchView(const SearchView&) = delete;
    SearchView& operator=(const SearchView&) = delete;

    const FlatGraph& flat() const { return *m_flat; }
    const SimpleGraph& graph() const { return *m_graph; }
    const SearchSpace& space() const { return m_graph->space; }
    // Whether the edge is followed both ways.
    bool isUndirected(Index edge) const {
        return m_isUndirected || (edge < m_directed.size() && m_directed[edge] == 0);
    }
    // Whether arcs back are edges of their own.
    bool isMixed() const { return m_graph == &m_mixed; }

private:
    std::shared_ptr<const FlatGraph> m_flat;
    bool m_isUndirected;
    Buffer<int> m_gathered;
    std::span<const int> m_directed;  // by edge, as far as any have been set
    SimpleGraph m_mixed;              // where single edges are followed both ways
    const SimpleGraph* m_graph;
};

}  // namespace rv
