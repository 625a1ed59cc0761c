#include "rv/framework/algorithm_data.h"

#include <algorithm>
#include <cstring>
#include <list>
#include <optional>
#include <unordered_map>
#include <utility>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/slab.h"
#include "rv/framework/columns.h"

template <class F>
void RVAlgorithmData::forEachColumn(F f) const {
    for (rv::ColumnBase* column = m_pLastColumn; column != nullptr; column = column->m_previous) f(*column);
}

namespace rv {

namespace {
std::size_t kindOf(const RVGraphMember* member) { return member->isNode() ? 0 : 1; }
constexpr std::size_t kNodes = 0;
constexpr std::size_t kEdges = 1;
// Above all dense indices of a graph's nodes or edges.
int indexLimit(const RVGraph* graph, std::size_t kind) {
    return kind == kNodes ? graph->nodeIndexLimit() : graph->edgeIndexLimit();
}
}  // namespace

// Maps the nodes, or the edges, of one graph to objects of another.
struct Mapping {
    RVGraphMember* get(const RVGraphMember* member) const { return values.get(member->denseIndex()); }
    RVGraphMember*& at(const RVGraphMember* member) { return values.values()[placeOf(member)]; }

    Column<RVGraphMember*> values;
    DataGraph* target = nullptr;  // of the first value; of all of them unless the data says otherwise
};

// What one data object keeps about one graph: its records on the graph's objects, and where these objects
// are mapped to.
class DataGraph final : public GraphObserver {
public:
    DataGraph(DataGraphs& owner, RVAlgorithmData* data, RVGraph* graph)
        : m_owner(owner), m_data(data), m_graph(graph), m_stamp(GraphAccess::addObserver(graph, this)) {}

    void graphDies(RVGraph* graph) override;
    void memberDies(RVGraphMember* member) override;
    void memberMoved(RVGraphMember* member, RVGraph* from, int indexThere) override;

    // The record's owner is an object of this graph.
    void enlist(RVAlgorithmExtension* record);
    void discard(RVAlgorithmExtension* record);
    void* memory(std::size_t kind, std::size_t size, bool plain);
    // Takes all records from their objects and destroys them.
    void dropRecords();
    void noteOwnedMemory() { m_plain = false; }

private:
    friend class DataGraphs;
    using Record = RVAlgorithmExtension;
    // Some mapping may lead to the other graph, or back. Both graphs know the place of the other one's link.
    struct Link {
        DataGraph* graph;
        std::size_t placeThere;
    };

    RVAlgorithmExtension** listHead(RVGraphObject* owner) const;
    void link(Record* record) const;
    void unlink(Record* record) const;
    static void endInPlace(Record* record);
    void destroy(Record* record);
    void release();
    void takeFrom(std::vector<Record*>& records, std::uint32_t place, std::uint32_t flag);
    template <class F>
    void forEachRecord(F f);

    std::uint32_t& strays(const RVGraphMember* member) {
        return m_strays[kindOf(member)].values()[placeOf(member)];
    }

    DataGraphs& m_owner;
    RVAlgorithmData* m_data;
    RVGraph* m_graph;
    std::uint32_t m_stamp;
    std::optional<Slab> m_slabs[2];         // records of nodes and of edges
    std::vector<Record*> m_heapRecords;     // made by callers' factories
    std::vector<Record*> m_settledRecords;  // came with their objects, from the slabs of other graphs
    bool m_plain = true;                    // the destructors of the records in the slabs have nothing to do
    bool m_hasRecords = false;              // there may be some
    bool m_recordsMovedAway = false;        // a record in the slabs may be one of another graph's objects
    Mapping m_copies[2];                    // of nodes and of edges
    Mapping m_originals[2];
    std::vector<Link> m_links;
    // By object: how many values lead to it, at the most, that it is not itself mapped back to.
    Column<std::uint32_t> m_strays[2];
};

// All that a data object keeps about graphs.
class DataGraphs {
public:
    explicit DataGraphs(RVAlgorithmData* data) : m_data(data) {}
    DataGraphs(const DataGraphs&) = delete;
    DataGraphs& operator=(const DataGraphs&) = delete;
    ~DataGraphs() {
        for (DataGraph& entry : m_graphs) {
            entry.dropRecords();
            GraphAccess::removeObserver(entry.m_graph, &entry);
        }
    }

