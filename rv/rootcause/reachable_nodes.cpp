#include "rv/rootcause/reachable_nodes.h"

#include <algorithm>
#include <optional>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/breadth_first.h"
#include "rv/rootcause/negative_costs.h"
#include "rv/rootcause/range_search.h"

RV_OBJECT_IMPL(RVReachableNodesInputData)
RV_OBJECT_IMPL(RVReachableNodesOutputData)
RV_OBJECT_IMPL(RVReachableNodesBinTree)
RVReachableNodesAlgorithm::~RVReachableNodesAlgorithm() = default;
RV_OBJECT_NO_COPY_IMPL(RVReachableNodesAlgorithm)

std::span<const RVInputField> RVReachableNodesInputData::inputFields() const {
    using namespace rv::field;
    using B = RVPathCostInputData;
    using D = RVReachableNodesInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphFlag<B, &B::undirected, &B::undirected>("undirected"),
        graphInt<D, &D::range, &D::range>("range"),
        nodeInt<B, &B::cost, &B::cost>("cost"),
        edgeInt<B, &B::cost, &B::cost>("cost"),
        edgeFlag<B, &B::undirected, &B::undirected>("edgeUndirected"),
    };
    return fields;
}

void RVReachableNodesOutputData::buildReachableNodeList(RVNodeDList& list) const { list = *m_nodes; }

void RVReachableNodesOutputData::reset() { m_nodes->deleteAllCells(); }

int RVReachableNodesBinTree::keyOf(RVObject* node) const {
    return m_pAlgorithm == nullptr ? rv::kInfinite : m_pAlgorithm->distance(static_cast<RVNode*>(node));
}

// The search

struct RVReachableNodesAlgorithm::Run {
    explicit Run(const RVReachableNodesInputData& input) {
        question.graph = input.pAssociatedGraph();
        question.isReversed = input.reversed() != 0;
        question.isUndirected = input.undirected() != 0;
        question.hasCosts = input.range() != -1;
        question.range = question.hasCosts ? input.range() : rv::kInfinite;
        question.nodeCosts = input.nodeCosts().values(question.graph, nodeCosts);
        question.edgeCosts = input.edgeCosts().values(question.graph, edgeCosts);
        const auto directed = input.edgesDirected().values(question.graph, edgesDirected);
        if (std::find(directed.begin(), directed.end(), 0) == directed.end()) return;
        for (const int isDirected : directed) question.isBothWays.push_back(isDirected == 0);
    }

    rv::Buffer<int> nodeCosts;  // where the input keeps records
    rv::Buffer<int> edgeCosts;
    rv::Buffer<int> edgesDirected;
    rv::RangeQuestion question;
    std::optional<rv::RangeSearch> search;
};

RVServiceErrorCodeEnum RVReachableNodesAlgorithm::checkData() {
    RVServiceErrorCodeEnum code = RVBaseGraphAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVReachableNodesInputData::castDown(pInputData());
    code = rv::checkNode(input->pStartNode(), *input, RV_NO_START_NODE, RV_START_NODE_NOT_IN_GRAPH);
    if (code != RV_NO_ERROR) return code;
    if (input->range() < -1) return RV_INVALID_RANGE;
    return rv::hasNegativeCost(*input) ? RV_NEGATIVE_COST : RV_NO_ERROR;
}

RVServiceErrorCodeEnum RVReachableNodesAlgorithm::algorithmBody() {
    const auto* input = RVReachableNodesInputData::castDown(pInputData());
    RVGraph* const graph = input->pAssociatedGraph();
    RVNodeDList& list = *RVReachableNodesOutputData::castDown(pOutputData())->pNodeList();
    rv::RunPulse pulse(pRunControl(), "reachable nodes");
    Run& run = m_run.make(*input);
    const rv::Index start = rv::indexOf(input->pStartNode());
    if (!run.question.hasCosts && !run.question.hasBothWays()) {
        const auto flat = rv::snapshotOf(graph);
        const rv::Arcs& arcs = run.question.isReversed ? flat->in() : flat->out();
        rv::Members(graph).append(rv::breadthFirst(arcs, start, pulse).order, list);
    } else {
        if (!run.question.hasCosts) rv::snapshotOf(graph);  // for a question about all of it
        const std::span<const rv::Index> reached = run.search.emplace(run.question).reach(start, pulse);
        rv::Members(graph).append(reached, list);
    }
    return RV_NO_ERROR;
}

int RVReachableNodesAlgorithm::distance(const RVNode* node) const {
    const Run* run = m_run.get();
    const bool isKnown =
        run != nullptr && run->search && node != nullptr && node->pHomeGraph() == run->question.graph;
    return isKnown ? run->search->distance(rv::indexOf(node)) : rv::kInfinite;
}
