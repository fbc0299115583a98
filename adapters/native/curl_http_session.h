#pragma once

#include <memory>
#include <string>

#include "oska/platform/http_session.h"

namespace oska::native {

/// HTTP/1.1, and HTTP/2 where the server offers it, over libcurl. One network thread serves a factory's
/// sessions.
///
/// Connections are kept alive and shared by all sessions, except two kinds. TLS connections to a host for
/// which the session's delegate states a basis of trust serve that session alone, while the basis stays the
/// same. Those of requests that must not be sent twice (POST) serve one request, unless they are of the first
/// kind. A session has six requests at a time under way to one host and port; more wait, and their time-outs
/// run. Nothing is taken from the environment: no proxies, no credentials, no certificates. Time-outs: both
/// kinds to within a few milliseconds; every byte sent or received restarts the idle one. Threads and errors:
/// see `HttpSession`. Lifetime: destroying the factory shuts it down; sessions may outlive it.
class CurlHttpSessionFactory final : public platform::HttpSessionFactory {
public:
    /// `caFile`: certificates in PEM of authorities to trust besides the system's; empty for none.
    explicit CurlHttpSessionFactory(std::string caFile = {});
    ~CurlHttpSessionFactory() override;
    CurlHttpSessionFactory(const CurlHttpSessionFactory&) = delete;
    CurlHttpSessionFactory& operator=(const CurlHttpSessionFactory&) = delete;

    [[nodiscard]] std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration& configuration,
        std::shared_ptr<platform::HttpSessionDelegate> delegate) override;

    /// Ends every request under way and the network thread. When this returns, all of them have completed as
    /// cancelled, unless it is called inside a completion. Later requests complete as cancelled, too.
    void shutDown();

private:
    const std::shared_ptr<class CurlNetwork> network_;  // shared with the sessions
};

}  // namespace oska::native
