#pragma once
#include <openssl/types.h>

#include <filesystem>
#include <memory>
#include <string>

namespace orvex::testing {

/// A certificate and its key, made anew. Throws std::runtime_error if the library cannot.
class TestCertificate {
  public:
    /// For `names` ("IP:127.0.0.1"), or of an authority when they are empty; signed by `issuer` or, without
    /// one, by itself. It became valid two hours ago.
    explicit TestCertificate(const std::string& names, const TestCertificate* issuer = nullptr,
                             long validForSeconds = 3600);

    std::string CertificatePem() const;

    struct Files {
        std::filesystem::path certificate, key;  ///< PEM
    };
    /// Writes both into a folder.
    Files Write(const std::filesystem::path& folder) const;

  private:
    std::shared_ptr<EVP_PKEY> key_;
    std::shared_ptr<X509> certificate_;
};

}  // namespace orvex::testing
