#include "tools/oska/site/sector_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/oska/commands/oska_program.h"

namespace oska::tool_tests {
namespace {

using testing::StartsWith;
using tool::readSector;

std::string bundle(const std::string& wardFields) {
    return bundleDocument(levelDocument(5, R"({"id":1,"name":" Ward-A ")" + wardFields + "}", "2"));
}

TEST(SectorFolder, JoinsWhatBothServicesKnowOfAWard) {
    const Folder folder;
    folder.file("7/dapo.json", bundle(R"(,"rssi":-70,"contents":[])"));
    EXPECT_FALSE(readSector(folder.path(), 7)->wards[0].hasCoordinates());
    folder.file("7/pelio.json", bundle(R"(,"x":10,"y":20,"rssi":-84.5)"));
    const auto site = readSector(folder.path(), std::nullopt);
    ASSERT_TRUE(site) << site.error();
    EXPECT_EQ(site->sectorId, 7);
    ASSERT_EQ(site->levels.size(), 1U);
    EXPECT_EQ(site->levels[0].map.url, "u");
    ASSERT_EQ(site->wardsOn(0).size(), 1U);
    const auto& ward = *site->wardsOn(0)[0];
    EXPECT_EQ(ward.key, "ward-a");
    EXPECT_EQ(ward.place.x, 20);
    EXPECT_EQ(ward.place.y, 20);
    EXPECT_EQ(ward.pelioThreshold, -84.5);
    EXPECT_EQ(ward.dapoThreshold, -70);
}

TEST(SectorFolder, SaysWhyItHoldsNoSite) {
    const Folder folder;
    const auto fault = [&](const std::string& more, std::optional<std::int64_t> sector = std::nullopt) {
        const auto site = readSector(folder.path() + more, sector);
        return site ? std::string() : site.error().substr(folder.path().size());
    };
    EXPECT_EQ(fault("/x"), "/x: there is no such folder");
    folder.file("07/pelio.json", "{}");
    EXPECT_EQ(fault(""), ": no sector in it: a folder N with pelio.json, dapo.json or both");
    folder.file("7/pelio.json", bundle(R"(,"x":10,"y":20.5,"rssi":-84)"));
    EXPECT_THAT(fault(""), StartsWith("/7/pelio.json:1: buildings[0].levels[0].wards[0].y: "));
    EXPECT_EQ(fault("", 8), "/8: neither pelio.json nor dapo.json is there");
    folder.file("-8/dapo.json", "{}");
    EXPECT_EQ(fault(""), ": several sectors in it, choose one with --sector: -8 7");
}

}  // namespace
}  // namespace oska::tool_tests
