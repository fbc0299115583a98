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

/// The limits of one exchange.
struct ExchangeLimits {
    std::chrono::milliseconds connecting{0};  ///< libcurl divides it among the addresses of the host
    std::size_t replyBytes = 0;
};

/// One request and its reply on the wire. The caller follows redirects.
///
/// Threads: the network thread. Lifetime: everything handed to it must outlive it. Destroying it before its
/// end breaks off the connection.
class CurlExchange {
public:
    /// Requires: `address` is that of the request's URL. `ownerOf` returns `owner`.
    CurlExchange(const platform::HttpRequest& request, const HttpAddress& address,
                 const ExchangeLimits& limits, ServerTrust trust, void* owner);
    ~CurlExchange();
    CurlExchange(const CurlExchange&) = delete;
    CurlExchange& operator=(const CurlExchange&) = delete;

    [[nodiscard]] static void* ownerOf(CURL* handle);

    /// Returns nullopt when it is under way, else why it could not be sent.
    [[nodiscard]] std::optional<platform::HttpError> start(CurlMulti& multi);

    /// Whether it ended because a kept connection was dead, and may be sent once more. Over HTTP/1.1 libcurl
    /// sends it again itself; over HTTP/2 it reports an error when the server has closed the connection.
    [[nodiscard]] bool metDeadConnection(CURLcode code) const;

    /// The outcome, from libcurl's code. For a redirect it is enough that its headers are complete.
    [[nodiscard]] platform::HttpOutcome outcome(CURLcode code);

    /// The outcome of breaking it off now. It has the reply if its headers had come.
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
