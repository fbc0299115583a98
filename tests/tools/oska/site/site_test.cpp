#include <gtest/gtest.h>

#include "oska/json/json.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/site/bundle_findings.h"
#include "tools/oska/site/bundle_service.h"
#include "tools/oska/site/sector_folder.h"

namespace oska::tool_tests {
namespace {

TEST(Findings, NameTheirPlaceAndKind) {
    const auto wards = R"({"id":1,"name":"Gate ","x":1,"y":2,"rssi":-101,"contents":[
            {"number":1,"description":"d","url":"https://x/a b"},{"number":2,"description":"d","url":"http://a b/"}]},
        {"id":2,"name":"\ngate","x":1,"rssi":-39,"contents":[]},
        {"id":3,"name":"c","x":0,"y":0,"rssi":-100,"contents":[]},{"id":4,"name":"d","x":0,"y":0,"rssi":-40,"contents":[]})";
    const auto document = bundleDocument(levelDocument(5, wards) + "," + levelDocument(5, "", "-0.0"));
    std::string lines = "\n";
    for (const auto& [path, kind, message] : tool::findingsIn(*json::decode<DapoBundle>(document)))
        lines += path + " " + kind + "\n";
    EXPECT_EQ(lines, R"(
buildings[0].levels[0].wards[0].rssi unreachable
buildings[0].levels[0].wards[0].contents[1].url link-dropped
buildings[0].levels[0].wards[1].name name-alike
buildings[0].levels[0].wards[1] no-coordinates
buildings[0].levels[0].wards[1].rssi unreachable
buildings[0].levels[1].id level-id-twice
buildings[0].levels[1].map_image.scale_x scale-zero
)");
}

TEST(ServiceOfBundle, IsToldByTheWardsEvenOfABrokenBundle) {
    const auto serviceOf = [](const std::string& wards) {
        return tool::serviceOfBundle(bundleDocument(levelDocument(1, wards)));
    };
    EXPECT_EQ(serviceOf(R"({"contents":[]}, {"x":1})"), OskaService::dapo);
    EXPECT_EQ(serviceOf(R"({"contents":[]}, {"x":1}, {"x":1})"), OskaService::pelio);
    EXPECT_EQ(serviceOf(R"({"contents":[]}, tru)"), OskaService::dapo);
    EXPECT_EQ(serviceOf(""), OskaService::pelio);
}

TEST(Check, TellsKindFindingsAndFaultsOfEachFile) {
    const Folder folder;
    const auto level = levelDocument(1, R"({"id":1,"name":"a\u009b","y":1,"rssi":-70,"contents":[]})");
    const auto dapo = folder.file("d.json", bundleDocument("\n" + level));
    const std::string pelio = OSKA_EXAMPLES "/riverside/12/pelio.json";
    const auto warned = runOska({"check", pelio, dapo});
    EXPECT_EQ(warned.status, 0);
    EXPECT_EQ(warned.out + warned.err,
              pelio + ": decodes as a pelio bundle\n" + dapo + ": decodes as a dapo bundle\n" + dapo +
                  ": buildings[0].levels[0].wards[0]: \"a\\u009b\" has no x, which counts as 0\n");
    EXPECT_EQ(runOska({"check", "--json", dapo}).out,
              R"({"files":[{"file":")" + dapo +
                  R"(","kind":"dapo","decodes":true,"findings":[{"path":"buildings[0].levels[0].wards[0]",)"
                  R"("kind":"no-coordinates","message":"\"a\\u009b\" has no x, which counts as 0"}]}]})"
                  "\n");

    const std::string fault = "buildings[0].levels[0].wards[0].x: missing, expected a value, found none";
    const auto ended = runOska({"check", "--kind", "pelio", dapo, dapo + "x", pelio});
    EXPECT_EQ(ended.status, 2);
    EXPECT_EQ(ended.err, dapo + ":2: " + fault + "\n" + dapo + "x: No such file or directory\n");
    EXPECT_EQ(ended.out,
              dapo + ": does not decode as a pelio bundle\n" + pelio + ": decodes as a pelio bundle\n");
    const auto asJson = runOska({"check", "--kind", "pelio", "--json", dapo});
    EXPECT_EQ(asJson.status, 2);
    EXPECT_EQ(
        asJson.out + asJson.err,
        R"({"files":[{"file":")" + dapo +
            R"(","kind":"pelio","decodes":false,"error":{"line":2,"path":"buildings[0].levels[0].wards[0].x",)"
            R"("expected":"a value","found":"none","message":")" +
            fault + "\"},\"findings\":[]}]}\n");
}

TEST(SectorFolder, JoinsWhatBothServicesKnowOfAWardOrSaysWhyThereIsNoSite) {
    const Folder folder;
    const auto bundle = [](const std::string& fields) {
        return bundleDocument(levelDocument(5, R"({"id":1,"name":" Ward-A ")" + fields + "}", "2"));
    };
    const auto fault = [&] {
        return tool::readSector(folder.path(), std::nullopt).error().substr(folder.path().size());
    };
    folder.file("07/pelio.json", "{}");
    EXPECT_EQ(fault(), ": no sector in it: a folder N with pelio.json, dapo.json or both");
    folder.file("7/pelio.json", bundle(R"(,"x":10,"y":20.5,"rssi":-84)"));
    EXPECT_EQ(fault(), "/7/pelio.json:1: buildings[0].levels[0].wards[0].y: expected an integer, found 20.5");
    EXPECT_EQ(tool::readSector(folder.path(), 8).error(),
              folder.path() + "/8: neither pelio.json nor dapo.json is there");

    folder.file("8/dapo.json", bundle(R"(,"rssi":-70,"contents":[])"));
    EXPECT_EQ(fault(), ": several sectors in it, choose one with --sector: 7 8");
    EXPECT_FALSE(tool::readSector(folder.path(), 8)->wards.at(0).hasCoordinates());
    folder.file("8/pelio.json", bundle(R"(,"x":10,"y":20,"rssi":-84.5)"));
    const auto site = tool::readSector(folder.path(), 8);
    ASSERT_TRUE(site) << site.error();
    EXPECT_EQ(std::tuple(site->sectorId, site->levels.size(), site->wards.size()), std::tuple(8, 1U, 1U));
    const auto& ward = site->wards[0];
    EXPECT_EQ(std::tuple(ward.key, ward.place.x, ward.place.y, ward.pelioThreshold, ward.dapoThreshold),
              std::tuple("ward-a", 20, 20, -84.5, -70));
}

}  // namespace
}  // namespace oska::tool_tests
