#include <filesystem>

#include "host/cloudserver/testing/TestCertificate.h"
#include "host/cloudserver/tests/CloudServerFixture.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

TEST_F(CloudServerTest, SpeaksHttpsWithACertificate) {
    const auto files = orvex::testing::TestCertificate("IP:127.0.0.1").Write(folder_.Path());
    const std::string body(3'000'000, 'x');
    folder_.Write(L"files/large.las", body);
    Start(
        {.folder = {}, .token = {}, .certificate = files.certificate, .key = files.key, .signingSecret = {}});
    EXPECT_THAT(server_->Address(), StartsWith("https://127.0.0.1:"));
    EXPECT_EQ(httplib::Error::SSLServerVerification, client_->Get("/v1/projects").error());
    client_ = std::make_unique<httplib::Client>(server_->Address());
    client_->set_ca_cert_path(files.certificate.string());
    client_->set_keep_alive(true);
    EXPECT_EQ(200, Get("/v1/projects").status);
    EXPECT_TRUE(body == Get(Signed("large.las")).body);
    CloudFault fault;
    fault.cutAfter = 100'000;
    server_->SetFault("/files", fault);
    EXPECT_EQ(-1, Get(Signed("large.las")).status);
    // One that does not speak TLS is no obstacle to others.
    httplib::Client plain("127.0.0.1",
                          std::stoi(server_->Address().substr(server_->Address().rfind(':') + 1)));
    EXPECT_FALSE(plain.Get("/v1/projects"));
    EXPECT_EQ(200, Get("/v1/projects").status);
}

TEST_F(CloudServerTest, SaysWhyACertificateCannotBeUsed) {
    for (const auto& [name, text] :
         {std::pair{"projects.json", "projects.json' cannot be used: no start line"},
          {"none.pem", "none.pem' cannot be used: No such file"}}) {
        CloudServerSettings settings;
        settings.folder = folder_.Path();
        settings.certificate = settings.key = folder_.Path() / name;
        try {
            const CloudServer server(settings);
            FAIL() << name;
        } catch (const LDataError& error) {
            EXPECT_THAT(ToUtf8(error.Text()), HasSubstr(text));
        }
    }
}

}  // namespace
}  // namespace orvex
