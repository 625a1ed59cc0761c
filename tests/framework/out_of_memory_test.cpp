// What is left when memory runs out, at whatever point.

#include <gtest/gtest.h>

#include <cstdlib>
#include <new>
#include <string>
#include <vector>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {
int allocationsLeft = -1;  // none fails below 0
bool takeOne() { return allocationsLeft < 0 || allocationsLeft-- > 0; }
}  // namespace

// Not inlined, so that the compiler does not take what it sees inside for a mistake.
[[gnu::noinline]] void* operator new(std::size_t size) {
    void* memory = takeOne() ? std::malloc(size) : nullptr;
    if (memory == nullptr) throw std::bad_alloc();
    return memory;
}
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return takeOne() ? std::malloc(size) : nullptr;
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }

#ifndef RV_SANITIZED
// Where slabs come from.
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    void* memory = nullptr;
    if (!takeOne() || posix_memalign(&memory, alignment, size) != 0) return nullptr;
    return memory;
}
#endif

namespace {

// A graph that has been restored once may have the memory for it, so each run has a new one.
TEST(OutOfMemory, LeavesTheCallersGraphAsItWas) {
    for (const char* tokens : {"a->a b->c b->c c->b d b--e e--b a->a e f--g g--f:1 h c->h", "a--b b--c c->d",
                               "a->b b->a c->b c->b"}) {
        for (int way = 0; way < 4; ++way) {
            bool isDone = false;
            for (int allocations = 0; !isDone; ++allocations) {
                const rvtest::MarkedGraph g(tokens, static_cast<unsigned>(way));
                rvtest::BreadthFirst search(g);
                search.input.undirected(way % 2);
                rvtest::takeDrawnDirections(search.input, g);
                search.algorithm.useOriginalGraph(way / 2);
                const std::string before = rvtest::snapshot(g);
                allocationsLeft = allocations;
                try {
                    isDone = search() == RV_NO_ERROR;
                } catch (const std::bad_alloc&) {
                }
                allocationsLeft = -1;
                search.output.reset();
                ASSERT_EQ(rvtest::snapshot(g), before) << tokens << " after " << allocations;
                ASSERT_LT(allocations, 1000);
            }
        }
    }
}

// Also where the graph is changed by a part, and graphs, constraints and actions are made on the way: of a
// graph of several components, and of one.
template <class Run>
class OutOfMemoryInParts : public testing::Test {};
using RunsWithParts =
    testing::Types<rvtest::Splitting, rvtest::Disconnected, rvtest::Clustering, rvtest::CycleBreaking>;
TYPED_TEST_SUITE(OutOfMemoryInParts, RunsWithParts, rvtest::AlgorithmNames);

TYPED_TEST(OutOfMemoryInParts, LeavesTheCallersGraphAsItWas) {
    for (const char* tokens :
         {"a->a b->c b->c c->b d b--e e--b a->a e f--g g--f h c->h", "a->b b->c c->d d->f f->a b->d"}) {
        bool isDone = false;
        for (int allocations = 0; !isDone; allocations += allocations < 300 ? 1 : 13) {
            const rvtest::MarkedGraph g(tokens, 1);
            std::vector<RVClusteringConstraint> constraints(3);
            TypeParam run(g);
            if constexpr (requires { run.input.minClusterCount(3); }) {
                for (std::size_t i = 0; i < 3; ++i) {
                    constraints[i].type(static_cast<RVClusteringConstraintTypeEnum>(i));
                    for (const char* name : {i == 2 ? "d" : "c", "f"}) constraints[i].addNode(g.node(name));
                    run.input.addConstraint(&constraints[i]);
                }
                run.input.minClusterCount(3);
            }
            const std::string before = rvtest::snapshot(g);
            allocationsLeft = allocations;
            try {
                isDone = run() == RV_NO_ERROR;
            } catch (const std::bad_alloc&) {
            }
            allocationsLeft = -1;
            static_cast<RVAlgorithmOutputData&>(run.output).reset();
            ASSERT_EQ(rvtest::snapshot(g), before) << "after " << allocations;
        }
    }
}

TEST(OutOfMemory, LeavesNoMappingToACopyThatFailed) {
    const rvtest::MarkedGraph g("a->b b->c c->a c->a d", 3);
    RVAlgorithmData data;
    bool isDone = false;
    for (int allocations = 0; !isDone; ++allocations) {
        RVGraph copy;
        allocationsLeft = allocations;
        try {
            data.copyGraph(g, &copy);
            isDone = true;
        } catch (const std::bad_alloc&) {
        }
        allocationsLeft = -1;
        for (RVNode* node : *g->pNodeList()) EXPECT_EQ(data.pCopyNode(node) != node, isDone);
        for (RVEdge* edge : *g->pEdgeList()) EXPECT_EQ(data.pCopyEdge(edge) != edge, isDone);
    }
    EXPECT_EQ(data.pCopyNode(g.node("a")), g.node("a")) << "the copy is gone";
}

}  // namespace
