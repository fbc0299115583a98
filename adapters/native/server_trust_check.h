#pragma once

#include <openssl/ssl.h>

#include <memory>
#include <string>
#include <utility>

#include "adapters/native/curl_handle.h"
#include "adapters/native/trust_store.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// What the certificates that one transfer meets are judged by.
struct ServerTrust {
    platform::HttpSessionDelegate* delegate;  ///< may be null
    TrustStore& authorities;
    std::shared_ptr<CurlPool> connections;  ///< the session's own, else null
};

/// Judges the certificate of each new TLS connection of one transfer: the session's delegate is asked first,
/// else chain, dates and host are checked in full.
///
/// What a delegate accepted is kept alive among the session's own connections; where the transfer has none,
/// it serves one request. Connections of the pool for all have passed the full check. No TLS session is
/// resumed, since that skips the judgement. Threads: the network thread. Lifetime: longer than the transfer.
class ServerTrustCheck {
public:
    /// `host`: as connected to; an address without brackets.
    ServerTrustCheck(std::string host, ServerTrust trust) : host_(std::move(host)), by_(std::move(trust)) {}
    ServerTrustCheck(const ServerTrustCheck&) = delete;
    ServerTrustCheck& operator=(const ServerTrustCheck&) = delete;

    /// Makes the transfer's TLS connections come here.
    void attachTo(CurlEasy& easy);

    /// Why the last certificate was refused; empty when none was.
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
