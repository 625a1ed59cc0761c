// Walks over graphs, nodes' edges and typed lists.
//
// All follow the rules of RVDListIter: valid, and true, while they stand on an element, otherwise they give
// none; live; ++ steps in the iterator's direction and -- against it. Step past an element before detaching
// or moving it.
#pragma once

#include "rv/foundation/graph.h"

class RVNodeDListIter : public RVDListIter {
public:
    RVNodeDListIter() = default;
    explicit RVNodeDListIter(const RVNodeDList* list, RVIterDirectionEnum direction = RVForward)
        : RVDListIter(list, direction) {}
    RVNode* pNode() const { return static_cast<RVNode*>(pObject()); }
};

class RVEdgeDListIter : public RVDListIter {
public:
    RVEdgeDListIter() = default;
    explicit RVEdgeDListIter(const RVEdgeDList* list, RVIterDirectionEnum direction = RVForward)
        : RVDListIter(list, direction) {}
    RVEdge* pEdge() const { return static_cast<RVEdge*>(pObject()); }
};

class RVGraphDListIter : public RVDListIter {
public:
    RVGraphDListIter() = default;
    explicit RVGraphDListIter(const RVGraphDList* list, RVIterDirectionEnum direction = RVForward)
        : RVDListIter(list, direction) {}
    RVGraph* pGraph() const { return static_cast<RVGraph*>(pObject()); }
};

// The nodes of a graph.
class RVNodeIter : public RVNodeDListIter {
public:
    RVNodeIter() = default;
    explicit RVNodeIter(const RVGraph* graph, RVIterDirectionEnum direction = RVForward) {
        init(graph, direction);
    }
    void init(const RVGraph* graph, RVIterDirectionEnum direction = RVForward) {
        RVDListIter::init(graph == nullptr ? nullptr : graph->pNodeList(), direction);
    }
};

// The edges of a graph.
class RVEdgeIter : public RVEdgeDListIter {
public:
    RVEdgeIter() = default;
    explicit RVEdgeIter(const RVGraph* graph, RVIterDirectionEnum direction = RVForward) {
        init(graph, direction);
    }
    void init(const RVGraph* graph, RVIterDirectionEnum direction = RVForward) {
        RVDListIter::init(graph == nullptr ? nullptr : graph->pEdgeList(), direction);
    }
};

// The edges that leave a node.
class RVOutEdgeIter : public RVEdgeDListIter {
public:
    RVOutEdgeIter() = default;
    explicit RVOutEdgeIter(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        init(node, direction);
    }
    void init(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        RVDListIter::init(node == nullptr ? nullptr : node->pOutEdgeList(), direction);
    }
};

// The edges that enter a node.
class RVInEdgeIter : public RVEdgeDListIter {
public:
    RVInEdgeIter() = default;
    explicit RVInEdgeIter(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        init(node, direction);
    }
    void init(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        RVDListIter::init(node == nullptr ? nullptr : node->pInEdgeList(), direction);
    }
};

// The in-edges of a node and then its out-edges; a self-loop is met twice. Backward it walks the same
// sequence from its end.
class RVInAndOutEdgeIter : public RVEdgeDListIter {
public:
    RVInAndOutEdgeIter() = default;
    explicit RVInAndOutEdgeIter(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        init(node, direction);
    }
    void init(const RVNode* node, RVIterDirectionEnum direction = RVForward) {
        m_pNode = node;
        m_inEdges = direction != RVBackward;
        m_forward = m_inEdges;
        m_pCell = nullptr;
        if (node == nullptr) return;
        m_pCell = endOf(m_inEdges, m_forward);
        if (m_pCell == nullptr) {
            m_inEdges = !m_inEdges;
            m_pCell = endOf(m_inEdges, m_forward);
        }
    }

    void operator++(int) { walk(m_forward); }
    void operator--(int) { walk(!m_forward); }
    void operator++() { walk(m_forward); }
    void operator--() { walk(!m_forward); }

private:
    // The first or the last cell of one of the two lists.
    RVDListCell* endOf(bool inEdges, bool first) const {
        const RVEdgeDList* list = inEdges ? m_pNode->pInEdgeList() : m_pNode->pOutEdgeList();
        return first ? list->pFirstCell() : list->pLastCell();
    }
    void walk(bool forward) {
        if (m_pCell == nullptr) return;
        m_pCell = forward ? m_pCell->pNextCell() : m_pCell->pPrevCell();
        if (m_pCell == nullptr && m_inEdges == forward) {
            m_inEdges = !m_inEdges;
            m_pCell = endOf(m_inEdges, forward);
        }
    }

    const RVNode* m_pNode = nullptr;
    bool m_inEdges = true;  // the cell stands in the in-list
};
