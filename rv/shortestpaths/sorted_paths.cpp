#include "rv/shortestpaths/sorted_paths.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "rv/foundation/arithmetic.h"
#include "rv/foundation/graph_access.h"
#include "rv/framework/check_input.h"
#include "rv/framework/graph_snapshot.h"
#include "rv/framework/input_fields.h"
#include "rv/framework/member_lists.h"
#include "rv/framework/run_pulse.h"
#include "rv/kernels/cheapest_tree.h"
#include "rv/kernels/part_between.h"
#include "rv/kernels/path_graph.h"
#include "rv/kernels/topological_order.h"
#include "rv/shortestpaths/unreached.h"

RV_OBJECT_IMPL(RVSortedPathsInputData)

std::span<const RVInputField> RVSortedPathsInputData::inputFields() const {
    using namespace rv::field;
    using D = RVSortedPathsInputData;
    static constexpr RVInputField fields[] = {
        graphObject<D, RVNode, &D::pStartNode, &D::pStartNode>("startNode"),
        graphObject<D, RVNode, &D::pFinishNode, &D::pFinishNode>("finishNode"),
        nodeInt<D, &D::cost, &D::cost>("cost"),
        edgeInt<D, &D::cost, &D::cost>("cost"),
    };
    return fields;
}

// Output

namespace rv {

// What an output knows of one graph's members, by dense index, as long as they exist.
class PathGraphValues final : GraphObserver {
public:
    PathGraphValues() = default;
    PathGraphValues(const PathGraphValues&) = delete;
    PathGraphValues& operator=(const PathGraphValues& other) {
        if (this == &other) return *this;
        bind(other.m_graph);
        isPathGraph = other.isPathGraph;
        root = other.root;
        sidetracks = other.sidetracks;
        costs = other.costs;
        types = other.types;
        return *this;
    }
    ~PathGraphValues() { bind(nullptr); }

    RVGraph* graph() const { return m_graph; }
    // Forgets what is known of another graph.
    void bind(RVGraph* graph) {
        if (graph == m_graph) return;
        ++generation;
        if (m_graph != nullptr) GraphAccess::removeObserver(m_graph, this);
        forget();
        if (graph != nullptr) GraphAccess::addObserver(graph, this);
        m_graph = graph;
    }

    template <class T>
    T get(const Column<T>& column, const RVGraphMember* member) const {
        const bool isKnown = member != nullptr && m_graph != nullptr && member->pHomeGraph() == m_graph;
        return isKnown ? column.get(member->denseIndex()) : T{};
    }
    // The first member to be known brings its graph.
    template <class T>
    void set(Column<T>& column, const RVGraphMember* member, T value) {
        RVGraph* const home = member == nullptr ? nullptr : member->pHomeGraph();
        if (home == nullptr) return;
        if (m_graph == nullptr) bind(home);
        if (m_graph != home) return;
        column.set(member->denseIndex(), value,
                   member->isNode() ? home->nodeIndexLimit() : home->edgeIndexLimit());
    }

    bool isPathGraph = false;
    std::uint64_t generation = 0;  // counts the graphs
    RVNode* root = nullptr;
    Column<RVEdge*> sidetracks;
    Column<std::int64_t> costs;
    Column<int> types;

private:
    void forget() {
        m_graph = nullptr;
        isPathGraph = false;
        root = nullptr;
        sidetracks.clear();
        costs.clear();
        types.clear();
    }
    void forgetMember(const RVGraphMember* member, int index) {
        if (member == root) root = nullptr;
        if (member->isNode()) {
            sidetracks.reset(index);
        } else {
            costs.reset(index);
            types.reset(index);
        }
    }
    void graphDies(RVGraph*) override {
        ++generation;
        forget();
    }
    void memberDies(RVGraphMember* member) override { forgetMember(member, member->denseIndex()); }
    void memberMoved(RVGraphMember* member, RVGraph*, int indexThere) override {
        forgetMember(member, indexThere);
    }

