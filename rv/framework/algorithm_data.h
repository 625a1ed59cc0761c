// What algorithms read and write: data objects, and the records that they keep on nodes and edges.
//
// A data object is about a graph, its associated graph. Values per node and per edge stand in columns (see
// columns.h) or in records, made when they are first needed by its virtual factories
// newNodeAlgorithmExtension and newEdgeAlgorithmExtension; a record stays through detaching and re-attaching
// of its object. It also maps the objects of one graph to their copies in another and back.
//
// A caller's factory gives `new MyRecord(node, this)`; the data owns it from then on.
//
// Lifetimes. Data and graphs may be destroyed in any order. When data goes, its records leave the objects;
// when a graph goes, the data loses its records and mappings there and no longer names it; when a node or
// edge is discarded, its records and mappings go with it. Nothing of them is ever found again by a later
// object at the same address.
//
// Looking up a record costs a walk over the records of the object, those of the data that last came to the
// graph first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <type_traits>
#include <typeinfo>

#include "rv/foundation/graph.h"
#include "rv/foundation/watch.h"

class RVAlgorithmData;

namespace rv {
class ColumnBase;
class DataGraph;
class DataGraphs;
}  // namespace rv

// A record of one data object on one node or edge.
class RV_EXPORT RVAlgorithmExtension : public RVObject {
public:
    RVAlgorithmExtension() = default;
    RVAlgorithmExtension(RVGraphObject* owner, const RVAlgorithmData* data)
        : m_pOwner(owner), m_pData(data) {}
    // A copy belongs to no object and to no data.
    RVAlgorithmExtension(const RVAlgorithmExtension& other, RVDeepFlagEnum = RVShallow) : RVObject(other) {}
    // Owner and data stay.
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment)
    RVAlgorithmExtension& operator=(const RVAlgorithmExtension&) { return *this; }
    ~RVAlgorithmExtension() override;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVAlgorithmExtension* cloneObject() const override;
    RVAlgorithmExtension* cloneAttributes() const override;
    static RVAlgorithmExtension* castDown(RVObject* object) {
        return static_cast<RVAlgorithmExtension*>(object);
    }

    RVGraphObject* pOwner() const { return m_pOwner; }
    const RVAlgorithmData* pData() const { return m_pData; }
    // The next record of the same object, or none.
    RVAlgorithmExtension* pNextExtension() const { return m_pNext; }

    // Takes the record from its object and its data first.
    static void operator delete(RVAlgorithmExtension* record, std::destroying_delete_t);

protected:
    // To be told by a plain record (see RV_PLAIN_RECORD) when it comes to own memory.
    void noteOwnedMemory() const;

private:
    friend class RVAlgorithmData;
    friend class rv::DataGraph;
    friend class rv::DataGraphs;

    // Where the memory of a record comes from; any other value is a place in the data's list of records that
    // are on the heap.
    static constexpr std::uint32_t kLoose = 0xFFFFFFFF;  // not in the hands of its data
    static constexpr std::uint32_t kSlab = 0xFFFFFFFE;   // the data's slab for the object's graph
    // With the place in the data's list of such records: the slab for a graph that the object has left.
    static constexpr std::uint32_t kSettled = 0x80000000;

    RVAlgorithmExtension* m_pNext = nullptr;
    RVGraphObject* m_pOwner = nullptr;
    const RVAlgorithmData* m_pData = nullptr;
    std::uint32_t m_stamp = 0;  // of the data at the graph: grows in the order in which data came
    std::uint32_t m_place = kLoose;
};

// Declares the object protocol of a plain record class: its destructor has nothing to do, unless the record
// called noteOwnedMemory, so its records may be released all at once.
#define RV_PLAIN_RECORD(C)      \
    RV_OBJECT(C)                \
public:                         \
    using PlainRecordClass = C; \
                                \
private:

class RV_EXPORT RVNodeAlgorithmExtension : public RVAlgorithmExtension {
    RV_PLAIN_RECORD(RVNodeAlgorithmExtension)

public:
    RVNodeAlgorithmExtension() = default;
    RVNodeAlgorithmExtension(RVNode* node, const RVAlgorithmData* data) : RVAlgorithmExtension(node, data) {}
    RVNode* pOwnerNode() const { return static_cast<RVNode*>(pOwner()); }
};

