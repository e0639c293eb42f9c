// The cloud page and files on a server, over real sockets.
#include <gmock/gmock.h>

#include <QAction>
#include <QMenu>
#include <QTextEdit>
#include <QTimer>

#include "cloud/page/AddCloudLASFilesPP.h"
#include "dialog/testing/PageFixture.h"
#include "host/cloudserver/CloudServer.h"
#include "las/testing/LasFiles.h"
#include "support/Format.h"
#include "support/SignedUrl.h"

namespace orvex {
namespace {

using ::testing::Each;
using ::testing::HasSubstr;
using ::testing::Not;

class CloudPageAndServer : public testing::PageFixture {
  protected:
    CloudPageAndServer() : PageFixture(Make) {
        files_.Write(L"projects.json", R"({"projects":[]})");
        for (int i = 0; i < kFiles; ++i) {
            const testing::LasBuilder file =
                testing::LasBuilder().ProjectedEpsg(25832).AddPoints(5'000, 500000, 5500000);
            files_.Write(file, L"files/" + std::to_wstring(i) + L".las");
        }
    }

    static std::unique_ptr<AddFilesPage> Make(const PageContext& context) {
        CloudSources sources;
        sources.browse = [] { return layers; };
        return std::make_unique<AddCloudLASFilesPP>(context, std::move(sources));
    }

    void List(const std::string& file, int seconds = 7200) const {
        CloudLayer layer;
        layer.name = FromUtf8(file);
        layer.url = FromUtf8(server_.SignedUrl(file, seconds));
        layers = {layer};
        page->findChild<QMenu*>("addMenu")->findChild<QAction*>("32773")->trigger();
    }

    void ListAll() const {
        for (int i = 0; i < kFiles; ++i) {
            List(std::to_string(i) + ".las");
        }
    }

    static constexpr int kFiles = 6;
    static inline std::vector<CloudLayer> layers;
    testing::LasFolder files_;
    CloudServer server_{{.folder = files_.Path()}};
};

TEST_F(CloudPageAndServer, FilesAreLookedIntoAndFailuresSayTheirCause) {
    ListAll();
    List("none.las");
    List("0.las", -60);
    Click(43550);
    const std::vector<std::wstring> states = Shown("state");
    ASSERT_EQ(states.size(), 8U);
    EXPECT_THAT((std::vector(states.begin(), states.begin() + kFiles)), Each(Text(text::kInspectionOk)));
    EXPECT_THAT(states[6], HasSubstr(L"127.0.0.1"));
    EXPECT_THAT(states[7], HasSubstr(FormatText(Text(text::kCloudLinkExpired), {L""}).substr(0, 12)));
    EXPECT_LT(server_.BytesSent(), 8U * 64 * 1024) << "headers and records, not the points";
    Grid().SelectRows({0});
    EXPECT_THAT(ToWide(Find<QTextEdit>("cloudCrs")->toPlainText()), HasSubstr(L"25832"));
    EXPECT_THAT(states, Each(Not(HasSubstr(L"Signature="))));
    EXPECT_TRUE(page->ValidateAndStore());
    EXPECT_EQ(params.cloudLasLayers.size(), 7U) << "0.las has two URLs";
}

TEST_F(CloudPageAndServer, EscapeEndsASlowServersRequests) {
    ListAll();
    server_.SetFault("/files", {.delayMs = 3'600'000});
    QTimer whenAsked;
    QObject::connect(&whenAsked, &QTimer::timeout, dialog.get(), [&] {
        if (!server_.Requests().empty()) {
            whenAsked.stop();
            QTest::keyClick(dialog.get(), Qt::Key_Escape);
        }
    });
    whenAsked.start(1);
    Click(43550);
    EXPECT_EQ(Outcome(), FormatText(Text(text::kCloudLookedInto), {0, kFiles, L"0"}));
    EXPECT_THAT(Shown("state"), Each(Text(text::kCloudNotInspected)));
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_EQ(page->HasRows(), true);
    server_.ClearFaults();
    Click(43550);
    EXPECT_THAT(Shown("state"), Each(Text(text::kInspectionOk)));
}

TEST_F(CloudPageAndServer, AServerThatCannotSendPartsIsLeftAlone) {
    server_.SetFault("/files", {.ignoresRanges = true});
    List("0.las");
    Click(43550);
    EXPECT_THAT(Shown("state").front(), HasSubstr(L"127.0.0.1"));
    EXPECT_EQ(Model().index(0, ColumnNamed("name")).data(GridModel::kIconRole).toInt(), kImageWarning);
    EXPECT_TRUE(page->ValidateAndStore());
    EXPECT_EQ(params.cloudLasLayers.size(), 1U);
}

}  // namespace
}  // namespace orvex