    RVGraph* m_graph = nullptr;
};

}  // namespace rv

RVSortedPathsOutputData::RVSortedPathsOutputData() : m_pathGraph(std::make_unique<rv::PathGraphValues>()) {}

RVSortedPathsOutputData::RVSortedPathsOutputData(const RVSortedPathsOutputData& other, RVDeepFlagEnum)
    : RVSortedPathsOutputData() {
    RVSortedPathsOutputData::copyObject(&other);
}

RVSortedPathsOutputData::~RVSortedPathsOutputData() = default;

RVSortedPathsOutputData& RVSortedPathsOutputData::operator=(const RVSortedPathsOutputData& other) {
    if (this == &other) return *this;
    RVAnalysisOutputData::operator=(other);
    m_pathExists = other.m_pathExists;
    m_shortestPathLength = other.m_shortestPathLength;
    m_numberOfPaths = other.m_numberOfPaths;
    m_acyclic = other.m_acyclic;
    m_finishNodeCost = other.m_finishNodeCost;
    m_pStartNode = other.m_pStartNode;
    m_pFinishNode = other.m_pFinishNode;
    *m_pathGraph = *other.m_pathGraph;
    m_treeEdges = other.m_treeEdges;
    return *this;
}

RV_OBJECT_COPY_IMPL(RVSortedPathsOutputData)

RVGraph* RVSortedPathsOutputData::pPathGraph() const {
    return m_pathGraph->isPathGraph ? m_pathGraph->graph() : nullptr;
}

RVGraph* RVSortedPathsOutputData::pPathGraph(RVGraph* graph) {
    m_pathGraph->bind(graph);
    m_pathGraph->isPathGraph = graph != nullptr;
    return graph;
}

RVNode* RVSortedPathsOutputData::pRootNode() const { return m_pathGraph->root; }

RVNode* RVSortedPathsOutputData::pRootNode(RVNode* node) {
    if (node != nullptr && m_pathGraph->graph() == nullptr) m_pathGraph->bind(node->pHomeGraph());
    return m_pathGraph->root = node;
}

std::uint64_t RVSortedPathsOutputData::pathGraphGeneration() const { return m_pathGraph->generation; }

void RVSortedPathsOutputData::discardPathGraph() { delete pPathGraph(); }

RVEdge* RVSortedPathsOutputData::pSidetrackEdge(RVNode* node) const {
    return m_pathGraph->get(m_pathGraph->sidetracks, node);
}

RVEdge* RVSortedPathsOutputData::pSidetrackEdge(RVNode* node, RVEdge* edge) {
    m_pathGraph->set(m_pathGraph->sidetracks, node, edge);
    return edge;
}

int RVSortedPathsOutputData::cost(RVEdge* edge) const { return rv::saturate(exactCost(edge)); }

int RVSortedPathsOutputData::cost(RVEdge* edge, int value) {
    exactCost(edge, value);
    return value;
}

std::int64_t RVSortedPathsOutputData::exactCost(RVEdge* edge) const {
    return m_pathGraph->get(m_pathGraph->costs, edge);
}

void RVSortedPathsOutputData::exactCost(RVEdge* edge, std::int64_t value) {
    m_pathGraph->set(m_pathGraph->costs, edge, value);
}

int RVSortedPathsOutputData::shortestPathLength() const { return rv::saturate(m_shortestPathLength); }

int RVSortedPathsOutputData::shortestPathLength(int length) {
    m_shortestPathLength = length;
    return length;
}

int RVSortedPathsOutputData::type(RVEdge* edge) const { return m_pathGraph->get(m_pathGraph->types, edge); }

int RVSortedPathsOutputData::type(RVEdge* edge, int value) {
    m_pathGraph->set(m_pathGraph->types, edge, value);
    return value;
}

