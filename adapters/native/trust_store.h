#pragma once

#include <openssl/x509.h>

#include <memory>
#include <string>

namespace oska::native {

/// The authorities that vouch for servers: the system's, where libcurl was built to find them, and those of
/// one file of the host's. No environment variable has a say.
///
/// Read from disk once, when first needed. Threads: the network thread.
class TrustStore {
public:
    /// `file`: certificates in PEM; empty for none.
    explicit TrustStore(std::string file) : file_(std::move(file)) {}

    /// Null when the host's file cannot be read: without it, servers would be refused for the wrong reason.
    [[nodiscard]] X509_STORE* get();

    /// Why `get` answered null.
    [[nodiscard]] std::string fault() const;

private:
    struct Free {
        void operator()(X509_STORE* store) const { X509_STORE_free(store); }
    };

    const std::string file_;
    std::unique_ptr<X509_STORE, Free> store_;
};

}  // namespace oska::native
