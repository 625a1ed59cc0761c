// Prints which parts of a system belong together: modules of about the same size with few ties between them.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <optional>
#include <string>

#include "arguments.h"
#include "module_graph.h"
#include "run_algorithm.h"
#include "rv/analysis.h"
#include "text_io.h"

const char* const kProgram = "modules";

namespace {

constexpr const char* kHelp =
    R"(usage: modules [OPTION]... [FILE]

Divides the nodes of the graph in FILE, or in standard input, into modules of about the same weight, such that
edges between modules cost little. Prints a line `modules: N`, a line `cut: COST of TOTAL` with the cost of the
edges between modules and of all edges, a line with number and nodes of each module, and a line for each
constraint that tells whether it holds. Columns have tabs between them.

  --includes DIR  the graph of the C and C++ files in DIR and the includes between them; FILE, if it is given,
                  adds to it
  --least N       no less than N modules, unless there are fewer nodes; default 1
  --most N        no more than N modules, unless a constraint needs more
  --quality N     how hard to try: 0, 1 (default) or 2
  --dot FILE      also writes the graph for Graphviz, each module in its own colour
  --help          this text
  --              what follows is no option

FILE has a line for each edge, A B [COST], with 1 for a COST that is not there. Other lines are:
  edge A B [COST]    the same, also for names that are words of this list
  node A [WEIGHT]    a node, with 1 for a WEIGHT that is not there
  same A B ...       these are in one module
  different A B ...  no two of these are in the same module
  alone A B ...      these are a module, and nothing else is in it
  # comment
A name is any word. A malformed line is skipped and named on standard error.

Exit status: 0 success, 1 failure, such as no usable input, 2 wrong usage, 3 some constraint does not hold.
)";

constexpr int kDoesNotHold = 3;

struct Options {
    std::string file;  // none with --includes alone
    std::optional<std::string> includes;
    std::optional<std::string> dot;
    std::optional<int> least;
    std::optional<int> most;
    std::optional<int> quality;
    bool help = false;
};

// Gives the error, empty without one.
std::string readOptions(Arguments arguments, Options& options) {
    constexpr int kMost = RVClusteringInputData::kManyClusters;
    while (arguments.next()) {
        std::string error;
        if (arguments.isOperand()) {
            if (!options.file.empty()) error = "more than one file: " + arguments.text();
            options.file = arguments.text();
        } else if (arguments.is("--help")) {
            options.help = true;
        } else if (arguments.isValued("--includes")) {
            error = arguments.readText("a folder", options.includes);
        } else if (arguments.isValued("--dot")) {
            error = arguments.readText("a file", options.dot);
        } else if (arguments.isValued("--least")) {
            error = arguments.readInteger(1, kMost, options.least);
        } else if (arguments.isValued("--most")) {
            error = arguments.readInteger(1, kMost, options.most);
        } else if (arguments.isValued("--quality")) {
            error = arguments.readInteger(0, 2, options.quality);
        } else {
            error = "unknown option " + arguments.text();
        }
        if (!error.empty()) return error;
    }
    if (options.least.value_or(1) > options.most.value_or(kMost)) return "--least is above --most";
    return {};
}

std::string answer(ModuleGraph& graph, const RVClusteringOutputData& output) {
    std::int64_t total = 0;
    std::int64_t cut = 0;
    for (RVEdge* edge : *graph.pGraph()->pEdgeList()) {
        const int cost = graph.question().getCost(edge);
        const bool isCut =
            output.getClusterNumber(edge->pSourceNode()) != output.getClusterNumber(edge->pTargetNode());
        total += cost;
        cut += isCut ? cost : 0;
    }
    std::string text = "modules: " + std::to_string(output.pClusters()->length()) + "\n";
    text += "cut: " + std::to_string(cut) + " of " + std::to_string(total) + "\n";
    int number = 0;
    for (RVDListIter cluster(output.pClusters()); cluster; cluster++) {
        text += std::to_string(++number);
        char separator = '\t';
        for (RVDListIter node(RVDList::castDown(cluster.pObject())); node; node++) {
            text.append(1, separator).append(graph.name(static_cast<RVNode*>(node.pObject())));
            separator = ' ';
        }
        text += '\n';
    }
    for (RVDListIter iter(graph.question().getConstraintList()); iter; iter++) {
        const auto* constraint = RVClusteringConstraint::castDown(iter.pObject());
        text += (constraint->fulfilled() != 0 ? "holds\t" : "fails\t") + graph.text(*constraint) + "\n";
    }
    return text;
}

