// An account on the sample server.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QSslCertificate>
#include <QSslConfiguration>
#include <memory>
#include <nlohmann/json.hpp>
#include <vector>

#include "host/cloudaccount/tests/CloudCalls.h"
#include "host/cloudserver/CloudServer.h"
#include "host/cloudserver/testing/TestCertificate.h"
#include "orvexcommon/CloudAccount.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::AccountAt;
using ::testing::HasSubstr;
using testing::HostOf;
using ::testing::IsEmpty;
using testing::kToken;
using ::testing::Not;
using testing::Part;
using testing::Projects;
using testing::Read;
using testing::TestCertificate;

class ServedAccount : public ::testing::Test {
  protected:
    ServedAccount() {
        folder_.Write(L"projects.json",
                      R"({"projects":[{"id":"p1","name":"Übersicht"},{"id":"p 2/ü","name":"Two"}]})");
        folder_.Write(L"projects/p1.json",
                      R"({"layers":[{"name":"A","url":"files/a.las","bytes":18446744073709551615}]})");
        folder_.Write(L"files/a.las", "0123456789");
        Start({});
    }

    void Start(CloudServerSettings settings) {
        settings.folder = folder_.Path();
        settings.token = kToken;
        server_ = std::make_unique<CloudServer>(std::move(settings));
    }

    testing::TemporaryFolder folder_;
    std::unique_ptr<CloudServer> server_;
};

struct Fault {
    const char* name;
    CloudFault fault;
    CloudStatus status;
    StringId text{0};
    int number = 0;  ///< of the text, after the host
    std::size_t requests = 1;
};

