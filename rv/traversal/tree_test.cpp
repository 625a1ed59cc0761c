#include "rv/traversal/tree_test.h"

#include "rv/framework/input_fields.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/connected_components.h"

RV_OBJECT_IMPL(RVTreeTestInputData)
RV_OBJECT_IMPL(RVTreeTestOutputData)
RV_OBJECT_IMPL(RVTreeTestAlgorithm)

std::span<const RVInputField> RVTreeTestInputData::inputFields() const {
    using namespace rv::field;
    using D = RVTreeTestInputData;
    static constexpr RVInputField fields[] = {
        graphFlag<D, &D::directed, &D::directed>("directed"),
    };
    return fields;
}

void RVTreeTestOutputData::reset() { m_isTree = m_isForest = 1; }

RVServiceErrorCodeEnum RVTreeTestAlgorithm::algorithmBody() {
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    m_isForest = 1;
    if (graph->numberOfEdges() < graph->numberOfNodes()) return checkTreeComplicated();
    m_isForest = 0;
    return RV_NO_ERROR;
}

// A graph of n nodes, m edges and k components is a forest exactly when m = n - k.
RVServiceErrorCodeEnum RVTreeTestAlgorithm::checkTreeComplicated() {
    const auto* ownInput = RVTreeTestInputData::castDown(pInputData());
    RVGraph* graph = ownInput->pAssociatedGraph();
    RVConnectedComponentsAlgorithm components;
    RVConnectedComponentsInputData input(graph);
    RVConnectedComponentsOutputData output;
    RVServiceErrorCodeEnum code = rv::runPart(*this, components, input, output);
    if (code != RV_NO_ERROR) {
        code = RV_ALGORITHM_FAILURE;
        if (debugMode() != 0) wprintf_s(L"Error in cc alg. Return code is %d\n", static_cast<int>(code));
    }
    const RVDList* list = output.pComponentList();
    if (graph->numberOfEdges() != graph->numberOfNodes() - list->length()) m_isForest = 0;
    if (ownInput->directed() != 0) {
        for (RVDListIter it(list); it && m_isForest != 0; it++) {
            if (!isRootedTree(*RVNodeDList::castDown(it.pObject()))) m_isForest = 0;
        }
    }
    return code;
}

bool RVTreeTestAlgorithm::isRootedTree(const RVNodeDList& nodes) {
    bool hasRoot = false;
    for (const RVNode* node : nodes) {
        if (node->inDegree() > 1) return false;
        if (node->inDegree() == 1) continue;
        if (hasRoot) return false;
        hasRoot = true;
    }
    return true;
}

void RVTreeTestAlgorithm::generateOutputData() {
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    auto* output = RVTreeTestOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pInputData()->pInputGraph());
    output->isForest(m_isForest);
    const bool isTree = m_isForest != 0 && graph->numberOfEdges() == graph->numberOfNodes() - 1;
    output->isTree(graph->numberOfNodes() == 0 || isTree ? 1 : 0);
}
