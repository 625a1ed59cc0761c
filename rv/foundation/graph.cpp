#include "rv/foundation/graph.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <utility>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/prefetch.h"
#include "rv/foundation/slab.h"

RV_OBJECT_IMPL(RVNodeDList)
RV_OBJECT_IMPL(RVEdgeDList)
RV_OBJECT_IMPL(RVGraphDList)

RVGraphObjectExtensions::~RVGraphObjectExtensions() = default;
RV_OBJECT_NO_COPY_IMPL(RVGraphObjectExtensions)
RVGraphObject::~RVGraphObject() = default;
RV_OBJECT_NO_COPY_IMPL(RVGraphObject)
RVGraphMember::~RVGraphMember() = default;
RV_OBJECT_NO_COPY_IMPL(RVGraphMember)
RVNode::~RVNode() = default;
RV_OBJECT_NO_COPY_IMPL(RVNode)
RVEdge::~RVEdge() = default;
RV_OBJECT_NO_COPY_IMPL(RVEdge)
RV_OBJECT_NO_COPY_IMPL(RVGraph)
RV_OBJECT_NO_COPY_IMPL(RVAFactory)

namespace rv {

struct GraphStorage {
    Slab nodes{sizeof(RVNode)};
    Slab edges{sizeof(RVEdge)};
};

// Shared by a factory and its graphs; tells the graphs when the factory is gone.
struct FactoryLink {
    RVAFactory* factory;
};

}  // namespace rv

void RVGraph::releaseSnapshot() {
    const std::lock_guard lock(m_mutex);
    m_cache.reset();
    m_nodeAt = {};
    m_edgeAt = {};
    m_ends = {};
    m_newNodes = numberOfNodes();
    m_newEdges = numberOfEdges();
}

// Members: fields that live in the graph

const wchar_t* RVGraphMember::pNameString() const {
    const std::wstring* name = m_pGraph->fieldsOf(this).names.get(m_index);
    return name == nullptr ? L"" : name->c_str();
}

const wchar_t* RVGraphMember::pNameString(const wchar_t* text) {
    m_pGraph->setName(this, text);
    return pNameString();
}

void* RVGraphMember::pUserField() const { return m_pGraph->fieldsOf(this).user.get(m_index); }

void* RVGraphMember::pUserField(void* field) {
    m_pGraph->fieldsOf(this).user.set(m_index, field, m_pGraph->indicesOf(this).limit);
    return field;
}

RVObject* RVGraphMember::pIUserField() const { return m_pGraph->fieldsOf(this).object.get(m_index); }

RVObject* RVGraphMember::pIUserField(RVObject* field) {
    m_pGraph->fieldsOf(this).object.set(m_index, field, m_pGraph->indicesOf(this).limit);
    return field;
}

RVGraphObject* RVGraphMember::pOwner() const { return pOwnerGraph(); }

RVAFactory* RVGraphMember::pFactory() const { return m_pGraph->pFactory(); }

void RVGraphMember::operator delete(RVGraphMember* member, std::destroying_delete_t) {
    if (member->isNode()) {
        member->m_pGraph->discardNode(static_cast<RVNode*>(member));
    } else {
        member->m_pGraph->discardEdge(static_cast<RVEdge*>(member));
    }
}

RVNode::RVNode() { m_outEdges.m_readOnly = m_inEdges.m_readOnly = true; }

// Edges and lists
//
// An edge is attached, waiting with a node, or removed.
//   - Attached: both ends are attached, and the edge stands in the graph's list and in both ends' lists.
//   - Waiting with a node: at least one end is detached. The edge stands in the out- or in-list of exactly
//     one detached end, its host; the other end notes in its wait chain that the edge exists. A self-loop
//     stands in both lists of its node.
//   - Removed by itself: it stands in no list; both ends note it in their wait chains.
// So an attached node lists attached edges only, and every edge is found from both its ends.

// Takes the edge out of whatever lists and chains it stands in.
void RVEdge::leaveLists() {
    if (m_attached) m_pGraph->leaveGraph(this);
    leaveSource();
    leaveTarget();
}

void RVEdge::leaveSource() {
    if (m_outCell.isInList()) {
        m_pSource->m_outEdges.unlink(&m_outCell);
        m_outCell.setOut(nullptr);
    } else if (m_outCell.isWaiting()) {
        m_pSource->m_pGraph->stopWaiting(m_pSource, &m_outCell);
    }
}

void RVEdge::leaveTarget() {
    if (m_inCell.isInList()) {
        m_pTarget->m_inEdges.unlink(&m_inCell);
        m_inCell.setOut(nullptr);
    } else if (m_inCell.isWaiting()) {
        m_pTarget->m_pGraph->stopWaiting(m_pTarget, &m_inCell);
    }
}

