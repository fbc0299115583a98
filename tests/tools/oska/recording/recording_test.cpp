#include <gtest/gtest.h>

#include "tools/oska/recording/recording_line.h"

namespace oska::tool {
namespace {

TEST(RecordedLine, IsAnActionWithItsArguments) {
    const auto actionOf = [](const std::string& members) {
        const auto text = R"({"mobile_time": 5, "rfs": null, "action": )" + members + "}";
        return std::get<Action>(parseRecordedLine(text, OskaService::dapo)->what);
    };
    EXPECT_EQ(actionOf(R"("tap", "isVisible": 7)").kind, ActionKind::tap);
    EXPECT_TRUE(actionOf(R"("initialize", "forceUpdate": true)").forceUpdate);
    EXPECT_FALSE(actionOf(R"("initialize")").forceUpdate);
    EXPECT_TRUE(actionOf(R"("setVisibility", "isVisible": true)").isVisible);
    EXPECT_EQ(actionOf(R"("setSelectionInterval", "seconds": 2.5)").seconds, 2.5);
    EXPECT_EQ(actionOf(R"("setUnchangedDeliveryInterval", "seconds": 3)").seconds, 3.0);
    EXPECT_EQ(actionOf(R"("setUnchangedDeliveryInterval", "seconds": null)").seconds, std::nullopt);
}

TEST(RecordedLine, IsRefusedWithItsReason) {
    const std::pair<std::string, std::string> cases[]{
        {R"({"mobile_time": 1, "rfs": {})", "not JSON: expected "},
        {R"({"mobile_time": 1, "rfs": {}} {})", "not JSON: expected the end"},
        {R"([{"mobile_time": 1}])", "not a JSON object"},
        {R"({"rfs": {}})", R"("mobile_time" is missing)"},
        {R"({"mobile_time": 9223372036854775808, "rfs": {}})", R"("mobile_time" is not an integer)"},
        {R"({"mobile_time": 1})", R"(neither "rfs" nor "action")"},
        {R"({"mobile_time": 1, "rfs": {}, "action": "stop"})", R"(both "rfs" and "action")"},
        {R"({"mobile_time": 1, "rfs": [-60]})", R"("rfs" is not an object)"},
        {R"({"mobile_time": 1, "rfs": {"gate 2": null}})", R"(rfs["gate 2"] is not a number)"},
        {R"({"mobile_time": 1, "action": "Stop\n"})", R"(unknown action "Stop\n")"},
        {R"({"mobile_time": 1, "action": "initialize", "forceUpdate": 1})",
         R"("forceUpdate" is not true or)"},
        {R"({"mobile_time": 1, "action": "setVisibility"})", R"("isVisible" is missing)"},
        {R"({"mobile_time": 1, "action": "setSelectionInterval", "seconds": null})", R"("seconds" is not a)"},
        {R"({"mobile_time": 1, "action": "setUnchangedDeliveryInterval"})", R"("seconds" is missing)"}};
    for (const auto& [line, reason] : cases) {
        const auto parsed = parseRecordedLine(line, OskaService::dapo);
        ASSERT_FALSE(parsed) << line;
        EXPECT_TRUE(parsed.error().starts_with(reason)) << parsed.error();
    }
    const auto tap = parseRecordedLine(R"({"mobile_time": 1, "action": "tap"})", OskaService::pelio);
    ASSERT_FALSE(tap);
    EXPECT_EQ(tap.error(), R"(the action "tap" is not one of the Pelio service's)");
}

}  // namespace
}  // namespace oska::tool