class RV_EXPORT RVEdgeAlgorithmExtension : public RVAlgorithmExtension {
    RV_PLAIN_RECORD(RVEdgeAlgorithmExtension)

public:
    RVEdgeAlgorithmExtension() = default;
    RVEdgeAlgorithmExtension(RVEdge* edge, const RVAlgorithmData* data) : RVAlgorithmExtension(edge, data) {}
    RVEdge* pOwnerEdge() const { return static_cast<RVEdge*>(pOwner()); }
};

class RV_EXPORT RVAlgorithmData : public RVObject {
public:
    // Lets pointers to the data know when they end.
    rv::Watched& watched() const { return m_watched; }

    RVAlgorithmData();
    explicit RVAlgorithmData(RVGraph* graph);
    // A copy names the same graphs, has records of its own with the same values, and the same mappings.
    // Secondary graphs stay with their data.
    RVAlgorithmData(const RVAlgorithmData& other, RVDeepFlagEnum flag = RVShallow);
    RVAlgorithmData& operator=(const RVAlgorithmData& other);
    ~RVAlgorithmData() override;
    void copyObject(const RVObject* other) override;
    void copyAttributes(const RVObject* other) override;
    RVAlgorithmData* cloneObject() const override;
    RVAlgorithmData* cloneAttributes() const override;
    static RVAlgorithmData* castDown(RVObject* object) { return static_cast<RVAlgorithmData*>(object); }

    // The graph that the data is about; none when there is none or it is gone.
    RVGraph* pAssociatedGraph() const { return m_pAssociatedGraph; }
    RVGraph* pAssociatedGraph(RVGraph* graph);
    // The graph of which the associated graph is a copy; the associated graph itself unless another one was
    // set and still exists.
    RVGraph* pInputGraph() const { return m_pInputGraph == nullptr ? m_pAssociatedGraph : m_pInputGraph; }
    RVGraph* pInputGraph(RVGraph* graph);

    // Copy and original of an object; the argument itself where nothing was recorded. Each setter records
    // its own direction only and gives its second argument; none forgets the direction.
    RVNode* pCopyNode(RVNode* original) const;
    RVNode* pCopyNode(RVNode* original, RVNode* copy);
    RVNode* pOriginalNode(RVNode* copy) const;
    RVNode* pOriginalNode(RVNode* copy, RVNode* original);
    RVEdge* pCopyEdge(RVEdge* original) const;
    RVEdge* pCopyEdge(RVEdge* original, RVEdge* copy);
    RVEdge* pOriginalEdge(RVEdge* copy) const;
    RVEdge* pOriginalEdge(RVEdge* copy, RVEdge* original);

    // Fills an empty graph with a copy of another, with names and all orders, and records copy and original
    // of every node and edge in both directions. O(n + m).
    void copyGraph(const RVGraph* original, RVGraph* copy);

    // Extra graphs that are built during a run. They are destroyed with the data; take a graph out of the
    // list to keep it, or to destroy it before.
    RVGraphDList* pSecondaryGraphs() const { return m_secondaryGraphs.get(); }

    // This data's record of a node or edge, made on the first request. None for a graph and for none.
    RVAlgorithmExtension* pAlgorithmExtension(RVGraphObject* object) const {
        RVAlgorithmExtension* record = pExistingExtension(object);
        return record != nullptr ? record : makeExtension(object);
    }
    // The same without making one.
    RVAlgorithmExtension* pExistingExtension(const RVGraphObject* object) const {
        if (object == nullptr) return nullptr;
        RVAlgorithmExtension* record = object->pAnalysisExtensions()->pFirstExtension();
        while (record != nullptr && record->m_pData != this) record = record->m_pNext;
        return record;
    }
    // Destroys this data's records on the objects of a graph; values that records hold become the default.
    void deleteDataReferences(RVGraph* graph);

protected:
    // Make the record of a node or edge. The result is owned by the data; none means no record.
    virtual RVNodeAlgorithmExtension* newNodeAlgorithmExtension(RVNode* node);
    virtual RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge* edge);
    // The list in which the data's records of an object stand: the object's analysis extensions.
    virtual RVAlgorithmExtensionList* pAlgorithmExtensionList(RVGraphObjectExtensions* extensions) const;

    // Whether the factories are those of the library's own class: then a record that is not there reads as
    // a new one would, without being made.
    virtual bool hasStandardRecords() const { return false; }

    // A new record in the data's own memory, for the factories of the library.
    template <class Record, class Object>
    Record* newRecord(Object* object) {
        void* memory = recordMemory(object, sizeof(Record), isPlain<Record>());
        if (memory == nullptr) return new Record(object, this);
        auto* record = ::new (memory) Record(object, this);
        record->m_place = RVAlgorithmExtension::kSlab;
        return record;
    }

    // The record of an object, made if need be; none without an object.
    template <class Record>
    Record* record(RVGraphObject* object) const {
        return static_cast<Record*>(pAlgorithmExtension(object));
    }
    // The record for reading: one with the defaults where there is none.
    template <class Record>
    const Record& constRecord(RVGraphObject* object) const {
        static const Record defaults;
        const RVAlgorithmExtension* found = pExistingExtension(object);
        if (found == nullptr && object != nullptr && !hasStandardRecords()) found = makeExtension(object);
        return found == nullptr ? defaults : *static_cast<const Record*>(found);
    }
    // Read a value of the record of an object, and store one and give it; nothing is stored without an
    // object.
    template <class Record, class T>
    T load(RVGraphObject* object, T (Record::*read)() const) const {
        return (constRecord<Record>(object).*read)();
    }
    template <class Record, class T>
    T store(RVGraphObject* object, T (Record::*write)(T), std::type_identity_t<T> value) {
        if (auto* own = record<Record>(object)) (own->*write)(value);
        return value;
    }

