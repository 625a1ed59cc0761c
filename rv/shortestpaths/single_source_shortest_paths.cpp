#include "rv/shortestpaths/single_source_shortest_paths.h"

#include <algorithm>
#include <utility>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/cheapest_tree.h"

RV_OBJECT_IMPL(RVSingleSourceShortestPathsInputData)
RV_OBJECT_IMPL(RVSingleSourceShortestPathsOutputData)

// Input and output

int RVSingleSourceShortestPathsInputData::undirected(RVEdge* edge, int flag) {
    m_undirectedSet.store(edge, flag != 0 ? 1 : 0, m_undirected);
    return flag;
}

bool RVSingleSourceShortestPathsInputData::hasNegativeCosts(const RVGraph* graph) const {
    if (!m_costMap.isHandedOut()) return m_edgeCosts.hasNegatives(graph);
    for (RVEdge* edge : *graph->pEdgeList()) {
        if (cost(edge) < 0) return true;
    }
    return false;
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

void RVSingleSourceShortestPathsOutputData::assign(RVGraph* graph, rv::Buffer<int>&& distances,
                                                   rv::Buffer<RVEdge*>&& treeEdges) {
    m_distanceMap.assign(graph, std::move(distances), m_distances);
    m_treeEdgeMap.assign(graph, std::move(treeEdges), m_treeEdges);
}

void RVSingleSourceShortestPathsOutputData::reset() {
    m_treeEdgeMap.clear(m_treeEdges);
    m_distanceMap.clear(m_distances);
}

// The run

RVServiceErrorCodeEnum RVSingleSourceShortestPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVSingleSourceShortestPathsInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
}

std::optional<RVServiceErrorCodeEnum> RVSingleSourceShortestPathsAlgorithm::answer() {
    if (!isExactly<RVSingleSourceShortestPathsAlgorithm>()) return std::nullopt;
    const auto* input = RVSingleSourceShortestPathsInputData::castDown(pInputData());
    auto* output = RVSingleSourceShortestPathsOutputData::castDown(pOutputData());
    RVGraph* const graph = input->pAssociatedGraph();
    rv::RunPulse pulse(pRunControl(), "cheapest paths", graph->numberOfEdges());
    const auto flat = rv::snapshotOf(graph);
    rv::Buffer<int> spaces[2];
    const std::span<const int> costs = input->edgeCosts(graph, spaces[0]);
    const std::span<const int> undirected = input->undirectedEdges(graph, spaces[1]);
    const bool isUndirected = input->directed() == 0;
    const bool anyUndirected = std::ranges::any_of(undirected, [](int flag) { return flag != 0; });
    rv::CheapestTree tree(
        flat->out(), [&]() -> const rv::Arcs& { return flat->in(); }, rv::indexOf(input->pStartNode()),
        isUndirected || anyUndirected,
        [&](rv::Index edge) { return isUndirected || (edge < undirected.size() && undirected[edge] != 0); },
        input->hasNegativeCosts(graph), [&](rv::Index edge) { return edge < costs.size() ? costs[edge] : 1; },
        pulse);
    rv::Buffer<int> distances = tree.takeDistances();
    rv::Buffer<RVEdge*> treeEdges(distances.size(), nullptr);
    const rv::Members members(graph);
    for (rv::Index node = 0; node < distances.size(); ++node) {
        if (distances[node] != rv::kInfinite) treeEdges[node] = members.edge(tree.edge(node));
    }
    output->assign(graph, std::move(distances), std::move(treeEdges));
    return tree.hasNegativeCycle() ? RV_NEGATIVE_CYCLE : RV_NO_ERROR;
}
