#pragma once

#include <chrono>
#include <functional>
#include <memory>

#include "adapters/native/run_loop.h"

namespace oska::qt {

/// Has Qt's event loop run the jobs of a run loop: one timer stands for the next deadline, and is the only
/// thing that pumps, so that jobs which post themselves again take turns with Qt's events.
///
/// Threads: made, used and destroyed on the run loop's main thread, which has a Qt event loop. Hooks may be
/// called on any thread, and after the driver has gone, when they do nothing.
class QtLoopDriver {
public:
    QtLoopDriver();
    ~QtLoopDriver();
    QtLoopDriver(const QtLoopDriver&) = delete;
    QtLoopDriver& operator=(const QtLoopDriver&) = delete;

    /// The wake hook for the run loop to be driven.
    [[nodiscard]] std::function<void()> wakeHook() const;
    /// Once, right after the run loop was made with the hook.
    void drive(std::shared_ptr<native::RunLoop> loop);
    /// Leaves nothing in Qt's event loop. May be called inside a job, and again.
    void stop();

private:
    class Pump;
    const std::shared_ptr<Pump> pump_;  // shared with the hooks
};

/// What a QTimer is set to for a deadline that is `remaining` from now, in milliseconds: rounded up, so that
/// nothing is early; what has passed counts as zero, and what no QTimer can hold is as much as it can.
[[nodiscard]] int timerInterval(std::chrono::nanoseconds remaining);

}  // namespace oska::qt
