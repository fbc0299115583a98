// The commands that run a service: `replay` in virtual time, `run` in real time.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>

#include "tests/fakes/site_server.h"
#include "tests/fakes/test_identity.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska_serve/site_server.h"

namespace oska::tool_tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tool::SiteServer;

// The name would end the line, were it printed as it is.
const std::string LEVEL =
    R"("building_id":1,"building_name":"main","level_id":10,"level_name":"B\n{1\r\u2028",)";
const std::string SUCCESS = R"("success":true)";

std::string event(int at, const std::string& name, const std::string& members) {
    return R"({"at":)" + std::to_string(at) + R"(,"event":")" + name + "\"," + members + "}\n";
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
    const auto time = R"("result":{"mobile_time":)" + std::to_string(mobileTime);
    return event(at, "onPelioResult", time + "," + LEVEL + R"("x":60,"y":30})");
}

/// A line of a recording: a sample that names lobby-a at -60 dBm, or an action.
std::string heard(int mobileTime) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"rfs":{" Lobby-A\n":-60}})" + "\n";
}

std::string action(int mobileTime, const std::string& name) {
    return R"({"mobile_time":)" + std::to_string(mobileTime) + R"(,"action":")" + name + "\"}\n";
}

/// Without the instants, and without the details of log lines.
std::string steady(const std::string& output) {
    return std::regex_replace(output, std::regex("\"at\":\\d+,| // .*"), "");
}

class ServiceCommand : public testing::Test {
protected:
    ServiceCommand() {
        document.replace(document.find("B1"), 2, R"(B\n{1\r\u2028)");
        folder.file("12/pelio.json", document);
        folder.file("12/dapo.json", fakes::DAPO_DOCUMENT);
    }

    [[nodiscard]] Ended replay(const std::string& recording, const std::string& more = "") const {
        const auto bundle = " --bundle " + folder.file("site.json", document);
        return runOska(words("replay pelio --recording " + folder.file("walk", recording) + bundle + more));
    }

    void serve(SiteServer::Options options = {}) {
        options.folder = folder.path();
        server = *SiteServer::start(options);
        request = "(QuenloResource) getSectorBundle : " + server->url() +
                  "/v2/pelio/sectors/12/bundle?operating_system=iOS\n";
    }

    [[nodiscard]] std::vector<std::string> run(const std::string& more) const {
        return words("run --base-url " + server->url() + " --sector 12 " + more);
    }

    const Folder folder;
    std::string document = fakes::PELIO_DOCUMENT;
    std::unique_ptr<SiteServer> server;
    std::string request;  // the line that a first request has
};

TEST_F(ServiceCommand, ReplayHandlesEachLineAtItsTimeAndLogsOnRequest) {
    const auto longLine = R"({"note":")" + std::string(300'000, 'x') + "\"," + heard(6100).substr(1);
    auto recording = "\r\n \t\n" + heard(5000) + heard(5500) + heard(4000) + action(5600, "start") + "\r\n" +
                     action(5700, "stop") + action(5700, "stop") + heard(5800) + action(5900, "initialize") +
                     heard(5950) + action(6000, "start") + longLine + "\n" + heard(6200);
    recording.pop_back();
    const auto ended = replay(recording);
    const auto events = image(0) + init(0) + start(0) + result(0, 5000) + result(500, 5500) +
                        result(500, 4000) + start(600, R"("success":false,"code":"DUPLICATE_SERVICE")") +
                        image(900) + init(900) + start(1000) + result(1100, 6100) + result(1200, 6200);
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.events() + ended.err, events);
    EXPECT_THAT(ended.out, AllOf(HasSubstr("sectors/12/bundle"), Not(HasSubstr("[INFO]"))));

    const auto logged = replay(recording, " --log --sector 010");
    EXPECT_EQ(logged.events(), events);
    EXPECT_THAT(logged.out,
                testing::ContainsRegex("sectors/10/bundle.*.INFO.  .PelioServiceManager. .initialize. "
                                       ": success.*onInitSuccess.* use cached PelioBundle"));
    EXPECT_EQ(logged.out, replay(recording, " --log --sector 010").out);
    EXPECT_EQ(replay("\n").events(), image(0) + init(0) + start(0));
}

