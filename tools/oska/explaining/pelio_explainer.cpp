#include "tools/oska/explaining/pelio_explainer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "tools/oska/cli/wording.h"

namespace oska::tool {
namespace {

using Difference = PelioWardSelection::Difference;

// By Verdict.
constexpr std::array<std::string_view, 5> VERDICTS{"not_heard", "too_weak", "beaten", "held_back",
                                                   "reported"};

constexpr std::int64_t HOLD = PelioWardSelection::RESULT_CHANGE_MIN_INTERVAL * 1000;

struct Rule {
    std::string_view name;
    std::string_view words;  // of the one that wins
};

Rule ruleOf(Difference difference) {
    switch (difference) {
        case Difference::strength:
            return {"strength", "the strongest reading"};
        case Difference::threshold:
            return {"threshold", "as strong, with the higher threshold"};
        case Difference::id:
            return {"id", "as strong, with the same threshold and the smaller id"};
        case Difference::none:
            break;
    }
    return {"order", "alike in all, heard first"};
}

std::string_view wordsOf(const PelioWinner& winner) {
    if (winner.rule == "only") return "the only one that meets its threshold";
    for (const auto difference : {Difference::strength, Difference::threshold, Difference::id}) {
        if (ruleOf(difference).name == winner.rule) return ruleOf(difference).words;
    }
    return ruleOf(Difference::none).words;
}

std::string strengthOf(double value) { return decibels(value) + " dBm"; }

std::string reasonOf(const PelioWinner& winner) {
    auto reason = strengthOf(winner.strength) + ", " + std::string(wordsOf(winner));
    if (winner.runner_up) {
        reason += "; next " + inQuotes(*winner.runner_up) + " with " + strengthOf(*winner.runner_up_strength);
    }
    return reason;
}

std::string whyBeaten(const PelioWardSelection::Candidate& loser, const PelioWardSelection::Candidate& best) {
    const auto winner = inQuotes(best.ward->name);
    const auto difference = PelioWardSelection::difference(best, loser);
    if (difference == Difference::strength) {
        return "beaten: " + decibels(best.observedRssi - loser.observedRssi) + " dB weaker than " + winner;
    }
    return "beaten: " + winner + " is " + std::string(ruleOf(difference).words);
}

}  // namespace

PelioExplainer::PelioExplainer(const PelioBundle& bundle, Question question)
    : Explainer(std::move(question), "pelio"), selection_(bundle) {
    for (const auto& building : bundle.buildings) {
        for (const auto& level : building.levels) {
            for (const auto& ward : level.wards) names_.push_back(ward.name);
        }
    }
    if (this->question().ward) asked_ = selection_.names().find(*this->question().ward);
}

// ---- the run

void PelioExplainer::hear(const platform::ReceivedForce& sample) {
    if (selection_.wardCount() == 0) return;
    const auto before = selection_.current();
    selection_.handle(sample);
    noteSample();
    if (question().at) return;
    noteChange(before);
    noteBestInstants();
}

void PelioExplainer::perform(const Action& action) {
    if (action.kind == ActionKind::start) return setRunning(true);
    // A stop forgets what was heard, and an initialisation takes a new service, which has not been started.
    if (action.kind == ActionKind::stop || action.kind == ActionKind::initialize) {
        setRunning(false);
        selection_.reset();
        waiting_.reset();
    }
}

void PelioExplainer::noteChange(const std::optional<PelioWardSelection::Current>& before) {
    const auto& current = selection_.current();
    const auto best = selection_.strongest();
    const bool waits = best.ward != nullptr && best.key != current->key;
    if (current && (!before || before->key != current->key)) {
        const auto won = *winner();
        PelioChange change{.at = sinceBegin(now()),
                           .to = current->ward->name,
                           .level_id = current->ward->levelId,
                           .strength = won.strength,
                           .why = reasonOf(won)};
        if (before) change.from = before->ward->name;
        if (waiting_ && waiting_->first == current->key)
            change.held_back_for = sinceBegin(now()) - sinceBegin(waiting_->second);
        changes_.push_back(std::move(change));
    }
    if (!waits) waiting_.reset();
    if (waits && !(waiting_ && waiting_->first == best.key)) waiting_ = std::pair(best.key, now());
}

void PelioExplainer::noteBestInstants() {
    const auto winner = selection_.strongest();
    for (const auto& [ward, strongest] : strongestOfWards()) {
        const Standing standing(verdictOn(*ward, strongest, winner), strongest);
        const auto best = best_.find(ward);
        if (best == best_.end() || standing > best->second.first) {
            best_.insert_or_assign(ward, std::pair(standing, caseOf(*ward)));
        }
    }
}

// ---- one instant

std::vector<PelioExplainer::Heard> PelioExplainer::candidates() const {
    std::vector<Heard> found;
    for (const auto& sample : selection_.window().samples()) {
        for (const auto& [name, strength] : sample.readings) {
            for (const auto& ward : selection_.wardsOf(name)) {
                if (!PelioWardSelection::qualifies(ward, strength)) continue;
                const Candidate candidate{&ward, {name, ward.id}, strength};
                const auto known = std::find_if(found.begin(), found.end(), [&](const Heard& other) {
                    return other.candidate.ward == &ward;
                });
                if (known == found.end()) {
                    found.push_back({candidate, sample.mobileTime});
                } else if (PelioWardSelection::isBetter(candidate, known->candidate)) {
                    *known = {candidate, sample.mobileTime};
                }
            }
        }
    }
    return found;
}

std::optional<PelioWinner> PelioExplainer::winner() const {
    const auto best = selection_.strongest();
    if (best.ward == nullptr) return std::nullopt;
    PelioWinner winner{
        .id = best.ward->id, .name = best.ward->name, .strength = best.observedRssi, .rule = "only"};
    std::optional<Candidate> next;
    for (const auto& [candidate, mobileTime] : candidates()) {
        if (candidate.ward == best.ward) {
            winner.at = sinceBegin(mobileTime);
        } else if (!next || PelioWardSelection::isBetter(candidate, *next)) {
            next = candidate;
        }
    }
    if (next) {
        winner.rule = ruleOf(PelioWardSelection::difference(best, *next)).name;
        winner.runner_up = next->ward->name;
        winner.runner_up_strength = next->observedRssi;
    }
    return winner;
}

/// The mobile time from which on a sample may bring the change.
std::optional<std::int64_t> PelioExplainer::heldBackUntil(const Candidate& best) const {
    const auto& current = selection_.current();
    if (best.ward == nullptr || best.key == current->key) return std::nullopt;
    constexpr auto LATEST = std::numeric_limits<std::int64_t>::max();
    return current->changedAt > LATEST - HOLD ? LATEST : current->changedAt + HOLD;
}

PelioDecision PelioExplainer::decision() const {
    PelioDecision decision{.running = isRunning(), .winner = winner()};
    if (const auto at = sampleAt()) decision.at = sinceBegin(*at);
    if (const auto& current = selection_.current()) {
        decision.reported = PelioReported{current->ward->id, current->ward->name, current->ward->levelId,
                                          sinceBegin(current->changedAt)};
        if (const auto until = heldBackUntil(selection_.strongest()))
            decision.held_back_until = sinceBegin(*until);
    }
    return decision;
}

/// Of the wards that the window names, and that the question asks for.
std::map<const PelioWardNode*, double> PelioExplainer::strongestOfWards() const {
    std::map<const PelioWardNode*, double> strongest;
    for (const auto& sample : selection_.window().samples()) {
        for (const auto& [name, strength] : sample.rfs) {
            const auto number = selection_.names().find(name);
            if (!number || (question().ward && number != asked_)) continue;
            for (const auto& ward : selection_.wardsOf(*number)) {
                const auto known = strongest.try_emplace(&ward, strength).first;
                known->second = std::max(known->second, strength);
            }
        }
    }
    return strongest;
}

std::vector<const PelioWardNode*> PelioExplainer::wardsAskedFor() const {
    std::vector<const PelioWardNode*> wards;
    if (!asked_) return wards;
    for (const auto& ward : selection_.wardsOf(*asked_)) wards.push_back(&ward);
    return wards;
    for (const auto& ward : selection_.wardsOf(*asked_)) wards.push_back(&ward);
    return wards;
}

std::vector<HeardReading> PelioExplainer::readingsOf(const PelioWardNode& ward) const {
    const auto number = selection_.names().find(ward.name);
    return readingsIn(selection_.window(), selection_.names(), *number, ward.thresholdRssi,
                      [&](double strength) { return PelioWardSelection::qualifies(ward, strength); });
}

WardCase PelioExplainer::caseOf(const PelioWardNode& ward) const {
    WardCase found{
        .id = ward.id, .name = ward.name, .level_id = ward.levelId, .threshold = ward.thresholdRssi};
    auto readings = readingsOf(ward);
    countReadings(found, readings);
    const auto verdict = verdictOn(ward, found.strongest, selection_.strongest());
    found.verdict = VERDICTS[static_cast<std::size_t>(verdict)];
    found.why = reasonFor(verdict, found, ward);
    if (asked_) found.readings = std::move(readings);
    return found;
}

PelioExplainer::Verdict PelioExplainer::verdictOn(const PelioWardNode& ward, std::optional<double> strongest,
                                                  const Candidate& best) const {
    const auto& current = selection_.current();
    if (best.ward != nullptr && current && current->ward == &ward) return Verdict::reported;
    // Two wards of one name and id are one to the change control.
    if (best.ward == &ward) return best.key == current->key ? Verdict::reported : Verdict::heldBack;
    if (!strongest) return Verdict::notHeard;
    return PelioWardSelection::qualifies(ward, *strongest) ? Verdict::beaten : Verdict::tooWeak;
}

std::string PelioExplainer::reasonFor(Verdict verdict, const WardCase& found,
                                      const PelioWardNode& ward) const {
    const auto best = selection_.strongest();
    const auto until = best.ward == nullptr ? std::nullopt : heldBackUntil(best);
    const auto wait = until ? "a change must wait until " + std::to_string(sinceBegin(*until)) + " ms" : "";
    switch (verdict) {
        case Verdict::reported:
            return "reported: " + (until ? wait : reasonOf(*winner()));
        case Verdict::heldBack:
            return reasonOf(*winner()) + "; but " + wait;
        case Verdict::beaten:
            return whyBeaten({&ward, {}, *found.strongest}, best);
        case Verdict::tooWeak:
            return decibels(*shortBy(*found.strongest, found.threshold)) + " dB too weak";
        case Verdict::notHeard:
            break;
    }
    return "not heard within " + std::to_string(PelioWardSelection::RFD_BUFFER_TIME_WINDOW) + " s";
}

// ---- the answer

bool PelioExplainer::isAskedFor(const PelioChange& change) const {
    const auto isIt = [this](const std::string& name) { return selection_.names().find(name) == asked_; };
    return asked_ && (isIt(change.to) || (change.from && isIt(*change.from)));
}

void PelioExplainer::explainNow() {
    answer().decision = decision();
    if (question().ward) {
        for (const auto* const ward : wardsAskedFor()) answer().wards.push_back(caseOf(*ward));
    } else {
        for (const auto& [ward, strongest] : strongestOfWards()) answer().wards.push_back(caseOf(*ward));
    }
}

void PelioExplainer::explainWalk() {
    if (question().ward) std::erase_if(changes_, [this](const auto& change) { return !isAskedFor(change); });
    answer().changes = changes_;
    for (const auto& [ward, best] : best_) answer().wards.push_back(best.second);
    if (!question().ward) {
        answer().never_heard = static_cast<std::int64_t>(selection_.wardCount() - best_.size());
    } else if (best_.empty()) {
        for (const auto* const ward : wardsAskedFor()) {
            answer().wards.push_back(caseOf(*ward));
            answer().wards.back().why = "never heard while the service ran";
        }
    }
}

}  // namespace oska::tool
