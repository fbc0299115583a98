// Measures the time that Dapo's engine needs for a sample. It is compared with a plain implementation of the
// same rule, which keeps the samples as they come and, for each new sample, normalises and looks up every
// name of the window. The benchmark ends the program when the two results differ.

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <deque>
#include <unordered_map>

#include "bench/sample_cost.h"
#include "bench/sample_stream.h"
#include "oska/dapo/dapo_detection.h"
#include "oska/foundation/ward_name.h"

namespace oska::bench {
namespace {

constexpr std::int64_t WINDOW = DapoDetection::RFD_BUFFER_TIME_WINDOW * 1000;

DapoBundle site(int wards, int lowestThreshold) {
    DapoBundle bundle;
    auto& level = bundle.buildings.emplace_back().levels.emplace_back();
    for (int i = 0; i < wards; ++i) {
        level.wards.push_back(
            {.id = i, .name = wardName(i), .x = i, .y = i, .rssi = lowestThreshold + i % 40});
    }
    return bundle;
}

class Kit {
public:
    explicit Kit(const DapoBundle& bundle) {
        detection_.indexDapoWards(bundle.buildings);
        detection_.indexDapoMapImages(bundle.buildings);
    }

    std::vector<DapoWard> handle(platform::ReceivedForce sample) {
        return detection_.handle(std::move(sample)).wards;
    }

    void reset() { detection_.reset(); }

private:
    DapoDetection detection_;
};

class Plain {
public:
    explicit Plain(const DapoBundle& bundle) : maps_(bundle.buildings) {
        const auto& level = bundle.buildings[0].levels[0];
        for (const auto& ward : level.wards) byName_[normalizeWardName(ward.name)] = ward;
        levelId_ = level.id;
    }

    std::vector<DapoWard> handle(platform::ReceivedForce sample) {
        const auto now = sample.mobile_time;
        window_.push_back(std::move(sample));
        std::erase_if(window_, [&](const auto& old) { return now - old.mobile_time > WINDOW; });
        std::unordered_map<std::string, std::vector<double>> qualifying;
        for (const auto& buffered : window_) {
            for (const auto& [name, strength] : buffered.rfs) {
                auto key = normalizeWardName(name);
                const auto found = byName_.find(key);
                if (found == byName_.end() || strength < static_cast<double>(found->second.rssi)) continue;
                qualifying[std::move(key)].push_back(strength);
            }
        }
        std::vector<DapoWard> detected;
        for (const auto& [name, strengths] : qualifying) {
            if (std::ssize(strengths) >= DapoDetection::RFD_TRIGGER_COUNT)
                detected.push_back(describe(name, strengths));
        }
        std::sort(detected.begin(), detected.end(), [](const auto& a, const auto& b) { return a.id < b.id; });
        return detected;
    }

private:
    DapoWard describe(const std::string& name, const std::vector<double>& strengths) const {
        const auto& ward = byName_.at(name);
        const auto [x, y] = *maps_.convertWardCoordinate(levelId_, *ward.x, *ward.y);
        const auto strongest = std::round(*std::max_element(strengths.begin(), strengths.end()));
        return {ward.id, levelId_, ward.name, x, y, ward.rssi, static_cast<std::int64_t>(strongest), {}};
    }

    std::unordered_map<std::string, DapoLevelWard> byName_;
    std::int64_t levelId_ = 0;
    LevelMapIndex maps_;
    std::deque<platform::ReceivedForce> window_;
};

void requireEqualResults(const DapoBundle& bundle, const std::vector<platform::ReceivedForce>& stream) {
    Kit kit(bundle);
    Plain plain(bundle);
    for (const auto& sample : stream) {
        if (!(kit.handle(sample) == plain.handle(sample))) std::abort();
    }
}

void dapoHandleRfd(benchmark::State& state) {
    const Load load{static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    const auto bundle = site(WARDS, -95);
    const auto stream = sampleStream(load, WINDOW, SAMPLES_BEFORE + SAMPLES_MEASURED);
    requireEqualResults(bundle, stream);
    compare<Kit, Plain>(state, bundle, stream);
}

void dapoBySiteSize(benchmark::State& state) {
    const Load load{20, 40, static_cast<int>(state.range(0)), static_cast<int>(state.range(1))};
    Kit kit(site(load.wards, -50));
    measure(state, kit, sampleStream(load, WINDOW, SAMPLES_BEFORE + SAMPLES_MEASURED));
}

BENCHMARK(dapoHandleRfd)->Args({20, 40})->Args({100, 200})->UseManualTime()->Iterations(8);
BENCHMARK(dapoBySiteSize)->Apply(siteSizes);

}  // namespace
}  // namespace oska::bench