TEST_F(ServiceCommand, ReplayPassesOverYearsInWhichNothingHappens) {
    std::string walk;
    for (int i = 0; i < 6; ++i) walk += heard(i * 100);
    const auto ended = runOska(words("replay dapo --output-interval 0.001 --unchanged-delivery-interval 3 "
                                     "--recording - --bundle " +
                                     folder.path() + "/12/dapo.json"),
                               walk + R"({"mobile_time":9000000000000000000,"rfs":{}})");
    EXPECT_EQ(
        std::regex_replace(ended.events(), std::regex(R"re(."at":(\d+),"event":"(\w+)".*\n)re"), "$1 $2,"),
        "0 onDapoMapImageData,0 onInitSuccess,0 onDapoSuccess,500 visibility,501 onDapoSelectionChanged,"
        "3501 onDapoSelectionChanged,5500 visibility,9000000000000006000 upload,");
}

TEST_F(ServiceCommand, ReplaySaysWhyItFailed) {
    auto recording = heard(1) + "\n{}\n" + heard(2);
    const auto failure = [&](const std::string& more = "") {
        const auto ended = replay(recording, more);
        return ended.events() + ended.err + std::to_string(ended.status);
    };
    const auto load = event(0, "onInitSuccess", R"("success":false,"code":"RESOURCE_FAIL")");
    const auto stopped = start(0, R"("success":false,"code":"NOT_INITIALIZED")");
    const auto faultless = image(0) + init(0) + start(0) + result(0, 1);
    EXPECT_EQ(failure(), faultless + folder.path() + "/walk:3: \"mobile_time\" is missing\n2");
    recording = heard(1);
    EXPECT_EQ(failure(" --id a\n"), stopped + "oska: the service refuses the id \"a\\n\"\n1");
    document = "{\"id\":12,\n\"name\":5}";
    const auto site = folder.path() + "/site.json:";
    EXPECT_EQ(failure(), load + stopped + site + "2: name: expected text, found 5\n1");
    document = "{}";
    const auto noId = site + "1: id: missing, expected a value, found none\n";
    EXPECT_EQ(failure(), noId + "2");
    EXPECT_EQ(failure(" --sector 12"), load + stopped + noId + "1");
}

TEST_F(ServiceCommand, ReplayHandlesLinesAsTheyArriveUntilInterrupted) {
    const RunningOska program(
        words("replay pelio --recording - --bundle " + folder.path() + "/12/pelio.json"));
    program.write(heard(100));
    EXPECT_EQ(program.readLine("result") + "\n", result(0, 100));
    program.write(heard(600));
    EXPECT_EQ(program.readLine() + "\n", result(500, 600));
    EXPECT_EQ(program.interrupt(), 130);
    EXPECT_EQ(program.readLine(), "");
}

