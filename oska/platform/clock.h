#pragma once

#include <chrono>
#include <compare>
#include <cstdint>

namespace oska::platform {

/// A point of wall-clock time: whole milliseconds since 1970 (UTC) and 0 to 999,999 nanoseconds beyond them.
///
/// Milliseconds are kept apart because a recording may be stamped with any 64-bit millisecond, while 64 bits
/// of nanoseconds end in the year 2262. Sums and differences that leave the range stay at its end.
struct WallTime {
    std::int64_t milliseconds = 0;  ///< since 1970-01-01 00:00 UTC; negative before it
    std::int32_t nanoseconds = 0;   ///< after that millisecond, 0 to 999,999

    /// The earlier time is the smaller one.
    friend auto operator<=>(const WallTime&, const WallTime&) = default;
};

/// `time` moved by `span`, which may be negative. A result beyond the range of milliseconds stays at the end
/// of the range.
[[nodiscard]] WallTime operator+(WallTime time, std::chrono::nanoseconds span);

/// `later - earlier` in whole milliseconds, rounded down; negative when `later` is the earlier one.
[[nodiscard]] std::int64_t millisecondsBetween(WallTime earlier, WallTime later);

/// `later - earlier` in seconds, exact to what a double holds.
[[nodiscard]] double secondsBetween(WallTime earlier, WallTime later);

/// `later - earlier`, limited to what 64 bits of nanoseconds hold in either direction: about 292 years.
[[nodiscard]] std::chrono::nanoseconds spanBetween(WallTime earlier, WallTime later);

/// The wall clock of the machine. It may jump, also backwards, when somebody sets it. Threads: any.
class WallClock {
public:
    virtual ~WallClock() = default;

    /// The time at this moment. Must not block or throw.
    [[nodiscard]] virtual WallTime now() const = 0;
};

}  // namespace oska::platform