    DataGraph* find(const RVGraph* graph) const {
        if (m_last != nullptr && m_last->m_graph == graph) return m_last;
        return findAmongAll(graph);
    }
    DataGraph& at(RVGraph* graph) {
        DataGraph* const found = find(graph);
        return found != nullptr ? *found : add(graph);
    }

    using Direction = Mapping (DataGraph::*)[2];
    static constexpr Direction kCopies = &DataGraph::m_copies;
    static constexpr Direction kOriginals = &DataGraph::m_originals;

    RVGraphMember* mapped(RVGraphMember* member, std::size_t kind, Direction direction) const {
        if (member == nullptr) return nullptr;
        const DataGraph* graph = find(member->pHomeGraph());
        RVGraphMember* value = graph == nullptr ? nullptr : (graph->*direction)[kind].get(member);
        return value == nullptr ? member : value;
    }
    void map(RVGraphMember* member, RVGraphMember* value, std::size_t kind, Direction direction);
    void copyGraph(const RVGraph* original, RVGraph* copy);
    void copyFrom(DataGraphs& other);

    // A value that is going away, or whose graph is, leaves every mapping.
    void forgetMember(RVGraphMember* member, DataGraph& home);
    void forgetGraph(DataGraph& dying);

    void remove(DataGraph& graph);
    bool hasRecords() const { return m_graphsWithRecords != 0; }

private:
    friend class DataGraph;
    using Graphs = std::list<DataGraph>;
    static constexpr std::size_t kFew = 8;

    DataGraph* findAmongAll(const RVGraph* graph) const;
    DataGraph& add(RVGraph* graph);
    static void link(DataGraph& a, DataGraph& b);
    static void unlink(DataGraph& graph);
    // The graph of a value of the mapping.
    DataGraph& graphOf(const RVGraphMember* value, const Mapping& mapping) {
        RVGraph* const home = value->pHomeGraph();
        return mapping.target != nullptr && mapping.target->m_graph == home ? *mapping.target : at(home);
    }
    static Direction opposite(Direction direction) { return direction == kCopies ? kOriginals : kCopies; }
    bool isMutual(const DataGraph& graph, Direction direction, std::size_t kind, std::size_t place);
    void clearCopies(DataGraph& graph);
    void forgetMutual(DataGraph& dying, Direction direction, std::size_t kind);

