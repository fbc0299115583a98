#include "adapters/native/server_trust_check.h"

#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <algorithm>

namespace oska::native {
namespace {

/// Without the dot that makes a name absolute, which certificates leave out, or the zone of a link-local address.
std::string nameToCheck(std::string host) {
    const bool isIpv6 = host.find(':') != std::string::npos;
    if (isIpv6) host.resize(std::min(host.find('%'), host.size()));
    if (host.ends_with('.')) host.pop_back();
    return host;
}

bool expectHost(X509_VERIFY_PARAM* expectations, const std::string& host) {
    if (X509_VERIFY_PARAM_set1_ip_asc(expectations, host.c_str()) == 1) return true;
    X509_VERIFY_PARAM_set_hostflags(expectations, X509_CHECK_FLAG_NO_PARTIAL_WILDCARDS);
    return X509_VERIFY_PARAM_set1_host(expectations, host.data(), host.size()) == 1;
}

}  // namespace

void ServerTrustCheck::attachTo(CurlEasy& easy) {
    easy_ = easy.get();
    const curl_ssl_ctx_callback onContext = [](CURL*, void* context, void* self) noexcept {
        return static_cast<ServerTrustCheck*>(self)->prepare(static_cast<SSL_CTX*>(context));
    };
    easy.set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2})
        .set(CURLOPT_SSL_VERIFYPEER, 1L)
        .set(CURLOPT_SSL_VERIFYHOST, 0L)  // libcurl's own name check would come after, and overrule, the delegate
        .set(CURLOPT_CAINFO, nullptr)
        .set(CURLOPT_CAPATH, nullptr)
        .set(CURLOPT_SSL_SESSIONID_CACHE, 0L)
        .set(CURLOPT_SSL_CTX_FUNCTION, onContext)
        .set(CURLOPT_SSL_CTX_DATA, static_cast<void*>(this));
}

CURLcode ServerTrustCheck::prepare(SSL_CTX* context) {
    auto* store = authorities_.get();
    if (!store) {
        fault_ = authorities_.fault();
        return CURLE_SSL_CACERT_BADFILE;
    }
    SSL_CTX_set1_cert_store(context, store);
    SSL_CTX_set_cert_verify_callback(
        context,
        [](X509_STORE_CTX* chain, void* self) noexcept { return static_cast<ServerTrustCheck*>(self)->judge(chain) ? 1 : 0; },
        this);
    // A second handshake could bring another certificate, long after this object has gone.
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
    // libcurl obeys the variable SSLKEYLOGFILE and would write the connection's secrets there.
    SSL_CTX_set_keylog_callback(context, nullptr);
    return CURLE_OK;
}

bool ServerTrustCheck::judge(X509_STORE_CTX* chain) {
    if (isAcceptedByDelegate()) {
        curl_easy_setopt(easy_, CURLOPT_FORBID_REUSE, 1L);
        X509_STORE_CTX_set_error(chain, X509_V_OK);
        return true;
    }
    if (passesFullCheck(chain)) return true;
    fault_ = X509_verify_cert_error_string(X509_STORE_CTX_get_error(chain));
    return false;
}

bool ServerTrustCheck::isAcceptedByDelegate() const {
    if (!delegate_) return false;
    return delegate_->didReceiveChallenge({.host = host_}) == platform::ChallengeDisposition::useCredential;
}

bool ServerTrustCheck::passesFullCheck(X509_STORE_CTX* chain) const {
    if (!expectHost(X509_STORE_CTX_get0_param(chain), nameToCheck(host_))) return false;
    return X509_verify_cert(chain) == 1;
}

}  // namespace oska::native
