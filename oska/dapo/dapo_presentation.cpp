#include "oska/dapo/dapo_presentation.h"

#include <utility>

#include "oska/foundation/log_message.h"
#include "oska/foundation/weak_part.h"
#include "oska/platform/platform.h"

namespace oska {
namespace {

constexpr Log LOG{"DapoView"};

}  // namespace

DapoPresentation::DapoPresentation(views::View& view, Deliver deliver)
    : view_(view),
      deliver_(std::move(deliver)),
      mainQueue_(platform::current().mainQueue),
      clock_(platform::current().clock) {}

// ---- settings

void DapoPresentation::setSelectionInterval(double seconds) {
    if (const auto accepted = acceptedOutputInterval(seconds)) {
        outputInterval_ = *accepted;
    } else {
        LOG.warn("setSelectionInterval", "ignored because the interval is not a finite number above zero",
                 {{"seconds", seconds}});
    }
}

void DapoPresentation::setUnchangedDeliveryInterval(std::string_view operation, std::optional<double> seconds,
                                                    bool refusedCountsAsNone) {
    const auto accepted = seconds ? acceptedUnchangedInterval(*seconds) : std::nullopt;
    const bool isRefused = seconds && !accepted;
    if (isRefused) {
        LOG.warn(operation, "ignored because the interval is not a number from zero on",
                 {{"seconds", *seconds}});
    }
    if (!isRefused || refusedCountsAsNone) output_.setUnchangedDeliveryInterval(accepted);
}

// ---- events

void DapoPresentation::startTimer() {
    if (outputTimer_) return;
    outputTimer_ = mainQueue_->every(nanosecondsOf(outputInterval_), [weak = weakPart(view_, *this)] {
        if (const auto self = weak.lock()) self->perform(self->output_.deliverCurrentWards(self->now()));
    });
    LOG.info("startTimer", "success",
             {{"label", "com.quenlo.oska.outputTimer"}, {"interval", outputInterval_}});
}

void DapoPresentation::handleDetectedWards(std::vector<DapoWard> wards) {
    perform(wards.empty() ? output_.releaseExpiredHolds(now())
                          : output_.handleDetectedWards(std::move(wards), now()));
}

void DapoPresentation::enterForeground() { perform(output_.enterForeground(now())); }

void DapoPresentation::setVisibility(bool isVisible) { perform(output_.setVisibility(isVisible, now())); }

void DapoPresentation::reset() { perform(output_.reset()); }

// ---- effects

void DapoPresentation::perform(const DapoOutput::Effects& effects) {
    if (effects.isHideDelayed) LOG.info("setVisibility", "delayed hide because visibility hold is active");
    if (effects.release == DapoOutput::Release::cancel) holdReleaseWorkItem_.reset();
    if (effects.release == DapoOutput::Release::schedule) scheduleHoldRelease(effects.releaseAfter);
    if (effects.visibility) view_.setHidden(!*effects.visibility);
    if (!effects.delivery.empty()) deliver_(effects.delivery);
}

void DapoPresentation::scheduleHoldRelease(std::chrono::nanoseconds delay) {
    holdReleaseWorkItem_ = mainQueue_->after(delay, [weak = weakPart(view_, *this)] {
        if (const auto self = weak.lock()) self->perform(self->output_.releaseExpiredHolds(self->now()));
    });
}

}  // namespace oska
