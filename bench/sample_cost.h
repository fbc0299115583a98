#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <vector>

#include "oska/platform/quenlo_common.h"

/// Measures the time that an engine needs for one sample.
namespace oska::bench {

constexpr int SAMPLES_MEASURED = 200;
constexpr int SAMPLES_BEFORE = 400;  // one or two minutes: by then a phone has heard the names around it

/// Hands all samples of the stream to `engine` and returns the median time of the last ones, in seconds. The
/// median is not affected by single interruptions. Each sample is copied right before it is handed over, so
/// that it is as fresh in memory as one from a generator.
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

/// Measures `Kit` and `Plain` in turns, so that a slow phase of the machine affects both, and reports the
/// ratio of their best times.
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

/// Measures one engine on a site where almost nothing is detected. Compare the results of sites of different
/// sizes.
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

/// The arguments of such a benchmark: the number of wards of the site, and how many are in reach at a time.
/// The last pair is no realistic walk: each sample has wards from the whole site.
inline void siteSizes(benchmark::internal::Benchmark* benchmark) {
    for (const int wards : {100, 10'000, 1'000'000}) benchmark->Args({wards, 100});
    benchmark->Args({1'000'000, 1'000'000});
    benchmark->UseManualTime()->Iterations(8);
}

}  // namespace oska::bench
