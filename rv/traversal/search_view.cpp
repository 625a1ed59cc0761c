#include "rv/traversal/search_view.h"

#include <algorithm>

namespace rv {

SearchView::SearchView(const RVTraversalInputData& input)
    : m_flat(snapshotOf(input.pAssociatedGraph())), m_isUndirected(input.undirected() != 0) {
    if (m_isUndirected) {
        m_graph = &m_flat->undirected();
        return;
    }
    m_directed = input.edgesDirected().values(input.pAssociatedGraph(), m_gathered);
    if (std::find(m_directed.begin(), m_directed.end(), 0) == m_directed.end()) {
        m_graph = &m_flat->directed();
        return;
    }
    m_mixed = m_flat->mixedWhere([this](Index edge) { return isUndirected(edge); });
    m_graph = &m_mixed;
}

}  // namespace rv
