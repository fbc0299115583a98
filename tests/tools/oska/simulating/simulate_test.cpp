#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "oska/foundation/network_constants.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/simulating/planned_walk.h"
#include "tools/oska/simulating/radio_model.h"
#include "tools/oska/simulating/route.h"
#include "tools/oska/site/site.h"

namespace oska::tool_tests {
namespace {

using testing::IsEmpty;
using tool::GroundPlan;
using tool::PlannedWalk;
using tool::Site;

std::string wardsOf(const std::string& wards, bool isDapo) {
    std::string out;
    for (const char c : wards) {
        if (c == '@') {
            out += isDapo ? R"("rssi":-70,"contents":[])" : R"("rssi":-70.5)";
        } else {
            out += c;
        }
    }
    return out;
}

std::string level(int id, const std::string& wards, bool isDapo) {
    return levelDocument(id, wardsOf(wards, isDapo));
}

/// Two levels in one building and one in another, a ward on each, all at their origins.
std::string siteDocument(bool isDapo = false, const std::string& more = "") {
    return R"({"id":7,"name":"s","operating_system":"","buildings":[{"id":1,"name":"Tower","levels":[)" +
           level(11, R"({"id":1,"name":"low","x":0,"y":0,@})" + more, isDapo) + "," +
           level(12, R"({"id":2,"name":"high","x":0,"y":0,@})", isDapo) +
           R"(]},{"id":2,"name":"Annex","levels":[)" +
           level(21, R"({"id":3,"name":"far","x":0,"y":0,@})", isDapo) + "]}]}";
}

Site site() { return *tool::parseSite("p.json", siteDocument(), OskaService::pelio); }

std::string silentRoute(const std::string& members) {
    return R"({"radio":{"strength_at_1m":-35,"exponent":2,"shadowing":0,"fading":0,"floor_loss":20,)"
           R"("wall_loss":10,"missed":0},)" +
           members + "}";
}

platform::ReceivedForce::Strengths heardAtStart(const std::string& routeDocument) {
    const auto route = *tool::parseRoute("r.json", routeDocument);
    const auto plan = site();
    const GroundPlan ground(plan, route);
    auto walk = *PlannedWalk::plan(route, plan, ground);
    return tool::RadioModel(plan, ground, route, 1).hear(walk.at(0), 0);
}

TEST(RadioModel, FollowsDistanceFloorsAndWalls) {
    // A ward hangs 1.5 m above the phone; the levels are 3 m apart, so the one above is 4.5 m away.
    const auto route = [](const std::string& more) {
        return silentRoute(R"("floor_height":3,"waypoints":[{"level_id":11,"x":200,"y":0}])" + more);
    };
    const auto at = [](double metres, double loss) { return -35 - 20 * std::log10(metres) - loss; };
    const auto alone = heardAtStart(route(""));
    ASSERT_EQ(alone.size(), 2U) << "a building without a place is out of earshot";
    EXPECT_NEAR(alone.at("low"), at(2.5, 0), 0.051);
    EXPECT_NEAR(alone.at("high"), at(std::sqrt(4 + 4.5 * 4.5), 20), 0.051);

    const auto both = heardAtStart(route(R"(,"buildings":[{"id":2,"x":1200,"y":0,"height":-1.5}])"));
    ASSERT_EQ(both.size(), 3U);
    EXPECT_NEAR(both.at("far"), at(10, 10 + 20 * 1), 0.051) << "half a storey below counts as one floor";
}

TEST(PlannedWalk, KeepsItsTimesAndChangesTheLevelHalfWay) {
    const auto route =
        *tool::parseRoute("r.json", R"({"speed":2,"buildings":[{"id":2,"x":1000,"y":0}],"waypoints":[
            {"level_id":11,"x":0,"y":0,"pause":1}, {"x":300,"y":400}, {"x":300,"y":0,"speed":4},
            {"level_id":12,"x":300,"y":0,"seconds":4,"pause":0.5}, {"level_id":21,"x":0,"y":0,"seconds":2}]})");
    const auto plan = site();
    const GroundPlan ground(plan, route);
    auto walk = *PlannedWalk::plan(route, plan, ground);
    EXPECT_EQ(walk.milliseconds(), 1000 + 2500 + 1000 + 4000 + 500 + 2000);
    const struct {
        std::int64_t time;
        std::int64_t level;
        double x;
        double y;
    } expected[] = {{0, 11, 0, 0},        {1000, 11, 0, 0},     {2250, 11, 150, 200}, {3500, 11, 300, 400},
                    {4000, 11, 300, 200}, {6499, 11, 300, 0},   {6500, 12, 300, 0},   {9000, 12, 300, 0},
                    {9500, 12, 475, 0},   {10500, 21, -175, 0}, {11000, 21, 0, 0}};
    for (const auto& [time, levelId, x, y] : expected) {
        const auto phone = walk.at(time);
        EXPECT_EQ(plan.levels[phone.level].id, levelId) << time;
        EXPECT_NEAR(ground.xOnLevel(phone.level, phone.point), x, 1e-9) << time;
        EXPECT_NEAR(ground.yOnLevel(phone.level, phone.point), y, 1e-9) << time;
    }
}

