#include <cstdlib>

#include "tests/adapters/native/native_http_driver.h"
#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using namespace std::chrono_literals;
using Values = std::vector<std::string>;

std::string ok(const WireRequest&) { return wireReply(200, "ok"); }

TEST_F(NativeHttp, WritesEachHeaderOnceAndNoLengthButItsOwn) {
    LoopbackServer server(ok);
    auto request = post(server.url("/a%20b/../c?x=1&y=%41#fragment"), "{}");
    request.headers = {
        {"content-type", "application/json"}, {"Content-Length", "99"}, {"Transfer-Encoding", "chunked"},
        {"Authorization", "Bearer t"},        {"X-Empty", ""},          {"accept-encoding", "br"}};
    EXPECT_EQ(statusOf(fetch(request)), 200);

    const auto seen = server.requests().at(0);
    EXPECT_EQ(seen.target, "/a%20b/../c?x=1&y=%41");
    EXPECT_EQ(seen.body, "{}");
    EXPECT_EQ(seen.values("Content-Type"), Values{"application/json"});
    EXPECT_EQ(seen.values("Content-Length"), Values{"2"});
    EXPECT_EQ(seen.values("Transfer-Encoding"), Values{});
    EXPECT_EQ(seen.values("Authorization"), Values{"Bearer t"});
    EXPECT_EQ(seen.values("X-Empty"), Values{""});
    EXPECT_EQ(seen.values("Accept-Encoding"), Values{"gzip, deflate"});
    EXPECT_EQ(seen.values("Host"), Values{"127.0.0.1:" + std::to_string(server.port())});
    EXPECT_EQ(seen.values("Expect"), Values{});
}

TEST_F(NativeHttp, SendsAnyMethodAndBodiesOfAnySizeWithoutAskingFirst) {
    LoopbackServer server(
        [](const WireRequest& request) { return wireReply(200, request.method + request.body); });
    for (const auto* method : {"DELETE", "PUT", "POST", "PATCH"}) {
        auto request = get(server.url("/"));
        request.method = method;
        EXPECT_EQ(fetch(request).body, method);
        request.body = std::string(3'000'000, 'b');
        EXPECT_EQ(fetch(request).body->size(), request.body->size() + std::string_view(method).size());
    }
    EXPECT_EQ(server.requests().back().values("Expect"), Values{});
}

TEST_F(NativeHttp, RefusesToWriteWhatWouldBreakALine) {
    LoopbackServer server(ok);
    const std::vector<platform::HttpHeader> bad{{"X-Value", "a\r\nX-Evil: 1"},
                                                {"X-Value", "a\nb"},
                                                {"X-Value", std::string("a\0b", 3)},
                                                {"X Name", "v"},
                                                {"X-Name:", "v"},
                                                {"", "v"}};
    for (const auto& header : bad) {
        auto request = get(server.url("/"));
        request.headers = {header};
        const auto outcome = fetch(request);
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::unknown) << header.name;
        EXPECT_NE(outcome.error->description.find("\"" + header.name + "\""), std::string::npos);
    }
    auto request = get(server.url("/"));
    request.method = "GET / HTTP/1.1\r\nX:";
    EXPECT_EQ(kindOf(fetch(request)), HttpErrorKind::unknown);
    EXPECT_EQ(server.connections(), 0U);
}

TEST_F(NativeHttp, GoesToNoHostButTheOneThatTheUrlShows) {
    LoopbackServer server(ok);
    const auto port = std::to_string(server.port());
    for (const auto& url : {"http://%31%32%37.0.0.1:" + port + "/", "http://127.1:" + port + "/",
                            std::string("http://127.0.0.1:99999/")}) {
        EXPECT_EQ(kindOf(fetch(url)), HttpErrorKind::unsupportedUrl) << url;
    }
    const auto unknown = fetch(std::string("http://no-such-host.invalid/"));
    EXPECT_EQ(kindOf(unknown), HttpErrorKind::cannotFindHost);
    EXPECT_NE(unknown.error->description.find("no-such-host.invalid"), std::string::npos);
    EXPECT_EQ(server.connections(), 0U);
}

TEST_F(NativeHttp, KeepsConnectionsAliveForAllSessions) {
    LoopbackServer server(ok);
    for (int i = 0; i < 3; ++i) EXPECT_EQ(fetch(server.url("/")).body, "ok");
    EXPECT_EQ(server.connections(), 1U);
}

