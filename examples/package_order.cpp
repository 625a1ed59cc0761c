// Prints the packages of a Debian machine or archive in an order in which they can be installed: every
// package after all that it needs. Or says that there is no such order, and which packages need one another.

#include <optional>
#include <string>

#include "arguments.h"
#include "package_graph.h"
#include "package_source.h"
#include "run_algorithm.h"
#include "rv/analysis.h"
#include "text_io.h"

const char* const kProgram = "package_order";

namespace {

constexpr const char* kHelp =
    R"(usage: package_order [OPTION]... [FILE]

Prints the packages listed in FILE, or on standard input, in an order of installation, one a line: every
package after all that it needs.

  --pre-depends   consider Pre-Depends only
  --closure NAME  only the package NAME and what it needs, directly or not
  --help          this text

FILE is what one of these commands prints; which one is found out by itself:
  dpkg-query -W -f '${Package}\t${Depends}\t${Pre-Depends}\n'
  dpkg-query -W -f '${Package}\t${Depends}\t${Pre-Depends}\t${Provides}\n'
  apt-cache dumpavail
Without Provides, virtual packages are unknown.

Of alternatives (a | b) the first one that exists is taken, for a virtual package the first one that
provides it. Versions and architectures are ignored, dependencies that nothing meets are left out.

Standard output has the names only; the counts are written to standard error. Without an order it has, for
every set of packages that all need one another, a line of their names and a line for each dependency
between them.
Exit status: 0 success, 1 failure, such as no usable input, 2 wrong usage, 3 no order because of cycles.
)";

constexpr int kCycles = 3;

struct Options {
    std::string file = "-";
    std::optional<std::string> closure;
    DependencyKind kind = DependencyKind::All;
    bool help = false;
};

// Gives the error, empty without one.
std::string readOptions(Arguments arguments, Options& options) {
    bool hasFile = false;
    while (arguments.next()) {
        std::string error;
        if (arguments.isOperand()) {
            if (hasFile) return "more than one file: " + arguments.text();
            hasFile = true;
            options.file = arguments.text();
        } else if (arguments.is("--help")) {
            options.help = true;
        } else if (arguments.is("--pre-depends")) {
            options.kind = DependencyKind::PreDepends;
        } else if (arguments.isValued("--closure")) {
            error = arguments.readText("the name of a package", options.closure);
        } else {
            error = "unknown option " + arguments.text();
        }
        if (!error.empty()) return error;
    }
    return {};
}

// The strongly connected components of more than one package, with the dependencies inside each.
int printCycles(const PackageGraph& packages) {
    RVStronglyConnectedComponentsInputData input(packages.pGraph());
    RVStronglyConnectedComponentsOutputData output;
    RVStronglyConnectedComponentsAlgorithm components;
    const RVServiceErrorCodeEnum code = runAlgorithm(components, input, output);
    if (code != RV_NO_ERROR) return failWithCode("the components", code);

    std::string text;
    int count = 0;
    RVDListIter edges(output.pEdgeComponentList());
    for (RVDListIter nodes(output.pComponentList()); nodes; nodes++, edges++) {
        const RVNodeDList* component = RVNodeDList::castDown(nodes.pObject());
        if (component->length() == 1) continue;
        ++count;
        text.append("cycle:");
        for (const RVNode* node : *component) text.append(1, ' ').append(packages.name(node));
        text.append(1, '\n');
        for (const RVEdge* edge : *RVEdgeDList::castDown(edges.pObject())) {
            text.append("  ").append(packages.name(edge->pTargetNode())).append(" needs ");
            text.append(packages.name(edge->pSourceNode())).append(1, '\n');
        }
    }
    if (const int status = print(text); status != kSuccess) return status;
    return fail(kCycles, "no installation order: the dependencies have cycles, in sets of packages: " +
                             std::to_string(count));
}

int printOrder(const PackageGraph& packages) {
    RVTopologicalSortInputData input(packages.pGraph());
    RVTopologicalSortOutputData output;
    RVTopologicalSortAlgorithm sort;
    const RVServiceErrorCodeEnum code = runAlgorithm(sort, input, output);
    if (code != RV_NO_ERROR) return failWithCode("the sort", code);
    if (output.acyclic() == 0) return printCycles(packages);

    std::string text;
    for (const RVNode* node : *output.pNodeList()) text.append(packages.name(node)).append(1, '\n');
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
    std::optional<std::string> text = readText(options.file);
    if (!text) return failToRead(name);
    const PackageSource source(name, std::move(*text));
    if (source.packages().empty()) return fail(kFailure, "no packages in " + name);

    PackageGraph packages(source, options.kind);
    if (options.closure) {
        RVNode* package = packages.pNode(*options.closure);
        if (package == nullptr) return fail(kFailure, "no package " + *options.closure + " in " + name);
        packages.keepClosure(package);
    }
    report("packages: " + std::to_string(packages.pGraph()->numberOfNodes()) +
           ", dependencies: " + std::to_string(packages.pGraph()->numberOfEdges()) +
           ", unmet: " + std::to_string(packages.numberOfUnmet()));
    return printOrder(packages);
}
