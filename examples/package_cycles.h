// The cycles of a package graph: the sets of packages that need one another, and the dependencies that one
// could leave out to get rid of them.
#pragma once

#include <string>

#include "package_graph.h"

// What the program exits with when cycles leave no order.
constexpr int kCycles = 3;

// "bash needs libc6", for the edge from libc6 to bash.
std::string dependencyText(const PackageGraph& packages, const RVEdge* edge);

// Fills the list with dependencies without which there is no cycle; see RVCycleBreakingEdgeDetectionInputData
// for the quality. Gives the code of the run.
RVServiceErrorCodeEnum findDependenciesToBreak(const PackageGraph& packages, int quality,
                                               RVEdgeDList& dependencies);

// These give the exit status.

// For each set of packages that need one another a line of their names, and one for each dependency inside.
int printCycles(const PackageGraph& packages);

// The sets as a Graphviz picture with the dependencies to break in red, to a file or, for "-", to standard
// output. Broken dependencies that lie in no set are drawn too.
int writePicture(const PackageGraph& packages, int quality, const std::string& file);
