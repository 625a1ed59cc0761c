// Values in columns that can also be had as a map or set of objects. Internal to the library; installed,
// since data classes have such members.
//
// They are in the columns until somebody asks for the map. Then the values of attached objects move there,
// where they are found and stored from then on.
#pragma once

#include <memory>
#include <span>
#include <type_traits>
#include <utility>

#include "rv/foundation/hash_map.h"
#include "rv/framework/columns.h"

namespace rv {

// How a map keeps values: Shape has the type Map, which owns what is handed out, and says of a value
//   static bool has(const Handed&, RVObject*)
//   static T get(const Handed&, RVObject*)
//   static void put(Handed&, RVObject*, T)
//   static void clear(Handed&)
template <class Shape>
class OnRequest {
public:
    using Map = typename Shape::Map;
    using Handed = std::remove_pointer_t<decltype(std::declval<Map&>().get())>;

    OnRequest() = default;
    OnRequest(const OnRequest& other) { *this = other; }
    OnRequest& operator=(const OnRequest& other) {
        if (this != &other) m_map = other.m_map == nullptr ? nullptr : std::make_unique<Map>(*other.m_map);
        return *this;
    }
    ~OnRequest() = default;

    // Of an object, whose value otherwise is in the column. A value of the column that belongs to an object
    // which was not attached stays there.
    template <class Object, class Column>
    auto get(Object* object, const Column& column) const {
        using T = decltype(column.get(object));
        const bool isInMap = m_map != nullptr && Shape::has(*m_map->get(), object);
        return isInMap ? static_cast<T>(Shape::get(*m_map->get(), object)) : column.get(object);
    }
    template <class Object, class T, class Column>
    T store(Object* object, T value, Column& column) {
        if (m_map == nullptr) return column.store(object, value);
        Shape::put(*m_map->get(), object, value);
        return value;
    }
    bool isHandedOut() const { return m_map != nullptr; }

    // As those of the column.
    template <class Column>
    std::span<const int> values(const RVGraph* graph, const Column& column, Buffer<int>& space) const {
        if (m_map == nullptr) return column.values(graph, space);
        space.assign(static_cast<std::size_t>(graph->edgeIndexLimit()), column.get(nullptr));
        for (RVEdge* edge : *graph->pEdgeList()) space[placeOf(edge)] = get(edge, column);
        return space;
    }
    template <class T>
    void assign(RVGraph* graph, Buffer<T>&& values, NodeColumn<T>& column) {
        if (m_map == nullptr) return column.assign(graph, std::move(values));
        for (RVNode* node : *graph->pNodeList()) {
            const T value = values[placeOf(node)];
            if (value != column.get(nullptr)) store(node, value, column);
        }
    }
    // All values become the default; what was handed out is emptied.
    template <class Column>
    void clear(Column& column) {
        column.clear();
        if (m_map != nullptr) Shape::clear(*m_map->get());
    }

    template <class... Columns>
    Handed* handOut(Columns&... columns) const {
        if (m_map == nullptr) {
            auto map = std::make_unique<Map>();
            const auto put = [&](auto* object, auto value) { Shape::put(*map->get(), object, value); };
            (columns.forEachAttached(put), ...);
            m_map = std::move(map);
            (columns.clearAttached(), ...);
        }
        return m_map->get();
    }
    template <class... Columns>
    Handed* take(Handed* map, Columns&... columns) {
        if (m_map == nullptr) m_map = std::make_unique<Map>();
        (columns.clear(), ...);
        return m_map->take(map);
    }

private:
    mutable std::unique_ptr<Map> m_map;
};

// Boxed integers.
struct IntShape {
    using Map = OwnedMap<Values::Destroy>;
    static bool has(const RVHashMap& map, RVObject* object) { return map.get(object) != nullptr; }
    static int get(const RVHashMap& map, RVObject* object) { return map.getInt(object, 0); }
    static void put(RVHashMap& map, RVObject* object, int value) { map.putInt(object, value); }
    static void clear(RVHashMap& map) { map.empty(1, 0); }
};
using IntMapOnRequest = OnRequest<IntShape>;

// Objects of a class, which are not the map's.
template <class Value>
struct ObjectShape {
    using Map = OwnedMap<Values::Keep>;
    static bool has(const RVHashMap& map, RVObject* object) { return map.get(object) != nullptr; }
    static Value* get(const RVHashMap& map, RVObject* object) { return static_cast<Value*>(map.get(object)); }
    static void put(RVHashMap& map, RVObject* object, Value* value) { map.put(object, value); }
    static void clear(RVHashMap& map) { map.empty(0, 0); }
};
template <class Value>
using ObjectMapOnRequest = OnRequest<ObjectShape<Value>>;

// A set of those whose value is not 0.
struct SetShape {
    using Map = Exchangeable<RVHashSet>;
    static bool has(const RVHashSet& set, RVObject* object) { return set.contains(object); }
    static int get(const RVHashSet&, RVObject*) { return 1; }
    static void put(RVHashSet& set, RVObject* object, int value) {
        value != 0 ? static_cast<void>(set.add(object)) : static_cast<void>(set.remove(object));
    }
    static void clear(RVHashSet& set) { set.clear(); }
};
using SetOnRequest = OnRequest<SetShape>;

}  // namespace rv
