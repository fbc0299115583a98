#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "tests/fakes/site_server.h"
#include "tests/fakes/test_identity.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska_serve/site_server.h"

namespace oska::tool_tests {
namespace {

using testing::HasSubstr;
using testing::StartsWith;
using tool::SiteServer;

struct Answer {
    int status = 0;
    std::string type;
    std::string body;
};

Answer answer(const httplib::Result& result) {
    if (!result) return {};
    return {result->status, result->get_header_value("Content-Type"), result->body};
}

class Serve : public testing::Test {
protected:
    void serve(SiteServer::Options options = {}) {
        options.folder = folder.path();
        auto started = SiteServer::start(options);
        ASSERT_TRUE(started) << started.error().problem;
        server = *std::move(started);
    }

    [[nodiscard]] Answer get(const std::string& path, const httplib::Headers& headers = {}) const {
        httplib::Client client("127.0.0.1", server->port());
        return answer(client.Get(path, headers));
    }

    [[nodiscard]] Answer upload(const std::string& body, const httplib::Headers& headers = {}) const {
        httplib::Client client("127.0.0.1", server->port());
        return answer(client.Post("/v2/recordings/rfds", headers, body, "application/json"));
    }

    [[nodiscard]] BundleOutput bundle(const std::string& path, const httplib::Headers& headers = {}) const {
        const auto reply = get(path, headers);
        const auto output = json::decode<BundleOutput>(reply.body);
        EXPECT_TRUE(output) << reply.status << " " << reply.body;
        return output ? *output : BundleOutput{};
    }

