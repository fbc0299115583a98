#include "adapters/virtual/recorded_radio.h"

#include <atomic>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <optional>
#include <system_error>
#include <utility>
#include <vector>

#include "adapters/virtual/replay_generator.h"
#include "oska/json/json.h"
#include "oska/platform/clock.h"
#include "oska/platform/platform.h"

namespace oska::virtual_world {

using platform::ReceivedForce;

namespace {

struct Line {
    std::int64_t mobileTime = 0;
    std::optional<ReceivedForce::Strengths> rfs;
};

template <class Visit>
void fields(Visit& f, Line& line) {
    f("mobile_time", line.mobileTime);
    f("rfs", line.rfs);
}

using Samples = std::vector<ReceivedForce>;

/// The samples of the file, or why it cannot be played.
Result<Samples, std::string> readSamples(const std::string& path) {
    std::ifstream file(path);
    if (!file) return path + ": " + std::error_code(errno, std::generic_category()).message();
    Samples samples;
    std::string text;
    for (std::size_t number = 1; std::getline(file, text); ++number) {
        if (text.find_first_not_of(" \t\r") == std::string::npos) continue;
        auto line = json::decode<Line>(text);
        if (!line) return path + ":" + std::to_string(number) + ": " + line.error().message();
        if (!line->rfs) continue;
        auto [mobileTime, rfs] = std::move(line).value();
        samples.push_back({mobileTime, *std::move(rfs)});
    }
    if (file.bad()) return path + ": cannot be read";
    if (samples.empty()) return path + ": holds no sample";
    return samples;
}

}  // namespace

class RecordedWalk : public std::enable_shared_from_this<RecordedWalk> {
public:
    explicit RecordedWalk(const std::string& path) {
        auto samples = readSamples(path);
        if (samples) {
            samples_ = std::move(samples).value();
        } else {
            source_.setAvailability({false, samples.error()});
        }
    }

    std::shared_ptr<platform::RFDGenerator> makeGenerator() {
        if (!hasBegun_.exchange(true) && !samples_.empty()) {
            platform::current().mainQueue->async([weak = weak_from_this()] {
                if (const auto self = weak.lock()) self->sendNext();
            });
        }
        return makeGenerator_();
    }

private:
    void sendNext() {
        const auto& sample = samples_[next_++];
        source_.send(sample);
        if (next_ == samples_.size()) return;
        const auto pause = platform::spanBetween({sample.mobile_time, 0}, {samples_[next_].mobile_time, 0});
        work_ = platform::current().mainQueue->after(pause, [weak = weak_from_this()] {
            if (const auto self = weak.lock()) self->sendNext();
        });
    }

    ReplaySource source_;
    const platform::RFDGeneratorFactory makeGenerator_ = source_.factory();
    Samples samples_;
    std::atomic<bool> hasBegun_{false};

    // Main queue only.
    std::size_t next_ = 0;
    std::unique_ptr<platform::ScheduledWork> work_;
};

RecordedRadio::RecordedRadio(const std::string& path) : walk_(std::make_shared<RecordedWalk>(path)) {}

RecordedRadio::~RecordedRadio() = default;

platform::RFDGeneratorFactory RecordedRadio::factory() const {
    return [weak = std::weak_ptr(walk_)]() -> std::shared_ptr<platform::RFDGenerator> {
        const auto walk = weak.lock();
        return walk ? walk->makeGenerator() : nullptr;
    };
}

}  // namespace oska::virtual_world
