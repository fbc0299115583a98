// What a client may ask for or send that the server must not do.
#include <gtest/gtest.h>
#include <httplib.h>

#include <new>
#include <thread>

#include "tests/fakes/test_identity.h"
#include "tests/tools/oska/commands/oska_program.h"
#include "tools/oska_serve/request_threads.h"
#include "tools/oska_serve/site_answers.h"
#include "tools/oska_serve/site_server.h"

namespace oska::tool_tests {
namespace {

using tool::SiteServer;

const std::string LINE = "--oska-part-9f1c27d04be86a35";
const std::string TYPE = "\r\nContent-Type: image/png\r\nContent-Range: bytes ";

const struct {
    std::string path;
    std::string range;
    int status;
    std::string place;  // as the header Content-Range has it
    std::string body;   // empty: any
} RANGES[] = {
    {"/map.png", "bytes=2-4", 206, "bytes 2-4/10", "234"},
    {"/map.png", "bytes=8-9223372036854775807", 206, "bytes 8-9/10", "89"},
    {"/map.png", "bytes=8-99999999999999999999", 416, "", ""},
    {"/map.png", "bytes=10-5000", 416, "bytes */10", ""},
    {"/map.png", "bytes=4-2", 416, "", ""},
    {"/map.png", "bytes=-3", 206, "bytes 7-9/10", "789"},
    {"/map.png", "bytes=-5000", 206, "bytes 0-9/10", "0123456789"},
    {"/map.png", "bytes=-0", 416, "bytes */10", ""},
    {"/map.png", "bytes=1-2,-1", 206, "",
     LINE + TYPE + "1-2/10\r\n\r\n12\r\n" + LINE + TYPE + "9-9/10\r\n\r\n9\r\n" + LINE + "--\r\n"},
    {"/map.png", "bytes=1-2,5000-6000", 206, "bytes 1-2/10", "12"},
    {"/map.png", "bytes=0-,0-,-5", 200, "", "0123456789"},
    {"/none.png", "bytes=0-0", 416, "bytes */0", ""},
    {"/v2/pelio/sectors/12/bundle", "bytes=0-0", 401, "", ""},
    {"/absent", "bytes=3-5000", 404, "", "nothing is served at \"/absent\"\n"},
};

TEST(ServeLimits, RangesEndWithTheContent) {
    const Folder folder;
    folder.file("map.png", "0123456789");
    folder.file("none.png", "");
    const fakes::TestIdentity identity({.names = "IP:127.0.0.1"});
    const SiteServer::Options plain{.folder = folder.path(), .requiredToken = "x"};
    auto tls = plain;
    tls.tlsCertificate = folder.file("cert.pem", identity.pem());
    tls.tlsKey = folder.file("key.pem", identity.keyPem());
    for (const auto& options : {plain, tls}) {
        const auto server = SiteServer::start(options);
        ASSERT_TRUE(server) << server.error().problem;
        httplib::Client client((*server)->url());
        client.enable_server_certificate_verification(false);
        for (const auto& [path, range, status, place, body] : RANGES) {
            const auto reply = client.Get(path, {{"Range", range}});
            ASSERT_TRUE(reply) << (*server)->url() << path << range;
            EXPECT_EQ(reply->status, status) << path << range;
            EXPECT_EQ(reply->get_header_value("Content-Range"), place) << path << range;
            EXPECT_EQ(reply->body, body.empty() ? reply->body : body) << path << range;
        }
    }
}

TEST(ServeLimits, ABodyCountsByWhatItUnpacksTo) {
    const Folder folder;
    const auto server = SiteServer::start({.folder = folder.path(), .requiredToken = "secret"});
    ASSERT_TRUE(server) << server.error().problem;
    const std::string limit(std::size_t{64} << 20, ' ');
    const std::string uploads = "/v2/recordings/rfds";
    const httplib::Headers token{{"Authorization", "Bearer secret"}};
    const httplib::Headers isPacked{{"Content-Encoding", "gzip"}};
    const httplib::Headers both{*token.begin(), *isPacked.begin()};
    struct Case {
        std::string path;
        httplib::Headers headers;
        std::string body;
        bool packs;
        int status;
    };
    for (const auto& [path, headers, body, packs, status] :
         {Case{uploads, token, "[]", true, 200}, Case{uploads, token, "[]" + limit.substr(2), true, 200},
          Case{uploads, token, limit + " ", true, 413}, Case{uploads, token, limit + " ", false, 413},
          // What is refused anyway is not unpacked: nobody sees that it cannot be.
          Case{uploads, both, "no gzip", false, 400}, Case{uploads, isPacked, "no gzip", false, 401},
          Case{"/elsewhere", isPacked, "no gzip", false, 404}}) {
        httplib::Client client((*server)->url());
        client.set_compress(packs);
        const auto reply = client.Post(path, headers, body, "application/json");
        ASSERT_TRUE(reply) << path << status;
        EXPECT_EQ(reply->status, status) << reply->body;
    }
}

TEST(ServeLimits, MemoryThatRunsOutEndsNothingButTheRequest) {
    const Folder folder;
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

}  // namespace
}  // namespace oska::tool_tests
