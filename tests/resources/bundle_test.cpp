#include "oska/resources/bundle.h"

#include <gtest/gtest.h>

#include "oska/json/description.h"
#include "oska/json/json.h"

namespace oska {
namespace {

constexpr std::string_view MAP_IMAGE =
    R"({"url":"https://m/1.png","image_width":1600,"image_height":1200.5,"scale_x":0.5,"scale_y":-2,"offset_x":0,"offset_y":1e-05})";

// The two kinds share everything but their wards.
std::string bundleWith(std::string_view wards, std::string_view mapImage = MAP_IMAGE) {
    return R"({"id":12,"name":"Museum","operating_system":"iOS","buildings":[{"id":3,"name":"East","levels":[)"
           R"({"id":31,"name":"1F","map_image":)" +
           std::string(mapImage) + R"(,"wards":[)" + std::string(wards) + "]}]}]}";
}

constexpr std::string_view DAPO_WARD =
    R"({"id":1,"name":"lobby-a","x":10,"y":-20,"rssi":-70,"contents":[{"number":2,"description":"Café","url":"not a url"}]})";
constexpr std::string_view PELIO_WARD = R"({"id":1,"name":"lobby-a","x":10,"y":-20,"rssi":-70.5})";

template <class Bundle>
std::string outcomeOf(std::string_view text) {
    const auto bundle = json::decode<Bundle>(text);
    return bundle ? "decoded" : bundle.error().message();
}

std::string edited(std::string_view ward, std::string_view part, std::string_view replacement) {
    std::string text(ward);
    return text.replace(text.find(part), part.size(), replacement);
}

TEST(DapoBundle, DecodesAndEncodesWhole) {
    const std::string text =
        bundleWith(std::string(DAPO_WARD) + R"(,{"id":2,"name":"","rssi":-80,"contents":[]})");
    const DapoLevelMapImage image{"https://m/1.png", 1600, 1200.5, 0.5, -2, 0, 0.00001};
    const DapoLevelWard lobby{1, "lobby-a", 10, -20, -70, {DapoLevelWardContent{2, "Café", "not a url"}}};
    const DapoLevelWard nowhere{2, "", {}, {}, -80, {}};
    const DapoBundle bundle{
        12, "Museum", "iOS", {DapoBuilding{3, "East", {DapoLevel{31, "1F", image, {lobby, nowhere}}}}}};

    const auto decoded = json::decode<DapoBundle>(text);
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(*decoded, bundle);
    EXPECT_EQ(*json::encode(bundle, json::Slashes::plain), text);
}

TEST(PelioBundle, DecodesAndEncodesWhole) {
    const std::string text = bundleWith(PELIO_WARD);
    const PelioLevelMapImage image{"https://m/1.png", 1600, 1200.5, 0.5, -2, 0, 0.00001};
    const PelioLevelWard lobby{1, "lobby-a", 10, -20, -70.5};
    const PelioBundle bundle{
        12, "Museum", "iOS", {PelioBuilding{3, "East", {PelioLevel{31, "1F", image, {lobby}}}}}};

    const auto decoded = json::decode<PelioBundle>(text);
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(*decoded, bundle);
    EXPECT_EQ(*json::encode(bundle, json::Slashes::plain), text);
}

TEST(BundleKinds, DifferInTheirWards) {
    struct Case {
        std::string part, replacement, dapo, pelio;
    };
    const std::string ward = R"({"id":1,"name":"a","x":10,"y":-20,"rssi":-70,"contents":[]})";
    const std::string place = "buildings[0].levels[0].wards[1].";
    const Case cases[] = {
        {"\"contents\":[]", "\"contents\":[1]", place + "contents[0]: expected an object, found 1",
         "decoded"},
        {",\"contents\":[]", "", place + "contents: missing", "decoded"},
        {"-70", "-70.5", place + "rssi: expected an integer, found -70.5", "decoded"},
        {"-70", "-7e1", "decoded", "decoded"},
        {"-70", "\"-70\"", place + "rssi: expected an integer, found \"-70\"",
         place + "rssi: expected a number, found \"-70\""},
        {"\"x\":10", "\"x\":null", "decoded", place + "x: expected an integer, found null"},
        {"\"x\":10,", "", "decoded", place + "x: missing"},
        {"\"x\":10", "\"x\":1.5", place + "x: expected an integer, found 1.5",
         place + "x: expected an integer, found 1.5"},
        {"\"y\":-20", "\"Y\":-20", "decoded", place + "y: missing"},
    };
    for (const Case& c : cases) {
        const std::string text = bundleWith(ward + "," + edited(ward, c.part, c.replacement));
        EXPECT_EQ(outcomeOf<DapoBundle>(text), c.dapo) << text;
        EXPECT_EQ(outcomeOf<PelioBundle>(text), c.pelio) << text;
    }
}

template <class Bundle>
class EitherBundle : public testing::Test {};
using Kinds = testing::Types<DapoBundle, PelioBundle>;
TYPED_TEST_SUITE(EitherBundle, Kinds);

TYPED_TEST(EitherBundle, NeedsTheMapImageOfEachLevel) {
    EXPECT_EQ(outcomeOf<TypeParam>(bundleWith("", "null")),
              "buildings[0].levels[0].map_image: expected an object, found null");
    EXPECT_EQ(outcomeOf<TypeParam>(edited(bundleWith(""), "map_image", "mapImage")),
              "buildings[0].levels[0].map_image: missing");
}

TYPED_TEST(EitherBundle, MayBeEmptyAndKeepsOrderAndDuplicates) {
    EXPECT_EQ(outcomeOf<TypeParam>(R"({"id":1,"name":"","operating_system":"","buildings":[]})"), "decoded");
    const std::string wards = R"({"id":2,"name":"b","x":0,"y":0,"rssi":0,"contents":[]},)"
                              R"({"id":1,"name":"a","x":0,"y":0,"rssi":0,"contents":[]},)"
                              R"({"id":2,"name":"b","x":0,"y":0,"rssi":0,"contents":[]})";
    const auto bundle = json::decode<TypeParam>(bundleWith(wards));
    ASSERT_TRUE(bundle) << bundle.error().message();
    std::string names;
    for (const auto& ward : bundle->buildings[0].levels[0].wards) names += ward.name;
    EXPECT_EQ(names, "bab");
}

TEST(BundleOutput, IgnoresKeysItDoesNotKnow) {
    const auto output = json::decode<BundleOutput>(
        R"({"expires":"2026","url":"https://b/1","version_id":"v1","extra":{"a":[]}})");
    ASSERT_TRUE(output) << output.error().message();
    EXPECT_EQ(*output, (BundleOutput{"https://b/1", "v1"}));
    EXPECT_EQ(outcomeOf<BundleOutput>(R"({"url":"https://b/1"})"), "version_id: missing");
}

TEST(BundleDescription, NamesTheKind) {
    const std::string fields = R"((id: 0, name: "", operating_system: "", buildings: []))";
    EXPECT_EQ(describe(DapoBundle{}), "DapoBundle" + fields);
    EXPECT_EQ(describe(PelioBundle{}), "PelioBundle" + fields);
    EXPECT_TRUE(describe(DapoLevel{}).starts_with("DapoLevel("));
    EXPECT_TRUE(describe(PelioBuilding{}).starts_with("PelioBuilding("));
}

}  // namespace
}  // namespace oska
