#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/recording/recording.h"

namespace oska::tool {
namespace {

using testing::ElementsAre;
using testing::Pair;
using testing::StartsWith;

TEST(RecordedLine, IsASampleWithItsStrengths) {
    const auto line = parseRecordedLine(
        R"({"note": {"rfs": 5}, "rfs": {"gate 2": -80, "lobby-a": -61.5, "gate 2": 1}, "mobile_time": 17e2, "seconds": "x"})",
        OskaService::pelio);
    ASSERT_TRUE(line) << line.error();
    EXPECT_EQ(line->mobileTime, 1700);
    const auto& sample = std::get<platform::ReceivedForce>(line->what);
    EXPECT_EQ(sample.mobile_time, 1700);
    EXPECT_THAT(sample.rfs, ElementsAre(Pair("gate 2", -80), Pair("lobby-a", -61.5)));
}

TEST(RecordedLine, IsAnActionWithItsArguments) {
    const auto actionOf = [](const std::string& members) {
        const auto line =
            parseRecordedLine(R"({"mobile_time": 5, "rfs": null, )" + members + "}", OskaService::dapo);
        EXPECT_TRUE(line) << line.error();
        return line ? std::get<Action>(line->what) : Action{.seconds = {}};
    };
    EXPECT_EQ(actionOf(R"("action": "tap", "isVisible": 7)").kind, ActionKind::tap);
    EXPECT_TRUE(actionOf(R"("forceUpdate": true, "action": "initialize")").forceUpdate);
    EXPECT_FALSE(actionOf(R"("action": "initialize")").forceUpdate);
    EXPECT_TRUE(actionOf(R"("action": "setVisibility", "isVisible": true)").isVisible);
    EXPECT_EQ(actionOf(R"("action": "setSelectionInterval", "seconds": 2.5)").seconds, 2.5);
    EXPECT_EQ(actionOf(R"("action": "setUnchangedDeliveryInterval", "seconds": 3)").seconds, 3.0);
    EXPECT_EQ(actionOf(R"("action": "setUnchangedDeliveryInterval", "seconds": null)").seconds, std::nullopt);
}

TEST(ReadRecording, NamesTheLineThatIsNotValidOrNotTaken) {
    const tool_tests::Folder folder;
    const auto path = folder.file("w.jsonl", R"({"mobile_time": 5, "action": "tap"})"
                                             "\n\n"
                                             R"({"mobile_time": 7, "rfs": {}})"
                                             "\n{}");
    std::vector<std::int64_t> times;
    const auto fault = readRecording(path, [&](const RecordedLine& line) {
        times.push_back(line.mobileTime);
        return std::nullopt;
    });
    EXPECT_EQ(fault, path + R"(:4: "mobile_time" is missing)");
    EXPECT_THAT(times, ElementsAre(5, 7));
    const auto refuse = [](const RecordedLine&) { return std::optional<std::string>("no"); };
    EXPECT_EQ(readRecording(path, refuse), path + ":1: no");
    EXPECT_EQ(readRecording(folder.path(), refuse), folder.path() + ": Is a directory");
}

struct Fault {
    const char* line;
    const char* reason;
    OskaService service = OskaService::dapo;
};

class FaultyLine : public testing::TestWithParam<Fault> {};

TEST_P(FaultyLine, IsRefusedWithItsReason) {
    const auto line = parseRecordedLine(GetParam().line, GetParam().service);
    ASSERT_FALSE(line);
    EXPECT_THAT(line.error(), StartsWith(GetParam().reason));
}

INSTANTIATE_TEST_SUITE_P(
    Of, FaultyLine,
    testing::Values(
        Fault{R"({"mobile_time": 1, "rfs": {})", "not JSON: expected "},
        Fault{R"({"mobile_time": 1, "rfs": {}} {})", "not JSON: expected the end"},
        Fault{R"([{"mobile_time": 1}])", "not a JSON object"},
        Fault{R"({"rfs": {}})", R"("mobile_time" is missing)"},
        Fault{R"({"mobile_time": 9223372036854775808, "rfs": {}})", R"("mobile_time" is not an integer)"},
        Fault{R"({"mobile_time": 1})", R"(neither "rfs" nor "action")"},
        Fault{R"({"mobile_time": 1, "rfs": {}, "action": "stop"})", R"(both "rfs" and "action")"},
        Fault{R"({"mobile_time": 1, "rfs": [-60]})", R"("rfs" is not an object)"},
        Fault{R"({"mobile_time": 1, "rfs": {"gate 2": null}})", R"(rfs["gate 2"] is not a number)"},
        Fault{R"({"mobile_time": 1, "rfs": {"a": 1e400}})", "rfs.a is not a number that a double can hold"},
        Fault{R"({"mobile_time": 1, "action": 5})", R"("action" is not text)"},
        Fault{R"({"mobile_time": 1, "action": "Stop\n"})", R"(unknown action "Stop\n")"},
        Fault{R"({"mobile_time": 1, "action": "tap"})",
              R"(the action "tap" is not one of the Pelio service's)", OskaService::pelio},
        Fault{R"({"mobile_time": 1, "action": "initialize", "forceUpdate": 1})",
              R"("forceUpdate" is not true or false)"},
        Fault{R"({"mobile_time": 1, "action": "setVisibility"})", R"("isVisible" is missing)"},
        Fault{R"({"mobile_time": 1, "action": "setSelectionInterval", "seconds": null})",
              R"("seconds" is not a number)"},
        Fault{R"({"mobile_time": 1, "action": "setUnchangedDeliveryInterval"})", R"("seconds" is missing)"}));

}  // namespace
}  // namespace oska::tool
