#pragma once

#include <chrono>
#include <functional>
#include <memory>
#include <optional>

#include "adapters/native/native_platform.h"

namespace oska::tool {

/// The native platform together with the program's main thread, which runs the main queue while it waits: for
/// an instant, for input, or until a condition is met.
///
/// Threads: the main thread. Lifetime: destroying it shuts the platform down.
class LiveLoop {
public:
    using Clock = native::RunLoop::Clock;
    using IsDone = std::function<bool()>;

    /// `options.wake` is replaced by the loop's own.
    explicit LiveLoop(native::NativePlatformOptions options);

    [[nodiscard]] platform::Platform platform() const { return native_.platform(); }

    // Each returns false if the program was interrupted, during the call or before it.
    [[nodiscard]] bool runUntil(Clock::time_point instant);
    [[nodiscard]] bool runUntil(const IsDone& isDone);
    [[nodiscard]] bool runUntilReadable(int file);

    /// Runs on until `isDone`, even after an interruption.
    void finish(const IsDone& isDone);

    /// Whether the main queue has a job that is due; for use in `isDone`.
    [[nodiscard]] bool isBusy() const { return nextJob_ && *nextJob_ <= Clock::now(); }

private:
    class Alarm;
    using Instant = std::optional<Clock::time_point>;

    static constexpr int NO_FILE = -1;  // poll(2) passes it over

    void pump() { nextJob_ = native_.runLoop().pump(); }
    /// Waits for the next job, or for one of the things given. Returns whether `file` can be read.
    bool wait(Instant instant, int file, int interruption);

    const std::shared_ptr<Alarm> alarm_;  // shared with the hook, which other threads call
    native::NativePlatform native_;
    Instant nextJob_;
};

}  // namespace oska::tool
