#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <csignal>
#include <nlohmann/json.hpp>

#include "host/cloudserver/CloudServer.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

/// A server of a small account, and a client of it.
class CloudServerTest : public ::testing::Test {
  protected:
    CloudServerTest() {
        std::signal(SIGPIPE, SIG_IGN);  // of the client
        folder_.Write(L"projects.json",
                      R"({"projects":[{"id":"p1","name":"Übersicht"},{"id":"p 2","name":"Two"}]})");
        folder_.Write(L"projects/p1.json", R"({"layers":[{"name":"A","url":"files/a b.las","bytes":10},
            {"name":"B","url":"https://elsewhere.example/b.las"},{"name":"C","url":"../projects.json"},{"name":"D"}]})");
        folder_.Write(L"files/a b.las", "0123456789");
        folder_.Write(L"files/empty.las", "");
        Start({});
    }

    void Start(CloudServerSettings settings) {
        settings.folder = folder_.Path();
        client_.reset();
        server_ = std::make_unique<CloudServer>(settings);
        client_ = std::make_unique<httplib::Client>(server_->Address());
        client_->set_keep_alive(true);
    }

    Json Get(const std::string& path, int status = 200, const httplib::Headers& headers = {}) {
        const auto result = client_->Get(path, headers);
        EXPECT_TRUE(result) << path << ": " << result.error();
        EXPECT_EQ(status, result ? result->status : 0) << path;
        return result ? Json::parse(result->body, nullptr, false) : Json();
    }

    /// Path and query of a URL of the server.
    std::string TargetOf(const std::string& url) const {
        EXPECT_TRUE(url.starts_with(server_->Address() + "/"));
        return url.substr(server_->Address().size());
    }

    std::string Signed(const std::string& file, int seconds = 60) const {
        return TargetOf(server_->SignedUrl(file, seconds));
    }

    orvex::testing::TemporaryFolder folder_;
    std::unique_ptr<CloudServer> server_;
    std::unique_ptr<httplib::Client> client_;
};

TEST_F(CloudServerTest, ListsProjectsAndSignsTheFilesOfTheirLayers) {
    const Json projects = Get("/v1/projects");
    ASSERT_EQ(2U, projects["projects"].size());
    EXPECT_EQ("Übersicht", projects["projects"][0]["name"]);
    EXPECT_EQ("", projects["next"]);
    const Json layers = Get("/v1/projects/p1/files")["layers"];
    ASSERT_EQ(4U, layers.size());
    EXPECT_EQ("https://elsewhere.example/b.las", layers[1]["url"]);
    EXPECT_EQ("", layers[2]["url"]);
    EXPECT_FALSE(layers[3].contains("url"));
    const auto file = client_->Get(TargetOf(layers[0]["url"]));
    ASSERT_TRUE(file);
    EXPECT_EQ(200, file->status);
    EXPECT_EQ("0123456789", file->body);
}

}  // namespace
}  // namespace orvex