const auto WALK =
    std::string(R"({"waypoints":[{"level_id":11,"x":-900,"y":40},{"x":900,"y":40,"pause":60}]})");

TEST(Simulate, DependsOnTheSeedAndTheIntervalButNotOnTheKindOfBundle) {
    const Folder folder;
    const auto route = folder.file("r.json", WALK);
    const auto pelio = folder.file("p.json", siteDocument(false));
    const auto dapo = folder.file("d.json", siteDocument(true, R"(,{"id":9,"name":"lost","y":3,@})"));
    const auto simulate = [&](const std::string& bundle, const std::string& seed) {
        return runOska(
            {"simulate", "--bundle", bundle, "--route", route, "--seed", seed, "--interval-ms", "250"});
    };
    const auto first = simulate(pelio, "3");
    EXPECT_EQ(first.status, 0);
    EXPECT_THAT(first.err, IsEmpty());
    EXPECT_EQ(std::count(first.out.begin(), first.out.end(), '\n'), 75 * 4 + 1);
    EXPECT_EQ(first.out.find(R"({"mobile_time":1700000000250,)"), first.out.find('\n') + 1);
    EXPECT_NE(first.out, simulate(pelio, "4").out);
    const auto asDapo = simulate(dapo, "3");
    EXPECT_EQ(asDapo.out, first.out);
    EXPECT_EQ(asDapo.err, dapo + ": the ward \"lost\" has no coordinates and is not heard\n");
}

// They were written on one machine, and are the same on every other.
TEST(Simulate, WritesTheSampleWalksByteForByte) {
    const std::string site = OSKA_EXAMPLES "/riverside/";
    for (const std::string name : {"museum_visit", "library_and_lunch"}) {
        const auto ended = runOska({"simulate", "--bundle", site + "12/pelio.json", "--route",
                                    site + "routes/" + name + ".json", "--seed", "12"});
        const auto walk = contentOf(site + "walks/" + name + ".jsonl");
        EXPECT_GT(walk.size(), 100000U);
        EXPECT_TRUE(ended.out == walk) << name;
    }
    const auto checked = runOska({"check", site + "12/pelio.json", site + "12/dapo.json"});
    EXPECT_EQ(checked.out, site + "12/pelio.json: decodes as a pelio bundle\n" + site +
                               "12/dapo.json: decodes as a dapo bundle\n");
}

TEST(Simulate, NamesFilePlaceAndReason) {
    const struct {
        std::string route;
        std::string error;
    } cases[] = {
        {"{", "1: document: malformed JSON, expected a key, found the end"},
        {R"({"waypoints":[]})", " waypoints: is empty; a route needs one at least"},
        {R"({"waypoints":[{"level_id":11,"x":"1","y":1}]})",
         R"(1: waypoints[0].x: expected a number, found "1")"},
        {R"({"waypoints":[{"level_id":11,"x":1,"y":1,"pace":3}]})", R"( waypoints[0]: unknown key "pace")"},
        {R"({"radio":{"missed":1.5},"waypoints":[]})", " radio.missed: 1.5 is not between 0 and 1"},
        {R"({"speed":0,"waypoints":[]})", " speed: 0 is not above 0"},
        {R"({"waypoints":[{"x":1,"y":1}]})", R"( waypoints[0]: the first waypoint needs "level_id")"},
        {R"({"waypoints":[{"level_id":11,"building_id":2,"x":1,"y":1}]})",
         R"( waypoints[0].level_id: building 2 has no level 11; there are 11 ("Tower", "l"), )"
         R"(12 ("Tower", "l"), 21 ("Annex", "l"))"},
        {R"({"waypoints":[{"level_id":11,"x":1,"y":1},{"level_id":12,"x":1,"y":1}]})",
         R"( waypoints[1]: a change of level needs "seconds")"},
        {R"({"waypoints":[{"level_id":11,"x":1,"y":1},{"level_id":21,"x":1,"y":1,"seconds":5}]})",
         R"( waypoints[1]: a way between two buildings needs their places in "buildings")"},
        {R"({"buildings":[{"id":3,"x":1,"y":1}],"waypoints":[{"level_id":11,"x":1,"y":1}]})",
         " buildings[0].id: the bundle has no level of a building 3"},
        {R"({"waypoints":[{"level_id":11,"x":1,"y":1},{"x":1e9,"y":1,"speed":0.5}]})",
         " waypoints[1]: the walk takes more than 30 days to here"},
    };
    const Folder folder;
    const auto bundle = folder.file("p.json", siteDocument());
    for (const auto& [document, error] : cases) {
        const auto route = folder.file("r.json", document);
        const auto ended = runOska({"simulate", "--bundle", bundle, "--route", route});
        EXPECT_EQ(ended.status, 2) << document;
        EXPECT_EQ(ended.err, route + ":" + error + "\n");
        EXPECT_THAT(ended.out, IsEmpty());
    }
    const auto route = folder.file("r.json", WALK);
    EXPECT_EQ(runOska({"simulate", "--bundle", route, "--route", route}).err,
              route + ":1: id: missing, expected a value, found none\n");
}

}  // namespace
}  // namespace oska::tool_tests
