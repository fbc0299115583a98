#pragma once

#include <memory>
#include <string>

#include "oska/platform/http_session.h"

namespace oska::native {

/// HTTP/1.1, and HTTP/2 where the server offers it, over libcurl. One network thread serves a factory's
/// sessions.
///
/// Connections: kept alive and shared by all sessions, with two exceptions. A TLS connection to a host for
/// which the session's delegate states a basis of trust is used by that session only, and only while the
/// basis stays the same. A request that must not be sent twice (POST) gets a connection of its own, unless
/// the first exception holds. A session has at most six requests under way to one host and port; the others
/// wait, and their time-outs run.
/// Environment: no variable has an effect; there are no proxies, credentials or certificates from outside.
/// Time-outs: exact to a few milliseconds; every byte sent or received restarts the idle time-out.
/// Threads and errors: see `HttpSession`; completions and delegates are called on the network thread.
/// Lifetime: destroying the factory shuts it down; sessions may outlive it.
class CurlHttpSessionFactory final : public platform::HttpSessionFactory {
public:
    /// `caFile`: path of a PEM file with certificates of authorities to trust besides the system's; empty
    /// for none. It is read when first needed; when it cannot be read, every server that needs the check
    /// fails as `untrustedCertificate`, with the file's name in the description.
    explicit CurlHttpSessionFactory(std::string caFile = {});
    ~CurlHttpSessionFactory() override;
    CurlHttpSessionFactory(const CurlHttpSessionFactory&) = delete;
    CurlHttpSessionFactory& operator=(const CurlHttpSessionFactory&) = delete;

    [[nodiscard]] std::unique_ptr<platform::HttpSession> makeSession(
        const platform::HttpSessionConfiguration& configuration,
        std::shared_ptr<platform::HttpSessionDelegate> delegate) override;

    /// Ends every request under way and the network thread. When this returns, all requests have completed
    /// as `cancelled`, unless it was called inside a completion. Later requests complete as `cancelled`, too.
    void shutDown();

private:
    const std::shared_ptr<class CurlNetwork> network_;  // shared with the sessions
};

}  // namespace oska::native
