// Eppstein's construction. Every edge that is not in the tree of cheapest paths to the finish node costs a
// detour, its delta. The detours out of a node form a heap, its out-heap. The out-heaps on a node's way
// through the tree are joined by a heap of their roots, its sidetrack heap, which shares all but one path
// with that of the next node on the way. Cross edges lead from a detour to the sidetrack heap of the node
// where it ends.

#include "rv/shortestpaths/sorted_paths.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/shortestpaths/single_source_shortest_paths.h"
#include "rv/shortestpaths/unreached.h"
#include "rv/traversal/topological_sort.h"

RV_OBJECT_IMPL(RVSortedPathsInputData)

std::span<const RVInputField> RVSortedPathsInputData::inputFields() const {
    using namespace rv::field;
    using D = RVSortedPathsInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
    };
    return fields;
}

// Output

namespace rv {

// What an output knows of one graph's members, by dense index, as long as they exist.
class PathGraphValues final : GraphObserver {
public:
    PathGraphValues() = default;
    PathGraphValues(const PathGraphValues&) = delete;
    PathGraphValues& operator=(const PathGraphValues& other) {
        if (this == &other) return *this;
        bind(other.m_graph);
        isPathGraph = other.isPathGraph;
        root = other.root;
        sidetracks = other.sidetracks;
        costs = other.costs;
        types = other.types;
        return *this;
    }
    ~PathGraphValues() { bind(nullptr); }

    RVGraph* graph() const { return m_graph; }
    // Forgets what is known of another graph.
    void bind(RVGraph* graph) {
        if (graph == m_graph) return;
        ++generation;
        if (m_graph != nullptr) GraphAccess::removeObserver(m_graph, this);
        forget();
        if (graph != nullptr) GraphAccess::addObserver(graph, this);
        m_graph = graph;
    }

    template <class T>
    T get(const Column<T>& column, const RVGraphMember* member) const {
        const bool isKnown = member != nullptr && m_graph != nullptr && member->pHomeGraph() == m_graph;
        return isKnown ? column.get(member->denseIndex()) : T{};
    }
    // The first member to be known brings its graph.
    template <class T>
    void set(Column<T>& column, const RVGraphMember* member, T value) {
        RVGraph* const home = member == nullptr ? nullptr : member->pHomeGraph();
        if (home == nullptr) return;
        if (m_graph == nullptr) bind(home);
        if (m_graph != home) return;
        column.set(member->denseIndex(), value,
                   member->isNode() ? home->nodeIndexLimit() : home->edgeIndexLimit());
    }

    bool isPathGraph = false;
    std::uint64_t generation = 0;  // counts the graphs
    RVNode* root = nullptr;
    Column<RVEdge*> sidetracks;
    Column<std::int64_t> costs;
    Column<int> types;

private:
    void forget() {
        m_graph = nullptr;
        isPathGraph = false;
        root = nullptr;
        sidetracks.clear();
        costs.clear();
        types.clear();
    }
    void forgetMember(const RVGraphMember* member, int index) {
        if (member == root) root = nullptr;
        if (member->isNode()) {
            sidetracks.reset(index);
        } else {
            costs.reset(index);
            types.reset(index);
        }
    }
    void graphDies(RVGraph*) override {
        ++generation;
        forget();
    }
    void memberDies(RVGraphMember* member) override { forgetMember(member, member->denseIndex()); }
    void memberMoved(RVGraphMember* member, RVGraph*, int indexThere) override {
        forgetMember(member, indexThere);
    }

    RVGraph* m_graph = nullptr;
};

}  // namespace rv

RVSortedPathsOutputData::RVSortedPathsOutputData() : m_pathGraph(std::make_unique<rv::PathGraphValues>()) {}

RVSortedPathsOutputData::RVSortedPathsOutputData(const RVSortedPathsOutputData& other, RVDeepFlagEnum)
    : RVSortedPathsOutputData() {
    RVSortedPathsOutputData::copyObject(&other);
}

RVSortedPathsOutputData::~RVSortedPathsOutputData() = default;

