#include <cstdlib>
#include <map>
#include <thread>

#include "adapters/native/http_redirect.h"
#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using namespace std::chrono_literals;

TEST_F(NativeHttp, WritesEachHeaderOnceAndItsOwnLengthAndDoesNotAskFirst) {
    const std::string body(3'000'000, 'b');
    auto request = post(server_.url("/a%20b/../c?x=1&y=%41#fragment"), body);
    request.headers = {{"content-length", "9"},
                       {"X-Empty", ""},
                       {"accept-encoding", "br"},
                       {"Transfer-Encoding", "chunked"}};
    EXPECT_EQ(fetch(factory_, request).body, "ok");
    const auto seen = server_.requests().at(0);
    EXPECT_EQ(seen.target, "/a%20b/../c?x=1&y=%41");
    EXPECT_EQ(seen.body, body);
    Strings headers;
    for (const auto* name : {"Content-Length", "X-Empty", "Accept-Encoding", "Transfer-Encoding", "Expect"})
        for (const auto& value : seen.values(name)) headers.push_back(value);
    EXPECT_EQ(headers, (Strings{"3000000", "", "gzip, deflate"}));

    for (const auto* method : {"DELETE", "PUT", "POST"}) {
        EXPECT_EQ(fetch(factory_, {.url = request.url, .method = method}).body, "ok");
        EXPECT_EQ(server_.requests().back().method, method);
    }
}

TEST_F(NativeHttp, WritesNothingThatWouldBreakALineAndGoesToNoHostButTheOneThatTheUrlShows) {
    auto request = get(server_.url("/"));
    for (const auto& header : std::vector<platform::HttpHeader>{
             {"Line", "a\r\nX: 1"}, {"Zero", std::string("a\0b", 3)}, {"X Name", "v"}, {"", "v"}}) {
        request.headers = {header};
        const auto outcome = fetch(factory_, request);
        EXPECT_EQ(kindOf(outcome), HttpErrorKind::unknown) << header.name;
        EXPECT_NE(outcome.error->description.find("\"" + header.name + "\""), std::string::npos);
    }
    request = {.url = request.url, .method = "GET / HTTP/1.1\r\nX:"};
    EXPECT_EQ(kindOf(fetch(factory_, request)), HttpErrorKind::unknown);

    for (const auto& url : {server_.url("/", "%31%32%37.0.0.1"), server_.url("/", "127.1"),
                            std::string("http://127.0.0.1:99999/")})
        EXPECT_EQ(kindOf(fetch(factory_, get(url))), HttpErrorKind::unsupportedUrl) << url;
    const auto unknown = fetch(factory_, get("http://no-such-host.invalid/"));
    EXPECT_EQ(kindOf(unknown), HttpErrorKind::cannotFindHost);
    EXPECT_NE(unknown.error->description.find("no-such-host.invalid"), std::string::npos);
    EXPECT_EQ(server_.connections(), 0U);
}

TEST_F(NativeHttp, HasSixConnectionsASessionAndHostAndLetsTheRestWait) {
    std::promise<void> hold;
    LoopbackServer server([held = hold.get_future().share()](const WireRequest& request) {
        if (request.target == "/held") held.wait();
        return wireReply(200, "ok");
    });
    const auto session = factory_.makeSession({}, nullptr);
    platform::Outcomes outcomes;
    const auto await = [&](std::size_t count) {
        while (outcomes.count() < count) std::this_thread::yield();
        return kindOf(outcomes.all().back());
    };
    for (int i = 0; i < 8; ++i) session->send(get(server.url("/held")), outcomes.next());
    session->send({.url = Url::parse(server.url("/")).value(), .body = "x"}, outcomes.next());
    EXPECT_EQ(await(1), HttpErrorKind::bodyNotAllowed);
    session->send({.url = Url::parse(server.url("/held")).value(), .timeout = 20ms}, outcomes.next());
    EXPECT_EQ(await(2), HttpErrorKind::timedOut);

    // Connections are accepted in the order in which they were made: one more would have been counted.
    EXPECT_EQ(fetch(factory_, get(server.url("/"))).body, "ok");
    EXPECT_EQ(server.connections(), 7U);
    hold.set_value();
    await(10);
    for (std::size_t i = 2; i < 10; ++i) EXPECT_EQ(outcomes.all()[i].body, "ok");
    EXPECT_EQ(server.connections(), 7U);
}

TEST_F(NativeHttp, RepeatsAGetThatMetADeadConnectionButNeverAPost) {
    LoopbackServer server([](WireConnection& connection) {
        const auto request = connection.receive();
        if (!request || request->target == "/refused") return;
        connection.send(wireReply(200, "ok"));
        (void)connection.receive();
    });
    EXPECT_EQ(fetch(factory_, get(server.url("/first"))).body, "ok");
    EXPECT_EQ(fetch(factory_, post(server.url("/upload"), "x")).body, "ok");
    EXPECT_EQ(fetch(factory_, get(server.url("/second"))).body, "ok");
    EXPECT_EQ(kindOf(fetch(factory_, post(server.url("/refused"), "x"))), HttpErrorKind::connectionLost);
    Strings targets;
    for (const auto& request : server.requests()) targets.push_back(request.target);
    EXPECT_EQ(targets, (Strings{"/first", "/upload", "/second", "/second", "/refused"}));
}

