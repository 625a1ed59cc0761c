#include "rv/traversal/tree_test.h"

#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/disjoint_sets.h"
#include "rv/kernels/flat_graph.h"

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
    m_isForest = 0;
    if (graph->numberOfEdges() >= graph->numberOfNodes()) return RV_NO_ERROR;
    if (rv::checkInputGraph(*pInputData()) != RV_NO_ERROR) {  // a hook may have taken the factory away
        if (debugMode() != 0) wprintf_s(L"Error in cc alg. Return code is %d\n", RV_ALGORITHM_FAILURE);
        return RV_ALGORITHM_FAILURE;
    }
    m_isForest = isForest(graph) ? 1 : 0;
    return RV_NO_ERROR;
}

// Without a cycle no edge joins what hangs together already. If no node has more than one in-edge, every tree
// has one node without: it has one edge less than it has nodes.
bool RVTreeTestAlgorithm::isForest(const RVGraph* graph) const {
    const auto flat = rv::snapshotOf(graph);
    const rv::GraphOrder order = flat->order();
    const bool isRooted = RVTreeTestInputData::castDown(pInputData())->directed() != 0;
    rv::RunPulse pulse(pRunControl(), "tree test", graph->numberOfEdges());
    rv::DisjointSets sets(rv::nodeLimitOf(graph));
    std::vector<bool> hasInEdge(rv::nodeLimitOf(graph));
    bool isForest = true;
    order.forEachEdge([&](rv::Index edge) {
        pulse.beat();
        const rv::Ends ends = order.ends[edge];
        if (!sets.join(ends.source, ends.target) || (isRooted && hasInEdge[ends.target])) isForest = false;
        hasInEdge[ends.target] = true;
    });
    return isForest;
}

void RVTreeTestAlgorithm::generateOutputData() {
    const RVGraph* graph = pInputData()->pAssociatedGraph();
    auto* output = RVTreeTestOutputData::castDown(pOutputData());
    output->pAssociatedGraph(pInputData()->pInputGraph());
    output->isForest(m_isForest);
    const bool isTree = m_isForest != 0 && graph->numberOfEdges() == graph->numberOfNodes() - 1;
    output->isTree(graph->numberOfNodes() == 0 || isTree ? 1 : 0);
}
