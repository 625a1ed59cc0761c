#include "rv/kernels/path_matrix.h"

#include <algorithm>

#include "rv/foundation/arithmetic.h"

namespace rv {

namespace {

// All bits or none, and what is taken where they are set and where not.
std::int32_t mask(bool condition) { return -static_cast<std::int32_t>(condition); }
std::int32_t choose(std::int32_t bits, std::int32_t a, std::int32_t b) { return (a & bits) | (b & ~bits); }

}  // namespace

bool PathMatrix::compute() {
    if (!initialize()) return false;
    if (findPathsInBlocks()) return true;
    // What had been found when the cycle shows depends on the order, so that order is taken.
    initialize();
    findPaths();
    return false;
}

// Paths of no edge and of one; false when a self-loop is a negative cycle.
bool PathMatrix::initialize() {
    m_costs.assign(m_size * m_size, kInfinite);
    m_lastEdges.assign(m_size * m_size, -1);
    for (std::size_t i = 0; i < m_size; ++i) m_costs[i * m_size + i] = 0;
    for (std::size_t e = 0; e < m_edges.size(); ++e) {
        const auto [source, target, cost, isBothWays] = m_edges[e];
        const auto offer = [&, cost = cost](std::size_t place) {
            if (cost >= m_costs[place]) return;
            m_costs[place] = cost;
            m_lastEdges[place] = static_cast<std::int32_t>(e);
        };
        offer(source * m_size + target);
        if (source == target) {
            if (wrappingSum(m_nodeCosts[source], cost) < 0) return false;
        } else if (isBothWays) {
            offer(target * m_size + source);
        }
    }
    return true;
}

// Whether node i and node k between its way out and its way back close a negative cycle.
bool PathMatrix::isNegativeCycle(std::size_t i, std::size_t k, const Row& rowOfI, const Row& rowOfK) const {
    if (rowOfI.costs[k] == kInfinite || rowOfK.costs[i] == kInfinite) return false;
    return wrappingSum(m_nodeCosts[i], rowOfK.costs[i], rowOfI.costs[k], m_nodeCosts[k]) < 0;
}

// Node k between, in graph order; ends at the first negative cycle.
void PathMatrix::findPaths() {
    for (std::size_t k = 0; k < m_size; ++k) {
        for (std::size_t i = 0; i < m_size; ++i) {
            if (i == k) continue;
            const bool isNegative = isNegativeCycle(i, k, row(i), row(k));
            improveRow(row(i), row(k), k, isNegative ? i : m_size);
            if (isNegative) return;
        }
    }
}

// The same, a block of nodes k after the other; false at a negative cycle.
//
// Row i is changed by the nodes k in their order, and reads but itself and row k as that was when k's
// turn came. So once the rows of the block have gone through the block's nodes, and copies of them have
// been taken at their turns, every other row can go through all nodes of the block at once, with the
// same result.
bool PathMatrix::findPathsInBlocks() {
    constexpr std::size_t kBlock = 32;
    std::vector<std::int32_t> copies(2 * std::min(kBlock, m_size) * m_size);
    const auto copyOf = [&](std::size_t place) {
        return Row{copies.data() + 2 * place * m_size, copies.data() + (2 * place + 1) * m_size};
    };
    for (std::size_t begin = 0; begin < m_size; begin += kBlock) {
        const std::size_t end = std::min(begin + kBlock, m_size);
        for (std::size_t k = begin; k < end; ++k) {
            const Row turn = copyOf(k - begin);
            std::copy_n(row(k).costs, m_size, turn.costs);
            std::copy_n(row(k).lastEdges, m_size, turn.lastEdges);
            for (std::size_t i = begin; i < end; ++i) {
                if (i == k) continue;
                if (isNegativeCycle(i, k, row(i), turn)) return false;
                improveRow(row(i), turn, k, m_size);
            }
        }
        for (std::size_t i = 0; i < m_size; ++i) {
            if (i >= begin && i < end) continue;
            for (std::size_t k = begin; k < end; ++k) {
                if (isNegativeCycle(i, k, row(i), copyOf(k - begin))) return false;
                improveRow(row(i), copyOf(k - begin), k, m_size);
            }
        }
    }
    return true;
}

// Saturating sums in 32 bits, without a branch, so that the compiler can take several at once: a sum that
// has left the range lies on the wrong side of what was added to.
template <bool kNegative>
void PathMatrix::improve(const Row& from, const Row& via, std::int32_t base, std::size_t end) {
    std::int32_t* __restrict costs = from.costs;
    std::int32_t* __restrict lastEdges = from.lastEdges;
    const std::int32_t* __restrict viaCosts = via.costs;
    const std::int32_t* __restrict viaEdges = via.lastEdges;
    for (std::size_t j = 0; j < end; ++j) {
        const std::int32_t before = costs[j];
        const std::int32_t edgeBefore = lastEdges[j];
        const std::int32_t viaCost = viaCosts[j];
        const std::int32_t viaEdge = viaEdges[j];
        std::int32_t cost = wrappingSum(base, viaCost);
        std::int32_t isCheaper = 0;
        if constexpr (kNegative) {
            cost = choose(mask(cost > viaCost), kSmallest, cost);
            isCheaper = mask(cost < before) & mask(viaCost != kInfinite);
        } else {
            isCheaper = mask(cost < before) & mask(cost >= viaCost);
        }
        costs[j] = choose(isCheaper, cost, before);
        lastEdges[j] = choose(isCheaper, viaEdge, edgeBefore);
    }
}

void PathMatrix::improveSlowly(const Row& from, const Row& via, std::int64_t base, std::size_t end) {
    for (std::size_t j = 0; j < end; ++j) {
        if (via.costs[j] == kInfinite) continue;
        const int cost = saturate(base + via.costs[j]);
        if (cost >= from.costs[j]) continue;
        from.costs[j] = cost;
        from.lastEdges[j] = via.lastEdges[j];
    }
}

// Takes the way through node k for every node j before `end` where it is cheaper. Node k itself is no
// node in between on the way to it.
void PathMatrix::improveRow(const Row& from, const Row& via, std::size_t k, std::size_t end) const {
    m_pulse.beat(static_cast<std::int64_t>(end));
    if (from.costs[k] == kInfinite) return;
    const std::int64_t base = std::int64_t{from.costs[k]} + m_nodeCosts[k];
    const std::int32_t costToK = from.costs[k];
    const std::int32_t edgeToK = from.lastEdges[k];
    if (base != saturate(base)) {
        improveSlowly(from, via, base, end);
    } else if (base >= 0) {
        improve<false>(from, via, static_cast<std::int32_t>(base), end);
    } else {
        improve<true>(from, via, static_cast<std::int32_t>(base), end);
    }
    from.costs[k] = costToK;
    from.lastEdges[k] = edgeToK;
}

}  // namespace rv
