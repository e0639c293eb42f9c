#include "host/cloudserver/tests/CloudServerFixture.h"

#include <csignal>
#include <filesystem>

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// The library's clients write to connections that the server has closed.
[[maybe_unused]] const auto previous = std::signal(SIGPIPE, SIG_IGN);

TEST_F(CloudServerTest, LeavesTheSignalHandlingOfTheProcess) {
    std::signal(SIGPIPE, SIG_DFL);
    Start({});
    EXPECT_EQ(SIG_DFL, std::signal(SIGPIPE, SIG_IGN));
}

TEST_F(CloudServerTest, ListsProjectsAndSignsTheFilesOfTheirLayers) {
    const Json projects = GetJson("/v1/projects");
    ASSERT_EQ(2U, projects["projects"].size());
    EXPECT_EQ("Übersicht", projects["projects"][0]["name"]);
    EXPECT_EQ("", projects["next"]);
    const Json layers = GetJson("/v1/projects/p1/files")["layers"];
    ASSERT_EQ(4U, layers.size());
    EXPECT_EQ("https://elsewhere.example/b.las", layers[1]["url"]);
    EXPECT_EQ("", layers[2]["url"]);
    EXPECT_FALSE(layers[3].contains("url"));
    const Json encoded = GetJson("/v1/projects/p%202/files")["layers"];
    for (const Json& url : {layers[0]["url"], encoded[0]["url"]}) {
        const httplib::Response file = Get(TargetOf(url));
        EXPECT_EQ(200, file.status);
        EXPECT_EQ("0123456789", file.body);
    }
    EXPECT_THAT(server_->Requests(),
                ElementsAre("GET /v1/projects", "GET /v1/projects/p1/files", "GET /v1/projects/p%202/files",
                            "GET /files/a%20b.las", "GET /files/a%20b.las"));
}

