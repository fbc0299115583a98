// Measures the time that Pelio's engine needs for a sample. It is compared with a plain implementation of the
// same rule, which keeps the samples as they come and, for each new sample, normalises and looks up every
// name of the window. The benchmark ends the program when the two results differ.

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <deque>
#include <unordered_map>

#include "bench/sample_cost.h"
#include "bench/sample_stream.h"
#include "oska/foundation/ward_name.h"
#include "oska/pelio/pelio_ward_selection.h"

namespace oska::bench {
namespace {

constexpr std::int64_t WINDOW = PelioWardSelection::RFD_BUFFER_TIME_WINDOW * 1000;

PelioBundle site(int wards, int lowestThreshold) {
    PelioBundle bundle;
    auto& level = bundle.buildings.emplace_back().levels.emplace_back();
    for (int i = 0; i < wards; ++i) {
        level.wards.push_back({i, wardName(i), i, i, static_cast<double>(lowestThreshold + i % 40)});
    }
    return bundle;
}

class Plain {
public:
    explicit Plain(const PelioBundle& bundle) {
        for (const auto& ward : bundle.buildings[0].levels[0].wards)
            byName_[normalizeWardName(ward.name)] = ward;
    }

    /// The id of the strongest ward in the window; -1 when there is none.
    std::int64_t handle(platform::ReceivedForce sample) {
        const auto now = sample.mobile_time;
        window_.push_back(std::move(sample));
        std::erase_if(window_, [&](const auto& old) { return now - old.mobile_time > WINDOW; });
        const PelioLevelWard* best = nullptr;
        double strongest = 0;
        for (const auto& buffered : window_) {
            for (const auto& [name, strength] : buffered.rfs) consider(name, strength, best, strongest);
        }
        return best ? best->id : -1;
    }

private:
    void consider(const std::string& name, double strength, const PelioLevelWard*& best,
                  double& strongest) const {
        const auto found = byName_.find(normalizeWardName(name));
        if (found == byName_.end() || found->second.rssi > strength) return;
        const auto& ward = found->second;
        const bool isBetter = !best || strength > strongest ||
                              (strength == strongest &&
                               (ward.rssi > best->rssi || (ward.rssi == best->rssi && ward.id < best->id)));
        if (!isBetter) return;
        best = &ward;
        strongest = strength;
    }

    std::unordered_map<std::string, PelioLevelWard> byName_;
    std::deque<platform::ReceivedForce> window_;
};

void requireEqualResults(const PelioBundle& bundle, const std::vector<platform::ReceivedForce>& stream) {
    PelioWardSelection kit(bundle);
    Plain plain(bundle);
    std::int64_t reported = -1;
    std::int64_t changedAt = 0;
    for (const auto& sample : stream) {
        const auto best = plain.handle(sample);
        if (best >= 0 && best != reported && (reported < 0 || sample.mobile_time - changedAt >= WINDOW)) {
            reported = best;
            changedAt = sample.mobile_time;
        }
        const auto* ward = kit.handle(sample);
        if ((ward ? ward->id : -1) != (best < 0 ? -1 : reported)) std::abort();
    }
}

void pelioHandleRfd(benchmark::State& state) {
    const Load load{static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    const auto bundle = site(WARDS, -95);
    const auto stream = sampleStream(load, WINDOW, SAMPLES_BEFORE + SAMPLES_MEASURED);
    requireEqualResults(bundle, stream);
    compare<PelioWardSelection, Plain>(state, bundle, stream);
}

void pelioBySiteSize(benchmark::State& state) {
    const Load load{20, 40, static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    PelioWardSelection kit(site(load.wards, -50));
    measure(state, kit, sampleStream(load, WINDOW, SAMPLES_BEFORE + SAMPLES_MEASURED));
}

BENCHMARK(pelioHandleRfd)->Args({20, 40})->Args({100, 200})->UseManualTime()->Iterations(8);
BENCHMARK(pelioBySiteSize)->Apply(siteSizes);

}  // namespace
}  // namespace oska::bench
