#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/fakes/site_server.h"
#include "tests/tools/oska/commands/oska_program.h"

namespace oska::tool_tests {
namespace {

using fakes::PELIO_DOCUMENT;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

const std::string IMAGE = R"({"at":0,"event":"onPelioMapImageData","level_id":10,"image":{"building_id":1,)"
                          R"("building_name":"main","level_id":10,"level_name":"B1","url":"http://h/m.png",)"
                          R"("image_width":100,"image_height":50,"scale_x":0.5,"scale_y":0.5,"offset_x":10,)"
                          R"("offset_y":10}})";

std::string init(int at) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":"onInitSuccess","success":true})";
}

std::string start(int at) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":"onPelioSuccess","success":true})";
}

std::string startFailure(int at, const std::string& code) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":"onPelioSuccess","success":false,"code":")" + code +
           R"("})";
}

std::string result(int at, int mobileTime) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":"onPelioResult","result":{"mobile_time":)" +
           std::to_string(mobileTime) +
           R"(,"building_id":1,"building_name":"main","level_id":10,"level_name":"B1","x":60,"y":30}})";
}

class ReplayCommand : public testing::Test {
protected:
    Ended replay(const std::string& recording, std::vector<std::string> more = {}) {
        std::vector<std::string> arguments{"replay", "pelio",       "--bundle",
                                           bundle,   "--recording", folder.file("walk.jsonl", recording)};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return runOska(arguments);
    }

    const Folder folder;
    std::string bundle = folder.file("site.json", PELIO_DOCUMENT);
};

TEST_F(ReplayCommand, HandlesEachLineAtItsTime) {
    const auto longLine =
        R"({"note":")" + std::string(300'000, 'x') + R"(","mobile_time":2,"rfs":{"lobby-a":-60}})";
    const auto imageAt4 = "{\"at\":4" + IMAGE.substr(IMAGE.find(','));
    const struct {
        std::string recording;
        std::vector<std::string> events;  // behind the image
    } cases[] = {
        {"\n", {init(0), start(0)}},
        {heard(5000) + heard(5500) + heard(4000) + heard(9000),
         {init(0), start(0), result(0, 5000), result(500, 5500), result(500, 4000), result(4000, 9000)}},
        {"\r\n \t\n" + action(1, "stop") + "\n" + action(1, "start") + longLine + "\r\n\r\n" +
             R"({"mobile_time":3,"rfs":{"lobby-a":-60}})",
         {init(0), start(0), start(0), result(1, 2), result(2, 3)}},
        {heard(0) + action(1, "start") + action(2, "stop") + action(2, "stop") + heard(3) +
             action(4, "initialize") + heard(5) + action(6, "start") + heard(7),
         {init(0), start(0), result(0, 0), startFailure(1, "DUPLICATE_SERVICE"), imageAt4, init(4), start(6),
          result(7, 7)}},
    };
    for (const auto& [recording, expected] : cases) {
        auto events = expected;
        events.insert(events.begin(), IMAGE);
        const auto ended = replay(recording);
        EXPECT_EQ(ended.status, 0);
        EXPECT_THAT(ended.err, IsEmpty());
        EXPECT_EQ(ended.events(), events);
    }
}

