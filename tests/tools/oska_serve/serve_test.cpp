#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>

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
const std::string PART = "--oska-part-9f1c27d04be86a35\r\nContent-Type: image/png\r\nContent-Range: bytes ";

/// Its status, its place in the file, its type and its body, as far as there are any.
std::string textOf(const httplib::Result& reply) {
    if (!reply) return "no reply";
    return std::to_string(reply->status) + " " + reply->get_header_value("Content-Range") + "|" +
           reply->get_header_value("Content-Type") + "|" + reply->body;
}

class Serve : public testing::Test {
protected:
    void serve(SiteServer::Options options = {}) {
        options.folder = folder.path();
        server = *SiteServer::start(options);
    }

    [[nodiscard]] std::string get(const std::string& path, const Headers& headers = {}) const {
        return textOf(httplib::Client("127.0.0.1", server->port()).Get(path, headers));
    }

    [[nodiscard]] std::string upload(const std::string& body, const Headers& headers = {}, bool packs = false,
                                     const std::string& path = "/v2/recordings/rfds") const {
        httplib::Client client("127.0.0.1", server->port());
        client.set_compress(packs);
        return textOf(client.Post(path, headers, body, "application/json"));
    }

    const Folder folder;
    const std::string pelio = folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    const std::string dapo = folder.file("-7/dapo.json", fakes::DAPO_DOCUMENT);
    std::unique_ptr<SiteServer> server;
};

TEST_F(Serve, ABundleLiesWhereTheClientReachesTheServerInAVersionOfItsContent) {
    serve();
    const auto answer = get(PELIO);
    EXPECT_THAT(answer, HasSubstr(server->url() + "/12/pelio.json\""));
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT + " ");
    EXPECT_NE(get(PELIO), answer);
    folder.file("12/pelio.json", fakes::PELIO_DOCUMENT);
    EXPECT_EQ(get(PELIO), answer);

    EXPECT_THAT(get(DAPO, {{"Host", "site.local:5050"}}),
                HasSubstr("\"http://site.local:5050/-7/dapo.json\""));
    EXPECT_THAT(get(DAPO, {{"Host", ""}}), HasSubstr(server->url() + "/-7/dapo.json\""));
    for (const auto* host : {"a/b", "me@host", "a b", "host:x"})
        EXPECT_THAT(get(DAPO, {{"Host", host}}), StartsWith("400 ")) << host;
}

TEST_F(Serve, FilesOfASiteAndNothingElse) {
    const Folder outside;
    const auto secret = outside.file("secret.json", "{}");
    folder.file("12/Map 1.PNG", "image");
    folder.file("12/empty.json", "");
    folder.file("key.pem", "key");
    std::filesystem::create_symlink(secret, folder.path() + "/link.json");
    serve();
    EXPECT_EQ(get("/12/pelio.json"), "200 |application/json|" + fakes::PELIO_DOCUMENT);
    EXPECT_EQ(get("/12/Map%201.PNG"), "200 |image/png|image");
    EXPECT_EQ(get("/12/empty.json"), "200 |application/json|");
    const auto above = std::filesystem::path(outside.path()).filename().string() + "/secret.json";
    for (const auto& path : words("/ /12 /none.json /key.pem /link.json /12/empty.json%00.png /" + secret +
                                  " /../" + above + " /%2e%2e/" + above + " /v2/pelio/sectors/13/bundle " +
                                  "/v2/pelio/sectors/12x/bundle /v2/tovan/sectors/12/bundle"))
        EXPECT_THAT(get(path), testing::MatchesRegex("404 .text/plain; charset=utf-8..+")) << path;
}

TEST_F(Serve, RangesEndWithTheContent) {
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"/map.png", "8-9223372036854775807", "206 bytes 8-9/10|image/png|89"},
        {"/map.png", "8-99999999999999999999", "416 |text/plain; charset=utf-8|the header Range cannot be "},
        {"/map.png", "10-5000",
         "416 bytes */10|text/plain; charset=utf-8|the header Range names no byte of "},
        {"/map.png", "-5000", "206 bytes 0-9/10|image/png|0123456789"},
        {"/map.png", "-0", "416 bytes */10|"},
        {"/map.png", "1-2,-1",
         "206 |multipart/byteranges; boundary=oska-part-9f1c27d04be86a35|" + PART + "1-2/10\r\n\r\n12\r\n" +
             PART + "9-9/10\r\n\r\n9\r\n--oska-part-9f1c27d04be86a35--\r\n"},
        {"/map.png", "1-2,5000-6000", "206 bytes 1-2/10|image/png|12"},
        {"/map.png", "0-,0-,-5", "200 |image/png|0123456789"},
        {"/none.png", "0-0", "416 bytes */0|"},
        {"/absent", "3-5000", "404 |text/plain; charset=utf-8|nothing is served at \"/absent\"\n"},
    };
    folder.file("map.png", "0123456789");
    folder.file("none.png", "");
    serve();
    for (const auto& [path, range, beginning] : cases)
        EXPECT_THAT(get(path, {{"Range", "bytes=" + range}}), StartsWith(beginning)) << path << range;
}

