#include "oska/pelio/pelio_ward_selection.h"

#include <gtest/gtest.h>

#include <cmath>

#include "oska/json/json.h"

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

struct Step {
    std::int64_t time;
    Strengths heard;
    std::int64_t reported;  // the id of the ward; -1: none
};

struct Walk {
    const char* rule;
    std::vector<PelioLevelWard> wards;
    std::vector<Step> steps;
};

TEST(PelioWardSelection, ReportsTheStrongestWardOfTheWindowAndHoldsItForFiveSeconds) {
    const std::vector one{ward(1, "a", -70.5)};
    const std::vector two{ward(1, "a", -90), ward(2, "b", -90)};
    const std::vector unlike{ward(1, "a", -90), ward(2, "A ", -60)};
    const std::vector<Walk> walks{
        {"exactly at the threshold", one, {{0, {{"a", -70.5}}, 1}}},
        {"just below the threshold", one, {{0, {{"a", -70.6}}, -1}}},
        {"not a number", one, {{0, {{"a", std::nan("")}}, -1}}},
        {"unknown names", one, {{0, {{"b", -30}}, -1}}},
        {"strongest of two", two, {{0, {{"a", -80}, {"b", -70}}, 2}}},
        {"below its own threshold",
         {ward(1, "a", -90), ward(2, "b", -50)},
         {{0, {{"a", -80}, {"b", -70}}, 1}}},
        {"higher threshold", unlike, {{0, {{"a", -50}}, 2}}},
        {"smaller id", {ward(7, "a", -80), ward(2, "b", -80)}, {{0, {{"a", -65}, {"b", -65}}, 2}}},
        {"a reading counts for five seconds",
         two,
         {{0, {{"a", -60}}, 1}, {5000, {{"b", -70}}, 1}, {5001, {}, 2}}},
        {"a ward is held",
         two,
         {{0, {{"a", -80}}, 1},
          {4999, {{"b", -50}}, 1},
          {5000, {}, 2},
          {9999, {{"a", -40}}, 2},
          {10'000, {}, 1}}},
        {"wards of one name are two", unlike, {{0, {{"a", -80}}, 1}, {4999, {{"a", -50}}, 1}, {5000, {}, 2}}},
        {"a clock that was set back, 4 s since the change",
         two,
         {{0, {{"a", -80}}, 1}, {20'000, {}, -1}, {4000, {{"b", -50}}, 1}}},
    };
    for (const auto& [rule, wards, steps] : walks) {
        PelioWardSelection selection(bundleWith(wards));
        for (int round = 0; round < 2; ++round, selection.reset()) {  // a reset forgets samples and ward
            for (const auto& [time, heard, reported] : steps) {
                const auto* ward = selection.handle({time, heard});
                EXPECT_EQ(ward ? ward->id : -1, reported) << rule << ", at " << time << ", round " << round;
            }
        }
    }
}

TEST(PelioWardSelection, OfEqualWardsTheFirstCountsAndOfLevelsThatShareAnIdTheLaterMap) {
    auto bundle = bundleWith({ward(100, "a", -90)});
    bundle.buildings.push_back(bundle.buildings[0]);
    bundle.buildings[1].id = 9;
    bundle.buildings[1].levels[0].map_image.offset_x = 1;
    PelioWardSelection selection(bundle);
    EXPECT_EQ(selection.wardCount(), 2u);
    EXPECT_EQ(selection.maps().byLevelId().size(), 1u);
    const auto* node = selection.handle({7, {{"a", -60}}});
    ASSERT_TRUE(node);
    const auto [result, hasMapImage] = selection.report(*node, 7);
    EXPECT_TRUE(hasMapImage);
    const std::string text = R"({"mobile_time":7,"building_id":2,"building_name":"building","level_id":3,)"
                             R"("level_name":"level","x":51,"y":510})";
    EXPECT_EQ(*json::encode(result), text);
    EXPECT_EQ(*json::encode(*json::decode<PelioResult>(text)), text);
}

}  // namespace
}  // namespace oska
