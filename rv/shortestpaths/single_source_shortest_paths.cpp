#include "rv/shortestpaths/single_source_shortest_paths.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/run_pulse.h"
#include "rv/shortestpaths/unreached.h"
#include "rv/traversal/topological_sort.h"

RV_OBJECT_IMPL(RVSingleSourceShortestPathsInputData)
RV_OBJECT_IMPL(RVSingleSourceShortestPathsOutputData)
RV_OBJECT_IMPL(RVSingleSourceShortestPathsBinTree)

// Input and output

int RVSingleSourceShortestPathsInputData::undirected(RVEdge* edge, int flag) {
    flag != 0 ? m_undirectedEdges->add(edge) : m_undirectedEdges->remove(edge);
    return flag;
}

std::span<const RVInputField> RVSingleSourceShortestPathsInputData::inputFields() const {
    using namespace rv::field;
    using D = RVSingleSourceShortestPathsInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<D, &D::undirectedFlag, &D::undirectedFlag>("undirected").announcedBy(RVInputField::none),
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
        edgeFlag<D, &D::undirected, &D::undirected>("edgeUndirected"),
    };
    return fields;
}

RVEdge* RVSingleSourceShortestPathsOutputData::pTreeEdge(RVNode* node, RVEdge* edge) {
    m_treeEdges->put(node, edge);
    return edge;
}

int RVSingleSourceShortestPathsOutputData::distance(RVNode* node) const {
    return m_distances->getInt(node, rv::kInfinite);
}

void RVSingleSourceShortestPathsOutputData::reset() {
    m_treeEdges->empty(0, 0);
    m_distances->empty(1, 0);
}

// The run

namespace {

using rv::placeOf;

}  // namespace

struct RVSingleSourceShortestPathsAlgorithm::Run {
    static constexpr std::int64_t kUnreached = std::numeric_limits<std::int64_t>::max();

    explicit Run(RVSingleSourceShortestPathsAlgorithm* algorithm) : candidates(algorithm) {}

    // Edges and nodes that have come since the input was read have the defaults.
    void cover(const RVGraph* graph) {
        costs.resize(static_cast<std::size_t>(graph->edgeIndexLimit()), 1);
        undirectedEdges.resize(costs.size());
        distances.assign(static_cast<std::size_t>(graph->nodeIndexLimit()), kUnreached);
        treeEdges.assign(distances.size(), nullptr);
    }

    std::int64_t distance(const RVNode* node) const { return distances[placeOf(node)]; }
    bool isFollowedBackward(const RVEdge* edge) const {
        return isUndirected || (anyUndirectedEdge && undirectedEdges[placeOf(edge)]);
    }
    // Whether the way over an edge out of a node is cheaper than those known to its other end, which then
    // takes it.
    bool improve(std::int64_t distanceBefore, RVEdge* edge, const RVNode* node,
                 std::int64_t limit = kUnreached) {
        const std::int64_t distance = distanceBefore + costs[placeOf(edge)];
        if (distance >= std::min(distances[placeOf(node)], limit)) return false;
        distances[placeOf(node)] = distance;
        treeEdges[placeOf(node)] = edge;
        return true;
    }
    // Calls f(edge, other end) for the ways out of a node.
    template <class F>
    void forEachWay(const RVNode* node, F f) const {
        for (RVEdge* edge : *node->pOutEdgeList()) f(edge, edge->pTargetNode());
        if (!isUndirected && !anyUndirectedEdge) return;
        for (RVEdge* edge : *node->pInEdgeList()) {
            if (isFollowedBackward(edge)) f(edge, edge->pSourceNode());
        }
    }

    RVNode* start = nullptr;
    bool isUndirected = false;
    bool anyUndirectedEdge = false;
    std::vector<std::int64_t> costs;
    std::vector<bool> undirectedEdges;
    RVNodeDList removedNodes;
    std::vector<std::int64_t> distances;
    std::vector<RVEdge*> treeEdges;
    RVSingleSourceShortestPathsBinTree candidates;
    std::vector<RVBinTreeCell*> cells;  // of the candidates
};

