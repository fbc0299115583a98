#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>

#include "oska/json/json.h"
#include "oska/resources/bundle.h"
#include "tests/fakes/site_server.h"
#include "tests/fakes/test_identity.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska_serve/request_threads.h"
#include "tools/oska_serve/site_answers.h"
#include "tools/oska_serve/site_server.h"

namespace oska::tool_tests {
namespace {

using httplib::Headers;
using testing::HasSubstr;
using testing::StartsWith;
using tool::SiteServer;

const std::string PELIO = "/v2/pelio/sectors/12/bundle";
const std::string DAPO = "/v2/dapo/sectors/-7/bundle";
const std::string UPLOADS = "/v2/recordings/rfds";
const std::string LINE = "--oska-part-9f1c27d04be86a35";
const std::string TYPE = "\r\nContent-Type: image/png\r\nContent-Range: bytes ";

class Serve : public testing::Test {
protected:
    void serve(SiteServer::Options options = {}) {
        options.folder = folder.path();
        server = *SiteServer::start(options);
    }

    [[nodiscard]] httplib::Response get(const std::string& path, const Headers& headers = {}) const {
        const auto result = httplib::Client("127.0.0.1", server->port()).Get(path, headers);
        return result ? *result : httplib::Response();
    }

    [[nodiscard]] BundleOutput bundle(const std::string& path, const Headers& headers = {}) const {
        return *json::decode<BundleOutput>(get(path, headers).body);
    }

    [[nodiscard]] httplib::Response upload(const std::string& body, const Headers& headers = {},
                                           bool packs = false, const std::string& path = UPLOADS) const {
        httplib::Client client("127.0.0.1", server->port());
        client.set_compress(packs);
        const auto result = client.Post(path, headers, body, "application/json");
        return result ? *result : httplib::Response();
    }

    const Folder folder;
    std::unique_ptr<SiteServer> server;
};

TEST_F(Serve, ABundleLiesWhereTheClientReachesTheServerInAVersionOfItsContent) {
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    folder.file("-7/dapo.json", fakes::DAPO_DOCUMENT);
    serve();
    const auto pelio = bundle(PELIO);
    EXPECT_EQ(pelio.url, server->url() + "/12/pelio.json");
    EXPECT_EQ(get("/12/pelio.json").body, fakes::PELIO_DOCUMENT);
    EXPECT_NE(pelio.version_id, bundle(DAPO).version_id);
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT + " ");
    EXPECT_NE(bundle(PELIO).version_id, pelio.version_id);
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    EXPECT_EQ(bundle(PELIO).version_id, pelio.version_id);

