#include <zlib.h>

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using namespace std::chrono_literals;

enum class Wrapper : int { gzip = 15 + 16, zlib = 15, none = -15 };

std::string compressed(std::string plain, Wrapper wrapper) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, static_cast<int>(wrapper), 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, plain.size()) + 32, '\0');
    stream.next_in = reinterpret_cast<unsigned char*>(plain.data());
    stream.avail_in = static_cast<unsigned>(plain.size());
    stream.next_out = reinterpret_cast<unsigned char*>(out.data());
    stream.avail_out = static_cast<unsigned>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

// So large, when compressed, that it comes in several pieces.
const std::string PLAIN = [] {
    std::string text;
    for (int i = 0; i < 200'000; ++i) text += std::to_string(i * 7919 % 10'007);
    return text;
}();

std::string encoded(std::string coding, const std::string& body) {
    return wireReply(200, body, {{"Content-Encoding", std::move(coding)}});
}

/// The bytes that a server sends before it closes the connection, and the outcome.
struct WireCase {
    const char* name;
    std::string bytes;
    std::optional<std::string> body;
    std::optional<HttpErrorKind> error = std::nullopt;
    std::optional<int> status = 200;
};

std::vector<WireCase> wireCases() {
    using enum HttpErrorKind;
    const auto gzip = compressed(PLAIN, Wrapper::gzip);
    const auto deflated = compressed(PLAIN, Wrapper::zlib);
    std::string endless = "HTTP/1.1 200 OK\r\n";
    for (int i = 0; i < 20; ++i) endless += "X: " + std::string(60'000, 'x') + "\r\n";
    return {
        {"until closed", "HTTP/1.0 200 OK\r\n\r\nall of it", "all of it"},
        {"cut off", "HTTP/1.1 404 Not Found\r\nContent-Length: 5\r\n\r\nhell", {}, connectionLost, 404},
        {"headers cut off", "HTTP/1.1 200 OK\r\nContent-Le", {}, connectionLost, {}},
        {"silence", "", {}, connectionLost, {}},
        {"garbage", "\x16\x03\x01 this is no HTTP\r\n\r\n", {}, badServerReply, {}},
        {"endless headers", endless, {}, badServerReply, {}},
        {"gzip", encoded("GZIP", gzip), PLAIN},
        {"as much as is allowed", encoded("x-gzip", gzip + gzip), PLAIN + PLAIN},
        {"more", encoded("gzip", gzip + gzip + compressed("x", Wrapper::gzip)), {}, replyTooLarge},
        {"deflate", encoded("deflate", deflated), PLAIN},
        {"deflate without wrapper", encoded("deflate", compressed(PLAIN, Wrapper::none)), PLAIN},
        {"identity", encoded("identity", "x"), "x"},
        {"nothing compressed", encoded("gzip", ""), ""},
        {"gzip without checksum", encoded("gzip", gzip.substr(0, gzip.size() - 4)), {}, badServerReply},
        {"gzip, then junk", encoded("gzip", gzip + "junk"), {}, badServerReply},
        {"deflate, then junk", encoded("deflate", deflated + "junk"), {}, badServerReply},
        {"a coding not asked for", encoded("br", "x"), {}, badServerReply},
    };
}

TEST_F(NativeHttp, ReadsOrRefusesWhatAServerSends) {
    for (const auto& [name, bytes, body, error, status] : wireCases()) {
        LoopbackServer server([&, &bytes = bytes](WireConnection& connection) {
            if (connection.receive()) connection.send(bytes);
        });
        const auto outcome = fetch(factory_, get(server.url("/")), {.maximumReplyBytes = 2 * PLAIN.size()});
        const auto text = outcome.error ? outcome.error->description : server.url("/");
        EXPECT_EQ(kindOf(outcome), error) << name << text;
        EXPECT_EQ(statusOf(outcome), status) << name;
        EXPECT_TRUE(outcome.body == body) << name;
        EXPECT_NE(text.find("127.0.0.1:" + std::to_string(server.port())), std::string::npos) << name << text;
    }
}

TEST_F(NativeHttp, ReadsHeadersOfTheFinalReplyOnly) {
    LoopbackServer server([](const WireRequest&) {
        return "HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n"
               "HTTP/1.1 200 OK\r\nX-Plain:  a  b \r\nX-Folded: one\r\n  two\r\nX-Empty:\r\n"
               "Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n1\r\n!\r\n0\r\nX-Trailer: 1\r\n\r\n";
    });
    const auto outcome = fetch(factory_, get(server.url("/")));
    Strings headers;
    for (const auto& [name, value] : outcome.reply->headers) headers.push_back(name + ": " + value);
    EXPECT_EQ(headers,
              (Strings{"X-Plain: a  b", "X-Folded: one two", "X-Empty: ", "Transfer-Encoding: chunked"}));
    EXPECT_EQ(outcome.body, "x!");
}

// Once more, with more time, when the machine and not the server made a pause.
TEST_F(NativeHttp, EveryPieceRestartsTheIdleTimeoutWhichKeepsTheReplyThatHadCome) {
    bool isAllHeard = false;
    for (auto idle = 200ms; idle < 5s && !isAllHeard; idle *= 2) {
        bool isAllSent = false;
        auto server = std::make_unique<LoopbackServer>([&](WireConnection& connection) {
            if (!connection.receive()) return;
            for (const auto* piece :
                 {"HTTP/1.1 20", "0 OK\r\n", "Content-Length", ": 4\r\n", "\r\nhe", "l"}) {
                if (!connection.pause(static_cast<int>(idle.count()) / 4)) return;
                connection.send(piece);
            }
            isAllSent = connection.pause(static_cast<int>(idle.count()) / 4);
            connection.awaitHangUp();
        });
        const auto outcome = fetch(factory_, get(server->url("/")), {.timeoutForRequest = idle});
        server.reset();  // ends its thread
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::timedOut);
        EXPECT_FALSE(outcome.body);
        const auto text = "was silent for " + std::to_string(idle.count()) + " ms";
        EXPECT_NE(outcome.error->description.find(text), std::string::npos) << outcome.error->description;
        isAllHeard = isAllSent && statusOf(outcome) == 200;
    }
    EXPECT_TRUE(isAllHeard) << "the pauses add up to more than the time-out";
}

TEST_F(NativeHttp, NothingRestartsTheTimeoutOfTheWhole) {
    LoopbackServer dripping([](WireConnection& connection) {
        (void)connection.receive();
        while (connection.pause(1)) connection.send("HTTP/1.1 100 Continue\r\n\r\n");
    });
    const auto outcome = fetch(factory_, get(dripping.url("/")), {.timeoutForResource = 40ms});
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::timedOut);
    EXPECT_FALSE(outcome.reply);
    EXPECT_NE(outcome.error->description.find("not done after 40 ms"), std::string::npos);
}

}  // namespace
}  // namespace oska::native
