// Directed multigraphs of node and edge objects.
//
// A graph owns its nodes and edges. It keeps them in lists, and each node its out-edges and in-edges;
// whatever enters one of these lists, also by coming back or by changing an end, enters it at the end. That
// order is the graph order by which algorithms break ties. Self-loops and parallel edges are allowed.
//
//   RVAFactory factory;
//   RVGraph* graph = factory.newGraph();
//   RVNode* a = graph->addNode(0);
//   RVNode* b = graph->addNode(0);
//   RVEdge* edge = graph->addEdge(a, b, 0);  // from a to b
//   delete graph;
//
// Detaching. removeNode and removeEdge take an object out of the graph without destroying it. A detached
// object belongs to no graph to the outside (pOwnerGraph() is none), keeps its name, its fields and its
// records, and is destroyed with its graph at the latest.
//   - removeNode takes the node's edges out with it. They stay in the in- and out-lists of the removed node
//     and come back when both their ends are in the graph again, whatever the order in which nodes leave
//     and return.
//   - An edge taken out by removeEdge stands in no list and comes back by insertEdge only. It keeps its
//     ends; an end that is discarded meanwhile becomes none.
//   - Ends may be changed and edges inverted while they are detached.
// Discarding a node destroys its edges with it, but for those that removeEdge took out.
//
// Every operation on a single object is O(1), but for nodes, where it is O(degree). Objects of other
// graphs, and none, are refused: the operation then changes nothing and gives none.
//
// Objects are destroyed by discardNode and discardEdge or, with the same effect, by `delete`. A graph may
// be destroyed before or after its factory and before or after the data objects that refer to it.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "rv/foundation/buffer.h"
#include "rv/foundation/ends.h"
#include "rv/foundation/list.h"

class RVAFactory;
class RVAlgorithmExtension;
class RVEdge;
class RVGraph;
class RVGraphMember;
class RVGraphObject;
class RVNode;

namespace rv {
class DataGraph;
}

// Lists of nodes, edges and graphs. See RVDList for what all lists do.
class RV_EXPORT RVNodeDList : public RVDList {
    RV_OBJECT(RVNodeDList)

public:
    RVNodeDList() = default;
    RVDListCell* appendNode(RVNode* node);
    RVDListCell* prependNode(RVNode* node);
    RVNode* pFirstNode() const;
    RVNode* pLastNode() const;
    RVNode* pNodeInPosition(int i) const;  // counted from 1
    rv::ListRange<RVNode> begin() const { return rv::ListRange<RVNode>(pFirstCell()); }
    rv::ListRange<RVNode> end() const { return rv::ListRange<RVNode>(nullptr); }
};

class RV_EXPORT RVEdgeDList : public RVDList {
    RV_OBJECT(RVEdgeDList)

public:
    RVEdgeDList() = default;
    RVDListCell* appendEdge(RVEdge* edge);
    RVDListCell* prependEdge(RVEdge* edge);
    RVEdge* pFirstEdge() const;
    RVEdge* pLastEdge() const;
    RVEdge* pEdgeInPosition(int i) const;  // counted from 1
    rv::ListRange<RVEdge> begin() const { return rv::ListRange<RVEdge>(pFirstCell()); }
    rv::ListRange<RVEdge> end() const { return rv::ListRange<RVEdge>(nullptr); }
};

class RV_EXPORT RVGraphDList : public RVDList {
    RV_OBJECT(RVGraphDList)

public:
    RVGraphDList() = default;
    RVDListCell* appendGraph(RVGraph* graph);
    RVDListCell* prependGraph(RVGraph* graph);
    RVGraph* pFirstGraph() const;
    RVGraph* pLastGraph() const;
    RVGraph* pGraphInPosition(int i) const;  // counted from 1
    rv::ListRange<RVGraph> begin() const { return rv::ListRange<RVGraph>(pFirstCell()); }
    rv::ListRange<RVGraph> end() const { return rv::ListRange<RVGraph>(nullptr); }
};

// The records that data objects keep on one graph object, linked through the records themselves; those of
// the data that came to the graph last stand in front. Filled through RVAlgorithmData only.
class RVAlgorithmExtensionList {
public:
    RVAlgorithmExtensionList() = default;
    RVAlgorithmExtensionList(const RVAlgorithmExtensionList&) = delete;
    RVAlgorithmExtensionList& operator=(const RVAlgorithmExtensionList&) = delete;

    RVAlgorithmExtension* pFirstExtension() const { return m_pFirst; }

private:
    friend class rv::DataGraph;
    RVAlgorithmExtension* m_pFirst = nullptr;
};

