#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include "oska/dapo/dapo_output.h"
#include "oska/platform/clock.h"
#include "oska/platform/main_queue.h"
#include "oska/views/view.h"

namespace oska {

/// Carries out what `DapoOutput` decides: shows and hides the view, runs the output timer and the release of
/// holds, delivers selections. Threads: main thread. Lifetime: a part of `view`; timer and release hold the
/// view weakly.
class DapoPresentation {
public:
    /// Hands a selection to the host, if there is one. It may call anything here.
    using Deliver = std::function<void(const std::vector<DapoWard>&)>;

    /// Takes queue and clock of the platform that is installed.
    DapoPresentation(views::View& view, Deliver deliver);

    /// See `DapoView::setSelectionInterval`.
    void setSelectionInterval(double seconds);
    /// See `DapoView::setUnchangedDeliveryInterval`. A refused value is logged under `operation`.
    void setUnchangedDeliveryInterval(std::string_view operation, std::optional<double> seconds,
                                      bool refusedCountsAsNone);

    /// Starts the output timer, with a first tick at once; nothing when it runs.
    void startTimer();
    void stopTimer() { outputTimer_.reset(); }

    /// A sample has detected these wards; it may have detected none.
    void handleDetectedWards(std::vector<DapoWard> wards);
    void enterForeground();
    void setVisibility(bool isVisible);
    /// Forgets the selection and hides the view.
    void reset();

    [[nodiscard]] std::vector<DapoWard> currentWards() const { return output_.currentWards(); }

private:
    void perform(const DapoOutput::Effects& effects);
    void scheduleHoldRelease(std::chrono::nanoseconds delay);
    [[nodiscard]] platform::WallTime now() const { return clock_->now(); }

    views::View& view_;
    const Deliver deliver_;
    const std::shared_ptr<platform::MainQueue> mainQueue_;
    const std::shared_ptr<platform::WallClock> clock_;
    DapoOutput output_;
    double outputInterval_ = 1.0;  // seconds
    std::unique_ptr<platform::ScheduledWork> outputTimer_;
    std::unique_ptr<platform::ScheduledWork> holdReleaseWorkItem_;
};

}  // namespace oska
