#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>
#include <utility>

#include "adapters/native/curl_handle.h"
#include "adapters/native/trust_store.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// What decides on the certificates that one transfer meets.
struct ServerTrust {
    platform::HttpSessionDelegate* delegate;  ///< may be null
    TrustStore& authorities;
    std::shared_ptr<CurlPool> connections;  ///< the session's own pool; null for the shared one
};

/// Decides on the certificate of each new TLS connection of one transfer. The session's delegate is asked
/// first. If it does not accept, chain, dates and host are checked in full.
///
/// A connection that the delegate accepted is kept in the session's own pool; if the transfer has no such
/// pool, the connection serves one request. Connections in the shared pool have passed the full check. No TLS
/// session is resumed, because that would skip the decision.
/// Threads: the network thread. Lifetime: longer than the transfer.
class ServerTrustCheck {
public:
    /// `host`: the name or address that the transfer connects to, without brackets.
    ServerTrustCheck(std::string host, ServerTrust trust) : host_(std::move(host)), by_(std::move(trust)) {}
    ServerTrustCheck(const ServerTrustCheck&) = delete;
    ServerTrustCheck& operator=(const ServerTrustCheck&) = delete;

    /// Makes the transfer ask this object about its TLS connections.
    void attachTo(CurlEasy& easy);

    /// Why the last certificate was refused; empty when no certificate was refused.
    [[nodiscard]] const std::string& fault() const { return fault_; }

private:
    void prepare(SSL_CTX* context);
    bool judge(X509_STORE_CTX* chain);
    [[nodiscard]] bool isAcceptedByDelegate() const;
    [[nodiscard]] bool passesFullCheck(X509_STORE_CTX* chain);

    const std::string host_;
    const ServerTrust by_;
    CURL* easy_ = nullptr;
    std::string fault_;
};

}  // namespace oska::native
