#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <algorithm>
#include <memory>
#include <nlohmann/json.hpp>
#include <string>

#include "host/cloudserver/CloudServer.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {

/// A server of a small account, and a client of it.
class CloudServerTest : public ::testing::Test {
  protected:
    CloudServerTest() {
        folder_.Write(L"projects.json",
                      R"({"projects":[{"id":"p1","name":"Übersicht"},{"id":"p 2","name":"Two"}]})");
        folder_.Write(L"projects/p1.json", R"({"layers":[{"name":"A","url":"files/a b.las","bytes":10},
            {"name":"B","url":"https://elsewhere.example/b.las"},{"name":"C","url":"../projects.json"},{"name":"D"}]})");
        folder_.Write(L"projects/p 2.json", R"({"layers":[{"url":"files/a%20b.las"}]})");
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
        client_->set_read_timeout(300);  // of a busy machine
    }

    /// The answer; its status is -1 if the connection broke.
    httplib::Response Get(const std::string& target, const httplib::Headers& headers = {}) {
        const auto result = client_->Get(target, headers);
        return result ? *result : httplib::Response();
    }

    nlohmann::json GetJson(const std::string& target) {
        const httplib::Response response = Get(target);
        EXPECT_EQ(200, response.status) << target;
        return nlohmann::json::parse(response.body, nullptr, false);
    }

    std::string ErrorCode(const httplib::Response& response) {
        const nlohmann::json body = nlohmann::json::parse(response.body, nullptr, false);
        return body.is_discarded() ? response.body : body["error"]["code"].get<std::string>();
    }

    /// Path and query of a URL of the server.
    std::string TargetOf(const std::string& url) const {
        EXPECT_THAT(url, ::testing::StartsWith(server_->Address() + "/"));
        return url.substr(std::min(server_->Address().size(), url.size()));
    }

    std::string Signed(const std::string& file, int seconds = 60) const {
        return TargetOf(server_->SignedUrl(file, seconds));
    }

    orvex::testing::TemporaryFolder folder_;
    std::unique_ptr<CloudServer> server_;
    std::unique_ptr<httplib::Client> client_;
};

}  // namespace orvex
