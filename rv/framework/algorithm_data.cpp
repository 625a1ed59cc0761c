#include "rv/framework/algorithm_data.h"

#include <algorithm>
#include <cstring>
#include <optional>
#include <utility>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/foundation/slab.h"

namespace rv {

namespace {
std::size_t kindOf(const RVGraphMember* member) { return member->isNode() ? 0 : 1; }
constexpr std::size_t kNodes = 0;
constexpr std::size_t kEdges = 1;
}  // namespace

// Maps the nodes, or the edges, of one graph to objects of another.
struct Mapping {
    RVGraphMember* get(const RVGraphMember* member) const { return values.get(member->denseIndex()); }
    void set(const RVGraphMember* member, RVGraphMember* value, int limit) {
        values.set(member->denseIndex(), value, limit);
    }

    Column<RVGraphMember*> values;
    RVGraph* target = nullptr;  // the graph of the first value; of all of them unless the data says otherwise
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

    RVAlgorithmExtension** listHead(RVGraphObject* owner) const;
    void link(Record* record) const;
    void unlink(Record* record) const;
    static void endInPlace(Record* record);
    void destroy(Record* record);
    void release();
    template <class F>
    void forEachRecord(F f);

    DataGraphs& m_owner;
    RVAlgorithmData* m_data;
    RVGraph* m_graph;
    std::uint32_t m_stamp;
    std::optional<Slab> m_slabs[2];         // records of nodes and of edges
    std::vector<Record*> m_heapRecords;     // made by callers' factories
    std::vector<Record*> m_settledRecords;  // came with their objects, from the slabs of other graphs
    bool m_plain = true;                    // the destructors of the records in the slabs have nothing to do
    bool m_recordsMovedAway = false;        // a record in the slabs may be one of another graph's objects
    Mapping m_copies[2];                    // of nodes and of edges
    Mapping m_originals[2];
};

// All that a data object keeps about graphs.
class DataGraphs {
public:
    explicit DataGraphs(RVAlgorithmData* data) : m_data(data) {}
    DataGraphs(const DataGraphs&) = delete;
    DataGraphs& operator=(const DataGraphs&) = delete;
    ~DataGraphs() {
        for (const auto& entry : m_graphs) {
            entry->dropRecords();
            GraphAccess::removeObserver(entry->m_graph, entry.get());
        }
    }

    DataGraph* find(const RVGraph* graph) const {
        if (m_last != nullptr && m_last->m_graph == graph) return m_last;
        for (const auto& entry : m_graphs) {
            if (entry->m_graph == graph) return m_last = entry.get();
        }
        return nullptr;
    }
    DataGraph& at(RVGraph* graph) {
        if (DataGraph* found = find(graph)) return *found;
        m_graphs.reserve(m_graphs.size() + 1);
        m_graphs.push_back(std::make_unique<DataGraph>(*this, m_data, graph));
        return *(m_last = m_graphs.back().get());
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
    void copyFrom(const DataGraphs& other);

    // A value that is going away, or whose graph is, leaves every mapping.
    void forgetMember(RVGraphMember* member, DataGraph& home);
    void forgetGraph(const RVGraph* graph);

    void remove(DataGraph* graph) {
        if (m_last == graph) m_last = nullptr;
        const auto found = std::find_if(m_graphs.begin(), m_graphs.end(),
                                        [&](const auto& entry) { return entry.get() == graph; });
        m_graphs.erase(found);
    }

private:
    friend class DataGraph;

    RVAlgorithmData* m_data;
    std::vector<std::unique_ptr<DataGraph>> m_graphs;
    mutable DataGraph* m_last = nullptr;
    bool m_mixedTargets = false;    // some mapping may lead to several graphs
    std::optional<Slab> m_kept[2];  // records whose objects have left a graph that died
};

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
    } else if (record->m_place == Record::kOtherSlab) {
        m_settledRecords.push_back(record);
    }
    record->m_stamp = m_stamp;
    link(record);
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
    } else if (place == Record::kOtherSlab) {
        m_settledRecords.erase(std::find(m_settledRecords.begin(), m_settledRecords.end(), record));
        endInPlace(record);
    } else {
        m_heapRecords[place] = m_heapRecords.back();
        m_heapRecords[place]->m_place = place;
        m_heapRecords.pop_back();
        record->m_place = Record::kLoose;
        delete record;
    }
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
    RVAlgorithmData* const data = m_data;
    if (data->m_pAssociatedGraph == graph) data->m_pAssociatedGraph = nullptr;
    if (data->m_pInputGraph == graph) data->m_pInputGraph = nullptr;
    if (data->m_secondaryGraphs->length() > 0) delete data->m_secondaryGraphs->searchAndRemoveObject(graph);
    m_owner.forgetGraph(graph);
    m_owner.remove(this);  // ends this object
}

