// Hash maps and hash sets of objects.
//
// Keys are compared by identity, boxed values by value. Entries are walked in the order of their insertion,
// whatever the addresses; overwriting a value keeps the entry's place. put, get, contains, add and remove
// are O(1). Nodes and edges that were destroyed may stay in a map or set: their entries are never taken for
// those of a new object at the same address.
//
// A walk is live: entries put meanwhile are reached. Step past an entry before removing it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "rv/foundation/boxed_values.h"
#include "rv/foundation/graph.h"
#include "rv/foundation/list.h"

namespace rv {

// A key with its hash. Nodes and edges are hashed without a virtual call.
struct KeyRef {
    KeyRef(std::nullptr_t) : key(nullptr), hash(0), byValue(false) {}
    KeyRef(const RVObject* object) : key(object), hash(0), byValue(false) {
        if (object == nullptr) return;
        const KeyHash own = object->keyHash();
        hash = own.hash;
        byValue = own.byValue;
    }
    KeyRef(const RVGraphMember* member)
        : key(member), hash(member == nullptr ? 0 : member->memberHash()), byValue(false) {}

    const RVObject* key;
    std::uint32_t hash;
    bool byValue;
};

// Dense entries in insertion order, found through a table of 32-bit positions with linear probing. Removed
// entries stay as gaps until the table is rebuilt. Internal to the library.
template <class Entry>
class KeyTable {
public:
    static constexpr std::uint32_t kNone = 0xFFFFFFFFU;

    std::uint32_t size() const { return m_live; }
    std::uint32_t end() const { return static_cast<std::uint32_t>(m_entries.size()); }
    std::uint32_t rebuilds() const { return m_rebuilds; }
    Entry& operator[](std::uint32_t position) { return m_entries[position]; }
    const Entry& operator[](std::uint32_t position) const { return m_entries[position]; }

    std::uint32_t find(const KeyRef& key) const {
        if (m_live == 0 || key.key == nullptr) return kNone;
        for (std::uint32_t slot = home(key.hash);; slot = (slot + 1) & m_mask) {
            const std::uint32_t entry = m_slots[slot];
            if (entry == 0) return kNone;
            if (matches(m_entries[entry - 1], key)) return entry - 1;
        }
    }

    // The entry of the key, a new one behind all others if there was none.
    // REQUIRES: key.key is not none.
    std::uint32_t findOrAdd(const KeyRef& key, bool& added) {
        added = false;
        if (2 * (m_entries.size() + 1) > m_slots.size()) {
            const std::uint32_t found = find(key);
            if (found != kNone) return found;
            rebuild();
        }
        std::uint32_t slot = home(key.hash);
        for (; m_slots[slot] != 0; slot = (slot + 1) & m_mask) {
            if (matches(m_entries[m_slots[slot] - 1], key)) return m_slots[slot] - 1;
        }
        Entry entry{};
        entry.key = const_cast<RVObject*>(key.key);
        entry.hash = key.hash;
        entry.byValue = key.byValue;
        m_entries.push_back(entry);
        m_slots[slot] = end();
        ++m_live;
        added = true;
        return end() - 1;
    }

    void erase(std::uint32_t position) {
        std::uint32_t hole = home(m_entries[position].hash);
        while (m_slots[hole] != position + 1) hole = (hole + 1) & m_mask;
        m_slots[hole] = 0;
        for (std::uint32_t next = (hole + 1) & m_mask; m_slots[next] != 0; next = (next + 1) & m_mask) {
            const std::uint32_t wanted = home(m_entries[m_slots[next] - 1].hash);
            if (((next - wanted) & m_mask) >= ((next - hole) & m_mask)) {
                m_slots[hole] = m_slots[next];
                m_slots[next] = 0;
                hole = next;
            }
        }
        m_entries[position] = Entry{};
        --m_live;
        if (position == m_front) m_front = m_live == 0 ? 0 : firstFrom(m_front + 1);
        while (!m_entries.empty() && m_entries.back().key == nullptr) m_entries.pop_back();
    }

    void clear() {
        if (m_entries.empty()) return;
        m_entries.clear();
        m_slots.assign(m_slots.size(), 0);
        m_live = 0;
        m_front = 0;
        ++m_rebuilds;
    }

    // The first entry in use at or behind a position; end() when there is none.
    std::uint32_t firstFrom(std::uint32_t position) const {
        position = std::max(position, m_front);
        while (position < m_entries.size() && m_entries[position].key == nullptr) ++position;
        return position;
    }

private:
    // Sixteen consecutive hashes, such as those of neighbouring nodes, share a cache line of the table;
    // blocks of sixteen are spread by Fibonacci hashing.
    std::uint32_t home(std::uint32_t hash) const {
        const std::uint32_t block = (hash >> 4) * std::uint32_t{0x9E3779B1};
        return static_cast<std::uint32_t>(std::uint64_t{block} >> m_shift) << 4 | (hash & 15U);
    }

