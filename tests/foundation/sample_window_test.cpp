#include "oska/foundation/sample_window.h"

#include <gtest/gtest.h>

#include <limits>
#include <tuple>

namespace oska {
namespace {

constexpr auto MIN = std::numeric_limits<std::int64_t>::min();
constexpr auto MAX = std::numeric_limits<std::int64_t>::max();

WardNames namesOf(std::initializer_list<std::string_view> list) {
    WardNames names;
    for (const auto name : list) names.add(name);
    return names;
}

std::vector<std::int64_t> timesOf(const SampleWindow& window) {
    std::vector<std::int64_t> times;
    for (const auto& sample : window.samples()) times.push_back(sample.mobileTime);
    return times;
}

TEST(MobileTime, IsComparedWithoutOverflow) {
    for (const auto& [then, now, isOlder, elapsed] :
         {std::tuple(std::int64_t{0}, std::int64_t{5000}, false, true),
          {0, 5001, true, true},
          {1, 5000, false, false},
          {MIN, MAX, true, true},
          {MAX, MIN, false, false}}) {
        EXPECT_EQ(isOlderThan(5000, then, now), isOlder) << then;
        EXPECT_EQ(hasElapsed(5000, then, now), elapsed) << then;
    }
}

TEST(SampleWindow, KeepsWhatIsExactlyAsOldAndWhatLiesAhead) {
    SampleWindow window(5000);
    const WardNames names;
    for (const std::int64_t time : {9000, 0, 100, 5100, 5000}) window.append({time, {}}, names);
    EXPECT_EQ(timesOf(window), (std::vector<std::int64_t>{9000, 100, 5100, 5000}));
    window.append({10'001, {}}, names);
    EXPECT_EQ(timesOf(window), (std::vector<std::int64_t>{9000, 5100, 10'001}));
}

TEST(SampleWindow, ResolvesNamesAsBroadcastAndDropsForeignOnes) {
    SampleWindow window(5000);
    const auto names = namesOf({"lobby-a", "caf\u00e9"});
    window.append({0, {{" Lobby-A\n", -60}, {"elsewhere", -50}, {"CAFE\u0301", -70}}}, names);
    const auto& readings = window.samples().front().readings;
    ASSERT_EQ(readings.size(), 2u);
    EXPECT_EQ(readings[0].ward + readings[1].ward, 1u);
    EXPECT_EQ(readings[0].strength + readings[1].strength, -130);
}

TEST(SampleWindow, OutlivesAnIndex) {
    SampleWindow window(5000);
    window.append({0, {{"a", -60}, {"b", -61}}}, namesOf({"a"}));
    window.resolveAgain(namesOf({"x", "b"}));
    const auto& readings = window.samples().front().readings;
    ASSERT_EQ(readings.size(), 1u);
    EXPECT_EQ(std::pair(readings[0].ward, readings[0].strength), std::pair(1u, -61.0));
}

TEST(WardNames, FindANameThatIsAddedAfterItWasAskedFor) {
    WardNames names;
    EXPECT_FALSE(names.find("a"));
    names.add("A");
    EXPECT_EQ(names.find("a"), 0u);
    for (int i = 0; i < 20'000; ++i) EXPECT_FALSE(names.find("stranger " + std::to_string(i)));
    EXPECT_EQ(names.find("a "), 0u);
}

}  // namespace
}  // namespace oska
