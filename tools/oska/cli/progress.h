#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

namespace oska::tool {

/// A bar on standard error, when that is a terminal and the work takes over a second; else nothing.
/// It leaves the cursor at the beginning of its line, where the next line that is printed overwrites it.
/// Threads: one. Lifetime: destroying it takes the bar away.
class Progress {
public:
    Progress();
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Of a total that is not known there is no bar.
    void update(std::uint64_t done, std::optional<std::uint64_t> total);

private:
    using Clock = std::chrono::steady_clock;

    bool isTerminal_;
    bool isShown_ = false;
    Clock::time_point nextUpdate_;
};

}  // namespace oska::tool
