// Prints what all algorithms answer on fixed graphs. The text is the same from every compiler and build, and
// wherever objects lie in memory. tests/determinism/expected.txt is what it printed when a result was last
// changed on purpose:
//
//   build/debug/tests/determinism > tests/determinism/expected.txt
//
// With an argument objects lie elsewhere: each block of memory is one of several, picked at random. The
// sanitizers have memory of their own.

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <new>
#include <random>
#include <string>

#include "tests/algorithm_checks.h"
#include "tests/test_graph.h"

namespace {

bool isShuffled = false;

// One of several blocks; the others are free again.
[[maybe_unused]] void* block(std::size_t alignment, std::size_t size) {
    static std::minstd_rand random;
    std::array<void*, 8> blocks = {};
    const std::size_t number = isShuffled ? blocks.size() : 1;
    for (std::size_t i = 0; i < number; ++i) {
        if (posix_memalign(&blocks[i], alignment, size) != 0) std::abort();
    }
    std::swap(blocks[0], blocks[random() % number]);
    for (std::size_t i = 1; i < number; ++i) std::free(blocks[i]);
    return blocks[0];
}

}  // namespace

#ifndef RV_SANITIZED
[[gnu::noinline]] void* operator new(std::size_t size) { return block(alignof(std::max_align_t), size); }
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return block(alignof(std::max_align_t), size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept { std::free(memory); }
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
// Where slabs come from.
extern "C" void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
    return block(alignment, size);
}
#endif

namespace {

using namespace rvtest;

std::uint64_t hash(const std::string& text) {
    std::uint64_t value = 14695981039346656037U;
    for (const char each : text) value = (value ^ static_cast<unsigned char>(each)) * 1099511628211U;
    return value;
}

// The first paths, and the path graph in its orders.
template <class R>
std::string paths(const R& run) {
    std::string all;
    if constexpr (std::is_same_v<R, SortedPathsOnce>) {
        RVSortedPathsEnumerator path(&run.output);
        RVEdgeDList edges;
        for (int i = 0; i < 12 && path.next(); ++i) {
            path.buildEdgeList(edges);
            all += std::to_string(path.totalCost()) + ": " + text(edges) + "; ";
        }
        if (run.output.pPathGraph() == nullptr) return all;
        for (RVEdge* edge : *run.output.pPathGraph()->pEdgeList()) {
            for (RVNode* node : {edge->pSourceNode(), edge->pTargetNode()})
                all += std::to_string(node->denseIndex()) + " " + text(run.output.pSidetrackEdge(node)) + " ";
            all += std::to_string(run.output.cost(edge)) + "," + std::to_string(run.output.type(edge)) + "; ";
        }
    }
    return all;
}

// Costs, capacities and weights differ from object to object.
class ManyNumbers : public Question {
public:
    using Question::Question;
    int intField(const char* field, RVGraphObject* object) const override {
        const bool isNumber = object != nullptr && std::string(field) != "edgeUndirected";
        return isNumber ? static_cast<RVGraphMember*>(object)->denseIndex() * 7 % 5 + 1
                        : Question::intField(field, object);
    }
};

// Whether the nodes lie elsewhere than in their order.
bool isScattered(const RVGraph* graph) {
    for (const RVNode* node : *graph->pNodeList())
        if (node != graph->pFirstNode() &&
            reinterpret_cast<std::uintptr_t>(node) < reinterpret_cast<std::uintptr_t>(graph->pFirstNode()))
            return true;
    return false;
}

bool anyScattered = false;

template <class R>
void print(R*) {
    std::cout << AlgorithmNames::GetName<R>(0) << '\n';
    R run;
    for (unsigned seed = 0; seed < 16; ++seed) {
        const bool isLarge = seed >= 12;
        const Shape small = {.nodes = 9, .edges = 24, .undirected = 20, .acyclic = seed % 4 == 0};
        const Shape large = {.nodes = 500, .edges = 2000, .undirected = 5, .acyclic = seed % 4 == 0};
        const std::string tokens = randomText(seed + 40, isLarge ? large : small);
        const TestGraph plain(tokens);
        const MarkedGraph marked(tokens, seed);
        const TestGraph& g = seed % 4 == 0 ? plain : marked;
        anyScattered = anyScattered || isScattered(g);
        ask(run, g, ManyNumbers(g, static_cast<int>(seed % 2)));
        useOriginalGraph(run, static_cast<int>(seed / 2 % 2));
        std::array<RVClusteringConstraint, 3> constraints;
        if (isLarge) constrain(run, g, constraints);
        const int code = run();
        const std::string answer = describe(run.output, g) + paths(run);
        std::cout << seed << ": " << code << "; ";
        isLarge || answer.size() > 400 ? std::cout << std::hex << hash(answer) << std::dec
                                       : std::cout << answer;
        std::cout << '\n';
    }
}

template <class... R>
void printAll(testing::Types<R...>) {
    (print(static_cast<R*>(nullptr)), ...);
}

}  // namespace

int main(int count, char**) {
    isShuffled = count > 1;
    printAll(Algorithms());
    if (isShuffled && !anyScattered) std::cout << "all objects lie in their order\n";
}
