#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <future>
#include <thread>

#include "host/cloudserver/CloudServer.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

constexpr int kHour = 3'600'000;

/// A connection to a server that sends what it is told.
class RawConnection {
  public:
    explicit RawConnection(const CloudServer& server) {
        const std::string address = server.Address();
        httplib::Error error = httplib::Error::Success;
        socket_ = httplib::detail::create_client_socket(
            "127.0.0.1", "", std::stoi(address.substr(address.rfind(':') + 1)), AF_UNSPEC, true, nullptr, 30,
            0, 30, 0, 30, 0, "", error);
        EXPECT_NE(INVALID_SOCKET, socket_);
    }
    ~RawConnection() { httplib::detail::close_socket(socket_); }
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    /// False once the server has closed the connection.
    bool Send(const std::string& bytes) {
        return httplib::detail::send_socket(socket_, bytes.data(), bytes.size(), 0) ==
               static_cast<ssize_t>(bytes.size());
    }

    /// All bytes until the server closes the connection.
    std::string Receive() {
        std::string received;
        std::array<char, 4096> piece;
        for (;;) {
            const ssize_t count = httplib::detail::read_socket(socket_, piece.data(), piece.size(), 0);
            if (count <= 0) {
                return received;
            }
            received.append(piece.data(), static_cast<std::size_t>(count));
        }
    }

  private:
    socket_t socket_ = INVALID_SOCKET;
};

