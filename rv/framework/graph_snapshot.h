// What a graph keeps of itself as arrays, for all algorithms. Internal to the library, not installed.
//
// Whoever asks about the whole graph takes its snapshot. Whoever looks at a part of it takes the kept one if
// there is any and walks the objects otherwise, in scratch memory of the graph, and builds a snapshot only
// once noteWalk says that this pays.
//
// All of it may be used by several threads while nobody changes the graph.
#pragma once

#include <cstddef>
#include <memory>
#include <typeinfo>
#include <utility>

#include "rv/foundation/graph.h"
#include "rv/kernels/flat_graph.h"

namespace rv {

// The graph as it is now. Built unless it is kept; kept until the graph changes.
std::shared_ptr<const FlatGraph> snapshotOf(const RVGraph* graph);

// For a question about a part of the graph: the kept snapshot, or a new one once walks over objects have
// touched more than the graph, else nullptr. Then GraphAccess::nodes tells the nodes by their numbers.
std::shared_ptr<const FlatGraph> snapshotForPart(const RVGraph* graph);
// A walk over objects has followed so many arcs.
void noteWalk(const RVGraph* graph, std::size_t arcs);

// What searches of a graph work in, kept with the graph for the next one.
struct PooledScratch {
    PooledScratch() = default;
    PooledScratch(const PooledScratch&) = delete;
    PooledScratch& operator=(const PooledScratch&) = delete;
    virtual ~PooledScratch() = default;
};
// One of the type that is kept with the graph, else nullptr.
std::unique_ptr<PooledScratch> takeScratch(const RVGraph* graph, const std::type_info& type);
void giveScratch(const RVGraph* graph, std::unique_ptr<PooledScratch> scratch) noexcept;

// A Scratch for the time of one search: a new one, or as the search before has left it.
// REQUIRES: the graph outlives it.
template <class Scratch>
class ScratchLoan {
public:
    explicit ScratchLoan(const RVGraph* graph)
        : m_graph(graph), m_pooled(takeScratch(graph, typeid(Pooled))) {
        if (m_pooled == nullptr) m_pooled = std::make_unique<Pooled>();
    }
    ScratchLoan(const ScratchLoan&) = delete;
    ScratchLoan& operator=(const ScratchLoan&) = delete;
    ~ScratchLoan() { giveScratch(m_graph, std::move(m_pooled)); }

    Scratch& operator*() const { return static_cast<Pooled&>(*m_pooled).scratch; }
    Scratch* operator->() const { return &**this; }

private:
    struct Pooled final : PooledScratch {
        Scratch scratch;
    };
    const RVGraph* m_graph;
    std::unique_ptr<PooledScratch> m_pooled;
};

}  // namespace rv