// What can carry records of data objects.
class RV_EXPORT RVGraphObjectExtensions : public RVObject {
    RV_OBJECT_NO_COPY(RVGraphObjectExtensions)

public:
    RVGraphObjectExtensions() = default;
    RVAlgorithmExtensionList* pAnalysisExtensions() { return &m_analysisExtensions; }
    const RVAlgorithmExtensionList* pAnalysisExtensions() const { return &m_analysisExtensions; }

private:
    RVAlgorithmExtensionList m_analysisExtensions;
};

// Graph, node or edge.
class RV_EXPORT RVGraphObject : public RVGraphObjectExtensions {
    RV_OBJECT_NO_COPY(RVGraphObject)

public:
    RVGraphObject() = default;

    virtual bool isNode() const { return false; }
    virtual bool isEdge() const { return false; }

    // The name is copied; empty without one, and set to empty by none.
    virtual const wchar_t* pNameString() const = 0;
    virtual const wchar_t* pNameString(const wchar_t* text) = 0;
    // The same in UTF-8, in every locale. What is no UTF-8, or no character, becomes U+FFFD.
    std::string nameUtf8() const;
    void nameUtf8(std::string_view text);
    // Two slots for the caller and for algorithms that fill them for a time. Not owned.
    virtual void* pUserField() const = 0;
    virtual void* pUserField(void* field) = 0;
    virtual RVObject* pIUserField() const = 0;
    virtual RVObject* pIUserField(RVObject* field) = 0;

    // The graph that holds a node or edge; none for a graph and for a detached object.
    virtual RVGraphObject* pOwner() const = 0;
    // The factory of the object's graph; none when that has none or when the factory is gone.
    virtual RVAFactory* pFactory() const = 0;
};

// Node or edge.
class RV_EXPORT RVGraphMember : public RVGraphObject {
    RV_OBJECT_NO_COPY(RVGraphMember)

public:
    const wchar_t* pNameString() const override;
    const wchar_t* pNameString(const wchar_t* text) override;
    void* pUserField() const override;
    void* pUserField(void* field) override;
    RVObject* pIUserField() const override;
    RVObject* pIUserField(RVObject* field) override;
    RVGraphObject* pOwner() const override;
    RVAFactory* pFactory() const override;

    // The graph that holds the object; none while it is detached.
    RVGraph* pOwnerGraph() const { return m_attached ? m_pGraph : nullptr; }
    // The graph to which the object belongs, detached or not: the one that made it or last took it in.
    RVGraph* pHomeGraph() const { return m_pGraph; }

    // A small number, unique among the nodes (edges) that belong to a graph, for arrays beside the graph
    // (see RVGraph::nodeIndexLimit). Detaching does not change it; numbers of destroyed objects are given
    // again.
    int denseIndex() const { return m_index; }

    rv::KeyHash keyHash() const override { return {m_hash, false}; }
    std::uint32_t memberHash() const { return m_hash; }

    // Destroys the object as discardNode or discardEdge of its graph does.
    static void operator delete(RVGraphMember* member, std::destroying_delete_t);

protected:
    RVGraphMember() = default;

private:
    friend class RVGraph;
    friend class RVNode;
    friend class RVEdge;
    friend class rv::GraphAccess;

    RVGraph* m_pGraph = nullptr;
    int m_index = 0;
    std::uint32_t m_hash : 28 = 0;
    bool m_attached : 1 = false;
    bool m_removed : 1 = false;  // an edge taken out by itself
    bool m_adopted : 1 = false;  // its memory belongs to another graph
};

namespace rv {
// Where a member stands in arrays by dense index.
inline std::size_t placeOf(const RVGraphMember* member) {
    return static_cast<std::size_t>(member->denseIndex());
}
}  // namespace rv

class RV_EXPORT RVNode : public RVGraphMember {
    RV_OBJECT_NO_COPY(RVNode)

public:
    bool isNode() const override { return true; }

    int inDegree() const { return m_inEdges.length(); }
    int outDegree() const { return m_outEdges.length(); }
    // A self-loop counts twice.
    int degree() const { return inDegree() + outDegree(); }

    // The first one, or none.
    RVEdge* pInEdge() const { return m_inEdges.pFirstEdge(); }
    RVEdge* pOutEdge() const { return m_outEdges.pFirstEdge(); }

    RVEdgeDList* pInEdgeList() const { return const_cast<RVEdgeDList*>(&m_inEdges); }
    RVEdgeDList* pOutEdgeList() const { return const_cast<RVEdgeDList*>(&m_outEdges); }

private:
    friend class RVGraph;
    friend class RVEdge;
    friend class rv::GraphAccess;
    RVNode();

