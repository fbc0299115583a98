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

using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using tool::SiteServer;

/// Without the instants, and without the versions of the server's making.
std::vector<std::string> lines(const std::string& output) {
    static const std::regex MADE_UP("\"at\":\\d+,|[0-9a-f]{16}");
    std::vector<std::string> found;
    std::istringstream text(std::regex_replace(output, MADE_UP, ""));
    for (std::string line; std::getline(text, line);) found.push_back(line);
    return found;
}

std::string result(int mobileTime) {
    return R"({"event":"onPelioResult","result":{"mobile_time":)" + std::to_string(mobileTime) +
           R"(,"building_id":1,"building_name":"main","level_id":10,"level_name":"B1","x":60,"y":30}})";
}

class RunCommand : public testing::Test {
protected:
    void serve(SiteServer::Options options = {}) {
        options.folder = folder.path();
        server = *SiteServer::start(options);
    }

    [[nodiscard]] std::vector<std::string> command(const std::string& more) const {
        return words("run --base-url " + server->url() + " --sector 12 " + more);
    }

    const Folder folder;
    const std::string pelio = folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    const std::string dapo = folder.file("12/dapo.json", fakes::DAPO_DOCUMENT);
    std::unique_ptr<SiteServer> server;
};

TEST_F(RunCommand, LoadsTheSiteWalksThroughItAndStops) {
    serve();
    const auto walk = folder.file("walk.jsonl", heard(1000) + heard(61'000) + heard(500));
    const auto ended = runOska(command("pelio --speed 100000 --recording " + walk));
    EXPECT_EQ(ended.status, 0);
    const std::string log = "[INFO]  [OskaResourceManager] ";
    EXPECT_THAT(
        lines(ended.out),
        ElementsAre(
            "(QuenloResource) getSectorBundle : " + server->url() +
                "/v2/pelio/sectors/12/bundle?operating_system=iOS",
            log + "(loadPelioBundle) : fetched BundleOutput // sectorId = 12, versionId = ",
            log + "(loadPelioResources) : updated PelioBundle // sectorId = 12, versionId = ",
            "[INFO]  [PelioServiceManager] (initialize) : success // id = oska, sectorId = 12, forceUpdate = "
            "false, wardCount = 1, levelCount = 1",
            StartsWith(R"({"event":"onPelioMapImageData","level_id":10,)"),
            R"({"event":"onInitSuccess","success":true})",
            "[INFO]  [PelioServiceManager] (startGenerator) : success // id = oska, replayMode = true",
            R"({"event":"onPelioSuccess","success":true})", result(1000), result(61'000), result(500),
            "[WARN]  [PelioServiceManager] (stopService) : skipped because rfdGenerator is nil"));

    const auto quiet = runOska(command("pelio --quiet"));
    EXPECT_EQ(quiet.err, "");
    EXPECT_THAT(lines(quiet.out), ElementsAre(StartsWith("(QuenloResource) "),
                                              HasSubstr("onPelioMapImageData"), HasSubstr("onInitSuccess")));
}

TEST_F(RunCommand, HandlesLinesAsTheyComeOverTlsAndReusesAnUnchangedBundle) {
    const fakes::TestIdentity identity({.names = "DNS:elsewhere"});
    serve({.tlsCertificate = folder.file("cert.pem", identity.pem()),
           .tlsKey = folder.file("key.pem", identity.keyPem())});
    RunningOska oska(command("pelio --recording - --force-update"));
    EXPECT_THAT(oska.readLine("(QuenloResource)"), HasSubstr("&_rt="));
    EXPECT_EQ(oska.readLine("Trust"),
              "(OskaOnPremiseServerTrustDelegate) accepting server trust for on-premise host= 127.0.0.1");
    EXPECT_THAT(oska.readLine("onPelioSuccess"), HasSubstr("true"));
    oska.write(heard(5).substr(0, 9));
    oska.write(heard(5).substr(9) + action(1, "initialize"));
    EXPECT_THAT(oska.readLine("onPelioResult"), HasSubstr(R"("mobile_time":5)"));
    EXPECT_THAT(oska.readLine("(loadPelioResources)"),
                HasSubstr("version unchanged, use cached PelioBundle"));
    EXPECT_THAT(oska.readLine("onInitSuccess"), HasSubstr("true"));
    oska.endInput();
    EXPECT_EQ(oska.waitForStatus(), 0);
}

TEST_F(RunCommand, SaysWhyItCannotLoadASector) {
    serve({.requiredToken = "oska"});
    folder.file("13/pelio.json", "{\n\"id\":\"1\u0085\"}");
    const auto site = server->url();
    const std::string query = "/bundle?operating_system=iOS: ";
    const struct {
        std::string sector;
        std::string base;
        std::string more;
        std::string reason;
    } cases[] = {
        {"12", site, " --token wrong",
         site + "/v2/pelio/sectors/12" + query +
             "HTTP status 401 (Unauthorized); the server does not take this token (--token)"},
        {"12", site, " --no-token", "there is no token, as when no user is signed in (--token gives one)"},
        {"9", site, "",
         site + "/v2/pelio/sectors/9" + query +
             "HTTP status 404 (Not Found); does the server have sector 9?"},
        {"13", site, "", site + "/13/pelio.json:2: id: expected an integer, found \"1\\u0085\""},
        {"12", "http://127.0.0.1:1", "",
         "http://127.0.0.1:1/v2/pelio/sectors/12" + query +
             "Could not connect to 127.0.0.1:1: Connection refused; does a server listen there?"},
        {"12", "https://", "", "the base URL \"https:\" names no host"},
        {"12", "//10.0.0.2", "",
         "the base URL \"//10.0.0.2\" has no scheme; \"http://10.0.0.2\" may be meant"},
    };
    for (const auto& [sector, base, more, reason] : cases) {
        const auto ended = runOska(words("run pelio --sector " + sector + " --base-url " + base + more));
        EXPECT_EQ(ended.status, 1);
        EXPECT_THAT(ended.events(), ElementsAre(testing::EndsWith(R"("code":"RESOURCE_FAIL"})")));
        EXPECT_EQ(ended.err, "oska: cannot load sector " + sector + ": " + reason + "\n");
    }
    const auto refused = runOska(command("pelio --id a\n"));
    EXPECT_EQ(refused.status, 1);
    EXPECT_EQ(refused.err, "oska: the service refuses the id \"a\\n\"\n");
}

TEST_F(RunCommand, NamesBadInputAfterWhatCameBefore) {
    serve();
    const auto bad = folder.file("bad.jsonl", heard(1) + "\n{\"mobile_time\":\"x\"}\n" + heard(9));
    const auto ended = runOska(command("pelio --recording " + bad));
    EXPECT_EQ(ended.status, 2);
    EXPECT_THAT(ended.out, AllOf(HasSubstr(R"("mobile_time":1,)"), Not(HasSubstr(R"("mobile_time":9,)"))));
    EXPECT_EQ(ended.err, bad + ":3: \"mobile_time\" is not an integer\n");
    const auto unasked = runOska(command("pelio --recording /none"));
    EXPECT_EQ(unasked.status, 2);
    EXPECT_EQ(unasked.out + unasked.err, "/none: No such file or directory\n") << "the server is not asked";
}

TEST_F(RunCommand, CtrlCStopsInOrderAndStillUploads) {
    const auto uploads = folder.path() + "/uploads.jsonl";
    serve({.requiredToken = "secret", .uploads = uploads});
    RunningOska oska(command("dapo --token secret --recording -"));
    oska.write(heard(1) + heard(2) + R"({"mobile_time":3,"action":"setVisibility","isVisible":true})" + "\n");
    EXPECT_THAT(oska.readLine("visibility"), HasSubstr("true"));
    oska.interrupt();
    EXPECT_EQ(oska.waitForStatus(), 130);
    EXPECT_EQ(contentOf(uploads), heard(1) + heard(2));
}

}  // namespace
}  // namespace oska::tool_tests
