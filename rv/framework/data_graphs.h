// What a data object keeps about graphs: records on their objects, where the objects are mapped to, and word
// of their end, which it also passes on to the columns. Internal to the library, not installed.
//
// A data object has one DataGraphs, and that one DataGraph for every graph which the data names or about
// which it keeps anything. It comes when it is first needed and stays until the graph or the data ends.
//
// Records. A record that is not loose stands in two places: in the list of its object, and with the DataGraph
// of the object's graph, which owns it. m_place of the record tells where there:
//   - in the slab for nodes or for edges, where those of the library are made;
//   - among the records on the heap, which callers' factories make;
//   - among the settled ones, which have come with their objects from other graphs. The slab where one was
//     made keeps its memory, or the data does when that graph has ended.
// The records of an object stand in the order of the stamps that its graph gave the data, last one first.
//
// Mappings. Copies and originals are arrays by dense index; nullptr means that nothing was recorded. No value
// is an object that has ended. A value is a stray unless the object that it leads to is mapped back to where
// it stands. When an object ends, its own values tell which others lead to it; strays have to be looked for,
// which is done only where m_strays of the object is not 0, and in graphs that are linked to its own. Graphs
// are linked as soon as a value leads from one to the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <list>
#include <optional>
#include <unordered_map>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/slab.h"
#include "rv/framework/columns.h"

namespace rv {

constexpr std::size_t kNodes = 0;
constexpr std::size_t kEdges = 1;
inline std::size_t kindOf(const RVGraphMember* member) { return member->isNode() ? kNodes : kEdges; }
// Above all dense indices of a graph's nodes or edges.
inline int indexLimit(const RVGraph* graph, std::size_t kind) {
    return kind == kNodes ? graph->nodeIndexLimit() : graph->edgeIndexLimit();
}

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

    // The record's owner is an object of this graph. Either all is done, or the record stays loose.
    void enlist(RVAlgorithmExtension* record);
    void discard(RVAlgorithmExtension* record);
    void* memory(std::size_t kind, std::size_t size, bool plain);
    // Takes all records from their objects and destroys them.
    void dropRecords();
    void noteOwnedMemory() { m_plain = false; }
    // Calls f(record) for all records.
    template <class F>
    void forEachRecord(F f);

private:
    friend class DataGraphs;
    using Record = RVAlgorithmExtension;
    // Some mapping may lead to the other graph, or back. Both graphs know the place of the other one's link.
    struct Link {
        DataGraph* graph;
        std::size_t placeThere;
    };

    RVAlgorithmExtension** listHead(RVGraphObject* owner) const;
    // This data's, or nullptr.
    Record* recordOf(RVGraphMember* member) const;
    void link(Record* record) const;
    void unlink(Record* record) const;
    static void endInPlace(Record* record);
    void destroy(Record* record);
    void release();
    void takeFrom(std::vector<Record*>& records, std::uint32_t place, std::uint32_t flag);
    void makeRoomForMoved(const RVGraphMember* member, int indexThere);
    void forgetMoved(RVGraphMember* member, int indexThere);

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

    // A value that is going away, or whose graph is, leaves every mapping. The index is that which the member
    // has, or had, in the graph.
    void forgetMember(RVGraphMember* member, DataGraph& home, int index);
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

}  // namespace rv

template <class F>
void RVAlgorithmData::forEachColumn(F f) const {
    for (rv::ColumnBase* column = m_pLastColumn; column != nullptr; column = column->m_previous) f(*column);
}