// Neighbouring numbers get colours far apart.
std::string colour(int number) {
    constexpr double kGoldenRatio = 0.618033988749895;
    const double hue = number * kGoldenRatio;
    char text[32];
    std::snprintf(text, sizeof text, "\"%.3f 0.45 0.95\"", hue - std::floor(hue));
    return text;
}

std::string dotText(ModuleGraph& graph, const RVClusteringOutputData& output) {
    std::string text = "graph modules {\n  node [shape=box, style=filled, fontname=\"sans-serif\"]\n";
    int number = 0;
    for (RVDListIter cluster(output.pClusters()); cluster; cluster++) {
        ++number;
        text += "  subgraph cluster_" + std::to_string(number) +
                " {\n    color=gray\n    node [fillcolor=" + colour(number) + "]\n";
        for (RVDListIter node(RVDList::castDown(cluster.pObject())); node; node++) {
            text += "    " + quotedForDot(graph.name(static_cast<RVNode*>(node.pObject()))) + "\n";
        }
        text += "  }\n";
    }
    for (RVEdge* edge : *graph.pGraph()->pEdgeList()) {
        const int source = output.getClusterNumber(edge->pSourceNode());
        const bool isCut = source != output.getClusterNumber(edge->pTargetNode());
        const int cost = graph.question().getCost(edge);
        text += "  " + quotedForDot(graph.name(edge->pSourceNode())) + " -- " +
                quotedForDot(graph.name(edge->pTargetNode()));
        std::string style = isCut ? "style=dashed" : "";
        if (cost != 1) style += (style.empty() ? "label=" : ", label=") + std::to_string(cost);
        text += (style.empty() ? "" : " [" + style + "]") + "\n";
    }
    return text + "}\n";
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (const std::string error = readOptions({argc, argv}, options); !error.empty()) {
        return fail(kWrongUsage, error + "; see --help");
    }
    if (options.help) return print(kHelp);

    ModuleGraph graph;
    if (options.includes) {
        if (const std::string error = graph.collectIncludes(*options.includes); !error.empty()) {
            return fail(kFailure, error);
        }
    } else if (options.file.empty()) {
        options.file = "-";
    }
    if (!options.file.empty()) {
        const std::string name = options.file == "-" ? "standard input" : options.file;
        const std::optional<std::string> text = readText(options.file);
        if (!text) return failToRead(name);
        graph.read(name, *text);
    }
    if (graph.pGraph()->numberOfNodes() == 0) return fail(kFailure, "no nodes");

    RVClusteringInputData& input = graph.question();
    RVClusteringOutputData output;
    if (options.least) input.minClusterCount(*options.least);
    if (options.most) input.maxClusterCount(*options.most);
    if (options.quality) input.setQuality(*options.quality);
    const RVServiceErrorCodeEnum code = runAlgorithm(RVClusteringAlgorithm(), input, output);
    if (code != RV_NO_ERROR) return failWithCode("clustering", code);

    int status = options.dot ? writeFile(dotText(graph, output), *options.dot) : kSuccess;
    if (status == kSuccess) status = print(answer(graph, output));
    if (status != kSuccess) return status;
    for (RVDListIter iter(input.getConstraintList()); iter; iter++) {
        if (RVClusteringConstraint::castDown(iter.pObject())->fulfilled() == 0) return kDoesNotHold;
    }
    return kSuccess;
}
