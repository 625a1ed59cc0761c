// Pieces are simplified as far as they can be, then solved, and the simplifications undone in reverse. A
// simplified piece is solved by a run of the whole algorithm, which may fall apart into smaller components
// and simplify these. Runs inside one another stand in a list, not on the stack, and an inner run works on
// the piece that it solves itself.

#include "rv/cycles/cycle_breaking_edge_detection.h"

#include <vector>

#include "rv/cycles/cycle_breaking_detail.h"
#include "rv/cycles/topological_heuristic.h"
#include "rv/foundation/graph_access.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/traversal/strongly_connected_components.h"

RV_OBJECT_IMPL(RVNodeExtensionCycleBreakingEdgeDetectionInternal)
RV_OBJECT_IMPL(RVEdgeExtensionCycleBreakingEdgeDetectionInternal)
RV_OBJECT_IMPL(RVEdgeExtensionCycleBreakingEdgeDetectionOutput)
RV_OBJECT_IMPL(RVCycleBreakingEdgeDetectionInputData)
RV_OBJECT_IMPL(RVCycleBreakingEdgeDetectionOutputData)
RV_OBJECT_IMPL(RVCycleBreakingEdgeDetectionInternalData)
RV_OBJECT_IMPL(RVCycleBreakingEdgeDetectionAlgorithm)

// Data

int RVCycleBreakingEdgeDetectionInputData::quality(int value) {
    if (value >= 0) {
        m_reduces = value >= 1 ? 1 : 0;
        m_switchesBack = value >= 2 ? 1 : 0;
    }
    return value;
}

void RVCycleBreakingEdgeDetectionOutputData::buildEdgeList(RVEdgeDList& list) const { list = *m_edges; }

void RVCycleBreakingEdgeDetectionOutputData::buildReflexiveEdgeList(RVEdgeDList& list) const {
    list = *m_reflexiveEdges;
}

void RVCycleBreakingEdgeDetectionOutputData::reset() {
    m_edges->deleteAllCells();
    m_reflexiveEdges->deleteAllCells();
    deleteDataReferences(pAssociatedGraph());
}

RVCycleBreakingEdgeDetectionInternalData::RVCycleBreakingEdgeDetectionInternalData()
    : m_actionStack(std::make_unique<ActionStack>()) {}

void RVCycleBreakingEdgeDetectionInternalData::pushAction(RVGraphReductionAction* action) {
    if (action != nullptr) m_actionStack.get()->prependObject(action);
}

RVGraphReductionAction* RVCycleBreakingEdgeDetectionInternalData::popAction() {
    RVGraphReductionAction* top = topAction();
    if (top != nullptr) m_actionStack.get()->discardCell(m_actionStack.get()->pFirstCell());
    return top;
}

RVGraphReductionAction* RVCycleBreakingEdgeDetectionInternalData::topAction() const {
    return RVGraphReductionAction::castDown(m_actionStack.get()->pFirstObject());
}

// The run

RVAlgorithmData* RVCycleBreakingEdgeDetectionAlgorithm::newInternalData() {
    return new RVCycleBreakingEdgeDetectionInternalData();
}

void RVCycleBreakingEdgeDetectionAlgorithm::parseInputData() {
    pData()->quality(RVCycleBreakingEdgeDetectionInputData::castDown(pInputData())->quality());
}

void RVCycleBreakingEdgeDetectionAlgorithm::privatePreprocessGraph() {}

RVServiceErrorCodeEnum RVCycleBreakingEdgeDetectionAlgorithm::algorithmBody() {
    preprocessReflexiveEdges();
    if (pData()->quality() > 0) {
        performFullAlgorithm();
        return pData()->returnCode();
    }
    RVEdgeDList edges(*pAssociatedGraph()->pEdgeList());
    if (RVGraph* piece = constructGraph(&edges)) {
        treatStronglyConnectedGraph(piece);
        transferOutputData(piece);
        discardPiece(piece);
    }
    return pData()->returnCode();
}

void RVCycleBreakingEdgeDetectionAlgorithm::performFullAlgorithm() {
    EdgeLists components;
    findComponents(components);
    while (RVGraph* piece = constructPiece(components)) {
        treatStronglyConnectedGraph(piece);
        if (pData()->quality() > 1) avoidExtraEdges(piece);
        transferOutputData(piece);
        discardPiece(piece);
    }
}

