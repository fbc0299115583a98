#include "oska/platform/clock.h"

#include <algorithm>
#include <limits>

namespace oska::platform {
namespace {

constexpr std::int64_t NANOSECONDS_PER_MILLISECOND = 1'000'000;

std::int64_t saturatingSum(std::int64_t a, std::int64_t b) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(a, b, &sum)) return sum;
    return a > 0 ? std::numeric_limits<std::int64_t>::max() : std::numeric_limits<std::int64_t>::min();
}

std::int64_t saturatingDifference(std::int64_t a, std::int64_t b) {
    std::int64_t difference = 0;
    if (!__builtin_sub_overflow(a, b, &difference)) return difference;
    return a > b ? std::numeric_limits<std::int64_t>::max() : std::numeric_limits<std::int64_t>::min();
}

}  // namespace

WallTime operator+(WallTime time, std::chrono::nanoseconds span) {
    std::int64_t milliseconds = span.count() / NANOSECONDS_PER_MILLISECOND;
    std::int64_t nanoseconds = time.nanoseconds + span.count() % NANOSECONDS_PER_MILLISECOND;
    if (nanoseconds < 0) {
        nanoseconds += NANOSECONDS_PER_MILLISECOND;
        --milliseconds;
    } else if (nanoseconds >= NANOSECONDS_PER_MILLISECOND) {
        nanoseconds -= NANOSECONDS_PER_MILLISECOND;
        ++milliseconds;
    }
    return {saturatingSum(time.milliseconds, milliseconds), static_cast<std::int32_t>(nanoseconds)};
}

std::int64_t millisecondsBetween(WallTime earlier, WallTime later) {
    const auto whole = saturatingDifference(later.milliseconds, earlier.milliseconds);
    return later.nanoseconds < earlier.nanoseconds ? saturatingSum(whole, -1) : whole;
}

double secondsBetween(WallTime earlier, WallTime later) {
    const auto milliseconds = saturatingDifference(later.milliseconds, earlier.milliseconds);
    const auto nanoseconds = later.nanoseconds - earlier.nanoseconds;
    if (nanoseconds == 0) return static_cast<double>(milliseconds) / 1e3;
    return static_cast<double>(milliseconds) / 1e3 + nanoseconds / 1e9;
}

std::chrono::nanoseconds spanBetween(WallTime earlier, WallTime later) {
    // One type for all three: nanoseconds count in `long` on some systems and in `long long` on others.
    constexpr std::int64_t LIMIT = std::chrono::nanoseconds::max().count() / NANOSECONDS_PER_MILLISECOND - 1;
    const auto milliseconds = std::clamp<std::int64_t>(
        saturatingDifference(later.milliseconds, earlier.milliseconds), -LIMIT, LIMIT);
    return std::chrono::nanoseconds(milliseconds * NANOSECONDS_PER_MILLISECOND + later.nanoseconds -
                                    earlier.nanoseconds);
}

}  // namespace oska::platform