// Puts an edge that stands nowhere where its ends and its state say. The preferred end becomes the host if
// it is detached.
void RVEdge::enterLists(RVNode* preferred) {
    RVNode* host = nullptr;
    if (!m_removed && m_pSource->m_attached && m_pTarget->m_attached) {
        if (m_pSource->m_pGraph == m_pTarget->m_pGraph) {
            m_pGraph->attach(this);
            return;
        }
        m_removed = true;  // one of the ends has gone to another graph
    }
    if (!m_removed) {
        host = m_pSource->m_attached ? m_pTarget : m_pSource;
        if (preferred == m_pTarget && !m_pTarget->m_attached) host = m_pTarget;
    }
    if (m_pSource != nullptr) {
        if (m_pSource == host) {
            host->m_outEdges.linkLast(&m_outCell);
        } else {
            m_pSource->m_pGraph->wait(m_pSource, &m_outCell);
        }
    }
    if (m_pTarget != nullptr) {
        if (m_pTarget == host) {
            host->m_inEdges.linkLast(&m_inCell);
        } else {
            m_pTarget->m_pGraph->wait(m_pTarget, &m_inCell);
        }
    }
}

void RVEdge::changeSourceNode(RVNode* node) {
    if (!m_pGraph->isMine(node) || node == m_pSource) return;
    ++m_pGraph->m_modifications;
    m_pGraph->m_listsInGraphOrder = false;
    if (m_attached && node->m_attached) {
        m_pSource->m_outEdges.unlink(&m_outCell);
        m_pSource = node;
        node->m_outEdges.linkLast(&m_outCell);
        m_pGraph->note(this, 0);
        return;
    }
    m_pGraph->prepareWaits(2);
    if (!m_attached && m_inCell.isInList()) {  // it waits with its target and keeps its place there
        leaveSource();
        m_pSource = node;
        if (node == m_pTarget) {
            node->m_outEdges.linkLast(&m_outCell);
        } else {
            node->m_pGraph->wait(node, &m_outCell);
        }
        return;
    }
    leaveLists();
    m_pSource = node;
    enterLists(node);
}

void RVEdge::changeTargetNode(RVNode* node) {
    if (!m_pGraph->isMine(node) || node == m_pTarget) return;
    ++m_pGraph->m_modifications;
    m_pGraph->m_listsInGraphOrder = false;
    if (m_attached && node->m_attached) {
        m_pTarget->m_inEdges.unlink(&m_inCell);
        m_pTarget = node;
        node->m_inEdges.linkLast(&m_inCell);
        m_pGraph->note(this, 0);
        return;
    }
    m_pGraph->prepareWaits(2);
    if (!m_attached && m_outCell.isInList()) {  // it waits with its source and keeps its place there
        leaveTarget();
        m_pTarget = node;
        if (node == m_pSource) {
            node->m_inEdges.linkLast(&m_inCell);
        } else {
            node->m_pGraph->wait(node, &m_inCell);
        }
        return;
    }
    leaveLists();
    m_pTarget = node;
    enterLists(node);
}

void RVEdge::invertDirection() {
    ++m_pGraph->m_modifications;
    m_pGraph->m_listsInGraphOrder = false;
    if (m_attached) {
        m_pSource->m_outEdges.unlink(&m_outCell);
        m_pTarget->m_inEdges.unlink(&m_inCell);
        std::swap(m_pSource, m_pTarget);
        m_pSource->m_outEdges.linkLast(&m_outCell);
        m_pTarget->m_inEdges.linkLast(&m_inCell);
        m_pGraph->note(this, 0);
        return;
    }
    RVNode* const host = m_outCell.isInList() ? m_pSource : nullptr;
    m_pGraph->prepareWaits(2);
    leaveLists();
    std::swap(m_pSource, m_pTarget);
    enterLists(host);
}

// Graph

namespace {

// Where the hashes of a graph's members begin. The address alone would not do: a later graph may have the
// same one, and its members too, and would be taken for them in maps. Hashes reach no result.
std::uint32_t newHashSalt(const RVGraph* graph) {
    const auto now = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
    const std::uint64_t mixed = (now ^ rv::addressHash(graph)) * 0x9E3779B97F4A7C15ULL;
    return static_cast<std::uint32_t>(mixed >> 32) & ~std::uint32_t{31};
}

}  // namespace

RVGraph::RVGraph() : m_storage(std::make_shared<rv::GraphStorage>()), m_hashSalt(newHashSalt(this)) {
    m_nodes.m_readOnly = m_edges.m_readOnly = true;
}

RVGraph::RVGraph(const RVAFactory* factory) : RVGraph() {
    if (factory != nullptr) m_factory = factory->m_link;
}