private:
    friend class RVAlgorithmExtension;
    friend class rv::ColumnBase;
    friend class rv::DataGraph;
    friend class rv::DataGraphs;

    template <class Record>
    static constexpr bool isPlain() {
        return std::is_same_v<typename Record::PlainRecordClass, Record>;
    }

    RVAlgorithmExtension* makeExtension(RVGraphObject* object) const;
    bool mayHaveRecords() const;
    template <class F>
    void forEachColumn(F f) const;
    void* recordMemory(RVGraphMember* object, std::size_t size, bool plain);
    void copyExtension(const RVAlgorithmExtension& source);
    void destroySecondaryGraphs();

    RVGraph* m_pAssociatedGraph = nullptr;
    RVGraph* m_pInputGraph = nullptr;
    rv::Owned<RVGraphDList> m_secondaryGraphs;
    rv::ColumnBase* m_pLastColumn = nullptr;  // each knows the one before
    std::unique_ptr<rv::DataGraphs> m_graphs;
    mutable rv::Watched m_watched;
};

// Declares the object protocol of a data class of the library (see hasStandardRecords).
#define RV_DATA_OBJECT(C)                                                           \
    RV_OBJECT(C)                                                                    \
protected:                                                                          \
    bool hasStandardRecords() const override { return typeid(*this) == typeid(C); } \
                                                                                    \
private:

// Declare what records of nodes or edges a class of the library makes; the class goes on with private
// members.
#define RV_NODE_RECORDS(Record)                                                  \
protected:                                                                       \
    RVNodeAlgorithmExtension* newNodeAlgorithmExtension(RVNode* node) override { \
        return newRecord<Record>(node);                                          \
    }                                                                            \
                                                                                 \
private:                                                                         \
    using NodeRecord = Record;
#define RV_EDGE_RECORDS(Record)                                                  \
protected:                                                                       \
    RVEdgeAlgorithmExtension* newEdgeAlgorithmExtension(RVEdge* edge) override { \
        return newRecord<Record>(edge);                                          \
    }                                                                            \
                                                                                 \
private:                                                                         \
    using EdgeRecord = Record;

// The question that a caller puts to an algorithm. Values can be asked for by name; the base knows none.
class RV_EXPORT RVAlgorithmInputData : public RVAlgorithmData {
    RV_DATA_OBJECT(RVAlgorithmInputData)

public:
    RVAlgorithmInputData() = default;
    explicit RVAlgorithmInputData(RVGraph* graph) : RVAlgorithmData(graph) {}

    virtual bool hasField(const char* name) const;
    virtual bool hasNodeField(const char* name) const;
    virtual bool hasEdgeField(const char* name) const;
    virtual int intField(const char* name, RVGraphObject* object = nullptr) const;
    virtual double doubleField(const char* name, RVGraphObject* object = nullptr) const;
    virtual RVObject* pObjectField(const char* name, RVGraphObject* object = nullptr) const;
    // Takes over what this input and the other one both know by name.
    virtual void copyData(const RVAlgorithmInputData* other);
};

// The answer of an algorithm.
class RV_EXPORT RVAlgorithmOutputData : public RVAlgorithmData {
    RV_DATA_OBJECT(RVAlgorithmOutputData)

public:
    RVAlgorithmOutputData() = default;

    // Empties the results. Called before a run writes results, with the output bound to the graph of the run
    // before, if that was another, and then with the input's graph.
    virtual void reset() = 0;
};
