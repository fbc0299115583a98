#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "oska/platform/quenlo_common.h"

/// What a sample costs an engine, beside what it costs a plain one of the same run.
namespace oska::bench {

constexpr int SAMPLES_MEASURED = 200;
constexpr int SAMPLES_BEFORE = 400;  // a minute or two: by then a phone has heard the names around it

/// Runs the stream through `engine`; the median time of its last samples in seconds, which an interruption by
/// another program does not touch. Each sample is made right before it is handed over, as a generator does.
template <class Engine>
double secondsASample(Engine& engine, const std::vector<platform::ReceivedForce>& stream) {
    std::vector<double> times;
    for (const auto& original : stream) {
        auto sample = original;
        const auto start = std::chrono::steady_clock::now();
        benchmark::DoNotOptimize(engine.handle(std::move(sample)));
        times.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    const auto median = times.end() - SAMPLES_MEASURED / 2;
    std::nth_element(times.end() - SAMPLES_MEASURED, median, times.end());
    return *median;
}

/// In turns, so that a slow spell of the machine hits both; the ratio is that of the best times.
template <class Kit, class Plain, class Bundle>
void compare(benchmark::State& state, const Bundle& bundle,
             const std::vector<platform::ReceivedForce>& stream) {
    double best = 1e9;
    double bestOfPlain = 1e9;
    for (auto _ : state) {
        Kit kit(bundle);
        const auto seconds = secondsASample(kit, stream);
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
        Plain plain(bundle);
        bestOfPlain = std::min(bestOfPlain, secondsASample(plain, stream));
    }
    state.counters["best_ns"] = best * 1e9;
    state.counters["plain_ns"] = bestOfPlain * 1e9;
    state.counters["times_plain"] = bestOfPlain / best;
}

/// For sites of any size: what a sample costs where next to nothing is detected. The ratio to be looked at is
/// that between sites.
template <class Kit>
void measure(benchmark::State& state, Kit& kit, const std::vector<platform::ReceivedForce>& stream) {
    double best = 1e9;
    for (auto _ : state) {
        kit.reset();
        const auto seconds = secondsASample(kit, stream);
        state.SetIterationTime(seconds);
        best = std::min(best, seconds);
    }
    state.counters["best_ns"] = best * 1e9;
}

/// Wards of the site, and how many of them are in reach: a walk through it, and what no walk can be, wards
/// from all over the site in each sample.
inline void siteSizes(benchmark::internal::Benchmark* benchmark) {
    for (const int wards : {100, 10'000, 1'000'000}) benchmark->Args({wards, 100});
    benchmark->Args({1'000'000, 1'000'000});
    benchmark->UseManualTime()->Iterations(8);
}

}  // namespace oska::bench
