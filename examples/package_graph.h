// Packages as a graph: a node for each package and an edge from a package to each one that needs it, so that
// a topological order is an order of installation.
//
// A dependency is an edge from the first of its alternatives that exists. A virtual package stands for the
// first package that provides it. There are no parallel edges and no self-loops: a package that provides
// what it needs needs nothing. Of packages of the same name only the first counts.
#pragma once

#include <memory>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "package_source.h"
#include "rv/analysis.h"

enum class DependencyKind { All, PreDepends };

class PackageGraph {
public:
    // The names are part of the source, which must outlive the graph. Nodes and edges stand in its order.
    PackageGraph(const PackageSource& source, DependencyKind kind);

    RVGraph* pGraph() const { return m_graph.get(); }

    // The package of a name, virtual or not; none when there is no such package.
    RVNode* pNode(std::string_view name) const;
    std::string_view name(const RVNode* node) const { return m_names[rv::placeOf(node)]; }

    // Dependencies of the graph's packages without an alternative that exists; they have no edge.
    int numberOfUnmet() const;

    // Discards all but one package and what it needs, directly or not.
    void keepClosure(RVNode* package);

private:
    void addDependencies(RVNode* node, const std::vector<Alternatives>& dependencies);

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    std::unordered_map<std::string_view, RVNode*> m_nodes;
    std::unordered_map<std::string_view, RVNode*> m_providers;  // of virtual packages
    std::vector<std::string_view> m_names;                      // by dense index
    std::vector<const RVNode*> m_lastUser;                      // by dense index, while edges are added
    std::vector<int> m_unmet;                                   // by dense index
};
