#include "rv/shortestpaths/path_costs.h"

#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVEdgeExtensionShortestPathsInput)
RV_OBJECT_IMPL(RVPathCostInputData)

RVEdgeAlgorithmExtension* RVPathCostInputData::newEdgeAlgorithmExtension(RVEdge* edge) {
    return newRecord<RVEdgeExtensionShortestPathsInput>(edge);
}

int RVPathCostInputData::undirected(RVEdge* edge, int flag) {
    if (auto* own = record<RVEdgeExtensionShortestPathsInput>(edge)) own->directed(flag == 0 ? 1 : 0);
    return flag == 0 ? 0 : 1;
}

int RVPathCostInputData::cost(RVEdge* edge, int value) {
    if (auto* own = record<RVEdgeExtensionShortestPathsInput>(edge)) own->cost(value);
    return value;
}

std::span<const RVInputField> RVPathCostInputData::inputFields() const {
    using namespace rv::field;
    using D = RVPathCostInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<D, &D::undirected, &D::undirected>("undirected"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
        edgeFlag<D, &D::undirected, &D::undirected>("edgeUndirected"),
    };
    return fields;
}