    RVDListCell m_graphCell{this};
    RVEdgeDList m_outEdges;
    RVEdgeDList m_inEdges;
};

class RV_EXPORT RVEdge : public RVGraphMember {
    RV_OBJECT_NO_COPY(RVEdge)

public:
    bool isEdge() const override { return true; }

    RVNode* pSourceNode() const { return m_pSource; }
    RVNode* pTargetNode() const { return m_pTarget; }
    // The other end as seen from the given one; the node itself for a self-loop, none for a node that is
    // no end.
    RVNode* pOtherNode(const RVNode* node) const {
        return node == nullptr     ? nullptr
               : node == m_pSource ? m_pTarget
               : node == m_pTarget ? m_pSource
                                   : nullptr;
    }

    // Moves one end. The edge goes to the end of the new node's list and keeps its place in all others; it
    // leaves the graph when the new end is detached. Nothing happens when the end stays the same.
    void changeSourceNode(RVNode* node);
    void changeTargetNode(RVNode* node);
    // Exchanges source and target. The edge keeps its place in the graph's edge list and goes to the end
    // of its nodes' lists.
    virtual void invertDirection();

private:
    friend class RVGraph;
    friend class rv::GraphAccess;
    RVEdge() = default;

    rv::Ends denseEnds() const {
        return {static_cast<rv::Index>(m_pSource->m_index), static_cast<rv::Index>(m_pTarget->m_index)};
    }
    void leaveLists();
    void leaveSource();
    void leaveTarget();
    void enterLists(RVNode* preferred);

    RVNode* m_pSource = nullptr;
    RVNode* m_pTarget = nullptr;
    RVDListCell m_outCell{this};
    RVDListCell m_inCell{this};
    RVDListCell m_graphCell{this};
};

namespace rv {

class Slab;

// Whoever keeps something about a graph's objects hears of their end. Each watches one graph at a time.
// Internal to the library.
class RV_EXPORT GraphObserver {
public:
    virtual void graphDies(RVGraph* graph) = 0;
    virtual void memberDies(RVGraphMember* member) = 0;
    // The member has come to another graph, where it has a new index.
    virtual void memberMoved(RVGraphMember* member, RVGraph* from, int indexThere) = 0;

protected:
    ~GraphObserver() = default;

private:
    friend class ::RVGraph;
    std::size_t m_place = 0;  // among the observers of the graph
};

class GraphCache;
struct GraphStorage;
struct FactoryLink;

// Values by dense index, made when the first one is set.
template <class T>
class Column {
public:
    T get(int index) const { return isInside(index) ? m_values[static_cast<std::size_t>(index)] : T{}; }
    void set(int index, T value, int limit) {
        if (!isInside(index)) cover(limit);
        m_values[static_cast<std::size_t>(index)] = value;
    }
    // Makes room for all indices below the limit.
    void cover(int limit) {
        const auto size = static_cast<std::size_t>(limit);
        if (size > m_values.capacity()) m_values.reserve(std::max(size, 2 * m_values.capacity()));
        if (size > m_values.size()) m_values.resize(size);
    }
    void reset(int index) {
        if (isInside(index)) m_values[static_cast<std::size_t>(index)] = T{};
    }
    bool isEmpty() const { return m_values.empty(); }
    void clear() { std::vector<T>().swap(m_values); }
    std::vector<T>& values() { return m_values; }
    const std::vector<T>& values() const { return m_values; }

private:
    bool isInside(int index) const { return static_cast<std::size_t>(index) < m_values.size(); }
    std::vector<T> m_values;
};

}  // namespace rv

class RV_EXPORT RVGraph : public RVGraphObject {
    RV_OBJECT_NO_COPY(RVGraph)

public:
    // A graph without a factory. Algorithms need graphs that a factory made.
    RVGraph();
    explicit RVGraph(const RVAFactory* factory);

    // The flags have no meaning and are passed as 0.
    RVNode* addNode(int flag = 0);
    // A new edge from source to target. It waits outside the graph when one of them is detached.
    RVEdge* addEdge(RVNode* source, RVNode* target, int flag = 0);

    // Detach an object of this graph and give it; none when it is not in this graph. removeEdge also takes
    // an edge that left with a node, which from then on comes back by insertEdge only.
    RVNode* removeNode(RVNode* node);
    RVEdge* removeEdge(RVEdge* edge);

