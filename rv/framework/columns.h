// Columns: a value for every node, or every edge, of a data object, in arrays by dense index.
//
// A column is a member of its data class, which names the default and the accessors of the record class that
// stands for the value, if there is one:
//
//   rv::NodeColumn<int> m_numbers{this, &MyRecord::number, &MyRecord::number};
//   rv::EdgeCosts m_costs{this, &MyRecord::cost, &MyRecord::cost, 1};  // default 1
//
//   int number(RVNode* node) const { return m_numbers.get(node); }
//   int number(RVNode* node, int value) { return m_numbers.store(node, value); }
//
// A value is in the column until there is a record of its object, and in the record from then on; when the
// record ends, the value is the default again. The data of a class that is derived from one of the library
// keeps all its values in records, since its factories are the caller's.
//
// Values follow their objects: they stay through detaching, move to another graph and end with the object,
// with the graph, and, where records stand for them, by deleteDataReferences.
//
// Several threads may read a column that none of them writes, unless a caller's factory makes records.
#pragma once

#include <algorithm>
#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <type_traits>
#include <utility>

#include "rv/foundation/buffer.h"
#include "rv/framework/algorithm_data.h"

namespace rv {

// What the data does with its columns, which may be of any type.
class RV_EXPORT ColumnBase {
public:
    ColumnBase(const ColumnBase&) = delete;
    ColumnBase& operator=(const ColumnBase&) = delete;

    // Whether all values are in the column, and none in records.
    bool usable() const;

protected:
    ColumnBase(RVAlgorithmData* data, bool isOfNodes, bool hasRecords);
    virtual ~ColumnBase();

    // The record that holds the value of an object: nullptr if the data makes none of it, and nothing if the
    // value is in the column.
    std::optional<RVAlgorithmExtension*> recordOf(RVGraphObject* object) const;
    // Makes sure that the data hears of the end of a graph and its objects.
    void observe(RVGraph* graph) const;

    // The graph whose values are read without looking for records; nullptr while there may be some.
    const RVGraph* m_quickGraph = nullptr;

private:
    friend class ::RVAlgorithmData;
    friend class DataGraph;

    bool isOf(const RVGraphMember* member) const { return member->isNode() == m_isOfNodes; }

    // The data's calls. An object ends, comes from another graph, for which room is made before, or gets a
    // record, which takes the value over.
    virtual void erase(const RVGraph* graph, std::size_t place) noexcept = 0;
    virtual void makeRoom(RVGraph* graph, const RVGraph* from, std::size_t placeThere) = 0;
    virtual void move(const RVGraphMember* member, const RVGraph* from, std::size_t placeThere) noexcept = 0;
    virtual void giveTo(RVAlgorithmExtension* record) noexcept = 0;
    // All values end, or those of one graph's objects.
    virtual void drop(const RVGraph* graph) noexcept = 0;
    virtual void clear() noexcept = 0;

    RVAlgorithmData* const m_data;
    ColumnBase* const m_previous;  // of the same data
    const bool m_isOfNodes;
    const bool m_hasRecords;
};

// Invariants. The default stands for every object that has a record, or is beyond the end of its graph's
// array. The data observes each graph that has an array. m_quick and m_quickSize tell the array of
// m_quickGraph.
template <class Object, class T, bool kCountsNegatives = false>
class MemberColumn final : public ColumnBase {
public:
    // Of values for which no record stands.
    explicit MemberColumn(RVAlgorithmData* data, T preset = T{})
        : ColumnBase(data, kIsOfNodes, false), m_default(preset) {}
    template <class Record>
    MemberColumn(RVAlgorithmData* data, T (Record::*read)() const, T (Record::*write)(T), T preset = T{})
        : ColumnBase(data, kIsOfNodes, true),
          m_default(preset),
          m_read(static_cast<Read>(read)),
          m_write(static_cast<Write>(write)) {}
    MemberColumn(const MemberColumn&) = delete;
    // Takes over the values that are not in records.
    MemberColumn& operator=(const MemberColumn& other) {
        if (this == &other) return *this;
        Arrays arrays = other.m_arrays;
        for (const auto& [graph, values] : arrays) observe(graph);
        m_quickGraph = nullptr;
        m_arrays.swap(arrays);
        m_negatives = other.m_negatives;
        return *this;
    }
    ~MemberColumn() override = default;

