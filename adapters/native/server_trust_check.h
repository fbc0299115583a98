#pragma once

#include <openssl/ssl.h>

#include <string>

#include "adapters/native/curl_handle.h"
#include "adapters/native/trust_store.h"
#include "oska/platform/http_session.h"

namespace oska::native {

/// Judges the certificate of each new TLS connection of one transfer: the session's delegate is asked first,
/// else chain, dates and host are checked in full.
///
/// What a delegate accepted was accepted for one request: its connection is closed after it. Connections
/// that passed the full check are kept alive, and serve any session. No TLS session is resumed, since that
/// skips the judgement. Threads: the network thread. Lifetime: longer than the transfer.
class ServerTrustCheck {
public:
    /// `host`: as connected to; an address without brackets. `delegate` may be null.
    ServerTrustCheck(std::string host, platform::HttpSessionDelegate* delegate, TrustStore& authorities)
        : host_(std::move(host)), delegate_(delegate), authorities_(authorities) {}
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
    platform::HttpSessionDelegate* const delegate_;
    TrustStore& authorities_;
    CURL* easy_ = nullptr;
    std::string fault_;
};

}  // namespace oska::native
