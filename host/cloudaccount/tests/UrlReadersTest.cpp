#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <atomic>
#include <cstdio>
#include <mutex>

#include "host/cloudaccount/CloudTexts.h"
#include "host/cloudaccount/HttpClient.h"
#include "host/cloudaccount/tests/CloudCalls.h"
#include "host/cloudaccount/tests/RawServer.h"
#include "orvexcommon/CloudAccount.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::AllOf;
using testing::FileUrl;
using ::testing::HasSubstr;
using testing::Head;
using testing::HostOf;
using ::testing::Not;
using testing::Part;
using testing::RawServer;
using testing::Read;

/// A file on a server and on the disk.
class UrlReaderTest : public ::testing::Test {
  protected:
    void Write(const std::string& bytes) {
        path_ = folder_.Write(L"a.las", bytes);
        const std::lock_guard guard(mutex_);
        bytes_ = bytes;
    }

    /// Answers a request for a range as the standard has it.
    void AnswerRange(QTcpSocket& socket, const std::string& head) {
        unsigned long long first = 0;
        unsigned long long last = 0;
        const std::lock_guard guard(mutex_);
        ASSERT_EQ(std::sscanf(head.c_str() + head.find("Range: "), "Range: bytes=%llu-%llu", &first, &last),
                  2);
        if (first >= bytes_.size()) {
            RawServer::Send(socket,
                            Head("416 Range Not Satisfiable", "Content-Length: 0\r\nContent-Range: bytes */" +
                                                                  std::to_string(bytes_.size()) + "\r\n"));
            return;
        }
        const std::string part = bytes_.substr(first, last - first + 1);
        const std::string range = std::to_string(first) + "-" + std::to_string(first + part.size() - 1);
        RawServer::Send(socket, Head("206 Partial Content", "Content-Length: " + std::to_string(part.size()) +
                                                                "\r\nContent-Range: bytes " + range + "/" +
                                                                std::to_string(bytes_.size()) + "\r\n") +
                                    part);
    }

    testing::TemporaryFolder folder_;
    std::wstring path_;
    std::mutex mutex_;
    std::string bytes_;
    RawServer server_{
        [this](RawServer&, QTcpSocket& socket, const std::string& head) { AnswerRange(socket, head); }};
    const std::string url_ = server_.Address() + "/a.las?X-Amz-Signature=abc";
};

TEST_F(UrlReaderTest, ReadsPartsOfAFileThatIsHereOrThere) {
    Write("0123456789");
    for (const std::string& url : {url_, " " + url_ + "#part ", FileUrl(path_)}) {
        SCOPED_TRACE(url.substr(0, url.find('?')));
        const auto reader = openUrl(FromUtf8(url));
        EXPECT_FALSE(reader->FileSize());
        EXPECT_EQ(Read(*reader, 2, 3).bytes, "234");
        EXPECT_EQ(reader->FileSize(), 10u);
        EXPECT_EQ(Read(*reader, 8, 5).bytes, "89");
        EXPECT_EQ(reader->Transferred(), 5u);
        for (const std::uint64_t offset : {std::uint64_t(10), std::uint64_t(11), ~std::uint64_t(0)}) {
            const Part end = Read(*reader, offset, 4);
            EXPECT_EQ(end.outcome.status, CloudStatus::Ok);
            EXPECT_EQ(end.bytes, "");
        }
        EXPECT_EQ(Read(*openUrl(FromUtf8(url)), 20, 4).outcome.status, CloudStatus::Ok);
        EXPECT_EQ(Read(*openUrl(FromUtf8(url)), 0, 0).outcome.status, CloudStatus::Ok);
    }
}

