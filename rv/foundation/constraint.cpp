#include "rv/foundation/constraint.h"

#include "rv/foundation/hash_map.h"

RV_OBJECT_IMPL(RVConstraint)
RV_OBJECT_IMPL(RVClusteringConstraint)

RVConstraint::RVConstraint(long id, const wchar_t* name) : m_id(id), m_name(name == nullptr ? L"" : name) {}

RVNode* RVClusteringConstraint::addNode(RVNode* node) {
    m_nodes->appendNode(node);
    return node;
}

int RVClusteringConstraint::valid(RVGraph* graph) const {
    RVHashSet seen;
    for (RVNode* node : *m_nodes) {
        if (node == nullptr || graph == nullptr || node->pOwnerGraph() != graph) return 0;
        if (m_type != RVSameClusterConstraint && !seen.add(node)) return 0;
    }
    return 1;
}
