#include "adapters/native/http_redirect.h"

#include "tests/adapters/native/native_http_fixture.h"

namespace oska::native {
namespace {

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

}  // namespace
}  // namespace oska::native
