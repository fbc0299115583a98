#pragma once

#include <openssl/x509.h>

#include <memory>
#include <string>

namespace oska::native {

/// The trusted authorities: the system's, in the places that libcurl was built with, and those of one file of
/// the host. Environment variables have no effect.
///
/// Read from disk once, when first needed. Threads: the network thread.
class TrustStore {
public:
    /// `file`: certificates in PEM; empty for none.
    explicit TrustStore(std::string file) : file_(std::move(file)) {}

    /// Null when the host's file cannot be read. Without it, servers would be refused for the wrong reason.
    [[nodiscard]] X509_STORE* get();

    /// Why `get` returned null.
    [[nodiscard]] std::string fault() const;

private:
    struct Free {
        void operator()(X509_STORE* store) const { X509_STORE_free(store); }
    };

    const std::string file_;
    std::unique_ptr<X509_STORE, Free> store_;
};

}  // namespace oska::native
