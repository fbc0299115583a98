#include "adapters/native/http_redirect.h"

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

using platform::HttpHeader;
using platform::HttpReply;
using Values = std::vector<std::string>;

HttpReply redirect(int status, std::string location) {
    return {.status = status, .headers = {{"location", std::move(location)}}};
}

TEST(HttpRedirect, IsAStatusThatLeadsOnWithALocation) {
    for (const int status : {301, 302, 303, 305, 306, 307, 308})
        EXPECT_TRUE(isRedirect(redirect(status, "/"))) << status;
    for (const int status : {200, 201, 300, 304, 404})
        EXPECT_FALSE(isRedirect(redirect(status, "/"))) << status;
    EXPECT_FALSE(isRedirect({.status = 302}));
}

TEST(HttpRedirect, KeepsMethodAndBodyWhereTheStatusSaysSo) {
    struct Case {
        int status;
        const char* method;
        const char* next;
    };
    for (const auto& one : {Case{301, "POST", "GET"}, Case{302, "POST", "GET"}, Case{303, "POST", "GET"},
                            Case{303, "PUT", "GET"}, Case{301, "PUT", "PUT"}, Case{307, "POST", "POST"},
                            Case{308, "POST", "POST"}, Case{302, "GET", "GET"}}) {
        auto request = post("http://host/a", "body");
        request.method = one.method;
        request.headers = {{"Content-Type", "text/plain"}, {"X-Own", "1"}};
        const auto next = std::get<HttpRequest>(redirected(request, redirect(one.status, "b")));
        const bool keepsBody = one.next != std::string_view("GET") || one.method == std::string_view("GET");
        EXPECT_EQ(next.method, one.next) << one.status << one.method;
        EXPECT_EQ(next.body.has_value(), keepsBody) << one.status << one.method;
        EXPECT_EQ(next.headers.size(), keepsBody ? 2U : 1U) << one.status << one.method;
        EXPECT_EQ(next.url.absoluteString(), "http://host/b");
    }
}

TEST(HttpRedirect, TakesTheCallersHeadersNowhereElse) {
    struct Case {
        const char* location;
        bool isSameOrigin;
    };
    for (const auto& one :
         {Case{"/other", true}, Case{"http://HOST/other", true}, Case{"http://host:80/", true},
          Case{"?q", true}, Case{"http://host:81/", false}, Case{"https://host/", false},
          Case{"https://host:80/", false}, Case{"//other/", false}, Case{"http://sub.host/", false},
          Case{"file:///x", false}}) {
        auto request = get("http://host/a");
        request.headers = {
            {"Authorization", "Bearer t"}, {"X-Own", "1"}, {"Content-Type", "application/json"}};
        const auto next = std::get<HttpRequest>(redirected(request, redirect(307, one.location)));
        EXPECT_EQ(next.headers.size(), one.isSameOrigin ? 3U : 0U) << one.location;
    }
    auto upload = post("http://host/a", "{}");
    upload.headers = {{"Authorization", "Bearer t"}, {"Content-Type", "application/json"}};
    const auto next = std::get<HttpRequest>(redirected(upload, redirect(307, "http://other/")));
    ASSERT_EQ(next.headers.size(), 1U) << "the body's type goes with the body";
    EXPECT_EQ(next.headers[0].name, "Content-Type");
}

/// "/N" redirects to "/N-1", "/0" answers.
std::string countDown(const WireRequest& request) {
    const int left = std::stoi(request.target.substr(1));
    if (left == 0) return wireReply(200, "there");
    return wireReply(302, "a body to be passed over", {{"Location", "/" + std::to_string(left - 1)}});
}

TEST_F(NativeHttp, FollowsTwentyRedirectsAndNoMore) {
    LoopbackServer server(countDown);
    EXPECT_EQ(fetch(server.url("/20")).body, "there");
    EXPECT_EQ(server.connections(), 1U);
    const auto outcome = fetch(server.url("/21"));
    EXPECT_EQ(kindOf(outcome), HttpErrorKind::tooManyRedirects);
    EXPECT_FALSE(outcome.reply);
}

TEST_F(NativeHttp, FollowsOnlyToWhatItCouldBeAskedFor) {
    std::string location;
    LoopbackServer server([&](const WireRequest&) { return wireReply(302, "", {{"Location", location}}); });
    for (const auto* target : {"file:///etc/hostname", "ftp://127.0.0.1/x", "http://", "http://x:abc/"}) {
        location = target;
        const auto outcome = fetch(server.url("/"));
        const bool isUrl = location != "http://x:abc/";
        EXPECT_EQ(kindOf(outcome), isUrl ? HttpErrorKind::unsupportedUrl : HttpErrorKind::badServerReply);
        EXPECT_FALSE(outcome.body);
    }
}

TEST_F(NativeHttp, SendsTheBodyAgainAfterARedirectThatIsCutOff) {
    LoopbackServer target([](const WireRequest& request) { return wireReply(200, request.body); });
    LoopbackServer server([&](WireConnection& connection) {
        if (!connection.receive()) return;
        connection.send("HTTP/1.1 307 Moved\r\nLocation: " + target.url("/there?q=1") +
                        "\r\nContent-Length: 9\r\n\r\nMov");
    });
    auto request = post(server.url("/"), "batch");
    request.headers = {{"Authorization", "Bearer t"}};
    EXPECT_EQ(fetch(request).body, "batch");
    EXPECT_EQ(target.requests().at(0).target, "/there?q=1");
    EXPECT_EQ(target.requests().at(0).values("Authorization"), Values{});
}

}  // namespace
}  // namespace oska::native