    RVAlgorithmData* m_data;
    Graphs m_graphs;                                                // in the order in which they came
    std::unordered_map<const RVGraph*, Graphs::iterator> m_places;  // empty while there have been few
    mutable DataGraph* m_last = nullptr;
    std::size_t m_graphsWithRecords = 0;  // that may have some
    bool m_mixedTargets = false;          // some mapping may lead to several graphs
    std::optional<Slab> m_kept[2];        // records whose objects have left a graph that died
};

// Columns

ColumnBase::ColumnBase(RVAlgorithmData* data, bool isOfNodes, bool hasRecords)
    : m_data(data), m_previous(data->m_pLastColumn), m_isOfNodes(isOfNodes), m_hasRecords(hasRecords) {
    data->m_pLastColumn = this;
}

// Members end in the reverse of the order in which they were made.
ColumnBase::~ColumnBase() { m_data->m_pLastColumn = m_previous; }

bool ColumnBase::usable() const { return !m_hasRecords || !m_data->mayHaveRecords(); }

std::optional<RVAlgorithmExtension*> ColumnBase::recordOf(RVGraphObject* object) const {
    if (usable()) return std::nullopt;
    if (!m_data->hasStandardRecords()) return m_data->pAlgorithmExtension(object);
    RVAlgorithmExtension* const record = m_data->pExistingExtension(object);
    return record == nullptr ? std::nullopt : std::optional(record);
}

void ColumnBase::observe(RVGraph* graph) const { m_data->m_graphs->at(graph); }

// Records

RVAlgorithmExtension** DataGraph::listHead(RVGraphObject* owner) const {
    return &m_data->pAlgorithmExtensionList(owner)->m_pFirst;
}

void DataGraph::link(Record* record) const {
    Record** place = listHead(record->m_pOwner);
    while (*place != nullptr && (*place)->m_stamp > record->m_stamp) place = &(*place)->m_pNext;
    record->m_pNext = *place;
    *place = record;
}

void DataGraph::unlink(Record* record) const {
    Record** place = listHead(record->m_pOwner);
    while (*place != nullptr && *place != record) place = &(*place)->m_pNext;
    if (*place == record) *place = record->m_pNext;
    record->m_pNext = nullptr;
}

void DataGraph::enlist(Record* record) {
    if (record->m_place == Record::kLoose) {
        m_heapRecords.push_back(record);
        record->m_place = static_cast<std::uint32_t>(m_heapRecords.size() - 1);
    } else if (record->m_place == Record::kSettled) {
        m_settledRecords.push_back(record);
        record->m_place = static_cast<std::uint32_t>(m_settledRecords.size() - 1) | Record::kSettled;
    }
    record->m_stamp = m_stamp;
    link(record);
    if (m_hasRecords) return;
    m_hasRecords = true;
    ++m_owner.m_graphsWithRecords;
    m_data->forEachColumn([](ColumnBase& column) {
        if (column.m_hasRecords) column.m_quickGraph = nullptr;
    });
}

void* DataGraph::memory(std::size_t kind, std::size_t size, bool plain) {
    std::optional<Slab>& slab = m_slabs[kind];
    if (!slab) slab.emplace((size + 7) / 8 * 8);
    if (slab->slotSize() != (size + 7) / 8 * 8) return nullptr;
    if (!plain) m_plain = false;
    return slab->allocate();
}

void DataGraph::discard(Record* record) {
    unlink(record);
    destroy(record);
}

// Ends a record whose slot is not used again; it reads as free from now on.
void DataGraph::endInPlace(Record* record) {
    record->~Record();
    const void* const none = nullptr;
    std::memcpy(static_cast<void*>(record), &none, sizeof none);
}

// Ends a record that stands in no list any more.
void DataGraph::destroy(Record* record) {
    const std::uint32_t place = record->m_place;
    if (place == Record::kSlab) {
        const std::size_t kind = record->m_pOwner->isNode() ? kNodes : kEdges;
        record->~Record();
        m_slabs[kind]->recycle(record);
    } else if ((place & Record::kSettled) != 0) {
        takeFrom(m_settledRecords, place, Record::kSettled);
        endInPlace(record);
    } else {
        takeFrom(m_heapRecords, place, 0);
        record->m_place = Record::kLoose;
        delete record;
    }
}

// The last one goes to the place that becomes free.
void DataGraph::takeFrom(std::vector<Record*>& records, std::uint32_t place, std::uint32_t flag) {
    records[place & ~flag] = records.back();
    records[place & ~flag]->m_place = place;
    records.pop_back();
}

template <class F>
void DataGraph::forEachRecord(F f) {
    for (std::optional<Slab>& slab : m_slabs) {
        if (!slab) continue;
        slab->forEachInUse([&](void* slot) {
            auto* record = static_cast<Record*>(slot);
            if (record->m_place == Record::kSlab) f(record);
        });
    }
    for (Record* record : m_heapRecords) f(record);
    for (Record* record : m_settledRecords) f(record);
}

void DataGraph::dropRecords() {
    forEachRecord([this](Record* record) { unlink(record); });
    release();
}

// Ends all records at once; those in the slabs without a visit, if there is nothing to do for them.
void DataGraph::release() {
    for (std::size_t kind : {kNodes, kEdges}) {
        std::optional<Slab>& slab = m_slabs[kind];
        if (!slab) continue;
        if (!m_plain || m_recordsMovedAway) {
            slab->forEachInUse([](void* slot) {
                auto* record = static_cast<Record*>(slot);
                if (record->m_place == Record::kSlab) endInPlace(record);
            });
        }
        if (m_recordsMovedAway) {
            // Records of objects that are now in other graphs live on in this memory.
            std::optional<Slab>& kept = m_owner.m_kept[kind];
            if (!kept) kept.emplace(slab->slotSize());
            kept->adopt(*slab);
        }
        slab->releaseAll();
    }
    m_plain = true;
    if (m_hasRecords) --m_owner.m_graphsWithRecords;
    m_hasRecords = false;
    for (Record* record : m_settledRecords) endInPlace(record);
    m_settledRecords.clear();
    while (!m_heapRecords.empty()) {
        Record* record = m_heapRecords.back();
        m_heapRecords.pop_back();
        record->m_place = Record::kLoose;
        delete record;
    }
}

// Lifetimes

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
    for (Record** place = listHead(member); *place != nullptr; place = &(*place)->m_pNext) {
        Record* const record = *place;
        if (record->m_pData != m_data) continue;
        *place = record->m_pNext;
        destroy(record);
        break;
    }
    m_data->forEachColumn([member](ColumnBase& column) {
        if (column.isOf(member)) column.erase(member);
    });
    m_owner.forgetMember(member, *this);
}

