#include "oska/resources/bundle.h"

#include <gtest/gtest.h>

#include "oska/json/description.h"
#include "oska/json/json.h"

namespace oska {
namespace {

constexpr std::string_view MAP_IMAGE =
    R"({"url":"https://m/1.png","image_width":1600,"image_height":1200.5,"scale_x":0.5,"scale_y":-2,"offset_x":0,"offset_y":1e-05})";

// The two kinds share everything but their wards.
std::string bundleWith(std::string_view wards) {
    return R"({"id":12,"name":"Museum","operating_system":"iOS","buildings":[{"id":3,"name":"East","levels":[)"
           R"({"id":31,"name":"1F","map_image":)" +
           std::string(MAP_IMAGE) + R"(,"wards":[)" + std::string(wards) + "]}]}]}";
}

template <class Ward>
void expectWhole(std::string_view text, const std::vector<Ward>& wards) {
    const LevelMapImage image{"https://m/1.png", 1600, 1200.5, 0.5, -2, 0, 0.00001};
    const Bundle<Ward> bundle{
        12, "Museum", "iOS", {Building<Ward>{3, "East", {Level<Ward>{31, "1F", image, wards}}}}};
    const auto decoded = json::decode<Bundle<Ward>>(bundleWith(text));
    ASSERT_TRUE(decoded) << decoded.error().message();
    EXPECT_EQ(*decoded, bundle);
    EXPECT_EQ(*json::encode(bundle, json::Slashes::plain), bundleWith(text));
}

TEST(Bundle, IsDecodedAndEncodedWholeInItsOrder) {
    const DapoLevelWard lobby{1, "lobby-a", 10, -20, -70, {DapoLevelWardContent{2, "Café", "not a url"}}};
    const DapoLevelWard nowhere{2, "", {}, {}, -80, {}};
    expectWhole<DapoLevelWard>(
        R"({"id":2,"name":"","rssi":-80,"contents":[]},)"
        R"({"id":1,"name":"lobby-a","x":10,"y":-20,"rssi":-70,"contents":[{"number":2,"description":"Café","url":"not a url"}]},)"
        R"({"id":2,"name":"","rssi":-80,"contents":[]})",
        {nowhere, lobby, nowhere});
    expectWhole<PelioLevelWard>(R"({"id":1,"name":"lobby-a","x":10,"y":-20,"rssi":-70.5})",
                                {{1, "lobby-a", 10, -20, -70.5}});
}

template <class Kind>
std::string outcomeOf(std::string_view text) {
    const auto bundle = json::decode<Kind>(text);
    return bundle ? "decoded" : bundle.error().message();
}

TEST(BundleKinds, DifferInTheirWards) {
    struct Case {
        std::string part, replacement, dapo, pelio;
    };
    const std::string ward = R"({"id":1,"name":"a","x":10,"y":-20,"rssi":-70,"contents":[]})";
    const std::string level = "buildings[0].levels[0].";
    const std::string place = level + "wards[1].";
    const Case cases[] = {
        {"\"contents\":[]", "\"contents\":[1]", place + "contents[0]: expected an object, found 1",
         "decoded"},
        {",\"contents\":[]", "", place + "contents: missing", "decoded"},
        {"-70", "-70.5", place + "rssi: expected an integer, found -70.5", "decoded"},
        {"-70", "-7e1", "decoded", "decoded"},
        {"-70", "\"-70\"", place + "rssi: expected an integer, found \"-70\"",
         place + "rssi: expected a number, found \"-70\""},
        {"\"x\":10", "\"x\":null", "decoded", place + "x: expected an integer, found null"},
        {"\"y\":-20", "\"Y\":-20", "decoded", place + "y: missing"},
        {"map_image", "mapImage", level + "map_image: missing", level + "map_image: missing"},
    };
    for (const Case& c : cases) {
        auto text = bundleWith(ward + "," + ward);
        text.replace(text.rfind(c.part), c.part.size(), c.replacement);
        EXPECT_EQ(outcomeOf<DapoBundle>(text), c.dapo) << text;
        EXPECT_EQ(outcomeOf<PelioBundle>(text), c.pelio) << text;
    }
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