void RVSortedPathsOutputData::reset() {
    m_pathExists = m_numberOfPaths = m_acyclic = m_finishNodeCost = 0;
    m_shortestPathLength = 0;
    m_pStartNode = m_pFinishNode = nullptr;
    m_pathGraph->bind(nullptr);
    m_treeEdges.clear();
}

// The run

namespace {

using rv::placeOf;

constexpr auto kOneWay = [](rv::Index) { return false; };

}  // namespace

struct RVSortedPathsAlgorithm::Run {
    // Finds everything about the paths of a graph whose edges cost costOf(edge), with the nodes that they
    // enter.
    template <class CostOf>
    RVServiceErrorCodeEnum solve(const RVGraph* graph, const RVNode* from, const RVNode* to, CostOf costOf,
                                 RVRunControl* control);
    void countPaths(rv::Pulse& pulse);
    void build(const RVGraph* graph);
    // original(member) is the caller's object for one of the graph that was searched.
    template <class Original>
    void write(const RVSortedPathsInputData& input, RVSortedPathsOutputData& output, Original original);

    // Of the class itself and of subclasses.
    std::shared_ptr<const rv::FlatGraph> flat;
    const RVGraph* searched = nullptr;
    std::optional<rv::PartBetween> part;
    std::optional<rv::CheapestTree> tree;  // over the ways of the part, backward
    bool pathExists = false;
    bool hasCycle = false;
    int numberOfPaths = 0;
    rv::PathGraph paths;
    std::unique_ptr<RVGraph> pathGraph;
    std::vector<RVNode*> pathNodes;
    std::vector<RVEdge*> pathEdges;

    // Of the hooks, in the working graph.
    RVNode* start = nullptr;
    RVNode* finish = nullptr;
    std::vector<std::int64_t> costs;  // of edges, with the nodes that they enter
    RVNodeDList removedNodes;
};

RV_OBJECT_IMPL(RVSortedPathsAlgorithm)

RVServiceErrorCodeEnum RVSortedPathsAlgorithm::checkData() {
    const RVServiceErrorCodeEnum code = checkInputGraph();
    return code != RV_NO_ERROR ? code : rv::checkEnds(*RVSortedPathsInputData::castDown(pInputData()));
}

template <class CostOf>
RVServiceErrorCodeEnum RVSortedPathsAlgorithm::Run::solve(const RVGraph* graph, const RVNode* from,
                                                          const RVNode* to, CostOf costOf,
                                                          RVRunControl* control) {
    flat = rv::snapshotOf(graph);
    searched = graph;
    rv::RunPulse pulse(control, "cheapest paths", graph->numberOfEdges());
    part.emplace(*flat, rv::indexOf(from), rv::indexOf(to), false, kOneWay, pulse);
    if (!part->exists()) return RV_NO_ERROR;
    rv::Buffer<std::int64_t> partCosts(part->edges().size());
    for (std::size_t i = 0; i < partCosts.size(); ++i) partCosts[i] = costOf(part->edges()[i]);
    const rv::FlatGraph& ways = part->flat();
    tree.emplace(
        ways.in(), [&]() -> const rv::Arcs& { return ways.out(); }, part->finish(), false, kOneWay, true,
        [&](rv::Index edge) { return partCosts[edge]; }, pulse);
    if (tree->hasNegativeCycle()) return RV_NEGATIVE_CYCLE;
    if (tree->distance(part->start()) >= rv::kInfinite) return RV_NO_ERROR;
    pathExists = true;
    rv::RunPulse heapPulse(control, "out-heaps", static_cast<std::int64_t>(part->edges().size()));
    rv::RunPulse treePulse(control, "heaps of detours", static_cast<std::int64_t>(part->nodes().size()));
    paths = rv::makePathGraph(
        {ways.out(), ways.in(), part->ends(), partCosts, *tree, part->start(), part->finish()}, heapPulse,
        treePulse);
    countPaths(pulse);
    build(graph);
    return RV_NO_ERROR;
}

