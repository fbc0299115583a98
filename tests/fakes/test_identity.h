#pragma once

#include <openssl/x509.h>

#include <memory>
#include <string>

namespace oska::fakes {

/// A certificate with its key, made for one test.
class TestIdentity {
public:
    struct Wish {
        std::string names;  ///< as OpenSSL spells them: "DNS:localhost,IP:127.0.0.1"
        bool isAuthority = false;
        long secondsFromNow = 86'400;  ///< until it expires; negative: it has expired
        std::string usage = "serverAuth";
    };

    /// Self-signed when `issuer` is null.
    explicit TestIdentity(const Wish& wish, const TestIdentity* issuer = nullptr);

    [[nodiscard]] X509* certificate() const { return certificate_.get(); }
    [[nodiscard]] EVP_PKEY* key() const { return key_.get(); }
    [[nodiscard]] std::string pem() const;     ///< the certificate
    [[nodiscard]] std::string keyPem() const;  ///< the key, unprotected

private:
    void setNames(const TestIdentity* issuer);
    void addExtension(int kind, const std::string& value);

    std::shared_ptr<EVP_PKEY> key_;
    std::shared_ptr<X509> certificate_;
};

/// A temporary file that is deleted with the object.
class TestFile {
public:
    explicit TestFile(const std::string& content);
    ~TestFile();
    TestFile(const TestFile&) = delete;
    TestFile& operator=(const TestFile&) = delete;

    [[nodiscard]] const std::string& path() const { return path_; }
    void write(const std::string& content) const;
    [[nodiscard]] std::string content() const;

private:
    std::string path_;
};

}  // namespace oska::fakes