    const Folder folder;
    std::unique_ptr<SiteServer> server;
};

TEST_F(Serve, ABundlesVersionFollowsItsContent) {
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    folder.file("12/dapo.json", fakes::DAPO_DOCUMENT);
    serve();
    const auto pelio = bundle("/v2/pelio/sectors/12/bundle?operating_system=iOS");
    EXPECT_EQ(pelio.url, server->url() + "/12/pelio.json");
    EXPECT_EQ(get("/12/pelio.json").body, fakes::PELIO_DOCUMENT);
    EXPECT_NE(pelio.version_id, bundle("/v2/dapo/sectors/12/bundle").version_id);

    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT + " ");
    EXPECT_NE(bundle("/v2/pelio/sectors/12/bundle").version_id, pelio.version_id);
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    EXPECT_EQ(bundle("/v2/pelio/sectors/12/bundle").version_id, pelio.version_id);
}

TEST_F(Serve, ABundleLiesWhereTheClientReachesTheServer) {
    folder.file("-7/dapo.json", "{}");
    serve();
    const std::string path = "/v2/dapo/sectors/-7/bundle";
    EXPECT_EQ(bundle(path, {{"Host", "site.local:5050"}}).url, "http://site.local:5050/-7/dapo.json");
    EXPECT_EQ(bundle(path, {{"Host", ""}}).url, server->url() + "/-7/dapo.json");
    for (const auto* host : {"a/b", "me@host", "a b", "host:x"}) {
        EXPECT_EQ(get(path, {{"Host", host}}).status, 400) << host;
    }
}

TEST_F(Serve, FilesOfASiteAndNothingElse) {
    const Folder outside;
    outside.file("secret.json", "{}");
    folder.file("12/Map 1.PNG", "image");
    folder.file("12/empty.json", "");
    folder.file("key.pem", "key");
    std::filesystem::create_symlink(outside.path() + "/secret.json", folder.path() + "/link.json");
    serve();
    const auto image = get("/12/Map%201.PNG");
    EXPECT_EQ(image.body, "image");
    EXPECT_EQ(image.type, "image/png");
    EXPECT_EQ(get("/12/empty.json").status, 200);
    const auto name = std::filesystem::path(outside.path()).filename().string();
    for (const auto& path :
         {std::string("/"), std::string("/12"), std::string("/none.json"), std::string("/key.pem"),
          std::string("/link.json"), "/../" + name + "/secret.json", "/%2e%2e/" + name + "/secret.json",
          "/" + outside.path() + "/secret.json", std::string("/12/empty.json%00.png"),
          std::string("/v2/pelio/sectors/13/bundle"), std::string("/v2/pelio/sectors/12x/bundle"),
          std::string("/v2/tovan/sectors/12/bundle")}) {
        const auto refused = get(path);
        EXPECT_EQ(refused.status, 404) << path << refused.body;
        EXPECT_NE(refused.body, "") << path;
    }
}

TEST_F(Serve, UploadsBecomeARecording) {
    const auto uploads = folder.file("uploads.txt", R"({"mobile_time":1,"rfs":{}})");
    serve({.uploads = uploads});
    EXPECT_EQ(upload(R"([{"rfs":{"a\n":-5.5,"b":-6},"mobile_time":2,"more":[]},{"mobile_time":3,"rfs":{}}])")
                  .status,
              200);
    EXPECT_EQ(upload("[]").status, 200);
    const std::string recording = R"({"mobile_time":1,"rfs":{}})"
                                  "\n"
                                  R"({"mobile_time":2,"rfs":{"a\n":-5.5,"b":-6}})"
                                  "\n"
                                  R"({"mobile_time":3,"rfs":{}})"
                                  "\n";
    EXPECT_EQ(contentOf(uploads), recording);
    for (const auto* body : {"", "{}", "[{}]", R"([{"mobile_time":1.5,"rfs":{}}])", "[1", "\xff"}) {
        const auto refused = upload(body);
        EXPECT_EQ(refused.status, 400) << body;
        EXPECT_THAT(refused.body, StartsWith("not an array of samples: ")) << body;
    }
    EXPECT_EQ(contentOf(uploads), recording);
}

TEST_F(Serve, WithoutTheTokenThereAreOnlyFiles) {
    folder.file("12/pelio.json", "{}");
    serve({.requiredToken = "secret"});
    for (const auto* authorization : {"", "Bearer", "Bearer wrong", "secret"}) {
        const httplib::Headers headers{{"Authorization", authorization}};
        EXPECT_EQ(get("/v2/pelio/sectors/12/bundle", headers).status, 401) << authorization;
        EXPECT_EQ(upload("[]", headers).status, 401) << authorization;
    }
    const httplib::Headers headers{{"Authorization", "Bearer secret"}};
    EXPECT_EQ(get("/v2/pelio/sectors/12/bundle", headers).status, 200);
    EXPECT_EQ(upload("[]", headers).status, 200);
    EXPECT_EQ(get("/12/pelio.json").status, 200);
}

TEST_F(Serve, TheProgramTellsItsAddressAndEachRequest) {
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    RunningOska program({"serve", folder.path(), "--port", "0", "--require-token", "secret"}, 2);
    const auto greeting = program.readLine();
    ASSERT_THAT(greeting, StartsWith("listening on http://127.0.0.1:"));
    const auto url = greeting.substr(greeting.find("http"));
    EXPECT_EQ(runOska({"run", "pelio", "--base-url", url, "--sector", "12", "--token", "secret"}).status, 0);
    EXPECT_EQ(runOska({"run", "pelio", "--base-url", url, "--sector", "12", "--token", "wrong"}).status, 1);
    const std::string request = R"("GET /v2/pelio/sectors/12/bundle?operating_system=iOS" )";
    EXPECT_EQ(program.readLine(), request + "200");
    EXPECT_EQ(program.readLine(), R"("GET /12/pelio.json" 200)");
    EXPECT_THAT(program.readLine(), StartsWith(request + "401: "));
    program.interrupt();
    EXPECT_EQ(program.waitForStatus(), 130);
}

TEST_F(Serve, WhatCannotBeServedIsNamed) {
    serve();
    const fakes::TestIdentity one({.names = "DNS:localhost"});
    const fakes::TestIdentity other({.names = "DNS:localhost"});
    const auto certificate = folder.file("cert.pem", one.pem());
    const auto key = folder.file("key.pem", other.keyPem());
    const auto ownKey = folder.file("own.pem", one.keyPem());
    const auto bundle = folder.file("12/pelio.json", "{}");
    const auto linked = folder.path() + "/walk.jsonl";
    const auto leading = folder.path() + "/leading.jsonl";
    std::filesystem::create_hard_link(bundle, linked);
    std::filesystem::create_symlink("12/new.json", leading);
    const struct {
        std::vector<std::string> more;
        std::string reason;
    } cases[] = {
        {{"--port", std::to_string(server->port())}, ": Address already in use\n"},
        {{"--bind", "192.0.2.1"}, "192.0.2.1:0: Cannot assign requested address\n"},
        {{"--tls-cert", "none", "--tls-key", key}, "none: "},
        {{"--tls-cert", certificate, "--tls-key", key}, "key.pem: cannot be used as the key of "},
        {{"--uploads", folder.path()}, ": Is a directory\n"},
        {{"--uploads", linked}, "pelio.json, which is served\n"},
        {{"--uploads", leading}, "new.json, which is served\n"},
        {{"--tls-cert", certificate, "--tls-key", ownKey, "--uploads", ownKey}, "own.pem, which TLS needs\n"},
    };
    for (const auto& [more, reason] : cases) {
        std::vector<std::string> arguments{"serve", folder.path()};
        if (more.front() != "--port") arguments.insert(arguments.end(), {"--port", "0"});
        arguments.insert(arguments.end(), more.begin(), more.end());
        const auto ended = runOska(arguments);
        EXPECT_EQ(ended.status, 2) << reason;
        EXPECT_THAT(ended.err, HasSubstr(reason));
    }
    EXPECT_EQ(contentOf(bundle) + contentOf(ownKey), "{}" + one.keyPem());
    EXPECT_FALSE(std::filesystem::exists(leading));
}

}  // namespace
}  // namespace oska::tool_tests
