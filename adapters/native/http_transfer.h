#pragma once

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/native/curl_exchange.h"
#include "adapters/native/http_address.h"
#include "adapters/native/private_connections.h"
#include "adapters/native/request_deadlines.h"
#include "adapters/native/session_state.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// The outcome of a request for which there is no memory or no thread. Needs no memory itself.
[[nodiscard]] platform::HttpOutcome outOfResources();

/// One request of a session until its completion was called. Each redirect makes a new exchange.
/// Threads: constructed on any; everything else on the network thread.
class HttpTransfer {
public:
    using Clock = RequestDeadlines::Clock;

    HttpTransfer(std::shared_ptr<const SessionState> session, platform::HttpRequest request,
                 platform::HttpSession::Completion completion);

    /// Completes as out of resources if it has not completed yet.
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// The transfer that this handle of libcurl belongs to.
    [[nodiscard]] static HttpTransfer& of(CURL* handle) {
        return *static_cast<HttpTransfer*>(CurlExchange::ownerOf(handle));
    }

    /// Checks the request, or the one that follows a redirect. Returns an outcome when it cannot be sent.
    [[nodiscard]] std::optional<platform::HttpOutcome> prepare();

    /// Session, host and port, for which connections are counted. Requires: prepared.
    [[nodiscard]] std::pair<const void*, std::string> connectionKey() const;

    /// Sends what was prepared. Returns an outcome when that fails.
    [[nodiscard]] std::optional<platform::HttpOutcome> send(CurlMulti& multi, TrustStore& authorities,
                                                            PrivateConnections& connections);

    /// Must be called when the exchange has ended. Returns nullopt when the request goes on, after a redirect
    /// or because a kept connection was dead: call `prepare` and `send` again.
    [[nodiscard]] std::optional<platform::HttpOutcome> take(CURLcode code);

    [[nodiscard]] bool isCancelled() const { return session_->hasEnded; }
    [[nodiscard]] Clock::time_point deadline() const { return deadlines_.next(); }
    void noteActivity(Clock::time_point now) { deadlines_.noteActivity(now); }

    // Each of these ends the transfer: it breaks off the exchange and calls the completion.
    void complete(platform::HttpOutcome outcome);
    void timeOut();
    void cancel();

private:
    void breakOff(platform::HttpError error);
    [[nodiscard]] std::optional<platform::HttpOutcome> follow(const platform::HttpReply& redirect);

    const std::shared_ptr<const SessionState> session_;
    platform::HttpRequest request_;
    platform::HttpSession::Completion completion_;
    RequestDeadlines deadlines_;
    std::optional<HttpAddress> address_;  // once prepared
    int redirects_ = 0;
    bool hasBeenRepeated_ = false;
    std::unique_ptr<CurlExchange> exchange_;
};

}  // namespace oska::native