    static bool matches(const Entry& entry, const KeyRef& key) {
        if (entry.hash != key.hash) return false;
        return entry.key == key.key || (key.byValue && entry.byValue && key.key->keyEquals(*entry.key));
    }

    // Closes the gaps and makes room for as many entries again.
    void rebuild() {
        if (m_live != m_entries.size()) {
            std::size_t to = 0;
            for (const Entry& entry : m_entries) {
                if (entry.key != nullptr) m_entries[to++] = entry;
            }
            m_entries.resize(to);
            m_front = 0;
            ++m_rebuilds;
        }
        std::uint32_t bits = 4;
        while ((std::size_t{1} << bits) < 3 * (m_entries.size() + 1)) ++bits;
        m_slots.assign(std::size_t{1} << bits, 0);
        m_mask = (std::uint32_t{1} << bits) - 1;
        m_shift = 36 - bits;
        for (std::uint32_t i = 0; i < end(); ++i) {
            std::uint32_t slot = home(m_entries[i].hash);
            while (m_slots[slot] != 0) slot = (slot + 1) & m_mask;
            m_slots[slot] = i + 1;
        }
    }

    std::vector<Entry> m_entries;
    std::vector<std::uint32_t> m_slots;  // position + 1 of an entry, 0 in a free slot
    std::uint32_t m_mask = 0;
    std::uint32_t m_shift = 32;
    std::uint32_t m_live = 0;
    std::uint32_t m_front = 0;     // all entries before are gaps
    std::uint32_t m_rebuilds = 0;  // counts what moves entries, for iterators
};

// A position in a table that survives its rebuilding.
template <class Entry>
class KeyTableIter {
public:
    void init(const KeyTable<Entry>* table) {
        m_table = table;
        if (m_table == nullptr) return;
        m_position = m_table->firstFrom(0);
        note();
    }
    const Entry* entry() const {
        refresh();
        return m_table == nullptr || m_position >= m_table->end() ? nullptr : &(*m_table)[m_position];
    }
    void step() {
        refresh();
        if (m_table == nullptr || m_position >= m_table->end()) return;
        m_position = m_table->firstFrom(m_position + 1);
        note();
    }

private:
    void note() {
        m_rebuilds = m_table->rebuilds();
        if (m_position >= m_table->end()) return;
        m_key.key = (*m_table)[m_position].key;
        m_key.hash = (*m_table)[m_position].hash;
    }
    void refresh() const {
        if (m_table == nullptr || m_rebuilds == m_table->rebuilds()) return;
        m_rebuilds = m_table->rebuilds();
        m_position = m_table->find(m_key);
    }

    const KeyTable<Entry>* m_table = nullptr;
    mutable std::uint32_t m_position = 0;
    mutable std::uint32_t m_rebuilds = 0;
    KeyRef m_key = nullptr;
};

struct MapEntry {
    RVObject* key;
    RVObject* value;
    std::uint32_t hash;
    bool byValue;
    bool pooled;  // the value is a boxed integer of the map's own
};

struct SetEntry {
    RVObject* key;
    std::uint32_t hash;
    bool byValue;
};

}  // namespace rv

class RV_EXPORT RVHashMap : public RVObject {
public:
    // The size is a hint that is not needed: maps grow.
    explicit RVHashMap(int size = 16);
    // Copies hold the same keys and values in the same order; integers that putInt made become the copy's
    // own. Assignment forgets the old values as empty(0, 0) does.
    RVHashMap(const RVHashMap& other, RVDeepFlagEnum flag = RVShallow);
    RVHashMap& operator=(const RVHashMap& other);
    // Neither keys nor values are destroyed, but for the integers that putInt made.
    ~RVHashMap() override;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVHashMap* cloneObject() const override;
    RVHashMap* cloneAttributes() const override;
    static RVHashMap* castDown(RVObject* object) { return static_cast<RVHashMap*>(object); }

    int length() const { return static_cast<int>(m_table.size()); }

    // Maps the key to the value and gives the value that it replaces, which is not destroyed; none for a
    // new key. A none key is not put.
    RVObject* put(rv::KeyRef key, RVObject* value);
    // None when the key is absent.
    RVObject* get(rv::KeyRef key) const {
        const std::uint32_t position = m_table.find(key);
        return position == Table::kNone ? nullptr : m_table[position].value;
    }
    bool contains(rv::KeyRef key) const { return m_table.find(key) != Table::kNone; }
    // Removes the key's entry and gives its value. With a flag other than 0 the value is destroyed, and
    // none given. The key object is left alone.
    RVObject* remove(rv::KeyRef key, int destroyValue = 0);
    // Removes all entries; the first flag destroys the value objects, the second the key objects.
    void empty(int destroyValues, int destroyKeys);