RVGraph::~RVGraph() {
    if (m_hasForeignEdges) severForeignEdges();
    // An observer may take others away with it, so none is asked from a copy of the list.
    while (!m_observers.empty()) {
        rv::GraphObserver* observer = m_observers.back();
        m_observers.pop_back();
        if (observer != nullptr) observer->graphDies(this);
    }
    for (Fields* fields : {&m_nodeFields, &m_edgeFields}) {
        for (const std::wstring* name : fields->names.values()) delete name;
    }
    // Members in memory that other graphs keep must not be taken for those of a later graph at this address.
    if (m_storage.use_count() > 1 || !m_adoptedStorage.empty()) {
        const auto disown = [](RVGraphMember* member) { member->m_pGraph = nullptr; };
        forEachMember<RVNode>(&rv::GraphStorage::nodes, disown);
        forEachMember<RVEdge>(&rv::GraphStorage::edges, disown);
    }
}

// Those that came last first; some may go meanwhile.
template <class F>
void RVGraph::tellObservers(F tell) {
    for (std::size_t i = m_observers.size(); i > 0; --i) {
        if (i <= m_observers.size() && m_observers[i - 1] != nullptr) tell(*m_observers[i - 1]);
    }
}

int RVGraph::Indices::take() {
    if (unused.empty()) return limit++;
    const int index = unused.back();
    unused.pop_back();
    return index;
}

template <class Member>
Member* RVGraph::makeMember(void* memory, Indices& indices, std::uint32_t salt) {
    auto* member = ::new (memory) Member;
    member->m_pGraph = this;
    member->m_index = indices.take();
    member->m_hash = (salt + indices.nextSerial()) & 0xFFFFFFFU;
    return member;
}

RVNode* RVGraph::addNode(int) {
    auto* node = makeMember<RVNode>(m_storage->nodes.allocate(), m_nodeIndices, m_hashSalt);
    enterGraph(node);
    ++m_modifications;
    return node;
}

RVEdge* RVGraph::addEdge(RVNode* source, RVNode* target, int) {
    if (!isMine(source) || !isMine(target)) return nullptr;
    if (!source->m_attached || !target->m_attached) prepareWaits(2);
    auto* edge = makeMember<RVEdge>(m_storage->edges.allocate(), m_edgeIndices, ~m_hashSalt);
    edge->m_pSource = source;
    edge->m_pTarget = target;
    edge->enterLists(nullptr);
    ++m_modifications;
    return edge;
}

// Puts an edge between two attached nodes at the end of all three lists.
void RVGraph::attach(RVEdge* edge) {
    enterGraph(edge);
    edge->m_pSource->m_outEdges.linkLast(&edge->m_outCell);
    edge->m_pTarget->m_inEdges.linkLast(&edge->m_inCell);
}

void RVGraph::enterGraph(RVNode* node) {
    const RVNode* last = m_nodes.pLastNode();
    m_nodesInIndexOrder = last == nullptr || (m_nodesInIndexOrder && last->m_index < node->m_index);
    m_nodes.linkLast(&node->m_graphCell);
    node->m_attached = true;
    note(node, 1);
}

void RVGraph::leaveGraph(RVNode* node) {
    m_nodes.unlink(&node->m_graphCell);
    node->m_graphCell.setOut(nullptr);
    node->m_attached = false;
    note(node, -1);
}

// The lists of the edge's ends are the caller's affair.
void RVGraph::enterGraph(RVEdge* edge) {
    const RVEdge* last = m_edges.pLastEdge();
    m_edgesInIndexOrder = last == nullptr || (m_edgesInIndexOrder && last->m_index < edge->m_index);
    m_edges.linkLast(&edge->m_graphCell);
    edge->m_attached = true;
    note(edge, 1);
}

void RVGraph::leaveGraph(RVEdge* edge) {
    m_edges.unlink(&edge->m_graphCell);
    edge->m_graphCell.setOut(nullptr);
    edge->m_attached = false;
    note(edge, -1);
}

// Writes down what has become of an attached object, for the arrays: that it has come (1), is about to
// leave (-1) or has other ends (0).
void RVGraph::note(RVNode* node, int change) {
    const std::size_t place = rv::placeOf(node);
    if (place < m_nodeAt.size()) {
        m_nodeAt[place] = change < 0 ? nullptr : node;
    } else {
        m_newNodes += change;
    }
}

void RVGraph::note(RVEdge* edge, int change) {
    const std::size_t place = rv::placeOf(edge);
    if (place >= m_ends.size()) {
        m_newEdges += change;
        return;
    }
    m_edgeAt[place] = edge;
    m_ends[place] = change < 0 ? rv::Ends{} : edge->denseEnds();
}

