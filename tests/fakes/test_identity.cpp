#include "tests/fakes/test_identity.h"

#include <gtest/gtest.h>
#include <openssl/bio.h>
#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <type_traits>

namespace oska::fakes {
namespace {

template <class... Arguments>
std::string pemOf(int (*write)(BIO*, Arguments...), std::type_identity_t<Arguments>... arguments) {
    const std::unique_ptr<BIO, decltype(&BIO_free)> bio(BIO_new(BIO_s_mem()), BIO_free);
    EXPECT_EQ(write(bio.get(), arguments...), 1);
    char* text = nullptr;
    const auto size = BIO_get_mem_data(bio.get(), &text);
    return {text, static_cast<std::size_t>(size)};
}

}  // namespace

TestIdentity::TestIdentity(const Wish& wish, const TestIdentity* issuer)
    : key_(EVP_PKEY_Q_keygen(nullptr, nullptr, "EC", "P-256"), EVP_PKEY_free),
      certificate_(X509_new(), X509_free) {
    auto* certificate = certificate_.get();
    X509_set_version(certificate, X509_VERSION_3);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_set_pubkey(certificate, key_.get());
    X509_gmtime_adj(X509_getm_notBefore(certificate), wish.secondsFromNow - 2 * 86'400L);
    X509_gmtime_adj(X509_getm_notAfter(certificate), wish.secondsFromNow);
    setNames(issuer);
    addExtension(NID_basic_constraints, wish.isAuthority ? "critical,CA:TRUE" : "CA:FALSE");
    addExtension(NID_ext_key_usage, wish.usage);
    if (!wish.names.empty()) addExtension(NID_subject_alt_name, wish.names);
    EXPECT_NE(X509_sign(certificate, issuer ? issuer->key() : key_.get(), EVP_sha256()), 0);
}

void TestIdentity::setNames(const TestIdentity* issuer) {
    // Each has its own name, because issuers are found by name.
    static std::atomic<int> count{0};
    const auto name = "test identity " + std::to_string(++count);
    auto* subject = X509_get_subject_name(certificate_.get());
    X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_UTF8,
                               reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
    X509_set_issuer_name(certificate_.get(), issuer ? X509_get_subject_name(issuer->certificate()) : subject);
}

void TestIdentity::addExtension(int kind, const std::string& value) {
    auto* extension = X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str());
    EXPECT_TRUE(extension && X509_add_ext(certificate_.get(), extension, -1) == 1) << value;
    X509_EXTENSION_free(extension);
}

std::string TestIdentity::pem() const { return pemOf(PEM_write_bio_X509, certificate_.get()); }

std::string TestIdentity::keyPem() const {
    return pemOf(PEM_write_bio_PrivateKey, key_.get(), nullptr, nullptr, 0, nullptr, nullptr);
}

TestFile::TestFile(const std::string& content) : path_(testing::TempDir() + "oska-test-XXXXXX") {
    ::close(::mkstemp(path_.data()));
    write(content);
}

TestFile::~TestFile() { std::remove(path_.c_str()); }

void TestFile::write(const std::string& content) const { std::ofstream(path_, std::ios::binary) << content; }

std::string TestFile::content() const {
    std::ifstream file(path_, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace oska::fakes
