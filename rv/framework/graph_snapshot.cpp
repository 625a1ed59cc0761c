// The snapshot is right while the graph's count of modifications is the one at which it was built. A stale
// one that nobody else holds is built again in its own memory.
#include "rv/framework/graph_snapshot.h"

#include <algorithm>
#include <cstdint>
#include <mutex>
#include <span>
#include <utility>
#include <vector>

#include "rv/foundation/graph_access.h"
#include "rv/foundation/prefetch.h"

namespace rv {

namespace {

struct SnapshotCache final : GraphCache {
    bool isKept(const RVGraph* graph) const { return isBuilt && builtAt == graph->modificationCount(); }

    std::shared_ptr<FlatGraph> flat;
    bool isBuilt = false;
    std::uint64_t builtAt = 0;  // this and walkedAt: counts of modifications

    std::size_t walked = 0;
    std::uint64_t walkedAt = 0;

    std::vector<std::unique_ptr<PooledScratch>> spare;
};

// REQUIRES: the graph's mutex is locked.
SnapshotCache& cacheOf(const RVGraph* graph) {
    std::unique_ptr<GraphCache>& cache = GraphAccess::cache(graph);
    if (cache == nullptr) cache = std::make_unique<SnapshotCache>();
    return static_cast<SnapshotCache&>(*cache);
}

template <class Member, class List>
void writeOrder(const List& list, Buffer<Index>& order) {
    order.resize(static_cast<std::size_t>(list.length()));
    auto place = order.begin();
    for (const Member* member : list) *place++ = static_cast<Index>(member->denseIndex());
}

// A walk along several nodes' lists at a time: an edge is read when the memory has had time to answer.
void writeLists(const RVGraph* graph, bool out, std::span<const Index> begins, std::span<Index> edges) {
    struct Cursor {
        const RVDListCell* cell;
        Index place;  // of its edge
    };
    constexpr std::size_t kCursors = 16;
    Cursor cursors[kCursors];
    const std::span<RVNode* const> nodes = GraphAccess::nodes(graph);
    std::size_t next = 0;
    // To the first edge of the next node that has one.
    const auto moveOn = [&](Cursor& cursor) {
        for (; next < nodes.size(); ++next) {
            if (nodes[next] == nullptr) continue;
            const RVEdgeDList* list = out ? nodes[next]->pOutEdgeList() : nodes[next]->pInEdgeList();
            if (list->length() == 0) continue;
            cursor = {list->pFirstCell(), begins[next++]};
            return true;
        }
        return false;
    };
    std::size_t used = 0;
    while (used < kCursors && moveOn(cursors[used])) ++used;
    while (used > 0) {
        for (std::size_t i = 0; i < used; ++i) {
            Cursor& cursor = cursors[i];
            edges[cursor.place++] =
                static_cast<Index>(static_cast<const RVEdge*>(cursor.cell->pObject())->denseIndex());
            cursor.cell = cursor.cell->pNextCell();
            if (cursor.cell == nullptr && !moveOn(cursor)) cursor = cursors[--used];
            prefetch(cursor.cell);
        }
    }
}

void describe(RVGraph* graph, FlatGraph::Parts& parts) {
    GraphAccess::coverIndices(graph);
    parts.nodeLimit = static_cast<Index>(graph->nodeIndexLimit());
    parts.nodeCount = static_cast<Index>(graph->numberOfNodes());
    parts.edgeCount = static_cast<Index>(graph->numberOfEdges());
    parts.ends = GraphAccess::ends(graph);
    parts.nodes.clear();
    parts.edges.clear();
    const bool areAll = parts.nodeCount == parts.nodeLimit;
    if (!areAll || !GraphAccess::areNodesInIndexOrder(graph)) {
        writeOrder<RVNode>(*graph->pNodeList(), parts.nodes);
    }
    if (!GraphAccess::areEdgesInIndexOrder(graph)) writeOrder<RVEdge>(*graph->pEdgeList(), parts.edges);
    parts.writeLists = nullptr;
    if (GraphAccess::areListsInGraphOrder(graph)) return;
    parts.writeLists = [graph](bool out, std::span<const Index> begins, std::span<Index> edges) {
        writeLists(graph, out, begins, edges);
    };
}

// REQUIRES: the graph's mutex is locked.
std::shared_ptr<const FlatGraph> snapshotIn(SnapshotCache& cache, const RVGraph* graph) {
    if (cache.isKept(graph)) return cache.flat;
    cache.isBuilt = false;
    if (cache.flat == nullptr || cache.flat.use_count() > 1) cache.flat = std::make_shared<FlatGraph>();
    describe(const_cast<RVGraph*>(graph), cache.flat->rebuild());
    cache.isBuilt = true;
    cache.builtAt = graph->modificationCount();
    return cache.flat;
}

}  // namespace

std::shared_ptr<const FlatGraph> snapshotOf(const RVGraph* graph) {
    const std::lock_guard lock(GraphAccess::mutex(graph));
    return snapshotIn(cacheOf(graph), graph);
}

std::shared_ptr<const FlatGraph> snapshotForPart(const RVGraph* graph) {
    const std::lock_guard lock(GraphAccess::mutex(graph));
    SnapshotCache& cache = cacheOf(graph);
    const auto size = [](int count) { return static_cast<std::size_t>(count); };
    const bool isWalked = cache.walkedAt == graph->modificationCount() &&
                          cache.walked > size(graph->numberOfNodes()) + size(graph->numberOfEdges());
    if (isWalked || cache.isKept(graph)) return snapshotIn(cache, graph);
    GraphAccess::coverIndices(const_cast<RVGraph*>(graph));
    return nullptr;
}

void noteWalk(const RVGraph* graph, std::size_t arcs) {
    const std::lock_guard lock(GraphAccess::mutex(graph));
    SnapshotCache& cache = cacheOf(graph);
    if (std::exchange(cache.walkedAt, graph->modificationCount()) != graph->modificationCount()) {
        cache.walked = 0;
    }
    cache.walked += arcs;
}

std::unique_ptr<PooledScratch> takeScratch(const RVGraph* graph, const std::type_info& type) {
    const std::lock_guard lock(GraphAccess::mutex(graph));
    auto& spare = cacheOf(graph).spare;
    const auto found = std::ranges::find_if(spare, [&](const auto& each) {
        const PooledScratch& scratch = *each;
        return typeid(scratch) == type;
    });
    if (found == spare.end()) return nullptr;
    std::unique_ptr<PooledScratch> scratch = std::exchange(*found, std::move(spare.back()));
    spare.pop_back();
    return scratch;
}

void giveScratch(const RVGraph* graph, std::unique_ptr<PooledScratch> scratch) noexcept {
    const std::lock_guard lock(GraphAccess::mutex(graph));
    try {
        cacheOf(graph).spare.push_back(std::move(scratch));
    } catch (...) {
        // Without memory to keep it, it goes.
    }
}

}  // namespace rv
