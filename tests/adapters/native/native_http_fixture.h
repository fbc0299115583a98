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
using platform::HttpSessionConfiguration;
using platform::kindOf;
using platform::statusOf;

inline HttpRequest get(const std::string& url) { return {.url = Url::parse(url).value()}; }

inline HttpRequest post(const std::string& url, std::string body) {
    auto request = get(url);
    request.method = "POST";
    request.body = std::move(body);
    return request;
}

/// Sends and waits for the end.
inline HttpOutcome fetch(platform::HttpSession& session, HttpRequest request) {
    std::promise<HttpOutcome> promise;
    session.send(std::move(request), [&](HttpOutcome outcome) { promise.set_value(std::move(outcome)); });
    return promise.get_future().get();
}

/// By a session of its own.
inline HttpOutcome fetch(CurlHttpSessionFactory& factory, HttpRequest request,
                         const HttpSessionConfiguration& configuration = {},
                         std::shared_ptr<platform::HttpSessionDelegate> delegate = nullptr) {
    return fetch(*factory.makeSession(configuration, std::move(delegate)), std::move(request));
}

class NativeHttp : public testing::Test {
protected:
    HttpOutcome fetch(HttpRequest request, const HttpSessionConfiguration& configuration = {}) {
        return native::fetch(factory_, std::move(request), configuration);
    }
    HttpOutcome fetch(const std::string& url) { return fetch(get(url)); }

    CurlHttpSessionFactory factory_;
};

}  // namespace oska::native