// What is new stands at the ends of the lists, or before what went and came back. The ends of an edge are
// read some steps after they have been asked for, so that the memory has time to answer.
void RVGraph::coverIndices() {
    const std::size_t coveredNodes = m_nodeAt.size();
    m_nodeAt.resize(static_cast<std::size_t>(nodeIndexLimit()), nullptr);
    for (const RVDListCell* cell = m_nodes.m_pLast; m_newNodes > 0; cell = cell->pPrevCell()) {
        auto* node = static_cast<RVNode*>(cell->m_pObject);
        if (rv::placeOf(node) < coveredNodes) continue;
        note(node, 0);
        --m_newNodes;
    }

    const std::size_t coveredEdges = m_ends.size();
    m_edgeAt.resize(static_cast<std::size_t>(edgeIndexLimit()));
    m_ends.resize(m_edgeAt.size());
    constexpr std::size_t kAhead = 16;
    RVEdge* asked[kAhead] = {};
    const auto write = [this](RVEdge* edge) {
        if (edge != nullptr) note(edge, 0);
    };
    std::size_t next = 0;
    for (const RVDListCell* cell = m_edges.m_pLast; m_newEdges > 0; cell = cell->pPrevCell()) {
        auto* edge = static_cast<RVEdge*>(cell->m_pObject);
        if (rv::placeOf(edge) < coveredEdges) continue;
        rv::prefetch(&edge->m_pSource->m_index);
        rv::prefetch(&edge->m_pTarget->m_index);
        write(std::exchange(asked[next++ % kAhead], edge));
        --m_newEdges;
    }
    for (RVEdge* edge : asked) write(edge);
}

RVNode* RVGraph::removeNode(RVNode* node) {
    if (!isMine(node) || !node->m_attached) return nullptr;
    ++m_modifications;
    prepareWaits(static_cast<std::size_t>(node->degree()));
    for (RVDListCell* cell = node->m_outEdges.m_pFirst; cell != nullptr; cell = cell->m_pNext) {
        auto* edge = static_cast<RVEdge*>(cell->m_pObject);
        leaveGraph(edge);
        if (edge->m_pTarget == node) continue;
        edge->m_pTarget->m_inEdges.unlink(&edge->m_inCell);
        wait(edge->m_pTarget, &edge->m_inCell);
    }
    for (RVDListCell* cell = node->m_inEdges.m_pFirst; cell != nullptr; cell = cell->m_pNext) {
        auto* edge = static_cast<RVEdge*>(cell->m_pObject);
        if (edge->m_pSource == node) continue;
        leaveGraph(edge);
        edge->m_pSource->m_outEdges.unlink(&edge->m_outCell);
        wait(edge->m_pSource, &edge->m_outCell);
    }
    leaveGraph(node);
    return node;
}

RVNode* RVGraph::insertNode(RVNode* node) {
    if (node == nullptr || node->m_attached) return nullptr;
    // An edge that does not come back gives up its place at the other end, unless that is in another graph.
    if (node->m_pGraph != this || m_hasForeignEdges) prepareWaits(static_cast<std::size_t>(node->degree()));
    if (node->m_pGraph != this) adopt(node);
    ++m_modifications;
    enterGraph(node);
    reviveEdges(node);
    return node;
}

// Of the edges that the node hosted while it was detached, those whose other end is attached come back;
// the others go over to that end. An edge whose other end is in another graph by now is removed.
void RVGraph::reviveEdges(RVNode* node) {
    const auto handOver = [this](RVEdge* edge, RVNode* other) {
        edge->leaveLists();
        edge->m_removed = other->m_attached;
        noteForeignEdge(edge, other);
        edge->enterLists(other);
    };
    for (RVDListCell *next = nullptr, *cell = node->m_outEdges.m_pFirst; cell != nullptr; cell = next) {
        next = cell->m_pNext;
        auto* edge = static_cast<RVEdge*>(cell->m_pObject);
        RVNode* const other = edge->m_pTarget;
        if (other->m_attached && other->m_pGraph == this) {
            if (edge->m_pGraph != this) adopt(edge);
            if (other == node) {
                m_listsInGraphOrder = false;  // the loop keeps its place in the in-list
            } else {
                stopWaiting(other, &edge->m_inCell);
                other->m_inEdges.linkLast(&edge->m_inCell);
            }
            enterGraph(edge);
        } else {
            handOver(edge, other);
        }
    }
    for (RVDListCell *next = nullptr, *cell = node->m_inEdges.m_pFirst; cell != nullptr; cell = next) {
        next = cell->m_pNext;
        auto* edge = static_cast<RVEdge*>(cell->m_pObject);
        RVNode* const other = edge->m_pSource;
        if (other == node) continue;
        if (other->m_attached && other->m_pGraph == this) {
            if (edge->m_pGraph != this) adopt(edge);
            stopWaiting(other, &edge->m_outCell);
            other->m_outEdges.linkLast(&edge->m_outCell);
            enterGraph(edge);
        } else {
            handOver(edge, other);
        }
    }
}

