#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <sstream>

#include "tests/fakes/site_server.h"
#include "tests/fakes/test_identity.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska_serve/site_server.h"

namespace oska::tool_tests {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;
using tool::SiteServer;

const std::string TOKEN = "secret";
const std::string LOG = "[INFO]  [OskaResourceManager] ";

/// Without the instants, and without the versions of the server's making.
std::vector<std::string> lines(const std::string& output) {
    static const std::regex AT(R"re("at":\d+,)re");
    static const std::regex VERSION("versionId = [0-9a-f]{16}");
    std::vector<std::string> found;
    std::istringstream text(output);
    for (std::string line; std::getline(text, line);) {
        found.push_back(std::regex_replace(std::regex_replace(line, AT, ""), VERSION, "versionId = V"));
    }
    return found;
}

std::string result(int mobileTime) {
    return R"({"event":"onPelioResult","result":{"mobile_time":)" + std::to_string(mobileTime) +
           R"(,"building_id":1,"building_name":"main","level_id":10,"level_name":"B1","x":60,"y":30}})";
}

class RunCommand : public testing::Test {
protected:
    SiteServer& serve(SiteServer::Options more = {}) {
        more.folder = folder.path();
        auto started = SiteServer::start(more);
        EXPECT_TRUE(started) << started.error().problem;
        server = *std::move(started);
        return *server;
    }

    [[nodiscard]] std::vector<std::string> arguments(const std::string& service,
                                                     const std::vector<std::string>& more) const {
        std::vector<std::string> all{"run", service, "--base-url", server->url(), "--sector", "12"};
        all.insert(all.end(), more.begin(), more.end());
        return all;
    }

    [[nodiscard]] Ended run(const std::vector<std::string>& more) const {
        return runOska(arguments("pelio", more));
    }

