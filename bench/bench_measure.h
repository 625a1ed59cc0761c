// How the rows of the benchmarks are measured.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <limits>
#include <string>

namespace bench {

// Of this thread: what others do on the machine counts less than with a clock on the wall.
inline double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

// Calls work(prepare()) again and again, as often as fits in a short while, and reports its fastest time per
// item in a counter of the unit's name.
template <class Prepare, class Work>
void measure(benchmark::State& state, const char* unit, double items, Prepare prepare, Work work) {
    constexpr double kShort = 0.25;
    constexpr double kLong = 2.0;
    constexpr int kFewRounds = 3;
    double best = std::numeric_limits<double>::max();
    for (auto _ : state) {
        const double begin = processorSeconds();
        double spent = 0;
        for (int round = 1; spent < kShort || (round <= kFewRounds && spent < kLong); ++round) {
            auto subject = prepare();
            const double start = processorSeconds();
            work(subject);
            benchmark::ClobberMemory();
            const double end = processorSeconds();
            best = std::min(best, end - start);
            spent = end - begin;
        }
        state.SetIterationTime(best);
    }
    state.counters[unit] = best * 1e9 / items;
}

template <class Work>
void measure(benchmark::State& state, const char* unit, double items, Work work) {
    measure(
        state, unit, items, [] { return 0; }, [&](int) { work(); });
}

template <class Body>
void add(const std::string& name, int n, Body body) {
    benchmark::RegisterBenchmark((name + "/" + std::to_string(n)).c_str(), body)
        ->Iterations(1)
        ->UseManualTime()
        ->Unit(benchmark::kMillisecond);
}

}  // namespace bench
