// Reductions of a piece, and their undoing.
//
// Weights: that of an edge is the number of edges of the component that it stands for, or less, so no sum of
// weights exceeds the number of edges.
//
// Candidates are good until their turn comes. Merges come before all else, so there are no parallel edges
// when a pair is cancelled, and of two opposite edges only one is a candidate. A node that is a candidate has
// one edge in and one out, to different nodes, so neither merges nor cancellations touch it, and it is looked
// at anew when a neighbour is bridged.
//
// Undoing finds the reduced piece without a cycle and leaves the piece so: parallel edges go where their
// merged edge went; a bridged node comes back between the ends of its bridge, or with one of its edges
// turned, so that no path leads through it; both of two opposite edges go the way in which there is a path
// without them, or the heavier one's way if there is none.

#include <cstddef>
#include <utility>
#include <vector>

#include "rv/cycles/cycle_breaking_detail.h"
#include "rv/cycles/cycle_breaking_edge_detection.h"
#include "rv/foundation/text_output.h"
#include "rv/framework/sub_algorithm.h"

using Algorithm = RVCycleBreakingEdgeDetectionAlgorithm;

namespace {

bool canBeBridged(const RVNode* node) {
    return node->inDegree() == 1 && node->outDegree() == 1 &&
           node->pInEdge()->pSourceNode() != node->pOutEdge()->pTargetNode();
}

// Discards a member's cell; gives whether it had one.
bool removeCandidate(RVDList* list, rv::CellHandles& cells, const RVGraphMember* member) {
    RVDListCell* cell = cells.noted(member);
    if (cell != nullptr) list->discardCell(cell);
    return cell != nullptr;
}

std::unique_ptr<RVGraphReductionAction> newAction(RVGraphReductionTypeEnum type) {
    auto action = std::make_unique<RVGraphReductionAction>();
    action->reductionType(type);
    return action;
}

// What a path test counts as: most of them are short, and some take milliseconds.
constexpr std::int64_t kStepsOfPathTest = 256;

// Hands an action over to the stack.
void push(std::unique_ptr<RVGraphReductionAction> action, RVCycleBreakingEdgeDetectionInternalData& data) {
    data.pushAction(action.get());
    static_cast<void>(action.release());
}

}  // namespace

// Candidates

RVGraph* Algorithm::reduceGraph(RVGraph* piece) {
    RVEdgeDList multiEdges;
    RVEdgeDList oppositeEdges;
    RVNodeDList degreeTwoNodes;
    pData()->m_reduction = std::make_unique<rv::ReductionState>(piece);
    initializeCandidateLists(piece, &multiEdges, &oppositeEdges, &degreeTwoNodes);
    int count = multiEdges.length() + oppositeEdges.length() + degreeTwoNodes.length();
    rv::RunPulse pulse(pRunControl(), "reducing");
    while (count > 0) {
        pulse.beat();
        pData()->reduced(1);
        performReductionAction(&multiEdges, &oppositeEdges, &degreeTwoNodes);
        count += updateCandidateLists(&multiEdges, &oppositeEdges, &degreeTwoNodes) - 1;
    }
    pData()->m_reduction = nullptr;
    return piece;
}

void Algorithm::initializeCandidateLists(RVGraph* piece, RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                                         RVNodeDList* degreeTwoNodes) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    rv::ReductionState& state = *data->m_reduction.get();
    rv::EdgeIndex& edges = state.edges;
    state.oppositeCells.begin(oppositeEdges, piece->edgeIndexLimit());
    state.degreeTwoCells.begin(degreeTwoNodes, piece->nodeIndexLimit());

    // Edges are touched in groups.
    for (RVEdge* edge : *piece->pEdgeList()) {
        rv::EdgeIndex::Group& group = *edges.find(edge);
        if (!group.hasParallels() || group.isTouched) continue;
        group.isTouched = true;
        multiEdges->appendEdge(edge);
    }
    for (RVEdge* edge : *multiEdges) edges.find(edge)->isTouched = false;

    for (RVEdge* edge : *piece->pEdgeList()) {
        rv::EdgeIndex::Group* opposite = edges.find(edge->pTargetNode(), edge->pSourceNode());
        if (opposite == nullptr || edges.find(edge)->isTouched) continue;
        RVEdge* other = opposite->isTouched ? nullptr : opposite->first;
        for (; other != nullptr; other = edges.next(other)) data->touched(other, 1);
        opposite->isTouched = true;
        state.oppositeCells.note(edge->denseIndex(), oppositeEdges->appendEdge(edge));
    }

    for (RVNode* node : *piece->pNodeList()) {
        if (canBeBridged(node))
            state.degreeTwoCells.note(node->denseIndex(), degreeTwoNodes->appendNode(node));
    }
}

