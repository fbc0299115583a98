#include "oska/pelio/pelio_ward_selection.h"

#include <gtest/gtest.h>

#include <cmath>

namespace oska {
namespace {

using Strengths = platform::ReceivedForce::Strengths;

PelioLevelWard ward(std::int64_t id, std::string name, double rssi) {
    return {.id = id, .name = std::move(name), .x = id, .y = 10 * id, .rssi = rssi};
}

PelioBundle bundleWith(std::vector<PelioLevelWard> wards) {
    PelioBundle bundle{.id = 1, .name = "site"};
    bundle.buildings.push_back({.id = 2, .name = "building"});
    bundle.buildings[0].levels.push_back(
        {.id = 3, .name = "level", .map_image = {}, .wards = std::move(wards)});
    auto& map = bundle.buildings[0].levels[0].map_image;
    map.scale_x = map.scale_y = 0.5;
    map.offset_x = map.offset_y = 10;
    return bundle;
}

/// The id of the ward reported for each sample; -1 for none.
class Walk {
public:
    explicit Walk(std::vector<PelioLevelWard> wards) : selection_(bundleWith(std::move(wards))) {}

    std::int64_t at(std::int64_t time, Strengths rfs) {
        const auto* ward = selection_.handle({time, std::move(rfs)});
        return ward ? ward->id : -1;
    }

    void reset() { selection_.reset(); }

private:
    PelioWardSelection selection_;
};

struct RuleCase {
    std::string name;
    std::vector<PelioLevelWard> wards;
    Strengths heard;
    std::int64_t reported;
};

class SelectionRule : public testing::TestWithParam<RuleCase> {};

TEST_P(SelectionRule, PicksTheWard) {
    Walk walk(GetParam().wards);
    EXPECT_EQ(walk.at(0, GetParam().heard), GetParam().reported);
}

INSTANTIATE_TEST_SUITE_P(
    Table, SelectionRule,
    testing::Values(
        RuleCase{"ExactlyAtTheThreshold", {ward(1, "a", -70.5)}, {{"a", -70.5}}, 1},
        RuleCase{"JustBelowTheThreshold", {ward(1, "a", -70.5)}, {{"a", -70.6}}, -1},
        RuleCase{"NanNeverQualifies", {ward(1, "a", -70)}, {{"a", std::nan("")}}, -1},
        RuleCase{"StrongestOfTwo", {ward(1, "a", -90), ward(2, "b", -90)}, {{"a", -80}, {"b", -70}}, 2},
        RuleCase{"StrongerBelowItsOwnThreshold",
                 {ward(1, "a", -90), ward(2, "b", -50)},
                 {{"a", -80}, {"b", -70}},
                 1},
        RuleCase{"EqualReadingsHigherThreshold", {ward(1, "a", -80), ward(2, "A ", -70)}, {{"a", -65}}, 2},
        RuleCase{
            "EqualThresholdsSmallerId", {ward(7, "a", -80), ward(2, "b", -80)}, {{"a", -65}, {"b", -65}}, 2},
        RuleCase{"UnknownNames", {ward(1, "a", -80)}, {{"b", -30}}, -1}),
    [](const auto& test) { return test.param.name; });

TEST(PelioWardSelection, AStrongReadingCountsUntilItLeavesTheWindow) {
    Walk walk({ward(1, "a", -90), ward(2, "b", -90)});
    EXPECT_EQ(walk.at(0, {{"a", -60}}), 1);
    for (const int time : {1000, 2000, 3000, 4000, 5000}) EXPECT_EQ(walk.at(time, {{"b", -70}}), 1);
    EXPECT_EQ(walk.at(5001, {}), 2);
}

TEST(PelioWardSelection, HoldsAWardForFiveSecondsSinceTheLastChange) {
    Walk walk({ward(1, "a", -90), ward(2, "b", -90)});
    EXPECT_EQ(walk.at(0, {{"a", -80}}), 1);
    EXPECT_EQ(walk.at(1000, {{"b", -50}}), 1);
    EXPECT_EQ(walk.at(4999, {{"b", -50}}), 1);
    EXPECT_EQ(walk.at(5000, {{"b", -50}}), 2);
    EXPECT_EQ(walk.at(9999, {{"a", -40}}), 2);
    EXPECT_EQ(walk.at(10'000, {{"a", -40}}), 1);
}

TEST(PelioWardSelection, WardsOfOneNameAreTwoWhenTheirIdsDiffer) {
    Walk walk({ward(1, "a", -90), ward(2, "a", -60)});
    EXPECT_EQ(walk.at(0, {{"a", -80}}), 1);
    EXPECT_EQ(walk.at(4999, {{"a", -50}}), 1) << "held";
    EXPECT_EQ(walk.at(5000, {{"a", -50}}), 2);
}

TEST(PelioWardSelection, OfWardsEqualInAllTheFirstInTheBundleIsReported) {
    auto bundle = bundleWith({ward(1, "a", -90)});
    bundle.buildings.push_back(bundle.buildings[0]);
    bundle.buildings[1].id = 9;
    PelioWardSelection selection(bundle);
    EXPECT_EQ(selection.handle({0, {{"a", -60}}})->buildingId, 2);
}

TEST(PelioWardSelection, ASampleWithoutAnythingReportsNothingAndKeepsTheHold) {
    Walk walk({ward(1, "a", -90), ward(2, "b", -90)});
    EXPECT_EQ(walk.at(0, {{"a", -80}}), 1);
    EXPECT_EQ(walk.at(20'000, {}), -1);
    EXPECT_EQ(walk.at(4000, {{"b", -50}}), 1);  // a clock set back: 4 s since the change
}

TEST(PelioWardSelection, AResetForgetsSamplesAndWard) {
    Walk walk({ward(1, "a", -90), ward(2, "b", -90)});
    EXPECT_EQ(walk.at(0, {{"a", -40}}), 1);
    walk.reset();
    EXPECT_EQ(walk.at(1, {{"b", -80}}), 2);
}

TEST(PelioWardSelection, ReportsTheHeldWardWithTheSamplesOwnTime) {
    PelioWardSelection selection(bundleWith({ward(100, "a", -90)}));
    const auto* node = selection.handle({7, {{"a", -60}}});
    ASSERT_TRUE(node);
    const auto [result, hasMapImage] = selection.report(*node, 7);
    EXPECT_TRUE(hasMapImage);
    EXPECT_EQ(result.mobile_time, 7);
    EXPECT_EQ(result.building_name + result.level_name, "buildinglevel");
    EXPECT_EQ(result.x, 60.0);
    EXPECT_EQ(result.y, 510.0);
}

TEST(PelioWardSelection, OfLevelsThatShareAnIdTheLaterMapCounts) {
    auto bundle = bundleWith({ward(100, "a", -90)});
    bundle.buildings.push_back(bundle.buildings[0]);
    bundle.buildings[1].levels[0].map_image.offset_x = 1;
    const PelioWardSelection selection(bundle);
    EXPECT_EQ(selection.wardCount(), 2u);
    EXPECT_EQ(selection.maps().byLevelId().size(), 1u);
    EXPECT_EQ(selection.maps().convertWardCoordinate(3, 100, 0)->x, 51.0);
    EXPECT_FALSE(selection.maps().convertWardCoordinate(4, 100, 0));
}

}  // namespace
}  // namespace oska
