// Prints the cheapest path between two places of a graph, or several, or all places that can be reached at a
// given cost.

#include <cstdint>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "arguments.h"
#include "route_graph.h"
#include "run_algorithm.h"
#include "rv/analysis.h"
#include "text_io.h"

const char* const kProgram = "route";

namespace {

constexpr const char* kHelp =
    R"(usage: route [OPTION]... START FINISH [FILE]
       route [OPTION]... --range COST START [FILE]

Prints the cheapest path from START to FINISH in the graph of FILE, or of standard input: a line for each step
with its cost, the sum so far, and the step, and at last the total. Or, with --range, a line with distance and
name of each node that START reaches within COST, the nearest first. Columns have tabs between them.

  --paths K     the K cheapest paths, a line with cost and nodes for each; in a graph with cycles they may come
                to a node more than once, and then pay for it each time
  --simple      with --paths: only paths that repeat no node; finding them may take long
  --count       how many paths there are from START to FINISH, instead of any
  --undirected  all edges can be followed both ways
  --unique      also says whether the path is the only one, whatever the costs of the others
  --range COST  what can be reached at a cost of 0 to 2147483647; no cost may be negative
  --reversed    with --range: what can reach START
  --help        this text
  --            what follows is no option

FILE has lines of words, in one of two forms. The first:
  # comment
  node NAME [COST]        a node, and what it costs to pass through it
  edge NAME -> NAME COST  an edge
  edge NAME -- NAME COST  an edge that can be followed both ways
A name is any word, and needs no line of its own. A FILE whose first line that is no comment begins with p is
of the second form, that of DIMACS shortest path problems, where nodes are numbers from 1:
  c comment
  p sp NODES ARCS
  a FROM TO COST

Costs are integers of 32 bits and may be negative. The cost of a path is the sum of the costs of its edges and
of the nodes in between; START and FINISH cost nothing. A path that costs 2147483647 or more counts as none.
With negative costs, and cycles on the way, a search takes long: seconds for 2000 nodes, and eight times as
long for twice as many. A malformed line is skipped and named on standard error.

Exit status: 0 success, 1 failure, such as no usable input or no such node, 2 wrong usage, 3 no path, 4 no
cheapest path because of a cycle of negative cost on the way.
)";

constexpr int kNoPath = 3;
constexpr int kNegativeCycle = 4;

struct Options {
    std::string start;
    std::string finish;
    std::string file = "-";
    std::optional<int> range;
    std::optional<int> paths;
    bool simple = false;
    bool count = false;
    bool reversed = false;
    bool undirected = false;
    bool unique = false;
    bool help = false;
};

// The options

// These give the error, empty without one.
std::string assignOperands(const std::vector<std::string>& operands, Options& options) {
    std::vector<std::string*> places = {&options.start};
    if (!options.range) places.push_back(&options.finish);
    if (operands.size() < places.size()) return operands.empty() ? "no START" : "no FINISH";
    places.push_back(&options.file);
    if (operands.size() > places.size()) return "more than one file: " + operands[places.size()];
    for (std::size_t i = 0; i < operands.size(); ++i) *places[i] = operands[i];
    return {};
}

std::string readOptions(Arguments arguments, Options& options) {
    constexpr int kMost = std::numeric_limits<int>::max();
    std::vector<std::string> operands;
    while (arguments.next()) {
        std::string error;
        if (arguments.isOperand()) {
            operands.push_back(arguments.text());
        } else if (arguments.is("--help")) {
            options.help = true;
        } else if (arguments.is("--undirected")) {
            options.undirected = true;
        } else if (arguments.is("--unique")) {
            options.unique = true;
        } else if (arguments.is("--simple")) {
            options.simple = true;
        } else if (arguments.is("--count")) {
            options.count = true;
        } else if (arguments.is("--reversed")) {
            options.reversed = true;
        } else if (arguments.isValued("--range")) {
            error = arguments.readInteger(0, kMost, options.range);
        } else if (arguments.isValued("--paths")) {
            error = arguments.readInteger(1, kMost, options.paths);
        } else {
            error = "unknown option " + arguments.text();
        }
        if (!error.empty()) return error;
    }
    if (options.help) return {};
    if (options.reversed && !options.range) return "--reversed needs --range";
    if (options.simple && !options.paths) return "--simple needs --paths";
    const std::pair<bool, const char*> questions[] = {{options.range.has_value(), "--range"},
                                                      {options.unique, "--unique"},
                                                      {options.paths.has_value(), "--paths"},
                                                      {options.count, "--count"}};
    const char* asked = nullptr;
    for (const auto& [isAsked, name] : questions) {
        if (!isAsked) continue;
        if (asked != nullptr) return std::string(asked) + " and " + name + " exclude one another";
        asked = name;
    }
    return assignOperands(operands, options);
}