TEST_F(ServiceCommand, RunWalksThroughTheSiteAsFarAsItsInputIsGood) {
    serve();
    const auto walk = heard(1000) + heard(61'000) + heard(500);
    const auto ended = runOska(run("pelio --speed 100000 --recording -"), walk);
    EXPECT_EQ(ended.status, 0);
    const auto expected = request +
                          "[INFO]  [OskaResourceManager] (loadPelioBundle) : fetched BundleOutput\n"
                          "[INFO]  [OskaResourceManager] (loadPelioResources) : updated PelioBundle\n"
                          "[INFO]  [PelioServiceManager] (initialize) : success\n" +
                          steady(image(0) + init(0)) +
                          "[INFO]  [PelioServiceManager] (startGenerator) : success\n" +
                          steady(start(0) + result(0, 1000) + result(0, 61'000) + result(0, 500)) +
                          "[WARN]  [PelioServiceManager] (stopService) : skipped because "
                          "rfdGenerator is nil\n";
    EXPECT_EQ(steady(ended.out), expected);

    const auto bad = folder.file("bad.jsonl", heard(1) + "\n{}\n" + heard(9));
    const auto quiet = runOska(run("pelio --quiet --recording " + bad));
    EXPECT_EQ(quiet.status, 2);
    EXPECT_EQ(steady(quiet.out), request + steady(image(0) + init(0) + start(0) + result(0, 1)));
    EXPECT_EQ(quiet.err, bad + ":3: \"mobile_time\" is missing\n");
}

TEST_F(ServiceCommand, RunHandlesLinesAsTheyComeAndUploadsWhenInterrupted) {
    const fakes::TestIdentity identity({.names = "DNS:elsewhere"});
    const auto uploads = folder.path() + "/uploads.jsonl";
    serve({.tlsCertificate = folder.file("cert.pem", identity.pem()),
           .tlsKey = folder.file("key.pem", identity.keyPem()),
           .requiredToken = "secret",
           .uploads = uploads});
    const RunningOska oska(run("dapo --token secret --recording - --force-update"));
    EXPECT_THAT(oska.readLine("(QuenloResource)"), HasSubstr("&_rt="));
    EXPECT_EQ(oska.readLine("Trust"),
              "(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= 127.0.0.1");
    oska.write(action(0, "initialize") + heard(1).substr(0, 9));
    EXPECT_THAT(oska.readLine("(loadDapoResources) : v"), HasSubstr("unchanged, use cached DapoBundle"));
    EXPECT_THAT(oska.readLine("onInitSuccess"), HasSubstr("true"));
    oska.write(heard(1).substr(9) + heard(2));
    oska.write("{\"mobile_time\":3,\"action\":\"setVisibility\",\"isVisible\":true}\n");
    EXPECT_THAT(oska.readLine("visibility"), HasSubstr("true"));
    EXPECT_EQ(oska.interrupt(), 130);
    EXPECT_EQ(contentOf(uploads), heard(1) + heard(2));
}

TEST_F(ServiceCommand, RunSaysWhyItCannotLoadASector) {
    serve({.requiredToken = "oska"});
    folder.file("13/pelio.json", "{\n\"id\":\"1\u0085\"}");
    const auto site = server->url() + " --sector ";
    const std::string answer = "/bundle?operating_system=iOS: ";
    const std::pair<std::string, std::string> reasons[] = {
        {site + "12 --token wrong",
         "/v2/pelio/sectors/12" + answer +
             "HTTP status 401 (Unauthorized); the server does not take this token (--token)"},
        {site + "12 --no-token", "there is no token, as when no user is signed in (--token gives one)"},
        {site + "9", "sectors/9" + answer + "HTTP status 404 (Not Found); does the server have sector 9?"},
        {site + "13", "/13/pelio.json:2: id: expected an integer, found \"1\\u0085\""},
        {"http://127.0.0.1:1 --sector 12",
         "127.0.0.1:1/v2/pelio/sectors/12" + answer +
             "Could not connect to 127.0.0.1:1: Connection refused; does a server listen there?"},
        {"https:// --sector 12", "the base URL \"https:\" names no host"},
        {"//10.0.0.2 --sector 12",
         "the base URL \"//10.0.0.2\" has no scheme; \"http://10.0.0.2\" may be meant"},
    };
    for (const auto& [base, reason] : reasons) {
        const auto ended = runOska(words("run pelio --base-url " + base));
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.events(), HasSubstr(R"("code":"RESOURCE_FAIL"})"));
        EXPECT_THAT(ended.err, AllOf(StartsWith("oska: cannot load sector "), HasSubstr(reason + "\n")));
    }
    const auto refused = runOska(run("pelio --id a\n"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "oska: the service refuses the id \"a\\n\"\n");
}

}  // namespace
}  // namespace oska::tool_tests
