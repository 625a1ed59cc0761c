// A program of somebody else's: it has the installed library and nothing of this tree.

#if defined(RV_STATIC_DEFINE) != defined(CONSUMER_STATIC)
#error "the package does not say whether its library is static"
#endif

#include <cstdio>
#include <memory>

#include "rv/analysis.h"

int main() {
    RVAFactory factory;
    const std::unique_ptr<RVGraph> g(factory.newGraph());
    RVNode* const nodes[] = {g->addNode(0), g->addNode(0), g->addNode(0)};
    g->addEdge(nodes[1], nodes[2], 0);
    g->addEdge(nodes[0], nodes[1], 0);

    RVTopologicalSortInputData in(g.get());
    RVTopologicalSortOutputData out;
    RVTopologicalSortAlgorithm alg;
    alg.pInputData(&in);
    alg.pOutputData(&out);
    const int code = alg.run();
    std::printf("run() gave %d\n", code);
    bool isSorted = code == 0;
    int expected = 0;
    for (RVNode* node : nodes) {
        std::printf("node %d has number %d\n", ++expected, out.orderNumber(node));
        isSorted = isSorted && out.orderNumber(node) == expected;
    }
    return isSorted ? 0 : 1;
}