// The edges of each strongly connected component of the working graph.
void RVCycleBreakingEdgeDetectionAlgorithm::findComponents(EdgeLists& components) {
    RVStronglyConnectedComponentsInputData input(pAssociatedGraph());
    RVStronglyConnectedComponentsOutputData output;
    RVStronglyConnectedComponentsAlgorithm algorithm;
    rv::noteFailure(*pData(), rv::runPart(algorithm, input, output), debugMode(),
                    L"Error in SCC alg. Return code = %d\n");
    output.buildEdgeComponentList(*components.get());
}

void RVCycleBreakingEdgeDetectionAlgorithm::generateOutputData() {
    const RVCycleBreakingEdgeDetectionInternalData* data = pData();
    auto* output = RVCycleBreakingEdgeDetectionOutputData::castDown(pOutputData());
    output->pAssociatedGraph(data->pInputGraph());
    for (RVEdge* edge : *data->pOutputEdgeList()) {
        RVEdge* original = data->pOriginalEdge(edge);
        output->m_edges->appendEdge(original);
        output->backwardEdge(original, 1);
    }
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        for (RVEdge* loop : data->reflexiveEdges(node))
            output->m_reflexiveEdges->appendEdge(data->pOriginalEdge(loop));
    }
}

// Pieces

// The piece of the first component with edges, which leaves the lists with those before it; none when there
// is no such component left.
RVGraph* RVCycleBreakingEdgeDetectionAlgorithm::constructPiece(EdgeLists& components) const {
    RVGraph* piece = nullptr;
    while (piece == nullptr && components->length() != 0) {
        auto* edges = RVEdgeDList::castDown(components->pFirstObject());
        piece = constructGraph(edges);
        components->discardCell(components->pFirstCell());
        delete edges;
    }
    return piece;
}

RVGraph* RVCycleBreakingEdgeDetectionAlgorithm::constructGraph(RVEdgeDList* edges) const {
    if (edges->length() == 0) return nullptr;
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    std::unique_ptr<RVGraph> made = rv::newGraphLike(edges->pFirstEdge()->pHomeGraph());
    data->pSecondaryGraphs()->appendGraph(made.get());
    RVGraph* piece = made.release();
    const auto copyOf = [&](RVNode* node) {
        RVNode* copy = data->pLocalCopyNode(node);
        if (copy != nullptr) return copy;
        copy = piece->addNode(0);
        data->pLocalOriginalNode(copy, node);
        data->pLocalCopyNode(node, copy);
        if (debugMode() != 0) copy->pNameString(node->pNameString());
        return copy;
    };
    for (RVEdge* edge : *edges) {
        RVNode* source = copyOf(edge->pSourceNode());
        RVEdge* copy = piece->addEdge(source, copyOf(edge->pTargetNode()), 0);
        data->pLocalOriginalEdge(copy, edge);
        if (!data->m_isInnerRun) data->pLocalCopyEdge(edge, copy);
    }
    return piece;
}

void RVCycleBreakingEdgeDetectionAlgorithm::treatStronglyConnectedGraph(RVGraph* piece) {
    if (pData()->quality() >= 1) reduceGraph(piece);
    solveAtomicGraph(piece);
    if (pData()->quality() > 0) restoreGraph(piece);
}

void RVCycleBreakingEdgeDetectionAlgorithm::transferOutputData(RVGraph* piece) {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    for (RVEdge* edge : *piece->pEdgeList()) {
        if (data->reversed(edge) == 0) continue;  // as the working graph's edge says already
        RVEdge* original = data->pLocalOriginalEdge(edge);
        data->reversed(original, 1);
        data->pOutputEdgeList()->appendEdge(original);
    }
}

void RVCycleBreakingEdgeDetectionAlgorithm::discardPiece(RVGraph* piece) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    for (RVNode* node : *piece->pNodeList()) data->pLocalCopyNode(data->pLocalOriginalNode(node), nullptr);
    for (RVEdge* edge : *piece->pEdgeList()) {
        if (!data->m_isInnerRun) data->pLocalCopyEdge(data->pLocalOriginalEdge(edge), nullptr);
    }
    delete data->pSecondaryGraphs()->searchAndRemoveObject(piece);
    delete piece;
}

// Solving

void RVCycleBreakingEdgeDetectionAlgorithm::solveAtomicGraph(RVGraph* piece) {
    pData()->reduced() != 0 ? solveAtomicGraphRecursive(piece) : solveAtomicGraphFinal(piece);
}