TEST_F(UrlReaderTest, FindsOutThatTheFileHasChanged) {
    for (const bool isHere : {true, false}) {
        Write("0123456789");
        const auto reader = openUrl(FromUtf8(isHere ? FileUrl(path_) : url_));
        EXPECT_EQ(Read(*reader, 0, 2).bytes, "01");
        Write("0123456789abc");
        EXPECT_EQ(Read(*reader, 2, 2).outcome.status, CloudStatus::BadAnswer);
    }
}

/// Answer to a request for the bytes 4 to 7.
struct Lie {
    const char* name;
    std::string headers;
    std::string body;
    CloudStatus status;
    StringId text{0};
};

TEST(UrlReader, BelievesNoAnswerThatIsNotThePartAskedFor) {
    const std::string range = "Content-Range: bytes 4-7/10\r\n";
    const std::vector<Lie> lies = {
        {"right", range + "Content-Length: 4\r\n", "4567", CloudStatus::Ok},
        {"without a length", range, "4567", CloudStatus::Ok},
        {"chunked", range + "Transfer-Encoding: chunked\r\n", "4\r\n4567\r\n0\r\n\r\n", CloudStatus::Ok},
        {"total unknown", "Content-Range: bytes 4-7/*\r\nContent-Length: 4\r\n", "4567", CloudStatus::Ok},
        {"no range", "Content-Length: 4\r\n", "4567", CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"another place", "Content-Range: bytes 3-6/10\r\nContent-Length: 4\r\n", "4567",
         CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"more", "Content-Range: bytes 4-9/10\r\nContent-Length: 6\r\n", "456789", CloudStatus::BadAnswer,
         text::kCloudRangeWrong},
        {"more than announced", range, "456789", CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"less than there is", "Content-Range: bytes 4-5/10\r\nContent-Length: 2\r\n", "45",
         CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"less than announced", range, "45", CloudStatus::Unreachable, text::kCloudCutOff},
        {"beyond the end", "Content-Range: bytes 4-7/6\r\nContent-Length: 4\r\n", "4567",
         CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"backwards", "Content-Range: bytes 4-3/10\r\nContent-Length: 0\r\n", "", CloudStatus::BadAnswer,
         text::kCloudRangeWrong},
        {"no numbers", "Content-Range: bytes 4-/10\r\nContent-Length: 4\r\n", "4567", CloudStatus::BadAnswer,
         text::kCloudRangeWrong},
        {"too large numbers", "Content-Range: bytes 4-99999999999999999999/10\r\nContent-Length: 4\r\n",
         "4567", CloudStatus::BadAnswer, text::kCloudRangeWrong},
        {"another length", range + "Content-Length: 100000000\r\n", "4567", CloudStatus::BadAnswer,
         text::kCloudRangeWrong},
    };
    for (const Lie& lie : lies) {
        SCOPED_TRACE(lie.name);
        RawServer server(Head("206 Partial Content", lie.headers) + lie.body);
        const Part part = Read(*openUrl(FromUtf8(server.Address() + "/a.las")), 4, 4);
        EXPECT_EQ(part.outcome.status, lie.status);
        EXPECT_EQ(part.outcome.message, FormatText(Text(lie.text), {HostOf(server.Address())}));
        EXPECT_EQ(part.bytes, lie.status == CloudStatus::Ok ? "4567" : "");
    }
}

TEST(UrlReader, ComparesTheFileBetweenParts) {
    const std::string body = "Content-Length: 1\r\n";
    for (const char* last :
         {"Content-Range: bytes 2-2/11\r\n", "Content-Range: bytes 2-2/10\r\nETag: \"b\"\r\n"}) {
        // The second answer has no ETag, as those of some of a service's servers.
        const std::vector<std::string> answers = {"Content-Range: bytes 0-0/10\r\nETag: \"a\"\r\n",
                                                  "Content-Range: bytes 1-1/10\r\n", last};
        std::size_t requests = 0;
        RawServer server([&](RawServer&, QTcpSocket& socket, const std::string&) {
            RawServer::Send(socket, Head("206 Partial Content", body + answers.at(requests++)) + "x");
        });
        const auto reader = openUrl(FromUtf8(server.Address() + "/a.las"));
        EXPECT_EQ(Read(*reader, 0, 1).bytes, "x");
        EXPECT_EQ(Read(*reader, 1, 1).bytes, "x");
        const Part changed = Read(*reader, 2, 1);
        EXPECT_EQ(changed.outcome.status, CloudStatus::BadAnswer);
        EXPECT_EQ(changed.outcome.message, FormatText(Text(text::kCloudChanged), {HostOf(server.Address())}));
        EXPECT_EQ(changed.bytes, "");
    }
}