RVSortedPathsOutputData& RVSortedPathsOutputData::operator=(const RVSortedPathsOutputData& other) {
    if (this == &other) return *this;
    RVAnalysisOutputData::operator=(other);
    m_pathExists = other.m_pathExists;
    m_shortestPathLength = other.m_shortestPathLength;
    m_numberOfPaths = other.m_numberOfPaths;
    m_acyclic = other.m_acyclic;
    m_finishNodeCost = other.m_finishNodeCost;
    m_pStartNode = other.m_pStartNode;
    m_pFinishNode = other.m_pFinishNode;
    *m_pathGraph = *other.m_pathGraph;
    m_treeEdges = other.m_treeEdges;
    return *this;
}

RV_OBJECT_COPY_IMPL(RVSortedPathsOutputData)

RVGraph* RVSortedPathsOutputData::pPathGraph() const {
    return m_pathGraph->isPathGraph ? m_pathGraph->graph() : nullptr;
}

RVGraph* RVSortedPathsOutputData::pPathGraph(RVGraph* graph) {
    m_pathGraph->bind(graph);
    m_pathGraph->isPathGraph = graph != nullptr;
    return graph;
}

RVNode* RVSortedPathsOutputData::pRootNode() const { return m_pathGraph->root; }

RVNode* RVSortedPathsOutputData::pRootNode(RVNode* node) {
    if (node != nullptr && m_pathGraph->graph() == nullptr) m_pathGraph->bind(node->pHomeGraph());
    return m_pathGraph->root = node;
}

std::uint64_t RVSortedPathsOutputData::pathGraphGeneration() const { return m_pathGraph->generation; }

void RVSortedPathsOutputData::discardPathGraph() { delete pPathGraph(); }

RVEdge* RVSortedPathsOutputData::pSidetrackEdge(RVNode* node) const {
    return m_pathGraph->get(m_pathGraph->sidetracks, node);
}

RVEdge* RVSortedPathsOutputData::pSidetrackEdge(RVNode* node, RVEdge* edge) {
    m_pathGraph->set(m_pathGraph->sidetracks, node, edge);
    return edge;
}

int RVSortedPathsOutputData::cost(RVEdge* edge) const { return rv::saturate(exactCost(edge)); }

int RVSortedPathsOutputData::cost(RVEdge* edge, int value) {
    exactCost(edge, value);
    return value;
}

std::int64_t RVSortedPathsOutputData::exactCost(RVEdge* edge) const {
    return m_pathGraph->get(m_pathGraph->costs, edge);
}

void RVSortedPathsOutputData::exactCost(RVEdge* edge, std::int64_t value) {
    m_pathGraph->set(m_pathGraph->costs, edge, value);
}

int RVSortedPathsOutputData::shortestPathLength() const { return rv::saturate(m_shortestPathLength); }

int RVSortedPathsOutputData::shortestPathLength(int length) {
    m_shortestPathLength = length;
    return length;
}

int RVSortedPathsOutputData::type(RVEdge* edge) const { return m_pathGraph->get(m_pathGraph->types, edge); }

int RVSortedPathsOutputData::type(RVEdge* edge, int value) {
    m_pathGraph->set(m_pathGraph->types, edge, value);
    return value;
}

void RVSortedPathsOutputData::reset() {
    m_pathExists = m_numberOfPaths = m_acyclic = m_finishNodeCost = 0;
    m_shortestPathLength = 0;
    m_pStartNode = m_pFinishNode = nullptr;
    m_pathGraph->bind(nullptr);
    m_treeEdges.clear();
}

// The run

namespace {

using rv::placeOf;

// Of nodes that are not reached, and of edges there.
constexpr std::int64_t kInfiniteDelta = std::numeric_limits<std::int64_t>::max();

enum EdgeType : std::uint8_t { kRootEdge = 0, kHeapEdge = 1, kCrossEdge = 2 };

// All edges of a graph turned around, and back on every way out. Either way the edges stand in all lists in
// the order of the graph's edge list afterwards.
class ReversedGraph {
public:
    explicit ReversedGraph(const RVGraph* graph) : m_graph(graph) { reverse(); }
    ReversedGraph(const ReversedGraph&) = delete;
    ReversedGraph& operator=(const ReversedGraph&) = delete;
    ~ReversedGraph() { reverse(); }

private:
    void reverse() {
        for (RVEdge* edge : *m_graph->pEdgeList()) edge->invertDirection();
    }
    const RVGraph* m_graph;
};

}  // namespace