    // Attach a detached node again, with its waiting edges: first its out-edges, then its in-edges. None
    // for a node that is in a graph.
    RVNode* insertNode(RVNode* node);
    // Attaches an edge between two nodes of this graph, which need not be its old ends. An edge that
    // already is in this graph moves to the end of the lists; one that is in another graph is refused. The
    // edge waits outside the graph when one of the nodes is detached.
    RVEdge* insertEdge(RVEdge* edge, RVNode* source, RVNode* target);
    // Both also take detached objects of another graph, which then belong to this one.

    // Destroy an object that belongs to this graph, attached or not.
    void discardNode(RVNode* node);
    void discardEdge(RVEdge* edge);

    int numberOfNodes() const { return m_nodes.length(); }
    int numberOfEdges() const { return m_edges.length(); }
    RVNode* pFirstNode() const { return m_nodes.pFirstNode(); }
    RVNode* pLastNode() const { return m_nodes.pLastNode(); }
    RVEdge* pFirstEdge() const { return m_edges.pFirstEdge(); }
    RVEdge* pLastEdge() const { return m_edges.pLastEdge(); }
    RVNodeDList* pNodeList() const { return const_cast<RVNodeDList*>(&m_nodes); }
    RVEdgeDList* pEdgeList() const { return const_cast<RVEdgeDList*>(&m_edges); }

    // All dense indices of nodes (edges) that belong to this graph are at least 0 and below this.
    int nodeIndexLimit() const { return m_nodeIndices.limit; }
    int edgeIndexLimit() const { return m_edgeIndices.limit; }

    // Grows with every change of the graph's nodes, edges, ends or orders.
    std::uint64_t modificationCount() const { return m_modifications; }

    // Algorithms keep the graph as arrays as well, with it, until it changes: 25 to 50 bytes an edge. This
    // gives the memory back; the next question makes the arrays again. REQUIRES: no algorithm is running on
    // the graph.
    void releaseSnapshot();

    const wchar_t* pNameString() const override;
    const wchar_t* pNameString(const wchar_t* text) override;
    void* pUserField() const override;
    void* pUserField(void* field) override;
    RVObject* pIUserField() const override;
    RVObject* pIUserField(RVObject* field) override;
    RVGraphObject* pOwner() const override;
    RVAFactory* pFactory() const override;

private:
    friend class RVGraphMember;
    friend class RVNode;
    friend class RVEdge;
    friend class rv::GraphAccess;

    // The dense indices of the nodes or of the edges.
    struct Indices {
        int take();
        std::uint32_t nextSerial() { return serial++; }
        void giveBack(int index);
        int limit = 0;
        std::vector<int> unused;
        std::uint32_t serial = 0;  // counts the members made, for hashes that no later member has again
    };
    // What members may have besides their fixed part, by dense index.
    struct Fields {
        rv::Column<std::wstring*> names;
        rv::Column<void*> user;
        rv::Column<RVObject*> object;
    };
    // One end of a detached edge, in the chain of the node at which it waits.
    struct Wait {
        RVDListCell* cell;
        std::uint32_t next;
        std::uint32_t previous;
    };

    Indices& indicesOf(const RVGraphMember* member) {
        return member->isNode() ? m_nodeIndices : m_edgeIndices;
    }
    Fields& fieldsOf(const RVGraphMember* member) { return member->isNode() ? m_nodeFields : m_edgeFields; }
    bool isMine(const RVGraphMember* member) const { return member != nullptr && member->m_pGraph == this; }

    template <class Member>
    Member* makeMember(void* memory, Indices& indices, std::uint32_t salt);
    void destroyMember(RVGraphMember* member, rv::Slab& slab);
    void adopt(RVGraphMember* member);
    void setName(RVGraphMember* member, const wchar_t* text);

    void attach(RVEdge* edge);
    void enterGraph(RVNode* node);
    void leaveGraph(RVNode* node);
    void enterGraph(RVEdge* edge);
    void leaveGraph(RVEdge* edge);
    void note(RVNode* node, int change);
    void note(RVEdge* edge, int change);
    void coverIndices();
    void reviveEdges(RVNode* node);
    void prepareWaits(std::size_t count);
    void wait(RVNode* node, RVDListCell* cell);
    void stopWaiting(RVNode* node, RVDListCell* cell);
    std::vector<RVDListCell*> takeWaits(RVNode* node);
    std::uint32_t addObserver(rv::GraphObserver* observer);
    void removeObserver(rv::GraphObserver* observer);
    template <class F>
    void tellObservers(F tell);
    void noteForeignEdge(RVEdge* edge, RVNode* other);
    void severForeignEdges();
    template <class Member, class F>
    void forEachMember(rv::Slab rv::GraphStorage::*slab, F f);