TEST_F(ReplayCommand, PassesOverYearsInWhichNothingHappens) {
    std::string walk;
    for (int i = 0; i < 6; ++i)
        walk += R"({"mobile_time":)" + std::to_string(i * 100) + R"(,"rfs":{"lobby-a":-60}})" + "\n";
    walk += R"({"mobile_time":9000000000000000000,"rfs":{}})";
    const auto ended =
        runOska({"replay", "dapo", "--bundle", folder.file("dapo.json", fakes::DAPO_DOCUMENT), "--recording",
                 "-", "--output-interval", "0.001", "--unchanged-delivery-interval", "3"},
                walk);
    std::vector<std::string> events;
    for (const auto& event : ended.events()) {
        if (event.find("dapo") != std::string::npos || event.find("visi") != std::string::npos)
            events.push_back(event.substr(0, event.find(",\"event") + 14));
    }
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_THAT(events, ElementsAre(R"({"at":500,"event":"visi)", R"({"at":501,"event":"onDa)",
                                    R"({"at":3501,"event":"onDa)", R"({"at":5500,"event":"visi)"));
}

TEST_F(ReplayCommand, SaysWhyItFailed) {
    const auto resourceFail = R"({"at":0,"event":"onInitSuccess","success":false,"code":"RESOURCE_FAIL"})";
    const auto notInitialized = startFailure(0, "NOT_INITIALIZED");
    const std::string noId = R"({"name":"no id"})";
    const struct {
        std::string document;
        std::string recording;
        std::vector<std::string> more;
        int status;
        std::vector<std::string> events;
        std::string error;
    } cases[] = {
        {PELIO_DOCUMENT,
         heard(1) + "\n" + R"({"mobile_time":"x","rfs":{}})" + "\n" + heard(2),
         {},
         2,
         {IMAGE, init(0), start(0), result(0, 1)},
         "/walk.jsonl:3: \"mobile_time\" is not an integer\n"},
        {"{\"id\":12,\n\"name\":5}",
         heard(1),
         {},
         1,
         {resourceFail, notInitialized},
         "/site.json:2: name: expected text, found 5\n"},
        {PELIO_DOCUMENT, heard(1), {"--id", "a b"}, 1, {notInitialized}, "\"a b\""},
        {noId, heard(1), {}, 2, {}, "/site.json:1: id: missing"},
        {noId, heard(1), {"--sector", "12"}, 1, {resourceFail, notInitialized}, "/site.json:1: id: missing"},
    };
    for (const auto& [document, recording, more, status, events, error] : cases) {
        folder.file("site.json", document);
        const auto ended = replay(recording, more);
        EXPECT_EQ(ended.status, status) << error;
        EXPECT_EQ(ended.events(), events);
        EXPECT_THAT(ended.err, HasSubstr(error));
    }
}

TEST_F(ReplayCommand, LoadsTheBundlesSectorUnlessItIsGiven) {
    EXPECT_THAT(replay(heard(1)).out, HasSubstr("/v2/pelio/sectors/12/bundle"));
    EXPECT_THAT(replay(heard(1), {"--sector", "010"}).out, HasSubstr("/v2/pelio/sectors/10/bundle"));
}

TEST_F(ReplayCommand, LogsOnRequestInOrderAndAlikeEachTime) {
    const auto recording = heard(1) + action(2, "initialize") + action(3, "start") + action(4, "stop");
    const auto ended = replay(recording, {"--log"});
    const auto log = ended.out.find("[INFO]  [PelioServiceManager] (initialize) : success");
    EXPECT_LT(ended.out.find("(QuenloResource) getSectorBundle"), log);
    EXPECT_LT(log, ended.out.find(init(0)));
    EXPECT_THAT(ended.out, HasSubstr("version unchanged, use cached PelioBundle"));
    EXPECT_EQ(ended.out, replay(recording, {"--log"}).out);
    EXPECT_THAT(replay(recording).out, testing::Not(HasSubstr("[INFO]")));
}

TEST_F(ReplayCommand, KeepsForeignTextInItsLine) {
    auto document = PELIO_DOCUMENT;
    document.replace(document.find("B1"), 2, R"(B\n{1\r\u2028)");
    bundle = folder.file("lines.json", document);
    const auto ended = replay(heard(1));
    EXPECT_THAT(ended.events(), SizeIs(4));
    EXPECT_THAT(ended.out, HasSubstr(R"("level_name":"B\n{1\r\u2028)"));
}

TEST_F(ReplayCommand, HandlesLinesAsTheyArriveUntilInterrupted) {
    RunningOska program({"replay", "pelio", "--bundle", bundle, "--recording", "-"});
    program.write(heard(100));
    EXPECT_THAT(program.readLine(), StartsWith("(QuenloResource) getSectorBundle : "));
    for (const auto& expected : {IMAGE, init(0), start(0), result(0, 100)})
        EXPECT_EQ(program.readLine(), expected);
    program.write(heard(600));
    EXPECT_EQ(program.readLine(), result(500, 600));
    program.interrupt();
    EXPECT_EQ(program.readLine(), "");
    EXPECT_EQ(program.waitForStatus(), 130);
}

}  // namespace
}  // namespace oska::tool_tests
