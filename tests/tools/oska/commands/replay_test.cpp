#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/site_server.h"
#include "tests/tools/oska/commands/oska_program.h"

namespace oska::tool_tests {
namespace {

using testing::HasSubstr;

// The name would end the line, were it printed as it is.
const std::string LEVEL =
    R"("building_id":1,"building_name":"main","level_id":10,"level_name":"B\n{1\r\u2028",)";
const std::string SUCCESS = R"("success":true)";

std::string event(int at, const std::string& name, const std::string& members) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":")" + name + "\"," + members + "}";
}

std::string image(int at) {
    return event(at, "onPelioMapImageData",
                 R"("level_id":10,"image":{)" + LEVEL + R"("url":"http://h/m.png","image_width":100,)" +
                     R"("image_height":50,"scale_x":0.5,"scale_y":0.5,"offset_x":10,"offset_y":10})");
}

std::string init(int at) { return event(at, "onInitSuccess", SUCCESS); }

std::string start(int at, const std::string& outcome = SUCCESS) {
    return event(at, "onPelioSuccess", outcome);
}

std::string result(int at, int mobileTime) {
    const auto time = std::to_string(mobileTime);
    return event(at, "onPelioResult",
                 R"("result":{"mobile_time":)" + time + "," + LEVEL + R"("x":60,"y":30})");
}

class ReplayCommand : public testing::Test {
protected:
    ReplayCommand() { document.replace(document.find("B1"), 2, R"(B\n{1\r\u2028)"); }

    [[nodiscard]] Ended replay(const std::string& recording, const std::string& more = "") const {
        const auto bundle = " --bundle " + folder.file("site.json", document);
        return runOska(words("replay pelio --recording " + folder.file("walk", recording) + bundle + more));
    }

    const Folder folder;
    std::string document = fakes::PELIO_DOCUMENT;
};

TEST_F(ReplayCommand, HandlesEachLineAtItsTimeAndLogsOnRequest) {
    const auto longLine = R"({"note":")" + std::string(300'000, 'x') + "\"," + heard(6100).substr(1);
    auto recording = "\r\n \t\n" + heard(5000) + heard(5500) + heard(4000) + action(5600, "start") + "\r\n" +
                     action(5700, "stop") + action(5700, "stop") + heard(5800) + action(5900, "initialize") +
                     heard(5950) + action(6000, "start") + longLine + "\n" + heard(6200);
    recording.pop_back();
    const auto ended = replay(recording);
    EXPECT_EQ(ended.status, 0) << ended.err;
    const std::vector events{image(0),
                             init(0),
                             start(0),
                             result(0, 5000),
                             result(500, 5500),
                             result(500, 4000),
                             start(600, R"("success":false,"code":"DUPLICATE_SERVICE")"),
                             image(900),
                             init(900),
                             start(1000),
                             result(1100, 6100),
                             result(1200, 6200)};
    EXPECT_EQ(ended.events(), events);
    EXPECT_THAT(ended.out, AllOf(HasSubstr("sectors/12/bundle"), Not(HasSubstr("[INFO]"))));

    const auto logged = replay(recording, " --log --sector 010");
    EXPECT_EQ(logged.events(), events);
    EXPECT_THAT(logged.out, testing::ContainsRegex("sectors/10/bundle.*\\[INFO\\]  .PelioServiceManager. "
                                                   ".initialize. : success.*onInitSuccess.*"
                                                   "version unchanged, use cached PelioBundle"));
    EXPECT_EQ(logged.out, replay(recording, " --log --sector 010").out);
    EXPECT_EQ(replay("\n").events(), (std::vector{image(0), init(0), start(0)}));
}

TEST_F(ReplayCommand, PassesOverYearsInWhichNothingHappens) {
    std::string walk;
    for (int i = 0; i < 6; ++i) walk += heard(i * 100);
    const auto ended =
        runOska(words("replay dapo --recording - --output-interval 0.001 --bundle " +
                      folder.file("dapo.json", fakes::DAPO_DOCUMENT) + " --unchanged-delivery-interval 3"),
                walk + R"({"mobile_time":9000000000000000000,"rfs":{}})");
    std::string events;
    for (const auto& line : ended.events()) {
        const auto name = line.substr(line.find("event") + 8, 4);
        if (name == "onDa" || name == "visi") events += line.substr(6, line.find(',') - 6) + name + " ";
    }
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(events, "0onDa 0onDa 500visi 501onDa 3501onDa 5500visi ");
}

TEST_F(ReplayCommand, SaysWhyItFailed) {
    const auto stopped = start(0, R"("success":false,"code":"NOT_INITIALIZED")");
    const std::string noId = R"({"name":"no id"})";
    const struct {
        std::string document;
        std::string recording;
        std::string more;
        int status;
        std::string lastEvent;
        std::string error;
    } cases[] = {
        {document, heard(1) + "\n{}\n" + heard(2), "", 2, result(0, 1),
         "/walk:3: \"mobile_time\" is missing\n"},
        {"{\"id\":12,\n\"name\":5}", heard(1), "", 1, stopped,
         "/site.json:2: name: expected text, found 5\n"},
        {document, heard(1), " --id a.b", 1, stopped, "\"a.b\""},
        {noId, heard(1), "", 2, "", "/site.json:1: id: missing"},
        {noId, heard(1), " --sector 12", 1, stopped, "/site.json:1: id: missing"},
    };
    for (const auto& [bundle, recording, more, status, lastEvent, error] : cases) {
        document = bundle;
        const auto ended = replay(recording, more);
        EXPECT_EQ(ended.status, status) << error;
        EXPECT_THAT(ended.err, HasSubstr(error));
        const auto events = ended.events();
        EXPECT_EQ(events.empty() ? "" : events.back(), lastEvent);
    }
}

TEST_F(ReplayCommand, HandlesLinesAsTheyArriveUntilInterrupted) {
    RunningOska program(words("replay pelio --recording - --bundle " + folder.file("site.json", document)));
    program.write(heard(100));
    EXPECT_EQ(program.readLine("result"), result(0, 100));
    program.write(heard(600));
    EXPECT_EQ(program.readLine(), result(500, 600));
    program.interrupt();
    EXPECT_EQ(program.readLine(), "");
    EXPECT_EQ(program.waitForStatus(), 130);
}

}  // namespace
}  // namespace oska::tool_tests
