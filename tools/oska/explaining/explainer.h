#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "oska/foundation/ward_names.h"
#include "tools/oska/explaining/explanation.h"
#include "tools/oska/recording/recording_line.h"

namespace oska::tool {

struct Question {
    std::optional<std::string> ward;  ///< nullopt: all that were heard
    /// Milliseconds since the run began; or a mobile time: a number that is not below that of the first line,
    /// if that is above zero. nullopt: for each ward its best instant.
    std::optional<std::int64_t> at;
};

/// Runs a recording through one engine of the kit, as a replay would, and reports how the engine decides. The
/// service starts with the first line, and the clock never goes back. Decisions and their rules are the
/// engine's own. Threads: one at a time.
class Explainer {
public:
    virtual ~Explainer() = default;

    void take(const RecordedLine& line);

    /// After the last line; once.
    [[nodiscard]] Explanation finish();

protected:
    Explainer(Question question, std::string service);

    [[nodiscard]] const Question& question() const { return question_; }
    [[nodiscard]] std::int64_t now() const { return now_; }  ///< mobile time
    [[nodiscard]] std::int64_t sinceBegin(std::int64_t mobileTime) const;
    [[nodiscard]] bool isRunning() const { return isRunning_; }
    void setRunning(bool isRunning) { isRunning_ = isRunning; }

    /// The engine has taken a sample.
    void noteSample() { sampleAt_ = now_; }
    /// When the last sample came, by the clock; the sample itself may have an earlier mobile time.
    [[nodiscard]] std::optional<std::int64_t> sampleAt() const { return sampleAt_; }
    /// Fills in `found` what the window held of the ward after the last sample.
    void countReadings(WardCase& found, const std::vector<HeardReading>& readings) const;

    /// The readings of one ward in a window. `qualifies(strength)`: whether a reading meets the threshold.
    template <class Window, class Qualifies>
    [[nodiscard]] std::vector<HeardReading> readingsIn(const Window& window, const WardNames& names,
                                                       WardNames::Number ward, double threshold,
                                                       Qualifies qualifies) const;

    /// The answer so far; finish() returns it.
    [[nodiscard]] Explanation& answer() { return answer_; }

private:
    /// The clock has reached now().
    virtual void advance() = 0;
    virtual void hear(const platform::ReceivedForce& sample) = 0;
    virtual void perform(const Action& action) = 0;
    /// now() is the instant that was asked for.
    virtual void explainNow() = 0;
    /// Called if no instant was asked for: explains each ward at its best instant, and the whole walk.
    virtual void explainWalk() = 0;
    /// As in the bundle.
    [[nodiscard]] virtual std::vector<std::string> wardNames() const = 0;
    [[nodiscard]] virtual bool isKnown(const std::string& name) const = 0;

    void begin(std::int64_t mobileTime);
    void moveTo(std::int64_t mobileTime);
    void noteUnknown(const platform::ReceivedForce& sample);
    void sortWards();
    void describeNames();

    Question question_;
    Explanation answer_;
    std::optional<std::int64_t> begin_;
    std::optional<std::int64_t> instant_;  // mobile time; until it has been explained
    std::int64_t now_ = 0;
    std::optional<std::int64_t> sampleAt_;
    bool isRunning_ = true;
    std::map<std::string, std::int64_t> unknown_;  // readings by name as heard
};

/// By how many dB a reading misses the threshold, if it does.
[[nodiscard]] std::optional<double> shortBy(double strength, double threshold);

template <class Window, class Qualifies>
std::vector<HeardReading> Explainer::readingsIn(const Window& window, const WardNames& names,
                                                WardNames::Number ward, double threshold,
                                                Qualifies qualifies) const {
    std::vector<HeardReading> readings;
    for (const auto& sample : window.samples()) {
        for (const auto& [name, strength] : sample.rfs) {
            if (names.find(name) != ward) continue;
            readings.push_back({sinceBegin(sample.mobileTime), sample.mobileTime, name, strength,
                                qualifies(strength), shortBy(strength, threshold)});
        }
    }
    return readings;
}

}  // namespace oska::tool
