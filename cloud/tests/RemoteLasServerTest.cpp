// Remote files over real sockets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "cloud/RemoteLas.h"
#include "host/cloudserver/CloudServer.h"
#include "host/utilities/testing/LazSamples.h"
#include "las/LasColumns.h"
#include "las/testing/LasFiles.h"
#include "support/Text.h"

namespace orvex {
namespace {

using ::testing::AnyOf;
using ::testing::HasSubstr;
using testing::LasBuilder;
using ::testing::Not;

class RemoteLasServerTest : public ::testing::Test {
  protected:
    RemoteLasServerTest() {
        folder_.Write(L"projects.json", R"({"projects":[]})");
        folder_.Write(L"files/a.las", File().Build());
    }

    /// A file whose WKT takes a second request.
    static LasBuilder File() { return LasBuilder(14, 6).AddPoints(9'000).Wkt("GEOGCS[\"WGS 84\"]", true); }

    std::wstring Signed(const std::string& file, int seconds = 60) const {
        return FromUtf8(server_.SignedUrl(file, seconds));
    }

    testing::LasFolder folder_;
    CloudServer server_{{.folder = folder_.Path()}};
};

/// Findings and cells that do not depend on where a file lies: not those of its path and of its points'
/// bytes.
std::vector<std::string> FactsOf(const LasRow& row) {
    std::vector<std::string> facts{ToUtf8(row.crs->prettyWkt)};
    for (const Finding& finding : row.findings) {
        const std::string_view code = finding.code;
        if (code != las_finding::kCompressionDamaged.code && code != las_finding::kReaderMessage.code) {
            facts.emplace_back(code);
            facts.push_back(ToUtf8(finding.text));
        }
    }
    for (const Column<LasRow>& column : LasColumns()) {
        const std::string_view name = column.name;
        const bool isLocal = name == "path" || name == "details" || name == "fileName" || name == "folder" ||
                             name == "modified";
        if (!isLocal) {
            facts.push_back(column.name + std::string(": ") + ToUtf8(CellText(column, row)));
        }
    }
    return facts;
}

TEST_F(RemoteLasServerTest, RowHasTheFactsOfTheLocalFile) {
    std::vector<std::wstring> paths;
    const auto add = [&](const LasBuilder& builder) {
        paths.push_back(folder_.Write(builder, L"files/file " + std::to_wstring(paths.size()) + L".las"));
    };
    for (const LasBuilder& builder : testing::LyingLasFiles()) {
        add(builder);
    }
    add(testing::RichLas());
    add(File());
    for (const std::size_t size : {1U, 226U, 300U, 500U}) {
        add(testing::RichLas().Cut(size));
    }
    for (const testing::LazSample& sample : {testing::LazSample{}, testing::LazSample{4, 6, 30, 100'000}}) {
        for (const bool compress : {false, true}) {
            paths.push_back(
                FromPath(folder_.Path() / ("files/sample" + std::to_string(paths.size()) + ".laz")));
            testing::WriteSample(paths.back(), sample, compress);
        }
    }
    for (const std::wstring& path : paths) {
        const std::uint64_t sentBefore = server_.BytesSent();
        const RemoteLas remote = InspectRemoteLas(Signed(ToUtf8(L"files/" + FileNameOf(path))));
        EXPECT_EQ(remote.status, CloudStatus::Ok) << ToUtf8(remote.row.summary);
        EXPECT_EQ(FactsOf(remote.row), FactsOf(InspectLasFile(path))) << ToUtf8(path);
        EXPECT_EQ(remote.transferred, server_.BytesSent() - sentBefore) << ToUtf8(path);
    }
}

TEST_F(RemoteLasServerTest, FailureIsTheRowsReasonWithoutTheSignature) {
    folder_.Write(L"files/page.las", "<!DOCTYPE html><html>" + std::string(1'000, ' '));
    folder_.Write(L"files/large.las", LasBuilder(12, 0).AddPoints(100'000).Build());
    CloudFault wholeFiles;
    wholeFiles.ignoresRanges = true;
    const struct {
        const char* file;
        int seconds;
        CloudFault fault;
        CloudStatus status;
        std::uint64_t most;  ///< bytes received
    } cases[] = {
        {"a.las", -5, {}, CloudStatus::Forbidden, 1'000},
        {"none.las", 60, {}, CloudStatus::NotFound, 1'000},
        {"page.las", 60, {}, CloudStatus::Ok, 2'000},
        {"large.las", 60, wholeFiles, CloudStatus::NoRanges, 0},
    };
    for (const auto& [file, seconds, fault, status, most] : cases) {
        server_.ClearFaults();
        server_.SetFault("/files/" + std::string(file), fault);
        const RemoteLas remote = InspectRemoteLas(Signed(file, seconds));
        EXPECT_EQ(remote.status, status) << file;
        EXPECT_FALSE(remote.row.loadable) << file;
        EXPECT_THAT(ToUtf8(remote.row.path), HasSubstr(file));
        EXPECT_FALSE(remote.row.summary.empty()) << file;
        EXPECT_LE(remote.transferred, most) << file;
        EXPECT_THAT(ToUtf8(testing::RowText(remote.row)),
                    Not(AnyOf(HasSubstr("Signature"), HasSubstr("Credential"))));
    }
}

TEST_F(RemoteLasServerTest, LookIsCancelledWhileTheServerIsSilent) {
    server_.SetFault("/files/", {.delayMs = 3'600'000});
    const RemoteLas remote = InspectRemoteLas(Signed("a.las"), {.isCancelled = [] { return true; }});
    EXPECT_EQ(remote.status, CloudStatus::Cancelled);
    EXPECT_FALSE(remote.row.loadable);
    server_.ClearFaults();
}

}  // namespace
}  // namespace orvex