RVEdge* RVGraph::removeEdge(RVEdge* edge) {
    if (!isMine(edge) || edge->m_removed) return nullptr;
    ++m_modifications;
    prepareWaits(2);
    edge->leaveLists();
    edge->m_removed = true;
    edge->enterLists(nullptr);
    return edge;
}

RVEdge* RVGraph::insertEdge(RVEdge* edge, RVNode* source, RVNode* target) {
    if (edge == nullptr || !isMine(source) || !isMine(target)) return nullptr;
    if (edge->m_attached && edge->m_pGraph != this) return nullptr;
    ++m_modifications;
    if (!source->m_attached || !target->m_attached) prepareWaits(2);
    if (edge->m_pGraph != this) adopt(edge);
    edge->leaveLists();
    edge->m_pSource = source;
    edge->m_pTarget = target;
    edge->m_removed = false;
    edge->enterLists(nullptr);
    return edge;
}

void RVGraph::discardEdge(RVEdge* edge) {
    if (!isMine(edge)) return;
    ++m_modifications;
    edge->leaveLists();
    destroyMember(edge, m_storage->edges);
}

void RVGraph::discardNode(RVNode* node) {
    if (!isMine(node)) return;
    ++m_modifications;
    for (const RVEdgeDList* list : {&node->m_outEdges, &node->m_inEdges}) {
        while (RVEdge* edge = list->pFirstEdge()) edge->m_pGraph->discardEdge(edge);
    }
    while (const std::uint32_t head = m_waitHeads.get(node->m_index)) {
        RVDListCell* const cell = m_waits[head - 1].cell;
        auto* edge = static_cast<RVEdge*>(cell->pObject());
        if (edge->m_removed) {
            stopWaiting(node, cell);
            (cell == &edge->m_outCell ? edge->m_pSource : edge->m_pTarget) = nullptr;
        } else {
            edge->m_pGraph->discardEdge(edge);
        }
    }
    if (node->m_attached) leaveGraph(node);
    destroyMember(node, m_storage->nodes);
}

// Ends a member that stands in no list any more.
void RVGraph::destroyMember(RVGraphMember* member, rv::Slab& slab) {
    tellObservers([member](rv::GraphObserver& observer) { observer.memberDies(member); });
    Fields& fields = fieldsOf(member);
    Indices& indices = indicesOf(member);
    const int index = member->m_index;
    delete fields.names.get(index);
    fields.names.reset(index);
    fields.user.reset(index);
    fields.object.reset(index);
    indices.giveBack(index);
    const bool adopted = member->m_adopted;
    member->~RVGraphMember();
    // The slot reads as free, and as a member of no graph to those who still have the pointer. That of an
    // adopted member is not used again.
    std::memset(static_cast<void*>(member), 0, sizeof(RVGraphMember));
    if (!adopted) slab.recycle(member);
}

void RVGraph::Indices::giveBack(int index) {
    try {
        unused.push_back(index);
    } catch (...) {
        // Without memory the index is not given again, which does no harm.
    }
}

// Takes a detached member of another graph over: index, name, fields, wait chain, and what observers keep.
// Its memory stays where it is, so this graph keeps that alive from now on.
void RVGraph::adopt(RVGraphMember* member) {
    RVGraph* const from = member->m_pGraph;
    std::vector<std::shared_ptr<rv::GraphStorage>> memory = from->m_adoptedStorage;
    memory.push_back(from->m_storage);
    for (auto& storage : memory) {
        const bool known = storage == m_storage || std::find(m_adoptedStorage.begin(), m_adoptedStorage.end(),
                                                             storage) != m_adoptedStorage.end();
        if (!known) m_adoptedStorage.push_back(storage);
    }
    Fields& fieldsThere = from->fieldsOf(member);
    Fields& fieldsHere = fieldsOf(member);
    Indices& indicesHere = indicesOf(member);
    const int indexThere = member->m_index;
    const int indexHere = indicesHere.take();
    const auto move = [&](auto& there, auto& here) {
        const auto value = there.get(indexThere);
        if (value == nullptr) return;
        here.set(indexHere, value, indicesHere.limit);
        there.reset(indexThere);
    };
    move(fieldsThere.names, fieldsHere.names);
    move(fieldsThere.user, fieldsHere.user);
    move(fieldsThere.object, fieldsHere.object);
    std::vector<RVDListCell*> waiting;
    if (member->isNode()) waiting = from->takeWaits(static_cast<RVNode*>(member));
    from->indicesOf(member).giveBack(indexThere);
    member->m_index = indexHere;
    member->m_pGraph = this;
    member->m_adopted = true;
    if (!waiting.empty()) {
        prepareWaits(waiting.size());
        m_hasForeignEdges = from->m_hasForeignEdges = true;
        for (RVDListCell* cell : waiting) wait(static_cast<RVNode*>(member), cell);
    }
    std::exception_ptr failure;  // of the first that fails; the others hear all the same
    from->tellObservers([&](rv::GraphObserver& observer) {
        try {
            observer.memberMoved(member, from, indexThere);
        } catch (...) {
            if (failure == nullptr) failure = std::current_exception();
        }
    });
    if (failure != nullptr) std::rethrow_exception(failure);
}

