#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "oska/json/json.h"
#include "tests/fakes/site_server.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/site/bundle_findings.h"
#include "tools/oska/site/bundle_service.h"

namespace oska::tool_tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::Field;
using testing::HasSubstr;
using testing::IsEmpty;

auto finding(const std::string& path, const std::string& kind) {
    return AllOf(Field(&tool::Finding::path, path), Field(&tool::Finding::kind, kind));
}

template <class Bundle>
std::vector<tool::Finding> findings(const std::string& document) {
    const auto bundle = json::decode<Bundle>(document);
    EXPECT_TRUE(bundle) << bundle.error().message();
    return bundle ? tool::findingsIn(*bundle) : std::vector<tool::Finding>{};
}

TEST(Findings, OfADapoBundle) {
    const auto wards = R"({"id":1,"name":"Gate ","x":1,"y":2,"rssi":-101,"contents":[
            {"number":1,"description":"d","url":"https://x/a b"},{"number":2,"description":"d","url":"http://a b/"}]},
        {"id":2,"name":"\ngate","x":1,"rssi":-39,"contents":[]})";
    EXPECT_THAT(
        findings<DapoBundle>(bundleDocument(levelDocument(5, wards) + "," + levelDocument(5, "", "-0.0"))),
        ElementsAre(finding("buildings[0].levels[0].wards[0].rssi", "unreachable"),
                    finding("buildings[0].levels[0].wards[0].contents[1].url", "link-dropped"),
                    finding("buildings[0].levels[0].wards[1].name", "name-alike"),
                    finding("buildings[0].levels[0].wards[1]", "no-coordinates"),
                    finding("buildings[0].levels[0].wards[1].rssi", "unreachable"),
                    finding("buildings[0].levels[1].id", "level-id-twice"),
                    finding("buildings[0].levels[1].map_image.scale_x", "scale-zero")));
}

TEST(Findings, OfAPelioBundle) {
    const auto wards =
        R"({"id":1,"name":"é","x":1,"y":2,"rssi":-100},{"id":2,"name":"E\u0301","x":0,"y":0,"rssi":-40},
        {"id":3,"name":"c","x":0,"y":0,"rssi":-39.9})";
    EXPECT_THAT(findings<PelioBundle>(bundleDocument(levelDocument(1, wards))),
                ElementsAre(finding("buildings[0].levels[0].wards[1].name", "name-alike"),
                            finding("buildings[0].levels[0].wards[2].rssi", "unreachable")));
}

TEST(ServiceOfBundle, IsToldByTheWardsEvenOfABrokenBundle) {
    const std::string dapo = R"({"name":"a","contents":[]})";
    const std::string pelio = R"({"name":"a","x":1,"y":1,"rssi":-70.5})";
    const auto serviceOf = [](const std::string& wards) {
        return tool::serviceOfBundle(bundleDocument(levelDocument(1, wards)));
    };
    EXPECT_EQ(serviceOf(dapo + "," + dapo + "," + pelio), OskaService::dapo);
    EXPECT_EQ(serviceOf(dapo + "," + pelio + "," + pelio), OskaService::pelio);
    EXPECT_EQ(serviceOf(""), OskaService::pelio);
    EXPECT_EQ(serviceOf(dapo + ", tru"), OskaService::dapo);
    EXPECT_EQ(tool::serviceOfBundle("no JSON"), OskaService::pelio);
}

TEST(Check, TellsTheKindAndTheFindingsFileFirst) {
    const Folder folder;
    const auto pelio = folder.file("p.json", fakes::PELIO_DOCUMENT);
    const auto dapo = folder.file("d.json", fakes::DAPO_DOCUMENT);
    const auto ended = runOska({"check", pelio, dapo});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.err, IsEmpty());
    EXPECT_EQ(ended.out,
              pelio + ": decodes as a pelio bundle\n" + dapo + ": decodes as a dapo bundle\n" + dapo +
                  ": buildings[0].levels[0].wards[0]: \"lobby-a\" has no x and y, which counts as 0\n");
}

TEST(Check, NamesThePlaceOfAFaultAndGoesOnWithTheNextFile) {
    const Folder folder;
    auto broken = fakes::DAPO_DOCUMENT;
    broken.replace(broken.find("-80"), 3, "-70.5");
    const auto bad = folder.file("bad.json", broken);
    const auto good = folder.file("good.json", fakes::PELIO_DOCUMENT);
    const auto ended = runOska({"check", bad, good + "x", good});
    EXPECT_EQ(ended.status, 2);
    const std::string fault = "buildings[0].levels[0].wards[0].rssi: expected an integer, found -70.5\n";
    EXPECT_EQ(ended.err, bad + ":4: " + fault + good + "x: No such file or directory\n");
    EXPECT_EQ(ended.out,
              bad + ": does not decode as a dapo bundle\n" + good + ": decodes as a pelio bundle\n");

    const auto asPelio = runOska({"check", "--kind", "pelio", "--json", bad});
    EXPECT_EQ(asPelio.status, 2);
    EXPECT_EQ(asPelio.err, "");
    EXPECT_EQ(
        asPelio.out,
        R"({"files":[{"file":")" + bad +
            R"(","kind":"pelio","decodes":false,"error":{"line":4,"path":"buildings[0].levels[0].wards[0].x",)"
            R"("expected":"a value","found":"none","message":"buildings[0].levels[0].wards[0].x: missing, )"
            R"(expected a value, found none"},"findings":[]}]})"
            "\n");
}

TEST(Check, PrintsFindingsAsJson) {
    const auto ended = runOska({"check", "--json", "-"}, bundleDocument(levelDocument(1, "", "0")));
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.out, R"({"files":[{"file":"-","kind":"pelio","decodes":true,"findings":[{"path":)"
                         R"("buildings[0].levels[0].map_image.scale_x","kind":"scale-zero","message":)"
                         R"("scale 0 puts all wards of the level in one place"}]}]})"
                         "\n");
}

TEST(Check, LetsNoNameSteerATerminal) {
    const auto bundle =
        bundleDocument(levelDocument(1, R"({"id":1,"name":"a\u009b","y":1,"rssi":-70,"contents":[]})"));
    for (const bool asJson : {false, true}) {
        const auto out = runOska({"check", asJson ? "--json" : "--kind=dapo", "-"}, bundle).out;
        EXPECT_THAT(out, HasSubstr("u009b"));
        EXPECT_EQ(out.find('\x9b'), std::string::npos);
    }
}

}  // namespace
}  // namespace oska::tool_tests