int Algorithm::updateCandidateLists(RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                                    RVNodeDList* degreeTwoNodes) const {
    rv::ReductionState& state = *pData()->m_reduction.get();
    const RVGraphReductionAction* action = pData()->topAction();
    RVEdge* newEdge = action->pNewEdge();
    int added = 0;
    switch (action->reductionType()) {
        case RVMultiEdgeReduction: {
            multiEdges->discardCell(multiEdges->pFirstCell());
            for (const RVEdge* edge : *action->pOldEdgeList()) {
                if (removeCandidate(oppositeEdges, state.oppositeCells, edge)) --added;
            }
            if (added < 0) {
                state.oppositeCells.note(newEdge->denseIndex(), oppositeEdges->appendEdge(newEdge));
                ++added;
            }
            return added + updateDegreeTwoNodes(newEdge, degreeTwoNodes);
        }
        case RVOppositeEdgeReduction:
            oppositeEdges->discardCell(oppositeEdges->pFirstCell());
            return updateDegreeTwoNodes(action->pOldEdgeList()->pLastEdge(), degreeTwoNodes);
        case RVDegreeTwoNodeReduction: {
            RVNode* source = newEdge->pSourceNode();
            RVNode* target = newEdge->pTargetNode();
            degreeTwoNodes->discardCell(degreeTwoNodes->pFirstCell());
            if (state.edges.find(newEdge)->hasParallels()) {
                multiEdges->appendEdge(newEdge);
                ++added;
            } else if (state.edges.find(target, source) != nullptr) {
                state.oppositeCells.note(newEdge->denseIndex(), oppositeEdges->appendEdge(newEdge));
                ++added;
            }
            for (const RVNode* end : {source, target}) {
                if (removeCandidate(degreeTwoNodes, state.degreeTwoCells, end)) --added;
            }
            return added + updateDegreeTwoNodes(newEdge, degreeTwoNodes);
        }
        default:
            return 0;
    }
}

int Algorithm::updateDegreeTwoNodes(RVEdge* edge, RVNodeDList* degreeTwoNodes) const {
    int added = 0;
    for (RVNode* node : {edge->pSourceNode(), edge->pTargetNode()}) {
        if (!canBeBridged(node)) continue;
        pData()->m_reduction.get()->degreeTwoCells.note(node->denseIndex(), degreeTwoNodes->appendNode(node));
        ++added;
    }
    return added;
}

// Reducing

void Algorithm::performReductionAction(RVEdgeDList* multiEdges, RVEdgeDList* oppositeEdges,
                                       RVNodeDList* degreeTwoNodes) const {
    if (multiEdges->length() != 0) {
        performMultiEdgeReduction(multiEdges->pFirstEdge());
    } else if (oppositeEdges->length() != 0) {
        performOppositeEdgeReduction(oppositeEdges->pFirstEdge());
    } else if (degreeTwoNodes->length() != 0) {
        performDegreeTwoNodeReduction(degreeTwoNodes->pFirstNode());
    }
}

void Algorithm::performMultiEdgeReduction(RVEdge* edge) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    rv::EdgeIndex& edges = data->m_reduction.get()->edges;
    RVGraph* piece = edge->pOwnerGraph();
    RVNode* source = edge->pSourceNode();
    RVNode* target = edge->pTargetNode();
    if (debugMode() != 0)
        wprintf_s(L"multi pEdge reduction: %s, %s\n", source->pNameString(), target->pNameString());
    auto action = newAction(RVMultiEdgeReduction);
    int weight = 0;
    for (RVEdge* old = edges.find(edge)->first; old != nullptr; old = edges.next(old)) {
        action->pOldEdgeList()->appendEdge(old);
        weight += data->weight(old);
    }
    edges.removeGroup(edge);
    for (RVEdge* old : *action->pOldEdgeList()) piece->removeEdge(old);
    RVEdge* merged = piece->addEdge(source, target, 0);
    edges.add(merged);
    data->weight(merged, weight);
    action->pNewEdge(merged);
    push(std::move(action), *data);
}

