#include <fcntl.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <new>
#include <stdexcept>
#include <thread>

#include "tests/fakes/site_server.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska/cli/memory_guard.h"

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

std::string heard(int mobileTime) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"rfs":{" Lobby-A\n":-60}})" + "\n";
}

std::string action(int mobileTime, const std::string& name) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"action":")" + name + "\"}\n";
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

TEST_F(ReplayCommand, BeginsAtTheFirstLineAndNeverTurnsTheClockBack) {
    const auto ended = replay(heard(5000) + heard(5500) + heard(4000) + heard(9000));
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.err, IsEmpty());
    EXPECT_THAT(ended.events(), ElementsAre(IMAGE, init(0), start(0), result(0, 5000), result(500, 5500),
                                            result(500, 4000), result(4000, 9000)));
}

TEST_F(ReplayCommand, SkipsBlankLinesAndToleratesCarriageReturnsAndALastLineWithoutAnEnd) {
    const auto longLine =
        R"({"note":")" + std::string(300'000, 'x') + R"(","mobile_time":2,"rfs":{"lobby-a":-60}})";
    const auto ended = replay("\r\n \t\n" + action(1, "stop") + "\n" + action(1, "start") + longLine +
                              "\r\n\r\n" + R"({"mobile_time":3,"rfs":{"lobby-a":-60}})");
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_THAT(ended.events(), ElementsAre(IMAGE, init(0), start(0), start(0), result(1, 2), result(2, 3)));
}

TEST_F(ReplayCommand, DoesWhatTheHostDid) {
    const auto ended = replay(heard(0) + action(1, "start") + action(2, "stop") + action(2, "stop") +
                              heard(3) + action(4, "initialize") + heard(5) + action(6, "start") + heard(7));
    EXPECT_EQ(ended.status, 0) << "only the first start counts";
    const auto images = [](int at) {
        return "{\"at\":" + std::to_string(at) + IMAGE.substr(IMAGE.find(','));
    };
    EXPECT_THAT(ended.events(),
                ElementsAre(IMAGE, init(0), start(0), result(0, 0), startFailure(1, "DUPLICATE_SERVICE"),
                            images(4), init(4), start(6), result(7, 7)));
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

TEST_F(ReplayCommand, InitialisesAndStartsForAnEmptyRecordingToo) {
    const auto ended = replay("\n");
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.events(), ElementsAre(IMAGE, init(0), start(0)));
}

TEST_F(ReplayCommand, NamesABadLineAfterEverythingBeforeIt) {
    const auto ended = replay(heard(1) + "\n" + R"({"mobile_time":"x","rfs":{}})" + "\n" + heard(2));
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.events(), ElementsAre(IMAGE, init(0), start(0), result(0, 1)));
    EXPECT_THAT(ended.err, HasSubstr("/walk.jsonl:3: \"mobile_time\" is not an integer\n"));
}

TEST_F(ReplayCommand, TellsAFailedInitialisationByItsStatus) {
    bundle = folder.file("broken.json", R"({"id":12,
        "name":5})");
    const auto ended = replay(heard(1));
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.events(),
                ElementsAre(R"({"at":0,"event":"onInitSuccess","success":false,"code":"RESOURCE_FAIL"})",
                            startFailure(0, "NOT_INITIALIZED")));
    EXPECT_THAT(ended.err, HasSubstr("/broken.json:2: name: expected text, found 5\n"));
}

TEST_F(ReplayCommand, SaysThatAnIdIsRefusedForNobodyElseDoes) {
    const auto ended = replay(heard(1), {"--id", "a b"});
    EXPECT_EQ(ended.status, 1);
    EXPECT_THAT(ended.out, StartsWith(startFailure(0, "NOT_INITIALIZED")));
    EXPECT_THAT(ended.err, HasSubstr("\"a b\""));
}

TEST_F(ReplayCommand, NeedsASectorFromSomewhere) {
    bundle = folder.file("other.json", R"({"name":"no id"})");
    EXPECT_EQ(replay(heard(1)).status, 2);
    EXPECT_EQ(replay(heard(1), {"--sector", "12"}).status, 1);
    bundle = folder.file("site.json", PELIO_DOCUMENT);
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

// A named pipe that is opened tells when the program has come to its wait.
TEST(Interrupted, EveryCommandThatWaitsForInputEnds) {
    const Folder folder;
    const auto site = folder.file("site.json", PELIO_DOCUMENT);
    const auto pipe = folder.path() + "/pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::vector<std::string>& waiting : std::vector<std::vector<std::string>>{
             {"simulate", "--bundle", pipe, "--route", site},
             {"simulate", "--bundle", site, "--route", pipe},
             {"check", site, pipe, site},
             {"explain", "dapo", "--bundle", pipe, "--recording", site},
             {"replay", "pelio", "--bundle", pipe, "--recording", site},
             {"replay", "pelio", "--bundle", site, "--recording", pipe},
         }) {
        RunningOska program(waiting);
        const int writer = open(pipe.c_str(), O_WRONLY | O_CLOEXEC);
        program.interrupt();
        EXPECT_EQ(program.waitForStatus(), 130) << testing::PrintToString(waiting);
        close(writer);
    }
}

