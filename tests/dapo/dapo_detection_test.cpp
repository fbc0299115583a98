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
    bundle.buildings[0].levels.push_back(
        {.id = 3, .name = "level", .map_image = {}, .wards = std::move(wards)});
    auto& map = bundle.buildings[0].levels[0].map_image;
    map.scale_x = map.scale_y = 2;
    map.offset_x = map.offset_y = 10;
    return bundle;
}

class Detection : public testing::Test {
protected:
    void know(std::vector<DapoLevelWard> wards) {
        const auto site = siteOf(std::move(wards));
        detection_.indexDapoWards(site.buildings);
        detection_.indexDapoMapImages(site.buildings);
    }

    std::vector<DapoWard> hear(std::int64_t time, Strengths rfs) {
        return detection_.handle({time, std::move(rfs)}).wards;
    }

    /// What the last of `count` equal samples, one a second from `time` on, detects.
    std::vector<DapoWard> hearOften(int count, const Strengths& rfs, std::int64_t time = 0) {
        std::vector<DapoWard> detected;
        for (int i = 0; i < count; ++i) detected = hear(time + 1000 * i, rfs);
        return detected;
    }

    static Ids ids(const std::vector<DapoWard>& wards) {
        Ids ids;
        for (const auto& ward : wards) ids.push_back(ward.id);
        return ids;
    }

    DapoDetection detection_;
};

TEST_F(Detection, NeedsSixReadingsAtTheThresholdOrAboveIt) {
    know({ward(1, "a", -80)});
    EXPECT_TRUE(hearOften(5, {{"a", -80}}).empty());
    EXPECT_TRUE(hear(5000, {{"a", -80.001}}).empty());
    EXPECT_TRUE(hear(5000, {{"a", std::nan("")}}).empty());
    EXPECT_TRUE(hear(5000, {{"b", -50}}).empty());
    EXPECT_EQ(ids(hear(6000, {{"a", -80}})), Ids{1});
    EXPECT_EQ(ids(hear(7000, {})), Ids{1}) << "any six of the window, not the last six";
}

