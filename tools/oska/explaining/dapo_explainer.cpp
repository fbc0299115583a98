#include "tools/oska/explaining/dapo_explainer.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace oska::tool {
namespace {

constexpr auto NEEDED = DapoDetection::RFD_TRIGGER_COUNT;

std::string count(std::int64_t number, const std::string& noun) {
    return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
}

std::vector<std::string> namesOf(const std::vector<DapoWard>& wards) {
    std::vector<std::string> names;
    for (const auto& ward : wards) names.push_back(ward.name);
    return names;
}

bool contains(const std::vector<DapoWard>& wards, const IndexedDapoWard& ward) {
    return std::any_of(wards.begin(), wards.end(),
                       [&](const DapoWard& other) { return other.id == ward.id && other.name == ward.name; });
}

/// Requires: too few of the readings qualify.
Enough whatWouldDo(const std::vector<HeardReading>& readings, double threshold) {
    std::vector<double> weak;
    for (const auto& reading : readings) {
        if (!reading.qualifies) weak.push_back(reading.strength);
    }
    std::sort(weak.begin(), weak.end(), std::greater<>());
    const auto qualifying = readings.size() - weak.size();
    const auto missing = static_cast<std::size_t>(NEEDED) - qualifying;
    Enough enough{.more_readings = static_cast<std::int64_t>(missing), .stronger_by = {}, .threshold = {}};
    if (weak.size() < missing) return enough;
    const double weakestNeeded = weak[missing - 1];
    enough.stronger_by = shortBy(weakestNeeded, threshold);
    enough.threshold = std::floor(weakestNeeded);  // a bundle of this kind has whole ones
    return enough;
}

std::string shortfall(const WardCase& ward) {
    const auto& enough = *ward.enough;
    if (!enough.stronger_by) {
        return count(enough.more_readings, "more reading") + " at " + decibels(ward.threshold) +
               " dBm or above needed within " + std::to_string(DapoDetection::RFD_BUFFER_TIME_WINDOW) + " s";
    }
    const auto few = enough.more_readings == 1 ? "a reading was " : "readings were up to ";
    return few + decibels(*enough.stronger_by) + " dB too weak; a threshold of " +
           decibels(*enough.threshold) + " dBm would do";
}

void judge(WardCase& ward, bool isDetected) {
    const auto ofNeeded = std::to_string(ward.qualifying) + " of " + std::to_string(NEEDED) + ": ";
    if (isDetected) {
        ward.verdict = "detected";
        ward.why = "detected: " + count(ward.qualifying, "reading") + " at " + decibels(ward.threshold) +
                   " dBm or above, " + std::to_string(NEEDED) + " needed";
    } else if (ward.heard == 0) {
        ward.verdict = "not_heard";
        ward.why = "not heard";
    } else {
        ward.verdict = ward.enough->stronger_by ? "too_weak" : "too_few";
        ward.why = ofNeeded + shortfall(ward);
    }
}

}  // namespace

DapoExplainer::DapoExplainer(const DapoBundle& bundle, Question question)
    : Explainer(std::move(question), "dapo") {
    detection_.indexDapoWards(bundle.buildings);
    detection_.indexDapoMapImages(bundle.buildings);
    if (this->question().ward) asked_ = detection_.names().find(*this->question().ward);
}

// ---- the run

void DapoExplainer::advance() {
    while (holdRelease_ && *holdRelease_ <= wallTime()) {
        const auto due = *holdRelease_;
        holdRelease_.reset();
        perform(output_.releaseExpiredHolds(due));
        noteSelection(due.milliseconds);
    }
}

void DapoExplainer::perform(const DapoOutput::Effects& effects) {
    if (effects.release == DapoOutput::Release::cancel) holdRelease_.reset();
    if (effects.release == DapoOutput::Release::schedule) holdRelease_ = wallTime() + effects.releaseAfter;
    if (effects.visibility) isVisible_ = *effects.visibility;
}

void DapoExplainer::hear(const platform::ReceivedForce& sample) {
    if (detection_.isEmpty()) return;
    detected_ = detection_.handle(sample).wards;
    noteSample();
    if (detected_.empty()) {
        perform(output_.releaseExpiredHolds(wallTime()));
    } else {
        perform(output_.handleDetectedWards(detected_, wallTime()));
        lastDetection_ = now();
    }
    noteSelection(now());
    if (!question().at) noteBestInstants();
}

void DapoExplainer::noteBestInstants() {
    for (const auto& [ward, strengths] : strengthsInWindow()) {
        if (!isAskedFor(ward)) continue;
        const auto closeness = closenessOf(ward, strengths);
        const auto best = best_.find(ward);
        if (best == best_.end() || closeness > best->second.first) {
            best_.insert_or_assign(ward, std::pair(closeness, caseOf(ward)));
        }
    }
}

