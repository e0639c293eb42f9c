// The account on a server, over real sockets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <nlohmann/json.hpp>
#include <thread>
#include <vector>

#include "host/cloudaccount/tests/CloudCalls.h"
#include "host/cloudaccount/tests/RawServer.h"
#include "orvexcommon/CloudAccount.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using testing::AccountAt;
using ::testing::AllOf;
using ::testing::HasSubstr;
using testing::Head;
using testing::HostOf;
using ::testing::IsEmpty;
using testing::kToken;
using ::testing::Not;
using testing::Projects;
using testing::RawServer;

std::string ListOf(const std::string& body) {
    return Head("200 OK",
                "Content-Type: application/json\r\nContent-Length: " + std::to_string(body.size()) + "\r\n") +
           body;
}

TEST(RestAccount, MakesRelativeUrlsAbsoluteAndLeavesTheRestAsItStands) {
    struct Case {
        std::string url;
        std::string expected;  ///< after the server's address if it begins with "/"
    };
    for (const Case& c :
         {Case{"files/a b.las", "/api/files/a%20b.las"}, Case{"/x.las?s=a%2Fb", "/x.las?s=a%2Fb"},
          Case{"https://other/a.las", "https://other/a.las"}, Case{"", ""}, Case{"file:///etc/passwd", ""},
          Case{"ftp://other/a.las", ""}}) {
        RawServer server(ListOf(R"({"layers":[{"points":12.50,"url":")" + c.url + R"("},7],"next":"n"})"));
        std::string json;
        ASSERT_EQ(getArchivingProjectFiles(AccountAt(server.Address() + "/api"), "p", {}, json).status,
                  CloudStatus::Ok);
        const auto page = nlohmann::json::parse(json);
        EXPECT_EQ(page["layers"][0]["url"],
                  (c.expected.starts_with("/") ? server.Address() : "") + c.expected);
        EXPECT_EQ(page["next"], "n");
    }
    // The reader of the page says what is wrong with these.
    for (const char* text : {"{\"layers\":[", "x"}) {
        RawServer server(ListOf(text));
        std::string json;
        EXPECT_EQ(getArchivingProjectFiles(AccountAt(server.Address()), "p", {}, json).status,
                  CloudStatus::Ok);
        EXPECT_EQ(json, std::string(text) + "?");
    }
}

TEST(RestAccount, QuotesTheServersMessageWithoutWhatDoesNotBelongOnTheScreen) {
    const std::string message = std::string("Ask\\u0007 Ms. Weber. ") + kToken + std::string(300, 'x');
    const std::string body = R"({"error":{"code":"forbidden","message":")" + message + R"("}})";
    RawServer server(Head("403 Forbidden", "Content-Length: " + std::to_string(body.size()) + "\r\n") + body);
    const std::string text = ToUtf8(Projects(server.Address()).outcome.message);
    EXPECT_THAT(text, AllOf(HasSubstr("Ask  Ms. Weber. xxx"), HasSubstr("xxx ..."), Not(HasSubstr(kToken)),
                            Not(HasSubstr("\a"))));
    EXPECT_LT(text.size(), 400u);
}

TEST(RestAccount, SendsTheTokenToNoOtherOrigin) {
    RawServer other(ListOf(R"({"projects":[{"id":"stolen"}]})"));
    RawServer service(Head("307 Temporary Redirect",
                           "Location: " + other.Address() + "/v1/projects\r\nContent-Length: 0\r\n"));
    const ArchivingProjectList list = Projects(service.Address());
    EXPECT_EQ(list.outcome.status, CloudStatus::Untrusted);
    EXPECT_EQ(list.outcome.message, FormatText(Text(text::kCloudRedirectElsewhere),
                                               {HostOf(service.Address()), HostOf(other.Address())}));
    EXPECT_THAT(other.Requests(), IsEmpty());
    ASSERT_EQ(service.Requests().size(), 1u);
    EXPECT_THAT(service.Requests()[0], HasSubstr(std::string("Authorization: Bearer ") + kToken + "\r\n"));
    EXPECT_THAT(service.Requests()[0],
                AllOf(HasSubstr("Accept-Encoding: identity\r\n"), Not(HasSubstr("Cookie"))));
}

TEST(RestAccount, SendsNoTokenWithoutASecureConnection) {
    // Whoever answers for a name below "localhost" may be another computer.
    for (const char* host : {"service.invalid", "service.localhost"}) {
        const ArchivingProjectList list = Projects(std::string("http://") + host);
        EXPECT_EQ(list.outcome.status, CloudStatus::Untrusted);
        EXPECT_EQ(list.outcome.message, FormatText(Text(text::kCloudServiceInsecure), {FromUtf8(host)}));
    }
}

struct RawCase {
    const char* name;
    std::string bytes;
    CloudStatus status;
    StringId text{0};
    int number = 0;
};

