#include "adapters/native/trust_store.h"

#include <openssl/err.h>

#include "adapters/native/curl_handle.h"

namespace oska::native {
namespace {

struct SystemPlaces {
    const char* file = nullptr;
    const char* folder = nullptr;
};

SystemPlaces systemPlaces(const CurlEasy& easy) {
    char* file = nullptr;
    char* folder = nullptr;
    curl_easy_getinfo(easy.get(), CURLINFO_CAINFO, &file);
    curl_easy_getinfo(easy.get(), CURLINFO_CAPATH, &folder);
    if (file || folder) return {file, folder};
    return {X509_get_default_cert_file(), X509_get_default_cert_dir()};
}

/// It is no error when the system has no authorities: the host may have given its own.
void addSystem(X509_STORE* store) {
    const CurlEasy easy;
    const auto [file, folder] = systemPlaces(easy);
    if (file) X509_STORE_load_locations(store, file, nullptr);
    if (folder) X509_STORE_load_locations(store, nullptr, folder);
    ERR_clear_error();
}

}  // namespace

X509_STORE* TrustStore::get() {
    if (store_) return store_.get();
    std::unique_ptr<X509_STORE, Free> store(X509_STORE_new());
    if (!file_.empty() && X509_STORE_load_locations(store.get(), file_.c_str(), nullptr) != 1) {
        ERR_clear_error();
        return nullptr;
    }
    addSystem(store.get());
    // As in libcurl: an intermediate authority may be trusted without its root.
    X509_STORE_set_flags(store.get(), X509_V_FLAG_PARTIAL_CHAIN);
    store_ = std::move(store);
    return store_.get();
}

std::string TrustStore::fault() const { return "cannot read certificates from the file \"" + file_ + "\""; }

}  // namespace oska::native