void DataGraph::memberDies(RVGraphMember* member) {
    for (Record** place = listHead(member); *place != nullptr; place = &(*place)->m_pNext) {
        Record* const record = *place;
        if (record->m_pData != m_data) continue;
        *place = record->m_pNext;
        destroy(record);
        break;
    }
    m_owner.forgetMember(member, *this);
}

void DataGraph::memberMoved(RVGraphMember* member, RVGraph*, int indexThere) {
    DataGraph& here = m_owner.at(member->pHomeGraph());
    for (Record* record = *listHead(member); record != nullptr; record = record->m_pNext) {
        if (record->m_pData != m_data) continue;
        unlink(record);
        if (record->m_place == Record::kSlab) {
            record->m_place = Record::kOtherSlab;
            m_recordsMovedAway = true;
        } else if (record->m_place == Record::kOtherSlab) {
            m_settledRecords.erase(std::find(m_settledRecords.begin(), m_settledRecords.end(), record));
        } else {
            m_heapRecords[record->m_place] = m_heapRecords.back();
            m_heapRecords[record->m_place]->m_place = record->m_place;
            m_heapRecords.pop_back();
            record->m_place = Record::kLoose;
        }
        here.enlist(record);
        break;
    }
    const std::size_t kind = kindOf(member);
    const int limit =
        kind == kNodes ? member->pHomeGraph()->nodeIndexLimit() : member->pHomeGraph()->edgeIndexLimit();
    for (const DataGraphs::Direction direction : {DataGraphs::kCopies, DataGraphs::kOriginals}) {
        Mapping& there = (this->*direction)[kind];
        RVGraphMember* value = there.values.get(indexThere);
        if (value == nullptr) continue;
        there.values.reset(indexThere);
        (here.*direction)[kind].set(member, value, limit);
    }
    m_owner.m_mixedTargets = true;
}

// Mappings

void DataGraphs::map(RVGraphMember* member, RVGraphMember* value, std::size_t kind, Direction direction) {
    if (member == nullptr) return;
    RVGraph* const home = member->pHomeGraph();
    Mapping& mapping = (at(home).*direction)[kind];
    // What still leads back to the member can then not be found from it.
    const RVGraphMember* const before = mapping.get(member);
    if (before != nullptr && before != value) GraphAccess::setMappingTarget(member);
    mapping.set(member, value, kind == kNodes ? home->nodeIndexLimit() : home->edgeIndexLimit());
    if (value == nullptr) return;
    DataGraph& there = at(value->pHomeGraph());
    if (mapping.target == nullptr) mapping.target = value->pHomeGraph();
    if (mapping.target != value->pHomeGraph()) m_mixedTargets = true;
    const Direction back = direction == kCopies ? kOriginals : kCopies;
    if ((there.*back)[kind].get(value) != member) GraphAccess::setMappingTarget(value);
}

