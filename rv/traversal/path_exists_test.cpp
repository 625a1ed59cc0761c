#include "rv/traversal/path_exists_test.h"

#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/traversal/path_search.h"

RV_OBJECT_IMPL(RVPathExistsTestInternalData)
RV_OBJECT_IMPL(RVPathExistsTestInputData)
RV_OBJECT_IMPL(RVPathExistsTestOutputData)
RV_OBJECT_IMPL(RVPathExistsTestAlgorithm)

std::span<const RVInputField> RVPathExistsTestInputData::inputFields() const {
    using namespace rv::field;
    using B = RVTraversalInputData;
    using D = RVPathExistsTestInputData;
    static constexpr RVInputField fields[] = {
        graphObject<B, RVNode, &B::pStartNode, &B::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVPathExistsTestOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVPathExistsTestOutputData::reset() {
    m_edges->deleteAllCells();
    m_visitedNodes->deleteAllCells();
    m_pathExists = 0;
}

RVServiceErrorCodeEnum RVPathExistsTestAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVPathExistsTestInputData::castDown(pInputData()));
}

std::optional<RVServiceErrorCodeEnum> RVPathExistsTestAlgorithm::answer() {
    if (!isExactly<RVPathExistsTestAlgorithm>()) return std::nullopt;
    const auto* input = RVPathExistsTestInputData::castDown(pInputData());
    auto* output = RVPathExistsTestOutputData::castDown(pOutputData());
    rv::RunPulse pulse(pRunControl(), "path exists test");
    const rv::PathSearch search(*input, input->pStartNode(), input->pFinishNode(), pulse);
    const rv::Members members(input->pAssociatedGraph());
    output->pathExists(search.isFound() ? 1 : 0);
    search.isFound() ? members.append(search.edges(), *output->pEdgeList())
                     : members.append(search.reachedNodes(), *output->pVisitedNodeList());
    return RV_NO_ERROR;
}
