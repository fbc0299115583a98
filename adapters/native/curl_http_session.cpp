#include "adapters/native/curl_http_session.h"

#include <openssl/crypto.h>
#include <openssl/x509.h>

#include <mutex>
#include <new>
#include <utility>

#include "adapters/native/curl_network.h"

namespace oska::native {
namespace {

/// Otherwise OpenSSL reads its settings from the file that the variable OPENSSL_CONF names.
void loadOpenSslSettings() {
    const auto file = std::string(X509_get_default_cert_area()) + "/openssl.cnf";
    auto* settings = OPENSSL_INIT_new();
    OPENSSL_INIT_set_config_filename(settings, file.c_str());
    OPENSSL_init_crypto(OPENSSL_INIT_LOAD_CONFIG, settings);
    OPENSSL_INIT_free(settings);
}

/// Never undone, because other parts of the host may use the libraries, too.
void initializeLibraries() {
    static std::once_flag once;
    std::call_once(once, [] {
        loadOpenSslSettings();
        curl_global_init(CURL_GLOBAL_DEFAULT);
    });
}

class CurlHttpSession final : public platform::HttpSession {
public:
    CurlHttpSession(std::shared_ptr<CurlNetwork> network, std::shared_ptr<SessionState> state)
        : network_(std::move(network)), state_(std::move(state)) {}
    ~CurlHttpSession() override {
        state_->hasEnded = true;
        network_->wake();
    }
    CurlHttpSession(const CurlHttpSession&) = delete;
    CurlHttpSession& operator=(const CurlHttpSession&) = delete;

    void send(platform::HttpRequest request, Completion completion) override {
        std::unique_ptr<HttpTransfer> transfer;
        try {
            transfer = std::make_unique<HttpTransfer>(state_, std::move(request), std::move(completion));
        } catch (const std::bad_alloc&) {
            return completion(outOfResources());  // nothing has been moved yet
        }
        network_->send(std::move(transfer));
    }

private:
    const std::shared_ptr<CurlNetwork> network_;
    const std::shared_ptr<SessionState> state_;
};

}  // namespace

CurlHttpSessionFactory::CurlHttpSessionFactory(std::string caFile)
    : network_(std::make_shared<CurlNetwork>(std::move(caFile))) {
    initializeLibraries();
}

CurlHttpSessionFactory::~CurlHttpSessionFactory() { shutDown(); }

std::unique_ptr<platform::HttpSession> CurlHttpSessionFactory::makeSession(
    const platform::HttpSessionConfiguration& configuration,
    std::shared_ptr<platform::HttpSessionDelegate> delegate) {
    return std::make_unique<CurlHttpSession>(
        network_, std::make_shared<SessionState>(configuration, std::move(delegate)));
}

void CurlHttpSessionFactory::shutDown() { network_->shutDown(); }

}  // namespace oska::native
