#include "rv/flow/flow_data.h"

#include "rv/framework/input_fields.h"

RV_OBJECT_IMPL(RVEdgeExtensionFlowInput)
RV_OBJECT_IMPL(RVEdgeExtensionFlowOutput)
RV_OBJECT_IMPL(RVNetworkInputData)

std::span<const RVInputField> RVNetworkInputData::inputFields() const {
    using namespace rv::field;
    using D = RVNetworkInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pSourceNode, &D::pSourceNode>("sourceNode"),
        graphObject<D, RVNode, &D::pSinkNode, &D::pSinkNode>("sinkNode"),
    };
    return fields;
}
