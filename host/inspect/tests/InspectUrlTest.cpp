// The command orvex-inspect with URLs, over real sockets.
#include <gmock/gmock.h>

#include <QProcess>
#include <algorithm>
#include <nlohmann/json.hpp>
#include <sstream>

#include "host/cloudserver/CloudServer.h"
#include "host/inspect/InspectCommand.h"
#include "host/inspect/tests/InspectRun.h"
#include "las/testing/LasFiles.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using testing::LasBuilder;
using ::testing::Not;
using Json = nlohmann::ordered_json;

class InspectUrlTest : public ::testing::Test {
  protected:
    InspectUrlTest() {
        folder_.Write(L"projects.json", R"({"projects":[]})");
        local_ = folder_.Write(
            L"files/a.las",
            LasBuilder(14, 6).AddPoints(9'000, 500'000, 5'500'000).ProjectedEpsg(25832).Build());
    }

    std::wstring Signed(const std::string& file, int seconds = 100'000) const {
        return FromUtf8(server_.SignedUrl(file, seconds));
    }

    /// Runs the command; returns its exit code. Nothing it prints may give access.
    int Run(const std::vector<std::wstring>& arguments, bool stop = false) {
        std::ostringstream out;
        std::ostringstream err;
        const int code = RunInspectCommand(arguments, {out, err, false, [stop] { return stop; }});
        out_ = out.str();
        if (std::ranges::count(arguments, L"--json") > 0) {
            testing::KeepOutput(out_, L".json");
        }
        EXPECT_THAT(out_ + err.str(), Not(AnyOf(HasSubstr("Signature"), HasSubstr("Credential"))));
        return code;
    }
    Json Objects(std::vector<std::wstring> arguments, int wantedCode) {
        arguments.emplace_back(L"--json");
        EXPECT_EQ(Run(arguments), wantedCode);
        return Json::parse(out_, nullptr, false);
    }

    const testing::LasFolder folder_;
    std::wstring local_;
    CloudServer server_{{.folder = folder_.Path()}};
    std::string out_;
};

TEST_F(InspectUrlTest, HasTheFactsOfTheFileAndWhatTheyCost) {
    std::wstring capitals = Signed("a.las");
    capitals.replace(0, 4, L"HTTP");
    const Json objects =
        Objects({local_, Signed("a.las"), capitals, L"--as", L"las", L"--jobs", L"3"}, kInspectOk);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_EQ(objects[0]["kind"], "las");
    EXPECT_EQ(objects[0]["transferred"], nullptr);
    for (const std::size_t i : {1U, 2U}) {
        EXPECT_EQ(objects[i]["kind"], "cloud");
        EXPECT_THAT(objects[i]["path"].get<std::string>(), HasSubstr("/files/a.las?X-Amz-Date="));
        EXPECT_EQ(objects[i]["transferred"], 65'536);
        for (const char* key : {"loadable", "summary", "findings", "crs", "las"}) {
            EXPECT_EQ(objects[i][key], objects[0][key]) << key;
        }
        EXPECT_EQ(objects[i]["columns"]["points"], objects[0]["columns"]["points"]);
    }
    EXPECT_EQ(Run({Signed("a.las"), L"--csv"}), kInspectOk);
    EXPECT_THAT(out_, HasSubstr(",cloud,"));
    EXPECT_EQ(Run({Signed("a.las")}), kInspectOk);
    EXPECT_THAT(out_, HasSubstr("9000"));
}

TEST_F(InspectUrlTest, SaysWhyAUrlCannotBeReadAndGoesOn) {
    const Json objects =
        Objects({Signed("none.las"), Signed("a.las", -60), Signed("a.las", 60)}, kInspectPathMissing);
    ASSERT_EQ(objects.size(), 3U);
    EXPECT_THAT(objects[0]["summary"].get<std::string>(), HasSubstr("has no file at this address"));
    EXPECT_THAT(objects[1]["summary"].get<std::string>(), HasSubstr("refuses this link"));
    EXPECT_THAT(objects[1]["findings"].dump(), HasSubstr("The link expired on"));
    EXPECT_EQ(objects[2]["loadable"], true);
    EXPECT_THAT(objects[2]["summary"].get<std::string>(), HasSubstr("expires within the hour"));
    // What was read and is no LAS file is no failure, as for files.
    folder_.Write(L"files/page.las", std::string(1'000, ' '));
    EXPECT_EQ(Objects({Signed("page.las")}, kInspectOk)[0]["loadable"], false);
    const Json raster = Objects({Signed("a.las"), L"--as", L"raster"}, kInspectOk)[0];
    EXPECT_EQ(raster["summary"], "Only a LAS or LAZ file can be inspected at a URL.");
    EXPECT_EQ(raster["transferred"], nullptr);
}

TEST_F(InspectUrlTest, StopsWhileTheServerIsSilent) {
    server_.SetFault("/files/", {.delayMs = 3'600'000});
    EXPECT_EQ(Run({Signed("a.las"), Signed("b.las")}, true), kInspectStopped);
}

/// The program itself, for a user whose language is German.
class InspectProgram {
  public:
    explicit InspectProgram(const QStringList& arguments) {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert("ORVEX_LANGUAGE", "de");
        process_.setProcessEnvironment(environment);
        process_.start(ORVEX_INSPECT_PROGRAM, arguments);
    }

    /// Waits for a line on standard error.
    std::string ErrorLine() {
        process_.setReadChannel(QProcess::StandardError);
        while (!process_.canReadLine() && process_.waitForReadyRead()) {
        }
        return process_.readLine().toStdString();
    }
    void Terminate() { process_.terminate(); }
    /// Waits for the end; returns the exit code.
    int Code() {
        return process_.waitForFinished() && process_.exitStatus() == QProcess::NormalExit
                   ? process_.exitCode()
                   : -1;
    }
    std::string Output() { return process_.readAllStandardOutput().toStdString(); }

  private:
    QProcess process_;
};

TEST_F(InspectUrlTest, ATerminatedProgramHasPrintedACompleteDocument) {
    server_.SetFault("/files/", {.delayMs = 3'600'000});
    InspectProgram program({"--json", "--progress", "--jobs=2", QString::fromStdWString(local_),
                            QString::fromStdWString(Signed("b.las"))});
    ASSERT_EQ(program.ErrorLine(), "1 of 2 files\n");
    program.Terminate();
    EXPECT_EQ(program.Code(), kInspectStopped);
    const Json objects = Json::parse(program.Output(), nullptr, false);
    ASSERT_EQ(objects.size(), 1U);
    EXPECT_EQ(objects[0]["loadable"], true);
}

TEST_F(InspectUrlTest, TheProgramPrintsEnglishUnlessAskedForAnotherLanguage) {
    const QString path = QString::fromStdWString(folder_.Write(L"a.txt", "text"));
    const auto summary = [&path](QStringList options) {
        InspectProgram program(options << "--json" << path);
        EXPECT_EQ(program.Code(), kInspectOk);
        return Json::parse(program.Output(), nullptr, false)[0]["summary"].get<std::string>();
    };
    EXPECT_EQ(summary({}), "Files of this kind cannot be inspected.");
    EXPECT_EQ(summary({"--language", "en"}), "Files of this kind cannot be inspected.");
    EXPECT_EQ(summary({"--language=de"}), "Dateien dieser Art können nicht untersucht werden.");
}

}  // namespace
}  // namespace orvex
