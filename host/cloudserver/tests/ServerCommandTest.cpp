#include "host/cloudserver/ServerCommand.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <httplib.h>

#include <filesystem>
#include <sstream>

#include "host/cloudserver/TokenFile.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const std::string kToken = "a-token-of-tests";

struct CommandResult {
    int code;
    std::string out, err;
};

class ServerCommandTest : public ::testing::Test {
  protected:
    ServerCommandTest() {
        folder_.Write(L"projects.json", R"({"projects":[]})");
        folder_.Write(L"files/a b.las", "0123456789");
        tokenFile_ = folder_.Write(L"token", kToken + "\r\n");
    }

    /// Runs the command until it asks whether to stop the second time; `meanwhile` sees what it has printed.
    CommandResult Run(
        std::vector<std::wstring> arguments,
        const std::function<void(const std::string& out)>& meanwhile = [](const std::string&) {}) {
        std::ostringstream out, err;
        arguments.insert(arguments.begin(), folder_.Path().wstring());
        const int code = RunServerCommand(arguments, {out, err, [&] {
                                                          meanwhile(out.str());
                                                          return true;
                                                      }});
        return {code, out.str(), err.str()};
    }

    orvex::testing::TemporaryFolder folder_;
    std::wstring tokenFile_;
};

/// The address in what the command has printed.
std::string AddressIn(const std::string& text) {
    const std::size_t begin = text.find("http://");
    return text.substr(begin, text.find(';', begin) - begin);
}

TEST_F(ServerCommandTest, ServesWithTheTokenOfAFileAndAFault) {
    const std::vector<std::wstring> arguments = {
        L"--port=0", L"--token-file",    tokenFile_, L"--fault", L"/v1/projects/x", L"--status",
        L"429",      L"--retry-after=7", L"--fault", L"/files",  L"--no-ranges"};
    const CommandResult result = Run(arguments, [&](const std::string& out) {
        httplib::Client client(AddressIn(out));
        EXPECT_EQ(401, client.Get("/v1/projects")->status);
        client.set_bearer_token_auth(kToken);
        EXPECT_EQ(200, client.Get("/v1/projects")->status);
        EXPECT_EQ("7", client.Get("/v1/projects/x/files")->get_header_value("Retry-After"));
    });
    EXPECT_EQ(kServerOk, result.code);
    EXPECT_THAT(result.out, HasSubstr(ToUtf8(tokenFile_)));
    EXPECT_THAT(result.out + result.err, Not(HasSubstr(kToken)));
}

TEST_F(ServerCommandTest, MakesATokenAndKeepsIt) {
    const orvex::testing::Variable config(L"ORVEX_CONFIG_DIR", folder_.Name(L"config"));
    const auto run = [&] {
        std::string token;
        Run({L"--port", L"0"}, [&](const std::string& out) {
            token = orvex::testing::ReadFile(folder_.Name(L"config/cloud-server-token"));
            ASSERT_EQ(33U, token.size());
            httplib::Client client(AddressIn(out));
            client.set_bearer_token_auth(token.substr(0, 32));
            EXPECT_EQ(200, client.Get("/v1/projects")->status);
        });
        return token;
    };
    const std::string first = run();
    EXPECT_EQ(first, run());
}

TEST_F(ServerCommandTest, SignsLinksThatTheServerAccepts) {
    std::string address;
    // A free port, which another server uses a moment later.
    Run({L"--port=0", L"--no-token", L"--token-file", tokenFile_}, [&](const std::string& out) {
        address = AddressIn(out);
        httplib::Client client(address);
        EXPECT_EQ(200, client.Get("/v1/projects")->status);
        const std::wstring port = FromUtf8(address.substr(address.rfind(':') + 1));
        const CommandResult sign =
            Run({L"--token-file", tokenFile_, L"--port", port, L"--sign", L"files/a b.las"});
        ASSERT_EQ(kServerOk, sign.code) << sign.err;
        ASSERT_THAT(sign.out, ::testing::StartsWith(address + "/"));
        std::string target = sign.out.substr(address.size());
        target.pop_back();
        EXPECT_EQ("0123456789", client.Get(target)->body);
    });
}

TEST_F(ServerCommandTest, SaysWhatIsWrongWithItsArguments) {
    const std::wstring shortToken = folder_.Write(L"short", "1234567");
    const std::wstring twoLines = folder_.Write(L"lines", "12345678\n12345678\n");
    const struct {
        std::vector<std::wstring> arguments;
        int code;
        const char* text;
    } cases[] = {
        {{L"--prot", L"1"}, kServerUsage, "The option '--prot' is not known."},
        {{L"--no-token=1"}, kServerUsage, "The option '--no-token=1' is not known."},
        {{L"second"}, kServerUsage, "The option 'second' is not known."},
        {{L"--port"}, kServerUsage, "--port needs a number from 0 to 65535."},
        {{L"--port", L"65536"}, kServerUsage, "--port needs a number"},
        {{L"--port=-1"}, kServerUsage, "--port needs a number"},
        {{L"--cut-after", L"99999999999999999999"}, kServerUsage, "--cut-after needs a number"},
        {{L"--redirect"}, kServerUsage, "--redirect needs a value."},
        {{L"--key", L"x"}, kServerUsage, "given together"},
        {{L"--no-token", L"--address", L"0.0.0.0"}, kServerUsage, "for this computer only"},
        {{L"--token-file", folder_.Name(L"none")}, kServerFailed, "none' cannot be read: "},
        {{L"--token-file", shortToken}, kServerFailed, "holds no token"},
        {{L"--token-file", twoLines}, kServerFailed, "holds no token"},
        {{L"--token-file", tokenFile_, L"--sign", L"files/none.las"},
         kServerFailed,
         "no link to 'files/none.las'"},
        {{L"--token-file", tokenFile_, L"--sign", L"projects.json"},
         kServerFailed,
         "no link to 'projects.json'"},
        {{L"--body", folder_.Name(L"none")}, kServerFailed, "none' cannot be read: "},
    };
    for (const auto& c : cases) {
        const CommandResult result = Run(c.arguments);
        EXPECT_EQ(c.code, result.code) << c.text;
        EXPECT_THAT(result.err, HasSubstr(c.text));
        EXPECT_EQ("", result.out);
    }
    EXPECT_THAT(Run({L"--help"}).out, HasSubstr("usage: orvex-cloud-server FOLDER"));
}

TEST(TokenFile, CanBeReadByItsUserOnly) {
    const orvex::testing::TemporaryFolder folder;
    const orvex::testing::Variable config(L"ORVEX_CONFIG_DIR", folder.Name(L"config"));
    std::wstring file;
    UserToken(file);
    EXPECT_EQ(std::filesystem::perms::owner_read | std::filesystem::perms::owner_write,
              std::filesystem::status(file).permissions());
}

}  // namespace
}  // namespace orvex
