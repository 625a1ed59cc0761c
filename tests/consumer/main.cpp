// A program of somebody else's: it has the installed library and nothing of this tree.

#if defined(RV_STATIC_DEFINE) != defined(CONSUMER_STATIC)
#error "the package does not say whether its library is static"
#endif

#include <cstdio>

#include "rv/analysis.h"

int main() {
    RVAFactory factory;
    RVGraph* g = factory.newGraph();
    RVNode* first = g->addNode(0);
    RVNode* second = g->addNode(0);
    RVNode* third = g->addNode(0);
    g->addEdge(second, third, 0);
    g->addEdge(first, second, 0);

    int failures = 0;
    {
        RVTopologicalSortInputData in(g);
        RVTopologicalSortOutputData out;
        RVTopologicalSortAlgorithm alg;
        alg.pInputData(&in);
        alg.pOutputData(&out);
        const int code = alg.run();
        if (code != 0) {
            std::printf("run() gave %d, not 0\n", code);
            ++failures;
        }
        int expected = 0;
        for (RVNode* node : {first, second, third}) {
            ++expected;
            if (out.orderNumber(node) != expected) {
                std::printf("node %d has number %d\n", expected, out.orderNumber(node));
                ++failures;
            }
        }
    }
    delete g;
    if (failures == 0) std::puts("sorted: first, second, third");
    return failures == 0 ? 0 : 1;
}
