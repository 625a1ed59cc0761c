// The traversal engine with the candidate list as a stack: the out-edges of a newly reached node go in front.
// An edge stays in front while what it leads to is searched, and is taken off when it comes up again; the
// node whose last edge is taken off is complete.
//
// Where no subclass looks on, the same search is made in arrays (KindSearch).

#include "rv/traversal/depth_first_search.h"

#include <vector>

#include "rv/framework/check_input.h"
#include "rv/traversal/depth_first_walk.h"

RV_OBJECT_IMPL(RVNodeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVEdgeExtensionDepthFirstSearch)
RV_OBJECT_IMPL(RVDepthFirstSearchInternalData)
RV_OBJECT_IMPL(RVDepthFirstSearchInputData)
RV_OBJECT_IMPL(RVDepthFirstSearchOutputData)
RV_OBJECT_IMPL(RVDepthFirstSearchAlgorithm)

// Data

void RVDepthFirstSearchOutputData::buildNodeOrderList(RVNodeDList& list) const { list = *m_nodes; }

void RVDepthFirstSearchOutputData::reset() {
    m_nodes->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

// Algorithm

RVServiceErrorCodeEnum RVDepthFirstSearchAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = RVTraversalAlgorithm::checkData();
    if (code != RV_NO_ERROR) return code;
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    return rv::checkNode(input->pStartNode(), *input, RV_NO_ERROR, RV_START_NODE_NOT_IN_GRAPH);
}

void RVDepthFirstSearchAlgorithm::parseInputData() {
    if (!worksInArrays()) parseTraversalInput(*RVDepthFirstSearchInputData::castDown(pInputData()));
}

RVAlgorithmData* RVDepthFirstSearchAlgorithm::newInternalData() {
    return new RVDepthFirstSearchInternalData();
}

RVEdge* RVDepthFirstSearchAlgorithm::pNextEdge() {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    RVEdgeDList* candidates = data->pCandidateEdgeList();
    for (;;) {
        RVEdge* edge = RVTraversalAlgorithm::pNextEdge();
        if (edge == nullptr || data->traversed(edge) == 0) return edge;
        RVNode* source = edge->pSourceNode();
        if (data->firedNumber(source) == source->outDegree())
            completeNodeVisit(source, data->pParentNode(source));
        candidates->discardCell(candidates->pFirstCell());
    }
}

void RVDepthFirstSearchAlgorithm::visitNodeBeforeTraverse(RVNode* node, RVEdge*) {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    data->firedNumber(node, data->firedNumber(node) + 1);
}

void RVDepthFirstSearchAlgorithm::visitNodeAfterTraverse(RVNode* node, RVEdge* edge) {
    RVTraversalAlgorithm::visitNodeAfterTraverse(node, edge);
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    const int visits = data->counter(node);
    if (visits == 0) {
        bool anyEdge = false;
        for (RVEdge* next : *node->pOutEdgeList()) {
            if (data->traversed(next) != 0) continue;
            data->pCandidateEdgeList()->prependEdge(next);
            anyEdge = true;
        }
        if (!anyEdge) completeNodeVisit(node, edge == nullptr ? nullptr : edge->pSourceNode());
    }
    data->counter(node, visits + 1);
}

void RVDepthFirstSearchAlgorithm::completeNodeVisit(RVNode* node, RVNode*) {
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    data->completionNumber(node, data->nextCompletionNumber());
    data->nextCompletionNumber(data->nextCompletionNumber() + 1);
}

namespace {

struct Visit {
    int order;
    int completion;
};

RVAnalysisEdgeTypeEnum typeOf(bool isParent, Visit source, Visit target, bool isUndirected) {
    if (isParent) return RVTreeEdge;
    if (source.order >= target.order) return source.completion < target.completion ? RVBackEdge : RVCrossEdge;
    return isUndirected ? RVBackEdge : RVForwardEdge;
}

RVAnalysisEdgeTypeEnum typeOfParallel(RVAnalysisEdgeTypeEnum representativeType, bool pointsForward,
                                      bool isUndirected) {
    if (representativeType == RVCrossEdge) return RVCrossEdge;
    return !isUndirected && pointsForward ? RVForwardEdge : RVBackEdge;
}

// A reverse edge never spoils the tree edge for which it was made.
void writeType(RVDepthFirstSearchOutputData& output, RVEdge* original, RVAnalysisEdgeTypeEnum type) {
    if (output.edgeType(original) != RVTreeEdge) output.edgeType(original, type);
}

class KindSearch : public rv::DepthFirstWalk<KindSearch> {
public:
    explicit KindSearch(const rv::SearchGraph& graph) : DepthFirstWalk(graph), m_completions(graph.size()) {}

