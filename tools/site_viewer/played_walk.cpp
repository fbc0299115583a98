#include "tools/site_viewer/played_walk.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

#include "oska/platform/clock.h"
#include "tools/oska/recording/recording.h"

namespace viewer {
namespace {

using oska::platform::ReceivedForce;
using oska::platform::WallTime;
using std::chrono::milliseconds;

constexpr milliseconds LONGEST = std::chrono::hours(24);

WallTime timeOf(const ReceivedForce& sample) { return {sample.mobile_time, 0}; }

/// Appends a sample; returns why it cannot be part of the walk.
std::optional<std::string> append(PlayedWalk& walk, ReceivedForce sample) {
    auto& samples = walk.samples;
    const auto first = timeOf(samples.empty() ? sample : samples.front().sample);
    const milliseconds since(oska::platform::millisecondsBetween(first, timeOf(sample)));
    if (since > LONGEST) return "more than a day after the first sample";
    const auto due = samples.empty() ? since : std::max(samples.back().due, since);
    samples.push_back({due, std::move(sample)});
    return std::nullopt;
}

}  // namespace

oska::Result<PlayedWalk, std::string> loadWalk(const std::string& path) {
    PlayedWalk walk;
    auto problem =
        oska::tool::readRecording(path, [&](oska::tool::RecordedLine line) -> std::optional<std::string> {
            if (auto* const sample = std::get_if<ReceivedForce>(&line.what))
                return append(walk, std::move(*sample));
            ++walk.actions;
            return std::nullopt;
        });
    if (problem) return *std::move(problem);
    if (walk.samples.empty()) return path + ": no sample in it";
    return walk;
}

}  // namespace viewer