    const Folder folder;
    const std::string pelio = folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    const std::string dapo = folder.file("12/dapo.json", fakes::DAPO_DOCUMENT);
    std::unique_ptr<SiteServer> server;
};

TEST_F(RunCommand, LoadsTheSiteWalksThroughItAndStops) {
    serve();
    const auto walk = folder.file("walk.jsonl", heard(1000) + heard(61'000) + heard(500));
    const auto ended = run({"--token", TOKEN, "--recording", walk, "--speed", "100000"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(
        lines(ended.out),
        ElementsAre(
            "(QuenloResource) getSectorBundle : " + server->url() +
                "/v2/pelio/sectors/12/bundle?operating_system=iOS",
            LOG + "(loadPelioBundle) : fetched BundleOutput // sectorId = 12, versionId = V",
            LOG + "(loadPelioResources) : updated PelioBundle // sectorId = 12, versionId = V",
            "[INFO]  [PelioServiceManager] (initialize) : success // id = oska, sectorId = 12, forceUpdate = "
            "false, "
            "wardCount = 1, levelCount = 1",
            StartsWith(R"({"event":"onPelioMapImageData","level_id":10,)"),
            R"({"event":"onInitSuccess","success":true})",
            "[INFO]  [PelioServiceManager] (startGenerator) : success // id = oska, replayMode = true",
            R"({"event":"onPelioSuccess","success":true})", result(1000), result(61'000), result(500),
            "[WARN]  [PelioServiceManager] (stopService) : skipped because rfdGenerator is nil"));
}

TEST_F(RunCommand, HandlesLinesAsTheyComeAndReusesAnUnchangedBundle) {
    serve();
    RunningOska oska(arguments("pelio", {"--token", TOKEN, "--recording", "-", "--force-update"}));
    EXPECT_THAT(oska.readLine(), AllOf(StartsWith("(QuenloResource) "), HasSubstr("&_rt=")));
    EXPECT_THAT(oska.readUntil("onPelioSuccess"), HasSubstr("true"));
    oska.write(heard(5).substr(0, 9));
    oska.write(heard(5).substr(9) + action(1, "initialize"));
    EXPECT_THAT(oska.readUntil("onPelioResult"), HasSubstr(R"("mobile_time":5)"));
    EXPECT_THAT(oska.readUntil("(loadPelioResources)"),
                HasSubstr("version unchanged, use cached PelioBundle"));
    EXPECT_THAT(oska.readUntil("onInitSuccess"), HasSubstr("true"));
    oska.endInput();
    EXPECT_EQ(oska.waitForStatus(), 0);
}

TEST_F(RunCommand, WithoutARecordingInitializesAndSaysHowThatEnded) {
    serve({.requiredToken = "oska"});
    folder.file("13/pelio.json", "{\n\"id\":\"1\u0085\"}");
    const std::string query = "/bundle?operating_system=iOS: ";
    const auto sectors = server->url() + "/v2/pelio/sectors/";
    const struct {
        std::string sector;
        std::vector<std::string> arguments;
        std::string reason;
    } cases[] = {
        {"12",
         {"--token", "wrong"},
         sectors + "12" + query +
             "HTTP status 401 (Unauthorized); the server does not take this token (--token)"},
        {"12", {"--no-token"}, "there is no token, as when no user is signed in (--token gives one)"},
        {"9",
         {"--quiet"},
         sectors + "9" + query + "HTTP status 404 (Not Found); does the server have sector 9?"},
        {"13", {}, server->url() + "/13/pelio.json:2: id: expected an integer, found \"1\\u0085\""},
        {"12",
         {"--base-url", "http://127.0.0.1:1"},
         "http://127.0.0.1:1/v2/pelio/sectors/12" + query +
             "Could not connect to 127.0.0.1:1: Connection refused; does a server listen there?"},
        {"12",
         {"--base-url", "localhost:5050"},
         "the base URL \"localhost:5050\" has no scheme; \"http://localhost:5050\" may be meant"},
        {"12", {"--base-url", "https://"}, "the base URL \"https:\" names no host"},
        {"12",
         {"--base-url", "//10.0.0.2"},
         "the base URL \"//10.0.0.2\" has no scheme; \"http://10.0.0.2\" may be meant"},
    };
    for (const auto& [sector, more, reason] : cases) {
        std::vector<std::string> all{"run", "pelio", "--sector", sector};
        all.insert(all.end(), more.begin(), more.end());
        if (reason.find("127.0.0.1:1:") == std::string::npos && reason.find("scheme") == std::string::npos)
            all.insert(all.end(), {"--base-url", server->url()});
        const auto ended = runOska(all);
        EXPECT_EQ(ended.status, 1);
        ASSERT_THAT(ended.events(), testing::SizeIs(1));
        EXPECT_THAT(ended.events()[0], EndsWith(R"("code":"RESOURCE_FAIL"})"));
        EXPECT_EQ(ended.err, "oska: cannot load sector " + sector + ": " + reason + "\n");
    }
}

TEST_F(RunCommand, QuietLeavesTheEventsAndTheDirectLines) {
    serve();
    const auto ended = run({"--quiet"});
    EXPECT_EQ(ended.status, 0);
    EXPECT_EQ(ended.err, "");
    EXPECT_THAT(lines(ended.out), ElementsAre(StartsWith("(QuenloResource) "),
                                              HasSubstr("onPelioMapImageData"), HasSubstr("onInitSuccess")));
    const auto refused = run({"--id", "a b\n"});
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.events(), testing::IsEmpty());
    EXPECT_EQ(refused.err, "oska: the service refuses the id \"a b\\n\"\n");
}

TEST_F(RunCommand, TakesTheCertificateOfItsOwnServer) {
    const fakes::TestIdentity identity({.names = "DNS:elsewhere"});
    serve({.tlsCertificate = folder.file("cert.pem", identity.pem()),
           .tlsKey = folder.file("key.pem", identity.keyPem())});
    const auto ended = run({"--token", TOKEN});
    EXPECT_EQ(ended.status, 0);
    EXPECT_THAT(ended.out,
                HasSubstr("\n(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= "
                          "127.0.0.1\n"));
}

TEST_F(RunCommand, NamesBadInputAfterWhatCameBefore) {
    serve();
    const auto bad = folder.file("bad.jsonl", heard(1) + "\n{\"mobile_time\":\"x\"}\n" + heard(9));
    const struct {
        std::string recording;
        std::string problem;
        bool isAsked;  // whether the server is; each request has its line
    } cases[] = {{bad, ":3: \"mobile_time\" is not an integer", true},
                 {folder.path() + "/none.jsonl", ": No such file or directory", false},
                 {folder.path(), ": Is a directory", false}};
    for (const auto& [recording, problem, isAsked] : cases) {
        const auto ended = run({"--token", TOKEN, "--recording", recording});
        EXPECT_EQ(ended.status, 2);
        EXPECT_EQ(ended.out.empty(), !isAsked);
        EXPECT_EQ(ended.out.find(R"("mobile_time":1,)") != std::string::npos, isAsked);
        EXPECT_EQ(ended.out.find(R"("mobile_time":9,)"), std::string::npos);
        EXPECT_EQ(ended.err, recording + problem + "\n");
    }
}

TEST_F(RunCommand, CtrlCStopsInOrderAndStillUploads) {
    const auto uploads = folder.path() + "/uploads.jsonl";
    serve({.requiredToken = TOKEN, .uploads = uploads});
    RunningOska oska(arguments("dapo", {"--token", TOKEN, "--recording", "-"}));
    oska.write(heard(1) + heard(2) + R"({"mobile_time":3,"action":"setVisibility","isVisible":true})" + "\n");
    EXPECT_THAT(oska.readUntil("visibility"), HasSubstr("true"));
    oska.interrupt();
    EXPECT_EQ(oska.waitForStatus(), 130);
    EXPECT_EQ(contentOf(uploads), heard(1) + heard(2));
}

}  // namespace
}  // namespace oska::tool_tests
