#include "package_cycles.h"

#include <functional>
#include <vector>

#include "run_algorithm.h"
#include "text_io.h"

namespace {

// Calls use(nodes, edges) for each strongly connected component of more than one package, with the
// dependencies inside it. Gives the code of the run.
RVServiceErrorCodeEnum forEachCycle(const PackageGraph& packages,
                                    const std::function<void(const RVNodeDList&, const RVEdgeDList&)>& use) {
    RVStronglyConnectedComponentsInputData input(packages.pGraph());
    RVStronglyConnectedComponentsOutputData output;
    const RVServiceErrorCodeEnum code = runAlgorithm(RVStronglyConnectedComponentsAlgorithm(), input, output);
    if (code != RV_NO_ERROR) return code;
    RVDListIter edges(output.pEdgeComponentList());
    for (RVDListIter nodes(output.pComponentList()); nodes; nodes++, edges++) {
        const RVNodeDList* component = RVNodeDList::castDown(nodes.pObject());
        if (component->length() > 1) use(*component, *RVEdgeDList::castDown(edges.pObject()));
    }
    return RV_NO_ERROR;
}

std::string arrow(const PackageGraph& packages, const RVEdge* edge, bool isBroken) {
    return quotedForDot(packages.name(edge->pSourceNode())) + " -> " +
           quotedForDot(packages.name(edge->pTargetNode())) +
           (isBroken ? " [color=red style=dashed constraint=false]\n" : "\n");
}

}  // namespace

std::string dependencyText(const PackageGraph& packages, const RVEdge* edge) {
    return std::string(packages.name(edge->pTargetNode()))
        .append(" needs ")
        .append(packages.name(edge->pSourceNode()));
}

RVServiceErrorCodeEnum findDependenciesToBreak(const PackageGraph& packages, int quality,
                                               RVEdgeDList& dependencies) {
    RVCycleBreakingEdgeDetectionInputData input(packages.pGraph());
    RVCycleBreakingEdgeDetectionOutputData output;
    input.quality(quality);
    const RVServiceErrorCodeEnum code = runAlgorithm(RVCycleBreakingEdgeDetectionAlgorithm(), input, output);
    output.buildEdgeList(dependencies);
    return code;
}

int printCycles(const PackageGraph& packages) {
    std::string text;
    int count = 0;
    const RVServiceErrorCodeEnum code =
        forEachCycle(packages, [&](const RVNodeDList& nodes, const RVEdgeDList& edges) {
            ++count;
            text.append("cycle:");
            for (const RVNode* node : nodes) text.append(1, ' ').append(packages.name(node));
            text.append(1, '\n');
            for (const RVEdge* edge : edges) {
                text.append("  ").append(dependencyText(packages, edge)).append(1, '\n');
            }
        });
    if (code != RV_NO_ERROR) return failWithCode("the search for components", code);
    if (const int status = print(text); status != kSuccess) return status;
    return fail(kCycles, "no installation order: the dependencies have cycles, in sets of packages: " +
                             std::to_string(count));
}

int writePicture(const PackageGraph& packages, int quality, const std::string& file) {
    RVEdgeDList dependencies;
    RVServiceErrorCodeEnum code = findDependenciesToBreak(packages, quality, dependencies);
    if (code != RV_NO_ERROR) return failWithCode("the breaking of cycles", code);
    enum Mark : char { Kept, Broken, Drawn };
    std::vector<Mark> marks(static_cast<std::size_t>(packages.pGraph()->edgeIndexLimit()), Kept);
    const auto mark = [&](const RVEdge* edge) -> Mark& { return marks[rv::placeOf(edge)]; };
    for (const RVEdge* edge : dependencies) mark(edge) = Broken;

    std::string text = "// An arrow leads from a package to one that needs it. Those to break are red.\n";
    text.append("digraph cycles {\n    node [shape=box]\n");
    int count = 0;
    code = forEachCycle(packages, [&](const RVNodeDList& nodes, const RVEdgeDList& edges) {
        text.append("    subgraph cluster_").append(std::to_string(++count)).append(" {\n");
        for (const RVNode* node : nodes) {
            text.append("        ").append(quotedForDot(packages.name(node))).append(1, '\n');
        }
        for (const RVEdge* edge : edges) {
            text.append("        ").append(arrow(packages, edge, mark(edge) == Broken));
            mark(edge) = Drawn;
        }
        text.append("    }\n");
    });
    if (code != RV_NO_ERROR) return failWithCode("the search for components", code);
    for (const RVEdge* edge : dependencies) {
        if (mark(edge) == Broken) text.append("    ").append(arrow(packages, edge, true));
    }
    return writeFile(text.append("}\n"), file);
}