class FaultsTest : public ::testing::Test {
  protected:
    FaultsTest() {
        folder_.Write(L"projects.json", R"({"projects":[]})");
        folder_.Write(L"files/a.las", std::string(200'000, 'x'));
        CloudServerSettings settings;
        settings.folder = folder_.Path();
        server_ = std::make_unique<CloudServer>(settings);
    }

    httplib::Client Client() const { return httplib::Client(server_->Address()); }

    /// Sends requests and closes; the answers.
    std::string Exchange(const std::string& requests) {
        RawConnection connection(*server_);
        connection.Send(requests);
        return connection.Receive();
    }

    orvex::testing::TemporaryFolder folder_;
    std::unique_ptr<CloudServer> server_;
};

void WaitUntil(const std::function<bool()>& condition) {
    while (!condition()) {
        std::this_thread::yield();
    }
}

TEST_F(FaultsTest, AnswersAsOftenAsAskedWithTheStatusOfTheLongestPrefix) {
    CloudFault busy;
    busy.status = 429;
    busy.retryAfter = "2";
    busy.times = 2;
    server_->SetFault("/v1/projects", busy);
    CloudFault broken;
    broken.status = 503;
    broken.body = "no JSON";
    server_->SetFault("/v1", broken);
    httplib::Client client = Client();
    for (int i = 0; i < 2; ++i) {
        const auto answer = client.Get("/v1/projects");
        EXPECT_EQ(429, answer->status);
        EXPECT_EQ("2", answer->get_header_value("Retry-After"));
        EXPECT_THAT(answer->body, HasSubstr(R"("code":"too_many_requests")"));
    }
    const auto answer = client.Get("/v1/projects");
    EXPECT_EQ(503, answer->status);
    EXPECT_EQ("no JSON", answer->body);
    server_->ClearFaults();
    EXPECT_EQ(200, client.Get("/v1/projects")->status);
}

TEST_F(FaultsTest, RedirectsAndReplacesBodies) {
    CloudFault redirect;
    redirect.redirect = "http://other.example/";
    server_->SetFault("/v1/projects/p", redirect);
    CloudFault body;
    body.body = std::string(3'000'000, '[');
    server_->SetFault("/v1/projects", body);
    httplib::Client client = Client();
    const auto redirected = client.Get("/v1/projects/p/files");
    EXPECT_EQ(302, redirected->status);
    EXPECT_EQ("http://other.example/", redirected->get_header_value("Location"));
    EXPECT_EQ(*body.body, client.Get("/v1/projects")->body);
}

TEST_F(FaultsTest, CutsOffAfterTheBytesAsked) {
    const std::string url = server_->SignedUrl("a.las", 60);
    const std::string target = url.substr(server_->Address().size());
    for (const std::int64_t cut : {0, 1, 100'000}) {
        CloudFault fault;
        fault.cutAfter = cut;
        server_->SetFault("/files", fault);
        const std::uint64_t before = server_->BytesSent();
        const std::string answer =
            Exchange("GET " + target + " HTTP/1.1\r\nHost: " + server_->Address().substr(7) + "\r\n\r\n");
        EXPECT_THAT(answer, StartsWith("HTTP/1.1 200 OK\r\n"));
        EXPECT_THAT(answer, HasSubstr("Content-Length: 200000\r\n"));
        EXPECT_EQ(static_cast<std::size_t>(cut), answer.size() - answer.find("\r\n\r\n") - 4);
        EXPECT_EQ(before + static_cast<std::uint64_t>(cut), server_->BytesSent());
    }
    CloudFault whole;
    whole.ignoresRanges = true;
    server_->SetFault("/files", whole);
    const auto answer = Client().Get(target, {{"Range", "bytes=0-9"}});
    EXPECT_EQ(200, answer->status);
    EXPECT_EQ(200'000U, answer->body.size());
    EXPECT_FALSE(answer->has_header("Accept-Ranges"));
}

TEST_F(FaultsTest, EndsDelaysWhenFaultsAreClearedAndWithTheServer) {
    CloudFault slow;
    slow.delayMs = kHour;
    server_->SetFault("/", slow);
    const auto get = [address = server_->Address()] {
        const auto answer = httplib::Client(address).Get("/v1/projects");
        return answer ? answer->status : 0;
    };
    auto cleared = std::async(std::launch::async, get);
    WaitUntil([this] { return server_->Requests().size() == 1; });
    server_->ClearFaults();
    EXPECT_EQ(200, cleared.get());
    server_->SetFault("/", slow);
    auto ended = std::async(std::launch::async, get);
    WaitUntil([this] { return server_->Requests().size() == 2; });
    server_.reset();
    ended.get();
}

TEST_F(FaultsTest, EndsWhileClientsDoNotReadTheirAnswers) {
    CloudFault large;
    large.body.emplace(20'000'000, 'x');
    server_->SetFault("/", large);
    RawConnection idle(*server_);
    RawConnection deaf(*server_);
    deaf.Send("GET / HTTP/1.1\r\nHost: a\r\n\r\n");
    WaitUntil([this] { return server_->BytesSent() > 0; });
    server_.reset();
}

TEST_F(FaultsTest, RefusesMalformedRequests) {
    EXPECT_THAT(Exchange("nonsense\r\n\r\n"), StartsWith("HTTP/1.1 400 "));
    EXPECT_THAT(Exchange("GET http://a/v1/projects HTTP/1.1\r\nHost: a\r\nConnection: close\r\n\r\n"),
                StartsWith("HTTP/1.1 4"));
    for (const char* head : {"", "Host: a\r\nHost: b\r\n", "Host: a b\r\n", "Host: a\"b\r\n"}) {
        EXPECT_THAT(
            Exchange(std::string("GET /v1/projects HTTP/1.1\r\n") + head + "Connection: close\r\n\r\n"),
            StartsWith("HTTP/1.1 400 "))
            << head;
    }
    for (const auto& [host, status] : {std::pair{"127.0.0.1:80", "200"},
                                       {"localhost", "200"},
                                       {"[::1]:80", "200"},
                                       {"127.0.0.1.example", "403"},
                                       {"localhost.example:80", "403"},
                                       {"[", "403"}}) {
        EXPECT_THAT(Exchange("GET /v1/projects HTTP/1.1\r\nHost: " + std::string(host) +
                             "\r\nConnection: close\r\n\r\n"),
                    StartsWith(std::string("HTTP/1.1 ") + status))
            << host;
    }
    const std::string two = Exchange(
        "GET /v1/projects HTTP/1.1\r\nHost: a\r\n\r\nHEAD /v1/projects HTTP/1.1\r\nHost: a\r\nConnection: "
        "close\r\n\r\n");
    EXPECT_THAT(two, ::testing::EndsWith("\r\n\r\n"));  // no body for HEAD
    const std::vector<std::string> requests = server_->Requests();
    ASSERT_GE(requests.size(), 2U);
    EXPECT_EQ("GET /v1/projects", requests[requests.size() - 2]);
    EXPECT_EQ("HEAD /v1/projects", requests.back());
}

TEST_F(FaultsTest, ClosesAConnectionWhoseHeadHasNoEnd) {
    RawConnection connection(*server_);
    connection.Send("GET /v1/projects HTTP/1.1\r\n");
    std::size_t sent = 0;
    while (sent < (64U << 20) && connection.Send("X-Filler: " + std::string(1000, 'x') + "\r\n")) {
        sent += 1012;
    }
    EXPECT_LT(sent, 64U << 20);
    EXPECT_EQ(200, Client().Get("/v1/projects")->status);
}

TEST_F(FaultsTest, AnswersWhileOthersKeepConnectionsIdle) {
    std::vector<std::unique_ptr<RawConnection>> idle(40);
    for (auto& connection : idle) {
        connection = std::make_unique<RawConnection>(*server_);
    }
    EXPECT_EQ(200, Client().Get("/v1/projects")->status);
}

}  // namespace
}  // namespace orvex
