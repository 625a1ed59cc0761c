#include "rv/traversal/strongly_connected_components.h"

#include <vector>

#include "rv/traversal/depth_first_walk.h"

RV_OBJECT_IMPL(RVNodeExtensionStronglyConnectedComponents)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInternalData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsInputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsOutputData)
RV_OBJECT_IMPL(RVStronglyConnectedComponentsAlgorithm)

void RVStronglyConnectedComponentsOutputData::buildComponentList(RVDList& list) const {
    m_components.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::buildEdgeComponentList(RVDList& list) const {
    m_edgeComponents.buildCopies(list);
}

void RVStronglyConnectedComponentsOutputData::reset() {
    m_components.clear();
    m_edgeComponents.clear();
    deleteDataReferences(pAssociatedGraph());
}

RVServiceErrorCodeEnum RVStronglyConnectedComponentsAlgorithm::checkData() { return checkInputGraph(); }

namespace {

class StrongSearch : public rv::DepthFirstWalk<StrongSearch> {
public:
    StrongSearch(const rv::SearchGraph& graph, RVStronglyConnectedComponentsOutputData& output)
        : DepthFirstWalk(graph), m_output(output), m_components(graph.size()) {}

    void reach(Index node) {
        m_unfinished.push_back(node);
        m_roots.push_back(node);
    }
    void traverse(Index, const rv::SearchGraph::OutEdge&) {}
    void meet(Index, Index target) {
        if (m_components[target] != 0) return;
        while (number(m_roots.back()) > number(target)) m_roots.pop_back();
    }
    void complete(Index node) {
        if (m_roots.back() != node) return;
        m_roots.pop_back();
        closeComponent(node);
    }

private:
    void closeComponent(Index root);

    RVStronglyConnectedComponentsOutputData& m_output;
    std::vector<int> m_components;  // by node: its number, 0 while it is unfinished
    int m_closed = 0;
    std::vector<Index> m_unfinished;  // the top is the last
    std::vector<Index> m_roots;
    std::vector<Index> m_members;  // of the component that is being closed
};

void StrongSearch::closeComponent(Index root) {
    ++m_closed;
    RVNodeDList* nodes = m_output.addComponent();
    m_members.clear();
    for (Index top = kNone; top != root;) {
        top = m_unfinished.back();
        m_unfinished.pop_back();
        m_components[top] = m_closed;
        m_members.push_back(top);
        nodes->appendNode(graph().pNode(top));
        m_output.componentNumber(graph().pNode(top), m_closed);
    }
    RVEdgeDList* edges = m_output.addEdgeComponent();
    const auto append = [edges](RVEdge* edge) { edges->appendEdge(edge); };
    for (const Index node : m_members) {
        for (const rv::SearchGraph::OutEdge& out : graph().outEdges(node)) {
            if (m_components[out.target] != m_closed) continue;
            append(graph().pEdge(out.edge));
            graph().forEachParallel(out.edge, append);
        }
        graph().forEachLoop(node, append);
    }
}

}  // namespace

std::optional<RVServiceErrorCodeEnum> RVStronglyConnectedComponentsAlgorithm::answer() {
    if (!isExactly<RVStronglyConnectedComponentsAlgorithm>()) return std::nullopt;
    auto* output = RVStronglyConnectedComponentsOutputData::castDown(pOutputData());
    const auto graph = rv::SearchGraph::directed(pInputData()->pAssociatedGraph());
    StrongSearch(graph, *output).searchAll();
    return RV_NO_ERROR;
}
