#include "rv/shortestpaths/unique_path_test.h"

#include <span>
#include <vector>

#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/flat_graph.h"
#include "rv/kernels/nearest.h"
#include "rv/traversal/path_search.h"

RV_OBJECT_IMPL(RVUniquePathTestInputData)
RV_OBJECT_IMPL(RVUniquePathTestInternalData)
RV_OBJECT_IMPL(RVUniquePathTestOutputData)
RV_OBJECT_IMPL(RVUniquePathTestAlgorithm)

std::span<const RVInputField> RVUniquePathTestInputData::inputFields() const {
    using namespace rv::field;
    using B = RVTraversalInputData;
    using D = RVUniquePathTestInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        graphObject<B, RVNode, &B::pStartNode, &B::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVUniquePathTestOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVUniquePathTestOutputData::reset() {
    m_edges->deleteAllCells();
    m_uniquePathExists = 0;
}

RVServiceErrorCodeEnum RVUniquePathTestAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVUniquePathTestInputData::castDown(pInputData()));
}

namespace {

// Whether every path has all edges of this one: these cost 1, all others nothing.
bool isOnlyPath(const RVUniquePathTestInputData& input, std::span<const rv::Index> path, rv::Pulse& pulse) {
    const RVGraph* graph = input.pAssociatedGraph();
    const auto flat = rv::snapshotOf(graph);
    std::vector<bool> isOnPath(flat->order().ends.size());
    for (const rv::Index edge : path) isOnPath[edge] = true;
    rv::Buffer<int> gathered;
    const auto directed = input.edgesDirected().values(graph, gathered);
    const auto cost = [&](rv::Index, rv::Index edge) { return isOnPath[edge] ? 1 : 0; };
    const auto isBothWays = [&](rv::Index edge) {
        return input.undirected() != 0 || (edge < directed.size() && directed[edge] == 0);
    };
    const rv::NearestWays ways(rv::NoCost(), rv::ArcWays(flat->out(), cost),
                               rv::ArcWays(flat->in(), cost, isBothWays));
    rv::NearestBounds<int> bounds;
    bounds.stop = rv::indexOf(input.pFinishNode());
    rv::NearestLabels<int> labels(rv::nodeLimitOf(graph));
    rv::Buffer<rv::Index> settled;
    rv::findNearest(ways, rv::indexOf(input.pStartNode()), bounds, labels, settled, pulse);
    return labels.distance(bounds.stop) >= static_cast<int>(path.size());
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVUniquePathTestAlgorithm::answer() {
    const auto* input = RVUniquePathTestInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    if (!isExactly<RVUniquePathTestAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    auto* output = RVUniquePathTestOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "unique path test");
    const rv::PathSearch search(*input, input->pStartNode(), input->pFinishNode(), pulse);
    if (!search.isFound()) return RV_NO_ERROR;
    rv::Members(graph).append(search.edges(), *output->pEdgeList());
    output->uniquePathExists(isOnlyPath(*input, search.edges(), pulse) ? 1 : 0);
    return RV_NO_ERROR;
}