TEST(RestAccount, StandsServersThatDoNotKeepToTheRules) {
    const std::string list = R"({"projects":[{"id":"p1"},{"name":"no id"}]})";
    const std::string chunk = "\r\n" + list + "\r\n";
    const std::vector<RawCase> cases = {
        {"without a length", Head("200 OK") + list, CloudStatus::Ok},
        {"chunked", Head("200 OK", "Transfer-Encoding: chunked\r\n") + "2b" + chunk + "0\r\n\r\n",
         CloudStatus::Ok},
        {"a byte order mark", ListOf("\xEF\xBB\xBF" + list), CloudStatus::Ok},
        {"a cookie and two lengths",
         Head("200 OK", "Set-Cookie: a=b\r\nContent-Length: 43\r\nContent-Length: 43\r\n") + list,
         CloudStatus::Ok},
        {"a wrong chunk", Head("200 OK", "Transfer-Encoding: chunked\r\n") + "zz" + chunk,
         CloudStatus::BadAnswer, text::kCloudListMalformed, 1},
        {"a length that is too large", Head("200 OK", "Content-Length: 50\r\n") + list,
         CloudStatus::Unreachable, text::kCloudCutOff},
        {"100 MB announced", Head("200 OK", "Content-Length: 104857600\r\n"), CloudStatus::BadAnswer,
         text::kCloudTooLarge, 8},
        {"a page", Head("200 OK", "Content-Type: text/html; charset=utf-8\r\n") + "<html>",
         CloudStatus::BadAnswer, text::kCloudWebPage},
        {"a status alone", Head("204 No Content"), CloudStatus::BadAnswer, text::kCloudListMalformed, 1},
        {"headers cut off", "HTTP/1.1 200 OK\r\nContent-Le", CloudStatus::Unreachable, text::kCloudNoAnswer},
        {"nothing", "", CloudStatus::Unreachable, text::kCloudNoAnswer},
        {"another protocol", "220 mail.example.org ESMTP\r\n\r\n", CloudStatus::Unreachable,
         text::kCloudNoAnswer},
        {"a challenge that Qt would answer",
         Head("401 Unauthorized",
              "WWW-Authenticate: Negotiate\r\nWWW-Authenticate: NTLM\r\nContent-Length: 0\r\n"),
         CloudStatus::NotSignedIn, text::kCloudSignInAgain},
    };
    for (const RawCase& c : cases) {
        SCOPED_TRACE(c.name);
        RawServer server(c.bytes);
        const ArchivingProjectList page = Projects(server.Address());
        EXPECT_EQ(page.outcome.status, c.status);
        EXPECT_EQ(page.outcome.message, FormatText(Text(c.text), {HostOf(server.Address()), c.number}));
        EXPECT_EQ(page.projects.size(), c.status == CloudStatus::Ok ? 1u : 0u);
        for (const std::string& head : server.Requests()) {
            EXPECT_THAT(head, HasSubstr(std::string("Authorization: Bearer ") + kToken));
        }
    }
}

