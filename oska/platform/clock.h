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
    std::int64_t milliseconds = 0;
    std::int32_t nanoseconds = 0;

    friend auto operator<=>(const WallTime&, const WallTime&) = default;
};

[[nodiscard]] WallTime operator+(WallTime time, std::chrono::nanoseconds span);

/// `later - earlier` in whole milliseconds, rounded down.
[[nodiscard]] std::int64_t millisecondsBetween(WallTime earlier, WallTime later);

/// `later - earlier` in seconds.
[[nodiscard]] double secondsBetween(WallTime earlier, WallTime later);

/// `later - earlier`, at most what 64 bits of nanoseconds hold in either direction.
[[nodiscard]] std::chrono::nanoseconds spanBetween(WallTime earlier, WallTime later);

/// The clock on the wall, which may be set back. Threads: any.
class WallClock {
public:
    virtual ~WallClock() = default;
    [[nodiscard]] virtual WallTime now() const = 0;
};

}  // namespace oska::platform
