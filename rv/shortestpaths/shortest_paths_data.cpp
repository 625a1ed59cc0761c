#include "rv/shortestpaths/shortest_paths_data.h"

#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVShortestPathsInputData)
RV_OBJECT_IMPL(RVShortestPathsOutputData)

std::span<const RVInputField> RVShortestPathsInputData::inputFields() const {
    using namespace rv::field;
    using B = RVPathCostInputData;
    using D = RVShortestPathsInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        nodeInt<B, &B::cost, &B::cost>("cost"),
        edgeInt<B, &B::cost, &B::cost>("cost"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVShortestPathsOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVShortestPathsOutputData::reset() {
    m_edges->deleteAllCells();
    m_totalCost = 0;
    m_pathExists = 0;
}