    std::shared_ptr<rv::GraphStorage> m_storage;
    RVNodeDList m_nodes;
    RVEdgeDList m_edges;
    Indices m_nodeIndices;
    Indices m_edgeIndices;
    std::uint32_t m_hashSalt;
    std::uint64_t m_modifications = 0;
    // What is attached, by dense index: the node, or nullptr; the edge, or anything; its ends, or kNoIndex.
    // The arrays cover all indices when they are asked for. From then on they change with their objects;
    // what comes with an index beyond them is counted, and stands at the end of its list.
    rv::Buffer<RVNode*> m_nodeAt;
    rv::Buffer<RVEdge*> m_edgeAt;
    rv::Buffer<rv::Ends> m_ends;
    int m_newNodes = 0;
    int m_newEdges = 0;
    bool m_nodesInIndexOrder = true;  // the node list stands in the order of dense indices
    bool m_edgesInIndexOrder = true;  // the edge list likewise
    bool m_listsInGraphOrder = true;  // every in- and out-list stands in the order of the edge list
    bool m_hasForeignEdges = false;   // some detached edge may join nodes of this and of another graph

    Fields m_nodeFields;
    Fields m_edgeFields;
    std::vector<Wait> m_waits;
    std::size_t m_waiting = 0;              // entries in use
    std::uint32_t m_freeWait = 0;           // position + 1, 0 for none
    rv::Column<std::uint32_t> m_waitHeads;  // by node; position + 1, 0 for none

    std::vector<rv::GraphObserver*> m_observers;  // nullptr where one has gone, but for the last
    std::size_t m_goneObservers = 0;
    std::uint32_t m_nextObserverStamp = 1;
    std::vector<std::shared_ptr<rv::GraphStorage>> m_adoptedStorage;

    mutable std::mutex m_mutex;  // for what changes while the graph does not
    mutable std::unique_ptr<rv::GraphCache> m_cache;

    std::shared_ptr<rv::FactoryLink> m_factory;
    std::wstring m_name;
    void* m_userField = nullptr;
    RVObject* m_objectUserField = nullptr;
};

// Makes graphs. A factory may be shared by threads that each use graphs of their own, and may be destroyed
// before its graphs, which then have none.
class RV_EXPORT RVAFactory : public RVObject {
    RV_OBJECT_NO_COPY(RVAFactory)

public:
    RVAFactory();
    // A new empty graph; the caller deletes it.
    virtual RVGraph* newGraph();

private:
    friend class RVGraph;
    std::shared_ptr<rv::FactoryLink> m_link;
};

inline RVDListCell* RVNodeDList::appendNode(RVNode* node) { return newLastCell(node); }
inline RVDListCell* RVNodeDList::prependNode(RVNode* node) { return newFirstCell(node); }
inline RVNode* RVNodeDList::pFirstNode() const { return static_cast<RVNode*>(pFirstObject()); }
inline RVNode* RVNodeDList::pLastNode() const { return static_cast<RVNode*>(pLastObject()); }
inline RVNode* RVNodeDList::pNodeInPosition(int i) const {
    return static_cast<RVNode*>(pObjectInPosition(i));
}
inline RVDListCell* RVEdgeDList::appendEdge(RVEdge* edge) { return newLastCell(edge); }
inline RVDListCell* RVEdgeDList::prependEdge(RVEdge* edge) { return newFirstCell(edge); }
inline RVEdge* RVEdgeDList::pFirstEdge() const { return static_cast<RVEdge*>(pFirstObject()); }
inline RVEdge* RVEdgeDList::pLastEdge() const { return static_cast<RVEdge*>(pLastObject()); }
inline RVEdge* RVEdgeDList::pEdgeInPosition(int i) const {
    return static_cast<RVEdge*>(pObjectInPosition(i));
}
inline RVDListCell* RVGraphDList::appendGraph(RVGraph* graph) { return newLastCell(graph); }
inline RVDListCell* RVGraphDList::prependGraph(RVGraph* graph) { return newFirstCell(graph); }
inline RVGraph* RVGraphDList::pFirstGraph() const { return static_cast<RVGraph*>(pFirstObject()); }
inline RVGraph* RVGraphDList::pLastGraph() const { return static_cast<RVGraph*>(pLastObject()); }
inline RVGraph* RVGraphDList::pGraphInPosition(int i) const {
    return static_cast<RVGraph*>(pObjectInPosition(i));
}