void RVGraph::setName(RVGraphMember* member, const wchar_t* text) {
    rv::Column<std::wstring*>& names = fieldsOf(member).names;
    std::wstring* name = names.get(member->m_index);
    if (text == nullptr || *text == L'\0') {
        delete name;
        names.reset(member->m_index);
    } else if (name != nullptr) {
        *name = text;
    } else {
        auto made = std::make_unique<std::wstring>(text);
        names.set(member->m_index, made.get(), indicesOf(member).limit);
        static_cast<void>(made.release());
    }
}

// Observers

std::uint32_t RVGraph::addObserver(rv::GraphObserver* observer) {
    const std::lock_guard lock(m_mutex);
    if (m_goneObservers > m_observers.size() / 2) {
        std::erase(m_observers, nullptr);
        m_goneObservers = 0;
        for (std::size_t i = 0; i < m_observers.size(); ++i) m_observers[i]->m_place = i;
    }
    observer->m_place = m_observers.size();
    m_observers.push_back(observer);
    return m_nextObserverStamp++;
}

void RVGraph::removeObserver(rv::GraphObserver* observer) {
    const std::lock_guard lock(m_mutex);
    const std::size_t place = observer->m_place;
    if (place >= m_observers.size() || m_observers[place] != observer) return;
    m_observers[place] = nullptr;
    ++m_goneObservers;
    while (!m_observers.empty() && m_observers.back() == nullptr) {
        m_observers.pop_back();
        --m_goneObservers;
    }
}

// Wait chains

// Makes room for so many more entries, so that waiting itself cannot fail.
void RVGraph::prepareWaits(std::size_t count) {
    const std::size_t needed = m_waiting + count;
    if (needed > m_waits.capacity()) m_waits.reserve(std::max(needed, 2 * m_waits.capacity()));
    m_waitHeads.cover(m_nodeIndices.limit);
}

void RVGraph::wait(RVNode* node, RVDListCell* cell) {
    std::uint32_t place = m_freeWait;
    if (place != 0) {
        m_freeWait = m_waits[place - 1].next;
    } else {
        m_waits.emplace_back();
        place = static_cast<std::uint32_t>(m_waits.size());
    }
    const std::uint32_t head = m_waitHeads.get(node->m_index);
    m_waits[place - 1] = {cell, head, 0};
    ++m_waiting;
    if (head != 0) m_waits[head - 1].previous = place;
    m_waitHeads.set(node->m_index, place, m_nodeIndices.limit);
    cell->setWaiting(place);
}

void RVGraph::stopWaiting(RVNode* node, RVDListCell* cell) {
    const std::uint32_t place = cell->waitPlace();
    const Wait entry = m_waits[place - 1];
    if (entry.next != 0) m_waits[entry.next - 1].previous = entry.previous;
    if (entry.previous != 0) {
        m_waits[entry.previous - 1].next = entry.next;
    } else {
        m_waitHeads.set(node->m_index, entry.next, m_nodeIndices.limit);
    }
    m_waits[place - 1] = {nullptr, m_freeWait, 0};
    --m_waiting;
    m_freeWait = place;
    cell->setOut(nullptr);
}

// Empties the node's wait chain and gives its cells, first to last as they would be waited for again.
std::vector<RVDListCell*> RVGraph::takeWaits(RVNode* node) {
    std::vector<RVDListCell*> cells;
    for (std::uint32_t place = m_waitHeads.get(node->m_index); place != 0; place = m_waits[place - 1].next) {
        cells.push_back(m_waits[place - 1].cell);
    }
    for (RVDListCell* cell : cells) stopWaiting(node, cell);
    std::reverse(cells.begin(), cells.end());
    return cells;
}

void RVGraph::noteForeignEdge(RVEdge* edge, RVNode* other) {
    if (edge->m_pGraph == this && other->m_pGraph == this) return;
    m_hasForeignEdges = edge->m_pGraph->m_hasForeignEdges = other->m_pGraph->m_hasForeignEdges = true;
}

