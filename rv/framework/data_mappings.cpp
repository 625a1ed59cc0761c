// Mappings: from objects to their copies and back.

#include <algorithm>

#include "rv/framework/data_graphs.h"

namespace rv {

void DataGraphs::link(DataGraph& a, DataGraph& b) {
    if (&a == &b) return;
    const auto isLinked = [](const DataGraph& from, const DataGraph& to) {
        return std::any_of(from.m_links.begin(), from.m_links.end(),
                           [&to](const DataGraph::Link& link) { return link.graph == &to; });
    };
    if (a.m_links.size() < b.m_links.size() ? isLinked(a, b) : isLinked(b, a)) return;
    a.m_links.push_back({&b, b.m_links.size()});
    try {
        b.m_links.push_back({&a, a.m_links.size() - 1});
    } catch (...) {
        a.m_links.pop_back();
        throw;
    }
}

void DataGraphs::unlink(DataGraph& graph) {
    for (const DataGraph::Link& linked : graph.m_links) {
        std::vector<DataGraph::Link>& there = linked.graph->m_links;
        DataGraph::Link& place = there[linked.placeThere];
        place = there.back();
        place.graph->m_links[place.placeThere].placeThere = linked.placeThere;
        there.pop_back();
    }
}

void DataGraphs::map(RVGraphMember* member, RVGraphMember* value, std::size_t kind, Direction direction) {
    if (member == nullptr) return;
    const Direction back = opposite(direction);
    DataGraph& here = at(member->pHomeGraph());
    Mapping& mapping = (here.*direction)[kind];
    RVGraphMember* const before = mapping.get(member);
    if (value == before) return;
    const auto isMutual = [&](const DataGraph* graph, const RVGraphMember* other) {
        return graph != nullptr && (graph->*back)[kind].get(other) == member;
    };
    DataGraph* const thereBefore = before == nullptr ? nullptr : &graphOf(before, mapping);
    const bool wasMutual = isMutual(thereBefore, before);

    // Whatever may fail comes first.
    DataGraph* there = nullptr;
    if (value != nullptr) {
        there = mapping.target;
        if (there == nullptr || there->m_graph != value->pHomeGraph()) {
            there = &at(value->pHomeGraph());
            link(here, *there);
        }
    }
    const bool becomesMutual = isMutual(there, value);
    mapping.values.cover(indexLimit(here.m_graph, kind));
    if (wasMutual) here.m_strays[kind].cover(indexLimit(here.m_graph, kind));
    if (there != nullptr && !becomesMutual) there->m_strays[kind].cover(indexLimit(there->m_graph, kind));

    if (before != nullptr) wasMutual ? ++here.strays(member) : --thereBefore->strays(before);
    if (there != nullptr) {
        becomesMutual ? --here.strays(member) : ++there->strays(value);
        if (mapping.target == nullptr) mapping.target = there;
        if (mapping.target != there) m_mixedTargets = true;
    }
    mapping.at(member) = value;
}

void DataGraphs::copyGraph(const RVGraph* original, RVGraph* copy) {
    DataGraph& there = at(const_cast<RVGraph*>(original));
    DataGraph& here = at(copy);
    link(there, here);
    clearCopies(there);
    Mapping(&copies)[2] = there.m_copies;
    Mapping(&originals)[2] = here.m_originals;
    copies[kNodes].target = copies[kEdges].target = &here;
    originals[kNodes].target = originals[kEdges].target = &there;
    try {
        GraphAccess::copyGraph(original, copy, copies[kNodes].values.values(),
                               copies[kEdges].values.values());
        for (const std::size_t kind : {kNodes, kEdges}) originals[kind].values.cover(indexLimit(copy, kind));
    } catch (...) {
        for (Mapping& mapping : copies) mapping.values.clear();
        throw;
    }
    for (RVNode* node : *original->pNodeList()) originals[kNodes].at(copies[kNodes].get(node)) = node;
    for (RVEdge* edge : *original->pEdgeList()) originals[kEdges].at(copies[kEdges].get(edge)) = edge;
}

// Whether the value at a place of a graph's mapping is mapped back to the object of that place.
bool DataGraphs::isMutual(const DataGraph& graph, Direction direction, std::size_t kind, std::size_t place) {
    const Mapping& mapping = (graph.*direction)[kind];
    const RVGraphMember* const value = mapping.values.values()[place];
    const RVGraphMember* const source = (graphOf(value, mapping).*opposite(direction))[kind].get(value);
    return source != nullptr && source->pHomeGraph() == graph.m_graph && placeOf(source) == place;
}

// Before all objects of a graph get other copies.
void DataGraphs::clearCopies(DataGraph& graph) {
    for (const std::size_t kind : {kNodes, kEdges}) {
        Mapping& mapping = graph.m_copies[kind];
        std::vector<RVGraphMember*>& copies = mapping.values.values();
        if (!copies.empty()) graph.m_strays[kind].cover(indexLimit(graph.m_graph, kind));
        for (std::size_t place = 0; place < copies.size(); ++place) {
            if (copies[place] == nullptr) continue;
            isMutual(graph, kCopies, kind, place) ? ++graph.m_strays[kind].values()[place]
                                                  : --graphOf(copies[place], mapping).strays(copies[place]);
            copies[place] = nullptr;
        }
    }
}

void DataGraphs::forgetMember(RVGraphMember* member, DataGraph& home, int index) {
    const std::size_t kind = kindOf(member);
    for (const Direction direction : {kCopies, kOriginals}) {
        Mapping& mapping = (home.*direction)[kind];
        RVGraphMember* const value = mapping.values.get(index);
        if (value == nullptr) continue;
        DataGraph& there = graphOf(value, mapping);
        Mapping& back = (there.*opposite(direction))[kind];
        back.get(value) == member ? back.values.reset(value->denseIndex())
                                  : static_cast<void>(--there.strays(value));
        mapping.values.reset(index);
    }
    if (home.m_strays[kind].get(index) == 0) return;
    home.m_strays[kind].reset(index);
    const auto forgetIn = [&](DataGraph& graph) {
        for (const Direction direction : {kCopies, kOriginals}) {
            for (RVGraphMember*& value : (graph.*direction)[kind].values.values()) {
                if (value == member) value = nullptr;
            }
        }
    };
    forgetIn(home);
    for (const DataGraph::Link& linked : home.m_links) forgetIn(*linked.graph);
}

void DataGraphs::forgetGraph(DataGraph& dying) {
    for (const Direction direction : {kCopies, kOriginals}) {
        for (const std::size_t kind : {kNodes, kEdges}) {
            if (m_mixedTargets) forgetMutual(dying, direction, kind);
            const std::vector<std::uint32_t>& strays = dying.m_strays[kind].values();
            const bool hasStrays = std::any_of(strays.begin(), strays.end(), [](auto n) { return n != 0; });
            for (const DataGraph::Link& linked : dying.m_links) {
                Mapping& mapping = (linked.graph->*direction)[kind];
                if (!m_mixedTargets) {
                    if (mapping.target == &dying) mapping.values.clear();
                } else if (hasStrays) {
                    for (RVGraphMember*& value : mapping.values.values()) {
                        if (value != nullptr && value->pHomeGraph() == dying.m_graph) value = nullptr;
                    }
                }
                if (mapping.target == &dying) mapping.target = nullptr;
            }
        }
    }
    unlink(dying);
}

// What a dying graph's objects are mapped to is not mapped back any more.
void DataGraphs::forgetMutual(DataGraph& dying, Direction direction, std::size_t kind) {
    const Mapping& mapping = (dying.*direction)[kind];
    for (std::size_t place = 0; place < mapping.values.values().size(); ++place) {
        RVGraphMember* const value = mapping.values.values()[place];
        if (value == nullptr || value->pHomeGraph() == dying.m_graph) continue;
        if (!isMutual(dying, direction, kind, place)) continue;
        (graphOf(value, mapping).*opposite(direction))[kind].at(value) = nullptr;
    }
}

}  // namespace rv
