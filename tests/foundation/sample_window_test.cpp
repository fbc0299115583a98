#include "oska/foundation/sample_window.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

#include "oska/foundation/ward_name.h"

namespace oska {
namespace {

constexpr auto MIN = std::numeric_limits<std::int64_t>::min();
constexpr auto MAX = std::numeric_limits<std::int64_t>::max();

WardNames namesOf(std::initializer_list<std::string_view> list) {
    WardNames names;
    for (const auto name : list) names.add(name);
    return names;
}

TEST(SampleWindow, KeepsWhatIsExactlyAsOldAndWhatLiesAheadWithoutOverflow) {
    SampleWindow window(5000);
    std::vector<std::vector<std::int64_t>> kept;
    for (const auto time : std::vector<std::int64_t>{9000, 0, 5000, 5001, MAX, MIN}) {
        window.append({time, {}}, WardNames());
        kept.emplace_back();
        for (const auto& sample : window.samples()) kept.back().push_back(sample.mobileTime);
    }
    EXPECT_EQ(kept, (std::vector<std::vector<std::int64_t>>{
                        {9000}, {9000, 0}, {9000, 0, 5000}, {9000, 5000, 5001}, {MAX}, {MAX, MIN}}));
}

TEST(SampleWindow, ResolvesNamesAsBroadcastDropsForeignOnesAndOutlivesAnIndex) {
    SampleWindow window(5000);
    const auto expectReadings = [&window](const std::map<std::uint32_t, double>& expected) {
        std::map<std::uint32_t, double> readings;
        for (const auto& [ward, strength] : window.samples().front().readings) readings[ward] = strength;
        EXPECT_EQ(readings, expected);
    };
    window.append({0, {{" Lobby-A\n", -60}, {"elsewhere", -50}, {"CAFE\u0301", -70}}},
                  namesOf({"lobby-a", "caf\u00e9"}));
    expectReadings({{0, -60}, {1, -70}});
    window.resolveAgain(namesOf({"x", "y", "elsewhere", "lobby-a"}));
    expectReadings({{2, -50}, {3, -60}});
}

TEST(WardNames, FindANameThatIsAddedAfterItWasAskedFor) {
    WardNames names;
    EXPECT_FALSE(names.find("a"));
    names.add("A");
    EXPECT_EQ(names.find("a"), 0u);
    for (int i = 0; i < 20'000; ++i) EXPECT_FALSE(names.find("stranger " + std::to_string(i)));
    EXPECT_EQ(names.find("a "), 0u);
}

TEST(WardNames, DropCaseOuterBlanksAndComposition) {
    const std::pair<const char*, const char*> rows[] = {
        {" \r\n ", ""},
        {"  TETAM-0012 \n", "tetam-0012"},
        {"\tLobby  East!\u2003", "\tlobby  east!"},
        {"cafe\u0301", "caf\u00E9"},
        {"\u1112\u1161\u11AB", "\uD55C"},
        {"\u212B", "\u00E5"},
        {"\u0130\u0323", "\u1ECB\u0307"},
        {"\u039F\u0394\u039F\u03A3 ", "\u03BF\u03B4\u03BF\u03C2"},
        {"\xFF\u00C9", "\xFF\u00E9"},
    };
    for (const auto& [name, key] : rows) EXPECT_EQ(normalizeWardName(name), key) << name;
}

}  // namespace
}  // namespace oska