void Algorithm::performOppositeEdgeReduction(RVEdge* edge) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    rv::EdgeIndex& edges = data->m_reduction.get()->edges;
    RVGraph* piece = edge->pOwnerGraph();
    RVNode* source = edge->pSourceNode();
    RVNode* target = edge->pTargetNode();
    if (debugMode() != 0)
        wprintf_s(L"opposite pEdge reduction: %s, %s\n", source->pNameString(), target->pNameString());
    auto action = newAction(RVOppositeEdgeReduction);
    RVEdge* opposite = edges.find(target, source)->first;
    action->pOldEdgeList()->appendEdge(edge);
    action->pOldEdgeList()->appendEdge(opposite);
    const int surplus = data->weight(edge) - data->weight(opposite);
    if (surplus < 0) action->pNewEdge(piece->addEdge(target, source, 0));
    if (surplus > 0) action->pNewEdge(piece->addEdge(source, target, 0));
    for (RVEdge* old : {edge, opposite}) {
        edges.removeGroup(old);
        piece->removeEdge(old);
    }
    if (RVEdge* remainder = action->pNewEdge()) {
        data->weight(remainder, surplus < 0 ? -surplus : surplus);
        edges.add(remainder);
    }
    push(std::move(action), *data);
}

void Algorithm::performDegreeTwoNodeReduction(RVNode* node) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    rv::EdgeIndex& edges = data->m_reduction.get()->edges;
    RVGraph* piece = node->pOwnerGraph();
    if (debugMode() != 0) wprintf_s(L"degree two node reduction: %s\n", node->pNameString());
    auto action = newAction(RVDegreeTwoNodeReduction);
    RVEdge* in = node->pInEdge();
    RVEdge* out = node->pOutEdge();
    RVNode* source = in->pSourceNode();
    RVNode* target = out->pTargetNode();
    action->pOldNode(node);
    int weight = data->weight(in);
    if (data->weight(out) < weight) weight = data->weight(out);
    for (RVEdge* old : {in, out}) {
        action->pOldEdgeList()->appendEdge(old);
        edges.removeGroup(old);
    }
    piece->removeNode(node);
    RVEdge* bridge = piece->addEdge(source, target, 0);
    edges.add(bridge);
    data->weight(bridge, weight);
    action->pNewEdge(bridge);
    push(std::move(action), *data);
}

// Undoing

void Algorithm::restoreGraph(RVGraph* piece) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    if (data->actionStackEmpty()) return;
    data->m_paths = std::make_unique<rv::ListPaths>(piece);
    rv::RunPulse pulse(pRunControl(), "restoring");
    while (!data->actionStackEmpty()) {
        pulse.beat(kStepsOfPathTest);
        const std::unique_ptr<RVGraphReductionAction> action(data->popAction());
        restoreGraph(piece, action.get());
    }
    data->m_paths = nullptr;
}

void Algorithm::restoreGraph(RVGraph* piece, RVGraphReductionAction* action) const {
    const auto announce = [&](const wchar_t* message) {
        if (debugMode() != 0) wprintf_s(message);
    };
    switch (action->reductionType()) {
        case RVMultiEdgeReduction:
            announce(L"restore multi edges:\n");
            restoreGraphMultiEdges(piece, action);
            break;
        case RVOppositeEdgeReduction:
            announce(L"restore opposite edges:\n");
            restoreGraphOppositeEdges(piece, action);
            break;
        case RVDegreeTwoNodeReduction:
            announce(L"restore degree two nodes:\n");
            restoreGraphDegreeTwoNode(piece, action);
            break;
        default:
            break;
    }
}

void Algorithm::restoreGraphMultiEdges(RVGraph* piece, RVGraphReductionAction* action) const {
    const bool isReversed = pData()->reversed(action->pNewEdge()) != 0;
    for (RVEdge* edge : *action->pOldEdgeList()) {
        if (isReversed) reverse(edge);
        piece->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
    }
    piece->discardEdge(action->pNewEdge());
}

void Algorithm::restoreGraphOppositeEdges(RVGraph* piece, RVGraphReductionAction* action) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    RVEdge* light = action->pOldEdgeList()->pFirstEdge();
    RVEdge* heavy = action->pOldEdgeList()->pLastEdge();
    if (data->weight(heavy) < data->weight(light)) std::swap(light, heavy);
    if (action->pNewEdge() != nullptr) piece->discardEdge(action->pNewEdge());
    const bool pathExists = canSearch(piece, L"Error in path exists alg. Return code = %d\n") &&
                            data->m_paths.get()->pathExists(light->pSourceNode(), light->pTargetNode());
    reverse(pathExists ? heavy : light);
    for (RVEdge* edge : {light, heavy}) piece->insertEdge(edge, edge->pSourceNode(), edge->pTargetNode());
}

