#pragma once

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <string>
#include <utility>

#include "adapters/native/curl_http_session.h"
#include "tests/contract/http_session_contract.h"
#include "tests/fakes/loopback_server.h"

namespace oska::native {

using fakes::LoopbackServer;
using fakes::TestFile;
using fakes::TestIdentity;
using fakes::WireConnection;
using fakes::wireReply;
using fakes::WireRequest;
using platform::HttpErrorKind;
using platform::HttpOutcome;
using platform::HttpRequest;
using platform::kindOf;
using platform::statusOf;
using Strings = std::vector<std::string>;

inline std::string ok(const WireRequest&) { return wireReply(200, "ok"); }

inline HttpRequest get(const std::string& url) { return {.url = Url::parse(url).value()}; }

inline HttpRequest post(const std::string& url, std::string body) {
    return {.url = Url::parse(url).value(), .method = "POST", .body = std::move(body)};
}

/// Sends and waits for the end.
inline HttpOutcome fetch(platform::HttpSession& session, HttpRequest request) {
    std::promise<HttpOutcome> promise;
    session.send(std::move(request), [&](HttpOutcome outcome) { promise.set_value(std::move(outcome)); });
    return promise.get_future().get();
}

/// By a session of its own.
inline HttpOutcome fetch(CurlHttpSessionFactory& factory, HttpRequest request,
                         const platform::HttpSessionConfiguration& configuration = {},
                         std::shared_ptr<platform::HttpSessionDelegate> delegate = nullptr) {
    return fetch(*factory.makeSession(configuration, std::move(delegate)), std::move(request));
}

class NativeHttp : public testing::Test {
protected:
    LoopbackServer server_{ok};
    CurlHttpSessionFactory factory_;
};

}  // namespace oska::native
