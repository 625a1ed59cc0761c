#include "rv/foundation/hash_map.h"

#include <utility>

RVHashMap::RVHashMap(int) {}

RVHashMap::RVHashMap(const RVHashMap& other, RVDeepFlagEnum) : RVObject(other) { *this = other; }

RVHashMap& RVHashMap::operator=(const RVHashMap& other) {
    if (this == &other) return *this;
    empty(0, 0);
    m_table = other.m_table;
    m_pooled = other.m_pooled;
    for (std::uint32_t i = m_table.firstFrom(0); i < m_table.end(); i = m_table.firstFrom(i + 1)) {
        rv::MapEntry& entry = m_table[i];
        if (entry.pooled) entry.value = m_pool.create(static_cast<RVInt*>(entry.value)->value());
    }
    return *this;
}

RVHashMap::~RVHashMap() = default;

void RVHashMap::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVHashMap::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVHashMap* RVHashMap::cloneObject() const { return new RVHashMap(*this, RVShallow); }
RVHashMap* RVHashMap::cloneAttributes() const { return new RVHashMap(*this, RVDeep); }

RVObject* RVHashMap::put(rv::KeyRef key, RVObject* value) {
    if (key.key == nullptr) return nullptr;
    bool added = false;
    rv::MapEntry& entry = m_table[m_table.findOrAdd(key, added)];
    RVObject* const old = entry.value;
    entry.value = value;
    if (entry.pooled) --m_pooled;
    entry.pooled = false;
    return added ? nullptr : old;
}

int RVHashMap::putInt(rv::KeyRef key, int value) {
    if (key.key == nullptr) return value;
    bool added = false;
    rv::MapEntry& entry = m_table[m_table.findOrAdd(key, added)];
    if (entry.value != nullptr) return static_cast<RVInt*>(entry.value)->value(value);
    entry.value = m_pool.create(value);
    entry.pooled = true;
    ++m_pooled;
    return value;
}

RVObject* RVHashMap::remove(rv::KeyRef key, int destroyValue) {
    const std::uint32_t position = m_table.find(key);
    if (position == Table::kNone) return nullptr;
    RVObject* const value = m_table[position].value;
    if (m_table[position].pooled) --m_pooled;
    m_table.erase(position);
    if (destroyValue == 0) return value;
    delete value;
    return nullptr;
}

// The map is empty before the first object is destroyed.
void RVHashMap::empty(int destroyValues, int destroyKeys) {
    Table entries;
    if (destroyKeys == 0 && (destroyValues == 0 || m_pooled == m_table.size())) {
        m_table.clear();
    } else {
        std::swap(entries, m_table);
    }
    m_pooled = 0;
    for (std::uint32_t i = entries.firstFrom(0); i < entries.end(); i = entries.firstFrom(i + 1)) {
        if (destroyValues != 0 && !entries[i].pooled) delete entries[i].value;
        if (destroyKeys != 0) delete entries[i].key;
    }
    m_pool.releaseAll();
}

void RVHashMap::cloneValues() {
    for (std::uint32_t i = m_table.firstFrom(0); i < m_table.end(); i = m_table.firstFrom(i + 1)) {
        rv::MapEntry& entry = m_table[i];
        if (entry.pooled || entry.value == nullptr) continue;
        if (const auto* number = dynamic_cast<const RVInt*>(entry.value)) {
            entry.value = m_pool.create(number->value());
            entry.pooled = true;
            ++m_pooled;
        } else {
            entry.value = entry.value->cloneObject();
        }
    }
}

void RVHashMap::buildObjectList(RVDList& list) const {
    list.deleteAllCells();
    for (RVHashMapIter it(this); it; it++) list.appendObject(it.pValue());
}

RVHashSet::RVHashSet(int) {}

RVHashSet::RVHashSet(const RVDList* list) {
    for (RVDListIter it(list); it; it++) add(it.pObject());
}

RVHashSet::RVHashSet(const RVHashSet& other, RVDeepFlagEnum) : RVObject(other), m_table(other.m_table) {}

RVHashSet& RVHashSet::operator=(const RVHashSet& other) = default;

RVHashSet::~RVHashSet() = default;

void RVHashSet::copyObject(const RVObject* other) { rv::assignFrom(*this, other); }
void RVHashSet::copyAttributes(const RVObject* other) { rv::assignFrom(*this, other); }
RVHashSet* RVHashSet::cloneObject() const { return new RVHashSet(*this, RVShallow); }
RVHashSet* RVHashSet::cloneAttributes() const { return new RVHashSet(*this, RVDeep); }

bool RVHashSet::add(rv::KeyRef object) {
    if (object.key == nullptr) return false;
    bool added = false;
    m_table.findOrAdd(object, added);
    return added;
}

bool RVHashSet::remove(rv::KeyRef object) {
    const std::uint32_t position = m_table.find(object);
    if (position == Table::kNone) return false;
    m_table.erase(position);
    return true;
}

// The set is empty before the first object is destroyed.
void RVHashSet::clear(int destroyObjects) {
    if (destroyObjects == 0) {
        m_table.clear();
        return;
    }
    Table objects;
    std::swap(objects, m_table);
    for (std::uint32_t i = objects.firstFrom(0); i < objects.end(); i = objects.firstFrom(i + 1)) {
        delete objects[i].key;
    }
}

void RVHashSet::buildObjectList(RVDList& list) const {
    list.deleteAllCells();
    for (RVHashSetIter it(this); it; it++) list.appendObject(it.pObject());
}
