#include "host/cloudserver/testing/TestCertificate.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>

#include <fstream>
#include <stdexcept>

namespace orvex::testing {

namespace {

void Require(bool succeeded) {
    if (!succeeded) {
        throw std::runtime_error("the test certificate cannot be made");
    }
}

void AddExtension(X509* certificate, int kind, const std::string& value) {
    const std::unique_ptr<X509_EXTENSION, void (*)(X509_EXTENSION*)> extension(
        X509V3_EXT_conf_nid(nullptr, nullptr, kind, value.c_str()), X509_EXTENSION_free);
    Require(extension != nullptr && X509_add_ext(certificate, extension.get(), -1) == 1);
}

std::string Pem(const auto& write) {
    const std::unique_ptr<BIO, int (*)(BIO*)> memory(BIO_new(BIO_s_mem()), BIO_free);
    Require(memory != nullptr && write(memory.get()) == 1);
    char* bytes = nullptr;
    const long length = BIO_get_mem_data(memory.get(), &bytes);
    return {bytes, static_cast<std::size_t>(length)};
}

}  // namespace

TestCertificate::TestCertificate(const std::string& names, const TestCertificate* issuer,
                                 long validForSeconds)
    : key_(EVP_EC_gen("P-256"), EVP_PKEY_free), certificate_(X509_new(), X509_free) {
    X509* const x = certificate_.get();
    Require(key_ != nullptr && x != nullptr && X509_set_version(x, X509_VERSION_3) == 1 &&
            ASN1_INTEGER_set(X509_get_serialNumber(x), issuer == nullptr ? 1 : 2) == 1 &&
            X509_gmtime_adj(X509_getm_notBefore(x), -7200) != nullptr &&
            X509_gmtime_adj(X509_getm_notAfter(x), validForSeconds) != nullptr &&
            X509_set_pubkey(x, key_.get()) == 1);
    X509_NAME* const subject = X509_get_subject_name(x);
    const auto* const text =
        reinterpret_cast<const unsigned char*>(names.empty() ? "Test authority" : "Test");
    const TestCertificate& signer = issuer == nullptr ? *this : *issuer;
    Require(X509_NAME_add_entry_by_txt(subject, "CN", MBSTRING_ASC, text, -1, -1, 0) == 1 &&
            X509_set_issuer_name(x, X509_get_subject_name(signer.certificate_.get())) == 1);
    AddExtension(x, NID_basic_constraints, names.empty() ? "critical,CA:TRUE" : "CA:FALSE");
    if (!names.empty()) {
        AddExtension(x, NID_subject_alt_name, names);
    }
    Require(X509_sign(x, signer.key_.get(), EVP_sha256()) > 0);
}

std::string TestCertificate::CertificatePem() const {
    return Pem([&](BIO* out) { return PEM_write_bio_X509(out, certificate_.get()); });
}

TestCertificate::Files TestCertificate::Write(const std::filesystem::path& folder) const {
    Files files{folder / "certificate.pem", folder / "key.pem"};
    std::ofstream(files.certificate, std::ios::binary) << CertificatePem();
    std::ofstream(files.key, std::ios::binary) << Pem([&](BIO* out) {
        return PEM_write_bio_PrivateKey(out, key_.get(), nullptr, nullptr, 0, nullptr, nullptr);
    });
    return files;
}

}  // namespace orvex::testing
