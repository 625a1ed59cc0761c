#include "package_causes.h"

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "run_algorithm.h"
#include "text_io.h"

namespace {

struct Cause {
    std::string_view name;
    std::unique_ptr<RVNodeDList> explained;
};

}  // namespace

int printCauses(const PackageGraph& packages, RVNodeDList& broken, const CauseOptions& options) {
    RVRootCauseInputData input(packages.pGraph());
    RVRootCauseOutputData output;
    input.pEffectNodeList(&broken);
    if (options.threshold) input.threshold(*options.threshold);
    if (options.range) input.range(*options.range);
    const RVServiceErrorCodeEnum code = runAlgorithm(RVRootCauseAlgorithm(), input, output);
    if (code != RV_NO_ERROR) return failWithCode("the search for causes", code);

    std::vector<Cause> causes;
    for (RVNode* node : *output.pCauseNodeList()) {
        causes.push_back({packages.name(node), std::make_unique<RVNodeDList>()});
        output.buildReachedNodeList(node, *causes.back().explained);
    }
    if (causes.empty()) return fail(kNoCause, "no package explains enough of those that are broken");
    std::stable_sort(causes.begin(), causes.end(), [](const Cause& left, const Cause& right) {
        return left.explained->length() > right.explained->length();
    });
    std::string text;
    for (const Cause& cause : causes) {
        text.append(std::to_string(cause.explained->length())).append(1, '/');
        text.append(std::to_string(broken.length())).append(1, '\t').append(cause.name);
        char separator = '\t';
        for (const RVNode* node : *cause.explained) {
            text.append(1, separator).append(packages.name(node));
            separator = ' ';
        }
        text.append(1, '\n');
    }
    return print(text);
}