TEST(UrlReader, FollowsARedirectOnceAndCarriesNoSecretAlong) {
    RawServer storage([](RawServer&, QTcpSocket& socket, const std::string& head) {
        const std::string range = head.find("bytes=0-0") != std::string::npos ? "0-0" : "1-1";
        RawServer::Send(socket, Head("206 Partial Content",
                                     "Content-Length: 1\r\nContent-Range: bytes " + range + "/10\r\n") +
                                    "x");
    });
    RawServer door(Head("302 Found", "Location: " + storage.Address().insert(7, "name:word@") +
                                         "/b.las?sig=1%2F2\r\nContent-Length: 0\r\n"));
    const auto reader =
        openUrl(FromUtf8("http://user:password@" + door.Address().substr(7) + "/a.las?X-Amz-Signature=abc"));
    EXPECT_EQ(Read(*reader, 0, 1).bytes, "x");
    EXPECT_EQ(Read(*reader, 1, 1).bytes, "x");
    EXPECT_EQ(door.Requests().size(), 1u);
    ASSERT_EQ(storage.Requests().size(), 2u);
    EXPECT_THAT(door.Requests()[0],
                AllOf(HasSubstr("GET /a.las?X-Amz-Signature=abc HTTP/1.1"), Not(HasSubstr("Authorization"))));
    EXPECT_THAT(storage.Requests()[0], AllOf(HasSubstr("GET /b.las?sig=1%2F2 HTTP/1.1"),
                                             Not(HasSubstr("Authorization")), Not(HasSubstr("abc"))));
}

TEST(UrlReader, AnswersNoChallengeWithANameInTheUrl) {
    RawServer server(
        Head("401 Unauthorized", "WWW-Authenticate: Basic realm=\"x\"\r\nContent-Length: 0\r\n"));
    const Part part =
        Read(*openUrl(FromUtf8("http://user:password@" + server.Address().substr(7) + "/a.las")), 0, 1);
    EXPECT_EQ(part.outcome.status, CloudStatus::NotSignedIn);
    for (const std::string& head : server.Requests()) {
        EXPECT_THAT(head, Not(HasSubstr("Authorization")));
    }
}

TEST(UrlReader, OpensNothingButFilesOfThisComputer) {
    const testing::TemporaryFolder folder;
    const std::string here = FileUrl(FromPath(folder.Path()));
    for (const std::string& url :
         {std::string("file://server/share/a.las"), std::string("file:////server/share/a.las"),
          std::string("file:///dev/zero"), here, here + "/missing.las", std::string("file:///%00"),
          std::string("file:"), std::string("ftp://127.0.0.1/a.las"), std::string("a.las"), std::string(""),
          std::string("https:///a.las"), std::string("file:///%5C%5Cserver%5Cshare%5Ca.las"),
          std::string("file:///%3F%3F/UNC/server/share/a.las")}) {
        const Part part = Read(*openUrl(FromUtf8(url)), 0, 4);
        EXPECT_EQ(part.outcome.status, CloudStatus::NotFound) << url;
        EXPECT_FALSE(part.outcome.message.empty()) << url;
    }
    const Part hidden = Read(*openUrl(L"ftp://127.0.0.1/a.las?X-Amz-Signature=abcdef"), 0, 4);
    EXPECT_THAT(ToUtf8(hidden.outcome.message), Not(HasSubstr("abcdef")));
}

