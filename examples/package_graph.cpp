#include "package_graph.h"

PackageGraph::PackageGraph(const PackageSource& source, DependencyKind kind) : m_graph(m_factory.newGraph()) {
    std::vector<RVNode*> nodes;  // of the packages; none for one whose name was there before
    nodes.reserve(source.packages().size());
    m_nodes.reserve(source.packages().size());
    for (const Package& package : source.packages()) {
        const auto [entry, isNew] = m_nodes.try_emplace(package.name, nullptr);
        nodes.push_back(isNew ? m_graph->addNode() : nullptr);
        if (!isNew) continue;
        entry->second = nodes.back();
        m_names.resize(static_cast<std::size_t>(m_graph->nodeIndexLimit()));
        m_names[rv::placeOf(nodes.back())] = package.name;
        for (const Alternatives& provided : package.provides) {
            m_providers.try_emplace(provided.front(), nodes.back());
        }
    }
    m_lastUser.resize(m_names.size());
    m_unmet.resize(m_names.size());
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        if (nodes[i] == nullptr) continue;
        addDependencies(nodes[i], source.packages()[i].preDepends);
        if (kind == DependencyKind::All) addDependencies(nodes[i], source.packages()[i].depends);
    }
}

RVNode* PackageGraph::pNode(std::string_view name) const {
    if (const auto found = m_nodes.find(name); found != m_nodes.end()) return found->second;
    const auto provider = m_providers.find(name);
    return provider == m_providers.end() ? nullptr : provider->second;
}

void PackageGraph::addDependencies(RVNode* node, const std::vector<Alternatives>& dependencies) {
    for (const Alternatives& alternatives : dependencies) {
        RVNode* needed = nullptr;
        for (auto name = alternatives.begin(); needed == nullptr && name != alternatives.end(); ++name) {
            needed = pNode(*name);
        }
        if (needed == nullptr) {
            ++m_unmet[rv::placeOf(node)];
            continue;
        }
        const RVNode*& lastUser = m_lastUser[rv::placeOf(needed)];
        if (needed != node && lastUser != node) m_graph->addEdge(needed, node);
        lastUser = node;
    }
}

int PackageGraph::numberOfUnmet() const {
    int sum = 0;
    for (const RVNode* node : *m_graph->pNodeList()) sum += m_unmet[rv::placeOf(node)];
    return sum;
}

void PackageGraph::keepClosure(RVNode* package) {
    std::vector<bool> isKept(static_cast<std::size_t>(m_graph->nodeIndexLimit()));
    RVNodeDList kept;
    const auto keep = [&](RVNode* node) {
        const auto index = rv::placeOf(node);
        if (!isKept[index]) kept.appendNode(node);
        isKept[index] = true;
    };
    keep(package);
    for (const RVNode* node : kept) {
        for (const RVEdge* edge : *node->pInEdgeList()) keep(edge->pSourceNode());
    }
    const auto isGone = [&](const auto& entry) { return !isKept[rv::placeOf(entry.second)]; };
    std::erase_if(m_nodes, isGone);
    std::erase_if(m_providers, isGone);
    for (RVNodeIter iter(m_graph.get()); iter;) {
        RVNode* node = iter.pNode();
        iter++;
        if (!isKept[rv::placeOf(node)]) m_graph->discardNode(node);
    }
}
