// Prints which parts of a system belong together: modules of about the same size with few ties between them.

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "module_graph.h"
#include "rv/analysis.h"
#include "text_io.h"

namespace {

constexpr const char* kHelp =
    R"(usage: modules [OPTION]... [FILE]

Divides the nodes of the graph in FILE, or in standard input, into modules of about the same weight, such that
edges between modules cost little. Prints a line `modules: N`, a line `cut: COST of TOTAL` with the cost of the
edges between modules and of all edges, a line with number and nodes of each module, and a line for each
constraint that tells whether it holds. Columns have tabs between them.

  --includes DIR  the graph of the C and C++ files in DIR and the includes between them; FILE, if it is given,
                  adds to it
  --least N       no less than N modules; default 1
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

enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongUsage = 2, kDoesNotHold = 3 };

struct Options {
    std::string file;  // none with --includes alone
    std::string includes;
    std::string dot;
    int least = 1;
    int most = RVClusteringInputData::kManyClusters;
    int quality = 1;
    bool help = false;
};

int fail(ExitStatus status, const std::string& message) {
    std::fprintf(stderr, "modules: %s\n", message.c_str());
    return status;
}

// Gives the error, empty without one.
std::string readOptions(int argc, char** argv, Options& options) {
    bool onlyFiles = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        const auto takeText = [&](std::string& text) {
            if (i + 1 == argc) return argument + " needs a value";
            text = argv[++i];
            return std::string();
        };
        const auto takeNumber = [&](int& number, int least, int most) {
            std::string word;
            std::string error = takeText(word);
            if (error.empty()) error = readInteger(word, number);
            const bool isOutside = number < least || number > most;
            if (error.empty() && isOutside) error.append(argument).append(" cannot be ").append(word);
            return error;
        };
        std::string error;
        if (onlyFiles || argument == "-" || !argument.starts_with('-')) {
            if (!options.file.empty()) error = "more than one file: " + argument;
            options.file = argument;
        } else if (argument == "--") {
            onlyFiles = true;
        } else if (argument == "--help") {
            options.help = true;
        } else if (argument == "--includes") {
            error = takeText(options.includes);
        } else if (argument == "--dot") {
            error = takeText(options.dot);
        } else if (argument == "--least") {
            error = takeNumber(options.least, 1, RVClusteringInputData::kManyClusters);
        } else if (argument == "--most") {
            error = takeNumber(options.most, 1, RVClusteringInputData::kManyClusters);
        } else if (argument == "--quality") {
            error = takeNumber(options.quality, 0, 2);
        } else {
            error = "unknown option " + argument;
        }
        if (!error.empty()) return error;
    }
    if (options.least > options.most) return "--least is above --most";
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

std::string quoted(std::string_view name) {
    std::string text = "\"";
    for (const char c : name) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
    }
    return text + "\"";
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
            text += "    " + quoted(graph.name(static_cast<RVNode*>(node.pObject()))) + "\n";
        }
        text += "  }\n";
    }
    for (RVEdge* edge : *graph.pGraph()->pEdgeList()) {
        const int source = output.getClusterNumber(edge->pSourceNode());
        const bool isCut = source != output.getClusterNumber(edge->pTargetNode());
        const int cost = graph.question().getCost(edge);
        text +=
            "  " + quoted(graph.name(edge->pSourceNode())) + " -- " + quoted(graph.name(edge->pTargetNode()));
        std::string style = isCut ? "style=dashed" : "";
        if (cost != 1) style += (style.empty() ? "label=" : ", label=") + std::to_string(cost);
        text += (style.empty() ? "" : " [" + style + "]") + "\n";
    }
    return text + "}\n";
}

bool writeFile(const std::string& name, const std::string& text) {
    std::FILE* file = std::fopen(name.c_str(), "wb");
    if (file == nullptr) return false;
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file) == text.size();
    return std::fclose(file) == 0 && isWritten;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (const std::string error = readOptions(argc, argv, options); !error.empty()) {
        return fail(kWrongUsage, error + "; see --help");
    }
    const auto print = [](const std::string& text) {
        return writeText(text) ? kSuccess
                               : fail(kFailure, std::string("cannot write: ") + std::strerror(errno));
    };
    if (options.help) return print(kHelp);

    ModuleGraph graph;
    if (!options.includes.empty()) {
        if (const std::string error = graph.collectIncludes(options.includes); !error.empty()) {
            return fail(kFailure, error);
        }
    } else if (options.file.empty()) {
        options.file = "-";
    }
    if (!options.file.empty()) {
        const std::string name = options.file == "-" ? "standard input" : options.file;
        const std::optional<std::string> text = readText(options.file);
        if (!text) return fail(kFailure, "cannot read " + name + ": " + std::strerror(errno));
        graph.read(name, *text);
    }
    if (graph.pGraph()->numberOfNodes() == 0) return fail(kFailure, "no nodes");

    RVClusteringInputData& input = graph.question();
    RVClusteringOutputData output;
    RVClusteringAlgorithm clustering;
    input.minClusterCount(options.least);
    input.maxClusterCount(options.most);
    input.setQuality(options.quality);
    clustering.pInputData(&input);
    clustering.pOutputData(&output);
    if (const RVServiceErrorCodeEnum code = clustering.run(); code != RV_NO_ERROR) {
        return fail(kFailure, "clustering failed with code " + std::to_string(code));
    }

    if (!options.dot.empty() && !writeFile(options.dot, dotText(graph, output))) {
        return fail(kFailure, "cannot write " + options.dot + ": " + std::strerror(errno));
    }
    if (const int status = print(answer(graph, output)); status != kSuccess) return status;
    for (RVDListIter iter(input.getConstraintList()); iter; iter++) {
        if (RVClusteringConstraint::castDown(iter.pObject())->fulfilled() == 0) return kDoesNotHold;
    }
    return kSuccess;
}
