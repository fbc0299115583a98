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

TEST_F(NativeHttp, SendsTheBodyAgainButNoCredentialsToAnotherPort) {
    LoopbackServer target([](const WireRequest&) { return wireReply(200, "there"); });
    LoopbackServer server([&](const WireRequest& request) {
        const auto location = request.target == "/near" ? "far" : target.url("/there?q=1");
        return wireReply(307, "", {{"Location", location}});
    });
    auto request = post(server.url("/near"), "batch");
    request.headers = {{"Authorization", "Bearer t"}, {"X-Key", "k"}};
    EXPECT_EQ(fetch(request).body, "there");

    EXPECT_EQ(server.requests().at(1).values("Authorization"), Values{"Bearer t"});
    const auto seen = target.requests().at(0);
    EXPECT_EQ(seen.target, "/there?q=1");
    EXPECT_EQ(seen.body, "batch");
    EXPECT_EQ(seen.values("Authorization"), Values{});
    EXPECT_EQ(seen.values("X-Key"), Values{});
}

TEST_F(NativeHttp, FollowsOnlyToWhatItCouldBeAskedFor) {
    std::string location;
    LoopbackServer server([&](const WireRequest&) { return wireReply(302, "", {{"Location", location}}); });
    for (const auto& [target, kind] : std::vector<std::pair<std::string, HttpErrorKind>>{
             {"file:///etc/hostname", HttpErrorKind::unsupportedUrl},
             {"ftp://127.0.0.1/x", HttpErrorKind::unsupportedUrl},
             {"http://", HttpErrorKind::unsupportedUrl},
             {"http://x:abc/", HttpErrorKind::badServerReply}}) {
        location = target;
        const auto outcome = fetch(server.url("/"));
        EXPECT_EQ(kindOf(outcome), kind) << target;
        EXPECT_FALSE(outcome.body);
    }
}

TEST_F(NativeHttp, FollowsARedirectWhoseBodyIsCutOff) {
    LoopbackServer server([](WireConnection& connection) {
        const auto request = connection.receive();
        if (!request) return;
        connection.send(request->target == "/end"
                            ? wireReply(200, "there")
                            : "HTTP/1.1 301 Moved\r\nLocation: /end\r\nContent-Length: 9\r\n\r\nMov");
    });
    EXPECT_EQ(fetch(server.url("/")).body, "there");
}

}  // namespace
}  // namespace oska::native
