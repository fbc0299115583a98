#include "oska/dapo/dapo_detection.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "oska/dapo/dapo_sector.h"

namespace oska {
namespace {

using Ids = std::vector<std::int64_t>;
using Strengths = platform::ReceivedForce::Strengths;

constexpr auto INFINITE = std::numeric_limits<double>::infinity();

DapoLevelWard ward(std::int64_t id, std::string name, std::int64_t rssi = -80) {
    return {.id = id, .name = std::move(name), .x = 5, .rssi = rssi};
}

DapoBundle siteOf(std::vector<DapoLevelWard> wards) {
    DapoBundle bundle{.id = 1, .name = "site"};
    bundle.buildings.push_back({.id = 2, .name = "building"});
    auto& levels = bundle.buildings[0].levels;
    levels.push_back({.id = 3, .name = "level", .map_image = {}, .wards = std::move(wards)});
    levels[0].map_image.scale_x = levels[0].map_image.scale_y = 2;
    levels[0].map_image.offset_x = levels[0].map_image.offset_y = 10;
    return bundle;
}

class Detection : public testing::Test {
protected:
    void know(std::vector<DapoLevelWard> wards) {
        const auto site = siteOf(std::move(wards));
        detection_.indexDapoWards(site.buildings);
        detection_.indexDapoMapImages(site.buildings);
    }

    /// The wards that the last of `count` equal samples, one a second from `time` on, detects.
    Ids hear(std::int64_t time, const Strengths& rfs, int count = 1) {
        for (int i = 0; i < count; ++i) detected_ = detection_.handle({time + 1000 * i, rfs});
        Ids ids;
        for (const auto& ward : detected_.wards) ids.push_back(ward.id);
        return ids;
    }

    DapoDetection detection_;
    DapoDetection::Detected detected_;  // by the last sample
};

TEST_F(Detection, NeedsSixReadingsOfTenSecondsAtTheThresholdOrAboveIt) {
    know({ward(1, "a", -80)});
    EXPECT_EQ(hear(0, {{"a", -80}}, 5), Ids{});
    for (const double tooWeak : {-80.001, std::nan(""), INFINITE, -INFINITE}) {
        EXPECT_EQ(hear(5000, {{"a", tooWeak}, {"b", -50}}), Ids{}) << tooWeak;
    }
    EXPECT_EQ(hear(6000, {{"a", -80}}), Ids{1});
    EXPECT_EQ(hear(10'000, {}), Ids{1}) << "any six of the window, not the last six";
    EXPECT_EQ(hear(10'001, {}), Ids{});
    EXPECT_EQ(hear(9000, {}), Ids{}) << "what has left does not come back with an earlier stamp";
}

TEST_F(Detection, TakesNamesThatNormaliseAlikeForOneWardWhichIsTheLast) {
    know({ward(1, "a", -90), ward(2, "b"), ward(3, "A ", -60)});
    EXPECT_EQ(hear(0, {{"a", -70}}, 6), Ids{});
    EXPECT_EQ(hear(20'000, {{"a ", -55}, {"A\n", -55}}, 3), Ids{3}) << "once for each name of a sample";
    know({ward(1, "a", -50), ward(2, "B")});
    EXPECT_EQ(hear(23'000, {{"a", -55}, {"b", -70}}, 6), Ids{2});
    know({ward(4, "a", -60)});
    EXPECT_EQ(hear(28'000, {}), Ids{4}) << "what was buffered counts for the new wards";
}

TEST_F(Detection, DescribesAWardByItsBundleAndItsStrongestReading) {
    auto entry = ward(7, "Gate");
    entry.contents = {
        {2, "two", "http://h/2"}, {1, "one", "http://h/1"}, {3, "none", ""}, {1, "uno", "http://h/uno"}};
    know({entry});
    hear(0, {{"gate", -79}}, 5);
    hear(5000, {{"gate", -60.5}});
    const auto link = [](std::int64_t id, const char* name, const char* url) {
        return WardContents{id, name, *Url::parse(url)};
    };
    const DapoWard expected{
        7,      3,
        "Gate", 20,
        10,     -80,
        -61,    {link(1, "one", "http://h/1"), link(1, "uno", "http://h/uno"), link(2, "two", "http://h/2")}};
    EXPECT_EQ(detected_.wards, std::vector{expected});
}

TEST_F(Detection, RoundsHalvesAwayFromZeroAndClampsAndForgetsSamplesAtAReset) {
    using Integer = std::numeric_limits<std::int64_t>;
    know({ward(1, "a", Integer::min())});
    const std::vector<std::pair<double, std::int64_t>> cases{
        {-60.4, -60}, {-60.5, -61}, {-0.4, 0}, {2.5, 3}, {1e300, Integer::max()}, {-0x1p63, Integer::min()}};
    for (const auto& [strength, detected] : cases) {
        EXPECT_EQ(hear(0, {{"a", strength}}, 5), Ids{});
        ASSERT_EQ(hear(5000, {{"a", strength}}), Ids{1}) << strength;
        EXPECT_EQ(detected_.wards[0].detected_rssi, detected) << strength;
        detection_.reset();
    }
}

TEST_F(Detection, SortsALargeSiteByIdThenByNameInTheOrderOfComposedScalars) {
    std::vector<DapoLevelWard> wards;
    for (int id = 9999; id > 0; --id) wards.push_back(ward(id, std::to_string(id)));
    for (const auto* name : {"b", "a", "f\u0302", "\u00e9", "e\u0301x"}) wards.push_back(ward(-1, name));
    know(wards);
    const std::vector<std::string> expected{"a",  "b",  "f\u0302", "\u00e9", "e\u0301x",
                                            "59", "60", "4091",    "4092",   "9999"};
    Strengths heard;
    for (const auto& name : expected) heard[name] = -70;
    hear(0, heard, 6);
    for (const int again : {0, 1}) {
        std::vector<std::string> names;
        for (const auto& ward : detected_.wards) names.push_back(ward.name);
        EXPECT_EQ(names, expected) << again;
        hear(6000, {{"1", -70}});
    }
}

TEST_F(Detection, LeavesAWardInPlaceAndReportsTheLevelWithoutAMapImageAsASectorDoes) {
    auto site = siteOf({ward(1, " A"), ward(2, "b")});
    site.buildings.push_back({.id = 4, .name = "empty"});
    const LevelMapIndex maps(site.buildings);
    DapoSectorInfo expected{1, "site", {{2, "building", {{3, "level", maps.find(3), {}}}}, {4, "empty", {}}}};
    auto& level = expected.buildings[0].levels[0];
    level.wards = {{1, 3, " A", 20, 10, -80, 0, {}}, {2, 3, "b", 20, 10, -80, 0, {}}};
    EXPECT_EQ(describeSector(site, maps).info, expected);
    EXPECT_EQ(describeSector(site, maps).levelsWithoutMap, Ids{});
    level = {3, "level", std::nullopt, {{1, 3, " A", 5, 0, -80, 0, {}}, {2, 3, "b", 5, 0, -80, 0, {}}}};
    EXPECT_EQ(describeSector(site, {}).info, expected);
    EXPECT_EQ(describeSector(site, {}).levelsWithoutMap, (Ids{3, 3})) << "once for each ward";
    detection_.indexDapoWards(site.buildings);
    hear(0, {{"a", -70}, {"b", -70}}, 6);
    EXPECT_EQ(detected_.levelsWithoutMap, (Ids{3, 3}));
    EXPECT_EQ(detected_.wards[0].x, 5);
}

}  // namespace
}  // namespace oska
