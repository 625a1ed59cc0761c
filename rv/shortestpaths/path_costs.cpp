#include "rv/shortestpaths/path_costs.h"

#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVEdgeExtensionShortestPathsInput)
RV_OBJECT_IMPL(RVPathCostInputData)

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