// Runs an algorithm whose input lacks nothing but the costs and directions of the graph.
RVServiceErrorCodeEnum run(const RouteGraph& graph, RVAlgorithm& algorithm, RVAnalysisInputData& input,
                           RVAnalysisOutputData& output) {
    input.copyData(&graph.costs());
    return runAlgorithm(algorithm, input, output);
}

// The cheapest path

// A line for each edge, and between two of them one for the node, if that costs something.
void appendSteps(const RouteGraph& graph, RVNode* start, const RVEdgeDList& path, std::string& text) {
    std::int64_t sum = 0;
    const auto appendStep = [&](int cost, const std::string& step) {
        sum += cost;
        text.append(std::to_string(cost)).append(1, '\t').append(std::to_string(sum));
        text.append(1, '\t').append(step).append(1, '\n');
    };
    RVNode* node = start;
    bool isInside = false;
    for (RVEdge* edge : path) {
        if (isInside && graph.costs().cost(node) != 0) {
            appendStep(graph.costs().cost(node), graph.name(node));
        }
        RVNode* next = edge->pOtherNode(node);
        const char* arrow = graph.isFollowedBothWays(edge) ? " -- " : " -> ";
        appendStep(graph.costs().cost(edge), graph.name(node) + arrow + graph.name(next));
        node = next;
        isInside = true;
    }
}

RVServiceErrorCodeEnum appendUniqueness(const RouteGraph& graph, RVNode* start, RVNode* finish,
                                        std::string& text) {
    RVUniquePathTestInputData input(graph.pGraph());
    RVUniquePathTestOutputData output;
    RVUniquePathTestAlgorithm test;
    input.pStartNode(start);
    input.pFinishNode(finish);
    const RVServiceErrorCodeEnum code = run(graph, test, input, output);
    text.append("the only path: ").append(output.uniquePathExists() != 0 ? "yes\n" : "no\n");
    return code;
}

int failWithNegativeCycle(const std::string& ends) {
    return fail(kNegativeCycle, "no cheapest path: the ways " + ends + " hold a cycle of negative cost");
}

std::string endsText(const RouteGraph& graph, const RVNode* start, const RVNode* finish) {
    return "from " + graph.name(start) + " to " + graph.name(finish);
}

int printPath(const RouteGraph& graph, RVNode* start, RVNode* finish, bool unique) {
    RVShortestPathsInputData input(graph.pGraph());
    RVShortestPathsOutputData output;
    RVShortestPathsAlgorithm search;
    input.pStartNode(start);
    input.pFinishNode(finish);
    RVServiceErrorCodeEnum code = run(graph, search, input, output);
    const std::string ends = endsText(graph, start, finish);
    if (code == RV_NEGATIVE_CYCLE) return failWithNegativeCycle(ends);
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    if (output.pathExists() == 0) return fail(kNoPath, "no path " + ends);

    std::string text;
    appendSteps(graph, start, *output.pEdgeList(), text);
    text.append("total: ").append(std::to_string(output.totalCost())).append(1, '\n');
    if (unique) {
        code = appendUniqueness(graph, start, finish, text);
        if (code != RV_NO_ERROR) return failWithCode("the unique path test", code);
    }
    return print(text);
}

// Several paths

// A graph in which every way is an edge of its own direction: an edge that is followed both ways becomes two.
class WayGraph {
public:
    explicit WayGraph(const RouteGraph& graph) : m_graph(m_factory.newGraph()), m_input(m_graph.get()) {
        m_nodes.resize(static_cast<std::size_t>(graph.pGraph()->nodeIndexLimit()));
        for (RVNode* node : *graph.pGraph()->pNodeList()) {
            RVNode*& copy = m_nodes[rv::placeOf(node)];
            copy = m_graph->addNode();
            copy->pUserField(node);
            m_input.cost(copy, graph.costs().cost(node));
        }
        for (RVEdge* edge : *graph.pGraph()->pEdgeList()) {
            const int cost = graph.costs().cost(edge);
            addWay(edge->pSourceNode(), edge->pTargetNode(), cost);
            if (graph.isFollowedBothWays(edge)) addWay(edge->pTargetNode(), edge->pSourceNode(), cost);
        }
    }

    RVSortedPathsInputData& question(const RVNode* start, const RVNode* finish) {
        m_input.pStartNode(copyOf(start));
        m_input.pFinishNode(copyOf(finish));
        return m_input;
    }
    static const RVNode* original(const RVNode* copy) {
        return static_cast<const RVNode*>(copy->pUserField());
    }

private:
    RVNode* copyOf(const RVNode* node) const { return m_nodes[rv::placeOf(node)]; }
    void addWay(const RVNode* source, const RVNode* target, int cost) {
        m_input.cost(m_graph->addEdge(copyOf(source), copyOf(target)), cost);
    }