TEST_F(CloudServerTest, ReadsAListingAgainWhenItHasChanged) {
    EXPECT_EQ(2U, GetJson("/v1/projects")["projects"].size());
    folder_.Write(L"projects.json", R"({"projects":[]})");
    EXPECT_EQ(0U, GetJson("/v1/projects")["projects"].size());
    for (const std::string& bad :
         {std::string(R"({"projects":[)"), std::string(100'000, '['), std::string("{}x")}) {
        folder_.Write(L"projects.json", bad);
        EXPECT_EQ(500, Get("/v1/projects").status) << bad.substr(0, 20);
    }
    std::filesystem::remove(folder_.Path() / "projects.json");
    EXPECT_EQ(404, Get("/v1/projects").status);
}

TEST_F(CloudServerTest, AsksForTheTokenOfListingsOnly) {
    Start({.folder = {}, .token = "s3cret", .certificate = {}, .key = {}, .signingSecret = {}});
    for (const char* header :
         {"", "Bearer", "Bearer ", "Bearer s3cre", "Bearer s3cretx", "bearer s3cret", "Basic s3cret"}) {
        const httplib::Response response = Get("/v1/projects", {{"Authorization", header}});
        EXPECT_EQ(401, response.status) << header;
        EXPECT_EQ("unauthorized", ErrorCode(response));
        EXPECT_EQ("Bearer", response.get_header_value("WWW-Authenticate"));
    }
    EXPECT_EQ(401, Get("/v1/nothing").status);  // what there is, is told to nobody else
    EXPECT_EQ(200, Get("/v1/projects", {{"Authorization", "Bearer s3cret"}}).status);
    EXPECT_EQ(200, Get(Signed("a b.las")).status);
}

TEST_F(CloudServerTest, AnswersErrorsWithABody) {
    const struct {
        int status;
        const char* code;
        std::string target;
    } cases[] = {
        {404, "not_found", "/"},
        {404, "not_found", "/v1/projects/"},
        {404, "not_found", "/v1/projects/none/files"},
        {404, "not_found", "/v1/projects//files"},
        {400, "bad_request", "/v1/projects?limit=0"},
        {400, "bad_request", "/v1/projects?limit=-1"},
        {400, "bad_request", "/v1/projects?page=x"},
        {400, "bad_request", "/v1/projects?page=99999999999999999999999"},
        {414, "uri_too_long", "/" + std::string(9000, 'a')},
        {403, "bad_signature", "/files/a%20b.las"},
        {403, "bad_signature", Signed("a b.las") + "0"},
        {403, "expired", Signed("a b.las", 0)},
        {404, "not_found", Signed("none.las")},
    };
    for (const auto& c : cases) {
        const httplib::Response response = Get(c.target);
        EXPECT_EQ(c.status, response.status) << c.target.substr(0, 50);
        EXPECT_EQ(c.code, ErrorCode(response)) << c.target.substr(0, 50);
        EXPECT_EQ("application/json", response.get_header_value("Content-Type"));
    }
    const auto posted = client_->Post("/v1/projects", "GET /v1/projects HTTP/1.1\r\n\r\n", "text/plain");
    ASSERT_TRUE(posted);
    EXPECT_EQ(405, posted->status);
    EXPECT_EQ("POST /v1/projects", server_->Requests().back());  // its body is no request
}

TEST_F(CloudServerTest, SendsThePartOfAFileThatIsAskedFor) {
    const struct {
        const char* range;
        int status;
        const char* body;
        const char* contentRange;
    } cases[] = {
        {"", 200, "0123456789", ""},
        {"bytes=0-0", 206, "0", "bytes 0-0/10"},
        {"bytes=9-9", 206, "9", "bytes 9-9/10"},
        {"bytes=2-4", 206, "234", "bytes 2-4/10"},
        {"bytes=7-", 206, "789", "bytes 7-9/10"},
        {"bytes=7-99999999999999999", 206, "789", "bytes 7-9/10"},
        {"bytes=-3", 206, "789", "bytes 7-9/10"},
        {"bytes=-99", 206, "0123456789", "bytes 0-9/10"},
        {"bytes=10-", 416, nullptr, "bytes */10"},
        {"bytes=9223372036854775807-", 416, nullptr, "bytes */10"},
        {"bytes=-0", 416, nullptr, "bytes */10"},
        {"bytes=0-1,4-5", 200, "0123456789", ""},
    };
    const std::string target = Signed("a b.las");
    for (const auto& c : cases) {
        const httplib::Response response =
            Get(target, *c.range == 0 ? httplib::Headers() : httplib::Headers{{"Range", c.range}});
        EXPECT_EQ(c.status, response.status) << c.range;
        EXPECT_EQ(c.contentRange, response.get_header_value("Content-Range")) << c.range;
        EXPECT_EQ(std::to_string(response.body.size()), response.get_header_value("Content-Length"))
            << c.range;
        if (c.body != nullptr) {
            EXPECT_EQ(c.body, response.body) << c.range;
            EXPECT_EQ("bytes", response.get_header_value("Accept-Ranges"));
        }
    }
    EXPECT_EQ(416, Get(Signed("empty.las"), {{"Range", "bytes=0-"}}).status);
    EXPECT_EQ(200, Get(Signed("empty.las")).status);
    // The library answers these by itself, and the connection ends.
    for (const std::string& malformed : {std::string("bytes=5-2"), std::string("bytes=x-"),
                                         std::string("bytes"), "bytes=" + std::string(7000, '1') + "-"}) {
        EXPECT_THAT(Get(target, {{"Range", malformed}}).status, ::testing::AnyOf(200, 416))
            << malformed.substr(0, 20);
    }
}

TEST_F(CloudServerTest, SendsTheWholeFileWhenItHasChangedSinceTheFirstPart) {
    const std::string target = Signed("a b.las");
    const std::string tag = Get(target).get_header_value("ETag");
    EXPECT_EQ(206, Get(target, {{"Range", "bytes=1-2"}, {"If-Range", tag}}).status);
    folder_.Write(L"files/a b.las", "other");
    EXPECT_NE(tag, Get(target).get_header_value("ETag"));
    EXPECT_EQ("other", Get(target, {{"Range", "bytes=1-2"}, {"If-Range", tag}}).body);
}

TEST_F(CloudServerTest, CountsTheBytesOfBodies) {
    const std::uint64_t before = server_->BytesSent();
    Get(Signed("a b.las"), {{"Range", "bytes=1-4"}});
    EXPECT_EQ(before + 4, server_->BytesSent());
}

TEST_F(CloudServerTest, ReachesNothingOutsideOfTheFolder) {
    const orvex::testing::TemporaryFolder outside;
    outside.Write(L"secret.las", "secret");
    const std::string absolute = (outside.Path() / "secret.las").string();
    const std::string sibling = "../../" + outside.Path().filename().string() + "/secret.las";
    for (const std::string& name :
         {absolute, sibling, std::string("../projects.json"), std::string("..\\projects.json"),
          std::string("."), std::string(), std::string("./a b.las"), std::string("a b.las/")}) {
        EXPECT_EQ(404, Get(Signed("files/" + name)).status) << name;
    }
    // Encoded slashes and dots mean what they are to the signature, and lead nowhere either.
    for (const auto& [part, by] :
         {std::pair{"/files/", "/files%2F"}, {"/files/", "/%66iles/%2e%2e/files/"}}) {
        std::string target = Signed("a b.las");
        target.replace(target.find(part), std::string(part).size(), by);
        EXPECT_THAT(Get(target).status, ::testing::AnyOf(403, 404)) << target;
    }
    for (const char* id : {"..%2Fprojects", "%2e%2e", "..", "%2Fetc%2Fpasswd", "p1%00", "p1.json", "C:p1"}) {
        EXPECT_EQ(404, Get(std::string("/v1/projects/") + id + "/files").status) << id;
    }
}

TEST_F(CloudServerTest, ServesLargeAccountsInPages) {
    std::string projects = R"({"projects":[)";
    for (int i = 0; i < 10'000; ++i) {
        projects += (i == 0 ? "" : ",") + std::string(R"({"id":"p)") + std::to_string(i) +
                    R"(","name":"Flight )" + std::to_string(i) + "\"}";
    }
    folder_.Write(L"projects.json", projects + "]}");
    EXPECT_EQ(1000U, GetJson("/v1/projects?limit=5000")["projects"].size());  // the most at a time
    std::size_t count = 0;
    std::string page;
    do {
        const Json answer = GetJson("/v1/projects?limit=700&page=" + page);
        count += answer["projects"].size();
        page = answer["next"];
    } while (!page.empty());
    EXPECT_EQ(10'000U, count);
    const Json filtered = GetJson("/v1/projects?limit=3&filter=FLIGHT%20999")["projects"];
    ASSERT_EQ(3U, filtered.size());
    EXPECT_EQ("p9990", filtered[1]["id"]);
}

/// Number of times that a part stands in a text.
std::size_t CountOf(const std::string& text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

TEST_F(CloudServerTest, KeepsAPageSmallEnoughForItsClients) {
    std::string layers = R"({"layers":[)";
    for (int i = 0; i < 20'000; ++i) {
        layers += (i == 0 ? "" : ",") + std::string(R"({"name":"Tile","bytes":12345678,"wkt":")") +
                  std::string(i < 60 ? 100'000 : 10, 'x') + "\"}";
    }
    folder_.Write(L"projects/p1.json", layers + "]}");
    std::size_t count = 0;
    std::string page;
    do {
        const httplib::Response answer = Get("/v1/projects/p1/files?page=" + page);
        ASSERT_EQ(200, answer.status);
        EXPECT_LT(answer.body.size(), 5U << 20);
        count += CountOf(answer.body, R"("name":"Tile")");
        constexpr std::string_view next = R"("next":")";
        page = answer.body.substr(answer.body.rfind(next) + next.size());
        page.resize(page.find('"'));
    } while (!page.empty());
    EXPECT_EQ(20'000U, count);
}

TEST_F(CloudServerTest, SaysWhyItCannotStart) {
    const auto failureOf = [](CloudServerSettings settings) {
        try {
            const CloudServer server(std::move(settings));
        } catch (const LDataError& error) {
            return ToUtf8(error.Text());
        }
        return std::string("started");
    };
    CloudServerSettings settings;
    settings.folder = folder_.Path() / "none";
    EXPECT_THAT(failureOf(settings), HasSubstr("There is no folder '"));
    settings.folder = folder_.Path();
    settings.port = std::stoi(server_->Address().substr(server_->Address().rfind(':') + 1));
    EXPECT_THAT(failureOf(settings), HasSubstr("is in use by another program"));
    settings.port = 0;
    settings.address = "192.0.2.1";  // reserved for examples
    EXPECT_THAT(failureOf(settings), HasSubstr("'192.0.2.1' is not an address of this computer"));
}

TEST_F(CloudServerTest, FollowsNoLinkOutOfTheFolder) {
    const orvex::testing::TemporaryFolder outside;
    outside.Write(L"secret.las", "secret");
    const std::filesystem::path files = folder_.Path() / "files";
    std::filesystem::create_symlink(outside.Path() / "secret.las", files / "link.las");
    std::filesystem::create_directory_symlink(outside.Path(), files / "folder");
    std::filesystem::create_symlink("a b.las", files / "inside.las");
    EXPECT_EQ(404, Get(Signed("link.las")).status);
    EXPECT_EQ(404, Get(Signed("folder/secret.las")).status);
    EXPECT_EQ(200, Get(Signed("inside.las")).status);
}

}  // namespace
}  // namespace orvex
