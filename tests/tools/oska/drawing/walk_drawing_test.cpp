#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/drawing/svg.h"
#include "tools/oska/drawing/walk_drawing.h"
#include "tools/oska/drawing/walk_trace.h"

namespace oska::tool_tests {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr auto SITE = R"({"id":7,"name":"s","operating_system":"","buildings":[
    {"id":1,"name":"Tower <&>","levels":[
        {"id":11,"name":"1F","map_image":{"url":"","image_width":620,"image_height":400,"scale_x":2,"scale_y":2,
         "offset_x":10,"offset_y":0},"wards":[{"id":1,"name":"door\u0007","x":100,"y":100,"rssi":-70,"contents":[]},
                                              {"id":2,"name":"desk","x":200,"y":100,"rssi":-70,"contents":[]}]},
        {"id":12,"name":"2F","map_image":{"url":"","image_width":0,"image_height":0,"scale_x":1,"scale_y":1,
         "offset_x":0,"offset_y":0},"wards":[{"id":3,"name":"roof","x":5,"y":5,"rssi":-70,"contents":[]}]}]}]})";

TEST(Svg, WritesTenthsAndEscapesForeignText) {
    EXPECT_EQ(tool::svgNumber(-0.04), "0");
    EXPECT_EQ(tool::svgNumber(-12.26), "-12.3");
    EXPECT_EQ(tool::svgNumber(7.05), "7.1");
    EXPECT_EQ(tool::svgText("a<b>\"&\n\x7f가\xEF\xBF\xBF"), "a&lt;b&gt;&quot;&amp;\ufffd\ufffd가\ufffd");
}

TEST(WalkTrace, JoinsWhatStaysInOnePlaceAndNumbersDeliveries) {
    const auto site = *tool::parseSite("d.json", SITE, OskaService::dapo);
    tool::WalkTracer tracer(site);
    const auto result = [&](int at, int level, int x) {
        tracer.note(R"({"at":)" + std::to_string(at) +
                    R"(,"event":"onPelioResult","result":{"mobile_time":1,)" +
                    R"("building_id":1,"building_name":"b","level_id":)" + std::to_string(level) +
                    R"(,"level_name":"l","x":)" + std::to_string(x) + R"(,"y":1}})");
    };
    result(0, 11, 5);
    result(500, 11, 5);
    result(1000, 12, 5);
    result(1500, 99, 5);  // no such level
    tracer.note(R"({"at":2000,"event":"visibility","visible":true})");
    const auto ward =
        std::string(R"([{"id":1,"level_id":12,"name":"roof","x":5,"y":5,"rssi":-1,"detected_rssi":-1,)"
                    R"("contents":[]}])");
    tracer.note(R"({"at":2500,"event":"onDapoSelectionChanged","dapoWards":)" + ward + "}");
    tracer.note(R"({"at":2600,"event":"onClick","dapoWards":)" + ward + "}");
    tracer.note(R"({"at":3000,"event":"onDapoSelectionChanged","dapoWards":)" + ward + "}");
    const auto& trace = tracer.trace();
    ASSERT_EQ(trace.stops.size(), 2U);
    EXPECT_EQ(trace.stops[0].until, 500);
    EXPECT_EQ(trace.stops[1].level, 1U);
    ASSERT_EQ(trace.detections.size(), 2U);
    EXPECT_EQ(trace.detections[1].number, 2);
    EXPECT_EQ(trace.detections[1].at, 3000);
}

TEST(WalkDrawing, ShowsEachLevelWithItsWardsAndWhatHappenedThere) {
    const auto site = *tool::parseSite("p.json", SITE, OskaService::pelio);
    const tool::WalkTrace trace{
        .stops = {{0, {210, 200}, 0, 4000}, {0, {410, 200}, 5000, 9000}, {1, {5, 5}, 9500, 12000}},
        .detections = {{0, {410, 200}, 1, 3000}, {0, {410, 200}, 2, 6000}},
        .deliveries = 2,
        .end = 12000};
    const auto svg = tool::drawWalk(site, trace, OskaService::pelio);
    // A panel of 620 pixels shows the image of 620 without a change of scale.
    EXPECT_THAT(svg, HasSubstr(R"(<circle cx="230" cy="322")"));
    for (const auto* const text :
         {"Tower &lt;&amp;&gt; · 1F", "Tower &lt;&amp;&gt; · 2F", "door\ufffd", "desk", "roof", ">5 s<",
          ">4.5 s<", "3 on 2F", ">1-2<", "first at 3 s", "Pelio: 3 positions in 12 s"}) {
        EXPECT_THAT(svg, HasSubstr(text));
    }
    const tool::WalkTrace beyond{.stops = {{0, {1e300, 0}, 0, 1}, {0, {210, 200}, 1, 2}}};
    const auto withoutTheFirst = tool::drawWalk(site, beyond, OskaService::pelio);
    EXPECT_THAT(withoutTheFirst, Not(HasSubstr(">1<")));
    EXPECT_THAT(withoutTheFirst, HasSubstr(">2<"));
    EXPECT_THAT(tool::drawWalk({}, {}, OskaService::dapo), HasSubstr("Dapo: 0 deliveries in 0 s"));
}

TEST(ReplaySvg, DrawsTheWalkAndPrintsTheEventsAllTheSame) {
    const Folder folder;
    const std::string site = OSKA_EXAMPLES "/riverside/";
    std::vector<std::string> arguments{"replay",      "dapo",
                                       "--bundle",    site + "12/dapo.json",
                                       "--recording", site + "walks/library_and_lunch.jsonl"};
    const auto plain = runOska(arguments);
    const auto drawing = folder.file("w.svg", "old");
    arguments.insert(arguments.end(), {"--svg", drawing});
    const auto drawn = runOska(arguments);
    EXPECT_EQ(drawn.status, 0);
    EXPECT_TRUE(drawn.out == plain.out);
    const auto first = contentOf(drawing);
    EXPECT_THAT(first, HasSubstr("cafe-counter"));
    EXPECT_EQ(first.rfind("</svg>\n"), first.size() - 7);
    runOska(arguments);
    EXPECT_TRUE(contentOf(drawing) == first);

    arguments.back() += "/none.svg";
    const auto failed = runOska(arguments);
    EXPECT_EQ(failed.status, 2);
    EXPECT_EQ(failed.err, drawing + "/none.svg: Not a directory\n");
}

TEST(ReplaySvg, NeverDrawsOverItsInput) {
    const Folder folder;
    const auto site = folder.file("site.json", contentOf(OSKA_EXAMPLES "/corner_shop/7/pelio.json"));
    const auto walk = folder.file("walk.jsonl", R"({"mobile_time":1,"rfs":{}})");
    const auto symlink = folder.path() + "/symlink";
    const auto hardlink = folder.path() + "/hardlink";
    std::filesystem::create_symlink(walk, symlink);
    std::filesystem::create_hard_link(site, hardlink);
    for (const auto& output : {site, folder.path() + "/./walk.jsonl", symlink, hardlink}) {
        const auto before = contentOf(output);
        const auto ended =
            runOska({"replay", "pelio", "--bundle", site, "--recording", walk, "--svg", output});
        EXPECT_EQ(ended.status, 2) << output;
        EXPECT_EQ(ended.out, "");
        EXPECT_THAT(ended.err, HasSubstr("--svg " + output + " is the file of --"));
        EXPECT_EQ(contentOf(output), before);
    }
}

}  // namespace
}  // namespace oska::tool_tests
