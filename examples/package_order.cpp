// Prints the packages of a Debian machine or archive in an order in which they can be installed: every
// package after all that it needs. Or says that there is no such order, and which packages need one another.

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <string>
#include <string_view>

#include "package_graph.h"
#include "package_source.h"
#include "rv/analysis.h"
#include "text_io.h"

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

enum ExitStatus { kSuccess = 0, kFailure = 1, kWrongUsage = 2, kCycles = 3 };

struct Options {
    std::string file = "-";
    std::optional<std::string> closure;
    DependencyKind kind = DependencyKind::All;
    bool help = false;
};

int fail(ExitStatus status, const std::string& message) {
    std::fprintf(stderr, "package_order: %s\n", message.c_str());
    return status;
}

// Gives the error, empty without one.
std::string readOptions(int argc, char** argv, Options& options) {
    bool hasFile = false;
    bool onlyFiles = false;
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (onlyFiles || argument == "-" || !argument.starts_with('-')) {
            if (hasFile) return "more than one file: " + argument;
            hasFile = true;
            options.file = argument;
        } else if (argument == "--") {
            onlyFiles = true;
        } else if (argument == "--help") {
            options.help = true;
        } else if (argument == "--pre-depends") {
            options.kind = DependencyKind::PreDepends;
        } else if (argument.starts_with("--closure=")) {
            options.closure = argument.substr(std::strlen("--closure="));
        } else if (argument == "--closure") {
            if (++i == argc) return "--closure needs the name of a package";
            options.closure = argv[i];
        } else {
            return "unknown option " + argument;
        }
    }
    return {};
}

int failToWrite() { return fail(kFailure, std::string("cannot write: ") + std::strerror(errno)); }

// The strongly connected components of more than one package, with the dependencies inside each.
int printCycles(const PackageGraph& packages) {
    RVStronglyConnectedComponentsInputData input(packages.pGraph());
    RVStronglyConnectedComponentsOutputData output;
    RVStronglyConnectedComponentsAlgorithm components;
    components.pInputData(&input);
    components.pOutputData(&output);
    const RVServiceErrorCodeEnum code = components.run();
    if (code != RV_NO_ERROR) return fail(kFailure, "the components failed with code " + std::to_string(code));

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
    if (!writeText(text)) return failToWrite();
    return fail(kCycles, "no installation order: the dependencies have cycles, in sets of packages: " +
                             std::to_string(count));
}

int printOrder(const PackageGraph& packages) {
    RVTopologicalSortInputData input(packages.pGraph());
    RVTopologicalSortOutputData output;
    RVTopologicalSortAlgorithm sort;
    sort.pInputData(&input);
    sort.pOutputData(&output);
    const RVServiceErrorCodeEnum code = sort.run();
    if (code != RV_NO_ERROR) return fail(kFailure, "the sort failed with code " + std::to_string(code));
    if (output.acyclic() == 0) return printCycles(packages);

    std::string text;
    for (const RVNode* node : *output.pNodeList()) text.append(packages.name(node)).append(1, '\n');
    return writeText(text) ? kSuccess : failToWrite();
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    if (const std::string error = readOptions(argc, argv, options); !error.empty()) {
        return fail(kWrongUsage, error + "; see --help");
    }
    if (options.help) {
        std::fputs(kHelp, stdout);
        return kSuccess;
    }

    const std::string name = options.file == "-" ? "standard input" : options.file;
    std::optional<std::string> text = readText(options.file);
    if (!text) return fail(kFailure, "cannot read " + name + ": " + std::strerror(errno));
    const PackageSource source(name, std::move(*text));
    if (source.packages().empty()) return fail(kFailure, "no packages in " + name);

    PackageGraph packages(source, options.kind);
    if (options.closure) {
        RVNode* package = packages.pNode(*options.closure);
        if (package == nullptr) return fail(kFailure, "no package " + *options.closure + " in " + name);
        packages.keepClosure(package);
    }
    std::fprintf(stderr, "package_order: packages: %d, dependencies: %d, unmet: %d\n",
                 packages.pGraph()->numberOfNodes(), packages.pGraph()->numberOfEdges(),
                 packages.numberOfUnmet());
    return printOrder(packages);
}