void DataGraph::memberMoved(RVGraphMember* member, RVGraph* from, int indexThere) {
    DataGraph& here = m_owner.at(member->pHomeGraph());
    m_data->forEachColumn([&](ColumnBase& column) {
        if (column.isOf(member)) column.move(member, from, static_cast<std::size_t>(indexThere));
    });
    for (Record* record = *listHead(member); record != nullptr; record = record->m_pNext) {
        if (record->m_pData != m_data) continue;
        unlink(record);
        const std::uint32_t place = record->m_place;
        if (place == Record::kSlab) {
            m_recordsMovedAway = true;
            record->m_place = Record::kSettled;
        } else if ((place & Record::kSettled) != 0) {
            takeFrom(m_settledRecords, place, Record::kSettled);
            record->m_place = Record::kSettled;
        } else {
            takeFrom(m_heapRecords, place, 0);
            record->m_place = Record::kLoose;
        }
        here.enlist(record);
        break;
    }
    const std::size_t kind = kindOf(member);
    const int limit = indexLimit(member->pHomeGraph(), kind);
    for (const DataGraphs::Direction direction : {DataGraphs::kCopies, DataGraphs::kOriginals}) {
        Mapping& there = (this->*direction)[kind];
        RVGraphMember* value = there.values.get(indexThere);
        if (value == nullptr) continue;
        there.values.reset(indexThere);
        (here.*direction)[kind].values.set(member->denseIndex(), value, limit);
    }
    if (m_strays[kind].get(indexThere) != 0) {
        here.m_strays[kind].set(member->denseIndex(), m_strays[kind].get(indexThere), limit);
        m_strays[kind].reset(indexThere);
    }
    // What led to the member may come from anywhere where the graph that it left was known.
    m_owner.m_mixedTargets = true;
    DataGraphs::link(here, *this);
    for (std::size_t i = 0; i < m_links.size(); ++i) DataGraphs::link(here, *m_links[i].graph);
}

// Graphs

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

// Mappings
//
// A value is a stray unless the object that it leads to is mapped back. When an object dies, its own values
// tell which others lead to it; strays have to be looked for, which is done only where there are some.

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

void DataGraphs::forgetMember(RVGraphMember* member, DataGraph& home) {
    const std::size_t kind = kindOf(member);
    for (const Direction direction : {kCopies, kOriginals}) {
        Mapping& mapping = (home.*direction)[kind];
        RVGraphMember* const value = mapping.get(member);
        if (value == nullptr) continue;
        DataGraph& there = graphOf(value, mapping);
        Mapping& back = (there.*opposite(direction))[kind];
        back.get(value) == member ? back.values.reset(value->denseIndex())
                                  : static_cast<void>(--there.strays(value));
        mapping.at(member) = nullptr;
    }
    if (home.m_strays[kind].get(member->denseIndex()) == 0) return;
    home.m_strays[kind].reset(member->denseIndex());
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

}  // namespace rv

// RVAlgorithmExtension

RVAlgorithmExtension::~RVAlgorithmExtension() = default;
void RVAlgorithmExtension::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVAlgorithmExtension::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVAlgorithmExtension* RVAlgorithmExtension::cloneObject() const { return new RVAlgorithmExtension(*this); }
RVAlgorithmExtension* RVAlgorithmExtension::cloneAttributes() const {
    return new RVAlgorithmExtension(*this);
}

void RVAlgorithmExtension::operator delete(RVAlgorithmExtension* record, std::destroying_delete_t) {
    if (record->m_place != kLoose) {
        const auto* member = static_cast<const RVGraphMember*>(record->m_pOwner);
        record->m_pData->m_graphs->at(member->pHomeGraph()).discard(record);
    } else {
        record->~RVAlgorithmExtension();
        ::operator delete(static_cast<void*>(record));
    }
}

