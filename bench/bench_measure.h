// How the rows of the benchmarks are measured.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <limits>
#include <map>
#include <string>

#include "rv/framework/result_codes.h"

namespace bench {

// Of this thread: what others do on the machine counts less than with a clock on the wall.
inline double processorSeconds() {
    timespec time{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

template <class Work>
double secondsOf(Work work) {
    const double start = processorSeconds();
    work();
    benchmark::ClobberMemory();
    return processorSeconds() - start;
}

// Calls round() again and again, as often as fits in a short while, and gives the fewest seconds that it
// gave.
template <class Round>
double fewestSeconds(Round round) {
    constexpr double kShort = 0.25;
    constexpr double kLong = 2.0;
    constexpr int kFewRounds = 3;
    double best = std::numeric_limits<double>::max();
    const double begin = processorSeconds();
    double spent = 0;
    for (int i = 1; spent < kShort || (i <= kFewRounds && spent < kLong); ++i) {
        best = std::min(best, round());
        spent = processorSeconds() - begin;
    }
    return best;
}

// Reports these seconds per item in a counter of the unit's name.
template <class Round>
void measureRounds(benchmark::State& state, const char* unit, double items, Round round) {
    double best = 0;
    for (auto _ : state) {
        best = fewestSeconds(round);
        state.SetIterationTime(best);
    }
    state.counters[unit] = best * 1e9 / items;
}

// Likewise of work(prepare()), where only the work counts.
template <class Prepare, class Work>
void measure(benchmark::State& state, const char* unit, double items, Prepare prepare, Work work) {
    measureRounds(state, unit, items, [&] {
        auto subject = prepare();
        return secondsOf([&] { work(subject); });
    });
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

// A run of an algorithm that notes when its steps end.
template <class Algorithm>
class Phased : public Algorithm {
public:
    // Reports what each step of a run takes per item.
    void measure(benchmark::State& state, double items) {
        constexpr int kRuns = 3;
        for (auto _ : state) {
            const double start = m_last = processorSeconds();
            for (int i = 0; i < kRuns; ++i) Algorithm::run();
            state.SetIterationTime((processorSeconds() - start) / kRuns);
        }
        for (const Phase& phase : m_phases) state.counters[phase.name] = phase.seconds * 1e9 / kRuns / items;
    }
    RVServiceErrorCodeEnum checkData() override { return noted(0, Algorithm::checkData()); }

protected:
    void initialize() override { Algorithm::initialize(), note(1); }
    void parseInputData() override { Algorithm::parseInputData(), note(2); }
    void preprocess() override { Algorithm::preprocess(), note(3); }
    RVServiceErrorCodeEnum algorithmBody() override { return noted(4, Algorithm::algorithmBody()); }
    void generateOutputData() override { Algorithm::generateOutputData(), note(5); }
    void postprocess() override { Algorithm::postprocess(), note(6); }
    void cleanup() override { Algorithm::cleanup(), note(7); }

private:
    struct Phase {
        const char* name;
        double seconds;
    };
    void note(std::size_t phase) {
        const double now = processorSeconds();
        m_phases[phase].seconds += now - m_last;
        m_last = now;
    }
    RVServiceErrorCodeEnum noted(std::size_t phase, RVServiceErrorCodeEnum code) {
        note(phase);
        return code;
    }

    Phase m_phases[8] = {{"check", 0}, {"copy", 0},   {"parse", 0},   {"preprocess", 0},
                         {"body", 0},  {"output", 0}, {"restore", 0}, {"cleanup", 0}};
    double m_last = 0;
};

// Whether an option of our own was given, which is taken from the arguments.
inline bool takeOption(int& argc, char** argv, const char* name) {
    const auto isOption = [&](const char* argument) { return std::strcmp(argument, name) == 0; };
    char** const end = std::remove_if(argv + 1, argv + argc, isOption);
    const bool isGiven = end != argv + argc;
    argc = static_cast<int>(end - argv);
    return isGiven;
}

// Aborts when what one library found differs from what another one found for the same question.
inline void expectSame(const std::string& question, double found) {
    static std::map<std::string, double> answers;
    if (answers.emplace(question, found).first->second != found) std::abort();
}

// Runs the rows that were added, as the arguments say, and gives the program's status.
inline int runRows(int& argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}

}  // namespace bench
