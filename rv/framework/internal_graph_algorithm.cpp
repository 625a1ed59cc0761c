#include "rv/framework/internal_graph_algorithm.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <memory>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/graph_iterators.h"
#include "rv/framework/check_input.h"
#include "rv/framework/parallel_edges.h"

namespace {

// Edges of a graph to be walked, in graph order, while others may be added, detached or discarded.
class EdgeWalk final : rv::GraphObserver {
public:
    // From the edge at the iterator's place on.
    EdgeWalk(RVGraph* graph, RVEdgeIter it) : m_graph(graph) {
        m_places.resize(static_cast<std::size_t>(graph->edgeIndexLimit()));
        for (; it; it++) {
            m_edges.push_back(it.pEdge());
            m_places[placeOf(it.pEdge()->denseIndex())] = m_edges.size();
        }
        rv::GraphAccess::addObserver(graph, this);
    }
    EdgeWalk(const EdgeWalk&) = delete;
    EdgeWalk& operator=(const EdgeWalk&) = delete;
    ~EdgeWalk() {
        if (m_graph != nullptr) rv::GraphAccess::removeObserver(m_graph, this);
    }

    // The next edge that is in the graph, or none.
    RVEdge* next() {
        while (m_next < m_edges.size()) {
            RVEdge* edge = m_edges[m_next++];
            if (edge != nullptr && edge->pOwnerGraph() == m_graph) return edge;
        }
        return nullptr;
    }

private:
    static std::size_t placeOf(int index) { return static_cast<std::size_t>(index); }
    void graphDies(RVGraph*) override {
        m_edges.clear();
        m_graph = nullptr;
    }
    void memberDies(RVGraphMember* member) override {
        if (member->isEdge()) forget(member, member->denseIndex());
    }
    void memberMoved(RVGraphMember* member, RVGraph*, int indexThere) override {
        if (member->isEdge()) forget(member, indexThere);
    }
    void forget(const RVGraphMember* member, int index) {
        const std::size_t place = placeOf(index) < m_places.size() ? m_places[placeOf(index)] : 0;
        if (place != 0 && m_edges[place - 1] == member) m_edges[place - 1] = nullptr;
    }

    RVGraph* m_graph;
    std::vector<RVEdge*> m_edges;       // none where one is gone
    std::vector<std::size_t> m_places;  // by index: place in m_edges + 1, 0 for none
    std::size_t m_next = 0;
};

}  // namespace

struct RVInternalGraphAlgorithm::Run {
    std::unique_ptr<rv::ParallelEdges> parallelEdges;  // while preprocessMultiEdges runs
    std::unique_ptr<rv::GraphOrders> orders;           // while the caller's graph may be changed
    bool isRestored = false;                           // by privatePostprocessGraph
    std::vector<RVEdge*> parallelScratch;
    std::vector<RVEdge*> returning;  // with room for all parallel edges that are detached
};

RV_OBJECT_IMPL(RVInternalGraphAlgorithm)

RVServiceErrorCodeEnum RVInternalGraphAlgorithm::run() { return RVAlgorithm::run(); }

RVServiceErrorCodeEnum RVInternalGraphAlgorithm::internalRun() { return RVAlgorithm::run(); }

void RVInternalGraphAlgorithm::cleanupAfterFailure() noexcept {
    try {
        if (pInternalData() != nullptr) RVInternalGraphAlgorithm::cleanup();
    } catch (...) {  // NOLINT(bugprone-empty-catch): the first exception tells more
    }
}

RVServiceErrorCodeEnum RVInternalGraphAlgorithm::checkData() { return checkInputGraph(); }

RVServiceErrorCodeEnum RVInternalGraphAlgorithm::checkInputGraph() {
    const RVServiceErrorCodeEnum code = RVInternalAlgorithm::checkData();
    return code != RV_NO_ERROR ? code : rv::checkInputGraph(*pInputData());
}

int RVInternalGraphAlgorithm::canUseOriginalGraph() const { return m_useOriginalGraph; }

RVAlgorithmData* RVInternalGraphAlgorithm::newInternalData() { return new RVAnalysisInternalData(); }

