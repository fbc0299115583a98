#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "oska/platform/quenlo_common.h"

/// A site, and the samples of a phone there: 30 % of the names are not wards of the site, and a quarter of
/// the others have white space around them. The random numbers have a fixed seed.
namespace oska::bench {

constexpr int WARDS = 2'000;

inline std::string wardName(int number) { return "Ward-" + std::to_string(number) + "-Hall"; }

struct Load {
    int samples;  ///< in the window
    int entries;  ///< in each sample
    int wards = WARDS;
    int inReach = WARDS;  ///< wards that can be heard at a time; this range moves on by one with each sample
};

/// Enough samples to fill a window of `windowMilliseconds`, and `count` more.
inline std::vector<platform::ReceivedForce> sampleStream(Load load, std::int64_t windowMilliseconds,
                                                         int count) {
    std::mt19937 random(7);
    const auto below = [&](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
    std::vector<platform::ReceivedForce> samples;
    for (int i = 0; i < load.samples + count; ++i) {
        platform::ReceivedForce sample{.mobile_time = i * (windowMilliseconds / (load.samples - 1))};
        while (sample.rfs.size() < static_cast<std::size_t>(load.entries)) {
            const bool isStranger = below(10) < 3;
            auto name = isStranger ? "Phone of " + std::to_string(below(500))
                                   : wardName((i + below(load.inReach)) % load.wards);
            if (!isStranger && below(4) == 0) name = " " + name + " ";
            sample.rfs[name] = -100 + below(600) / 10.0;
        }
        samples.push_back(std::move(sample));
    }
    return samples;
}

}  // namespace oska::bench
