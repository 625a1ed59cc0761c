// The constraints that callers pass to algorithms.
//
// The base carries an identifier and a name, for the caller's use; what a constraint demands is its
// subclass's matter. Constraints belong to the caller, and so do the nodes that they list: a listed node may
// leave its graph, which makes the constraint invalid, but must not be destroyed while the constraint is in
// use.
#pragma once

#include <string>

#include "rv/foundation/graph.h"
#include "rv/foundation/object.h"

class RV_EXPORT RVConstraint : public RVObject {
    RV_OBJECT(RVConstraint)

public:
    RVConstraint() = default;
    // The name is copied; none is no name.
    RVConstraint(long id, const wchar_t* name);

    long id() const { return m_id; }
    // Empty without a name.
    const wchar_t* pNameString() const { return m_name.c_str(); }

    // Whether the last algorithm that took the constraint found it fulfilled; 0 before.
    int fulfilled() const { return m_fulfilled; }
    int fulfilled(int flag) { return m_fulfilled = flag; }

private:
    long m_id = 0;
    std::wstring m_name;
    int m_fulfilled = 0;
};

enum RVClusteringConstraintTypeEnum {
    RVSameClusterConstraint = 0,       // all listed nodes are in one cluster
    RVDifferentClusterConstraint = 1,  // no two listed nodes are in the same cluster
    RVCompleteClusterConstraint = 2    // the listed nodes are a cluster, with no other node
};

// What a clustering is to keep together or apart. A constraint without nodes asks for nothing.
class RV_EXPORT RVClusteringConstraint : public RVConstraint {
    RV_OBJECT(RVClusteringConstraint)

public:
    RVClusteringConstraint() = default;
    RVClusteringConstraint(long id, const wchar_t* name) : RVConstraint(id, name) {}

    // Default RVSameClusterConstraint.
    RVClusteringConstraintTypeEnum type() const { return m_type; }
    RVClusteringConstraintTypeEnum type(RVClusteringConstraintTypeEnum type) { return m_type = type; }

    // Appends a node and gives it. None may be added, but no graph then satisfies `valid`.
    RVNode* addNode(RVNode* node);
    // In the order in which they were added.
    const RVNodeDList* pNodeList() const { return m_nodes.get(); }

    // Nonzero when every listed node is in the graph and, unless all are to be in the same cluster, none is
    // listed twice; so always without nodes. A subclass may ask for more, but not for less.
    virtual int valid(RVGraph* graph) const;

private:
    RVClusteringConstraintTypeEnum m_type = RVSameClusterConstraint;
    rv::Owned<RVNodeDList> m_nodes;
};
