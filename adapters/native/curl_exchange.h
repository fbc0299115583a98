#pragma once

#include <array>
#include <chrono>
#include <cstddef>

#include "adapters/native/curl_handle.h"
#include "adapters/native/curl_multi.h"
#include "adapters/native/http_address.h"
#include "adapters/native/reply_collector.h"
#include "adapters/native/server_trust_check.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// What an exchange is held to.
struct ExchangeLimits {
    std::chrono::milliseconds connecting{0};  ///< shared out by libcurl among the addresses that a host has
    std::size_t replyBytes = 0;
};

/// One request and its reply on the wire. Redirects are the caller's business.
///
/// Threads: the network thread. Lifetime: shorter than that of everything handed to it; destroyed before its
/// end, it breaks its connection off.
class CurlExchange {
public:
    /// Requires: `address` is that of the request's URL. `owner` is what `ownerOf` answers.
    CurlExchange(const platform::HttpRequest& request, const HttpAddress& address,
                 const ExchangeLimits& limits, ServerTrust trust, void* owner);
    ~CurlExchange();
    CurlExchange(const CurlExchange&) = delete;
    CurlExchange& operator=(const CurlExchange&) = delete;

    [[nodiscard]] static void* ownerOf(CURL* handle);

    /// None when it is under way, else why it could not be sent.
    [[nodiscard]] std::optional<platform::HttpError> start(CurlMulti& multi);

    /// Whether it ended because a connection kept alive was dead, and may be sent once more. libcurl sees to
    /// that over HTTP/1.1; over HTTP/2 it fails when the server has had enough of a connection.
    [[nodiscard]] bool metDeadConnection(CURLcode code) const;

    /// How it ended, told by libcurl's code. A redirect counts as it stands once its headers were complete.
    [[nodiscard]] platform::HttpOutcome outcome(CURLcode code);

    /// The outcome of breaking it off now: with the reply, when its headers had come.
    [[nodiscard]] platform::HttpOutcome brokenOff(platform::HttpError error) const;

private:
    [[nodiscard]] std::optional<platform::HttpError> setUrl();
    void setRequest();
    void setBody();
    void sendOnlyOnce();
    void setConnection(const ExchangeLimits& limits);
    void setCallbacks(void* owner);
    [[nodiscard]] platform::HttpError failure(CURLcode code) const;

    const platform::HttpRequest& request_;
    const HttpAddress address_;
    CurlMulti* multi_ = nullptr;  // while under way
    std::size_t bodyBytesTaken_ = 0;
    ReplyCollector collector_;
    ServerTrustCheck trust_;
    const bool hasOwnConnections_;
    CurlUrl url_;
    CurlList headers_;
    std::array<char, CURL_ERROR_SIZE> errorText_{};
    CurlEasy easy_;
};

}  // namespace oska::native
