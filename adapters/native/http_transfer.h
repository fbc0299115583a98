#pragma once

#include <atomic>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "adapters/native/curl_exchange.h"
#include "adapters/native/http_address.h"
#include "adapters/native/private_connections.h"
#include "adapters/native/request_deadlines.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// What a session is to its requests, which may outlive it. Threads: any.
struct SessionState {
    SessionState(const platform::HttpSessionConfiguration& limits,
                 std::shared_ptr<platform::HttpSessionDelegate> judge)
        : configuration(limits), delegate(std::move(judge)) {}

    const platform::HttpSessionConfiguration configuration;
    const std::shared_ptr<platform::HttpSessionDelegate> delegate;
    std::atomic<bool> hasEnded{false};
};

/// What becomes of a request for which there is no memory or no thread. Takes no memory itself.
[[nodiscard]] platform::HttpOutcome outOfResources();

/// One request of a session on its way to an outcome, over as many exchanges as the redirects ask for.
/// Threads: made on any; everything else on the network thread.
class HttpTransfer {
public:
    using Clock = RequestDeadlines::Clock;

    HttpTransfer(std::shared_ptr<const SessionState> session, platform::HttpRequest request,
                 platform::HttpSession::Completion completion);

    /// Completes as out of resources, unless it has completed.
    ~HttpTransfer();
    HttpTransfer(const HttpTransfer&) = delete;
    HttpTransfer& operator=(const HttpTransfer&) = delete;

    /// The transfer that a handle of libcurl's works for.
    [[nodiscard]] static HttpTransfer& of(CURL* handle) {
        return *static_cast<HttpTransfer*>(CurlExchange::ownerOf(handle));
    }

    /// Looks at the request, or at the one that a redirect has led to. An outcome when it cannot be sent.
    [[nodiscard]] std::optional<platform::HttpOutcome> prepare();

    /// Session, host and port: what connections are counted by. Requires: prepared.
    [[nodiscard]] std::pair<const void*, std::string> connectionKey() const;

    /// Sends what was prepared. An outcome when that fails.
    [[nodiscard]] std::optional<platform::HttpOutcome> send(CurlMulti& multi, TrustStore& authorities,
                                                            PrivateConnections& connections);

    /// To be called when the exchange has ended. None when that was not the end, but a redirect or a
    /// connection that was dead already: `prepare` and `send` again.
    [[nodiscard]] std::optional<platform::HttpOutcome> take(CURLcode code);

    [[nodiscard]] bool isCancelled() const { return session_->hasEnded; }
    [[nodiscard]] Clock::time_point deadline() const { return deadlines_.next(); }
    void noteActivity(Clock::time_point now) { deadlines_.noteActivity(now); }

    // The end of the transfer: what is under way is broken off, and the caller is told.
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