    RVAFactory m_factory;
    std::unique_ptr<RVGraph> m_graph;
    std::vector<RVNode*> m_nodes;  // by dense index of the original
    RVSortedPathsInputData m_input;
};

int printPaths(const RouteGraph& graph, const RVNode* start, const RVNode* finish, const Options& options) {
    WayGraph ways(graph);
    RVSortedPathsOutputData output;
    RVSortedPathsAlgorithm search;
    const RVServiceErrorCodeEnum code = runAlgorithm(search, ways.question(start, finish), output);
    const std::unique_ptr<RVGraph> pathGraph(output.pPathGraph());
    if (code == RV_NEGATIVE_CYCLE) return failWithNegativeCycle(endsText(graph, start, finish));
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    if (output.pathExists() == 0) return fail(kNoPath, "no path " + endsText(graph, start, finish));

    if (options.count) {
        const int number = output.numberOfPaths();
        return print(output.acyclic() == 0  ? "infinitely many\n"
                     : number == 2147483647 ? "2147483647 or more\n"
                                            : std::to_string(number) + "\n");
    }
    std::string text;
    RVSortedPathsEnumerator path(&output);
    path.simplePathsOnly(options.simple ? 1 : 0);
    RVEdgeDList edges;
    while (path.pathNumber() < *options.paths && path.next()) {
        text.append(std::to_string(path.totalCostWithoutFinishNode()))
            .append(1, '\t')
            .append(graph.name(start));
        path.buildEdgeList(edges);
        for (const RVEdge* edge : edges) {
            text.append(" -> ").append(graph.name(WayGraph::original(edge->pTargetNode())));
        }
        text.append(1, '\n');
    }
    return print(text);
}

// What is in range

// The distances of nodes that are listed nearest first, by dense index: the way to each leads over nodes
// before it.
std::vector<std::int64_t> distancesOf(const RVNodeDList& nodes, const RouteGraph& graph, bool reversed) {
    constexpr std::int64_t kUnknown = -1;
    std::vector<std::int64_t> distances(static_cast<std::size_t>(graph.pGraph()->nodeIndexLimit()), kUnknown);
    const auto distance = [&](const RVNode* node) -> std::int64_t& { return distances[rv::placeOf(node)]; };
    RVNode* start = nodes.pFirstNode();
    distance(start) = 0;
    for (RVNode* node : nodes) {
        const std::int64_t base = distance(node) + (node == start ? 0 : graph.costs().cost(node));
        const auto offer = [&](RVEdge* edge, bool isForward) {
            if (isForward == reversed && !graph.isFollowedBothWays(edge)) return;
            std::int64_t& other = distance(edge->pOtherNode(node));
            const std::int64_t offered = base + graph.costs().cost(edge);
            if (other == kUnknown || offered < other) other = offered;
        };
        for (RVEdge* edge : *node->pOutEdgeList()) offer(edge, true);
        for (RVEdge* edge : *node->pInEdgeList()) offer(edge, false);
    }
    return distances;
}

int printRange(const RouteGraph& graph, RVNode* start, int range, bool reversed) {
    RVReachableNodesInputData input(graph.pGraph());
    RVReachableNodesOutputData output;
    RVReachableNodesAlgorithm search;
    input.pStartNode(start);
    input.range(range);
    input.reversed(reversed ? 1 : 0);
    const RVServiceErrorCodeEnum code = run(graph, search, input, output);
    if (code == RV_NEGATIVE_COST) return fail(kFailure, "--range needs a graph without negative costs");
    if (code != RV_NO_ERROR) return failWithCode("the search", code);

    const std::vector<std::int64_t> distances = distancesOf(*output.pNodeList(), graph, reversed);
    std::string text;
    for (const RVNode* node : *output.pNodeList()) {
        text.append(std::to_string(distances[rv::placeOf(node)])).append(1, '\t');
        text.append(graph.name(node)).append(1, '\n');
    }
    return print(text);
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (const std::string error = readOptions(Arguments(argc, argv), options); !error.empty()) {
        return fail(kWrongUsage, error + "; see --help");
    }
    if (options.help) return print(kHelp);

    const std::string name = options.file == "-" ? "standard input" : options.file;
    const std::optional<std::string> text = readText(options.file);
    if (!text) return failToRead(name);
    RouteGraph graph(name, *text);
    if (options.undirected) graph.costs().undirected(1);

    RVNode* start = graph.pNode(options.start);
    if (start == nullptr) return fail(kFailure, "no node " + options.start + " in " + name);
    if (options.range) return printRange(graph, start, *options.range, options.reversed);
    RVNode* finish = graph.pNode(options.finish);
    if (finish == nullptr) return fail(kFailure, "no node " + options.finish + " in " + name);
    if (options.paths || options.count) return printPaths(graph, start, finish, options);
    return printPath(graph, start, finish, options.unique);
}