TEST_F(Serve, UploadsBecomeARecording) {
    const auto uploads = folder.file("uploads.txt", R"({"mobile_time":1,"rfs":{}})");
    serve({.uploads = uploads});
    EXPECT_THAT(
        upload(R"([{"rfs":{"a\n":-5.5,"b":-6},"mobile_time":2,"more":[]},{"mobile_time":3,"rfs":{}}])"),
        StartsWith("200 "));
    EXPECT_THAT(upload("[]"), StartsWith("200 "));
    for (const auto* body : {"", "{}", "[{}]", R"([{"mobile_time":1.5,"rfs":{}}])", "[1", "\xff"})
        EXPECT_THAT(upload(body), StartsWith("400 |text/plain; charset=utf-8|not an array of samples: "))
            << body;
    EXPECT_EQ(contentOf(uploads),
              "{\"mobile_time\":1,\"rfs\":{}}\n"
              "{\"mobile_time\":2,\"rfs\":{\"a\\n\":-5.5,\"b\":-6}}\n"
              "{\"mobile_time\":3,\"rfs\":{}}\n");
}

TEST_F(Serve, WithoutTheTokenThereAreOnlyFiles) {
    serve({.requiredToken = "secret"});
    EXPECT_THAT(get("/12/pelio.json"), StartsWith("200 "));
    for (const std::string authorization : {"", "Bearer", "Bearer wrong", "secret", "Bearer secret"}) {
        const Headers headers{{"Authorization", authorization}, {"Range", "bytes=0-4999"}};
        const auto status = authorization == "Bearer secret" ? "20" : "401 |";
        EXPECT_THAT(get(PELIO, headers), StartsWith(status)) << authorization;
        EXPECT_THAT(upload("[]", headers), StartsWith(status)) << authorization;
    }
    // What is refused anyway is not unpacked: nobody sees that it cannot be.
    const Headers packed{{"Content-Encoding", "gzip"}};
    EXPECT_THAT(upload("no gzip", packed), StartsWith("401 "));
    EXPECT_THAT(upload("no gzip", packed, false, "/elsewhere"), StartsWith("404 "));
}

TEST_F(Serve, ABodyCountsByWhatItUnpacksTo) {
    serve();
    const std::string limit(std::size_t{64} << 20, ' ');
    EXPECT_THAT(upload("[]" + limit.substr(2), {}, true), StartsWith("200 "));
    EXPECT_THAT(upload(limit + " ", {}, true), StartsWith("413 "));
    EXPECT_THAT(upload(limit + " "), StartsWith("413 "));
    EXPECT_THAT(upload("no gzip", {{"Content-Encoding", "gzip"}}), StartsWith("400 "));
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
    EXPECT_THAT(textOf(httplib::Client("127.0.0.1", port).Get("/reply")), StartsWith("404 "));
    EXPECT_EQ(textOf(httplib::Client("127.0.0.1", port).Get("/handler")),
              "500 |text/plain; charset=utf-8|there is not enough memory to answer this\n");
    library.stop();
    listening.join();
}

TEST_F(Serve, TheProgramTellsItsAddressAndEachRequest) {
    const RunningOska program(words("serve --port 0 --require-token secret " + folder.path()));
    const auto greeting = program.readLine();
    EXPECT_THAT(greeting, StartsWith("listening on http://127.0.0.1:"));
    const auto run = "run pelio --sector 12 --base-url " + words(greeting).back() + " --token ";
    EXPECT_EQ(runOska(words(run + "secret")).status, 0);
    EXPECT_EQ(runOska(words(run + "wrong")).status, 1);
    const auto request = "\"GET " + PELIO + "?operating_system=iOS\" ";
    EXPECT_EQ(program.readLine(), request + "200");
    EXPECT_EQ(program.readLine(), R"("GET /12/pelio.json" 200)");
    EXPECT_THAT(program.readLine(), StartsWith(request + "401: "));
    EXPECT_EQ(program.interrupt(), 130);
}

TEST_F(Serve, WhatCannotBeServedIsNamed) {
    serve();
    const fakes::TestIdentity one({.names = "DNS:localhost"});
    const auto certificate = "--port 0 --tls-cert " + folder.file("cert.pem", one.pem()) + " --tls-key ";
    const auto key = folder.file("key.pem", fakes::TestIdentity({.names = "DNS:localhost"}).keyPem());
    const auto ownKey = folder.file("own.pem", one.keyPem());
    const auto linked = folder.path() + "/walk.jsonl";
    const auto leading = folder.path() + "/leading.jsonl";
    std::filesystem::create_hard_link(pelio, linked);
    std::filesystem::create_symlink("12/new.json", leading);
    const std::pair<std::string, std::string> reasons[] = {
        {"--port " + std::to_string(server->port()), ": Address already in use\n"},
        {"--port 0 --bind 192.0.2.1", "192.0.2.1:0: Cannot assign requested address\n"},
        {"--tls-cert none --tls-key " + key, "none: "},
        {certificate + key, "key.pem: cannot be used as the key of "},
        {"--port 0 --uploads " + folder.path(), ": Is a directory\n"},
        {"--port 0 --uploads " + linked, "pelio.json, which is served\n"},
        {"--port 0 --uploads " + leading, "new.json, which is served\n"},
        {certificate + ownKey + " --uploads " + ownKey, "own.pem, which TLS needs\n"},
    };
    for (const auto& [more, reason] : reasons) {
        const auto ended = runOska(words("serve " + folder.path() + " " + more));
        EXPECT_EQ(ended.status, 2) << reason;
        EXPECT_THAT(ended.err, HasSubstr(reason));
    }
    EXPECT_EQ(contentOf(pelio) + contentOf(ownKey), fakes::PELIO_DOCUMENT + one.keyPem());
    EXPECT_FALSE(std::filesystem::exists(leading));
}

}  // namespace
}  // namespace oska::tool_tests
