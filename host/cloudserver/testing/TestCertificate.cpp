#include "host/cloudserver/testing/TestCertificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <memory>
#include <stdexcept>

namespace orvex::testing {

namespace {

template <typename T>
using Owned = std::unique_ptr<T, void (*)(T*)>;

void Require(bool succeeded) {
    if (!succeeded) {
        throw std::runtime_error("the test certificate cannot be made");
    }
}

Owned<X509> MakeCertificate(EVP_PKEY* key) {
    Owned<X509> certificate(X509_new(), X509_free);
    X509* const x = certificate.get();
    Require(X509_set_version(x, X509_VERSION_3) == 1 && ASN1_INTEGER_set(X509_get_serialNumber(x), 1) == 1 &&
            X509_gmtime_adj(X509_getm_notBefore(x), -3600) != nullptr &&
            X509_gmtime_adj(X509_getm_notAfter(x), 24 * 3600L) != nullptr && X509_set_pubkey(x, key) == 1);
    X509_NAME* const name = X509_get_subject_name(x);
    const auto* const text = reinterpret_cast<const unsigned char*>("127.0.0.1");
    Require(X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, text, -1, -1, 0) == 1 &&
            X509_set_issuer_name(x, name) == 1);
    const Owned<X509_EXTENSION> host(
        X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1"), X509_EXTENSION_free);
    Require(host != nullptr && X509_add_ext(x, host.get(), -1) == 1 && X509_sign(x, key, EVP_sha256()) > 0);
    return certificate;
}

void WritePem(const std::filesystem::path& path, const auto& write) {
    const Owned<BIO> file(BIO_new_file(path.string().c_str(), "wb"), BIO_free_all);
    Require(file != nullptr && write(file.get()) == 1);
}

}  // namespace

TestCertificate WriteTestCertificate(const std::filesystem::path& folder) {
    const Owned<EVP_PKEY> key(EVP_EC_gen("P-256"), EVP_PKEY_free);
    Require(key != nullptr);
    const Owned<X509> certificate = MakeCertificate(key.get());
    TestCertificate files{folder / "certificate.pem", folder / "key.pem"};
    WritePem(files.certificate, [&](BIO* file) { return PEM_write_bio_X509(file, certificate.get()); });
    WritePem(files.key, [&](BIO* file) {
        return PEM_write_bio_PrivateKey(file, key.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    return files;
}

}  // namespace orvex::testing