void RVAlgorithmExtension::noteOwnedMemory() const {
    if (m_place != kSlab) return;
    const auto* member = static_cast<const RVGraphMember*>(m_pOwner);
    m_pData->m_graphs->at(member->pHomeGraph()).noteOwnedMemory();
}

RV_OBJECT_IMPL(RVNodeAlgorithmExtension)
RV_OBJECT_IMPL(RVEdgeAlgorithmExtension)

// RVAlgorithmData

RVAlgorithmData::RVAlgorithmData() : m_graphs(std::make_unique<rv::DataGraphs>(this)) {}

RVAlgorithmData::RVAlgorithmData(RVGraph* graph) : RVAlgorithmData() { pAssociatedGraph(graph); }

RVAlgorithmData::RVAlgorithmData(const RVAlgorithmData& other, RVDeepFlagEnum) : RVAlgorithmData() {
    RVAlgorithmData::copyObject(&other);
}

RVAlgorithmData& RVAlgorithmData::operator=(const RVAlgorithmData& other) {
    if (this == &other) return *this;
    forEachColumn([](rv::ColumnBase& column) { column.clear(); });
    m_graphs = std::make_unique<rv::DataGraphs>(this);
    pAssociatedGraph(other.m_pAssociatedGraph);
    pInputGraph(other.m_pInputGraph);
    m_graphs->copyFrom(*other.m_graphs);
    return *this;
}

RVAlgorithmData::~RVAlgorithmData() { destroySecondaryGraphs(); }

void RVAlgorithmData::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVAlgorithmData::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVAlgorithmData* RVAlgorithmData::cloneObject() const { return new RVAlgorithmData(*this); }
RVAlgorithmData* RVAlgorithmData::cloneAttributes() const { return new RVAlgorithmData(*this); }

// The list is empty before the first graph dies, since a dying graph looks itself up in it.
void RVAlgorithmData::destroySecondaryGraphs() { m_secondaryGraphs->deleteAllCellsAndObjects(); }

RVGraph* RVAlgorithmData::pAssociatedGraph(RVGraph* graph) {
    if (graph != nullptr) m_graphs->at(graph);
    return m_pAssociatedGraph = graph;
}

RVGraph* RVAlgorithmData::pInputGraph(RVGraph* graph) {
    if (graph != nullptr) m_graphs->at(graph);
    return m_pInputGraph = graph;
}

RVNode* RVAlgorithmData::pCopyNode(RVNode* original) const {
    return static_cast<RVNode*>(m_graphs->mapped(original, rv::kNodes, rv::DataGraphs::kCopies));
}
RVNode* RVAlgorithmData::pOriginalNode(RVNode* copy) const {
    return static_cast<RVNode*>(m_graphs->mapped(copy, rv::kNodes, rv::DataGraphs::kOriginals));
}
RVEdge* RVAlgorithmData::pCopyEdge(RVEdge* original) const {
    return static_cast<RVEdge*>(m_graphs->mapped(original, rv::kEdges, rv::DataGraphs::kCopies));
}
RVEdge* RVAlgorithmData::pOriginalEdge(RVEdge* copy) const {
    return static_cast<RVEdge*>(m_graphs->mapped(copy, rv::kEdges, rv::DataGraphs::kOriginals));
}
RVNode* RVAlgorithmData::pCopyNode(RVNode* original, RVNode* copy) {
    m_graphs->map(original, copy, rv::kNodes, rv::DataGraphs::kCopies);
    return copy;
}
RVNode* RVAlgorithmData::pOriginalNode(RVNode* copy, RVNode* original) {
    m_graphs->map(copy, original, rv::kNodes, rv::DataGraphs::kOriginals);
    return original;
}
RVEdge* RVAlgorithmData::pCopyEdge(RVEdge* original, RVEdge* copy) {
    m_graphs->map(original, copy, rv::kEdges, rv::DataGraphs::kCopies);
    return copy;
}
RVEdge* RVAlgorithmData::pOriginalEdge(RVEdge* copy, RVEdge* original) {
    m_graphs->map(copy, original, rv::kEdges, rv::DataGraphs::kOriginals);
    return original;
}