// Values by dense index: of the working graph's nodes and edges, and of those of the path graph, whose
// indices are those of their making.
struct RVSortedPathsAlgorithm::Run {
    bool isTreeEdge(const RVEdge* edge) const { return treeEdges[placeOf(edge->pSourceNode())] == edge; }
    std::int64_t delta(const RVNode* pathNode) const { return deltas[placeOf(detours[placeOf(pathNode)])]; }

    RVNode* addPathNode(RVEdge* detour) {
        RVNode* node = pathGraph->addNode(0);
        detours.push_back(detour);
        leftChildren.push_back(nullptr);
        rightChildren.push_back(nullptr);
        return node;
    }
    RVEdge* addPathEdge(RVNode* from, RVNode* to, EdgeType type) {
        pathEdgeTypes.push_back(type);
        return pathGraph->addEdge(from, to, 0);
    }
    RVNode*& child(const RVNode* node, bool right) {
        return (right ? rightChildren : leftChildren)[placeOf(node)];
    }

    void heapify(std::vector<RVEdge*>& heap) const;
    std::vector<RVNode*> sortedTreeNodes(int limit) const;
    RVNode* insert(RVNode* root, RVNode* added, int size);

    RVNode* start = nullptr;
    RVNode* finish = nullptr;
    std::vector<std::int64_t> costs;  // of edges, with the nodes that they enter
    RVNodeDList removedNodes;
    std::vector<std::int64_t> distances;  // to the finish node
    std::vector<RVEdge*> treeEdges;
    std::vector<std::int64_t> deltas;
    std::vector<RVNode*> heapRoots;  // by node: of the out-heap, then of the sidetrack heap; none for empty
    bool pathExists = false;
    bool hasCycle = false;
    int numberOfPaths = 0;

    std::unique_ptr<RVGraph> pathGraph;
    RVNode* root = nullptr;
    std::vector<RVEdge*> detours;  // by path-graph node; none for the root
    std::vector<RVNode*> leftChildren;
    std::vector<RVNode*> rightChildren;
    std::vector<EdgeType> pathEdgeTypes;
    std::vector<std::int64_t> pathEdgeCosts;
};

RVSortedPathsAlgorithm::RVSortedPathsAlgorithm() = default;
RV_OBJECT_IMPL(RVSortedPathsAlgorithm)

RVServiceErrorCodeEnum RVSortedPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVSortedPathsInputData::castDown(pInputData()));
}

void RVSortedPathsAlgorithm::initialize() {
    RVInternalGraphAlgorithm::initialize();
    m_run = std::make_unique<Run>();
}

void RVSortedPathsAlgorithm::cleanup() {
    RVInternalGraphAlgorithm::cleanup();
    m_run = nullptr;
}

void RVSortedPathsAlgorithm::parseInputData() {
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    Run& run = *m_run.get();
    run.start = pInternalData()->pCopyNode(input->pStartNode());
    run.finish = pInternalData()->pCopyNode(input->pFinishNode());
    run.costs.resize(static_cast<std::size_t>(pAssociatedGraph()->edgeIndexLimit()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        run.costs[placeOf(edge)] = input->cost(pInternalData()->pOriginalEdge(edge));
    }
}

void RVSortedPathsAlgorithm::privatePreprocessGraph() {
    const Run& run = *m_run.get();
    noteOrders();
    removeOtherNodes(run.start, 0);
    if (run.finish->pOwnerGraph() != nullptr) removeOtherNodes(run.finish, 1);
    addNodeCosts();
}

// A part that fails has reached nothing, so that nothing is left.
void RVSortedPathsAlgorithm::removeOtherNodes(RVNode* end, int reversed) {
    RVGraph* graph = pAssociatedGraph();
    RVReachableNodesOutputData reachable;
    rv::findReachable(graph, end, reversed, reachable);
    rv::forEachOtherNode(graph, *reachable.pNodeList(), [&](RVNode* node) {
        m_run.get()->removedNodes.appendNode(node);
        graph->removeNode(node);
    });
}

void RVSortedPathsAlgorithm::addNodeCosts() {
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    // Edges that have come since the input was read cost what edges cost by default.
    m_run.get()->costs.resize(static_cast<std::size_t>(pAssociatedGraph()->edgeIndexLimit()), 1);
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        const int nodeCost = input->cost(pInternalData()->pOriginalNode(node));
        if (nodeCost == 0) continue;
        for (const RVEdge* edge : *node->pInEdgeList()) {
            m_run.get()->costs[placeOf(edge)] += nodeCost;
        }
    }
}

