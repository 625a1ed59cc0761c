// The packages that best explain why some packages are broken.
#pragma once

#include <optional>

#include "package_graph.h"

// What the program exits with when no package explains enough.
constexpr int kNoCause = 4;

struct CauseOptions {
    std::optional<double> threshold;  // the part of the broken packages that a cause must explain; default 1
    std::optional<int> range;         // the most dependencies between a cause and what it explains
};

// A line for each package that explains enough of the broken ones, which stand in the list once each: how
// many, its name, and which. Those that explain most come first. Gives the exit status.
int printCauses(const PackageGraph& packages, RVNodeDList& broken, const CauseOptions& options);
