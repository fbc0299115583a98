#pragma once

#include <algorithm>
#include <chrono>
#include <string>

namespace oska::native {

/// The instants at which a request has taken too long: idle since the last byte, or in all since it was
/// sent. Threads: one at a time.
class RequestDeadlines {
public:
    using Clock = std::chrono::steady_clock;

    RequestDeadlines(std::chrono::milliseconds idle, std::chrono::milliseconds total, Clock::time_point now);

    /// A byte came or went.
    void noteActivity(Clock::time_point now);

    [[nodiscard]] Clock::time_point next() const { return std::min(idleEnd_, totalEnd_); }

    /// Says for people which of the two comes first; `server` is "host:port".
    [[nodiscard]] std::string describe(const std::string& server) const;

private:
    const std::chrono::milliseconds idle_;
    const std::chrono::milliseconds total_;
    Clock::time_point idleEnd_;
    const Clock::time_point totalEnd_;
};

}  // namespace oska::native