TEST_F(NativeHttp, HasSixConnectionsASessionAndHostAndLetsTheRestWait) {
    std::promise<void> hold;
    const auto held = hold.get_future().share();
    LoopbackServer server([&](const WireRequest& request) {
        if (request.target == "/held") held.wait();
        return wireReply(200, "ok");
    });
    const auto session = factory_.makeSession({}, nullptr);
    platform::Outcomes outcomes;
    for (int i = 0; i < 8; ++i) session->send(get(server.url("/held")), outcomes.next());
    auto refused = get(server.url("/"));
    refused.body = "x";
    session->send(refused, outcomes.next());
    while (outcomes.count() < 1) std::this_thread::yield();
    auto impatient = get(server.url("/held"));
    impatient.timeout = 20ms;
    session->send(impatient, outcomes.next());
    while (outcomes.count() < 2) std::this_thread::yield();
    EXPECT_EQ(kindOf(outcomes.all()[0]), HttpErrorKind::bodyNotAllowed);
    EXPECT_EQ(kindOf(outcomes.all()[1]), HttpErrorKind::timedOut);

    // Connections are accepted in the order in which they were made: one more would have been counted.
    EXPECT_EQ(fetch(server.url("/")).body, "ok");
    EXPECT_EQ(server.connections(), 7U);
    hold.set_value();
    while (outcomes.count() < 10) std::this_thread::yield();
    for (std::size_t i = 2; i < 10; ++i) EXPECT_EQ(outcomes.all()[i].body, "ok");
    EXPECT_EQ(server.connections(), 7U);
}

/// A server that closes each connection on its second request.
void closeOnSecond(WireConnection& connection) {
    if (connection.receive()) connection.send(wireReply(200, "ok"));
    (void)connection.receive();
}

TEST_F(NativeHttp, RepeatsAGetThatMetADeadConnectionButNeverAPost) {
    LoopbackServer server(closeOnSecond);
    EXPECT_EQ(fetch(server.url("/first")).body, "ok");
    EXPECT_EQ(fetch(post(server.url("/upload"), "x")).body, "ok");
    EXPECT_EQ(fetch(server.url("/second")).body, "ok");

    LoopbackServer refusing([](WireConnection& connection) { (void)connection.receive(); });
    EXPECT_EQ(kindOf(fetch(post(refusing.url("/upload"), "x"))), HttpErrorKind::connectionLost);
    EXPECT_EQ(refusing.requests().size(), 1U);

    std::vector<std::string> targets;
    for (const auto& request : server.requests()) targets.push_back(request.target);
    EXPECT_EQ(targets, (Values{"/first", "/upload", "/second", "/second"}));
}

/// Environment variables, set for one test. Others run in processes of their own.
class Environment {
public:
    explicit Environment(std::vector<std::pair<std::string, std::string>> variables)
        : variables_(std::move(variables)) {
        for (const auto& [name, value] : variables_) ::setenv(name.c_str(), value.c_str(), 1);
    }
    ~Environment() {
        for (const auto& [name, value] : variables_) ::unsetenv(name.c_str());
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    const std::vector<std::pair<std::string, std::string>> variables_;
};

// Alone in its process, as ctest runs it, it also covers what the libraries read but once, at their start.
TEST(NativeHttpEnvironment, HasNoSay) {
    LoopbackServer proxy([](const WireRequest&) { return wireReply(502, "proxy"); });
    LoopbackServer server(ok);
    const TestFile authorities("");
    const TestFile secrets("");
    const TestFile netrc("default login me password secret\n");
    const TestFile noTls(
        "openssl_conf = a\n[a]\nssl_conf = b\n[b]\nsystem_default = c\n[c]\nMaxProtocol = TLSv1.1\n");
    const Environment environment({{"http_proxy", proxy.url("")},
                                   {"https_proxy", proxy.url("")},
                                   {"ALL_PROXY", proxy.url("")},
                                   {"NETRC", netrc.path()},
                                   {"OPENSSL_CONF", noTls.path()},
                                   {"SSL_CERT_FILE", authorities.path()},
                                   {"SSLKEYLOGFILE", secrets.path()}});
    CurlHttpSessionFactory factory;
    CurlHttpSessionFactory trusting(authorities.path());
    const TestIdentity authority({.isAuthority = true});
    const TestIdentity identity({.names = "IP:127.0.0.1"}, &authority);
    LoopbackServer secure(ok, &identity);
    authorities.write(authority.pem());

    EXPECT_EQ(fetch(factory, get(server.url("/"))).body, "ok");
    EXPECT_EQ(server.requests().at(0).values("Authorization"), Values{});
    EXPECT_EQ(kindOf(fetch(factory, get(secure.url("/")))), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(fetch(trusting, get(secure.url("/"))).body, "ok");
    EXPECT_EQ(proxy.connections(), 0U);
    EXPECT_EQ(secrets.content(), "");
}

}  // namespace
}  // namespace oska::native