TEST(UrlReader, EndsWhenItIsCancelledAndCanGoOn) {
    std::atomic<bool> isCancelled = false;
    std::atomic<int> requests = 0;
    RawServer server([&](RawServer& raw, QTcpSocket& socket, const std::string&) {
        const std::string head =
            Head("206 Partial Content", "Content-Length: 4\r\nContent-Range: bytes 0-3/10\r\n");
        RawServer::Send(socket, requests++ == 0 ? head + "01" : head + "0123");
        if (requests == 1) {
            isCancelled = true;
            raw.Hold(socket);
        }
    });
    const auto reader = openUrl(FromUtf8(server.Address() + "/a.las"));
    EXPECT_EQ(Read(*reader, 0, 4, {.isCancelled = [&] { return isCancelled.load(); }}).outcome.status,
              CloudStatus::Cancelled);
    EXPECT_EQ(Read(*reader, 0, 4).bytes, "0123");
}

TEST(HttpClient, GivesUpWhenNothingComesAndWhenItTakesTooLong) {
    using namespace std::chrono_literals;
    RawServer silent([](RawServer& raw, QTcpSocket& socket, const std::string&) { raw.Hold(socket); });
    RawServer drip([](RawServer&, QTcpSocket& socket, const std::string&) {
        for (bool goesOn = RawServer::Send(socket, Head("200 OK"));
             goesOn && socket.state() == QAbstractSocket::ConnectedState; socket.waitForReadyRead(10)) {
            goesOn = RawServer::Send(socket, " ");
        }
    });
    struct Case {
        const RawServer* server;
        cloud::HttpLimits limits;
    };
    for (const Case& c : {Case{&silent, {.idle = 100ms}}, Case{&drip, {.exchange = 100ms}}}) {
        cloud::HttpClient client(c.limits);
        cloud::HttpRequest request;
        request.url = QUrl(QString::fromStdString(c.server->Address()));
        request.mostBytes = 1 << 20;
        try {
            client.Get(request, {});
            ADD_FAILURE();
        } catch (const cloud::CloudError& error) {
            EXPECT_EQ(error.Outcome().status, CloudStatus::Unreachable);
            EXPECT_EQ(error.Text(), FormatText(Text(text::kCloudTimedOut), {HostOf(c.server->Address())}));
        }
    }
}

TEST(HttpClient, WaitsLongerBeforeEachAttempt) {
    using namespace std::chrono_literals;
    RawServer busy(Head("503 Busy", "Content-Length: 0\r\n"));
    cloud::HttpClient client({.backOff = 1ms});
    cloud::HttpRequest request;
    request.url = QUrl(QString::fromStdString(busy.Address()));
    int told = 0;
    EXPECT_THROW(client.Get(request, {.waiting = [&](const std::wstring&) { ++told; }}), cloud::CloudError);
    EXPECT_EQ(busy.Requests().size(), 4u);
    EXPECT_EQ(told, 6);
}

TEST(HttpClient, PassesOnWhatIsThrownWhileItWaits) {
    RawServer busy(Head("503 Busy", "Retry-After: 60\r\nContent-Length: 0\r\n"));
    cloud::HttpClient client;
    cloud::HttpRequest request;
    request.url = QUrl(QString::fromStdString(busy.Address()));
    std::vector<std::wstring> told;
    int asked = 0;  // the second time within Qt's event loop
    const CloudCall call{.isCancelled = [&]() -> bool {
                             if (!told.empty() && ++asked > 1) {
                                 throw LDataError(L"thrown");
                             }
                             return false;
                         },
                         .waiting = [&](const std::wstring& text) { told.push_back(text); }};
    EXPECT_THROW(client.Get(request, call), LDataError);
    EXPECT_EQ(told.size(), 2u);
}

}  // namespace
}  // namespace orvex
