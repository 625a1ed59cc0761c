// Floyd's and Warshall's triple loop over a matrix of integers beside the records, in an order that keeps the
// rows at hand in the caches.

#include "rv/shortestpaths/all_pairs_shortest_paths.h"

#include <algorithm>
#include <cstdint>

#include "rv/foundation/arithmetic.h"

RV_OBJECT_IMPL(RVAllPairsShortestPathsInputData)
RV_OBJECT_IMPL(RVNodeExtensionAllPairsShortestPaths)
RV_OBJECT_IMPL(RVAllPairsShortestPathsOutputData)
RV_OBJECT_IMPL(RVAllPairsShortestPathsAlgorithm)

// Records and output

RVNodeExtensionAllPairsShortestPaths::RVNodeExtensionAllPairsShortestPaths(RVNode* node,
                                                                           const RVAlgorithmData* data)
    : RVNodeAnalysisExtension(node, data),
      m_pairs(static_cast<std::size_t>(node->pHomeGraph()->numberOfNodes())) {}

RVEdgeValuePair* RVAllPairsShortestPathsOutputData::pEdgeValuePair(RVNode* a, RVNode* b) const {
    if (a == nullptr || b == nullptr) return nullptr;
    auto* column = record<RVNodeExtensionAllPairsShortestPaths>(b);
    return column == nullptr ? nullptr : column->pEdgeValuePair(number(a));
}

bool RVAllPairsShortestPathsOutputData::isInGraph(const RVNode* node) const {
    return node != nullptr && pAssociatedGraph() != nullptr && node->pOwnerGraph() == pAssociatedGraph();
}

int RVAllPairsShortestPathsOutputData::computeLengthOfShortestPath(RVNode* a, RVNode* b) const {
    if (!isInGraph(a) || !isInGraph(b)) return rv::kInfinite;
    const RVEdgeValuePair* pair = pEdgeValuePair(a, b);
    return pair == nullptr ? rv::kInfinite : pair->value();
}

RVEdge* RVAllPairsShortestPathsOutputData::pLastEdge(RVNode* a, RVNode* b) const {
    if (!isInGraph(a) || !isInGraph(b)) return nullptr;
    const RVEdgeValuePair* pair = pEdgeValuePair(a, b);
    return pair == nullptr ? nullptr : pair->pEdge();
}

void RVAllPairsShortestPathsOutputData::buildShortestPathEdgeList(RVNode* a, RVNode* b,
                                                                  RVEdgeDList& list) const {
    if (!isInGraph(a) || !isInGraph(b)) return;
    list.deleteAllCells();
    RVNode* node = b;
    RVEdge* last = pLastEdge(a, b);
    if (last == nullptr) return;
    for (int steps = 0; steps == 0 || node != a; last = pLastEdge(a, node)) {
        if (last == nullptr || ++steps > pAssociatedGraph()->numberOfNodes()) {
            list.deleteAllCells();
            return;
        }
        list.prependEdge(last);
        node = node == last->pSourceNode() ? last->pTargetNode() : last->pSourceNode();
    }
}

void RVAllPairsShortestPathsOutputData::reset() { deleteDataReferences(pAssociatedGraph()); }

// The matrix

namespace {

using Input = RVAllPairsShortestPathsInputData;
using Output = RVAllPairsShortestPathsOutputData;

// Costs and last edges of the paths from node i to node j, by the nodes' numbers.
class PathMatrix {
public:
    explicit PathMatrix(const Input& input)
        : m_input(input), m_size(static_cast<std::size_t>(input.pAssociatedGraph()->numberOfNodes())) {
        const RVGraph* graph = input.pAssociatedGraph();
        m_numbers.resize(static_cast<std::size_t>(graph->nodeIndexLimit()));
        for (RVNode* node : *graph->pNodeList()) {
            m_numbers[rv::placeOf(node)] = m_nodes.size();
            m_nodes.push_back(node);
            m_nodeCosts.push_back(input.cost(node));
        }
        for (RVEdge* edge : *graph->pEdgeList()) m_edges.push_back(edge);
    }

    // Finds all paths; false when there is a negative cycle.
    bool compute() {
        if (!initialize()) return false;
        if (findPathsInBlocks()) return true;
        // What had been found when the cycle shows depends on the order, so that order is taken.
        initialize();
        findPaths();
        return false;
    }

    // By the numbers that the output gives the nodes.
    void store(const Output& output) const {
        std::vector<RVNodeExtensionAllPairsShortestPaths*> records;
        std::vector<int> numbers;
        for (RVNode* node : m_nodes) {
            records.push_back(
                static_cast<RVNodeExtensionAllPairsShortestPaths*>(output.pAlgorithmExtension(node)));
            numbers.push_back(output.number(node));
        }
        for (std::size_t i = 0; i < m_size; ++i) {
            for (std::size_t j = 0; j < m_size; ++j) {
                if (records[j] == nullptr) continue;
                RVEdgeValuePair* pair = records[j]->pEdgeValuePair(numbers[i]);
                if (pair == nullptr) continue;
                const std::int32_t edge = m_lastEdges[i * m_size + j];
                pair->value(m_costs[i * m_size + j]);
                pair->pEdge(edge < 0 ? nullptr : m_edges[static_cast<std::size_t>(edge)]);
            }
        }
    }

private:
    // A row of the matrix, or a copy of one.
    struct Row {
        std::int32_t* costs;
        std::int32_t* lastEdges;
    };
    Row row(std::size_t i) { return {m_costs.data() + i * m_size, m_lastEdges.data() + i * m_size}; }

    std::size_t numberOf(const RVNode* node) const { return m_numbers[rv::placeOf(node)]; }

