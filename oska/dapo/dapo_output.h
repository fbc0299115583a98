#pragma once

#include <chrono>
#include <optional>
#include <vector>

#include "oska/dapo/dapo_types.h"
#include "oska/platform/clock.h"

namespace oska {

/// The period of the output timer, in seconds, as it is used: at least 0.001. Nullopt when `seconds` is not a
/// finite number above zero.
[[nodiscard]] std::optional<double> acceptedOutputInterval(double seconds);

/// The time after which an unchanged selection is delivered again. Nullopt when `seconds` is negative or not
/// a number; infinity gives the longest span.
[[nodiscard]] std::optional<std::chrono::nanoseconds> acceptedUnchangedInterval(double seconds);

/// `seconds` to the nearest nanosecond; at most the longest span. Requires: a number, not negative.
[[nodiscard]] std::chrono::nanoseconds nanosecondsOf(double seconds);

/// Dapo's second engine: from detections to what a host sees. It decides which wards are selected, when they
/// are delivered, and whether the view is visible.
///
/// Selection: the wards of the last detection, for 5 seconds after it. Its end is not reported to the host.
/// Delivery: at the first tick at which the set of ward names differs from the set delivered last; again when
/// it is forced, or when the unchanged-delivery interval has passed. Visibility: for 5 seconds after each
/// detection and after each request of the host to show, and as long as wards are selected.
///
/// Time: each operation takes the wall clock's time; a deadline equal to it has passed. When the clock was
/// set back, a hold ends at most 5 seconds after the first operation that notices it, and an unchanged
/// selection whose last delivery lies in the future is due.
///
/// The engine does nothing itself: each operation returns the effects that its caller must carry out.
/// Threads: one at a time. Errors: none.
class DapoOutput {
public:
    /// How long a selection and the view's visibility are held.
    static constexpr std::chrono::seconds DETECTION_HOLD_DURATION{5};

    /// What happens to the one call of `releaseExpiredHolds` that may be scheduled.
    enum class Release {
        keep,      ///< it stays as it is
        cancel,    ///< it is not needed any more
        schedule,  ///< it is replaced by a call after `Effects::releaseAfter`
    };

    /// What the caller must do after an operation, in the order of the members. All state has changed before:
    /// a host that is called meanwhile may use this object, and what the host causes comes last and counts.
    struct Effects {
        bool isHideDelayed = false;  ///< a request to hide has to wait for the visibility hold; to be logged
        Release release = Release::keep;
        std::chrono::nanoseconds releaseAfter{};  ///< from now, never negative
        std::optional<bool> visibility = {};      ///< true: show the view, false: hide it, nullopt: neither
        std::vector<DapoWard> delivery = {};      ///< wards to hand to the host; empty: no delivery
    };

    /// Nullopt, the initial value: an unchanged selection is never delivered again.
    void setUnchangedDeliveryInterval(std::optional<std::chrono::nanoseconds> interval) {
        unchangedDeliveryInterval_ = interval;
    }

    /// The selection; empty when nothing is selected.
    [[nodiscard]] std::vector<DapoWard> currentWards() const;

    /// A sample has detected `wards`, at least one.
    [[nodiscard]] Effects handleDetectedWards(std::vector<DapoWard> wards, platform::WallTime now);

    /// A sample has detected nothing, or the scheduled time has come.
    [[nodiscard]] Effects releaseExpiredHolds(platform::WallTime now);

    /// A tick of the output timer.
    [[nodiscard]] Effects deliverCurrentWards(platform::WallTime now);

    /// The application has returned to the foreground. Forces the next delivery; without an
    /// unchanged-delivery interval that delivery is due at once.
    [[nodiscard]] Effects enterForeground(platform::WallTime now);

    /// The host asks to show or to hide the view. Hiding waits for the end of the visibility hold.
    [[nodiscard]] Effects setVisibility(bool isVisible, platform::WallTime now);

    /// Forgets selection, delivery history and holds. Keeps the unchanged-delivery interval and a forced
    /// delivery that is still due.
    [[nodiscard]] Effects reset();

private:
    [[nodiscard]] bool isDeliveryDue(platform::WallTime now) const;
    void limitHolds(platform::WallTime now);
    [[nodiscard]] Effects releaseScheduled(platform::WallTime now);
    void forgetSelection();

    std::optional<DapoContents> currentDapoContents_;
    std::optional<platform::WallTime> currentDapoContentsHoldUntil_;
    std::optional<platform::WallTime> visibilityHoldUntil_;

    std::optional<std::vector<DapoWard>> lastDeliveredDapoWards_;
    std::optional<platform::WallTime> lastDeliveredAt_;
    std::optional<std::chrono::nanoseconds> unchangedDeliveryInterval_;
    bool forceNextDelivery_ = false;
};

}  // namespace oska
