// Strongly connected components: splits a directed graph into the largest sets of nodes that all reach one
// another, with the edges inside each set.
//
// Components are numbered from 1 in reverse topological order: a component comes before every one from which
// it can be reached. Its nodes stand in the reverse of their discovery order, and its edges node after node
// in that order, each node's out-edges followed by its self-loops; parallel edges follow the first of them.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: Gabow 2000, without recursion, in arrays made of the caller's graph; in an object of a subclass on
// the hooks of the depth-first search. O(n + m) time and space.
//
//   RVStronglyConnectedComponentsAlgorithm components;
//   RVStronglyConnectedComponentsInputData input(graph);
//   RVStronglyConnectedComponentsOutputData output;
//   components.pInputData(&input);
//   components.pOutputData(&output);
//   if (components.run() == RV_NO_ERROR) use(output.componentNumber(node));
#pragma once

#include "rv/foundation/owned_lists.h"
#include "rv/traversal/depth_first_search.h"

class RV_EXPORT RVNodeExtensionStronglyConnectedComponents : public RVNodeExtensionDepthFirstSearch {
    RV_PLAIN_RECORD(RVNodeExtensionStronglyConnectedComponents)

public:
    RVNodeExtensionStronglyConnectedComponents() = default;
    RVNodeExtensionStronglyConnectedComponents(RVNode* node, const RVAlgorithmData* data)
        : RVNodeExtensionDepthFirstSearch(node, data) {}

    // 1 while the node is on the unfinished stack.
    int inUnfinished() const { return m_inUnfinished; }
    int inUnfinished(int flag) { return m_inUnfinished = flag; }
    // 1 while the edges of the node's component are gathered.
    int touched() const { return m_touched; }
    int touched(int flag) { return m_touched = flag; }

private:
    int m_inUnfinished = 0;
    int m_touched = 0;
};

class RV_EXPORT RVStronglyConnectedComponentsInternalData : public RVDepthFirstSearchInternalData {
    RV_DATA_OBJECT(RVStronglyConnectedComponentsInternalData)
    RV_NODE_RECORDS(RVNodeExtensionStronglyConnectedComponents)

public:
    RVStronglyConnectedComponentsInternalData() = default;

    // Raised once per component.
    int nextComponentNumber() const { return m_nextComponentNumber; }
    int nextComponentNumber(int number) { return m_nextComponentNumber = number; }
    // The tops are the first cells.
    RVNodeDList* pUnfinishedStack() const { return m_unfinished.get(); }
    RVNodeDList* pRootStack() const { return m_roots.get(); }
    // Lists of nodes (RVNodeDList), in the order in which the components close.
    RVDList* pComponentList() const { return m_components.get(); }
    RVNodeDList* addComponent() { return m_components.add(); }

    int inUnfinished(RVNode* node) const { return load(node, &NodeRecord::inUnfinished); }
    int inUnfinished(RVNode* node, int flag) { return store(node, &NodeRecord::inUnfinished, flag); }
    int touched(RVNode* node) const { return load(node, &NodeRecord::touched); }
    int touched(RVNode* node, int flag) { return store(node, &NodeRecord::touched, flag); }

private:
    int m_nextComponentNumber = 1;
    rv::Owned<RVNodeDList> m_unfinished;
    rv::Owned<RVNodeDList> m_roots;
    rv::OwnedLists<RVNodeDList> m_components;
};

class RV_EXPORT RVStronglyConnectedComponentsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVStronglyConnectedComponentsInputData)

public:
    RVStronglyConnectedComponentsInputData() = default;
    explicit RVStronglyConnectedComponentsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}
};

class RV_EXPORT RVStronglyConnectedComponentsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVStronglyConnectedComponentsOutputData)
    RV_NODE_RECORDS(RVNodeExtensionTraversal)

public:
    RVStronglyConnectedComponentsOutputData() = default;

    // Lists of nodes (RVNodeDList) and of edges (RVEdgeDList), one per component: component k is the list in
    // position k.
    RVDList* pComponentList() const { return m_components.get(); }
    RVDList* pEdgeComponentList() const { return m_edgeComponents.get(); }
    // New empty lists behind all others.
    RVNodeDList* addComponent() { return m_components.add(); }
    RVEdgeDList* addEdgeComponent() { return m_edgeComponents.add(); }
    // The same with get(0) up to get(count - 1), made faster than by appending them.
    template <class Get>
    RVNodeDList* addComponent(std::size_t count, Get get) {
        return m_components.add(count, get);
    }
    template <class Get>
    RVEdgeDList* addEdgeComponent(std::size_t count, Get get) {
        return m_edgeComponents.add(count, get);
    }
    // Destroy the lists in the given list, then append for every component a new RVNodeDList or RVEdgeDList,
    // which the caller owns.
    void buildComponentList(RVDList& list) const;
    void buildEdgeComponentList(RVDList& list) const;
    // From 1; 0 before a run.
    int componentNumber(RVNode* node) const { return m_componentNumbers.get(node); }
    int componentNumber(RVNode* node, int number) { return m_componentNumbers.store(node, number); }
    // The component numbers, for writing them all at once.
    rv::NodeColumn<int>& componentNumbers() { return m_componentNumbers; }

    void reset() override;

private:
    rv::OwnedLists<RVNodeDList> m_components;
    rv::OwnedLists<RVEdgeDList> m_edgeComponents;
    rv::NodeColumn<int> m_componentNumbers{this, &NodeRecord::orderNumber, &NodeRecord::orderNumber};
};

class RV_EXPORT RVStronglyConnectedComponentsAlgorithm : public RVDepthFirstSearchAlgorithm {
    RV_OBJECT(RVStronglyConnectedComponentsAlgorithm)
    RV_WORKS_WITH(RVStronglyConnectedComponentsInputData, RVStronglyConnectedComponentsOutputData)

public:
    RVStronglyConnectedComponentsAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;
    int directed() const override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVAlgorithmData* newInternalData() override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;
    void completeNodeVisit(RVNode* node, RVNode* parent) override;

private:
    RVStronglyConnectedComponentsInternalData* pData() const {
        return static_cast<RVStronglyConnectedComponentsInternalData*>(pInternalData());
    }
    // The edges inside a component of several nodes; the self-loops of a component of one node.
    void createEdgeList(const RVNodeDList& componentNodes, RVEdgeDList& edges);
    void handleReflexiveEdges(const RVNodeDList& componentNodes, RVEdgeDList& edges);
};