// Before this graph dies: detached edges of other graphs lose the ends that they have here, as if those were
// discarded, and detached edges of this graph leave the nodes of others.
void RVGraph::severForeignEdges() {
    for (std::size_t i = 0; i < m_waits.size(); ++i) {
        RVDListCell* const cell = m_waits[i].cell;
        if (cell == nullptr) continue;
        auto* edge = static_cast<RVEdge*>(cell->pObject());
        if (edge->m_pGraph == this) continue;
        if (edge->m_removed) {
            const bool out = cell == &edge->m_outCell;
            stopWaiting(out ? edge->m_pSource : edge->m_pTarget, cell);
            (out ? edge->m_pSource : edge->m_pTarget) = nullptr;
        } else {
            edge->m_pGraph->discardEdge(edge);
        }
    }
    // Edges of other graphs may also wait in the lists of detached nodes of this one.
    forEachMember<RVNode>(&rv::GraphStorage::nodes, [this](RVNode* node) {
        if (node->m_attached) return;
        for (const RVEdgeDList* list : {&node->m_outEdges, &node->m_inEdges}) {
            for (RVDListCell *next = nullptr, *cell = list->m_pFirst; cell != nullptr; cell = next) {
                next = cell->m_pNext;
                auto* edge = static_cast<RVEdge*>(cell->m_pObject);
                if (edge->m_pGraph != this) edge->m_pGraph->discardEdge(edge);
            }
        }
    });
    forEachMember<RVEdge>(&rv::GraphStorage::edges, [](RVEdge* edge) {
        if (!edge->m_attached) edge->leaveLists();
    });
}

// Calls f(member) for every node (edge) that belongs to this graph, attached or not.
template <class Member, class F>
void RVGraph::forEachMember(rv::Slab rv::GraphStorage::*slab, F f) {
    const auto visit = [&](void* slot) {
        auto* member = static_cast<Member*>(slot);
        if (isMine(member)) f(member);
    };
    ((*m_storage).*slab).forEachInUse(visit);
    for (const auto& storage : m_adoptedStorage) ((*storage).*slab).forEachInUse(visit);
}

const wchar_t* RVGraph::pNameString() const { return m_name.c_str(); }

const wchar_t* RVGraph::pNameString(const wchar_t* text) {
    m_name = text == nullptr ? L"" : text;
    return m_name.c_str();
}

void* RVGraph::pUserField() const { return m_userField; }
void* RVGraph::pUserField(void* field) { return m_userField = field; }
RVObject* RVGraph::pIUserField() const { return m_objectUserField; }
RVObject* RVGraph::pIUserField(RVObject* field) { return m_objectUserField = field; }
RVGraphObject* RVGraph::pOwner() const { return nullptr; }
RVAFactory* RVGraph::pFactory() const { return m_factory == nullptr ? nullptr : m_factory->factory; }

// Factory

RVAFactory::RVAFactory() : m_link(std::make_shared<rv::FactoryLink>(rv::FactoryLink{this})) {}

RVAFactory::~RVAFactory() { m_link->factory = nullptr; }

RVGraph* RVAFactory::newGraph() { return new RVGraph(this); }

// Access for the library