void DapoExplainer::perform(const Action& action) {
    switch (action.kind) {
        case ActionKind::start:
            return setRunning(true);
        case ActionKind::stop:
            setRunning(false);
            detection_.reset();
            perform(output_.reset());
            detected_.clear();
            return noteSelection(now());
        case ActionKind::setVisibility:
            return perform(output_.setVisibility(action.isVisible, wallTime()));
        default:
            return;  // an initialisation finds the same bundle; the others neither show nor hide
    }
}

void DapoExplainer::noteSelection(std::int64_t mobileTime) {
    auto names = namesOf(output_.currentWards());
    const bool isOpen = !showings_.empty() && !showings_.back().until;
    if (names == (isOpen ? showings_.back().wards : std::vector<std::string>{})) return;
    if (isOpen) showings_.back().until = sinceBegin(mobileTime);
    if (!names.empty()) showings_.push_back({sinceBegin(mobileTime), std::nullopt, std::move(names)});
}

// ---- the answer

double DapoExplainer::thresholdOf(WardNames::Number ward) const {
    return static_cast<double>(detection_.wards()[ward].thresholdRssi);
}

DapoExplainer::Strengths DapoExplainer::strengthsInWindow() const {
    Strengths strengths;
    for (const auto& sample : detection_.window().samples()) {
        for (const auto& [name, strength] : sample.rfs) {
            if (const auto ward = detection_.names().find(name)) strengths[*ward].push_back(strength);
        }
    }
    for (auto& [ward, ofWard] : strengths) std::sort(ofWard.begin(), ofWard.end(), std::greater<>());
    return strengths;
}

DapoExplainer::Closeness DapoExplainer::closenessOf(WardNames::Number ward,
                                                    const std::vector<double>& strengths) const {
    Closeness closeness{.heard = static_cast<std::int64_t>(strengths.size()), .strongest = strengths.front()};
    closeness.qualifying = std::count_if(strengths.begin(), strengths.end(), [&](double strength) {
        return DapoDetection::qualifies(strength, thresholdOf(ward));
    });
    if (closeness.heard >= NEEDED) closeness.threshold = strengths[NEEDED - 1];
    return closeness;
}

std::vector<HeardReading> DapoExplainer::readingsOf(WardNames::Number ward) const {
    const double threshold = thresholdOf(ward);
    return readingsIn(detection_.window(), detection_.names(), ward, threshold,
                      [&](double strength) { return DapoDetection::qualifies(strength, threshold); });
}

WardCase DapoExplainer::caseOf(WardNames::Number number) const {
    const auto& ward = detection_.wards()[number];
    WardCase found{.id = ward.id,
                   .name = ward.name,
                   .level_id = ward.levelId,
                   .threshold = thresholdOf(number),
                   .needed = NEEDED};
    auto readings = readingsOf(number);
    countReadings(found, readings);
    const bool isDetected = contains(detected_, ward);
    if (!isDetected) found.enough = whatWouldDo(readings, found.threshold);
    judge(found, isDetected);
    if (!isDetected && contains(output_.currentWards(), ward)) {
        found.verdict = "held";
        found.why += "; held from an earlier detection";
    }
    if (asked_) found.readings = std::move(readings);
    return found;
}

bool DapoExplainer::isAskedFor(WardNames::Number ward) const { return !question().ward || asked_ == ward; }

bool DapoExplainer::isAskedFor(const DapoShowing& showing) const {
    return std::any_of(showing.wards.begin(), showing.wards.end(), [this](const std::string& name) {
        return asked_ && detection_.names().find(name) == asked_;
    });
}

void DapoExplainer::explainNow() {
    DapoState state{
        .running = isRunning(), .visible = isVisible_, .selected = namesOf(output_.currentWards())};
    if (lastDetection_) state.last_detection = sinceBegin(*lastDetection_);
    if (holdRelease_) state.held_until = sinceBegin(holdRelease_->milliseconds);
    answer().state = std::move(state);
    if (asked_) return answer().wards.push_back(caseOf(*asked_));
    for (const auto& [ward, strengths] : strengthsInWindow()) {
        if (isAskedFor(ward)) answer().wards.push_back(caseOf(ward));
    }
}

void DapoExplainer::explainWalk() {
    if (question().ward)
        std::erase_if(showings_, [this](const auto& showing) { return !isAskedFor(showing); });
    answer().showings = showings_;
    for (const auto& [ward, best] : best_) answer().wards.push_back(best.second);
    if (asked_ && best_.empty()) {
        answer().wards.push_back(caseOf(*asked_));
        answer().wards.back().why = "never heard while the service ran";
    }
    if (!question().ward) {
        answer().never_heard = static_cast<std::int64_t>(detection_.wards().size() - best_.size());
    }
}

std::vector<std::string> DapoExplainer::wardNames() const {
    std::vector<std::string> names;
    for (const auto& ward : detection_.wards()) names.push_back(ward.name);
    return names;
}

bool DapoExplainer::isKnown(const std::string& name) const {
    return detection_.names().find(name).has_value();
}

}  // namespace oska::tool
