#include <zlib.h>

#include <algorithm>
#include <utility>

#include "adapters/native/content_decoder.h"
#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using namespace std::chrono_literals;

enum class Wrapper : int { gzip = 15 + 16, zlib = 15, none = -15 };

std::string compressed(std::string_view plain, Wrapper wrapper) {
    z_stream stream{};
    deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, static_cast<int>(wrapper), 8, Z_DEFAULT_STRATEGY);
    std::string out(deflateBound(&stream, plain.size()) + 32, '\0');
    std::string in(plain);
    stream.next_in = reinterpret_cast<unsigned char*>(in.data());
    stream.avail_in = static_cast<unsigned>(in.size());
    stream.next_out = reinterpret_cast<unsigned char*>(out.data());
    stream.avail_out = static_cast<unsigned>(out.size());
    deflate(&stream, Z_FINISH);
    out.resize(stream.total_out);
    deflateEnd(&stream);
    return out;
}

std::string withoutEnd(std::string text, std::size_t count) { return text.substr(0, text.size() - count); }

const std::string PLAIN = [] {
    std::string text;
    for (int i = 0; i < 20'000; ++i) text += std::to_string(i * 7919 % 10'007);
    return text;
}();

/// The bytes that a server sends before it closes the connection, and the outcome.
struct WireCase {
    const char* name;
    std::string bytes;
    std::optional<int> status;
    std::optional<std::string> body;
    std::optional<HttpErrorKind> error = std::nullopt;

    friend void PrintTo(const WireCase& wire, std::ostream* out) { *out << wire.name; }
};

std::string encoded(std::string_view coding, std::string_view body) {
    return wireReply(200, body, {{"Content-Encoding", std::string(coding)}});
}

