#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/drawing/svg.h"
#include "tools/oska/drawing/walk_drawing.h"
#include "tools/oska/drawing/walk_trace.h"

namespace oska::tool_tests {
namespace {

using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

constexpr auto SITE = R"({"id":7,"name":"s","operating_system":"","buildings":[
    {"id":1,"name":"<\"&>","levels":[
        {"id":11,"name":"1F","map_image":{"url":"","image_width":620,"image_height":400,"scale_x":2,"scale_y":2,
         "offset_x":10,"offset_y":0},"wards":[{"id":1,"name":"door\u0007\u007f\uffff가","x":100,"y":100,"rssi":-70,"contents":[]},
                                              {"id":2,"name":"desk","x":200,"y":100,"rssi":-70,"contents":[]}]},
        {"id":12,"name":"2F","map_image":{"url":"","image_width":0,"image_height":0,"scale_x":1,"scale_y":1,
         "offset_x":0,"offset_y":0},"wards":[{"id":3,"name":"roof","x":5,"y":5,"rssi":-70,"contents":[]}]}]}]})";

TEST(WalkDrawing, ShowsEachLevelWithItsWardsAndWhatHappenedThere) {
    const auto site = *tool::parseSite("p.json", SITE, OskaService::pelio);
    tool::WalkTracer tracer(site);
    const auto note = [&](int at, const std::string& more) {
        tracer.note(R"({"at":)" + std::to_string(at) + R"(,"event":)" + more + "}");
    };
    const auto result = [&](int at, int level, const std::string& place) {
        note(at,
             R"("onPelioResult","result":{"mobile_time":1,"building_id":1,"building_name":"b","level_id":)" +
                 std::to_string(level) + R"(,"level_name":"l",)" + place + "}");
    };
    const std::string desk =
        R"("dapoWards":[{"id":1,"level_id":11,"name":"desk","x":410,"y":200,"rssi":-1,"detected_rssi":-1,"contents":[]}])";
    for (const int at : {0, 4000}) result(at, 11, R"("x":210,"y":200)");
    for (const int at : {3000, 6000}) note(at, R"("onDapoSelectionChanged",)" + desk);
    note(7000, R"("onClick",)" + desk);
    for (const int at : {5000, 9000}) result(at, 11, R"("x":410,"y":200)");
    result(9500, 12, R"("x":5,"y":5)");
    result(11000, 99, R"("x":5,"y":5)");  // no such level
    note(12000, R"("visibility","visible":true)");
    const auto svg = tool::drawWalk(site, tracer.trace(), OskaService::pelio);
    // A panel of 620 pixels shows the image of 620 without a change of scale.
    for (const auto* const part :
         {R"(<circle cx="230" cy="322")", "&lt;&quot;&amp;&gt; · 1F", "&lt;&quot;&amp;&gt; · 2F",
          "door\ufffd\ufffd\ufffd가", "desk", "roof", ">5 s<", ">4.5 s<", "3 on 2F", ">1-2<", "first at 3 s",
          "Pelio: 3 positions in 12 s"}) {
        EXPECT_THAT(svg, HasSubstr(part));
    }
    EXPECT_EQ(tool::svgNumber(-0.04) + tool::svgNumber(-12.26) + tool::svgNumber(7.05), "0-12.37.1");
    const tool::WalkTrace beyond{.stops = {{0, {1e300, 0}, 0, 1}, {0, {210, 200}, 1, 2}}};
    EXPECT_THAT(tool::drawWalk(site, beyond, OskaService::pelio),
                AllOf(Not(HasSubstr(">1<")), HasSubstr(">2<")));
    EXPECT_THAT(tool::drawWalk({}, {}, OskaService::dapo), HasSubstr("Dapo: 0 deliveries in 0 s"));
}

TEST(ReplaySvg, DrawsTheWalkAndPrintsTheEventsAllTheSame) {
    const Folder folder;
    const std::string site = OSKA_EXAMPLES "/riverside/";
    const auto drawing = folder.file("w.svg", "old");
    const auto walk = site + "walks/library_and_lunch.jsonl";
    std::vector<std::string> arguments{"replay", "dapo",     "--recording",
                                       walk,     "--bundle", site + "12/dapo.json"};
    const auto plain = runOska(arguments);
    arguments.insert(arguments.end(), {"--svg", drawing});
    EXPECT_TRUE(runOska(arguments).out == plain.out);
    EXPECT_THAT(contentOf(drawing), AllOf(HasSubstr("cafe-counter"), EndsWith("</svg>\n")));
    arguments.back() += "/none.svg";
    EXPECT_EQ(runOska(arguments).err, drawing + "/none.svg: Not a directory\n");
}

TEST(ReplaySvg, NeverDrawsOverItsInput) {
    const Folder folder;
    const auto site = folder.file("site.json", bundleDocument(levelDocument(5, "")));
    const auto walk = folder.file("walk.jsonl", R"({"mobile_time":1,"rfs":{}})");
    std::filesystem::create_symlink(walk, folder.path() + "/symlink");
    std::filesystem::create_hard_link(site, folder.path() + "/hardlink");
    for (const auto* const name : {"/site.json", "/./walk.jsonl", "/symlink", "/hardlink"}) {
        const auto output = folder.path() + name;
        const auto before = contentOf(output);
        const auto ended =
            runOska({"replay", "pelio", "--bundle", site, "--recording", walk, "--svg", output});
        EXPECT_EQ(std::tuple(ended.status, ended.out), std::tuple(2, ""));
        EXPECT_THAT(ended.err, HasSubstr("--svg " + output + " is the file of --"));
        EXPECT_EQ(contentOf(output), before);
    }
}

}  // namespace
}  // namespace oska::tool_tests