TEST(MemoryGuard, TurnsAWantOfMemoryIntoAnErrorOnAnyThread) {
    const auto wantsTooMuch = []() -> tool::ExitStatus { throw std::bad_alloc(); };
    EXPECT_EXIT(std::exit(static_cast<int>(tool::runGuarded(wantsTooMuch))), testing::ExitedWithCode(2),
                "^oska: out of memory\n$");
    const auto onAThread = [] {
        std::thread([] { throw std::length_error("too long"); }).join();
        return tool::ExitStatus::done;
    };
    EXPECT_EXIT((void)tool::runGuarded(onAThread), testing::ExitedWithCode(2), "^oska: out of memory\n$");
}

TEST(Usage, IsExplainedAndItsMistakesHaveAStatus) {
    for (const std::vector<std::string>& asked :
         std::vector<std::vector<std::string>>{{"--help"}, {"replay", "--help"}, {"check", "--help"}}) {
        const auto ended = runOska(asked);
        EXPECT_EQ(ended.status, 0);
        EXPECT_THAT(ended.out, HasSubstr("Example: oska "));
    }
    const Folder folder;
    const auto site = folder.file("site.json", PELIO_DOCUMENT);
    for (const std::vector<std::string>& mistaken : std::vector<std::vector<std::string>>{
             {},
             {"fly"},
             {"check"},
             {"check", "--kind", "other", site},
             {"replay", "pelio", "--bundle", site},
             {"replay", "tovan", "--bundle", site, "--recording", site},
             {"replay", "pelio", "--bundle", "-", "--recording", "-"},
             {"replay", "pelio", "--bundle", site, "--recording", site + "x"},
             {"replay", "pelio", "--bundle", site + "x", "--recording", site},
             {"replay", "pelio", "--bundle", site, "--recording", "-", "--tail", "-1"},
             {"replay", "pelio", "--bundle", site, "--recording", "-", "--sector", "9223372036854775808"},
         }) {
        const auto ended = runOska(mistaken);
        EXPECT_EQ(ended.status, 2) << testing::PrintToString(mistaken);
        EXPECT_THAT(ended.out, IsEmpty());
        EXPECT_FALSE(ended.err.empty());
    }
}

TEST(Usage, WhatNobodyKnowsIsNamedBeforeWhatIsMissing) {
    const struct {
        std::vector<std::string> arguments;
        std::string complaint;
    } cases[] = {
        {{"--bogus"}, "Not expected: --bogus\n"},
        {{"repaly"}, "oska: there is no command repaly; did you mean replay? oska --help lists them\n"},
        {{"fly\t"}, "oska: there is no command fly\\t; oska --help lists them\n"},
        {{"explain", "dapo", "--bundle", "b", "--recording", "r", "--at", "-1"},
         "--at: -1 is not an instant; it takes whole milliseconds, from 0 on\n"},
        {{"check", "--kind", "pelio", "--bogus"}, "Not expected: --bogus\n"},
        {{"explain", "--bogus"}, "Not expected: --bogus\n"},
        {{"replay", "pelio", "--bundel", "b", "--recording", "r"},
         "Not expected: --bundel b; did you mean --bundle?\n"},
        {{"run", "pelio", "--bogus"}, "Not expected: --bogus\n"},
        {{"run", "pelio", "one", "--two", "--sector", "1"}, "Not expected: one --two\n"},
        {{"run", "pelio"}, "--sector is required\n"},
        {{"serve", "--bogus"}, "Not expected: --bogus\n"},
        {{"serve", "site", "--tls-cert", "c", "--tls-kye", "k"},
         "Not expected: --tls-kye k; did you mean --tls-key?\n"},
        {{"--bogus", "serve", "--port", "0"}, "Not expected: --bogus\n"},
        {{"simulate", "--bogus"}, "Not expected: --bogus\n"},
    };
    for (const auto& [arguments, complaint] : cases) {
        const auto ended = runOska(arguments);
        EXPECT_EQ(ended.status, 2) << testing::PrintToString(arguments);
        EXPECT_THAT(ended.out, IsEmpty());
        EXPECT_THAT(ended.err, StartsWith(complaint));
    }
    EXPECT_EQ(runOska({"run", "--bogus", "--help"}).status, 0);
    EXPECT_EQ(runOska({"--version"}).out, "oska " OSKA_VERSION "\n");
}

}  // namespace
}  // namespace oska::tool_tests
