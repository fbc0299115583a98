#include "oska/dapo/dapo_types.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

#include "oska/json/json.h"

namespace oska {
namespace {
namespace json = json;

WardContents link(std::int64_t id, const std::string& url = "https://site/menu") {
    return {id, "menu", *Url::parse(url)};
}

DapoWard ward() {
    return {.id = 7,
            .level_id = 10,
            .name = "caf\u00e9",
            .x = 1.5,
            .y = -2,
            .rssi = -80,
            .detected_rssi = -61,
            .contents = {link(1), link(2)}};
}

DapoSectorInfo sector() {
    DapoLevelInfo level{
        10, "B1", DapoMapImage{.building_id = 1, .level_id = 10, .url = "u", .scale_x = 2}, {ward()}};
    return {12, "site", {{1, "main", {level, {11, "B2", std::nullopt, {}}}}}};
}

template <class Record>
std::string encoded(const Record& record) {
    const auto text = json::encode(record);
    return text ? *text : text.error().message();
}

TEST(DapoRecords, HaveAJsonFormThatReadsBack) {
    EXPECT_EQ(
        encoded(ward()),
        R"({"id":7,"level_id":10,"name":"café","x":1.5,"y":-2,"rssi":-80,"detected_rssi":-61,"contents":[)"
        R"({"id":1,"name":"menu","url":"https:\/\/site\/menu"},)"
        R"({"id":2,"name":"menu","url":"https:\/\/site\/menu"}]})");
    const auto back = json::decode<DapoSectorInfo>(encoded(sector()));
    ASSERT_TRUE(back);
    EXPECT_EQ(*back, sector());
}

TEST(DapoRecords, LeaveOutAMapImageThatThereIsNot) {
    EXPECT_EQ(encoded(DapoLevelInfo{1, "B1", std::nullopt, {}}), R"({"id":1,"name":"B1","wards":[]})");
    for (const auto* text :
         {R"({"id":1,"name":"B1","wards":[]})", R"({"id":1,"name":"B1","mapImage":null,"wards":[]})",
          R"({"id":1,"name":"B1","map_image":{"url":5},"wards":[]})"}) {
        const auto level = json::decode<DapoLevelInfo>(text);
        ASSERT_TRUE(level) << text;
        EXPECT_FALSE(level->mapImage);
    }
    EXPECT_FALSE(json::decode<DapoLevelInfo>(R"({"id":1,"name":"B1","mapImage":{},"wards":[]})"));
}

TEST(DapoRecords, DoNotDecodeWhatIsNoUrl) {
    EXPECT_TRUE(json::decode<WardContents>(R"({"id":1,"name":"n","url":"a/b"})"));
    for (const auto* url : {R"("")", R"("http://[")", "5", "null"}) {
        const auto contents =
            json::decode<WardContents>(R"({"id":1,"name":"n","url":)" + std::string(url) + "}");
        ASSERT_FALSE(contents) << url;
        EXPECT_EQ(contents.error().path, "url");
    }
}

TEST(DapoRecords, AreEqualWhenEveryFieldIs) {
    EXPECT_EQ(ward(), ward());
    const std::vector<std::function<void(DapoWard&)>> changes{
        [](DapoWard& w) { w.id = 8; },
        [](DapoWard& w) { w.level_id = 8; },
        [](DapoWard& w) { w.name = "cafe"; },
        [](DapoWard& w) { w.x = 1.25; },
        [](DapoWard& w) { w.y = 2; },
        [](DapoWard& w) { w.rssi = -81; },
        [](DapoWard& w) { w.detected_rssi = -62; },
        [](DapoWard& w) { std::swap(w.contents[0], w.contents[1]); },
        [](DapoWard& w) { w.contents.pop_back(); },
        [](DapoWard& w) { w.contents[1] = link(2, "https://site/Menu"); },
        [](DapoWard& w) { w.x = std::nan(""); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        auto other = ward();
        changes[i](other);
        EXPECT_FALSE(ward() == other) << i;
    }
}

TEST(DapoRecords, CompareTextsCanonicallyAndNumbersAsIeeeHasIt) {
    auto other = ward();
    other.name = "cafe\u0301";
    EXPECT_EQ(ward(), other);
    other.x = std::nan("");
    EXPECT_FALSE(other == other);
    auto zero = ward();
    auto negativeZero = ward();
    zero.y = 0.0;
    negativeZero.y = -0.0;
    EXPECT_EQ(zero, negativeZero);
}

TEST(DapoRecords, CompareTreesToTheLeavesAndMissingWithPresent) {
    const std::vector<std::function<void(DapoSectorInfo&)>> changes{
        [](auto& s) { s.name = "other"; },
        [](auto& s) { s.buildings[0].name = "other"; },
        [](auto& s) { s.buildings[0].levels[0].wards[0].contents[0].name = "other"; },
        [](auto& s) { s.buildings[0].levels[0].mapImage.reset(); },
        [](auto& s) { s.buildings[0].levels[0].mapImage->scale_x = 3; },
        [](auto& s) { s.buildings[0].levels[1].mapImage.emplace(); },
    };
    for (std::size_t i = 0; i < changes.size(); ++i) {
        auto other = sector();
        changes[i](other);
        EXPECT_FALSE(sector() == other) << i;
    }
    EXPECT_FALSE(DapoContents{{ward()}} == DapoContents{});
}

TEST(DapoCodes, ConvertFromRawValues) {
    EXPECT_EQ(serviceErrorCode(3), DapoErrorCode::GENERATOR_FAIL);
    EXPECT_EQ(serviceErrorCode(-1), DapoErrorCode::UNKNOWN);
    EXPECT_FALSE(serviceErrorCode(4));
    EXPECT_EQ(serviceInitErrorCode(1), DapoInitErrorCode::RESOURCE_FAIL);
    EXPECT_FALSE(serviceInitErrorCode(3));
    EXPECT_FALSE(serviceErrorCode((std::int64_t{1} << 32) + 1));
    EXPECT_FALSE(serviceInitErrorCode((std::int64_t{1} << 32) + 1));
}

}  // namespace
}  // namespace oska
