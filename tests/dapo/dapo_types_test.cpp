#include "oska/dapo/dapo_types.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "oska/json/json.h"

namespace oska {
namespace {

DapoWard ward() {
    const WardContents menu{1, "menu", *Url::parse("https://site/menu")};
    return {7, 10, "caf\u00e9", 1.5, -2, -80, -61, {menu, {2, "map", *Url::parse("https://site/map")}}};
}

DapoSectorInfo sector() {
    const DapoMapImage map{.building_id = 1, .level_id = 10, .url = "u", .scale_x = 2};
    return {12, "site", {{1, "main", {{10, "B1", map, {ward()}}, {11, "B2", std::nullopt, {}}}}}};
}

TEST(DapoRecords, HaveAJsonFormThatReadsBack) {
    EXPECT_EQ(
        *json::encode(ward()),
        R"({"id":7,"level_id":10,"name":"café","x":1.5,"y":-2,"rssi":-80,"detected_rssi":-61,"contents":[)"
        R"({"id":1,"name":"menu","url":"https:\/\/site\/menu"},)"
        R"({"id":2,"name":"map","url":"https:\/\/site\/map"}]})");
    EXPECT_EQ(*json::decode<DapoSectorInfo>(*json::encode(sector())), sector());
    EXPECT_EQ(*json::encode(DapoContents{{}}), R"({"wards":[]})");
    EXPECT_EQ(*json::encode(DapoLevelInfo{1, "B1", std::nullopt, {}}), R"({"id":1,"name":"B1","wards":[]})");
    EXPECT_FALSE(json::decode<DapoLevelInfo>(R"({"id":1,"name":"B1","mapImage":null,"wards":[]})")->mapImage);
    EXPECT_FALSE(json::decode<DapoLevelInfo>(R"({"id":1,"name":"B1","mapImage":{},"wards":[]})"));
    for (const std::string url : {R"("")", R"("http://[")", "5", "null"}) {
        const auto contents = json::decode<WardContents>(R"({"id":1,"name":"n","url":)" + url + "}");
        ASSERT_FALSE(contents) << url;
        EXPECT_EQ(contents.error().path, "url");
    }
}

TEST(DapoRecords, AreEqualWhenEveryFieldIsDownToTheLeaves) {
    const auto wardOf = [](DapoSectorInfo& s) -> DapoWard& { return s.buildings[0].levels[0].wards[0]; };
    const std::vector<std::function<void(DapoSectorInfo&)>> changes{
        [&](auto& s) { wardOf(s).x = std::nan(""); },
        [](auto& s) { s.buildings[0].levels[0].mapImage.reset(); },
        [&](auto& s) { wardOf(s).name = "cafe"; },
        [&](auto& s) { wardOf(s).contents.pop_back(); },
        [&](auto& s) { wardOf(s).contents[0].url = *Url::parse("https://site/Menu"); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        auto other = sector();
        changes[i](other);
        EXPECT_FALSE(sector() == other) << i;
        EXPECT_EQ(other == other, i != 0) << "NaN equals nothing";
    }
    auto equal = sector();
    wardOf(equal).name = "cafe\u0301";
    EXPECT_EQ(sector(), equal) << "canonically equivalent";
    EXPECT_FALSE(DapoContents{{ward()}} == DapoContents{});
}

}  // namespace
}  // namespace oska