    void reach(Index node) { m_order.push_back(node); }
    void traverse(Index node, const rv::SearchGraph::OutEdge& edge) {
        m_traversed.push_back({node, edge.target, edge.edge});
    }
    void meet(Index, Index) {}
    void complete(Index node) { m_completions[node] = ++m_completed; }

    void describe(const RVDepthFirstSearchInputData& input, RVDepthFirstSearchOutputData& output) const;

private:
    struct Edge {
        Index source;
        Index target;
        Index edge;
    };

    Visit visit(Index node) const { return {static_cast<int>(number(node)), m_completions[node]}; }

    std::vector<Index> m_order;
    std::vector<Edge> m_traversed;
    std::vector<int> m_completions;
    int m_completed = 0;
};

void KindSearch::describe(const RVDepthFirstSearchInputData& input,
                          RVDepthFirstSearchOutputData& output) const {
    output.pAssociatedGraph(input.pAssociatedGraph());
    for (const Index index : m_order) {
        RVNode* node = graph().pNode(index);
        output.pNodeList()->appendNode(node);
        output.orderNumber(node, visit(index).order);
        output.completionNumber(node, visit(index).completion);
        output.pParentNode(node, parent(index) == kNone ? nullptr : graph().pNode(parent(index)));
        graph().forEachLoop(index, [&](RVEdge* loop) { output.edgeType(loop, RVBackEdge); });
    }
    const auto isUndirected = [&](RVEdge* edge) {
        return input.undirected() != 0 || input.undirected(edge) != 0;
    };
    for (const Edge& traversed : m_traversed) {
        RVEdge* edge = graph().pEdge(traversed.edge);
        const RVAnalysisEdgeTypeEnum type =
            typeOf(parent(traversed.target) == traversed.source, visit(traversed.source),
                   visit(traversed.target), isUndirected(edge));
        writeType(output, edge, type);
        const bool pointsForward = number(traversed.source) < number(traversed.target);
        graph().forEachParallel(traversed.edge, [&](RVEdge* parallel) {
            writeType(output, parallel, typeOfParallel(type, pointsForward, isUndirected(parallel)));
        });
    }
}

}  // namespace

bool RVDepthFirstSearchAlgorithm::worksInArrays() const { return isExactly<RVDepthFirstSearchAlgorithm>(); }

RVServiceErrorCodeEnum RVDepthFirstSearchAlgorithm::algorithmBody() {
    if (!worksInArrays()) return RVTraversalAlgorithm::algorithmBody();
    const auto* input = RVDepthFirstSearchInputData::castDown(pInputData());
    const auto graph = rv::SearchGraph::of(*input);
    KindSearch search(graph);
    const RVNode* start = input->pStartNode();
    start != nullptr ? search.searchFrom(graph.indexOf(start)) : search.searchAll();
    search.describe(*input, *RVDepthFirstSearchOutputData::castDown(pOutputData()));
    return RV_NO_ERROR;
}

void RVDepthFirstSearchAlgorithm::generateOutputData() {
    if (worksInArrays()) return;  // algorithmBody has written it
    RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    auto* output = RVDepthFirstSearchOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVNode* node : *data->pVisitedNodeList()) {
        RVNode* original = data->pOriginalNode(node);
        output->pNodeList()->appendNode(original);
        output->orderNumber(original, data->orderNumber(node));
        output->completionNumber(original, data->completionNumber(node));
        output->pParentNode(original, data->pOriginalNode(data->pParentNode(node)));
        for (RVEdge* loop : data->reflexiveEdges(node))
            output->edgeType(data->pOriginalEdge(loop), RVBackEdge);
    }
    for (RVEdge* edge : *data->pTraversedEdgeList()) {
        const RVAnalysisEdgeTypeEnum type = typeOf(edge);
        writeType(*output, data->pOriginalEdge(edge), type);
        for (RVEdge* parallel : data->multiEdges(edge)) {
            writeType(*output, data->pOriginalEdge(parallel), typeOfParallel(parallel, type));
        }
    }
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOf(RVEdge* edge) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    const auto visit = [data](RVNode* node) {
        return Visit{data->orderNumber(node), data->completionNumber(node)};
    };
    RVNode* source = edge->pSourceNode();
    RVNode* target = edge->pTargetNode();
    return ::typeOf(data->pParentNode(target) == source, visit(source), visit(target),
                    directed() == 0 || data->directed(edge) == 0);
}

RVAnalysisEdgeTypeEnum RVDepthFirstSearchAlgorithm::typeOfParallel(
    RVEdge* parallel, RVAnalysisEdgeTypeEnum representativeType) const {
    const RVDepthFirstSearchInternalData* data = pDepthFirstSearchInternalData();
    return ::typeOfParallel(
        representativeType,
        data->orderNumber(parallel->pSourceNode()) < data->orderNumber(parallel->pTargetNode()),
        directed() == 0 || data->directed(parallel) == 0);
}
