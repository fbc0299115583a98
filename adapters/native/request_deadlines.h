#pragma once

#include <algorithm>
#include <chrono>
#include <string>

namespace oska::native {

/// When a request times out: after it was idle for too long since the last byte, or took too long in total
/// since it was sent. Threads: one at a time.
class RequestDeadlines {
public:
    using Clock = std::chrono::steady_clock;

    RequestDeadlines(std::chrono::milliseconds idle, std::chrono::milliseconds total, Clock::time_point now);

    /// Must be called when a byte came or went: restarts the idle time-out.
    void noteActivity(Clock::time_point now);

    [[nodiscard]] Clock::time_point next() const { return std::min(idleEnd_, totalEnd_); }

    /// The error text for the time-out that comes first; `server` is "host:port".
    [[nodiscard]] std::string describe(const std::string& server) const;

private:
    const std::chrono::milliseconds idle_;
    const std::chrono::milliseconds total_;
    Clock::time_point idleEnd_;
    const Clock::time_point totalEnd_;
};

}  // namespace oska::native