void RVAlgorithmData::copyGraph(const RVGraph* original, RVGraph* copy) {
    m_graphs->copyGraph(original, copy);
}

void RVAlgorithmData::deleteDataReferences(RVGraph* graph) {
    rv::DataGraph* const found = m_graphs->find(graph);
    if (found == nullptr) return;
    found->dropRecords();
    forEachColumn([graph](rv::ColumnBase& column) {
        if (column.m_hasRecords) column.drop(graph);
    });
}

bool RVAlgorithmData::mayHaveRecords() const { return m_graphs->hasRecords() || !hasStandardRecords(); }

RVNodeAlgorithmExtension* RVAlgorithmData::newNodeAlgorithmExtension(RVNode* node) {
    return newRecord<RVNodeAlgorithmExtension>(node);
}

RVEdgeAlgorithmExtension* RVAlgorithmData::newEdgeAlgorithmExtension(RVEdge* edge) {
    return newRecord<RVEdgeAlgorithmExtension>(edge);
}

RVAlgorithmExtensionList* RVAlgorithmData::pAlgorithmExtensionList(
    RVGraphObjectExtensions* extensions) const {
    return extensions->pAnalysisExtensions();
}

void* RVAlgorithmData::recordMemory(RVGraphMember* object, std::size_t size, bool plain) {
    return m_graphs->at(object->pHomeGraph()).memory(rv::kindOf(object), size, plain);
}

// Making a record that was only asked for does not change what the data answers, so it is no change.
RVAlgorithmExtension* RVAlgorithmData::makeExtension(RVGraphObject* object) const {
    if (object == nullptr || (!object->isNode() && !object->isEdge())) return nullptr;
    for (auto* found = pAlgorithmExtensionList(object)->pFirstExtension(); found != nullptr;
         found = found->m_pNext) {
        if (found->m_pData == this) return found;
    }
    auto* self = const_cast<RVAlgorithmData*>(this);
    RVAlgorithmExtension* record = nullptr;
    if (object->isNode()) {
        record = self->newNodeAlgorithmExtension(static_cast<RVNode*>(object));
    } else {
        record = self->newEdgeAlgorithmExtension(static_cast<RVEdge*>(object));
    }
    if (record == nullptr) return nullptr;
    record->m_pOwner = object;
    record->m_pData = this;
    auto* const member = static_cast<RVGraphMember*>(object);
    m_graphs->at(member->pHomeGraph()).enlist(record);
    forEachColumn([&](rv::ColumnBase& column) {
        if (column.m_hasRecords && column.isOf(member)) column.giveTo(record);
    });
    return record;
}

// A record of this data's own with the values of another data's record on the same object.
void RVAlgorithmData::copyExtension(const RVAlgorithmExtension& source) {
    RVAlgorithmExtension* record = pAlgorithmExtension(source.m_pOwner);
    if (record == nullptr) return;
    if (typeid(*record) == typeid(source)) {
        record->copyObject(&source);
        return;
    }
    // The source was made by the factory of a class derived from this one.
    RVAlgorithmExtension* same = source.cloneObject();
    if (same == nullptr) return;
    if (typeid(*same) != typeid(source)) {  // a class that does not say how it is cloned
        delete same;
        return;
    }
    delete record;
    same->m_pOwner = source.m_pOwner;
    same->m_pData = this;
    m_graphs->at(static_cast<RVGraphMember*>(source.m_pOwner)->pHomeGraph()).enlist(same);
}

// RVAlgorithmInputData, RVAlgorithmOutputData

RV_OBJECT_IMPL(RVAlgorithmInputData)
RV_OBJECT_IMPL(RVAlgorithmOutputData)

bool RVAlgorithmInputData::hasField(const char*) const { return false; }
bool RVAlgorithmInputData::hasNodeField(const char*) const { return false; }
bool RVAlgorithmInputData::hasEdgeField(const char*) const { return false; }
int RVAlgorithmInputData::intField(const char*, RVGraphObject*) const { return 0; }
double RVAlgorithmInputData::doubleField(const char*, RVGraphObject*) const { return 0.0; }
RVObject* RVAlgorithmInputData::pObjectField(const char*, RVGraphObject*) const { return nullptr; }
void RVAlgorithmInputData::copyData(const RVAlgorithmInputData*) {}