    // Values that are boxed integers. An integer made by putInt belongs to the map and ends with it; it may
    // be destroyed before, as any other value.
    // REQUIRES: the key has no value or an RVInt.
    int getInt(rv::KeyRef key, int absent) const {
        const std::uint32_t position = m_table.find(key);
        return position == Table::kNone ? absent : static_cast<RVInt*>(m_table[position].value)->value();
    }
    int putInt(rv::KeyRef key, int value);

    // Puts a clone in the place of every value; integers that putInt made already are the map's own.
    void cloneValues();

    // Empties the list, then fills it with the values in the order of their keys' insertion.
    void buildObjectList(RVDList& list) const;

private:
    friend class RVHashMapIter;
    using Table = rv::KeyTable<rv::MapEntry>;
    Table m_table;
    std::uint32_t m_pooled = 0;  // entries whose value is of the pool
    rv::IntPool m_pool;
};

// Walks a map's entries in insertion order.
class RVHashMapIter {
public:
    RVHashMapIter() = default;
    explicit RVHashMapIter(const RVHashMap* map) { init(map); }
    void init(const RVHashMap* map) { m_iter.init(map == nullptr ? nullptr : &map->m_table); }

    explicit operator bool() const { return m_iter.entry() != nullptr; }
    RVObject* pKey() const { return m_iter.entry() == nullptr ? nullptr : m_iter.entry()->key; }
    RVObject* pValue() const { return m_iter.entry() == nullptr ? nullptr : m_iter.entry()->value; }
    void operator++(int) { m_iter.step(); }
    void operator++() { m_iter.step(); }

private:
    rv::KeyTableIter<rv::MapEntry> m_iter;
};

class RV_EXPORT RVHashSet : public RVObject {
public:
    explicit RVHashSet(int size = 16);
    // Holds the list's objects, in its order.
    explicit RVHashSet(const RVDList* list);
    RVHashSet(const RVHashSet& other, RVDeepFlagEnum flag = RVShallow);
    RVHashSet& operator=(const RVHashSet& other);
    ~RVHashSet() override;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVHashSet* cloneObject() const override;
    RVHashSet* cloneAttributes() const override;
    static RVHashSet* castDown(RVObject* object) { return static_cast<RVHashSet*>(object); }

    int length() const { return static_cast<int>(m_table.size()); }

    // True when the object was not in the set before. A none object is not added.
    bool add(rv::KeyRef object);
    bool contains(rv::KeyRef object) const { return m_table.find(object) != Table::kNone; }
    // True when the object was in the set. The object is left alone.
    bool remove(rv::KeyRef object);
    // Empties the set; a flag other than 0 destroys the objects.
    void clear(int destroyObjects = 0);

    // Empties the list, then fills it with the objects in the order of their insertion.
    void buildObjectList(RVDList& list) const;

private:
    friend class RVHashSetIter;
    using Table = rv::KeyTable<rv::SetEntry>;
    Table m_table;
};

// Walks a set's objects in insertion order.
class RVHashSetIter {
public:
    RVHashSetIter() = default;
    explicit RVHashSetIter(const RVHashSet* set) { init(set); }
    void init(const RVHashSet* set) { m_iter.init(set == nullptr ? nullptr : &set->m_table); }

    explicit operator bool() const { return m_iter.entry() != nullptr; }
    RVObject* pObject() const { return m_iter.entry() == nullptr ? nullptr : m_iter.entry()->key; }
    void operator++(int) { m_iter.step(); }
    void operator++() { m_iter.step(); }

private:
    rv::KeyTableIter<rv::SetEntry> m_iter;
};

namespace rv {

// What the owner of a map does with the values when it dies.
enum class Values { Keep, Destroy };

// A map that is a member of its owner, as Exchangeable. With Values::Destroy the values are boxed integers or
// other objects that die with the map and are cloned when the owner is copied.
template <Values kValues>
class OwnedMap {
public:
    OwnedMap() = default;
    OwnedMap(const OwnedMap& other) { *this = other; }
    OwnedMap& operator=(const OwnedMap& other) {
        if (this == &other) return *this;
        m_map->empty(kValues == Values::Destroy, 0);
        m_map = other.m_map;
        if constexpr (kValues == Values::Destroy) m_map->cloneValues();
        return *this;
    }
    ~OwnedMap() { m_map->empty(kValues == Values::Destroy, 0); }

    RVHashMap* get() const { return m_map.get(); }
    RVHashMap* operator->() const { return m_map.get(); }
    RVHashMap* take(RVHashMap* map) {
        if (map != m_map.get()) m_map->empty(kValues == Values::Destroy, 0);
        return m_map.take(map);
    }

private:
    Exchangeable<RVHashMap> m_map;
};

}  // namespace rv
