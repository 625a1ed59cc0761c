// Prints how much can flow through a network and by which arcs, at the least cost if flow costs something; or
// what would have to be cut to stop it, or paths that share no arc.

#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "arguments.h"
#include "flow_problem.h"
#include "run_algorithm.h"
#include "rv/analysis.h"
#include "text_io.h"

const char* const kProgram = "flow";

namespace {

constexpr const char* kHelp =
    R"(usage: flow [OPTION]... [FILE]

Solves the flow problem of FILE, or of standard input. For a maximum flow problem it prints a line `value: N`
with the greatest flow from source to sink, and a line for each arc that carries some of it: the arc, and how
much it carries of its capacity. For a minimum cost flow problem these are a line `flow: N`, a line `cost: N`
with the least cost of so much flow, and the arcs, with the cost per unit as a third column. Columns have tabs
between them, arcs come in the order of FILE.

Of a maximum flow problem, one of these can be asked instead:
  --cut            a minimum cut: a line `cost: N` with the least sum of capacities of arcs without which the
                   sink cannot be reached from the source, and a line with arc and capacity for each of them.
                   Arcs of capacity 0 would be part of every cut; they are left out.
  --paths          a line `paths: N` with the greatest number of paths from source to sink that share no arc,
                   and a line with the nodes of each. What an arc carries plays no part, but arcs of
                   capacity 0 are left out.
  --node-disjoint  with --paths: paths that share no node but source and sink either
  --help           this text
  --               what follows is no option

FILE is of one of two DIMACS forms. Nodes are numbers from 1. Maximum flow:
  c comment
  p max NODES ARCS
  n ID s                         the source
  n ID t                         the sink
  a FROM TO CAPACITY
Minimum cost flow:
  p min NODES ARCS
  n ID SUPPLY                    positive for the source, and the same amount, negative, for the sink
  a FROM TO LOW CAPACITY COST    LOW must be 0
A supply of more than one source or sink, and a LOW that is not 0, are not supported.

Numbers are integers of 32 bits; only costs and supplies may be negative. A sum beyond them is printed as
`2147483647 or more`, or `-2147483648 or less`. Paths on which a unit costs 2147483647 or more may count as
none and, with negative costs on the way, cycles as dear as that may count as negative. Only cycles on the way
from source to sink count; an arc from a node to itself carries nothing. With negative costs, and cycles on
the way, a search takes long. A malformed line is skipped and named on standard error.

Exit status: 0 success, 1 failure, such as no usable input or an unsupported problem, 2 wrong usage, 3 less
than the supply can flow, and what can is printed, 4 no least cost because of a cycle of negative cost.
)";

constexpr int kTooLittle = 3;
constexpr int kNegativeCycle = 4;

struct Options {
    std::string file = "-";
    bool cut = false;
    bool paths = false;
    bool nodeDisjoint = false;
    bool help = false;
};

// Gives the error, empty without one.
std::string readOptions(Arguments arguments, Options& options) {
    bool hasFile = false;
    while (arguments.next()) {
        if (arguments.isOperand()) {
            if (hasFile) return "more than one file: " + arguments.text();
            options.file = arguments.text();
            hasFile = true;
        } else if (arguments.is("--help")) {
            options.help = true;
        } else if (arguments.is("--cut")) {
            options.cut = true;
        } else if (arguments.is("--paths")) {
            options.paths = true;
        } else if (arguments.is("--node-disjoint")) {
            options.nodeDisjoint = true;
        } else {
            return "unknown option " + arguments.text();
        }
    }
    if (options.help) return {};
    if (options.nodeDisjoint && !options.paths) return "--node-disjoint needs --paths";
    if (options.cut && options.paths) return "--cut and --paths exclude one another";
    return {};
}

// Parts of what is printed

// Sums stay at the ends of what 32 bits hold.
std::string sumText(int sum) {
    if (sum == std::numeric_limits<int>::max()) return std::to_string(sum) + " or more";
    if (sum == std::numeric_limits<int>::min()) return std::to_string(sum) + " or less";
    return std::to_string(sum);
}

std::string arcText(const FlowProblem& problem, const RVEdge* edge) {
    return std::to_string(problem.number(edge->pSourceNode())) + " -> " +
           std::to_string(problem.number(edge->pTargetNode()));
}