namespace rv {

void GraphAccess::copyGraph(const RVGraph* source, RVGraph* target, std::vector<RVGraphMember*>& nodeCopies,
                            std::vector<RVGraphMember*>& edgeCopies) {
    const auto place = [](const RVGraphMember* member) { return static_cast<std::size_t>(member->m_index); };
    nodeCopies.assign(static_cast<std::size_t>(source->nodeIndexLimit()), nullptr);
    edgeCopies.assign(static_cast<std::size_t>(source->edgeIndexLimit()), nullptr);
    target->m_name = source->m_name;

    const bool namedNodes = !source->m_nodeFields.names.isEmpty();
    for (RVNode* node : source->m_nodes) {
        RVNode* copy = target->addNode();
        nodeCopies[place(node)] = copy;
        if (namedNodes) target->setName(copy, node->pNameString());
    }
    const bool namedEdges = !source->m_edgeFields.names.isEmpty();
    for (RVEdge* edge : source->m_edges) {
        RVEdge* copy = target->addEdge(static_cast<RVNode*>(nodeCopies[place(edge->m_pSource)]),
                                       static_cast<RVNode*>(nodeCopies[place(edge->m_pTarget)]));
        edgeCopies[place(edge)] = copy;
        if (namedEdges) target->setName(copy, edge->pNameString());
    }
    target->m_listsInGraphOrder = source->m_listsInGraphOrder;
    if (source->m_listsInGraphOrder) return;

    for (RVNode* node : source->m_nodes) {
        auto* copy = static_cast<RVNode*>(nodeCopies[place(node)]);
        copy->m_outEdges.forgetCells();
        copy->m_inEdges.forgetCells();
        for (const RVEdge* edge : node->m_outEdges) {
            copy->m_outEdges.linkLast(&static_cast<RVEdge*>(edgeCopies[place(edge)])->m_outCell);
        }
        for (const RVEdge* edge : node->m_inEdges) {
            copy->m_inEdges.linkLast(&static_cast<RVEdge*>(edgeCopies[place(edge)])->m_inCell);
        }
    }
}

namespace {

template <class Member, class List>
void noteOrder(const List& list, int limit, GraphOrders::Order<Member>& order) {
    order.indices.reserve(static_cast<std::size_t>(list.length()));
    order.hashes.assign(static_cast<std::size_t>(limit), GraphOrders::kNotNoted);
    order.found.reserve(order.hashes.size());
    for (const Member* member : list) {
        order.indices.push_back(member->denseIndex());
        order.hashes[rv::placeOf(member)] = member->memberHash();
    }
}

}  // namespace

GraphOrders GraphAccess::noteOrders(const RVGraph* graph) {
    GraphOrders orders;
    noteOrder(graph->m_nodes, graph->nodeIndexLimit(), orders.nodes);
    noteOrder(graph->m_edges, graph->edgeIndexLimit(), orders.edges);
    orders.listsInGraphOrder = graph->m_listsInGraphOrder;
    if (orders.listsInGraphOrder) return orders;  // then the edge list tells all
    orders.outEdges.reserve(orders.edges.indices.size());
    orders.inEdges.reserve(orders.edges.indices.size());
    for (const RVNode* node : graph->m_nodes) {
        for (const RVEdge* edge : node->m_outEdges) orders.outEdges.push_back(edge->m_index);
        for (const RVEdge* edge : node->m_inEdges) orders.inEdges.push_back(edge->m_index);
    }
    return orders;
}

// Restores the order of one of the graph's own lists and gives the first cell that was not noted.
template <class Member, class List>
RVDListCell* GraphAccess::restoreOrder(List& list, GraphOrders::Order<Member>& order) noexcept {
    order.found.assign(order.hashes.size(), nullptr);
    List others;
    for (RVDListCell *next = nullptr, *cell = list.m_pFirst; cell != nullptr; cell = next) {
        next = cell->m_pNext;
        auto* member = static_cast<Member*>(cell->m_pObject);
        if (order.has(member)) {
            order.found[static_cast<std::size_t>(member->m_index)] = member;
        } else {
            others.linkLast(cell);
        }
    }
    list.forgetCells();
    for (const int index : order.indices) {
        Member* const member = order.found[static_cast<std::size_t>(index)];
        if (member != nullptr) list.linkLast(&member->m_graphCell);
    }
    RVDListCell* const firstOther = others.m_pFirst;
    for (RVDListCell *next = nullptr, *cell = firstOther; cell != nullptr; cell = next) {
        next = cell->m_pNext;
        list.linkLast(cell);
    }
    others.forgetCells();
    return firstOther;
}

namespace {

template <class List>
bool isInIndexOrder(const List& list) {
    int last = -1;
    for (const auto* member : list) {
        if (member->denseIndex() < last) return false;
        last = member->denseIndex();
    }
    return true;
}

}  // namespace

void GraphAccess::restoreOrders(RVGraph* graph, GraphOrders& orders) noexcept {
    ++graph->m_modifications;
    graph->m_listsInGraphOrder = orders.listsInGraphOrder;
    restoreOrder(graph->m_nodes, orders.nodes);
    graph->m_nodesInIndexOrder = isInIndexOrder(graph->m_nodes);
    for (RVNode* node : graph->m_nodes) {
        node->m_outEdges.forgetCells();
        node->m_inEdges.forgetCells();
    }
    RVDListCell* rest = restoreOrder(graph->m_edges, orders.edges);
    graph->m_edgesInIndexOrder = isInIndexOrder(graph->m_edges);
    if (orders.listsInGraphOrder) {
        rest = graph->m_edges.m_pFirst;
    } else {
        const auto& found = orders.edges.found;
        for (const int index : orders.outEdges) {
            RVEdge* edge = found[static_cast<std::size_t>(index)];
            if (edge != nullptr) edge->m_pSource->m_outEdges.linkLast(&edge->m_outCell);
        }
        for (const int index : orders.inEdges) {
            RVEdge* edge = found[static_cast<std::size_t>(index)];
            if (edge != nullptr) edge->m_pTarget->m_inEdges.linkLast(&edge->m_inCell);
        }
    }
    for (; rest != nullptr; rest = rest->m_pNext) {
        auto* edge = static_cast<RVEdge*>(rest->m_pObject);
        edge->m_pSource->m_outEdges.linkLast(&edge->m_outCell);
        edge->m_pTarget->m_inEdges.linkLast(&edge->m_inCell);
    }
}

}  // namespace rv
