#include "oska/platform/clock.h"

#include <gtest/gtest.h>

#include <limits>

namespace oska::platform {
namespace {

constexpr auto MIN = std::numeric_limits<std::int64_t>::min();
constexpr auto MAX = std::numeric_limits<std::int64_t>::max();
constexpr auto LONGEST = std::int64_t{9'223'372'036'853};  // milliseconds, in a span of 64-bit nanoseconds

TEST(WallTime, SumsCarryNanosecondsAndStayInTheRange) {
    using std::chrono::nanoseconds;
    const std::tuple<WallTime, nanoseconds, WallTime> table[] = {
        {{5, 999'999}, nanoseconds(1), {6, 0}},      {{5, 0}, nanoseconds(-1), {4, 999'999}},
        {{-1, 0}, nanoseconds(1'000'001), {0, 1}},   {{MAX, 0}, nanoseconds(1'000'000), {MAX, 0}},
        {{MIN, 0}, nanoseconds(-1), {MIN, 999'999}},
    };
    for (const auto& [time, span, sum] : table) EXPECT_EQ(time + span, sum) << time.milliseconds;
}

TEST(WallTime, DifferencesRoundDownAndStayInTheRange) {
    struct Case {
        WallTime earlier, later;
        std::int64_t milliseconds;
        double seconds;
        std::int64_t nanoseconds;
    };
    const Case table[] = {
        {{1, 999'999}, {2, 0}, 0, 1e-9, 1},
        {{2, 0}, {1, 999'999}, -1, -1e-9, -1},
        {{0, 0}, {1500, 0}, 1500, 1.5, 1'500'000'000},
        {{MIN, 0}, {MAX, 0}, MAX, static_cast<double>(MAX) / 1e3, LONGEST * 1'000'000},
        {{MAX, 0}, {MIN, 0}, MIN, static_cast<double>(MIN) / 1e3, -LONGEST * 1'000'000},
        {{MAX, 1}, {MIN, 0}, MIN, static_cast<double>(MIN) / 1e3, -LONGEST * 1'000'000 - 1},
    };
    for (const auto& [earlier, later, milliseconds, seconds, nanoseconds] : table) {
        EXPECT_EQ(millisecondsBetween(earlier, later), milliseconds);
        EXPECT_NEAR(secondsBetween(earlier, later), seconds, 1e-12);
        EXPECT_EQ(spanBetween(earlier, later).count(), nanoseconds);
    }
}

}  // namespace
}  // namespace oska::platform