void RVSortedPathsAlgorithm::privatePostprocessGraph() { restoreWorkingGraph(); }

void RVSortedPathsAlgorithm::restoreWorkingGraph() {
    if (m_run.get() == nullptr) return;
    for (RVNode* node : m_run.get()->removedNodes) pAssociatedGraph()->insertNode(node);
    m_run.get()->removedNodes.deleteAllCells();
}

RVServiceErrorCodeEnum RVSortedPathsAlgorithm::algorithmBody() {
    Run& run = *m_run.get();
    const RVGraph* graph = pAssociatedGraph();
    if (run.finish->pOwnerGraph() == nullptr) return RV_NO_ERROR;
    const RVServiceErrorCodeEnum code = makeShortestPathTree();
    if (code != RV_NO_ERROR || run.distances[placeOf(run.start)] >= rv::kInfinite) return code;
    run.pathExists = true;
    calculateDeltaValues();
    run.pathGraph = rv::newGraphLike(graph);
    buildOutHeaps();
    buildSidetrackHeaps();
    buildPathGraph();
    enumeratePaths();
    return RV_NO_ERROR;
}

// Over the graph with all edges reversed, so that distances and tree edges lead to the finish node.
RVServiceErrorCodeEnum RVSortedPathsAlgorithm::makeShortestPathTree() {
    Run& run = *m_run.get();
    RVGraph* graph = pAssociatedGraph();
    RVSingleSourceShortestPathsAlgorithm search;
    RVSingleSourceShortestPathsInputData input(graph);
    RVSingleSourceShortestPathsOutputData output;
    run.costs.resize(static_cast<std::size_t>(graph->edgeIndexLimit()), 1);
    search.useOriginalGraph(1);
    search.m_exact = {&run.costs, &run.distances};
    input.pStartNode(run.finish);
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    {
        const ReversedGraph reversed(graph);
        code = rv::runPart(search, input, output);
    }
    if (code != RV_NO_ERROR) return code;
    run.treeEdges.resize(run.distances.size());
    for (RVNode* node : *graph->pNodeList()) run.treeEdges[placeOf(node)] = output.pTreeEdge(node);
    return code;
}

// A node that Dijkstra's method did not reach is infinitely far from the finish node, and so is what lies
// before it: edges to and from there are on no path that counts.
void RVSortedPathsAlgorithm::calculateDeltaValues() {
    Run& run = *m_run.get();
    run.deltas.assign(run.costs.size(), kInfiniteDelta);
    for (const RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        const std::int64_t before = run.distances[placeOf(edge->pSourceNode())];
        const std::int64_t behind = run.distances[placeOf(edge->pTargetNode())];
        if (before == kInfiniteDelta || behind == kInfiniteDelta) continue;
        run.deltas[placeOf(edge)] = behind + run.costs[placeOf(edge)] - before;
    }
}

// Position 0 holds a least delta and has one child, position 1; from there on the children of position i are
// 2 i and 2 i + 1.
void RVSortedPathsAlgorithm::Run::heapify(std::vector<RVEdge*>& heap) const {
    const auto isLess = [this](const RVEdge* a, const RVEdge* b) {
        return deltas[placeOf(a)] < deltas[placeOf(b)];
    };
    for (std::size_t i = 1; i < heap.size(); ++i) {
        if (isLess(heap[i], heap[0])) std::swap(heap[i], heap[0]);
    }
    for (std::size_t j = heap.size(); j-- > 1;) {
        for (std::size_t i = j; 2 * i < heap.size();) {
            std::size_t least = 2 * i;
            if (least + 1 < heap.size() && isLess(heap[least + 1], heap[least])) ++least;
            if (!isLess(heap[least], heap[i])) break;
            std::swap(heap[i], heap[least]);
            i = least;
        }
    }
}