std::vector<WireCase> wireCases() {
    using enum HttpErrorKind;
    const auto gzip = compressed(PLAIN, Wrapper::gzip);
    return {
        {"Empty", wireReply(200), 200, ""},
        {"NoContent", "HTTP/1.1 204 No Content\r\n\r\n", 204, ""},
        {"UntilClosed", "HTTP/1.0 200 OK\r\n\r\nall of it", 200, "all of it"},
        {"Chunked",
         "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n1\r\n!\r\n0\r\nX-T: 1\r\n\r\n",
         200, "hello!"},
        {"Interim", "HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n" + wireReply(200, "x"), 200, "x"},
        {"CutOff", withoutEnd(wireReply(200, "hello"), 1), 200, std::nullopt, connectionLost},
        {"NothingOfTheBody", withoutEnd(wireReply(404, "hello"), 5), 404, std::nullopt, connectionLost},
        {"ChunkedCutOff", "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\nhello\r\n", 200,
         std::nullopt, connectionLost},
        {"HeadersCutOff", "HTTP/1.1 200 OK\r\nContent-Le", std::nullopt, std::nullopt, connectionLost},
        {"Silence", "", std::nullopt, std::nullopt, connectionLost},
        {"Garbage", "\x16\x03\x01 this is no HTTP\r\n\r\n", std::nullopt, std::nullopt, badServerReply},
        {"EndlessHeaders",
         "HTTP/1.1 200 OK\r\n" +
             [] {
                 std::string headers;
                 for (int i = 0; i < 20; ++i) headers += "X: " + std::string(60'000, 'x') + "\r\n";
                 return headers;
             }(),
         std::nullopt, std::nullopt, badServerReply},
        {"Gzip", encoded("gzip", gzip), 200, PLAIN},
        {"GzipInUpperCase", encoded("GZIP", gzip), 200, PLAIN},
        {"TwoGzipMembers", encoded("x-gzip", gzip + gzip), 200, PLAIN + PLAIN},
        {"Deflate", encoded("deflate", compressed(PLAIN, Wrapper::zlib)), 200, PLAIN},
        {"DeflateWithoutWrapper", encoded("deflate", compressed(PLAIN, Wrapper::none)), 200, PLAIN},
        {"Identity", encoded("identity", "x"), 200, "x"},
        {"NothingCompressed", encoded("gzip", ""), 200, ""},
        {"GzipCutOff", encoded("gzip", withoutEnd(gzip, 100)), 200, std::nullopt, badServerReply},
        {"GzipWithoutChecksum", encoded("gzip", withoutEnd(gzip, 4)), 200, std::nullopt, badServerReply},
        {"GzipHeaderOnly", encoded("gzip", gzip.substr(0, 10)), 200, std::nullopt, badServerReply},
        {"GzipThenJunk", encoded("gzip", gzip + "junk"), 200, std::nullopt, badServerReply},
        {"DeflateThenJunk", encoded("deflate", compressed(PLAIN, Wrapper::zlib) + "junk"), 200, std::nullopt,
         badServerReply},
        {"NotGzip", encoded("gzip", "plain text"), 200, std::nullopt, badServerReply},
        {"CodingNotAskedFor", encoded("br", "x"), 200, std::nullopt, badServerReply},
    };
}

class WireReply : public NativeHttp, public testing::WithParamInterface<WireCase> {};

TEST_P(WireReply, IsReadOrRefused) {
    const auto& wire = GetParam();
    LoopbackServer server([&](WireConnection& connection) {
        if (connection.receive()) connection.send(wire.bytes);
    });
    const auto outcome = fetch(server.url("/"));

    EXPECT_EQ(kindOf(outcome), wire.error) << (outcome.error ? outcome.error->description : "");
    EXPECT_EQ(statusOf(outcome), wire.status);
    EXPECT_EQ(outcome.body, wire.body);
    if (!outcome.error) return;
    EXPECT_NE(outcome.error->description.find("127.0.0.1:" + std::to_string(server.port())),
              std::string::npos)
        << outcome.error->description;
}

INSTANTIATE_TEST_SUITE_P(Bytes, WireReply, testing::ValuesIn(wireCases()),
                         [](const auto& wire) { return std::string(wire.param.name); });

TEST(ContentDecoder, DecodesPiecesOfAnySize) {
    for (const auto wrapper : {Wrapper::gzip, Wrapper::zlib, Wrapper::none}) {
        const auto bytes = compressed(PLAIN, wrapper);
        for (const std::size_t step : {1U, 2U, 7U, 4096U}) {
            ContentDecoder decoder(wrapper == Wrapper::gzip ? ContentDecoder::Coding::gzip
                                                            : ContentDecoder::Coding::deflate);
            std::string plain;
            for (std::size_t at = 0; at < bytes.size(); at += step) {
                EXPECT_FALSE(decoder.isComplete());
                EXPECT_EQ(decoder.decode(std::string_view(bytes).substr(at, step),
                                         [&](std::string_view piece) {
                                             plain += piece;
                                             return true;
                                         }),
                          ContentDecoder::Progress::going);
            }
            EXPECT_EQ(plain, PLAIN);
            EXPECT_TRUE(decoder.isComplete());
        }
    }
}

TEST_F(NativeHttp, ReadsHeadersOfTheFinalReplyOnly) {
    LoopbackServer server([](const WireRequest&) {
        return "HTTP/1.1 103 Early Hints\r\nX-Early: 1\r\n\r\n"
               "HTTP/1.1 200 OK\r\nX-Plain:  a  b \r\nX-Folded: one\r\n  two\r\nX-Empty:\r\n"
               "Transfer-Encoding: chunked\r\n\r\n1\r\nx\r\n0\r\nX-Trailer: 1\r\n\r\n";
    });
    const auto outcome = fetch(server.url("/"));
    std::vector<std::pair<std::string, std::string>> headers;
    for (const auto& [name, value] : outcome.reply->headers) headers.emplace_back(name, value);
    EXPECT_EQ(headers, (std::vector<std::pair<std::string, std::string>>{{"X-Plain", "a  b"},
                                                                         {"X-Folded", "one two"},
                                                                         {"X-Empty", ""},
                                                                         {"Transfer-Encoding", "chunked"}}));
}

TEST_F(NativeHttp, BoundsWhatABodyUnpacksTo) {
    const auto bomb = compressed(std::string(50'000'000, '0'), Wrapper::gzip);
    LoopbackServer server([&](const WireRequest&) { return encoded("gzip", bomb); });
    const auto refused = fetch(get(server.url("/")), {.maximumReplyBytes = 49'999'999});
    EXPECT_EQ(kindOf(refused), HttpErrorKind::replyTooLarge);
    EXPECT_EQ(fetch(get(server.url("/")), {.maximumReplyBytes = 50'000'000}).body->size(), 50'000'000U);
}

/// The longest time between two events, as their thread saw them.
class Gaps {
public:
    void note() {
        const auto now = Clock::now();
        longest_ = std::max(longest_, now - std::exchange(last_, now));
    }
    [[nodiscard]] std::chrono::nanoseconds longest() const { return longest_; }

private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point last_ = Clock::now();
    Clock::duration longest_{0};
};

TEST_F(NativeHttp, EveryPieceRestartsTheIdleTimeout) {
    constexpr auto IDLE = 200ms;
    for (bool wasStalled = true; wasStalled;) {  // once more when the machine, not the server, made a pause
        Gaps gaps;
        auto server = std::make_unique<LoopbackServer>([&](WireConnection& connection) {
            if (!connection.receive()) return;
            for (const auto* piece :
                 {"HTTP/1.1 20", "0 OK\r\n", "Content-Length", ": 4\r\n", "\r\nhe", "ll"}) {
                if (!connection.pause(IDLE.count() / 4)) return;
                connection.send(piece);
                gaps.note();
            }
        });
        const auto outcome = fetch(get(server->url("/")), {.timeoutForRequest = IDLE});
        server.reset();  // ends its thread
        wasStalled = gaps.longest() > IDLE / 2;
        EXPECT_TRUE(wasStalled || outcome.body == "hell") << "the pauses add up to more than the time-out";
    }
}

TEST_F(NativeHttp, SaysWhichTimeoutItWasAndKeepsTheReplyThatHadCome) {
    for (bool wasStalled = true; wasStalled;) {
        Gaps gaps;
        auto silent = std::make_unique<LoopbackServer>([&](WireConnection& connection) {
            if (connection.receive()) connection.send("HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nhell");
            gaps.note();
            connection.awaitHangUp();
        });
        const auto idle = fetch(get(silent->url("/")), {.timeoutForRequest = 200ms});
        silent.reset();
        EXPECT_EQ(kindOf(idle), HttpErrorKind::timedOut);
        EXPECT_FALSE(idle.body);
        EXPECT_NE(idle.error->description.find("was silent for 200 ms"), std::string::npos)
            << idle.error->description;
        wasStalled = gaps.longest() > 100ms;
        EXPECT_TRUE(wasStalled || statusOf(idle) == 200);
    }
    LoopbackServer dripping([](WireConnection& connection) {
        (void)connection.receive();
        while (connection.pause(1)) connection.send("HTTP/1.1 100 Continue\r\n\r\n");
    });
    const auto total = fetch(get(dripping.url("/")), {.timeoutForResource = 40ms});
    EXPECT_EQ(kindOf(total), HttpErrorKind::timedOut);
    EXPECT_FALSE(total.reply);
    EXPECT_NE(total.error->description.find("not done after 40 ms"), std::string::npos)
        << total.error->description;
}

}  // namespace
}  // namespace oska::native
