#include "adapters/native/server_trust_check.h"

#include <openssl/x509_vfy.h>
#include <openssl/x509v3.h>

#include <algorithm>
#include <memory>

namespace oska::native {
namespace {

/// Without the dot at the end of an absolute name, and without the zone of a link-local address: certificates
/// have neither.
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

/// The result of OpenSSL's own check, but with `authorities`. The connection itself has no authorities:
/// reading them takes longer than the handshake, and servers that a delegate accepts do not need them.
int errorIn(X509_STORE_CTX* chain, X509_STORE* authorities, const std::string& host) {
    const std::unique_ptr<X509_STORE_CTX, decltype(&X509_STORE_CTX_free)> check(X509_STORE_CTX_new(),
                                                                                X509_STORE_CTX_free);
    if (!check || X509_STORE_CTX_init(check.get(), authorities, X509_STORE_CTX_get0_cert(chain),
                                      X509_STORE_CTX_get0_untrusted(chain)) != 1) {
        return X509_V_ERR_OUT_OF_MEM;
    }
    auto* expectations = X509_STORE_CTX_get0_param(check.get());
    if (X509_VERIFY_PARAM_set1(expectations, X509_STORE_CTX_get0_param(chain)) != 1 ||
        !expectHost(expectations, host)) {
        return X509_V_ERR_OUT_OF_MEM;
    }
    return X509_verify_cert(check.get()) == 1 ? X509_V_OK : X509_STORE_CTX_get_error(check.get());
}

}  // namespace

void ServerTrustCheck::attachTo(CurlEasy& easy) {
    easy_ = easy.get();
    if (by_.connections) easy.set(CURLOPT_SHARE, by_.connections->get());
    const curl_ssl_ctx_callback onContext = [](CURL*, void* context, void* self) noexcept {
        static_cast<ServerTrustCheck*>(self)->prepare(static_cast<SSL_CTX*>(context));
        return CURLE_OK;
    };
    easy.set(CURLOPT_SSLVERSION, long{CURL_SSLVERSION_TLSv1_2})
        .set(CURLOPT_SSL_VERIFYPEER, 1L)
        .set(CURLOPT_SSL_VERIFYHOST,
             0L)  // otherwise libcurl's name check overrules the delegate
        .set(CURLOPT_CAINFO, nullptr)
        .set(CURLOPT_CAPATH, nullptr)
        .set(CURLOPT_SSL_SESSIONID_CACHE, 0L)  // newer versions of libcurl share sessions among all transfers
        .set(CURLOPT_SSL_CTX_FUNCTION, onContext)
        .set(CURLOPT_SSL_CTX_DATA, static_cast<void*>(this));
}

void ServerTrustCheck::prepare(SSL_CTX* context) {
    SSL_CTX_set_cert_verify_callback(
        context,
        [](X509_STORE_CTX* chain, void* self) noexcept {
            return static_cast<ServerTrustCheck*>(self)->judge(chain) ? 1 : 0;
        },
        this);
    // A second handshake could bring another certificate, long after this object was destroyed.
    SSL_CTX_set_options(context, SSL_OP_NO_RENEGOTIATION);
    // Otherwise libcurl writes the connection's secrets to the file that the variable SSLKEYLOGFILE names.
    SSL_CTX_set_keylog_callback(context, nullptr);
}

bool ServerTrustCheck::judge(X509_STORE_CTX* chain) {
    if (isAcceptedByDelegate()) {
        if (!by_.connections) curl_easy_setopt(easy_, CURLOPT_FORBID_REUSE, 1L);
        X509_STORE_CTX_set_error(chain, X509_V_OK);
        return true;
    }
    return passesFullCheck(chain);
}

bool ServerTrustCheck::isAcceptedByDelegate() const {
    if (!by_.delegate) return false;
    return by_.delegate->didReceiveChallenge({.host = host_}) ==
           platform::ChallengeDisposition::useCredential;
}

bool ServerTrustCheck::passesFullCheck(X509_STORE_CTX* chain) {
    auto* authorities = by_.authorities.get();
    if (!authorities) {
        fault_ = by_.authorities.fault();
        X509_STORE_CTX_set_error(chain, X509_V_ERR_APPLICATION_VERIFICATION);
        return false;
    }
    const int error = errorIn(chain, authorities, nameToCheck(host_));
    X509_STORE_CTX_set_error(chain, error);
    if (error != X509_V_OK) fault_ = X509_verify_cert_error_string(error);
    return error == X509_V_OK;
}

}  // namespace oska::native