RV_OBJECT_IMPL(RVSingleSourceShortestPathsAlgorithm)

int RVSingleSourceShortestPathsBinTree::keyOf(RVObject* node) const {
    const auto* run = m_pAlgorithm == nullptr ? nullptr : m_pAlgorithm->m_run.get();
    const std::size_t place = placeOf(RVNode::castDown(node));
    return run == nullptr || place >= run->distances.size() ? rv::kInfinite
                                                            : rv::saturate(run->distances[place]);
}

RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVSingleSourceShortestPathsInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
}

void RVSingleSourceShortestPathsAlgorithm::parseInputData() {
    const auto* input = RVSingleSourceShortestPathsInputData::castDown(pInputData());
    const RVGraph* graph = pAssociatedGraph();
    Run& run = m_run.make(this);
    run.start = pInternalData()->pCopyNode(input->pStartNode());
    run.isUndirected = input->directed() == 0;
    run.cover(graph);
    for (RVEdge* edge : *graph->pEdgeList()) {
        RVEdge* original = pInternalData()->pOriginalEdge(edge);
        run.costs[placeOf(edge)] =
            m_exact.costs == nullptr ? input->cost(original) : (*m_exact.costs)[placeOf(edge)];
        if (input->undirected(original) != 0)
            run.anyUndirectedEdge = run.undirectedEdges[placeOf(edge)] = true;
    }
}

// A part that fails has reached nothing, so that nothing is left.
void RVSingleSourceShortestPathsAlgorithm::privatePreprocessGraph() {
    RVGraph* graph = pAssociatedGraph();
    Run& run = *m_run;
    run.cover(graph);
    RVReachableNodesAlgorithm search;
    RVReachableNodesInputData input(graph);
    RVReachableNodesOutputData output;
    input.pStartNode(run.start);
    input.undirected(run.isUndirected ? 1 : 0);
    if (run.anyUndirectedEdge) {
        for (RVEdge* edge : *graph->pEdgeList()) {
            if (run.undirectedEdges[placeOf(edge)]) input.undirected(edge, 1);
        }
    }
    rv::runPart(*this, search, input, output);
    rv::forEachOtherNode(graph, *output.pNodeList(), [&](RVNode* node) {
        noteOrders();
        run.removedNodes.appendNode(node);
        graph->removeNode(node);
    });
}

void RVSingleSourceShortestPathsAlgorithm::privatePostprocessGraph() { restoreWorkingGraph(); }

void RVSingleSourceShortestPathsAlgorithm::restoreWorkingGraph() {
    if (m_run.get() == nullptr) return;
    for (RVNode* node : m_run->removedNodes) pAssociatedGraph()->insertNode(node);
    m_run->removedNodes.deleteAllCells();
}

RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::algorithmBody() {
    m_run->cover(pAssociatedGraph());
    if (makeShortestPathTreeAcyclic() == RV_NO_ERROR) return RV_NO_ERROR;
    if (makeShortestPathTreeDijkstra() == RV_NO_ERROR) return RV_NO_ERROR;
    return makeShortestPathTreeBellmanFord();
}

bool RVSingleSourceShortestPathsAlgorithm::hasUndirectedEdges() const {
    const Run& run = *m_run;
    if (run.isUndirected || !run.anyUndirectedEdge) return run.isUndirected;
    for (const RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (run.undirectedEdges[placeOf(edge)]) return true;
    }
    return false;
}

bool RVSingleSourceShortestPathsAlgorithm::hasNegativeEdgeCosts() const {
    for (const RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        if (m_run->costs[placeOf(edge)] < 0) return true;
    }
    return false;
}

RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::makeShortestPathTreeAcyclic() {
    if (hasUndirectedEdges()) return RV_ALGORITHM_FAILURE;
    RVTopologicalSortAlgorithm sort;
    RVTopologicalSortInputData input(pAssociatedGraph());
    RVTopologicalSortOutputData output;
    rv::runPart(*this, sort, input, output);
    if (output.acyclic() == 0) return RV_ALGORITHM_FAILURE;
    Run& run = *m_run;
    run.distances[placeOf(run.start)] = 0;
    rv::RunPulse pulse(pRunControl(), "cheapest paths", pAssociatedGraph()->numberOfEdges());
    for (const RVNode* node : *output.pNodeList()) {
        pulse.beat(1 + node->inDegree());
        for (RVEdge* edge : *node->pInEdgeList()) {
            const std::int64_t before = run.distance(edge->pSourceNode());
            if (before != Run::kUnreached) run.improve(before, edge, node);
        }
    }
    return RV_NO_ERROR;
}

// A candidate whose distance falls takes its cell along.
RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::makeShortestPathTreeDijkstra() {
    if (hasNegativeEdgeCosts()) return RV_NEGATIVE_COST;
    Run& run = *m_run;
    run.cells.assign(run.distances.size(), nullptr);
    run.distances[placeOf(run.start)] = 0;
    run.cells[placeOf(run.start)] = run.candidates.addObject(run.start);
    rv::RunPulse pulse(pRunControl(), "cheapest paths", pAssociatedGraph()->numberOfEdges());
    while (RVBinTreeCell* nearest = run.candidates.pFirstCell()) {
        const auto* node = static_cast<RVNode*>(nearest->pObject());
        pulse.beat(1 + node->degree());
        run.candidates.discardCell(nearest);
        run.cells[placeOf(node)] = nullptr;
        const std::int64_t distance = run.distance(node);
        run.forEachWay(node, [&](RVEdge* edge, RVNode* other) {
            // What is infinitely far is not reached. The tree reads the new distance when the cell goes in.
            if (!run.improve(distance, edge, other, rv::kInfinite)) return;
            RVBinTreeCell*& cell = run.cells[placeOf(other)];
            if (cell != nullptr) run.candidates.removeCell(cell);
            cell = cell != nullptr ? run.candidates.insertCell(cell) : run.candidates.addObject(other);
        });
    }
    return RV_NO_ERROR;
}

// Without negative cycle a cheapest path has fewer edges than there are nodes, and pass p settles those of p
// edges. Exact sums cannot come to rest on a negative cycle; once one lies below what any path without a
// repeated node can cost, there is such a cycle.
RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::makeShortestPathTreeBellmanFord() {
    Run& run = *m_run;
    const int nodes = pAssociatedGraph()->numberOfNodes();
    const std::int64_t least =
        2 * std::int64_t{rv::kSmallest} * nodes;  // costs may be those of edge and node
    std::vector<RVNode*> current{run.start};
    std::vector<RVNode*> next;
    std::vector<int> listedIn(run.distances.size());  // by node, the last pass that lists it as next
    run.distances[placeOf(run.start)] = 0;
    rv::RunPulse pulse(pRunControl(), "cheapest paths");
    for (int pass = 1; !current.empty() && pass <= nodes; ++pass) {
        next.clear();
        for (const RVNode* node : current) {
            pulse.beat(1 + node->degree());
            const std::int64_t distance = run.distance(node);
            if (distance < least) return RV_NEGATIVE_CYCLE;
            run.forEachWay(node, [&](RVEdge* edge, RVNode* other) {
                if (!run.improve(distance, edge, other) || listedIn[placeOf(other)] == pass) return;
                listedIn[placeOf(other)] = pass;
                next.push_back(other);
            });
        }
        std::swap(current, next);
    }
    return current.empty() ? RV_NO_ERROR : RV_NEGATIVE_CYCLE;
}

void RVSingleSourceShortestPathsAlgorithm::generateOutputData() {
    const RVAlgorithmData* data = pInternalData();
    const Run& run = *m_run;
    auto* output = RVSingleSourceShortestPathsOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    if (m_exact.distances != nullptr) *m_exact.distances = run.distances;
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->distance(original, rv::saturate(run.distance(node)));
        RVEdge* edge = run.treeEdges[placeOf(node)];
        if (edge != nullptr) output->pTreeEdge(original, data->pOriginalEdge(edge));
    }
}