struct RVCycleBreakingEdgeDetectionAlgorithm::InnerRun {
    InnerRun(RVGraph* graph, int quality) : input(graph) {
        input.quality(quality);
        algorithm.pInputData(&input);
        algorithm.pOutputData(&output);
        algorithm.useOriginalGraph(1);
        code = algorithm.checkData();
        if (code != RV_NO_ERROR) return;
        algorithm.initialize();
        algorithm.parseInputData();
        algorithm.pData()->m_isInnerRun = true;
        algorithm.findComponents(components);
    }
    InnerRun(const InnerRun&) = delete;
    InnerRun& operator=(const InnerRun&) = delete;
    ~InnerRun() = default;

    // Goes on as long as no piece has to be solved by a run inside this one; gives that piece, which is
    // solved when the run is asked to go on, or none at the end.
    RVGraph* goOn() {
        if (piece != nullptr) algorithm.finishPiece(piece);
        while ((piece = algorithm.constructPiece(components)) != nullptr) {
            algorithm.reduceGraph(piece);
            if (algorithm.pData()->reduced() != 0) return piece;
            algorithm.solveAtomicGraphFinal(piece);
            algorithm.finishPiece(piece);
        }
        if (code == RV_NO_ERROR) code = algorithm.pData()->returnCode();
        return nullptr;
    }

    RVCycleBreakingEdgeDetectionInputData input;
    RVCycleBreakingEdgeDetectionOutputData output;  // not written: the outer run reads the internal data
    RVCycleBreakingEdgeDetectionAlgorithm algorithm;
    EdgeLists components;  // that have not yet been dealt with
    RVGraph* piece = nullptr;
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
};

void RVCycleBreakingEdgeDetectionAlgorithm::finishPiece(RVGraph* piece) {
    restoreGraph(piece);
    if (pData()->quality() > 1) avoidExtraEdges(piece);
    transferOutputData(piece);
    discardPiece(piece);
}

void RVCycleBreakingEdgeDetectionAlgorithm::solveAtomicGraphRecursive(RVGraph* piece) {
    std::vector<std::unique_ptr<InnerRun>> runs;  // the innermost one is the last
    while (piece != nullptr || !runs.empty()) {
        if (piece != nullptr) runs.push_back(std::make_unique<InnerRun>(piece, pData()->quality()));
        piece = runs.back()->goOn();
        if (piece != nullptr) continue;
        const std::unique_ptr<InnerRun> ended = std::move(runs.back());
        runs.pop_back();
        (runs.empty() ? *this : runs.back()->algorithm).takeSolution(*ended);
    }
}

// An inner run leaves its edges in the piece, which it worked on.
void RVCycleBreakingEdgeDetectionAlgorithm::takeSolution(const InnerRun& run) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    rv::noteFailure(*data, run.code, debugMode(), L"Error in recursive call. Return code = %d\n");
    const RVCycleBreakingEdgeDetectionInternalData* solution = run.algorithm.pData();
    if (solution == nullptr) return;
    for (RVEdge* edge : *solution->pOutputEdgeList()) reverse(edge);
}

void RVCycleBreakingEdgeDetectionAlgorithm::solveAtomicGraphFinal(RVGraph* piece) {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    RVTopologicalHeuristicInputData input(piece);
    RVTopologicalHeuristicOutputData output;
    RVTopologicalHeuristicAlgorithm heuristic;
    heuristic.useOriginalGraph(1);
    for (RVEdge* edge : *piece->pEdgeList()) {
        const int weight = data->weight(edge);
        if (weight != input.weight(edge)) input.weight(edge, weight);
    }
    rv::noteFailure(*data, rv::runPart(heuristic, input, output), debugMode(),
                    L"Error in topological heuristic alg. Return code = %d\n");
    if (debugMode() != 0) wprintf_s(L"out degree first: %d  pEdges\n", numberOfBackwardEdges(piece, &output));
    for (RVEdge* edge : *piece->pEdgeList()) {
        if (output.orderNumber(edge->pSourceNode()) > output.orderNumber(edge->pTargetNode())) reverse(edge);
    }
}

// The edges that are about to be reversed.
int RVCycleBreakingEdgeDetectionAlgorithm::numberOfBackwardEdges(
    RVGraph* piece, RVTopologicalHeuristicOutputData* output) const {
    int count = 0;
    for (const RVEdge* edge : *piece->pEdgeList()) {
        if (output->orderNumber(edge->pSourceNode()) > output->orderNumber(edge->pTargetNode())) ++count;
    }
    return count;
}

void RVCycleBreakingEdgeDetectionAlgorithm::reverse(RVEdge* edge) const {
    pData()->reversed(edge, 1);
    edge->invertDirection();
}