void Algorithm::restoreGraphDegreeTwoNode(RVGraph* piece, RVGraphReductionAction* action) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    RVEdge* in = action->pOldEdgeList()->pFirstEdge();
    RVEdge* out = action->pOldEdgeList()->pLastEdge();
    if (data->reversed(action->pNewEdge()) != 0) reverse(data->weight(in) < data->weight(out) ? in : out);
    piece->insertNode(action->pOldNode());
    piece->discardEdge(action->pNewEdge());
    data->m_paths.get()->noteNode(action->pOldNode());
}

// Whether the piece can be handed to a path test, which needs a factory. Without one there is no path.
bool Algorithm::canSearch(RVGraph* piece, const wchar_t* failure) const {
    const RVServiceErrorCodeEnum code = piece->pFactory() == nullptr ? RV_NO_GRAPH_FACTORY : RV_NO_ERROR;
    rv::noteFailure(*pData(), code, debugMode(), failure);
    return code == RV_NO_ERROR;
}

// Switching back

namespace {

using Paths = rv::AcyclicPaths<rv::ArrayNeighbours>;

// Of edges that stand reversed and cannot be switched back: what the paths that forbid it depend on. Only
// edges that stand reversed are ever switched back, so a path lasts as long as those on it do.
class Obstacles {
public:
    Obstacles(const RVGraph* piece, const RVCycleBreakingEdgeDetectionInternalData& data)
        : m_data(data),
          m_ranges(static_cast<std::size_t>(piece->edgeIndexLimit())),
          m_room(8 * static_cast<std::size_t>(piece->numberOfEdges())) {}

    // Whether a path that was noted for the edge still exists.
    bool forbid(const RVEdge* edge) const {
        const Range& range = m_ranges[rv::placeOf(edge)];
        if (!range.isNoted) return false;
        for (std::size_t i = range.begin; i < range.end; ++i) {
            if (m_data.reversed(m_edges[i]) == 0) return false;
        }
        return true;
    }
    // Notes the path that has just been found for the edge, if there is room.
    void note(const RVEdge* edge, Paths& paths) {
        Range range{m_edges.size(), m_edges.size(), true};
        paths.forEachPathEdge([&](RVEdge* other) {
            if (m_data.reversed(other) != 0) m_edges.push_back(other);
        });
        range.end = m_edges.size();
        range.isNoted = range.end <= m_room;
        if (!range.isNoted) m_edges.resize(range.begin);
        m_ranges[rv::placeOf(edge)] = range;
    }

private:
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
        bool isNoted = false;
    };
    const RVCycleBreakingEdgeDetectionInternalData& m_data;
    std::vector<Range> m_ranges;   // by dense index, in m_edges
    std::vector<RVEdge*> m_edges;  // path after path
    std::size_t m_room;
};

}  // namespace

// The edges are passed round after round; the search is over when a round has come to the edge that was
// switched back last, and that could not be switched again.
void Algorithm::avoidExtraEdges(RVGraph* piece) const {
    RVCycleBreakingEdgeDetectionInternalData* data = pData();
    const RVEdgeDList edges(*piece->pEdgeList());
    Paths paths(piece);
    Obstacles obstacles(piece, *data);
    const auto isNeeded = [&](const RVEdge* edge) {
        if (obstacles.forbid(edge)) return true;
        if (!canSearch(piece, L"error in new cycles test algorithm.\n")) return false;
        paths.hide(edge);
        if (!paths.pathExists(edge->pSourceNode(), edge->pTargetNode())) return false;
        obstacles.note(edge, paths);
        return true;
    };
    const auto switchBack = [&](RVEdge* edge) {
        RVNode* source = edge->pSourceNode();
        RVNode* target = edge->pTargetNode();
        // Out of the graph and back, it comes to the end of its lists.
        piece->removeEdge(edge);
        piece->insertEdge(edge, source, target);
        if (isNeeded(edge)) return false;
        if (debugMode() != 0)
            wprintf_s(L"pEdge %s, %s not necessary\n", source->pNameString(), target->pNameString());
        data->reversed(edge, 0);
        paths.neighbours().invert(edge);
        edge->invertDirection();
        return true;
    };
    rv::RunPulse pulse(pRunControl(), "switching back", edges.length());
    const RVDListCell* last = nullptr;
    for (bool hasSwitched = true; hasSwitched;) {
        hasSwitched = false;
        for (RVDListIter it(&edges); it; it++) {
            RVEdge* edge = RVEdge::castDown(it.pObject());
            const bool isLast = it.pCell() == last;
            pulse.beat(data->reversed(edge) != 0 ? kStepsOfPathTest : 1);
            if (data->reversed(edge) != 0 && switchBack(edge)) {
                last = it.pCell();
                hasSwitched = true;
            }
            if (isLast) break;
        }
    }
}
