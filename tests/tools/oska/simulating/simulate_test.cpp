#include <gtest/gtest.h>

#include "tests/tools/oska/commands/oska_program.h"

namespace oska::tool_tests {
namespace {

/// Two levels in one building and one in another, a ward on each, all at their origins, and one nowhere.
std::string siteDocument() {
    const auto level = [](int id, const std::string& ward, const std::string& more = "") {
        return levelDocument(
            id, R"({"id":1,"name":)" + ward + R"(,"x":0,"y":0,"rssi":-70,"contents":[]})" + more);
    };
    return R"({"id":7,"name":"s","operating_system":"","buildings":[{"id":1,"name":"Tower","levels":[)" +
           level(11, R"("low")", R"(,{"id":9,"name":"lost","y":3,"rssi":-70,"contents":[]})") + "," +
           level(12, R"("high")") + R"(]},{"id":2,"name":"Annex","levels":[)" + level(21, R"("far")") +
           "]}]}";
}

// A ward hangs 1.5 m above the phone: "low" is 2.5 m away, "high" sqrt(4 + 4.5 * 4.5) m and behind a floor,
// "far" 10 m and behind a wall; half a storey counts as a floor.
TEST(Simulate, FollowsDistanceFloorsAndWalls) {
    const Folder folder;
    const auto bundle = folder.file("d.json", siteDocument());
    const std::pair<std::string, std::string> cases[]{
        {"", R"("high":-68.8,"low":-43)"},  // a building without a place is out of earshot
        {R"("buildings":[{"id":2,"x":1200,"y":0,"height":-1.5}],)", R"("far":-85,"high":-68.8,"low":-43)"}};
    for (const auto& [buildings, heard] : cases) {
        const auto route = "{" + buildings + R"("radio":{"strength_at_1m":-35,"exponent":2,"shadowing":0,
            "fading":0,"floor_loss":20,"wall_loss":10,"missed":0},"floor_height":3,"start_time":5,
            "waypoints":[{"level_id":11,"x":200,"y":0,"pause":0.5}]})";
        const auto ended =
            runOska({"simulate", "--bundle", bundle, "--route", "-", "--interval-ms", "250"}, route);
        std::string samples;
        for (const auto* const time : {"5", "255", "505"})
            samples += R"({"mobile_time":)" + std::string(time) + R"(,"rfs":{)" + heard +
                       R"(},"truth":{"building_id":1,"level_id":11,"x":200,"y":0}})" + "\n";
        EXPECT_EQ(ended.out, samples);
        EXPECT_EQ(ended.err, bundle + ": the ward \"lost\" has no coordinates and is not heard\n");
    }
}

TEST(Simulate, ChangesTheLevelExactlyHalfWay) {
    const Folder folder;
    const auto ended =
        runOska({"simulate", "--bundle", folder.file("d.json", siteDocument()), "--route", "-",
                 "--interval-ms", "250"},
                R"({"waypoints":[{"level_id":11,"x":0,"y":0},{"level_id":12,"x":0,"y":0,"seconds":0.5}]})");
    const auto firstAbove = ended.out.find(R"("level_id":12)");
    EXPECT_GT(firstAbove, ended.out.find("1700000000250"));
    EXPECT_LT(firstAbove, ended.out.find("1700000000500"));
}

// They were written on one machine, and are the same on every other.
TEST(Simulate, WritesTheSampleWalksByteForByte) {
    const std::string site = OSKA_EXAMPLES "/riverside/";
    for (const std::string name : {"museum_visit", "library_and_lunch"}) {
        const auto ended = runOska({"simulate", "--bundle", site + "12/pelio.json", "--route",
                                    site + "routes/" + name + ".json", "--seed", "12"});
        EXPECT_GT(ended.out.size(), 100000U);
        EXPECT_TRUE(ended.out == contentOf(site + "walks/" + name + ".jsonl")) << name;
    }
}

TEST(Simulate, NamesFilePlaceAndReason) {
    const std::string begin = R"({"waypoints":[{"level_id":11,"x":1,"y":1)";
    const std::pair<std::string, std::string> cases[]{
        {"{", "1: document: malformed JSON, expected a key, found the end"},
        {R"({"waypoints":[]})", " waypoints: is empty; a route needs one at least"},
        {R"({"waypoints":[{"x":"1"}]})", R"(1: waypoints[0].x: expected a number, found "1")"},
        {begin + R"(,"pace":3}]})", R"( waypoints[0]: unknown key "pace")"},
        {R"({"radio":{"missed":1.5},"waypoints":[]})", " radio.missed: 1.5 is not between 0 and 1"},
        {R"({"speed":0,"waypoints":[]})", " speed: 0 is not above 0"},
        {R"({"waypoints":[{"x":1,"y":1}]})", R"( waypoints[0]: the first waypoint needs "level_id")"},
        {begin + R"(,"building_id":2}]})",
         R"( waypoints[0].level_id: building 2 has no level 11; there are 11 ("Tower", "l"), )"
         R"(12 ("Tower", "l"), 21 ("Annex", "l"))"},
        {begin + R"(},{"level_id":12,"x":1,"y":1}]})", R"( waypoints[1]: a change of level needs "seconds")"},
        {begin + R"(},{"level_id":21,"x":1,"y":1,"seconds":5}]})",
         R"( waypoints[1]: a way between two buildings needs their places in "buildings")"},
        {begin + R"(}],"buildings":[{"id":3,"x":1,"y":1}]})",
         " buildings[0].id: the bundle has no level of a building 3"},
        {begin + R"(},{"x":1e9,"y":1,"speed":0.5}]})",
         " waypoints[1]: the walk takes more than 30 days to here"}};
    const Folder folder;
    const auto bundle = folder.file("p.json", siteDocument());
    for (const auto& [document, error] : cases) {
        const auto route = folder.file("r.json", document);
        const auto ended = runOska({"simulate", "--bundle", bundle, "--route", route});
        EXPECT_EQ(std::tuple(ended.status, ended.out), std::tuple(2, "")) << document;
        EXPECT_EQ(ended.err, route + ":" + error + "\n");
    }
    EXPECT_EQ(runOska({"simulate", "--bundle", "-", "--route", bundle}, "{}").err,
              "-:1: id: missing, expected a value, found none\n" + bundle +
                  ":1: buildings[0].x: missing, expected a value, found none\n");
}

}  // namespace
}  // namespace oska::tool_tests