platform::HttpReply redirect(int status, std::string location) {
    return {.status = status, .headers = {{"location", std::move(location)}}};
}

TEST(HttpRedirect, KeepsMethodBodyAndHeadersAsStatusAndOriginAllow) {
    struct Case {
        int status;
        std::string method;
        std::string location;
        std::string next;  // its method, and the first letters of the headers that are kept
    };
    for (const auto& [status, method, location, expected] : std::vector<Case>{
             {301, "POST", "b", "GET AX"},
             {302, "POST", "http://HOST/other", "GET AX"},
             {303, "PUT", "http://host:80/", "GET AX"},
             {301, "PUT", "?q", "PUT AXC"},
             {307, "POST", "/", "POST AXC"},
             {308, "POST", "http://host:81/", "POST C"},
             {307, "PUT", "https://host:80/", "PUT C"},
             {302, "POST", "//other/", "GET "},
             {305, "GET", "http://sub.host/", "GET "},
             {306, "GET", "b", "GET AXC"},
         }) {
        auto request = post("http://host/a", "body");
        request.method = method;
        request.headers = {{"Authorization", "Bearer t"}, {"X-Own", "1"}, {"Content-Type", "text/plain"}};
        if (method == "GET") request.body.reset();
        const auto reply = redirect(status, location);
        EXPECT_TRUE(isRedirect(reply)) << status;
        const auto next = std::get<HttpRequest>(redirected(request, reply));
        auto text = next.method + " ";
        for (const auto& header : next.headers) text += header.name.front();
        EXPECT_EQ(text, expected) << status << method << location;
        EXPECT_EQ(next.body.has_value(), next.method != "GET") << status << method;
    }
    for (const int status : {200, 300, 304}) EXPECT_FALSE(isRedirect(redirect(status, "/"))) << status;
    EXPECT_FALSE(isRedirect({.status = 302}));
}

TEST_F(NativeHttp, FollowsTwentyRedirectsAlsoCutOffOnesToWhatItCouldBeAskedFor) {
    std::string last = "/0";
    LoopbackServer server([&](WireConnection& connection) {  // "/N" redirects to "/N-1", "/1" to `last`
        while (const auto request = connection.receive()) {
            const int left = std::stoi(request->target.substr(1));
            const auto next = left == 1 ? last : "/" + std::to_string(left - 1);
            const auto reply =
                left == 0 ? wireReply(200, request->body) : wireReply(307, "Moved", {{"Location", next}});
            connection.send(left == 1 ? reply.substr(0, reply.size() - 1) : reply);
            if (left == 1) return;
        }
    });
    auto request = post(server.url("/20"), "batch");
    request.method = "PUT";
    EXPECT_EQ(fetch(factory_, request).body, "batch");
    EXPECT_EQ(server.connections(), 2U);
    const auto outcome = fetch(factory_, get(server.url("/21")));
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::tooManyRedirects);
    EXPECT_FALSE(outcome.reply);
    last = "file:///etc/hostname";
    EXPECT_EQ(kindOf(fetch(factory_, get(server.url("/1")))), HttpErrorKind::unsupportedUrl);
    last = "http://x:abc/";
    EXPECT_EQ(kindOf(fetch(factory_, get(server.url("/1")))), HttpErrorKind::badServerReply);
}

// Alone in its process, as ctest runs it, it also covers what the libraries read but once, at their start.
TEST(NativeHttpEnvironment, HasNoSay) {
    LoopbackServer proxy([](const WireRequest&) { return wireReply(502, "proxy"); });
    LoopbackServer server(ok);
    const TestFile authorities("");
    const TestFile secrets("");
    const TestFile netrc("default login me password secret\n");
    const TestFile noTls(
        "openssl_conf = a\n[a]\nssl_conf = b\n[b]\nsystem_default = c\n[c]\nMaxProtocol = TLSv1.1\n");
    const std::map<const char*, std::string> variables{
        {"http_proxy", proxy.url("")},    {"https_proxy", proxy.url("")},
        {"ALL_PROXY", proxy.url("")},     {"NETRC", netrc.path()},
        {"OPENSSL_CONF", noTls.path()},   {"SSL_CERT_FILE", authorities.path()},
        {"SSLKEYLOGFILE", secrets.path()}};
    for (const auto& [name, value] : variables) ::setenv(name, value.c_str(), 1);
    CurlHttpSessionFactory factory;
    CurlHttpSessionFactory trusting(authorities.path());
    const TestIdentity authority({.isAuthority = true});
    const TestIdentity identity({.names = "IP:127.0.0.1"}, &authority);
    LoopbackServer secure(ok, &identity);
    authorities.write(authority.pem());

    EXPECT_EQ(fetch(factory, get(server.url("/"))).body, "ok");
    EXPECT_EQ(server.requests().at(0).values("Authorization"), Strings{});
    EXPECT_EQ(kindOf(fetch(factory, get(secure.url("/")))), HttpErrorKind::untrustedCertificate);
    EXPECT_EQ(fetch(trusting, get(secure.url("/"))).body, "ok");
    EXPECT_EQ(proxy.connections(), 0U);
    EXPECT_EQ(secrets.content(), "");
    for (const auto& [name, value] : variables) ::unsetenv(name);
}

}  // namespace
}  // namespace oska::native
