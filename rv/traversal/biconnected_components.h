// Biconnected components: splits a graph, with directions ignored, into its blocks, and finds the
// articulation nodes that join them.
//
// A block lists its nodes in the reverse of their discovery order, its first node last; blocks come in the
// order in which the depth-first search closes them. A node that joins blocks is in each of them. A node
// without edges to other nodes is a block of its own; self-loops and parallel edges play no part.
//
// Articulation nodes come in the order in which they are found to be ones: a node with a parent when its
// first block closes, the root of a search tree when its second one does.
//
// Codes of run: RV_NO_ERROR, RV_NO_INPUT_GRAPH, RV_NO_GRAPH_FACTORY, and the framework's.
// Method: Hopcroft and Tarjan 1973, without recursion, in arrays made of the caller's graph; in an object of
// a subclass on the hooks of the depth-first search. O(n + m) time and space.
//
//   RVBiconnectedComponentsAlgorithm blocks;
//   RVBiconnectedComponentsInputData input(graph);
//   RVBiconnectedComponentsOutputData output;
//   blocks.pInputData(&input);
//   blocks.pOutputData(&output);
//   if (blocks.run() == RV_NO_ERROR) use(*output.pArticulationNodeList());
#pragma once

#include "rv/foundation/owned_lists.h"
#include "rv/traversal/depth_first_search.h"

class RV_EXPORT RVNodeExtensionBiconnectedComponents : public RVNodeExtensionDepthFirstSearch {
    RV_PLAIN_RECORD(RVNodeExtensionBiconnectedComponents)

public:
    RVNodeExtensionBiconnectedComponents() = default;
    RVNodeExtensionBiconnectedComponents(RVNode* node, const RVAlgorithmData* data)
        : RVNodeExtensionDepthFirstSearch(node, data) {}

    // The smallest order number that the node and what is below it in the tree reach by one edge.
    int lowptr() const { return m_lowptr; }
    int lowptr(int number) { return m_lowptr = number; }
    int isArticulationNode() const { return m_isArticulationNode; }
    int isArticulationNode(int flag) { return m_isArticulationNode = flag; }

private:
    int m_lowptr = 0;
    int m_isArticulationNode = 0;
};

class RV_EXPORT RVBiconnectedComponentsInternalData : public RVDepthFirstSearchInternalData {
    RV_DATA_OBJECT(RVBiconnectedComponentsInternalData)
    RV_NODE_RECORDS(RVNodeExtensionBiconnectedComponents)

public:
    RVBiconnectedComponentsInternalData() = default;

    // Raised once per block.
    int nextComponentNumber() const { return m_nextComponentNumber; }
    int nextComponentNumber(int number) { return m_nextComponentNumber = number; }
    // The top is the first cell.
    RVNodeDList* pUnfinishedStack() const { return m_unfinished.get(); }
    // Lists of nodes (RVNodeDList), in the order in which the blocks close.
    RVDList* pComponentList() const { return m_components.get(); }
    RVNodeDList* addComponent() { return m_components.add(); }
    RVNodeDList* pArticulationNodeList() const { return m_articulationNodes.get(); }
    // The root of which a block was closed last.
    RVNode* pJoiningRoot() const { return m_pJoiningRoot; }
    RVNode* pJoiningRoot(RVNode* node) { return m_pJoiningRoot = node; }

    int lowptr(RVNode* node) const { return load(node, &NodeRecord::lowptr); }
    int lowptr(RVNode* node, int number) { return store(node, &NodeRecord::lowptr, number); }
    int isArticulationNode(RVNode* node) const { return load(node, &NodeRecord::isArticulationNode); }
    int isArticulationNode(RVNode* node, int flag) {
        return store(node, &NodeRecord::isArticulationNode, flag);
    }

private:
    int m_nextComponentNumber = 1;
    rv::Owned<RVNodeDList> m_unfinished;
    rv::OwnedLists<RVNodeDList> m_components;
    rv::Owned<RVNodeDList> m_articulationNodes;
    RVNode* m_pJoiningRoot = nullptr;
};

class RV_EXPORT RVBiconnectedComponentsInputData : public RVAnalysisInputData {
    RV_DATA_OBJECT(RVBiconnectedComponentsInputData)

public:
    RVBiconnectedComponentsInputData() = default;
    explicit RVBiconnectedComponentsInputData(RVGraph* graph) : RVAnalysisInputData(graph) {}
};

class RV_EXPORT RVBiconnectedComponentsOutputData : public RVAnalysisOutputData {
    RV_DATA_OBJECT(RVBiconnectedComponentsOutputData)

public:
    RVBiconnectedComponentsOutputData() = default;

    // Lists of nodes (RVNodeDList), one per block.
    RVDList* pComponentList() const { return m_components.get(); }
    // A new empty block behind all others.
    RVNodeDList* addComponent() { return m_components.add(); }
    // The same with get(0) up to get(count - 1), made faster than by appending them.
    template <class Get>
    RVNodeDList* addComponent(std::size_t count, Get get) {
        return m_components.add(count, get);
    }
    RVNodeDList* pArticulationNodeList() const { return m_articulationNodes.get(); }
    // Destroys the lists in the given list, then appends for every block a new RVNodeDList, which the caller
    // owns.
    void buildComponentList(RVDList& list) const;
    // Empties the list, then fills it with the articulation nodes.
    void buildArticulationNodeList(RVNodeDList& list) const;

    void reset() override;

private:
    rv::OwnedLists<RVNodeDList> m_components;
    rv::Owned<RVNodeDList> m_articulationNodes;
};

class RV_EXPORT RVBiconnectedComponentsAlgorithm : public RVDepthFirstSearchAlgorithm {
    RV_OBJECT(RVBiconnectedComponentsAlgorithm)
    RV_WORKS_WITH(RVBiconnectedComponentsInputData, RVBiconnectedComponentsOutputData)

public:
    RVBiconnectedComponentsAlgorithm() = default;
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
    RVBiconnectedComponentsInternalData* pData() const {
        return static_cast<RVBiconnectedComponentsInternalData*>(pInternalData());
    }
    void closeBlock(RVNode* node, RVNode* joint);
};
