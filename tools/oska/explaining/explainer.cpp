#include "tools/oska/explaining/explainer.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "oska/foundation/ward_name.h"
#include "oska/platform/clock.h"
#include "tools/oska/explaining/near_names.h"

namespace oska::tool {
namespace {

constexpr std::size_t KEPT_UNKNOWN_NAMES = 256;  // a busy street broadcasts names without end
constexpr std::size_t NEAREST_NAMES = 3;

std::int64_t instantOf(std::int64_t at, std::int64_t begin) {
    constexpr auto LATEST = std::numeric_limits<std::int64_t>::max();
    if (begin <= 0) return begin + at;
    return at >= begin ? at : begin > LATEST - at ? LATEST : begin + at;
}

}  // namespace

Explainer::Explainer(Question question, std::string service) : question_(std::move(question)) {
    answer_.service = std::move(service);
}

std::int64_t Explainer::sinceBegin(std::int64_t mobileTime) const {
    return platform::millisecondsBetween({begin_.value_or(0), 0}, {mobileTime, 0});
}

void Explainer::begin(std::int64_t mobileTime) {
    begin_ = answer_.begin = now_ = mobileTime;
    if (!question_.at) return;
    instant_ = answer_.asked_mobile_time = instantOf(*question_.at, mobileTime);
    answer_.asked_at = sinceBegin(*instant_);
}

void Explainer::take(const RecordedLine& line) {
    if (!begin_) begin(line.mobileTime);
    moveTo(std::max(now_, line.mobileTime));
    const auto* const sample = std::get_if<platform::ReceivedForce>(&line.what);
    if (sample == nullptr) return perform(std::get<Action>(line.what));
    noteUnknown(*sample);
    if (isRunning_) hear(*sample);
}

void Explainer::moveTo(std::int64_t mobileTime) {
    if (instant_ && *instant_ < mobileTime) {
        now_ = *std::exchange(instant_, std::nullopt);
        advance();
        explainNow();
    }
    now_ = mobileTime;
    advance();
}

Explanation Explainer::finish() {
    if (!begin_) begin(0);
    if (instant_) {
        now_ = *instant_;
        advance();
        explainNow();
    }
    if (!question_.at) explainWalk();
    sortWards();
    describeNames();
    return std::move(answer_);
}

void Explainer::countReadings(WardCase& found, const std::vector<HeardReading>& readings) const {
    found.mobile_time = sampleAt_;
    if (sampleAt_) found.at = sinceBegin(*sampleAt_);
    found.heard = static_cast<std::int64_t>(readings.size());
    for (const auto& reading : readings) {
        if (reading.qualifies) ++found.qualifying;
        found.strongest = std::max(found.strongest.value_or(reading.strength), reading.strength);
    }
}

/// Of one instant the strongest first, of a walk in its order.
void Explainer::sortWards() {
    const bool isWalk = !question_.at;
    std::stable_sort(answer_.wards.begin(), answer_.wards.end(),
                     [isWalk](const WardCase& a, const WardCase& b) {
                         return isWalk ? a.at < b.at : a.strongest > b.strongest;
                     });
}

void Explainer::noteUnknown(const platform::ReceivedForce& sample) {
    for (const auto& [name, strength] : sample.rfs) {
        if (isKnown(name)) continue;
        if (unknown_.size() >= KEPT_UNKNOWN_NAMES && unknown_.find(name) == unknown_.end()) {
            ++answer_.more_unknown_readings;
        } else {
            ++unknown_[name];
        }
    }
}

void Explainer::describeNames() {
    const auto known = wardNames();
    const bool isAsked = question_.ward.has_value();
    const auto wanted = isAsked ? normalizeWardName(*question_.ward) : std::string();
    if (isAsked && !isKnown(*question_.ward)) {
        answer_.no_such_ward =
            NoSuchWard{*question_.ward, 0, nearestNames(*question_.ward, known, NEAREST_NAMES)};
    }
    for (const auto& [name, readings] : unknown_) {
        if (answer_.no_such_ward && normalizeWardName(name) == wanted)
            answer_.no_such_ward->heard += readings;
        const auto close = closeName(name, known);
        // If a ward was asked for, only the names that may have been meant for it are listed.
        if (isAsked && !(close && normalizeWardName(close->name) == wanted)) continue;
        answer_.unknown_names.push_back({name, readings, close});
    }
    std::stable_sort(answer_.unknown_names.begin(), answer_.unknown_names.end(),
                     [](const UnknownName& a, const UnknownName& b) { return a.readings > b.readings; });
}

std::optional<double> shortBy(double strength, double threshold) {
    return strength < threshold ? std::optional(roundedDecibels(threshold - strength)) : std::nullopt;
}

}  // namespace oska::tool
