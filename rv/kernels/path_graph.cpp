// Nodes and edges of the path graph come in the order in which the heaps are built: the out-heaps node by
// node, then, from the finish node on against the tree, the sidetrack heaps, whose edges follow when all are
// built, then the cross edges and the root.

#include "rv/kernels/path_graph.h"

#include <limits>
#include <utility>

namespace rv {

namespace {

// Of edges from or to nodes that the tree does not reach: they are on no path that counts.
constexpr std::int64_t kInfiniteDelta = std::numeric_limits<std::int64_t>::max();

class PathGraphBuilder {
public:
    PathGraphBuilder(const PathGraphQuestion& question)
        : m_q(question), m_deltas(question.ends.size()), m_heapRoots(question.out.nodeLimit(), kNoIndex) {
        for (Index edge = 0; edge < m_deltas.size(); ++edge) {
            const std::int64_t before = m_q.tree.distance(m_q.ends[edge].source);
            const std::int64_t behind = m_q.tree.distance(m_q.ends[edge].target);
            const bool counts = before != CheapestTree::kUnreached && behind != CheapestTree::kUnreached;
            m_deltas[edge] = counts ? behind + m_q.costs[edge] - before : kInfiniteDelta;
        }
    }

    PathGraph build(Pulse& heapPulse, Pulse& treePulse) {
        for (Index node = 0; node < m_q.out.nodeLimit(); ++node) {
            heapPulse.beat(1 + std::int64_t{m_q.out.degree(node)});
            buildOutHeap(node);
        }
        buildSidetrackHeaps(treePulse);
        for (PathGraph::Edge& edge : m_made.edges) edge.cost = delta(edge.to) - delta(edge.from);
        const auto nodes = static_cast<Index>(m_nodes.size());
        for (Index node = 0; node < nodes; ++node)
            leadOn(node, m_q.ends[m_made.detours[node]].target, PathGraph::kCrossEdge);
        const Index root = addNode(kNoIndex);
        leadOn(root, m_q.start, PathGraph::kRootEdge);
        return std::move(m_made);
    }

private:
    struct Node {
        Index children[2] = {kNoIndex, kNoIndex};  // in a sidetrack heap
        Index next = kNoIndex;                     // where its first edge leads: in its out-heap
    };

    bool isTreeEdge(Index edge) const { return m_q.tree.edge(m_q.ends[edge].source) == edge; }
    std::int64_t delta(Index pathNode) const { return m_deltas[m_made.detours[pathNode]]; }

    Index addNode(Index detour) {
        m_made.detours.push_back(detour);
        m_nodes.emplace_back();
        return static_cast<Index>(m_nodes.size() - 1);
    }
    void addEdge(Index from, Index to, PathGraph::EdgeType type, std::int64_t cost = 0) {
        if (m_nodes[from].next == kNoIndex) m_nodes[from].next = to;
        m_made.edges.push_back({from, to, type, cost});
    }
    void leadOn(Index from, Index node, PathGraph::EdgeType type) {
        const Index root = m_heapRoots[node];
        if (root != kNoIndex) addEdge(from, root, type, delta(root));
    }

    // Position 0 holds a least delta and has one child, position 1; from there on the children of position i
    // are 2 i and 2 i + 1.
    void heapify() {
        const auto isLess = [this](Index a, Index b) { return m_deltas[a] < m_deltas[b]; };
        for (std::size_t i = 1; i < m_heap.size(); ++i) {
            if (isLess(m_heap[i], m_heap[0])) std::swap(m_heap[i], m_heap[0]);
        }
        for (std::size_t j = m_heap.size(); j-- > 1;) {
            for (std::size_t i = j; 2 * i < m_heap.size();) {
                std::size_t least = 2 * i;
                if (least + 1 < m_heap.size() && isLess(m_heap[least + 1], m_heap[least])) ++least;
                if (!isLess(m_heap[least], m_heap[i])) break;
                std::swap(m_heap[i], m_heap[least]);
                i = least;
            }
        }
    }

