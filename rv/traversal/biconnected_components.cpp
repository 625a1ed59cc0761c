#include "rv/traversal/biconnected_components.h"

#include <algorithm>
#include <vector>

#include "rv/traversal/depth_first_walk.h"

RV_OBJECT_IMPL(RVNodeExtensionBiconnectedComponents)
RV_OBJECT_IMPL(RVBiconnectedComponentsInternalData)
RV_OBJECT_IMPL(RVBiconnectedComponentsInputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsOutputData)
RV_OBJECT_IMPL(RVBiconnectedComponentsAlgorithm)

void RVBiconnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVBiconnectedComponentsOutputData::buildArticulationNodeList(RVNodeDList& list) const {
    list = *m_articulationNodes;
}

void RVBiconnectedComponentsOutputData::reset() {
    m_components.clear();
    m_articulationNodes->deleteAllCells();
}

RVServiceErrorCodeEnum RVBiconnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

namespace {

class BlockSearch : public rv::DepthFirstWalk<BlockSearch> {
public:
    BlockSearch(const rv::SearchGraph& graph, RVBiconnectedComponentsOutputData& output)
        : DepthFirstWalk(graph), m_output(output), m_low(graph.size()), m_isArticulationNode(graph.size()) {}

    void reach(Index node) {
        m_low[node] = number(node);
        m_unfinished.push_back(node);
    }
    void traverse(Index, const rv::SearchGraph::OutEdge&) {}
    void meet(Index node, Index target) { m_low[node] = std::min(m_low[node], number(target)); }
    void complete(Index node) {
        if (graph().isIsolated(node)) m_output.addComponent()->appendNode(graph().pNode(node));
        const Index joint = parent(node);
        if (joint == kNone) return;
        if (m_low[node] == number(joint)) closeBlock(node, joint);
        m_low[joint] = std::min(m_low[joint], m_low[node]);
    }

private:
    void closeBlock(Index node, Index joint);

    RVBiconnectedComponentsOutputData& m_output;
    std::vector<Index> m_low;
    std::vector<bool> m_isArticulationNode;
    std::vector<Index> m_unfinished;  // the top is the last
    Index m_joiningRoot = kNone;      // the root of which a block was closed last
};

void BlockSearch::closeBlock(Index node, Index joint) {
    RVNodeDList* block = m_output.addComponent();
    for (Index top = kNone; top != node;) {
        top = m_unfinished.back();
        m_unfinished.pop_back();
        block->appendNode(graph().pNode(top));
    }
    block->appendNode(graph().pNode(joint));
    const bool isRoot = parent(joint) == kNone;
    const bool joins = !isRoot || m_joiningRoot == joint;
    if (isRoot) m_joiningRoot = joint;
    if (!joins || m_isArticulationNode[joint]) return;
    m_output.pArticulationNodeList()->appendNode(graph().pNode(joint));
    m_isArticulationNode[joint] = true;
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVBiconnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVBiconnectedComponentsAlgorithm>()) return std::nullopt;
    auto* output = RVBiconnectedComponentsOutputData::castDown(pOutputData());
    const auto graph = rv::SearchGraph::undirected(pInputData()->pAssociatedGraph());
    BlockSearch(graph, *output).searchAll();
    return RV_NO_ERROR;
}