// A line for each arc that carries flow.
template <class Output>
void appendFlows(const FlowProblem& problem, const Output& output, std::string& text) {
    for (RVEdge* edge : *problem.pGraph()->pEdgeList()) {
        const int flow = output.flow(edge);
        if (flow == 0) continue;
        text.append(arcText(problem, edge)).append(1, '\t').append(std::to_string(flow)).append(1, '/');
        text.append(std::to_string(problem.question().capacity(edge)));
        if (problem.kind() == FlowProblem::MinimumCost) {
            text.append(1, '\t').append(std::to_string(problem.question().cost(edge)));
        }
        text.append(1, '\n');
    }
}

// The answers

int printMaximumFlow(FlowProblem& problem) {
    RVMaximumFlowInputData input(problem.pGraph());
    RVMaximumFlowOutputData output;
    RVMaximumFlowAlgorithm search;
    input.copyData(&problem.question());
    const RVServiceErrorCodeEnum code = runAlgorithm(search, input, output);
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    std::string text = "value: " + sumText(output.totalFlow()) + "\n";
    appendFlows(problem, output, text);
    return print(text);
}

int printCut(const FlowProblem& problem) {
    RVMinimumCutInputData input(problem.pGraph());
    RVMinimumCutOutputData output;
    RVMinimumCutAlgorithm search;
    input.pSourceNode(problem.question().pSourceNode());
    input.pSinkNode(problem.question().pSinkNode());
    for (RVEdge* edge : *problem.pGraph()->pEdgeList()) input.cost(edge, problem.question().capacity(edge));
    const RVServiceErrorCodeEnum code = runAlgorithm(search, input, output);
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    std::string text = "cost: " + sumText(output.totalCost()) + "\n";
    for (RVEdge* edge : *output.pEdgeList()) {
        if (input.cost(edge) == 0) continue;
        text.append(arcText(problem, edge)).append(1, '\t');
        text.append(std::to_string(input.cost(edge))).append(1, '\n');
    }
    return print(text);
}

int printPaths(const FlowProblem& problem, bool nodeDisjoint) {
    std::vector<RVEdge*> shut;
    for (RVEdge* edge : *problem.pGraph()->pEdgeList()) {
        if (problem.question().capacity(edge) == 0) shut.push_back(edge);
    }
    for (RVEdge* edge : shut) problem.pGraph()->removeEdge(edge);
    RVDisjointPathsInputData input(problem.pGraph());
    RVDisjointPathsOutputData output;
    RVDisjointPathsAlgorithm search;
    input.pStartNode(problem.question().pSourceNode());
    input.pFinishNode(problem.question().pSinkNode());
    input.nodeDisjointPaths(nodeDisjoint ? 1 : 0);
    const RVServiceErrorCodeEnum code = runAlgorithm(search, input, output);
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    std::string text = "paths: " + std::to_string(output.numberOfDisjointPaths()) + "\n";
    for (RVDListIter path(output.pPathList()); path; path++) {
        text.append(std::to_string(problem.number(input.pStartNode())));
        for (const RVEdge* edge : *static_cast<const RVEdgeDList*>(path.pObject())) {
            text.append(" -> ").append(std::to_string(problem.number(edge->pTargetNode())));
        }
        text.append(1, '\n');
    }
    return print(text);
}

int printMinimumCostFlow(FlowProblem& problem) {
    RVMinimumCostFlowOutputData output;
    RVMinimumCostFlowAlgorithm search;
    const RVServiceErrorCodeEnum code = runAlgorithm(search, problem.question(), output);
    if (code == RV_NEGATIVE_CYCLE) {
        return fail(kNegativeCycle, "no least cost: the network holds a cycle of negative cost");
    }
    if (code != RV_NO_ERROR) return failWithCode("the search", code);
    std::string text = "flow: " + std::to_string(output.totalFlow()) + "\n";
    text.append("cost: ").append(sumText(output.totalCost())).append(1, '\n');
    appendFlows(problem, output, text);
    const int status = print(text);
    const int supply = problem.question().desiredFlow();
    if (status != kSuccess || output.totalFlow() == supply) return status;
    return fail(kTooLittle, "only " + std::to_string(output.totalFlow()) + " of the supply of " +
                                std::to_string(supply) + " can flow");
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
    FlowProblem problem(name, *text);
    if (const std::string obstacle = problem.obstacle(); !obstacle.empty()) return fail(kFailure, obstacle);

    if (problem.kind() == FlowProblem::MinimumCost) {
        if (options.cut || options.paths) {
            return fail(kFailure, "--cut and --paths need a maximum flow problem");
        }
        return printMinimumCostFlow(problem);
    }
    if (options.cut) return printCut(problem);
    if (options.paths) return printPaths(problem, options.nodeDisjoint);
    return printMaximumFlow(problem);
}
