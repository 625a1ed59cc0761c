#include "rv/shortestpaths/shortest_paths.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/framework/check_input.h"
#include "rv/framework/run_pulse.h"
#include "rv/framework/sub_algorithm.h"
#include "rv/kernels/part_between.h"
#include "rv/kernels/path_matrix.h"
#include "rv/kernels/relaxing.h"
#include "rv/kernels/topological_order.h"
#include "rv/shortestpaths/path_answer.h"

RV_OBJECT_IMPL(RVShortestPathsAlgorithm)

RVServiceErrorCodeEnum RVShortestPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVShortestPathsInputData::castDown(pInputData()));
}

int RVShortestPathsAlgorithm::canUseOriginalGraph() const { return 0; }

void RVShortestPathsAlgorithm::preprocessGraph() {}

void RVShortestPathsAlgorithm::postprocessGraph() {}

// The three methods

namespace {

using rv::Index;

struct Found {
    RVServiceErrorCodeEnum code = RV_NO_ERROR;
    bool exists = false;
    int cost = 0;
    rv::Buffer<Index> path;  // backward
};

// A node that costs something is two: that which is left, and behind all nodes of the graph that which is
// entered, from where an edge of the node's cost leads to the other one.
template <class Ways>
class SplitWays {
public:
    SplitWays(const rv::PathView& view, const Ways& ways)
        : m_view(view), m_ways(ways), m_nodeLimit(view.flat().out().nodeLimit()) {}

    static int leaving(Index) { return 0; }
    template <class F>
    void forEach(Index node, F f) const {
        if (node >= m_nodeLimit) {
            f(node - m_nodeLimit, rv::kNoIndex, m_view.costOfNode(node - m_nodeLimit));
        } else {
            m_ways.forEach(node, [&](Index target, Index edge, int cost) { f(entered(target), edge, cost); });
        }
    }
    Index entered(Index node) const { return m_view.costOfNode(node) == 0 ? node : m_nodeLimit + node; }

private:
    const rv::PathView& m_view;
    const Ways& m_ways;
    const Index m_nodeLimit;
};

Found findNearest(const rv::PathView& view, const RVGraph* graph, Index start, Index finish,
                  rv::Pulse& pulse) {
    Found found;
    found.exists = start == finish;
    if (found.exists) return found;
    const rv::ScratchLoan<rv::PathScratch> scratch(graph);
    auto& labels = scratch->labels;
    const Index nodeLimit = view.flat().out().nodeLimit();
    scratch->begin(view.hasNodeCosts() ? 2 * nodeLimit : nodeLimit);
    const auto search = [&](const auto& ways, Index stop) {
        rv::findNearest(ways, start, {rv::kInfinite, stop}, labels, scratch->settled, pulse);
        found.cost = labels.distance(stop);
    };
    Index node = finish;
    view.withPlainWays([&](const auto& ways) {
        if (!view.hasNodeCosts()) return search(ways, finish);
        const SplitWays split(view, ways);
        node = split.entered(finish);
        search(split, node);
    });
    found.exists = found.cost != rv::kInfinite;
    while (found.exists && node != start) {
        const Index edge = labels.edge(node);
        if (edge == rv::kNoIndex) {
            node += nodeLimit;  // it was entered there
            continue;
        }
        found.path.push_back(edge);
        node = view.otherEnd(edge, node < nodeLimit ? node : node - nodeLimit);
    }
    return found;
}

// The distance of a node is that of its best predecessor.
Found findInOrder(const rv::PathView& view, std::span<const Index> order, Index start, Index finish,
                  rv::Pulse& pulse) {
    Found found;
    found.exists = start == finish;
    if (found.exists) return found;
    rv::NearestLabels<int> labels(view.flat().out().nodeLimit());
    rv::relaxInto(
        order, view.flat().in(), start, [&](Index node) { return view.costOfNode(node); },
        [&](Index edge) { return view.cost(edge); }, labels, pulse);
    found.cost = labels.distance(finish);
    found.exists =
        found.cost != rv::kInfinite && rv::listPathBackward(view, labels, start, finish, found.path);
    return found;
}

// All pairs of the part, in which nodes that cost something are split.
class AllPairsOfPart {
public:
    AllPairsOfPart(const rv::PathView& view, const rv::PartBetween& part, rv::Pulse& pulse) : m_part(part) {
        std::size_t size = part.nodes().size();
        for (std::size_t i = 0; i < part.nodes().size(); ++i)
            m_entered.push_back(view.costOfNode(part.nodes()[i]) == 0 ? i : size++);
        std::vector<rv::PathMatrix::Edge> edges;
        for (std::size_t way = 0; way < part.edges().size(); ++way) {
            const rv::Ends ends = part.ends()[way];
            edges.push_back({ends.source, m_entered[ends.target], view.cost(part.edges()[way]), false});
        }
        for (std::size_t i = 0; i < m_entered.size(); ++i) {
            if (m_entered[i] != i)
                edges.push_back({m_entered[i], i, view.costOfNode(part.nodes()[i]), false});
        }
        for (const auto& edge : edges) m_sources.push_back(edge.source);
        m_size = size;
        m_start = part.start();
        m_finish = m_entered[part.finish()];
        m_matrix.emplace(std::vector<int>(size), std::move(edges), pulse);
    }

