// Prints the packages of a Debian machine or archive in an order in which they can be installed: every
// package after all that it needs. When there is no such order it says which packages need one another and
// which dependencies are best left out, and for packages that are broken which others best explain that.

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

#include "arguments.h"
#include "package_causes.h"
#include "package_cycles.h"
#include "package_graph.h"
#include "package_source.h"
#include "run_algorithm.h"
#include "rv/analysis.h"
#include "text_io.h"

const char* const kProgram = "package_order";

namespace {

constexpr const char* kHelp =
    R"(usage: package_order [OPTION]... [FILE]
       package_order [OPTION]... --dot OUT [FILE]
       package_order [OPTION]... --broken NAMES [FILE]

Prints the packages listed in FILE, or on standard input, in an order of installation, one a line: every
package after all that it needs. When there is no such order because packages need one another, it prints a
line with the names of each such set, and a line for each dependency inside.

  --pre-depends   consider Pre-Depends only
  --closure NAME  only the package NAME and what it needs, directly or not
  --quality Q     break cycles: first print a line `break: A needs B` for each of a few dependencies without
                  which there is an order, and then that order. As a rule a higher Q breaks fewer of them:
                    0  goes once over all packages; may even break a dependency that is on no cycle
                    1  looks at each set of packages that need one another by itself
                    2  does so too, and keeps each dependency that would not close a cycle after all
  --dot OUT       instead write a picture for Graphviz (dot -Tsvg) to OUT, or to standard output for `-`: the
                  packages that need one another, an arrow from each to those that need it, and in red the
                  dependencies that are broken at --quality, or at 1 without it
  --broken NAMES  instead print which packages explain best why those of NAMES, with commas between them, are
                  broken: a package explains itself and what needs it, directly or not. A line for
                  each says how many it explains, its name, and which, with tabs between; the most first
  --threshold T   with --broken: the part of NAMES that must be explained, from 0 to 1; else 1, which is all
  --range R       with --broken: the most steps from a package to one that it explains; else any number
  --help          this text

FILE is what one of these commands prints; which one is found out by itself:
  dpkg-query -W -f '${Package}\t${Depends}\t${Pre-Depends}\n'
  dpkg-query -W -f '${Package}\t${Depends}\t${Pre-Depends}\t${Provides}\n'
  apt-cache dumpavail
Without Provides, virtual packages are unknown.

Of alternatives (a | b) the first one that exists is taken, for a virtual package the first one that
provides it. Versions and architectures are ignored, dependencies that nothing meets are left out.

Counts are written to standard error.
Exit status: 0 success, 1 failure, such as no usable input or no such package, 2 wrong usage, 3 no order
because of cycles, 4 no package explains enough of those that are broken.
)";

struct Options {
    std::string file = "-";
    std::optional<std::string> closure;
    DependencyKind kind = DependencyKind::All;
    std::optional<int> quality;
    std::optional<std::string> dot;
    std::vector<std::string> broken;
    CauseOptions causes;
    bool help = false;
};

// These give the error, empty without one.

std::string readBroken(Arguments& arguments, std::vector<std::string>& names) {
    constexpr const char* kWhat = "names of packages with commas between them";
    std::optional<std::string> text;
    std::string error = arguments.readText(kWhat, text);
    if (!error.empty()) return error;
    names.clear();
    for (std::size_t begin = 0; begin <= text->size();) {
        const std::size_t end = std::min(text->find(',', begin), text->size());
        if (end == begin) return std::string("--broken needs ") + kWhat;
        names.push_back(text->substr(begin, end - begin));
        begin = end + 1;
    }
    return {};
}

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
        } else if (arguments.isValued("--quality")) {
            error = arguments.readInteger(0, 2, options.quality);
        } else if (arguments.isValued("--dot")) {
            error = arguments.readText("the name of a file", options.dot);
        } else if (arguments.isValued("--broken")) {
            error = readBroken(arguments, options.broken);
        } else if (arguments.isValued("--threshold")) {
            error = arguments.readNumber(0, 1, options.causes.threshold);
        } else if (arguments.isValued("--range")) {
            error = arguments.readInteger(0, std::numeric_limits<int>::max(), options.causes.range);
        } else {
            error = "unknown option " + arguments.text();
        }
        if (!error.empty()) return error;
    }
    if (options.help) return {};
    if (options.broken.empty()) {
        if (options.causes.threshold) return "--threshold needs --broken";
        if (options.causes.range) return "--range needs --broken";
        return {};
    }
    if (options.quality) return "--quality and --broken exclude one another";
    if (options.dot) return "--dot and --broken exclude one another";
    return {};
}

// Takes some dependencies out of the graph, so that there is an order, and names them.
RVServiceErrorCodeEnum breakCycles(const PackageGraph& packages, int quality, std::string& text) {
    RVEdgeDList dependencies;
    const RVServiceErrorCodeEnum code = findDependenciesToBreak(packages, quality, dependencies);
    for (RVEdge* edge : dependencies) {
        text.append("break: ").append(dependencyText(packages, edge)).append(1, '\n');
        packages.pGraph()->removeEdge(edge);
    }
    report("dependencies to break: " + std::to_string(dependencies.length()));
    return code;
}

int printOrder(const PackageGraph& packages, std::optional<int> quality) {
    std::string text;
    if (quality) {
        const RVServiceErrorCodeEnum code = breakCycles(packages, *quality, text);
        if (code != RV_NO_ERROR) return failWithCode("the breaking of cycles", code);
    }
    RVTopologicalSortInputData input(packages.pGraph());
    RVTopologicalSortOutputData output;
    const RVServiceErrorCodeEnum code = runAlgorithm(RVTopologicalSortAlgorithm(), input, output);
    if (code != RV_NO_ERROR) return failWithCode("the sort", code);
    if (output.acyclic() == 0) {
        return quality ? fail(kFailure, "cycles are left") : printCycles(packages);
    }
    for (const RVNode* node : *output.pNodeList()) text.append(packages.name(node)).append(1, '\n');
    return print(text);
}

// What the names of broken packages stand for, each package once. Gives the name that stands for none, empty
// without one.
std::string findPackages(const PackageGraph& packages, const std::vector<std::string>& names,
                         RVNodeDList& list) {
    std::unordered_set<const RVNode*> listed;
    for (const std::string& name : names) {
        RVNode* package = packages.pNode(name);
        if (package == nullptr) return name;
        if (listed.insert(package).second) list.appendNode(package);
    }
    return {};
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
    std::string where = " in " + name;
    if (options.closure) {
        RVNode* package = packages.pNode(*options.closure);
        if (package == nullptr) return fail(kFailure, "no package " + *options.closure + where);
        packages.keepClosure(package);
        where.append(" that ").append(*options.closure).append(" needs");
    }
    report("packages: " + std::to_string(packages.pGraph()->numberOfNodes()) +
           ", dependencies: " + std::to_string(packages.pGraph()->numberOfEdges()) +
           ", unmet: " + std::to_string(packages.numberOfUnmet()));

    if (!options.broken.empty()) {
        RVNodeDList broken;
        const std::string unknown = findPackages(packages, options.broken, broken);
        if (!unknown.empty()) return fail(kFailure, "no package " + unknown + where);
        return printCauses(packages, broken, options.causes);
    }
    if (options.dot) return writePicture(packages, options.quality.value_or(1), *options.dot);
    return printOrder(packages, options.quality);
}
