#include "rv/shortestpaths/sorted_paths_enumerator.h"

#include <algorithm>

#include "rv/foundation/arithmetic.h"

RVSortedPathsEnumerator::RVSortedPathsEnumerator(const RVSortedPathsOutputData* output) : m_pOutput(output) {}

RV_OBJECT_IMPL(RVSortedPathsEnumerator)

bool RVSortedPathsEnumerator::next() {
    do {
        m_hasPath = advance();
    } while (m_hasPath && m_simplePathsOnly != 0 && repeatsNode());
    if (m_hasPath) ++m_pathNumber;
    return m_hasPath;
}

namespace {

// Makes room for more values, so that adding them cannot fail.
template <class T>
void makeRoom(std::vector<T>& values, std::size_t more) {
    const std::size_t needed = values.size() + more;
    if (needed > values.capacity()) values.reserve(std::max(needed, 2 * values.capacity()));
}

}  // namespace

// To the next walk. Fails as a whole when memory runs out, and may be tried again.
bool RVSortedPathsEnumerator::advance() {
    if (m_pOutput == nullptr || m_pOutput->pathExists() == 0) return false;
    if (m_pOutput->pPathGraph() == nullptr || m_pOutput->pRootNode() == nullptr) return false;
    makeRoom(m_walks, 1);
    if (m_walks.empty()) {
        m_generation = m_pOutput->pathGraphGeneration();
        m_walks.push_back({-1, m_pOutput->pRootNode(), false});
        m_cost = m_pOutput->exactShortestPathLength();
        return true;
    }
    if (m_generation != m_pOutput->pathGraphGeneration()) return false;
    if (m_hasPath) addCandidates();
    m_hasPath = false;
    if (m_candidates.empty()) return false;
    std::pop_heap(m_candidates.begin(), m_candidates.end());
    const Candidate least = m_candidates.back();
    m_candidates.pop_back();
    m_walks.push_back({least.before, least.edge->pTargetNode(), m_pOutput->type(least.edge) == 2});
    m_cost = least.cost;
    return true;
}

// The continuations of the present walk.
void RVSortedPathsEnumerator::addCandidates() {
    const int last = static_cast<int>(m_walks.size()) - 1;
    const RVNode* node = m_walks.back().node;
    makeRoom(m_candidates, static_cast<std::size_t>(node->outDegree()));
    for (RVEdge* edge : *node->pOutEdgeList()) {
        if (m_simplePathsOnly != 0 && m_beginningRepeats && m_pOutput->type(edge) == 2) continue;
        const std::int64_t cost = m_cost + m_pOutput->exactCost(edge);
        if (cost >= rv::kInfinite) continue;
        m_candidates.push_back({cost, m_found++, last, edge});
        std::push_heap(m_candidates.begin(), m_candidates.end());
    }
}

// The sidetrack edges of the present path, from start to finish.
std::vector<RVEdge*> RVSortedPathsEnumerator::detours() const {
    std::vector<RVEdge*> edges;
    const Walk* walk = &m_walks.back();
    if (walk->before >= 0) edges.push_back(m_pOutput->pSidetrackEdge(walk->node));
    while (walk->before >= 0) {
        const Walk* before = &m_walks[static_cast<std::size_t>(walk->before)];
        if (walk->byCrossEdge) edges.push_back(m_pOutput->pSidetrackEdge(before->node));
        walk = before;
    }
    std::reverse(edges.begin(), edges.end());
    return edges;
}

// Calls f(edge, number of detours that are still to come) for the edges of the present path, as long as it
// gives true. False when f did not, or when the way is not what it was.
template <class F>
bool RVSortedPathsEnumerator::forEachEdge(F f) const {
    const std::vector<RVEdge*> detourEdges = detours();
    std::size_t left = detourEdges.size();
    RVNode* node = m_pOutput->pStartNode();
    const auto followTree = [&](const RVNode* end) {
        while (node != end) {
            RVEdge* edge = m_pOutput->pTreeEdge(node);
            if (edge == nullptr || !f(edge, left)) return false;
            node = edge->pTargetNode();
        }
        return true;
    };
    for (RVEdge* detour : detourEdges) {
        if (detour == nullptr || !followTree(detour->pSourceNode())) return false;
        --left;
        if (!f(detour, left)) return false;
        node = detour->pTargetNode();
    }
    return followTree(m_pOutput->pFinishNode());
}

bool RVSortedPathsEnumerator::repeatsNode() {
    const auto mark = static_cast<std::uint32_t>(m_walks.size());
    const RVNode* finish = m_pOutput->pFinishNode();
    bool repeats = false;
    m_beginningRepeats = m_pOutput->pStartNode() == finish;
    const auto visit = [&](const RVNode* node) {
        const auto place = rv::placeOf(node);
        if (place >= m_marks.size()) m_marks.resize(std::max(place + 1, 2 * m_marks.size()));
        if (m_marks[place] == mark) repeats = true;
        m_marks[place] = mark;
    };
    std::size_t before = 1;  // detours to come at the edge before
    visit(m_pOutput->pStartNode());
    forEachEdge([&](const RVEdge* edge, std::size_t left) {
        visit(edge->pTargetNode());
        // No path goes on behind the finish node without coming back to it.
        const bool isBeginning = left > 0 || before > 0;
        if (isBeginning && (repeats || edge->pTargetNode() == finish)) m_beginningRepeats = true;
        before = left;
        return true;
    });
    return repeats;
}

int RVSortedPathsEnumerator::totalCost() const { return m_hasPath ? rv::saturate(m_cost) : 0; }

int RVSortedPathsEnumerator::totalCostWithoutFinishNode() const {
    if (!m_hasPath) return 0;
    const bool hasEdges = m_walks.size() > 1 || m_pOutput->pStartNode() != m_pOutput->pFinishNode();
    return rv::saturate(m_cost - (hasEdges ? m_pOutput->finishNodeCost() : 0));
}

void RVSortedPathsEnumerator::buildEdgeList(RVEdgeDList& list) const {
    list.deleteAllCells();
    if (!m_hasPath) return;
    forEachEdge([&](RVEdge* edge, std::size_t) {
        list.appendEdge(edge);
        return true;
    });
}
