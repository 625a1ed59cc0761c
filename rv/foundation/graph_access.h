// What the framework and the algorithms of the library may do with a graph beyond its public operations.
// Internal to the library, not installed.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <mutex>
#include <span>
#include <typeinfo>
#include <vector>

#include "rv/foundation/graph.h"

namespace rv {

// The orders of a graph at one time: of its nodes, its edges and each node's out- and in-edges. Objects are
// noted by index and hash, so that those that are destroyed meanwhile are told from later ones. There is room
// for all that is needed to restore the orders.
struct GraphOrders {
    static constexpr std::uint32_t kNotNoted = 0xFFFFFFFF;  // no member's hash
    template <class Member>
    struct Order {
        bool has(const Member* member) const {
            const auto place = placeOf(member);
            return place < hashes.size() && hashes[place] == member->memberHash();
        }
        std::vector<int> indices;
        std::vector<std::uint32_t> hashes;  // by index
        std::vector<Member*> found;         // by index; filled while the order is restored
    };
    Order<RVNode> nodes;
    Order<RVEdge> edges;
    std::vector<int> outEdges;  // by index, node after node
    std::vector<int> inEdges;
    bool listsInGraphOrder = true;
};

// What layers above keep with a graph to answer questions faster.
class GraphCache {
public:
    GraphCache() = default;
    GraphCache(const GraphCache&) = delete;
    GraphCache& operator=(const GraphCache&) = delete;
    virtual ~GraphCache() = default;
};

class GraphAccess {
public:
    // Stamps of observers grow in the order in which they came to the graph. Several threads may come and
    // go at once while nobody changes the graph.
    static std::uint32_t addObserver(RVGraph* graph, GraphObserver* observer) {
        return graph->addObserver(observer);
    }
    static void removeObserver(RVGraph* graph, GraphObserver* observer) { graph->removeObserver(observer); }

    // Fills an empty graph with a copy of what is attached in another: names and all orders, those of the
    // nodes' in- and out-lists included. nodeCopies and edgeCopies give the copies by the dense index of
    // the originals, none where there is no copy.
    static void copyGraph(const RVGraph* source, RVGraph* target, std::vector<RVGraphMember*>& nodeCopies,
                          std::vector<RVGraphMember*>& edgeCopies);

    // Whether every in- and out-list is known to stand in the order of the edge list.
    static bool areListsInGraphOrder(const RVGraph* graph) { return graph->m_listsInGraphOrder; }

    // Whether the list of nodes (edges) is known to stand in the order of dense indices.
    static bool areNodesInIndexOrder(const RVGraph* graph) { return graph->m_nodesInIndexOrder; }
    static bool areEdgesInIndexOrder(const RVGraph* graph) { return graph->m_edgesInIndexOrder; }

    // By dense index: the nodes, nullptr where none is attached; the edges, of use where one is attached; and
    // the dense indices of the edges' ends, kNoIndex where no edge is attached. To be read until the graph
    // changes.
    // REQUIRES: coverIndices since the last change. It costs what has been added since the last time.
    static void coverIndices(RVGraph* graph) { graph->coverIndices(); }
    static std::span<RVNode* const> nodes(const RVGraph* graph) { return graph->m_nodeAt; }
    static std::span<RVEdge* const> edges(const RVGraph* graph) { return graph->m_edgeAt; }
    static std::span<const Ends> ends(const RVGraph* graph) { return graph->m_ends; }

    static GraphOrders noteOrders(const RVGraph* graph);
    // Puts what is attached back into the noted orders; objects that were not noted go behind all others.
    // Allocates nothing.
    static void restoreOrders(RVGraph* graph, GraphOrders& orders) noexcept;

    // A graph that nobody changes may be asked from several threads, so all use of the cache is behind the
    // mutex. Empty until something is put there.
    static std::mutex& mutex(const RVGraph* graph) { return graph->m_mutex; }
    static std::unique_ptr<GraphCache>& cache(const RVGraph* graph) { return graph->m_cache; }

    // Makes room for so many removals of attached edges, which then allocate nothing.
    static void prepareRemovals(RVGraph* graph, std::size_t edges) { graph->prepareWaits(2 * edges); }

private:
    template <class Member, class List>
    static RVDListCell* restoreOrder(List& list, GraphOrders::Order<Member>& order) noexcept;
};

inline Index indexOf(const RVGraphMember* member) { return static_cast<Index>(member->denseIndex()); }
// All numbers of a graph's nodes are below.
inline Index nodeLimitOf(const RVGraph* graph) { return static_cast<Index>(graph->nodeIndexLimit()); }

// A new empty graph of the same kind: of the graph's factory, or a plain one where that is missing or makes
// none.
inline std::unique_ptr<RVGraph> newGraphLike(const RVGraph* graph) {
    RVAFactory* factory = graph->pFactory();
    RVGraph* made = factory != nullptr ? factory->newGraph() : nullptr;
    return std::unique_ptr<RVGraph>(made != nullptr ? made : new RVGraph());
}

// Whether a copy of the graph has a factory, without which what runs on the copy fails.
inline bool hasCopyFactory(const RVGraph* graph) {
    const RVAFactory* factory = graph->pFactory();
    if (factory != nullptr && typeid(*factory) == typeid(RVAFactory)) return true;
    return newGraphLike(graph)->pFactory() != nullptr;
}

}  // namespace rv
