#include "rv/flow/disjoint_paths.h"

#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/disjoint_paths.h"

RV_OBJECT_IMPL(RVDisjointPathsInputData)
RV_OBJECT_IMPL(RVDisjointPathsOutputData)
RV_OBJECT_IMPL(RVNodeExtensionDisjointPaths)
RV_OBJECT_IMPL(RVDisjointPathsInternalData)

std::span<const RVInputField> RVDisjointPathsInputData::inputFields() const {
    using namespace rv::field;
    using D = RVDisjointPathsInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        graphFlag<D, &D::nodeDisjointPaths, &D::nodeDisjointPaths>("nodeDisjointPaths"),
    };
    return fields;
}

void RVDisjointPathsOutputData::buildPathList(RVDList& list) const { m_paths.buildCopies(list); }

void RVDisjointPathsOutputData::reset() {
    m_paths.clear();
    m_numberOfDisjointPaths = 0;
}

// RVDisjointPathsAlgorithm

RVServiceErrorCodeEnum RVDisjointPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVDisjointPathsInputData::castDown(pInputData()));
}

// The hooks would fail on graphs whose copies have no factory, so these take them.
std::optional<RVServiceErrorCodeEnum> RVDisjointPathsAlgorithm::answer() {
    const auto* input = RVDisjointPathsInputData::castDown(pInputData());
    auto* output = RVDisjointPathsOutputData::castDown(pOutputData());
    const RVGraph* graph = input->pAssociatedGraph();
    if (!isExactly<RVDisjointPathsAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    rv::RunPulse pulse(pRunControl(), "maximum flow");
    const auto flat = rv::snapshotOf(graph);
    const auto find = input->nodeDisjointPaths() != 0 ? rv::nodeDisjointPaths : rv::edgeDisjointPaths;
    const rv::EdgePaths paths =
        find(*flat, rv::indexOf(input->pStartNode()), rv::indexOf(input->pFinishNode()), pulse);
    const rv::Members members(graph);
    output->numberOfDisjointPaths(static_cast<int>(paths.size()));
    for (rv::Index path = 0; path < paths.size(); ++path)
        output->m_paths.add(paths[path].size(), members.edgesAt(paths[path]));
    return RV_NO_ERROR;
}