TEST_F(Detection, CountsWhatIsTenSecondsOldAndNothingOlder) {
    know({ward(1, "a")});
    hearOften(5, {{"a", -70}});
    EXPECT_EQ(ids(hear(10'000, {{"a", -70}})), Ids{1});
    EXPECT_TRUE(hear(10'001, {}).empty());
    EXPECT_TRUE(hear(9'000, {}).empty()) << "what has left does not come back with an earlier stamp";
}

TEST_F(Detection, KeepsSamplesStampedLaterThanTheNewOne) {
    know({ward(1, "a")});
    hearOften(5, {{"a", -70}}, 50'000);
    EXPECT_EQ(ids(hear(0, {{"a", -70}})), Ids{1});
}

TEST_F(Detection, TakesNamesThatNormaliseAlikeForOneWard) {
    know({ward(1, "Lobby A")});
    EXPECT_EQ(ids(hearOften(3, {{"lobby a ", -70}, {"LOBBY A\n", -75}})), Ids{1})
        << "once for each name of a sample";
}

TEST_F(Detection, KnowsTheLastOfWardsWithOneName) {
    know({ward(1, "a", -90), ward(2, "b"), ward(3, "A ", -60)});
    EXPECT_TRUE(hearOften(6, {{"a", -70}}).empty());
    const auto detected = hearOften(6, {{"a", -55}}, 20'000);
    ASSERT_EQ(ids(detected), Ids{3});
    EXPECT_EQ(detected[0].name, "A ");
}

TEST_F(Detection, DescribesAWardByItsBundleAndItsStrongestReading) {
    auto entry = ward(7, "Gate");
    entry.contents = {
        {2, "two", "http://h/2"}, {1, "one", "http://h/1"}, {3, "none", ""}, {1, "uno", "http://h/uno"}};
    know({entry});
    hearOften(5, {{"gate", -79}});
    const auto detected = hear(5000, {{"gate", -60.5}});
    const auto link = [](std::int64_t id, const char* name, const char* url) {
        return WardContents{id, name, *Url::parse(url)};
    };
    const DapoWard expected{.id = 7,
                            .level_id = 3,
                            .name = "Gate",
                            .x = 20,
                            .y = 10,
                            .rssi = -80,
                            .detected_rssi = -61,
                            .contents = {link(1, "one", "http://h/1"), link(1, "uno", "http://h/uno"),
                                         link(2, "two", "http://h/2")}};
    ASSERT_EQ(detected.size(), 1u);
    EXPECT_EQ(detected[0], expected);
}

TEST_F(Detection, RoundsHalvesAwayFromZeroAndClampsAndDropsInfinity) {
    struct Case {
        double strength;
        std::int64_t detected;
    };
    know({ward(1, "a", std::numeric_limits<std::int64_t>::min())});
    for (const auto& [strength, detected] : {Case{-60.4, -60},
                                             {-60.5, -61},
                                             {-0.4, 0},
                                             {2.5, 3},
                                             {1e300, std::numeric_limits<std::int64_t>::max()},
                                             {-0x1p63, std::numeric_limits<std::int64_t>::min()}}) {
        detection_.reset();
        const auto wards = hearOften(6, {{"a", strength}});
        ASSERT_EQ(wards.size(), 1u) << strength;
        EXPECT_EQ(wards[0].detected_rssi, detected) << strength;
    }
    detection_.reset();
    EXPECT_TRUE(hearOften(6, {{"a", INFINITE}}).empty());
    EXPECT_TRUE(hearOften(6, {{"a", -INFINITE}}).empty());
}

TEST_F(Detection, SortsByIdThenByNameInTheOrderOfComposedScalars) {
    know({ward(7, "z"), ward(3, "b"), ward(3, "a"), ward(-1, "f\u0302"), ward(-1, "\u00e9"),
          ward(-1, "e\u0301x")});
    const auto detected = hearOften(
        6, {{"z", -70}, {"b", -70}, {"a", -70}, {"\u00e9", -70}, {"e\u0301x", -70}, {"f\u0302", -70}});
    std::vector<std::string> names;
    for (const auto& ward : detected) names.push_back(ward.name);
    EXPECT_EQ(names, (std::vector<std::string>{"f\u0302", "\u00e9", "e\u0301x", "a", "b", "z"}));
}

TEST_F(Detection, SortsWardsOfALargeSite) {
    std::vector<DapoLevelWard> wards;
    for (int id = 9999; id >= 0; --id) wards.push_back(ward(id, std::to_string(id)));
    know(wards);
    const Ids expected{0, 63, 64, 4095, 4096, 9999};
    Strengths heard;
    for (const auto id : expected) heard[std::to_string(id)] = -70;
    EXPECT_EQ(ids(hearOften(6, heard)), expected);
    EXPECT_EQ(ids(hear(6000, {{"1", -70}})), expected) << "and again with the next sample";
}

TEST_F(Detection, CountsWhatWasBufferedForANewIndex) {
    know({ward(1, "a")});
    hearOften(5, {{"a", -70}, {"b", -70}});
    know({ward(1, "a", -60), ward(2, "b")});
    EXPECT_EQ(ids(hear(5000, {{"a", -70}, {"b", -70}})), Ids{2});
    detection_.clearIndexes();
    EXPECT_TRUE(detection_.isEmpty());
    EXPECT_TRUE(detection_.maps().byLevelId().empty());
}

TEST_F(Detection, ResetForgetsSamplesAndKeepsWards) {
    know({ward(1, "a")});
    hearOften(6, {{"a", -70}});
    detection_.reset();
    EXPECT_TRUE(hearOften(5, {{"a", -70}}, 5000).empty());
    EXPECT_EQ(ids(hear(5000, {{"a", -70}})), Ids{1});
}

TEST(DapoSector, IsTheBundleAsATreeWithPlacedWards) {
    auto bundle = siteOf({ward(1, " A"), ward(2, " a")});
    bundle.buildings.push_back({.id = 4, .name = "empty"});
    bundle.buildings[0].levels.push_back({.id = 5, .name = "bare", .map_image = {}});
    const auto maps = LevelMapIndex(bundle.buildings);
    const auto [info, levelsWithoutMap] = describeSector(bundle, maps);
    EXPECT_TRUE(levelsWithoutMap.empty());
    ASSERT_EQ(info.buildings.size(), 2u);
    EXPECT_TRUE(info.buildings[1].levels.empty());
    ASSERT_EQ(info.buildings[0].levels.size(), 2u);
    EXPECT_EQ(info.buildings[0].levels[1].mapImage, maps.find(5));
    const auto& wards = info.buildings[0].levels[0].wards;
    ASSERT_EQ(wards.size(), 2u) << "wards that only detection takes for one";
    EXPECT_EQ(wards[0], (DapoWard{.id = 1, .level_id = 3, .name = " A", .x = 20, .y = 10, .rssi = -80}));
}

TEST_F(Detection, LeavesAWardInPlaceAndReportsTheLevelWithoutAMapImage) {
    const auto site = siteOf({ward(1, "a"), ward(2, "b")});
    detection_.indexDapoWards(site.buildings);
    hearOften(5, {{"a", -70}, {"b", -70}});
    const auto detected = detection_.handle({5000, {{"a", -70}, {"b", -70}}});
    const auto sector = describeSector(site, {});
    EXPECT_EQ(detected.levelsWithoutMap, (Ids{3, 3})) << "once for each ward";
    EXPECT_EQ(sector.levelsWithoutMap, (Ids{3, 3}));
    EXPECT_EQ(detected.wards[0].x, 5);
    EXPECT_EQ(sector.info.buildings[0].levels[0].wards[0].x, 5);
    EXPECT_FALSE(sector.info.buildings[0].levels[0].mapImage);
}

}  // namespace
}  // namespace oska