    void buildOutHeap(Index node) {
        m_heap.clear();
        for (const Index edge : m_q.out.edgesOf(node)) {
            if (!isTreeEdge(edge) && m_deltas[edge] != kInfiniteDelta) m_heap.push_back(edge);
        }
        if (m_heap.empty()) return;
        heapify();
        const Index root = addNode(m_heap[0]);
        for (std::size_t i = 1; i < m_heap.size(); ++i) addNode(m_heap[i]);
        for (std::size_t i = 1; i < m_heap.size(); ++i)
            addEdge(root + static_cast<Index>(i / 2), root + static_cast<Index>(i), PathGraph::kHeapEdge);
        m_heapRoots[node] = root;
    }

    // Breadth first from the finish node, so that every node comes after the one to which its tree edge
    // leads.
    Buffer<Index> sortedTreeNodes() const {
        Buffer<Index> nodes(1, m_q.finish);
        for (std::size_t i = 0; i < nodes.size(); ++i) {
            const Index node = nodes[i];
            for (Index arc = m_q.in.first[node]; arc < m_q.in.last[node]; ++arc) {
                if (isTreeEdge(m_q.in.edges[arc])) nodes.push_back(m_q.in.targets[arc]);
            }
        }
        return nodes;
    }

    void buildSidetrackHeaps(Pulse& pulse) {
        Buffer<Index> sizes(m_heapRoots.size(), Index{0});
        for (const Index node : sortedTreeNodes()) {
            pulse.beat();
            Index& root = m_heapRoots[node];
            if (node == m_q.finish) {
                sizes[node] = root != kNoIndex ? 1 : 0;
                continue;
            }
            const Index next = m_q.ends[m_q.tree.edge(node)].target;
            sizes[node] = sizes[next];
            root = root == kNoIndex ? m_heapRoots[next] : insert(m_heapRoots[next], root, ++sizes[node]);
        }
        for (Index node = 0; node < m_nodes.size(); ++node) {
            for (const Index child : m_nodes[node].children) {
                if (child != kNoIndex) m_made.edges.push_back({node, child, PathGraph::kHeapEdge});
            }
        }
    }

    // Inserts the root of an out-heap as the last, size-th position of a heap of such roots. The positions
    // above it are copied, so that the heap without it stays. Gives the new heap's root.
    Index insert(Index heapRoot, Index added, Index size) {
        unsigned depth = 0;
        while ((size >> depth) > 1) ++depth;
        const auto turn = [=](unsigned level) { return (size >> (depth - level - 1)) % 2; };
        m_path.clear();
        Index old = heapRoot;
        for (unsigned level = 0; level < depth; ++level) {
            const Index copy = addNode(m_made.detours[old]);
            std::ranges::copy(m_nodes[old].children, m_nodes[copy].children);
            if (m_nodes[old].next != kNoIndex) addEdge(copy, m_nodes[old].next, PathGraph::kHeapEdge);
            if (level > 0) m_nodes[m_path.back()].children[turn(level - 1)] = copy;
            m_path.push_back(copy);
            old = m_nodes[old].children[turn(level)];
        }
        if (depth > 0) m_nodes[m_path.back()].children[turn(depth - 1)] = added;
        m_path.push_back(added);

        for (unsigned level = depth; level > 0; --level) {
            const Index parent = m_path[level - 1];
            if (delta(added) >= delta(parent)) break;
            std::swap(m_nodes[added].children, m_nodes[parent].children);
            m_nodes[added].children[turn(level - 1)] = parent;
            if (level > 1) m_nodes[m_path[level - 2]].children[turn(level - 2)] = added;
            std::swap(m_path[level], m_path[level - 1]);
        }
        return m_path.front();
    }

    const PathGraphQuestion& m_q;
    Buffer<std::int64_t> m_deltas;  // by edge
    Buffer<Index> m_heapRoots;      // by node: of the out-heap, then of the sidetrack heap
    Buffer<Node> m_nodes;           // of the path graph
    PathGraph m_made;
    Buffer<Index> m_heap;
    Buffer<Index> m_path;
};

}  // namespace

PathGraph makePathGraph(const PathGraphQuestion& question, Pulse& heapPulse, Pulse& treePulse) {
    return PathGraphBuilder(question).build(heapPulse, treePulse);
}

}  // namespace rv