void RVInternalGraphAlgorithm::initialize() {
    m_run.make();  // so that restoring allocates nothing
    RVInternalAlgorithm::initialize();
    RVGraph* graph = pInputData()->pAssociatedGraph();
    pInternalData()->pAssociatedGraph(graph);
    pInternalData()->pInputGraph(graph);
    if (canUseOriginalGraph() == 0) createGraphCopy();
}

// Also called when a hook has thrown: the working graph is destroyed only if it is not the caller's.
void RVInternalGraphAlgorithm::cleanup() {
    clearInputGraph();
    restoreAfterFailure();
    if (RVAlgorithmData* data = pInternalData()) {
        RVGraph* const input = data->pInputGraph();
        RVGraph* const working = data->pAssociatedGraph();
        if (canUseOriginalGraph() == 0 && working != input) delete working;
        data->pAssociatedGraph(input);
        delete data->pSecondaryGraphs()->searchAndRemoveObject(input);
    }
    RVInternalAlgorithm::cleanup();
}

void RVInternalGraphAlgorithm::preprocess() { preprocessGraph(); }

void RVInternalGraphAlgorithm::postprocess() {
    try {
        postprocessGraph();
    } catch (...) {
        restoreAfterFailure();
        throw;
    }
    restoreOrders();
}

// An override that has thrown may have done so before it called its base. The caller's graph is restored
// nevertheless; an exception behind the first one is not passed on.
void RVInternalGraphAlgorithm::restoreAfterFailure() {
    for (const bool asOverridden : {true, false}) {
        if (m_run.get() == nullptr || m_run->orders == nullptr || m_run->isRestored) break;
        try {
            asOverridden ? privatePostprocessGraph() : restoreWorkingGraph();
        } catch (...) {  // NOLINT(bugprone-empty-catch)
        }
    }
    restoreOrders();
}

void RVInternalGraphAlgorithm::restoreWorkingGraph() { privatePostprocessGraph(pAssociatedGraph()); }

void RVInternalGraphAlgorithm::restoreOrders() {
    if (m_run.get() == nullptr || m_run->orders == nullptr) return;
    rv::GraphAccess::restoreOrders(pAssociatedGraph(), *m_run->orders);
    m_run->orders = nullptr;
}

void RVInternalGraphAlgorithm::preprocessGraph() { privatePreprocessGraph(); }

void RVInternalGraphAlgorithm::postprocessGraph() { privatePostprocessGraph(); }

void RVInternalGraphAlgorithm::noteOrders() {
    if (m_run->orders != nullptr || pAssociatedGraph() != pInternalData()->pInputGraph()) return;
    m_run->orders = std::make_unique<rv::GraphOrders>(rv::GraphAccess::noteOrders(pAssociatedGraph()));
}

void RVInternalGraphAlgorithm::prepareRemovals(int edges) {
    if (pAssociatedGraph() != pInternalData()->pInputGraph()) return;
    rv::GraphAccess::prepareRemovals(pAssociatedGraph(), static_cast<std::size_t>(edges));
}

// Normalising

void RVInternalGraphAlgorithm::privatePreprocessGraph() {
    if (directed() != 0) preprocessUndirectedEdges();
    preprocessReflexiveEdges();
    preprocessMultiEdges();
    preprocessDisconnectedNodes();
}

void RVInternalGraphAlgorithm::preprocessUndirectedEdges() {
    RVGraph* graph = pAssociatedGraph();
    RVAnalysisInternalData* data = pAnalysisInternalData();
    const auto isUndirected = [&](RVEdge* edge) {
        return edge->pSourceNode() != edge->pTargetNode() && data->directed(edge) == 0;
    };
    RVEdgeIter it(graph);
    while (it && !isUndirected(it.pEdge())) it++;
    if (!it) return;
    noteOrders();

    EdgeWalk edges(graph, it);  // which does not meet the reverse edges
    while (RVEdge* edge = edges.next()) {
        if (!isUndirected(edge)) continue;
        RVEdge* reverse = graph->addEdge(edge->pTargetNode(), edge->pSourceNode(), 0);
        try {
            actOnAddReverseEdge(reverse, edge);
        } catch (...) {
            graph->discardEdge(reverse);  // perhaps not yet marked as a dummy
            throw;
        }
    }
}