void DataGraphs::copyGraph(const RVGraph* original, RVGraph* copy) {
    DataGraph& there = at(const_cast<RVGraph*>(original));
    Mapping(&copies)[2] = there.m_copies;
    for (const std::size_t kind : {kNodes, kEdges}) {
        // What leads back from an earlier copy can then not be found from the original.
        for (RVGraphMember* earlier : copies[kind].values.values()) {
            const DataGraph* graph = earlier == nullptr ? nullptr : find(earlier->pHomeGraph());
            RVGraphMember* const source = graph == nullptr ? nullptr : graph->m_originals[kind].get(earlier);
            if (source != nullptr) GraphAccess::setMappingTarget(source);
        }
    }
    GraphAccess::copyGraph(original, copy, copies[kNodes].values.values(), copies[kEdges].values.values());
    copies[kNodes].target = copies[kEdges].target = copy;
    Mapping(&originals)[2] = at(copy).m_originals;
    for (RVNode* node : *original->pNodeList()) {
        originals[kNodes].set(copies[kNodes].get(node), node, copy->nodeIndexLimit());
    }
    for (RVEdge* edge : *original->pEdgeList()) {
        originals[kEdges].set(copies[kEdges].get(edge), edge, copy->edgeIndexLimit());
    }
    originals[kNodes].target = originals[kEdges].target = there.m_graph;
}

void DataGraphs::forgetMember(RVGraphMember* member, DataGraph& home) {
    const std::size_t kind = kindOf(member);
    const auto forget = [&](Direction direction, Direction back) {
        RVGraphMember* const value = (home.*direction)[kind].get(member);
        if (value == nullptr) return;
        (home.*direction)[kind].values.reset(member->denseIndex());
        DataGraph* const there = find(value->pHomeGraph());
        if (there != nullptr && (there->*back)[kind].get(value) == member) {
            (there->*back)[kind].values.reset(value->denseIndex());
        }
    };
    forget(kCopies, kOriginals);
    forget(kOriginals, kCopies);
    if (!GraphAccess::isMappingTarget(member)) return;
    for (const auto& graph : m_graphs) {
        for (const Direction direction : {kCopies, kOriginals}) {
            for (RVGraphMember*& value : ((*graph).*direction)[kind].values.values()) {
                if (value == member) value = nullptr;
            }
        }
    }
}

void DataGraphs::forgetGraph(const RVGraph* dying) {
    for (const auto& graph : m_graphs) {
        if (graph->m_graph == dying) continue;
        for (const Direction direction : {kCopies, kOriginals}) {
            for (Mapping& mapping : ((*graph).*direction)) {
                if (m_mixedTargets) {
                    for (RVGraphMember*& value : mapping.values.values()) {
                        if (value != nullptr && value->pHomeGraph() == dying) value = nullptr;
                    }
                } else if (mapping.target == dying) {
                    mapping.values.clear();
                }
                if (mapping.target == dying) mapping.target = nullptr;
            }
        }
    }
}

void DataGraphs::copyFrom(const DataGraphs& other) {
    m_mixedTargets = other.m_mixedTargets;
    for (const auto& source : other.m_graphs) {
        DataGraph& graph = at(source->m_graph);
        for (const Direction direction : {kCopies, kOriginals}) {
            for (const std::size_t kind : {kNodes, kEdges}) {
                const Mapping& from = ((*source).*direction)[kind];
                (graph.*direction)[kind] = from;
                // Whether the values point back is not known for this data, so their end must be told of.
                for (RVGraphMember* value : from.values.values()) {
                    if (value != nullptr) GraphAccess::setMappingTarget(value);
                }
            }
        }
        source->forEachRecord([&](RVAlgorithmExtension* record) { m_data->copyExtension(*record); });
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
    if (rv::DataGraph* found = m_graphs->find(graph)) found->dropRecords();
}

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
    m_graphs->at(static_cast<RVGraphMember*>(object)->pHomeGraph()).enlist(record);
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
