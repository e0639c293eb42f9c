#pragma once
#include <filesystem>

namespace orvex::testing {

struct TestCertificate {
    std::filesystem::path certificate, key;  ///< PEM
};

/// Makes a certificate for 127.0.0.1 that nobody has signed, valid for a day, and its key, in a folder.
TestCertificate WriteTestCertificate(const std::filesystem::path& folder);

}  // namespace orvex::testing