void RVSortedPathsAlgorithm::Run::countPaths(rv::Pulse& pulse) {
    const rv::Arcs& in = part->flat().in();
    const rv::TopologicalOrder sorted =
        rv::topologicalOrder(part->flat().out(), part->flat().order(), {}, pulse);
    hasCycle = !sorted.isComplete;
    numberOfPaths = rv::kInfinite;
    if (hasCycle) return;
    rv::Buffer<int> counts(in.nodeLimit());
    for (const rv::Index node : sorted.nodes) {
        std::int64_t sum = node == part->start() ? 1 : 0;
        for (const rv::Index source : in.targetsOf(node)) {
            sum += counts[source];
            if (sum > rv::kInfinite) return;
        }
        counts[node] = static_cast<int>(sum);
    }
    numberOfPaths = counts[part->finish()];
}

void RVSortedPathsAlgorithm::Run::build(const RVGraph* graph) {
    pathGraph = rv::newGraphLike(graph);
    pathNodes.reserve(paths.detours.size());
    for (std::size_t i = 0; i < paths.detours.size(); ++i) pathNodes.push_back(pathGraph->addNode(0));
    pathEdges.reserve(paths.edges.size());
    for (const rv::PathGraph::Edge& edge : paths.edges)
        pathEdges.push_back(pathGraph->addEdge(pathNodes[edge.from], pathNodes[edge.to], 0));
}

template <class Original>
void RVSortedPathsAlgorithm::Run::write(const RVSortedPathsInputData& input, RVSortedPathsOutputData& output,
                                        Original original) {
    output.pathExists(pathExists ? 1 : 0);
    output.acyclic(hasCycle ? 0 : 1);
    output.numberOfPaths(numberOfPaths);
    if (!pathExists) return;
    output.m_shortestPathLength = tree->distance(part->start());
    output.pStartNode(input.pStartNode());
    output.pFinishNode(input.pFinishNode());
    output.finishNodeCost(input.cost(input.pFinishNode()));
    const rv::Members members(searched);
    const auto edgeOf = [&](rv::Index way) {
        return way == rv::kNoIndex ? nullptr : original(members.edge(part->edges()[way]));
    };
    for (rv::Index node = 0; node < part->nodes().size(); ++node) {
        if (RVEdge* const edge = edgeOf(tree->edge(node)))
            output.pTreeEdge(original(members.node(part->nodes()[node])), edge);
    }
    output.pPathGraph(pathGraph.get());
    output.pRootNode(pathNodes.back());
    rv::PathGraphValues& values = *output.m_pathGraph;
    for (std::size_t i = 0; i < pathNodes.size(); ++i)
        values.set(values.sidetracks, pathNodes[i], edgeOf(paths.detours[i]));
    for (std::size_t i = 0; i < pathEdges.size(); ++i) {
        values.set(values.costs, pathEdges[i], paths.edges[i].cost);
        values.set(values.types, pathEdges[i], int{paths.edges[i].type});
    }
    static_cast<void>(pathGraph.release());  // the caller's from now on
}

std::optional<RVServiceErrorCodeEnum> RVSortedPathsAlgorithm::answer() {
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    const RVGraph* graph = input->pAssociatedGraph();
    if (!isExactly<RVSortedPathsAlgorithm>() || !rv::hasCopyFactory(graph)) return std::nullopt;
    rv::Buffer<int> spaces[2];
    const std::span<const int> edgeCosts = input->edgeCosts().values(graph, spaces[0]);
    const std::span<const int> nodeCosts = input->nodeCosts().values(graph, spaces[1]);
    const auto costOf = [&, ends = rv::snapshotOf(graph)->order().ends](rv::Index edge) {
        const rv::Index target = ends[edge].target;
        const std::int64_t cost = edge < edgeCosts.size() ? edgeCosts[edge] : 1;
        return cost + (target < nodeCosts.size() ? nodeCosts[target] : 0);
    };
    Run& run = *m_run;
    const RVServiceErrorCodeEnum code =
        run.solve(graph, input->pStartNode(), input->pFinishNode(), costOf, pRunControl());
    run.write(*input, *RVSortedPathsOutputData::castDown(pOutputData()), [](auto* member) { return member; });
    return code;
}

