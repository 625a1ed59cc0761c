// Connected components: splits a graph into the parts that hang together when directions are ignored.
//
// Components are numbered from 1 in the order in which their first edge stands in the graph; each node
// without edges to other nodes is a component of its own, numbered after all others in graph order. The nodes
// of a component stand in graph order. An empty graph has no components.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: disjoint sets (Galler and Fischer 1964, Tarjan 1975) of the caller's nodes; in an object of a
// subclass breadth-first search on the undirected graph, with its hooks. O(n + m) space; time likewise, in
// the sets but for a factor that is below 5.
//
//   RVConnectedComponentsAlgorithm components;
//   RVConnectedComponentsInputData input(graph);
//   RVConnectedComponentsOutputData output;
//   components.pInputData(&input);
//   components.pOutputData(&output);
//   if (components.run() == RV_NO_ERROR) use(output.componentNumber(node));
#pragma once

#include "rv/foundation/owned_lists.h"
#include "rv/traversal/breadth_first_search.h"

class RV_EXPORT RVConnectedComponentsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVConnectedComponentsInputData)

public:
    RVConnectedComponentsInputData() = default;
    explicit RVConnectedComponentsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}
};

class RV_EXPORT RVConnectedComponentsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVConnectedComponentsOutputData)
    RV_NODE_RECORDS(RVNodeExtensionTraversal)

public:
    RVConnectedComponentsOutputData() = default;

    // Lists of nodes (RVNodeDList): component k is the list in position k.
    RVDList* pComponentList() const { return m_components.get(); }
    // Destroys the lists in the given list, then appends for every component a new RVNodeDList, which the
    // caller owns.
    void buildComponentList(RVDList& list) const;
    // A new empty component behind all others.
    RVNodeDList* addComponent() { return m_components.add(); }
    // The same with get(0) up to get(count - 1), made faster than by appending them.
    template <class Get>
    RVNodeDList* addComponent(std::size_t count, Get get) {
        return m_components.add(count, get);
    }
    // From 1; 0 before a run.
    int componentNumber(RVNode* node) const { return m_componentNumbers.get(node); }
    int componentNumber(RVNode* node, int number) { return m_componentNumbers.store(node, number); }
    // The component numbers, for writing them all at once.
    rv::NodeColumn<int>& componentNumbers() { return m_componentNumbers; }

    void reset() override;

private:
    rv::OwnedLists<RVNodeDList> m_components;
    rv::NodeColumn<int> m_componentNumbers{this, &NodeRecord::orderNumber, &NodeRecord::orderNumber};
};

class RV_EXPORT RVConnectedComponentsAlgorithm : public RVBreadthFirstSearchAlgorithm {
    RV_OBJECT(RVConnectedComponentsAlgorithm)
    RV_WORKS_WITH(RVConnectedComponentsInputData, RVConnectedComponentsOutputData)

public:
    RVConnectedComponentsAlgorithm() = default;
    RVServiceErrorCodeEnum checkData() override;
    int directed() const override;

protected:
    std::optional<RVServiceErrorCodeEnum> answer() override;
    void generateOutputData() override;
    void parseInputData() override;
    RVNode* findStartNode() override;
    RVEdge* findStartEdge() override;
    void visitNodeAfterTraverse(RVNode* node, RVEdge* edge) override;
};
