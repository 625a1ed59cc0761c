// Records: where their memory comes from, and how they end.

#include <cstring>

#include "rv/framework/data_graphs.h"

namespace rv {

RVAlgorithmExtension** DataGraph::listHead(RVGraphObject* owner) const {
    return &m_data->pAlgorithmExtensionList(owner)->m_pFirst;
}

DataGraph::Record* DataGraph::recordOf(RVGraphMember* member) const {
    Record* record = *listHead(member);
    while (record != nullptr && record->m_pData != m_data) record = record->m_pNext;
    return record;
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
