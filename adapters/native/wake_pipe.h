#pragma once

#include <atomic>
#include <chrono>

namespace oska::native {

/// Wakes a thread that waits: in `wait`, or in a `poll` of its own on `descriptor`.
///
/// The waiting thread calls `reset`, then looks for work, then waits: a wake after the `reset` ends the wait.
/// A wake costs a system call only when it is the first since the last `reset`.
/// Threads: `wake` on any; the rest on the thread that waits.
class WakePipe {
public:
    using Clock = std::chrono::steady_clock;

    WakePipe();
    ~WakePipe();
    WakePipe(const WakePipe&) = delete;
    WakePipe& operator=(const WakePipe&) = delete;

    void wake();

    /// Readable once `wake` was called.
    [[nodiscard]] int descriptor() const { return readEnd_; }

    /// Must be called before looking for work.
    void reset();

    /// Returns when `wake` was called, and now and then until `deadline` has come: look at the clock again.
    void wait(Clock::time_point deadline) const;

private:
    int readEnd_ = -1;
    int writeEnd_ = -1;
    std::atomic<bool> isAwake_{false};
};

/// The time-out, in milliseconds, of a `poll` that should end at `deadline`. Rounded up, so that no thread
/// polls in a circle for the rest of a millisecond; -1, without end, for the last instant of the clock. A far
/// deadline takes two polls, because the kernel may end a long one late by a thousandth of it.
[[nodiscard]] int pollTimeout(WakePipe::Clock::time_point deadline);

}  // namespace oska::native