    // The default without an object.
    T get(Object* object) const {
        if (object == nullptr || object->pHomeGraph() != m_quickGraph) return getAnywhere(object);
        const std::size_t place = placeOf(object);
        return place < m_quickSize ? m_quick[place] : m_default;
    }
    // Gives the value; stores nothing without an object.
    T store(Object* object, T value) {
        if (object == nullptr || object->pHomeGraph() != m_quickGraph || placeOf(object) >= m_quickSize) {
            storeAnywhere(object, value);
        } else {
            set(m_quick[placeOf(object)], value);
        }
        return value;
    }
    // All values become the default, but for those in records.
    void clear() noexcept override {
        m_quickGraph = nullptr;
        m_arrays.clear();
        m_negatives = 0;
    }

    // The values of a graph's objects by dense index, as far as any have been stored; all others are the
    // default.
    // REQUIRES: usable().
    std::span<const T> values(const RVGraph* graph) const {
        const auto found = m_arrays.find(graph);
        if (found == m_arrays.end()) return {};
        return std::span<const T>(found->second).first(std::min(found->second.size(), limitOf(graph)));
    }
    // The same wherever the values are. Those of attached objects are gathered in the given space if they may
    // be in records.
    std::span<const T> values(const RVGraph* graph, Buffer<T>& space) const {
        if (usable()) return values(graph);
        space.assign(limitOf(graph), m_default);
        for (Object* object : listOf(graph)) space[placeOf(object)] = get(object);
        return space;
    }
    // Takes an array of values by dense index over; they replace those of all the graph's objects.
    // REQUIRES: usable(); the default stands at numbers that no object has.
    void take(RVGraph* graph, Buffer<T>&& values) {
        Buffer<T>& array = arrayOf(graph);
        forget(array);
        array = std::move(values);
        for (const T value : array) count(m_default, value);
        quicken(graph, array);
    }
    // The same wherever the values go. Where that is in records, the attached objects get the values that are
    // not the default.
    void assign(RVGraph* graph, Buffer<T>&& values) {
        if (usable()) return take(graph, std::move(values));
        for (Object* object : listOf(graph)) {
            const T value = at(values, placeOf(object));
            if (value != m_default) store(object, value);
        }
    }

    // How many values below 0 are in the column.
    std::size_t negatives() const requires kCountsNegatives { return m_negatives; }
    // Whether a value of the graph's attached objects is below 0. O(1) if none is and all are in the column.
    bool hasNegatives(const RVGraph* graph) const requires kCountsNegatives {
        if (m_negatives == 0 && usable()) return false;
        for (Object* object : listOf(graph)) {
            if (get(object) < 0) return true;
        }
        return false;
    }

private:
    using Read = T (RVAlgorithmExtension::*)() const;
    using Write = T (RVAlgorithmExtension::*)(T);
    using Arrays = std::map<RVGraph*, Buffer<T>, std::less<>>;
    static constexpr bool kIsOfNodes = std::is_same_v<Object, RVNode>;

    static std::size_t limitOf(const RVGraph* graph) {
        return static_cast<std::size_t>(kIsOfNodes ? graph->nodeIndexLimit() : graph->edgeIndexLimit());
    }
    static const auto& listOf(const RVGraph* graph) {
        if constexpr (kIsOfNodes) {
            return *graph->pNodeList();
        } else {
            return *graph->pEdgeList();
        }
    }

