#include "oska/dapo/dapo_output.h"

#include <algorithm>
#include <cmath>
#include <set>
#include <string_view>
#include <utility>

#include "oska/text/text.h"

namespace oska {
namespace {

using platform::WallTime;
using std::chrono::nanoseconds;

constexpr double SHORTEST_OUTPUT_INTERVAL = 0.001;  // seconds

using NameSet = std::set<std::string_view, text::CanonicalLess>;

NameSet namesOf(const std::vector<DapoWard>& wards) {
    NameSet names;
    for (const auto& ward : wards) names.insert(ward.name);
    return names;
}

bool haveEqualNames(const std::vector<DapoWard>& a, const std::vector<DapoWard>& b) {
    const auto x = namesOf(a);
    const auto y = namesOf(b);
    return std::equal(x.begin(), x.end(), y.begin(), y.end(), text::canonicallyEqual);
}

bool isOver(const std::optional<WallTime>& deadline, WallTime now) { return deadline && *deadline <= now; }

}  // namespace

std::optional<double> acceptedOutputInterval(double seconds) {
    if (!std::isfinite(seconds) || seconds <= 0) return std::nullopt;
    return std::max(seconds, SHORTEST_OUTPUT_INTERVAL);
}

std::optional<nanoseconds> acceptedUnchangedInterval(double seconds) {
    if (!(seconds >= 0)) return std::nullopt;
    return nanosecondsOf(seconds);
}

nanoseconds nanosecondsOf(double seconds) {
    const double rounded = std::round(seconds * 1e9);
    return rounded < 0x1p63 ? nanoseconds(static_cast<std::int64_t>(rounded)) : nanoseconds::max();
}

std::vector<DapoWard> DapoOutput::currentWards() const {
    return currentDapoContents_ ? currentDapoContents_->wards : std::vector<DapoWard>{};
}

// ---- holds

DapoOutput::Effects DapoOutput::handleDetectedWards(std::vector<DapoWard> wards, WallTime now) {
    currentDapoContents_ = DapoContents{std::move(wards)};
    currentDapoContentsHoldUntil_ = visibilityHoldUntil_ = now + DETECTION_HOLD_DURATION;
    auto effects = releaseScheduled(now);
    effects.visibility = true;
    return effects;
}

// No deadline is further away than a whole hold, unless the clock was set back since.
void DapoOutput::limitHolds(WallTime now) {
    const auto latest = now + DETECTION_HOLD_DURATION;
    for (auto* deadline : {&currentDapoContentsHoldUntil_, &visibilityHoldUntil_}) {
        if (*deadline) *deadline = std::min(**deadline, latest);
    }
}

/// The release that belongs to the holds, and nothing else.
DapoOutput::Effects DapoOutput::releaseScheduled(WallTime now) {
    limitHolds(now);
    auto deadline = currentDapoContentsHoldUntil_;
    if (!deadline || (visibilityHoldUntil_ && *visibilityHoldUntil_ < *deadline))
        deadline = visibilityHoldUntil_;
    if (!deadline) return {.release = Release::cancel};
    return {.release = Release::schedule,
            .releaseAfter = std::max(nanoseconds::zero(), spanBetween(now, *deadline))};
}

DapoOutput::Effects DapoOutput::releaseExpiredHolds(WallTime now) {
    if (isOver(currentDapoContentsHoldUntil_, now)) forgetSelection();
    const bool isVisibilityOver = isOver(visibilityHoldUntil_, now);
    if (isVisibilityOver) visibilityHoldUntil_.reset();
    auto effects = releaseScheduled(now);
    if (isVisibilityOver && !currentDapoContents_) effects.visibility = false;
    return effects;
}

void DapoOutput::forgetSelection() {
    currentDapoContents_.reset();
    currentDapoContentsHoldUntil_.reset();
    lastDeliveredDapoWards_.reset();
    lastDeliveredAt_.reset();
}

// ---- delivery

DapoOutput::Effects DapoOutput::deliverCurrentWards(WallTime now) {
    limitHolds(now);  // the scheduled release comes no later than the limited holds, and then schedules again
    if (!currentDapoContents_ || !isDeliveryDue(now)) return {};
    forceNextDelivery_ = false;
    lastDeliveredDapoWards_ = currentDapoContents_->wards;
    lastDeliveredAt_ = now;
    return {.delivery = currentDapoContents_->wards};
}

bool DapoOutput::isDeliveryDue(WallTime now) const {
    if (forceNextDelivery_ || !lastDeliveredDapoWards_) return true;
    if (!haveEqualNames(currentDapoContents_->wards, *lastDeliveredDapoWards_)) return true;
    if (!unchangedDeliveryInterval_) return false;
    if (!lastDeliveredAt_ || *lastDeliveredAt_ > now) return true;  // in the future: the clock was set back
    return *unchangedDeliveryInterval_ <= spanBetween(*lastDeliveredAt_, now);
}

DapoOutput::Effects DapoOutput::enterForeground(WallTime now) {
    forceNextDelivery_ = true;
    return unchangedDeliveryInterval_ ? Effects{} : deliverCurrentWards(now);
}

// ---- visibility

DapoOutput::Effects DapoOutput::setVisibility(bool isVisible, WallTime now) {
    if (!isVisible && !(visibilityHoldUntil_ && *visibilityHoldUntil_ > now)) {
        visibilityHoldUntil_.reset();
        return {.visibility = false};
    }
    if (isVisible) visibilityHoldUntil_ = now + DETECTION_HOLD_DURATION;
    auto effects = releaseScheduled(now);
    effects.isHideDelayed = !isVisible;
    if (isVisible) effects.visibility = true;
    return effects;
}

DapoOutput::Effects DapoOutput::reset() {
    forgetSelection();
    visibilityHoldUntil_.reset();
    return {.release = Release::cancel, .visibility = false};
}

}  // namespace oska