TEST_F(ServedAccount, TellsEveryFailureWithTheHostAndTheCause) {
    const auto http = [](int status) { return CloudFault{.status = status, .retryAfter = "0"}; };
    const std::vector<Fault> faults = {
        {"none", {}, CloudStatus::Ok},
        {"400", http(400), CloudStatus::BadAnswer, text::kCloudRequestRefused, 400},
        {"401", http(401), CloudStatus::NotSignedIn, text::kCloudSignInAgain},
        {"403", http(403), CloudStatus::Forbidden, text::kCloudForbidden},
        {"404", http(404), CloudStatus::NotFound, text::kCloudNoSuchList},
        {"410", http(410), CloudStatus::NotFound, text::kCloudNoSuchList},
        {"429", http(429), CloudStatus::Busy, text::kCloudBusy, 0, 4},
        {"429 once", {.status = 429, .retryAfter = "0", .times = 1}, CloudStatus::Ok, {0}, 0, 2},
        {"429 until yesterday",
         {.status = 429, .retryAfter = "Sun, 06 Nov 1994 08:49:37 GMT", .times = 3},
         CloudStatus::Ok,
         {0},
         0,
         4},
        {"500", http(500), CloudStatus::ServerFailed, text::kCloudServerFailed, 500},
        {"502", http(502), CloudStatus::ServerFailed, text::kCloudServerFailed, 502, 4},
        {"503", http(503), CloudStatus::ServerFailed, text::kCloudServerFailed, 503, 4},
        {"504 twice", {.status = 504, .retryAfter = "0", .times = 2}, CloudStatus::Ok, {0}, 0, 3},
        {"redirect to nowhere", {.status = 302}, CloudStatus::BadAnswer, text::kCloudRequestRefused, 302},
        {"redirect to itself",
         {.redirect = "/v1/projects"},
         CloudStatus::BadAnswer,
         text::kCloudRedirectEndless,
         0,
         6},
        {"redirect to a file",
         {.redirect = "file:///etc/passwd"},
         CloudStatus::BadAnswer,
         text::kCloudRequestRefused,
         302},
        {"redirect within", {.redirect = "/v1/projects?limit=5", .times = 1}, CloudStatus::Ok, {0}, 0, 2},
        {"cut off", {.cutAfter = 10}, CloudStatus::Unreachable, text::kCloudCutOff},
        {"malformed",
         {.body = R"({"projects":[{"id":"p1",}]})"},
         CloudStatus::BadAnswer,
         text::kCloudListMalformed,
         25},
        {"truncated",
         {.body = R"({"projects":[{"id":"p1")"},
         CloudStatus::BadAnswer,
         text::kCloudListMalformed,
         24},
        {"empty", {.body = ""}, CloudStatus::BadAnswer, text::kCloudListMalformed, 1},
        {"not UTF-8",
         {.body = "{\"projects\":[{\"id\":\"\xFF\"}]}"},
         CloudStatus::BadAnswer,
         text::kCloudListMalformed,
         21},
        {"nested", {.body = std::string(100'000, '[')}, CloudStatus::BadAnswer, text::kCloudListTooDeep},
        {"9 MB", {.body = std::string(9 << 20, ' ')}, CloudStatus::BadAnswer, text::kCloudTooLarge, 8},
    };
    for (const Fault& fault : faults) {
        SCOPED_TRACE(fault.name);
        server_->ClearFaults();
        server_->SetFault("/v1/projects", fault.fault);
        const std::size_t before = server_->Requests().size();
        const ArchivingProjectList list = Projects(server_->Address());
        EXPECT_EQ(list.outcome.status, fault.status);
        EXPECT_EQ(list.projects.size(), fault.status == CloudStatus::Ok ? 2u : 0u);
        EXPECT_THAT(list.next, IsEmpty());
        EXPECT_EQ(server_->Requests().size() - before, fault.requests);
        const std::wstring sentence =
            FormatText(Text(fault.text), {HostOf(server_->Address()), fault.number});
        EXPECT_EQ(list.outcome.message.substr(0, sentence.size()), sentence);
        EXPECT_THAT(ToUtf8(list.outcome.message), Not(HasSubstr(kToken)));
    }
}

TEST_F(ServedAccount, ListsAndKeepsNumbersAndNames) {
    const ArchivingProjectList list = Projects(server_->Address() + "/");
    ASSERT_EQ(list.projects.size(), 2u);
    EXPECT_EQ(list.projects[0].name, "Übersicht");
    EXPECT_EQ(list.projects[1].id, "p 2/ü");

    std::string json;
    const CloudAccount account = AccountAt(server_->Address());
    ASSERT_EQ(getArchivingProjectFiles(account, "p1", {}, json).status, CloudStatus::Ok);
    const auto layers = nlohmann::json::parse(json)["layers"];
    EXPECT_EQ(layers[0]["bytes"], 18446744073709551615u);
    EXPECT_THAT(layers[0]["url"].get<std::string>(),
                ::testing::StartsWith(server_->Address() + "/files/a.las"));

    server_->SetFault("/v1/projects/p1",
                      {.body = "{\"layers\":[{\"name\":\"M\xFCller\"},{\"url\":\"files/a.las\"}]}"});
    ASSERT_EQ(getArchivingProjectFiles(account, "p1", {}, json).status, CloudStatus::Ok);
    EXPECT_EQ(nlohmann::json::parse(json)["layers"][1]["url"], server_->Address() + "/files/a.las")
        << "beside a name in another encoding";
    for (const char* body :
         {R"({"layers":[{"url":"file:///a"}],"layers":[]})",
          R"({"layers":[{"url":"file:///a","url":"https://h/a"}]})",
          R"({"layers":{"a":{"url":"file:///a"}}})", R"({"layers":[{"url":"file:///a","bytes":1e999}]})"}) {
        server_->SetFault("/v1/projects/p1", {.body = body});
        ASSERT_EQ(getArchivingProjectFiles(account, "p1", {}, json).status, CloudStatus::Ok);
        EXPECT_TRUE(json.ends_with("?") || json.find("file:") == std::string::npos) << json;
    }
    server_->ClearFaults();

    // An id is one part of the path, whatever it consists of; dots alone are not sent.
    const std::size_t before = server_->Requests().size();
    for (const char* id : {"p 2/ü", "../projects", "..", "", "p1?x=", "%2e%2e"}) {
        EXPECT_EQ(getArchivingProjectFiles(account, id, {}, json).status, CloudStatus::NotFound) << id;
        EXPECT_THAT(json, IsEmpty());
    }
    EXPECT_EQ(server_->Requests().size() - before, 4u);
}

TEST_F(ServedAccount, RefusesAWrongTokenAndOneThatIsNoHeader) {
    for (const wchar_t* token : {L"", L"wrong", L"a\r\nX-Other: b", L"schlüssel"}) {
        ArchivingProjectList list;
        listArchivingProjects({L"", FromUtf8(server_->Address()), token}, list, {});
        EXPECT_EQ(list.outcome.status, CloudStatus::NotSignedIn);
    }
}

TEST_F(ServedAccount, TellsEveryFailureWithoutTheSignature) {
    const std::string url = server_->SignedUrl("files/a.las", 600);
    struct Case {
        const char* name;
        CloudFault fault;
        CloudStatus status;
        StringId text;
        int number = 0;
        std::uint64_t transferred = 0;
    };
    for (const Case& c :
         {Case{"401", {.status = 401}, CloudStatus::NotSignedIn, text::kCloudFileNeedsSignIn},
          Case{"403", {.status = 403}, CloudStatus::Forbidden, text::kCloudLinkRefused},
          Case{"404", {.status = 404}, CloudStatus::NotFound, text::kCloudNoSuchFile},
          Case{"429", {.status = 429, .retryAfter = "0"}, CloudStatus::Busy, text::kCloudBusy},
          Case{"500", {.status = 500}, CloudStatus::ServerFailed, text::kCloudServerFailed, 500},
          Case{"cut off", {.cutAfter = 2}, CloudStatus::Unreachable, text::kCloudCutOff, 0, 2},
          Case{"no ranges", {.ignoresRanges = true}, CloudStatus::NoRanges, text::kCloudNoRanges}}) {
        SCOPED_TRACE(c.name);
        server_->ClearFaults();
        server_->SetFault("/files", c.fault);
        const auto reader = openUrl(FromUtf8(url));
        const Part part = Read(*reader, 0, 5);
        EXPECT_EQ(part.outcome.status, c.status);
        EXPECT_EQ(part.outcome.message, FormatText(Text(c.text), {HostOf(server_->Address()), c.number}));
        EXPECT_EQ(part.bytes, "");
        if (c.transferred > 0 || c.status == CloudStatus::NoRanges) {
            EXPECT_EQ(reader->Transferred(), c.transferred);
        }
    }
    server_->ClearFaults();
    EXPECT_EQ(Read(*openUrl(FromUtf8(server_->SignedUrl("files/a.las", -5))), 0, 5).outcome.status,
              CloudStatus::Forbidden);
}

TEST_F(ServedAccount, TrustsOnlyCertificatesOfKnownAuthoritiesForThisHost) {
    struct Case {
        const char* name;
        TestCertificate certificate;
        CloudStatus status;
    };
    const TestCertificate authority("");
    const QSslConfiguration old = QSslConfiguration::defaultConfiguration();
    QSslConfiguration trusting = old;
    trusting.setCaCertificates({QSslCertificate(QByteArray::fromStdString(authority.CertificatePem()))});
    trusting.setPeerVerifyMode(QSslSocket::VerifyNone);  // of the process; not of the library
    QSslConfiguration::setDefaultConfiguration(trusting);
    const Case cases[] = {
        {"good", TestCertificate("IP:127.0.0.1", &authority), CloudStatus::Ok},
        {"self-signed", TestCertificate("IP:127.0.0.1"), CloudStatus::Untrusted},
        {"of another host", TestCertificate("DNS:other.example", &authority), CloudStatus::Untrusted},
        {"expired", TestCertificate("IP:127.0.0.1", &authority, -3600), CloudStatus::Untrusted},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.name);
        const auto files = c.certificate.Write(folder_.Path());
        Start({.folder = {}, .certificate = files.certificate, .key = files.key});
        const ArchivingProjectList list = Projects(server_->Address());
        EXPECT_EQ(list.outcome.status, c.status) << ToUtf8(list.outcome.message);
        const std::wstring frame =
            FormatText(Text(text::kCloudUntrusted), {HostOf(server_->Address()), L"|"});
        const std::wstring sentence = frame.substr(0, frame.find(L'|'));
        EXPECT_EQ(list.outcome.message.starts_with(sentence), c.status != CloudStatus::Ok);
        EXPECT_EQ(server_->Requests().size(), c.status == CloudStatus::Ok ? 1u : 0u);
    }
    QSslConfiguration::setDefaultConfiguration(old);
}

}  // namespace
}  // namespace orvex
