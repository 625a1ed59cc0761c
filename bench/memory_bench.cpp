// The memory that a question takes besides the graph.
//
//   memory_bench                                     all questions of bench_questions.h
//   memory_bench --benchmark_filter='strong/'        one of them
//
// Rows are named question/library and report bytes for each node and for each edge: what two random graphs of
// half a million nodes take, one with five edges for each node and one with ten, splits into these two.
//   run     at its peak, input not counted, of a question about a graph that has been asked before
//   first   likewise of the first question
//   kept    of what the first question leaves in the graph for the next one
// Whatever the allocator gives is counted. Local questions are asked about three pairs of nodes.

#include <benchmark/benchmark.h>
#include <malloc.h>

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <map>
#include <string>

#include "bench_measure.h"
#include "bench_questions.h"

namespace {
std::ptrdiff_t inUse = 0;
std::ptrdiff_t peak = 0;

void* counted(void* memory) {
    inUse += static_cast<std::ptrdiff_t>(malloc_usable_size(memory));
    peak = std::max(peak, inUse);
    return memory;
}
void uncount(void* memory) { inUse -= static_cast<std::ptrdiff_t>(malloc_usable_size(memory)); }
}  // namespace

// All that glibc's allocator consists of, from its own insides.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) noexcept { return counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept { return counted(__libc_calloc(count, size)); }
void* realloc(void* memory, std::size_t size) noexcept {
    uncount(memory);
    void* const moved = __libc_realloc(memory, size);
    if (moved == nullptr && size > 0) return counted(memory), nullptr;
    return counted(moved);
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
    return counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept { return memalign(alignment, size); }
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
    *memory = memalign(alignment, size);
    return *memory == nullptr ? ENOMEM : 0;
}
void free(void* memory) noexcept {
    uncount(memory);
    __libc_free(memory);
}
}

namespace {

using bench::EdgeArray;
using bench::Question;

constexpr int kNodes = 500'000;

// How far a piece of work raises what is in use, and what it leaves.
template <class Work>
std::ptrdiff_t peakOf(Work work) {
    const std::ptrdiff_t before = inUse;
    peak = before;
    work();
    return peak - before;
}

using Bytes = std::map<std::string, std::ptrdiff_t>;
using MeasureOn = Bytes (*)(const Question& question, const EdgeArray& array);

void measure(benchmark::State& state, const Question& question, MeasureOn measureOn) {
    const auto make = question.isOfDags ? bench::randomDag : bench::randomGraph;
    for (auto _ : state) {
        const EdgeArray sparse = make(kNodes, 5);
        const EdgeArray dense = make(kNodes, 10);
        const Bytes few = measureOn(question, sparse);
        const Bytes many = measureOn(question, dense);
        for (const auto& [what, bytes] : few) {
            const auto perEdge = static_cast<double>(many.at(what) - bytes) / (dense.size() - sparse.size());
            state.counters[what + "_edge"] = perEdge;
            state.counters[what + "_node"] = (static_cast<double>(bytes) - perEdge * sparse.size()) / kNodes;
        }
        state.SetIterationTime(0);
    }
}

bench::Pairs pairsOf(const Question& question, const EdgeArray& array) {
    bench::Pairs pairs = question.pairs(array);
    pairs.resize(std::min<std::size_t>(pairs.size(), 3));
    return pairs;
}

Bytes measureRv(const Question& question, const EdgeArray& array) {
    const bench::RvGraph rv(array);
    const bench::Pairs pairs = pairsOf(question, array);
    const auto asker = question.make(rv, 0);
    const auto askAll = [&] {
        for (const auto& pair : pairs) asker->ask(pair);
    };
    const std::ptrdiff_t before = inUse;
    Bytes bytes;
    bytes["first"] = peakOf(askAll);
    bytes["kept"] = inUse - before;
    bytes["run"] = peakOf(askAll);
    return bytes;
}

#ifdef RV_BENCH_LEMON
Bytes measureLemon(const Question& question, const EdgeArray& array) {
    bench::LemonSearches lemon(array);
    const bench::Pairs pairs = pairsOf(question, array);
    return {{"run", peakOf([&] { (lemon.*question.lemon)(pairs); })}};
}
#endif

void addRow(const Question& question, const char* library, MeasureOn measureOn) {
    const std::string name = std::string(question.name) + "/" + library;
    const auto run = [=, &question](benchmark::State& state) { measure(state, question, measureOn); };
    benchmark::RegisterBenchmark(name.c_str(), run)->Iterations(1)->UseManualTime();
}

}  // namespace

int main(int argc, char** argv) {
    for (const Question& question : bench::kQuestions) {
        addRow(question, "rv", measureRv);
#ifdef RV_BENCH_LEMON
        addRow(question, "lemon", measureLemon);
#endif
    }
    return bench::runRows(argc, argv);
}