    T at(const Buffer<T>& values, std::size_t place) const {
        return place < values.size() ? values[place] : m_default;
    }
    T valueAt(const RVGraph* graph, std::size_t place) const {
        const auto found = m_arrays.find(graph);
        return found == m_arrays.end() ? m_default : at(found->second, place);
    }
    T getAnywhere(Object* object) const {
        if (object == nullptr) return m_default;
        if (const auto record = recordOf(object))
            return *record == nullptr ? m_default : ((*record)->*m_read)();
        return valueAt(object->pHomeGraph(), placeOf(object));
    }
    void storeAnywhere(Object* object, T value) {
        if (object == nullptr) return;
        if (const auto record = recordOf(object)) {
            if (*record != nullptr) ((*record)->*m_write)(value);
            return;
        }
        RVGraph* const graph = object->pHomeGraph();
        Buffer<T>& array = arrayOf(graph);
        m_quickGraph = nullptr;
        cover(array, limitOf(graph));
        set(array[placeOf(object)], value);
        if (usable()) quicken(graph, array);
    }

    // The array of a graph, made if need be.
    Buffer<T>& arrayOf(RVGraph* graph) {
        const auto found = m_arrays.find(graph);
        if (found != m_arrays.end()) return found->second;
        observe(graph);
        return m_arrays[graph];
    }
    // Grows by more than is asked for, as objects and their values often come in turns.
    void cover(Buffer<T>& array, std::size_t size) const {
        if (size > array.size()) array.resize(std::max(size, 2 * array.size()), m_default);
    }
    void quicken(const RVGraph* graph, Buffer<T>& array) {
        m_quickGraph = graph;
        m_quick = array.data();
        m_quickSize = array.size();
    }

    void set(T& place, T value) {
        count(place, value);
        place = value;
    }
    void count([[maybe_unused]] T before, [[maybe_unused]] T after) {
        if constexpr (kCountsNegatives) {
            m_negatives += after < 0;
            m_negatives -= before < 0;
        }
    }
    // The values of an array are about to go.
    void forget(const Buffer<T>& array) {
        for (const T value : array) count(value, m_default);
    }

    void erase(const RVGraph* graph, std::size_t place) noexcept override {
        const auto found = m_arrays.find(graph);
        if (found != m_arrays.end() && place < found->second.size()) set(found->second[place], m_default);
    }
    void makeRoom(RVGraph* graph, const RVGraph* from, std::size_t placeThere) override {
        if (valueAt(from, placeThere) == m_default) return;
        Buffer<T>& array = arrayOf(graph);
        m_quickGraph = nullptr;
        cover(array, limitOf(graph));
    }
    void move(const RVGraphMember* member, const RVGraph* from, std::size_t placeThere) noexcept override {
        const T value = valueAt(from, placeThere);
        if (value == m_default) return;
        erase(from, placeThere);
        set(m_arrays.find(member->pHomeGraph())->second[placeOf(member)], value);
    }
    void giveTo(RVAlgorithmExtension* record) noexcept override {
        const auto* member = static_cast<const RVGraphMember*>(record->pOwner());
        const T value = valueAt(member->pHomeGraph(), placeOf(member));
        if (value == m_default) return;
        (record->*m_write)(value);
        erase(member->pHomeGraph(), placeOf(member));
    }
    void drop(const RVGraph* graph) noexcept override {
        const auto found = m_arrays.find(graph);
        if (found == m_arrays.end()) return;
        if (m_quickGraph == graph) m_quickGraph = nullptr;
        forget(found->second);
        m_arrays.erase(found);
    }

    const T m_default;
    T* m_quick = nullptr;
    std::size_t m_quickSize = 0;
    Arrays m_arrays;
    std::size_t m_negatives = 0;
    const Read m_read = nullptr;
    const Write m_write = nullptr;
};

template <class T>
using NodeColumn = MemberColumn<RVNode, T>;
template <class T>
using EdgeColumn = MemberColumn<RVEdge, T>;
// Costs, capacities and the like, of which it is known how many are below 0.
using NodeCosts = MemberColumn<RVNode, int, true>;
using EdgeCosts = MemberColumn<RVEdge, int, true>;

}  // namespace rv