void RVInternalGraphAlgorithm::actOnAddReverseEdge(RVEdge* newEdge, RVEdge* edge) {
    RVAnalysisInternalData* data = pAnalysisInternalData();
    data->dummyEdge(newEdge, 1);
    data->pOriginalEdge(newEdge, data->pOriginalEdge(edge));
    data->directed(newEdge, 0);
}

void RVInternalGraphAlgorithm::preprocessReflexiveEdges() { preprocessReflexiveEdges(pAssociatedGraph()); }

void RVInternalGraphAlgorithm::preprocessReflexiveEdges(RVGraph* graph) {
    for (RVEdgeIter it(graph); it;) {
        RVEdge* edge = it.pEdge();
        it++;
        if (edge->pSourceNode() != edge->pTargetNode()) continue;
        RVEdgeDList* loops = pAnalysisInternalData()->pReflexiveEdgeList(edge->pSourceNode());
        if (loops == nullptr) continue;  // a node without a record keeps its loops
        noteOrders();
        loops->appendEdge(edge);
        graph->removeEdge(edge);
    }
}

void RVInternalGraphAlgorithm::preprocessMultiEdges() { preprocessMultiEdges(pAssociatedGraph()); }

void RVInternalGraphAlgorithm::preprocessMultiEdges(RVGraph* graph) {
    const int direction = directed();
    m_run->parallelEdges = std::make_unique<rv::ParallelEdges>(graph, direction != 0);
    std::vector<RVEdge*> representatives;
    representatives.reserve(static_cast<std::size_t>(graph->numberOfEdges()));
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (RVEdge* representative = pRepresentativeEdge(edge, direction))
            representatives.push_back(representative);
    }
    m_run->parallelEdges = nullptr;

    const RVAnalysisInternalData* data = pAnalysisInternalData();
    RVEdgeDList none;
    std::size_t detached = 0;
    for (RVEdge* representative : representatives) {
        const auto* record =
            static_cast<const RVEdgeAnalysisExtension*>(data->pExistingExtension(representative));
        if (record == nullptr || !record->hasMultiEdges()) {
            // An edge without parallels needs no list of its own, unless the hook fills one.
            actOnRemoveMultiEdges(representative, &none);
            RVEdgeDList* list = none.length() == 0 ? nullptr : data->pMultiEdgeList(representative);
            if (list != nullptr) {
                list->copyAppendList(&none);
                none.deleteAllCells();
            }
        } else {
            actOnRemoveMultiEdges(representative, record->pMultiEdgeList());
        }
        const RVEdgeDList& parallels = data->multiEdges(representative);
        if (parallels.length() == 0) continue;
        noteOrders();
        detached += static_cast<std::size_t>(parallels.length());
        if (detached > m_run->returning.capacity()) m_run->returning.reserve(2 * detached);
        for (RVEdge* edge : parallels) graph->removeEdge(edge);
    }
}

RVEdge* RVInternalGraphAlgorithm::pRepresentativeEdge(RVEdge* edge, int directed) {
    RVAnalysisInternalData* data = pAnalysisInternalData();
    const auto* record = static_cast<const RVEdgeAnalysisExtension*>(data->pExistingExtension(edge));
    if (record != nullptr && (record->removedAsMultiEdge() != 0 || record->hasMultiEdges())) return nullptr;
    RVEdge* representative = selectRepresentativeEdge(edge);
    if (representative == nullptr) return nullptr;
    for (RVEdge* parallel : parallelEdges(edge, directed)) {
        if (parallel == representative) continue;
        RVEdgeDList* list = data->pMultiEdgeList(representative);
        if (list == nullptr) break;  // an edge without a record keeps its parallels
        data->removedAsMultiEdge(parallel, 1);
        list->appendEdge(parallel);
    }
    return representative;
}

RVEdge* RVInternalGraphAlgorithm::selectRepresentativeEdge(RVEdge* edge) { return edge; }