TEST(RestAccount, KeepsNoNamesThatFitIntoNoAddress) {
    const std::string longName(5'000, 'x');
    RawServer ids(ListOf(R"({"projects":[{"id":")" + longName + R"("},{"id":"b"}]})"));
    EXPECT_EQ(Projects(ids.Address()).projects.size(), 1u);
    for (const char* key : {"projects", "layers"}) {
        RawServer server(
            ListOf(std::string(R"({")") + key + R"(":[{"id":"a"}],"next":")" + longName + R"("})"));
        ArchivingProjectList list = Projects(server.Address());
        std::string json;
        const CloudOutcome outcome =
            *key == 'p' ? list.outcome : getArchivingProjectFiles(AccountAt(server.Address()), "p", {}, json);
        EXPECT_EQ(outcome.status, CloudStatus::BadAnswer);
        EXPECT_EQ(outcome.message, FormatText(Text(text::kCloudListMalformed),
                                              {HostOf(server.Address()), *key == 'p' ? 26 : 24}));
        EXPECT_THAT(list.projects, IsEmpty());
        EXPECT_THAT(json, IsEmpty());
    }
}

TEST(RestAccount, RefusesListsWithTooManyValues) {
    const std::string values = "[" + std::string(250'000, ',') + "]";
    for (const char* key : {"projects", "layers"}) {
        RawServer server(ListOf(std::string(R"({")") + key + R"(":)" + values + "}"));
        std::string json;
        const CloudOutcome outcome =
            *key == 'p' ? Projects(server.Address()).outcome
                        : getArchivingProjectFiles(AccountAt(server.Address()), "p", {}, json);
        EXPECT_EQ(outcome.status, CloudStatus::BadAnswer);
        EXPECT_EQ(outcome.message, FormatText(Text(text::kCloudListingTooMany), {250'000}));
    }
}

// Qt takes the end of the connection for the end of the answer at times; the list says that it is none.
TEST(RestAccount, TakesNoListThatEndsWithinAChunk) {
    RawServer server(Head("200 OK", "Transfer-Encoding: chunked\r\n") +
                     "2b\r\n{\"projects\":[{\"id\":\"p1\"}");
    const ArchivingProjectList list = Projects(server.Address());
    EXPECT_NE(list.outcome.status, CloudStatus::Ok);
    EXPECT_FALSE(list.outcome.message.empty());
    EXPECT_THAT(list.projects, IsEmpty());
}

TEST(RestAccount, TakesNoMoreThanAPageOfAnEndlessAnswer) {
    const std::string block(1 << 16, ' ');
    for (const char* status : {"200 OK", "500 Failed"}) {
        std::atomic<std::uint64_t> sent = 0;
        RawServer server([&](RawServer&, QTcpSocket& socket, const std::string&) {
            for (bool goesOn = RawServer::Send(socket, Head(status)); goesOn && sent < 100u << 20;
                 sent += block.size()) {
                goesOn = RawServer::Send(socket, block);
            }
        });
        const ArchivingProjectList list = Projects(server.Address());
        EXPECT_EQ(list.outcome.status, *status == '2' ? CloudStatus::BadAnswer : CloudStatus::ServerFailed);
        EXPECT_LT(sent, 30u << 20) << status;
    }
}

TEST(RestAccount, SaysWhyThereIsNoServer) {
    int port = 0;
    {
        const RawServer closed("");
        port = closed.Port();
    }
    const std::wstring host = L"127.0.0.1:" + std::to_wstring(port);
    const ArchivingProjectList refused = Projects("http://127.0.0.1:" + std::to_string(port));
    EXPECT_EQ(refused.outcome.status, CloudStatus::Unreachable);
    EXPECT_EQ(refused.outcome.message, FormatText(Text(text::kCloudConnectionRefused), {host}));

    const ArchivingProjectList unknown = Projects("https://no-such-service.invalid/api");
    EXPECT_EQ(unknown.outcome.status, CloudStatus::Unreachable);
    EXPECT_EQ(unknown.outcome.message,
              FormatText(Text(text::kCloudHostUnknown), {L"no-such-service.invalid"}));

    for (const char* address : {"https://", "http:///v1", "https://a b/"}) {
        EXPECT_EQ(Projects(address).outcome.status, CloudStatus::Unreachable) << address;
    }
}

TEST(RestAccount, EndsInEveryPhaseWhenItIsCancelled) {
    struct Phase {
        const char* name;
        std::string sent;  ///< before the server waits
        const char* scheme = "http";
    };
    for (const Phase& phase :
         {Phase{"headers", ""}, Phase{"within the headers", "HTTP/1.1 200 OK\r\n"},
          Phase{"body", Head("200 OK", "Content-Length: 100\r\n") + "{"},
          Phase{"body of a failure", Head("500 Failed", "Content-Length: 100\r\n") + "{"},
          Phase{"handshake", "", "https"}}) {
        SCOPED_TRACE(phase.name);
        std::atomic<bool> isCancelled = false;
        RawServer server([&](RawServer& raw, QTcpSocket& socket, const std::string&) {
            RawServer::Send(socket, phase.sent);
            isCancelled = true;
            raw.Hold(socket);
        });
        const ArchivingProjectList list = Projects(phase.scheme + server.Address().substr(4),
                                                   {.isCancelled = [&] { return isCancelled.load(); }});
        EXPECT_EQ(list.outcome.status, CloudStatus::Cancelled);
        EXPECT_THAT(ToUtf8(list.outcome.message), IsEmpty());
        EXPECT_EQ(server.Requests().size(), 1u);
    }

    // Before the first request, which includes the search for proxies and names.
    EXPECT_EQ(Projects("https://service.invalid", {.isCancelled = [] { return true; }}).outcome.status,
              CloudStatus::Cancelled);

    RawServer busy(Head("503 Busy", "Retry-After: 86400\r\nContent-Length: 0\r\n"));
    bool isCancelled = false;
    std::vector<std::wstring> told;
    const CloudCall call{.isCancelled = [&] { return isCancelled; },
                         .waiting =
                             [&](const std::wstring& text) {
                                 told.push_back(text);
                                 isCancelled = true;
                             }};
    EXPECT_EQ(Projects(busy.Address(), call).outcome.status, CloudStatus::Cancelled);
    const std::vector<std::wstring> expected = {
        FormatText(Text(text::kCloudWaiting), {HostOf(busy.Address()), 60}), L""};
    EXPECT_EQ(told, expected);
}

TEST(RestAccount, ServesSeveralThreadsAtOnce) {
    RawServer server([](RawServer&, QTcpSocket& socket, const std::string&) {
        RawServer::SendAndClose(socket, ListOf(R"({"projects":[{"id":"a"},{"id":"b"}]})"));
    });
    std::array<std::thread, 4> threads;
    std::atomic<std::size_t> projects = 0;
    for (std::thread& thread : threads) {
        thread = std::thread([&] { projects += Projects(server.Address()).projects.size(); });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(projects, 8u);
}

}  // namespace
}  // namespace orvex