void RVSortedPathsAlgorithm::buildOutHeaps() {
    Run& run = *m_run.get();
    run.heapRoots.assign(run.distances.size(), nullptr);
    std::vector<RVEdge*> heap;
    std::vector<RVNode*> heapNodes;
    for (const RVNode* node : *pAssociatedGraph()->pNodeList()) {
        heap.clear();
        heapNodes.clear();
        for (RVEdge* edge : *node->pOutEdgeList()) {
            if (!run.isTreeEdge(edge) && run.deltas[placeOf(edge)] != kInfiniteDelta) heap.push_back(edge);
        }
        run.heapify(heap);
        for (RVEdge* edge : heap) heapNodes.push_back(run.addPathNode(edge));
        for (std::size_t i = 1; i < heap.size(); ++i) {
            run.addPathEdge(heapNodes[i / 2], heapNodes[i], kHeapEdge);
        }
        if (!heap.empty()) run.heapRoots[placeOf(node)] = heapNodes[0];
    }
}

// Breadth first from the finish node, so that every node comes after the one to which its tree edge leads.
std::vector<RVNode*> RVSortedPathsAlgorithm::Run::sortedTreeNodes(int limit) const {
    std::vector<RVNode*> nodes;
    nodes.reserve(static_cast<std::size_t>(limit));
    nodes.push_back(finish);
    for (std::size_t i = 0; i < nodes.size(); ++i) {
        for (const RVEdge* edge : *nodes[i]->pInEdgeList()) {
            if (isTreeEdge(edge)) nodes.push_back(edge->pSourceNode());
        }
    }
    return nodes;
}

void RVSortedPathsAlgorithm::buildSidetrackHeaps() {
    Run& run = *m_run.get();
    std::vector<int> sizes(run.heapRoots.size());
    for (const RVNode* node : run.sortedTreeNodes(pAssociatedGraph()->numberOfNodes())) {
        RVNode*& root = run.heapRoots[placeOf(node)];
        int& size = sizes[placeOf(node)];
        if (node == run.finish) {
            size = root != nullptr ? 1 : 0;
            continue;
        }
        const RVNode* next = run.treeEdges[placeOf(node)]->pTargetNode();
        size = sizes[placeOf(next)];
        root = root == nullptr ? run.heapRoots[placeOf(next)]
                               : run.insert(run.heapRoots[placeOf(next)], root, ++size);
    }
    // The children become edges only now, after out-heap edges could be told by being the only ones.
    for (RVNode* node : *run.pathGraph->pNodeList()) {
        for (const bool right : {false, true}) {
            if (RVNode* child = run.child(node, right)) run.addPathEdge(node, child, kHeapEdge);
        }
    }
}

// Inserts the root of an out-heap as the last, size-th position of a heap of such roots. The positions above
// it are copied, so that the heap without it stays. Gives the new heap's root.
RVNode* RVSortedPathsAlgorithm::Run::insert(RVNode* heapRoot, RVNode* added, int size) {
    int depth = 0;
    while ((size >> depth) > 1) ++depth;
    const auto turnsRight = [=](int level) { return (size >> (depth - level - 1)) % 2 != 0; };
    std::vector<RVNode*> path;  // from the root
    RVNode* old = heapRoot;
    for (int level = 0; level < depth; ++level) {
        RVNode* copy = addPathNode(detours[placeOf(old)]);
        child(copy, false) = child(old, false);
        child(copy, true) = child(old, true);
        if (const RVEdge* outHeapEdge = old->pOutEdge())
            addPathEdge(copy, outHeapEdge->pTargetNode(), kHeapEdge);
        if (level > 0) child(path.back(), turnsRight(level - 1)) = copy;
        path.push_back(copy);
        old = child(old, turnsRight(level));
    }
    if (depth > 0) child(path.back(), turnsRight(depth - 1)) = added;
    path.push_back(added);

    for (int level = depth; level > 0; --level) {
        RVNode* parent = path[static_cast<std::size_t>(level - 1)];
        if (delta(added) >= delta(parent)) break;
        const bool right = turnsRight(level - 1);
        std::swap(child(added, false), child(parent, false));
        std::swap(child(added, true), child(parent, true));
        child(added, right) = parent;
        if (level > 1) child(path[static_cast<std::size_t>(level - 2)], turnsRight(level - 2)) = added;
        std::swap(path[static_cast<std::size_t>(level)], path[static_cast<std::size_t>(level - 1)]);
    }
    return path.front();
}