// The hooks, on which subclasses run

void RVSortedPathsAlgorithm::parseInputData() {
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    Run& run = *m_run;
    run.start = pInternalData()->pCopyNode(input->pStartNode());
    run.finish = pInternalData()->pCopyNode(input->pFinishNode());
    run.costs.resize(static_cast<std::size_t>(pAssociatedGraph()->edgeIndexLimit()));
    for (RVEdge* edge : *pAssociatedGraph()->pEdgeList()) {
        run.costs[placeOf(edge)] = input->cost(pInternalData()->pOriginalEdge(edge));
    }
}

void RVSortedPathsAlgorithm::privatePreprocessGraph() {
    const Run& run = *m_run;
    noteOrders();
    removeOtherNodes(run.start, 0);
    if (run.finish->pOwnerGraph() != nullptr) removeOtherNodes(run.finish, 1);
    addNodeCosts();
}

// A part that fails has reached nothing, so that nothing is left.
void RVSortedPathsAlgorithm::removeOtherNodes(RVNode* end, int reversed) {
    RVGraph* graph = pAssociatedGraph();
    RVReachableNodesOutputData reachable;
    rv::findReachable(*this, graph, end, reversed, reachable);
    rv::forEachOtherNode(graph, *reachable.pNodeList(), [&](RVNode* node) {
        m_run->removedNodes.appendNode(node);
        graph->removeNode(node);
    });
}

void RVSortedPathsAlgorithm::addNodeCosts() {
    const auto* input = RVSortedPathsInputData::castDown(pInputData());
    // Edges that have come since the input was read cost what edges cost by default.
    m_run->costs.resize(static_cast<std::size_t>(pAssociatedGraph()->edgeIndexLimit()), 1);
    for (RVNode* node : *pAssociatedGraph()->pNodeList()) {
        const int nodeCost = input->cost(pInternalData()->pOriginalNode(node));
        if (nodeCost == 0) continue;
        for (const RVEdge* edge : *node->pInEdgeList()) {
            m_run->costs[placeOf(edge)] += nodeCost;
        }
    }
}

void RVSortedPathsAlgorithm::privatePostprocessGraph() { restoreWorkingGraph(); }

void RVSortedPathsAlgorithm::restoreWorkingGraph() {
    if (m_run.get() == nullptr) return;
    for (RVNode* node : m_run->removedNodes) pAssociatedGraph()->insertNode(node);
    m_run->removedNodes.deleteAllCells();
}

RVServiceErrorCodeEnum RVSortedPathsAlgorithm::algorithmBody() {
    Run& run = *m_run;
    const RVGraph* graph = pAssociatedGraph();
    if (run.finish->pOwnerGraph() == nullptr) return RV_NO_ERROR;
    run.costs.resize(static_cast<std::size_t>(graph->edgeIndexLimit()), 1);
    return run.solve(
        graph, run.start, run.finish, [&](rv::Index edge) { return run.costs[edge]; }, pRunControl());
}

void RVSortedPathsAlgorithm::generateOutputData() {
    const RVAlgorithmData* data = pInternalData();
    m_run->write(*RVSortedPathsInputData::castDown(pInputData()),
                 *RVSortedPathsOutputData::castDown(pOutputData()), [data](auto* member) {
                     if constexpr (std::is_same_v<decltype(member), RVNode*>) {
                         return data->pOriginalNode(member);
                     } else {
                         return data->pOriginalEdge(member);
                     }
                 });
}