    // Paths of no edge and of one; false when a self-loop is a negative cycle.
    bool initialize() {
        m_costs.assign(m_size * m_size, rv::kInfinite);
        m_lastEdges.assign(m_size * m_size, -1);
        for (std::size_t i = 0; i < m_size; ++i) m_costs[i * m_size + i] = 0;
        for (std::size_t e = 0; e < m_edges.size(); ++e) {
            RVEdge* edge = m_edges[e];
            const int cost = m_input.cost(edge);
            const std::size_t source = numberOf(edge->pSourceNode());
            const std::size_t target = numberOf(edge->pTargetNode());
            const auto offer = [&](std::size_t place) {
                if (cost >= m_costs[place]) return;
                m_costs[place] = cost;
                m_lastEdges[place] = static_cast<std::int32_t>(e);
            };
            offer(source * m_size + target);
            if (source == target) {
                if (rv::wrappingSum(m_nodeCosts[source], cost) < 0) return false;
            } else if (m_input.undirected() != 0 || m_input.undirected(edge) != 0) {
                offer(target * m_size + source);
            }
        }
        return true;
    }

    // Whether node i and node k between its way out and its way back close a negative cycle.
    bool isNegativeCycle(std::size_t i, std::size_t k, const Row& rowOfI, const Row& rowOfK) const {
        if (rowOfI.costs[k] == rv::kInfinite || rowOfK.costs[i] == rv::kInfinite) return false;
        return rv::wrappingSum(m_nodeCosts[i], rowOfK.costs[i], rowOfI.costs[k], m_nodeCosts[k]) < 0;
    }

    // Node k between, in graph order; ends at the first negative cycle.
    void findPaths() {
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
    bool findPathsInBlocks() {
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

    // Takes the way through node k for every node j before `end` where it is cheaper. Node k itself is no
    // node in between on the way to it.
    void improveRow(const Row& from, const Row& via, std::size_t k, std::size_t end) const {
        if (from.costs[k] == rv::kInfinite) return;
        const std::int64_t base = std::int64_t{from.costs[k]} + m_nodeCosts[k];
        const std::int32_t costToK = from.costs[k];
        const std::int32_t edgeToK = from.lastEdges[k];
        if (base != rv::saturate(base)) {
            improveSlowly(from, via, base, end);
        } else if (base >= 0) {
            improve<false>(from, via, static_cast<std::int32_t>(base), end);
        } else {
            improve<true>(from, via, static_cast<std::int32_t>(base), end);
        }
        from.costs[k] = costToK;
        from.lastEdges[k] = edgeToK;
    }

    static void improveSlowly(const Row& from, const Row& via, std::int64_t base, std::size_t end) {
        for (std::size_t j = 0; j < end; ++j) {
            if (via.costs[j] == rv::kInfinite) continue;
            const int cost = rv::saturate(base + via.costs[j]);
            if (cost >= from.costs[j]) continue;
            from.costs[j] = cost;
            from.lastEdges[j] = via.lastEdges[j];
        }
    }

    // Saturating sums in 32 bits, without a branch, so that the compiler can take several at once: a sum that
    // has left the range lies on the wrong side of what was added to.
    template <bool kNegative>
    static void improve(const Row& from, const Row& via, std::int32_t base, std::size_t end) {
        std::int32_t* __restrict costs = from.costs;
        std::int32_t* __restrict lastEdges = from.lastEdges;
        const std::int32_t* __restrict viaCosts = via.costs;
        const std::int32_t* __restrict viaEdges = via.lastEdges;
        for (std::size_t j = 0; j < end; ++j) {
            const std::int32_t before = costs[j];
            const std::int32_t edgeBefore = lastEdges[j];
            const std::int32_t viaCost = viaCosts[j];
            const std::int32_t viaEdge = viaEdges[j];
            std::int32_t cost = rv::wrappingSum(base, viaCost);
            std::int32_t isCheaper = 0;
            if constexpr (kNegative) {
                cost = choose(mask(cost > viaCost), rv::kSmallest, cost);
                isCheaper = mask(cost < before) & mask(viaCost != rv::kInfinite);
            } else {
                isCheaper = mask(cost < before) & mask(cost >= viaCost);
            }
            costs[j] = choose(isCheaper, cost, before);
            lastEdges[j] = choose(isCheaper, viaEdge, edgeBefore);
        }
    }
    // All bits or none, and what is taken where they are set and where not.
    static std::int32_t mask(bool condition) { return -static_cast<std::int32_t>(condition); }
    static std::int32_t choose(std::int32_t bits, std::int32_t a, std::int32_t b) {
        return (a & bits) | (b & ~bits);
    }

    const Input& m_input;
    std::size_t m_size;
    std::vector<std::size_t> m_numbers;  // by dense index
    std::vector<RVNode*> m_nodes;
    std::vector<int> m_nodeCosts;
    std::vector<RVEdge*> m_edges;  // in graph order
    std::vector<std::int32_t> m_costs;
    std::vector<std::int32_t> m_lastEdges;  // places in m_edges, -1 for none
};

}  // namespace

void RVAllPairsShortestPathsAlgorithm::initialize() {
    RVBaseGraphAlgorithm::initialize();
    const auto* output = Output::castDown(pOutputData());
    int number = 0;
    for (RVNode* node : *pInputData()->pAssociatedGraph()->pNodeList()) output->number(node, number++);
}

RVServiceErrorCodeEnum RVAllPairsShortestPathsAlgorithm::algorithmBody() {
    const auto* input = Input::castDown(pInputData());
    auto* output = Output::castDown(pOutputData());
    PathMatrix matrix(*input);
    const bool hasNoNegativeCycle = matrix.compute();
    matrix.store(*output);
    output->pAssociatedGraph(input->pAssociatedGraph());
    return hasNoNegativeCycle ? RV_NO_ERROR : RV_NEGATIVE_CYCLE;
}