void RVSortedPathsAlgorithm::buildPathGraph() {
    Run& run = *m_run.get();
    for (const RVEdge* edge : *run.pathGraph->pEdgeList()) {
        run.pathEdgeCosts.push_back(run.delta(edge->pTargetNode()) - run.delta(edge->pSourceNode()));
    }
    const auto leadOn = [&](RVNode* from, const RVNode* node, EdgeType type) {
        RVNode* heapRoot = run.heapRoots[placeOf(node)];
        if (heapRoot == nullptr) return;
        run.addPathEdge(from, heapRoot, type);
        run.pathEdgeCosts.push_back(run.delta(heapRoot));
    };
    for (RVNode* node : *run.pathGraph->pNodeList()) {
        leadOn(node, run.detours[placeOf(node)]->pTargetNode(), kCrossEdge);
    }
    run.root = run.addPathNode(nullptr);
    leadOn(run.root, run.start, kRootEdge);
}

void RVSortedPathsAlgorithm::enumeratePaths() {
    Run& run = *m_run.get();
    RVTopologicalSortAlgorithm sort;
    RVTopologicalSortInputData input(pAssociatedGraph());
    RVTopologicalSortOutputData sorted;
    rv::runPart(sort, input, sorted);
    run.hasCycle = sorted.acyclic() == 0;
    run.numberOfPaths = rv::kInfinite;
    if (run.hasCycle) return;
    std::vector<int> counts(run.distances.size());
    for (const RVNode* node : *sorted.pNodeList()) {
        std::int64_t sum = node == run.start ? 1 : 0;
        for (const RVEdge* edge : *node->pInEdgeList()) {
            sum += counts[placeOf(edge->pSourceNode())];
            if (sum > rv::kInfinite) return;
        }
        counts[placeOf(node)] = static_cast<int>(sum);
    }
    run.numberOfPaths = counts[placeOf(run.finish)];
}

void RVSortedPathsAlgorithm::generateOutputData() {
    const RVAlgorithmData* data = pInternalData();
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    auto* output = RVSortedPathsOutputData::castDown(pOutputData());
    Run& run = *m_run.get();
    output->pathExists(run.pathExists ? 1 : 0);
    output->acyclic(run.hasCycle ? 0 : 1);
    output->numberOfPaths(run.numberOfPaths);
    if (!run.pathExists) return;
    output->m_shortestPathLength = run.distances[placeOf(run.start)];
    output->pStartNode(data->pOriginalNode(run.start));
    output->pFinishNode(data->pOriginalNode(run.finish));
    output->finishNodeCost(input->cost(output->pFinishNode()));
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        RVEdge* edge = run.treeEdges[placeOf(node)];
        if (edge != nullptr) output->pTreeEdge(data->pOriginalNode(node), data->pOriginalEdge(edge));
    }
    output->pPathGraph(run.pathGraph.get());
    output->pRootNode(run.root);
    for (RVNode* node : *run.pathGraph->pNodeList()) {
        RVEdge* detour = run.detours[placeOf(node)];
        if (detour != nullptr) output->pSidetrackEdge(node, data->pOriginalEdge(detour));
    }
    for (RVEdge* edge : *run.pathGraph->pEdgeList()) {
        output->exactCost(edge, run.pathEdgeCosts[placeOf(edge)]);
        output->type(edge, run.pathEdgeTypes[placeOf(edge)]);
    }
    static_cast<void>(run.pathGraph.release());  // the caller's from now on
}
