#include "rv/framework/data_graphs.h"

#include <algorithm>
#include <iterator>

namespace rv {

namespace {
// For one more value.
template <class T>
void makeRoomIn(std::vector<T>& values) {
    if (values.size() == values.capacity()) values.reserve(std::max<std::size_t>(8, 2 * values.size()));
}
}  // namespace

DataGraph* DataGraphs::findAmongAll(const RVGraph* graph) const {
    if (!m_places.empty()) {
        const auto found = m_places.find(graph);
        return found == m_places.end() ? nullptr : m_last = &*found->second;
    }
    const auto found = std::find_if(m_graphs.begin(), m_graphs.end(),
                                    [graph](const DataGraph& entry) { return entry.m_graph == graph; });
    return found == m_graphs.end() ? nullptr : m_last = const_cast<DataGraph*>(&*found);
}

DataGraph& DataGraphs::add(RVGraph* graph) {
    if (m_graphs.size() == kFew && m_places.empty()) {
        std::unordered_map<const RVGraph*, Graphs::iterator> places;
        for (auto it = m_graphs.begin(); it != m_graphs.end(); ++it) places.emplace(it->m_graph, it);
        m_places.swap(places);
    }
    const bool isPlaced = !m_places.empty() && m_places.emplace(graph, m_graphs.end()).second;
    try {
        m_graphs.emplace_back(*this, m_data, graph);
    } catch (...) {
        if (isPlaced) m_places.erase(graph);
        throw;
    }
    if (isPlaced) m_places[graph] = std::prev(m_graphs.end());
    return *(m_last = &m_graphs.back());
}

void DataGraphs::remove(DataGraph& graph) {
    if (m_last == &graph) m_last = nullptr;
    if (m_places.empty()) {
        m_graphs.remove_if([&graph](const DataGraph& entry) { return &entry == &graph; });
    } else {
        const auto place = m_places.extract(graph.m_graph);
        m_graphs.erase(place.mapped());
    }
}

void DataGraphs::copyFrom(DataGraphs& other) {
    m_mixedTargets = other.m_mixedTargets;
    for (const DataGraph& source : other.m_graphs) at(source.m_graph);
    for (const DataGraph& source : other.m_graphs) {
        DataGraph& graph = at(source.m_graph);
        for (const DataGraph::Link& linked : source.m_links) link(graph, at(linked.graph->m_graph));
    }
    for (DataGraph& source : other.m_graphs) {
        DataGraph& graph = at(source.m_graph);
        for (const std::size_t kind : {kNodes, kEdges}) {
            graph.m_strays[kind] = source.m_strays[kind];
            for (const Direction direction : {kCopies, kOriginals}) {
                const Mapping& from = (source.*direction)[kind];
                Mapping& to = (graph.*direction)[kind];
                to.values = from.values;
                to.target = from.target == nullptr ? nullptr : &at(from.target->m_graph);
            }
        }
    }
    for (DataGraph& source : other.m_graphs) {
        source.forEachRecord([&](RVAlgorithmExtension* record) { m_data->copyExtension(*record); });
    }
}

// What graphs tell of their objects

void DataGraph::graphDies(RVGraph* graph) {
    release();
    m_data->forEachColumn([graph](ColumnBase& column) { column.drop(graph); });
    RVAlgorithmData* const data = m_data;
    if (data->m_pAssociatedGraph == graph) data->m_pAssociatedGraph = nullptr;
    if (data->m_pInputGraph == graph) data->m_pInputGraph = nullptr;
    if (data->m_secondaryGraphs->length() > 0) delete data->m_secondaryGraphs->searchAndRemoveObject(graph);
    m_owner.forgetGraph(*this);
    m_owner.remove(*this);  // ends this object
}

void DataGraph::memberDies(RVGraphMember* member) {
    if (Record* const record = recordOf(member)) discard(record);
    m_data->forEachColumn([member](ColumnBase& column) {
        if (column.isOf(member)) column.erase(member->pHomeGraph(), placeOf(member));
    });
    m_owner.forgetMember(member, *this, member->denseIndex());
}

// Whatever may fail comes first. If it does, nothing is known of the member any more.
void DataGraph::memberMoved(RVGraphMember* member, RVGraph* from, int indexThere) {
    try {
        makeRoomForMoved(member, indexThere);
    } catch (...) {
        forgetMoved(member, indexThere);
        throw;
    }
    DataGraph& here = m_owner.at(member->pHomeGraph());
    m_data->forEachColumn([&](ColumnBase& column) {
        if (column.isOf(member)) column.move(member, from, static_cast<std::size_t>(indexThere));
    });
    if (Record* const record = recordOf(member)) {
        unlink(record);
        if (record->m_place == Record::kSlab) {
            m_recordsMovedAway = true;
            record->m_place = Record::kSettled;
        } else if ((record->m_place & Record::kSettled) != 0) {
            takeFrom(m_settledRecords, record->m_place, Record::kSettled);
            record->m_place = Record::kSettled;
        } else {
            takeFrom(m_heapRecords, record->m_place, 0);
            record->m_place = Record::kLoose;
        }
        here.enlist(record);
    }
    const std::size_t kind = kindOf(member);
    const int limit = indexLimit(member->pHomeGraph(), kind);
    const auto move = [&](auto& there, auto& at) {
        const auto value = there.get(indexThere);
        if (value == decltype(value){}) return;
        there.reset(indexThere);
        at.set(member->denseIndex(), value, limit);
    };
    move(m_copies[kind].values, here.m_copies[kind].values);
    move(m_originals[kind].values, here.m_originals[kind].values);
    move(m_strays[kind], here.m_strays[kind]);
    // What led to the member may come from anywhere where the graph that it left was known.
    m_owner.m_mixedTargets = true;
}

void DataGraph::makeRoomForMoved(const RVGraphMember* member, int indexThere) {
    RVGraph* const graph = member->pHomeGraph();
    DataGraph& here = m_owner.at(graph);
    m_data->forEachColumn([&](ColumnBase& column) {
        if (column.isOf(member)) column.makeRoom(graph, m_graph, static_cast<std::size_t>(indexThere));
    });
    makeRoomIn(here.m_heapRecords);
    makeRoomIn(here.m_settledRecords);
    const std::size_t kind = kindOf(member);
    const int limit = indexLimit(graph, kind);
    const auto cover = [&](const auto& there, auto& at) {
        if (there.get(indexThere) != 0) at.cover(limit);
    };
    cover(m_copies[kind].values, here.m_copies[kind].values);
    cover(m_originals[kind].values, here.m_originals[kind].values);
    cover(m_strays[kind], here.m_strays[kind]);
    DataGraphs::link(here, *this);
    for (std::size_t i = 0; i < m_links.size(); ++i) DataGraphs::link(here, *m_links[i].graph);
}

void DataGraph::forgetMoved(RVGraphMember* member, int indexThere) {
    m_data->forEachColumn([&](ColumnBase& column) {
        if (column.isOf(member)) column.erase(m_graph, static_cast<std::size_t>(indexThere));
    });
    if (Record* const record = recordOf(member)) discard(record);
    m_owner.forgetMember(member, *this, indexThere);
}

}  // namespace rv
