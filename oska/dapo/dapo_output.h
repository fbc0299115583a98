#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/platform/clock.h"

namespace oska {

/// The output timer's period as it is used: at least a millisecond. None for what is no finite number above
/// zero.
[[nodiscard]] std::optional<double> acceptedOutputInterval(double seconds);

/// After how long an unchanged selection is delivered again. None for what is no number from zero on.
[[nodiscard]] std::optional<std::chrono::nanoseconds> acceptedUnchangedInterval(double seconds);

/// The nearest nanosecond; what 64 bits cannot hold is their end. Requires: a number from zero on.
[[nodiscard]] std::chrono::nanoseconds nanosecondsOf(double seconds);

/// What a host sees of detections: a selection that is held for a while, the moments at which it is
/// delivered, and whether the view shows.
///
/// A selection ends when 5 seconds have passed since the last detection; nobody is told. It is delivered at
/// the first tick at which its set of ward names differs from the one delivered last, and again when asked to
/// or when the unchanged-delivery interval has passed. The view shows from a detection, or from when a host
/// shows it, for 5 seconds, and as long as anything is selected. Time is handed in; a deadline equal to now
/// is over. The clock may be set back: a hold that would then last more than 5 seconds counts from the first
/// call that finds it so, a tick included, and an unchanged selection whose last delivery lies ahead of now
/// is due. Threads: one at a time. Each operation has changed all state before it delivers, so that the one
/// who hears of it may call anything here.
class DapoOutput {
public:
    static constexpr std::chrono::seconds DETECTION_HOLD_DURATION{5};

    /// Whoever shows, schedules and delivers.
    class Presenter {
    public:
        virtual ~Presenter() = default;
        virtual void applyVisibility(bool isVisible) = 0;
        /// `releaseExpiredHolds` is to be called after `delay`, instead of whenever it was to be called
        /// before.
        virtual void scheduleHoldRelease(std::chrono::nanoseconds delay) = 0;
        /// It need not be called any more.
        virtual void cancelHoldRelease() = 0;
        virtual void deliver(const std::vector<DapoWard>& dapoWards) = 0;
    };

    /// Keeps `presenter`, which must outlive it.
    explicit DapoOutput(Presenter& presenter) : presenter_(presenter) {}

    void setUnchangedDeliveryInterval(std::optional<std::chrono::nanoseconds> interval) {
        unchangedDeliveryInterval_ = interval;
    }

    /// Empty when nothing is selected.
    [[nodiscard]] std::vector<DapoWard> currentWards() const;

    /// A sample that detected `wards`, which are some.
    void handleDetectedWards(std::vector<DapoWard> wards, platform::WallTime now);

    /// A sample that detected nothing, or the moment that was scheduled.
    void releaseExpiredHolds(platform::WallTime now);

    /// A tick of the output timer.
    void deliverCurrentWards(platform::WallTime now);

    /// The application comes back to the foreground: the next tick delivers, and comes at once when there is
    /// no unchanged-delivery interval.
    void enterForeground(platform::WallTime now);

    /// A host shows or hides the view; hiding waits for the end of the time that it must show.
    void setVisibility(bool isVisible, platform::WallTime now);

    /// Forgets selection, history and holds, and hides the view. Interval and a forced delivery stay.
    void reset();

private:
    [[nodiscard]] bool isDeliveryDue(platform::WallTime now) const;
    void limitHolds(platform::WallTime now);
    void scheduleHoldRelease(platform::WallTime now);
    void forgetSelection();

    Presenter& presenter_;

    std::optional<DapoContents> currentDapoContents_;
    std::optional<platform::WallTime> currentDapoContentsHoldUntil_;
    std::optional<platform::WallTime> visibilityHoldUntil_;

    std::optional<std::vector<DapoWard>> lastDeliveredDapoWards_;
    std::optional<platform::WallTime> lastDeliveredAt_;
    std::optional<std::chrono::nanoseconds> unchangedDeliveryInterval_;  // none: never deliver again
    bool forceNextDelivery_ = false;
};

}  // namespace oska