std::span<RVEdge* const> RVInternalGraphAlgorithm::parallelEdges(RVEdge* edge, int directed) {
    std::vector<RVEdge*>& edges = m_run->parallelScratch;
    rv::ParallelEdges* known = m_run->parallelEdges.get();
    edges.clear();
    if (known != nullptr && known->holds(directed != 0)) {
        const std::span<RVEdge* const> group = known->of(edge);
        if (!group.empty()) return group;
        edges.push_back(edge);
        return edges;
    }
    const RVNode* source = edge->pSourceNode();
    const RVNode* target = edge->pTargetNode();
    if (source == nullptr || target == nullptr) return edges;
    for (RVEdge* other : *source->pOutEdgeList()) {
        if (other->pTargetNode() == target) edges.push_back(other);
    }
    if (directed != 0) return edges;
    for (RVEdge* other : *source->pInEdgeList()) {
        if (other->pSourceNode() == target) edges.push_back(other);
    }
    return edges;
}

void RVInternalGraphAlgorithm::actOnRemoveMultiEdges(RVEdge*, RVEdgeDList*) {}

void RVInternalGraphAlgorithm::actOnInsertMultiEdge(RVEdge*) {}

void RVInternalGraphAlgorithm::preprocessDisconnectedNodes() {
    preprocessDisconnectedNodes(pAssociatedGraph());
}

void RVInternalGraphAlgorithm::preprocessDisconnectedNodes(RVGraph* graph) {
    for (RVNodeIter it(graph); it;) {
        RVNode* node = it.pNode();
        it++;
        if (node->degree() != 0) continue;
        noteOrders();
        pAnalysisInternalData()->pDisconnectedNodeList()->appendNode(node);
        graph->removeNode(node);
    }
}

// Restoring

void RVInternalGraphAlgorithm::privatePostprocessGraph() { privatePostprocessGraph(pAssociatedGraph()); }

// What is to be attached is gathered before it is, so that no walk meets it. After a hook has thrown while
// preprocessing, edges may be listed that were not yet detached; those stay where they are. A hook that
// throws here does not keep the rest from coming back.
void RVInternalGraphAlgorithm::privatePostprocessGraph(RVGraph* graph) {
    RVAnalysisInternalData* data = pAnalysisInternalData();
    if (graph == pAssociatedGraph()) m_run->isRestored = true;
    for (RVNode* node : *data->pDisconnectedNodeList()) graph->insertNode(node);

    for (RVNode* node : *graph->pNodeList()) {
        const auto* record = static_cast<const RVNodeAnalysisExtension*>(data->pExistingExtension(node));
        if (record == nullptr || !record->hasReflexiveEdges()) continue;
        for (RVEdge* edge : *record->pReflexiveEdgeList()) {
            graph->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
        }
    }

    std::vector<RVEdge*>& parallels = m_run->returning;
    parallels.clear();
    bool anyDummy = false;
    for (RVEdge* edge : *graph->pEdgeList()) {
        const auto* record = static_cast<const RVEdgeAnalysisExtension*>(data->pExistingExtension(edge));
        if (record == nullptr) continue;
        if (record->dummyEdge() != 0) anyDummy = true;
        if (!record->hasMultiEdges()) continue;
        for (RVEdge* parallel : *record->pMultiEdgeList()) {
            if (parallel->pOwnerGraph() == nullptr) parallels.push_back(parallel);
        }
    }
    std::exception_ptr failure;
    for (RVEdge* edge : parallels) {
        try {
            actOnInsertMultiEdge(edge);
        } catch (...) {
            if (failure == nullptr) failure = std::current_exception();
        }
        graph->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
    }

    // A reverse edge may be among the parallels of another edge.
    for (RVEdgeIter it(anyDummy || !parallels.empty() ? graph : nullptr); it;) {
        RVEdge* edge = it.pEdge();
        it++;
        const auto* record = static_cast<const RVEdgeAnalysisExtension*>(data->pExistingExtension(edge));
        if (record != nullptr && record->dummyEdge() != 0) graph->discardEdge(edge);
    }
    if (failure != nullptr) std::rethrow_exception(failure);
}

RVEdge* RVInternalGraphAlgorithm::findEdgeBetween(const RVNode* a, const RVNode* b) {
    if (a == nullptr || b == nullptr) return nullptr;
    for (RVEdge* edge : *a->pOutEdgeList()) {
        if (edge->pTargetNode() == b) return edge;
    }
    return nullptr;
}