    Found find() {
        Found found;
        if (!m_matrix->compute() || goesRound()) {
            found.code = RV_NEGATIVE_CYCLE;
            return found;
        }
        found.cost = m_matrix->cost(m_start, m_finish);
        listPath(found.path);
        if (m_part.start() == m_part.finish() && found.cost >= 0) {
            found.cost = 0;
            found.path.clear();
            found.exists = true;
        } else {
            found.exists = m_hasPath;
        }
        return found;
    }

private:
    // Whether the way back from the finish node never ends: then there is a negative cycle whose sum has
    // wrapped.
    bool goesRound() const {
        std::size_t node = m_finish;
        for (std::size_t steps = 0; steps <= m_size; ++steps) {
            if (steps > 0 && node == m_start) return false;
            const Index last = m_matrix->lastEdge(m_start, node);
            if (last == rv::kNoIndex) return false;
            node = m_sources[last];
        }
        return true;
    }
    // Without a path, also where one is infinite on the way, nothing.
    void listPath(rv::Buffer<Index>& path) {
        std::size_t node = m_finish;
        for (std::size_t steps = 0; steps == 0 || node != m_start; ++steps) {
            const Index last = m_matrix->lastEdge(m_start, node);
            if (last == rv::kNoIndex || steps >= m_size) return path.clear();
            if (last < m_part.edges().size()) path.push_back(m_part.edges()[last]);
            node = m_sources[last];
        }
        m_hasPath = true;
    }

    const rv::PartBetween& m_part;
    std::vector<std::size_t> m_entered;  // by node: where it is entered
    std::vector<std::size_t> m_sources;  // by edge
    std::size_t m_size = 0;
    std::size_t m_start = 0;
    std::size_t m_finish = 0;
    bool m_hasPath = false;
    std::optional<rv::PathMatrix> m_matrix;
};

// Costs below 0 count only between start and finish.
Found findCheapest(const RVShortestPathsInputData& input, RVRunControl* control) {
    const RVGraph* graph = input.pAssociatedGraph();
    rv::RunPulse pulse(control, "cheapest paths", graph->numberOfEdges());
    const rv::PathView view(input);
    const Index start = rv::indexOf(input.pStartNode());
    const Index finish = rv::indexOf(input.pFinishNode());
    if (!input.edgeCosts().hasNegatives(graph) && !input.nodeCosts().hasNegatives(graph))
        return findNearest(view, graph, start, finish, pulse);

    const rv::PartBetween part(
        view.flat(), start, finish, view.hasUndirectedEdges(),
        [&](Index edge) { return view.isUndirected(edge); }, pulse);
    if (!part.exists()) return {};
    const bool hasNegatives =
        std::ranges::any_of(part.edges(), [&](Index edge) { return view.cost(edge) < 0; }) ||
        std::ranges::any_of(part.nodes(), [&](Index node) { return view.costOfNode(node) < 0; });
    if (!hasNegatives) return findNearest(view, graph, start, finish, pulse);
    if (!part.hasWaysBack()) {
        rv::TopologicalOrder order = rv::topologicalOrder(part.flat().out(), part.flat().order(), {}, pulse);
        for (Index& node : order.nodes) node = part.nodes()[node];
        if (order.isComplete) return findInOrder(view, order.nodes, start, finish, pulse);
    }
    return AllPairsOfPart(view, part, pulse).find();
}

}  // namespace

// Answers a question about a graph, with the edges of that graph.
RVServiceErrorCodeEnum RVShortestPathsAlgorithm::findPath(const RVShortestPathsInputData& input,
                                                          RVEdgeDList& edges) {
    Found found = findCheapest(input, pRunControl());
    if (found.code != RV_NO_ERROR) return found.code;
    auto* output = RVShortestPathsOutputData::castDown(pOutputData());
    output->pathExists(found.exists ? 1 : 0);
    output->totalCost(found.exists ? found.cost : rv::kInfinite);
    if (!found.exists) return RV_NO_ERROR;
    std::ranges::reverse(found.path);
    rv::Members(input.pAssociatedGraph()).append(found.path, edges);
    return RV_NO_ERROR;
}

std::optional<RVServiceErrorCodeEnum> RVShortestPathsAlgorithm::answer() {
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    if (!isExactly<RVShortestPathsAlgorithm>() || !rv::hasCopyFactory(input->pAssociatedGraph()))
        return std::nullopt;
    return findPath(*input, *RVShortestPathsOutputData::castDown(pOutputData())->pEdgeList());
}

// The hooks, on which subclasses run: the question is asked of the copy, which needs a factory, as all graphs
// that are searched.

RVServiceErrorCodeEnum RVShortestPathsAlgorithm::algorithmBody() {
    const auto* input = RVShortestPathsInputData::castDown(pInputData());
    auto* output = RVShortestPathsOutputData::castDown(pOutputData());
    RVAnalysisInternalData* data = pAnalysisInternalData();
    if (pAssociatedGraph()->pFactory() == nullptr) {
        rv::noteFailure(*data, RV_NO_GRAPH_FACTORY, debugMode(),
                        L"Error in Reachable Nodes. Return code = %d\n");
        output->totalCost(rv::kInfinite);
        return data->returnCode();
    }
    RVShortestPathsInputData question(pAssociatedGraph());
    question.undirected(input->undirected());
    question.pStartNode(data->pCopyNode(input->pStartNode()));
    question.pFinishNode(data->pCopyNode(input->pFinishNode()));
    for (RVNode* node : *pAssociatedGraph()->pNodeList())
        question.cost(node, input->cost(data->pOriginalNode(node)));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        RVEdge* const original = data->pOriginalEdge(edge);
        question.cost(edge, input->cost(original));
        if (input->undirected(original) != 0) question.undirected(edge, 1);
    }
    RVEdgeDList path;
    const RVServiceErrorCodeEnum code = findPath(question, path);
    for (RVEdge* edge : path) {
        RVEdge* const original = data->pOriginalEdge(edge);
        if (original != edge) output->pEdgeList()->appendEdge(original);
    }
    return code;
}

void RVShortestPathsAlgorithm::generateOutputData() {
    pOutputData()->pAssociatedGraph(pInternalData()->pInputGraph());
}