    EXPECT_EQ(bundle(DAPO, {{"Host", "site.local:5050"}}).url, "http://site.local:5050/-7/dapo.json");
    EXPECT_EQ(bundle(DAPO, {{"Host", ""}}).url, server->url() + "/-7/dapo.json");
    for (const auto* host : {"a/b", "me@host", "a b", "host:x"})
        EXPECT_EQ(get(DAPO, {{"Host", host}}).status, 400) << host;
}

TEST_F(Serve, FilesOfASiteAndNothingElse) {
    const Folder outside;
    const auto secret = outside.file("secret.json", "{}");
    folder.file("12/Map 1.PNG", "image");
    folder.file("12/empty.json", "");
    folder.file("key.pem", "key");
    std::filesystem::create_symlink(secret, folder.path() + "/link.json");
    serve();
    const auto image = get("/12/Map%201.PNG");
    EXPECT_EQ(image.body, "image");
    EXPECT_EQ(image.get_header_value("Content-Type"), "image/png");
    EXPECT_EQ(get("/12/empty.json").status, 200);
    const auto name = std::filesystem::path(outside.path()).filename().string();
    for (const std::string& path :
         {std::string("/12"), std::string("/none.json"), std::string("/key.pem"), std::string("/link.json"),
          "/../" + name + "/secret.json", "/%2e%2e/" + name + "/secret.json", "/" + secret,
          std::string("/12/empty.json%00.png"), std::string("/v2/pelio/sectors/13/bundle"),
          std::string("/v2/pelio/sectors/12x/bundle"), std::string("/v2/tovan/sectors/12/bundle")}) {
        const auto refused = get(path);
        EXPECT_EQ(refused.status, 404) << path << refused.body;
        EXPECT_NE(refused.body, "") << path;
    }
}

TEST_F(Serve, RangesEndWithTheContent) {
    const struct {
        std::string path;
        std::string range;
        int status;
        std::string place;  // as the header Content-Range has it
        std::string body;   // empty: any
    } cases[] = {
        {"/map.png", "2-4", 206, "bytes 2-4/10", "234"},
        {"/map.png", "8-9223372036854775807", 206, "bytes 8-9/10", "89"},
        {"/map.png", "8-99999999999999999999", 416, "", ""},
        {"/map.png", "10-5000", 416, "bytes */10", ""},
        {"/map.png", "-3", 206, "bytes 7-9/10", "789"},
        {"/map.png", "-5000", 206, "bytes 0-9/10", "0123456789"},
        {"/map.png", "-0", 416, "bytes */10", ""},
        {"/map.png", "1-2,-1", 206, "",
         LINE + TYPE + "1-2/10\r\n\r\n12\r\n" + LINE + TYPE + "9-9/10\r\n\r\n9\r\n" + LINE + "--\r\n"},
        {"/map.png", "1-2,5000-6000", 206, "bytes 1-2/10", "12"},
        {"/map.png", "0-,0-,-5", 200, "", "0123456789"},
        {"/none.png", "0-0", 416, "bytes */0", ""},
        {PELIO, "0-0", 401, "", ""},
        {"/absent", "3-5000", 404, "", "nothing is served at \"/absent\"\n"},
    };
    folder.file("map.png", "0123456789");
    folder.file("none.png", "");
    serve({.requiredToken = "x"});
    for (const auto& [path, range, status, place, body] : cases) {
        const auto reply = get(path, {{"Range", "bytes=" + range}});
        EXPECT_EQ(reply.status, status) << path << range;
        EXPECT_EQ(reply.get_header_value("Content-Range"), place) << path << range;
        EXPECT_EQ(reply.body, body.empty() ? reply.body : body) << path << range;
    }
}

TEST_F(Serve, UploadsBecomeARecording) {
    const auto uploads = folder.file("uploads.txt", R"({"mobile_time":1,"rfs":{}})");
    serve({.uploads = uploads});
    EXPECT_EQ(upload(R"([{"rfs":{"a\n":-5.5,"b":-6},"mobile_time":2,"more":[]},{"mobile_time":3,"rfs":{}}])")
                  .status,
              200);
    EXPECT_EQ(upload("[]").status, 200);
    for (const auto* body : {"", "{}", "[{}]", R"([{"mobile_time":1.5,"rfs":{}}])", "[1", "\xff"}) {
        const auto refused = upload(body);
        EXPECT_EQ(refused.status, 400) << body;
        EXPECT_THAT(refused.body, StartsWith("not an array of samples: ")) << body;
    }
    EXPECT_EQ(contentOf(uploads),
              "{\"mobile_time\":1,\"rfs\":{}}\n"
              "{\"mobile_time\":2,\"rfs\":{\"a\\n\":-5.5,\"b\":-6}}\n"
              "{\"mobile_time\":3,\"rfs\":{}}\n");
}

TEST_F(Serve, WithoutTheTokenThereAreOnlyFiles) {
    folder.file("12/pelio.json", "{}");
    serve({.requiredToken = "secret"});
    EXPECT_EQ(get("/12/pelio.json").status, 200);
    for (const std::string authorization : {"", "Bearer", "Bearer wrong", "secret", "Bearer secret"}) {
        const Headers headers{{"Authorization", authorization}};
        const int status = authorization == "Bearer secret" ? 200 : 401;
        EXPECT_EQ(get(PELIO, headers).status, status) << authorization;
        EXPECT_EQ(upload("[]", headers).status, status) << authorization;
    }
}

TEST_F(Serve, ABodyCountsByWhatItUnpacksTo) {
    serve({.requiredToken = "secret"});
    const std::string limit(std::size_t{64} << 20, ' ');
    const Headers token{{"Authorization", "Bearer secret"}};
    const Headers isPacked{{"Content-Encoding", "gzip"}};
    EXPECT_EQ(upload("[]", token, true).status, 200);
    EXPECT_EQ(upload("[]" + limit.substr(2), token, true).status, 200);
    EXPECT_EQ(upload(limit + " ", token, true).status, 413);
    EXPECT_EQ(upload(limit + " ", token, false).status, 413);
    EXPECT_EQ(upload("no gzip", {*token.begin(), *isPacked.begin()}).status, 400);
    // What is refused anyway is not unpacked: nobody sees that it cannot be.
    EXPECT_EQ(upload("no gzip", isPacked).status, 401);
    EXPECT_EQ(upload("no gzip", isPacked, false, "/elsewhere").status, 404);
}

TEST_F(Serve, MemoryThatRunsOutEndsNothingButTheRequest) {
    tool::SiteAnswers answers(*tool::SiteFolder::open(folder.path()), nullptr, std::nullopt, "http");
    httplib::Server library;
    library.Get("/handler", [](const auto&, auto&) { throw std::bad_alloc(); });
    answers.installIn(library, false);
    library.set_logger([](const auto& request, const auto&) {
        if (request.path == "/reply") throw std::bad_alloc();  // where the library catches nothing
    });
    library.new_task_queue = [] { return new tool::RequestThreads(1); };
    const int port = library.bind_to_any_port("127.0.0.1");
    std::thread listening([&] { library.listen_after_bind(); });
    EXPECT_EQ(httplib::Client("127.0.0.1", port).Get("/reply")->status, 404);
    const auto reply = httplib::Client("127.0.0.1", port).Get("/handler");
    library.stop();
    listening.join();
    ASSERT_TRUE(reply);
    EXPECT_EQ(reply->status, 500);
    EXPECT_EQ(reply->body, "there is not enough memory to answer this\n");
}

TEST_F(Serve, TheProgramTellsItsAddressAndEachRequest) {
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    RunningOska program(words("serve --port 0 --require-token secret " + folder.path()), 2);
    const auto greeting = program.readLine();
    ASSERT_THAT(greeting, StartsWith("listening on http://127.0.0.1:"));
    const auto run =
        "run pelio --sector 12 --base-url " + greeting.substr(greeting.find("http")) + " --token ";
    EXPECT_EQ(runOska(words(run + "secret")).status, 0);
    EXPECT_EQ(runOska(words(run + "wrong")).status, 1);
    const auto request = "\"GET " + PELIO + "?operating_system=iOS\" ";
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
    const auto certificate = "--tls-cert " + folder.file("cert.pem", one.pem()) + " --tls-key ";
    const auto key = folder.file("key.pem", other.keyPem());
    const auto ownKey = folder.file("own.pem", one.keyPem());
    const auto bundle = folder.file("12/pelio.json", "{}");
    const auto linked = folder.path() + "/walk.jsonl";
    const auto leading = folder.path() + "/leading.jsonl";
    std::filesystem::create_hard_link(bundle, linked);
    std::filesystem::create_symlink("12/new.json", leading);
    const struct {
        std::string more;
        std::string reason;
    } cases[] = {
        {"--port " + std::to_string(server->port()), ": Address already in use\n"},
        {"--port 0 --bind 192.0.2.1", "192.0.2.1:0: Cannot assign requested address\n"},
        {"--tls-cert none --tls-key " + key, "none: "},
        {certificate + key, "key.pem: cannot be used as the key of "},
        {"--port 0 --uploads " + folder.path(), ": Is a directory\n"},
        {"--port 0 --uploads " + linked, "pelio.json, which is served\n"},
        {"--port 0 --uploads " + leading, "new.json, which is served\n"},
        {"--port 0 " + certificate + ownKey + " --uploads " + ownKey, "own.pem, which TLS needs\n"},
    };
    for (const auto& [more, reason] : cases) {
        const auto ended = runOska(words("serve " + folder.path() + " " + more));
        EXPECT_EQ(ended.status, 2) << reason;
        EXPECT_THAT(ended.err, HasSubstr(reason));
    }
    EXPECT_EQ(contentOf(bundle) + contentOf(ownKey), "{}" + one.keyPem());
    EXPECT_FALSE(std::filesystem::exists(leading));
}

}  // namespace
}  // namespace oska::tool_tests
