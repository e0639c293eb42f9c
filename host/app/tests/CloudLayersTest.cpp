// Cloud layers in the host: the record's become the project's, and the account that they are picked from.
#include <gmock/gmock.h>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeView>

#include "host/app/CloudSignIn.h"
#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/ProjectFile.h"
#include "host/app/SampleProject.h"
#include "host/app/tests/TestRecord.h"
#include "host/objects/HostClasses.h"
#include "support/LDataError.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

namespace fs = std::filesystem;
using ::testing::ElementsAre;
using testing::Record;
using testing::TemporaryFolder;

constexpr const wchar_t* kSigned =
    L"https://store.example/a%20b/One.laz?X-Amz-Expires=60&X-Amz-Signature=5ec4e7";

class CloudLayersTest : public ::testing::Test {
  protected:
    CloudLayersTest() {
        window_.OpenProject(ToQString(folder_.Name(L"project")));
        QObject::connect(&timer_, &QTimer::timeout, &timer_, [this] {
            if (auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget())) {
                auto* text = box->findChild<QPlainTextEdit*>("reportText");
                report_ = text == nullptr ? report_ : text->toPlainText();
                box->accept();
            }
        });
        timer_.start(1);
    }

    std::vector<std::wstring> LayerNames() const {
        std::vector<std::wstring> names;
        for (const Layer& layer : window_.CurrentProject().layers) {
            names.push_back(layer.name);
        }
        return names;
    }
    QAbstractItemModel& Tree() { return *window_.findChild<QTreeView*>("layers")->model(); }
    QAction& Action(const char* name) { return *window_.findChild<QAction*>(name); }

    TemporaryFolder folder_;
    PrivateSettings settings_{ToPath(folder_.Name(L"settings"))};
    HostPreferences preferences_{QString()};
    HostWindow window_{preferences_};
    QTimer timer_;    ///< closes what is shown
    QString report_;  ///< the last one
};

TEST_F(CloudLayersTest, EachBecomesALayerOfItsOwnNameAndItsSignatureIsNotShown) {
    Record record;
    record.presignedUrlLayers = {{L"Cloud LAS_Layer", kSigned}, {L"b", L"https://h/b.las"}};
    record.cloudLasLayers = {{L"b", L"https://h/B.las"}};
    record.cloudLasLayerValues2 = {{L"b", L"id7"}};
    record.cloudLasLayerValues3 = {{L"b", L"p1"}};
    window_.TakeRecord(record);
    EXPECT_THAT(LayerNames(), ElementsAre(L"b", L"b (2)", L"Cloud LAS_Layer"));
    EXPECT_EQ(window_.LastRecordCounts().cloudLayers, 3U);
    const LayerFile& picked = window_.CurrentProject().layers[1].files.at(0);
    EXPECT_EQ(picked.path, L"https://h/B.las");
    EXPECT_EQ(picked.cloud, (CloudInfo{false, L"id7", L"p1"}));

    const QModelIndex layer = Tree().index(2, 0);
    const QModelIndex file = Tree().index(0, 0, layer);
    EXPECT_EQ(file.data(), "One.laz");
    EXPECT_TRUE(file.data(Qt::ToolTipRole).toString().contains("store.example"));
    EXPECT_FALSE(Action("showInFolder").isEnabled());
    Action("copyPath").trigger();
    for (const QString& text : {file.data(Qt::ToolTipRole).toString(), layer.data(Qt::ToolTipRole).toString(),
                                QApplication::clipboard()->text(), window_.LastRecord()}) {
        EXPECT_FALSE(text.contains("5ec4e7"));
        EXPECT_TRUE(text.contains("https://store.example/")) << text.toStdString();
    }
    Action("undo").trigger();
    EXPECT_TRUE(window_.CurrentProject().IsEmpty());
}

TEST_F(CloudLayersTest, NamesAndUrlsOfOthersTellNoSecretsAndForgeNoLines) {
    Record record;
    record.cloudLasLayers = {{L"a\n  b", L"https://me:5ec4e7@h/One.laz;sig=5ec4e7"}};
    record.cloudLasLayerValues2 = {{L"a\n  b", L"id\n  forged"}};
    record.cloudLasLayerValues3 = {{L"a\n  b", L"p\n  forged"}};
    window_.TakeRecord(record);
    EXPECT_EQ(Tree().index(0, 0, Tree().index(0, 0)).data(), "One.laz");
    EXPECT_FALSE(window_.LastRecord().contains("\n  b"));
    EXPECT_FALSE(window_.LastRecord().contains("\n  forged"));
    record.cloudLasLayers = {{L"c", L"https://me:5ec4e7@h"}};
    window_.TakeRecord(record);
    EXPECT_EQ(Tree().index(0, 0, Tree().index(1, 0)).data(), "h");
}

TEST_F(CloudLayersTest, AKnownUrlIsLeftOutAndAKnownNameGetsANumber) {
    Record first;
    first.presignedUrlLayers = {{L"Cloud LAS_Layer", kSigned}};
    window_.TakeRecord(first);
    Record second;
    second.presignedUrlLayers = {{L"Cloud LAS_Layer", L"https://h/other.las"}};
    second.cloudLasLayers = {{L"again", kSigned}};
    window_.TakeRecord(second);
    EXPECT_THAT(LayerNames(), ElementsAre(L"Cloud LAS_Layer", L"Cloud LAS_Layer (2)"));
    const QString told = window_.LastRecord();
    EXPECT_TRUE(told.contains("Cloud LAS_Layer (2)"));
    EXPECT_TRUE(told.contains(HostText(text::kLeftOutInProject)));
    EXPECT_FALSE(told.contains("5ec4e7"));
    EXPECT_TRUE(report_.contains("Cloud LAS_Layer (2)")) << "the dialog could not tell";
    EXPECT_FALSE(report_.contains("store.example")) << "the dialog has told";
}

// A service signs the links of each listing anew.
TEST_F(CloudLayersTest, ALayerThatIsPickedAgainKeepsItsPlaceAndGetsTheNewLink) {
    const auto pick = [&](const wchar_t* url) {
        Record record;
        record.cloudLasLayers = {{L"a", url}};
        record.cloudLasLayerValues2 = {{L"a", L"id7"}};
        record.cloudLasLayerValues3 = {{L"a", L"p1"}};
        window_.TakeRecord(record);
    };
    pick(L"https://h/a.las?X-Amz-Signature=1");
    pick(L"https://h/a.las?X-Amz-Signature=2");
    pick(L"https://other/a.las?X-Amz-Signature=3");
    EXPECT_THAT(LayerNames(), ElementsAre(L"a", L"a (2)"));
    EXPECT_EQ(window_.CurrentProject().layers[0].files.at(0).path, L"https://h/a.las?X-Amz-Signature=2");
}

// Whoever can read a signed URL can read the layer.
TEST_F(CloudLayersTest, TheProjectFileKeepsUrlsExactlyAndSignedOnesForItsUser) {
    const QString where = window_.ProjectFolder();
    const auto others = [&] {
        return fs::status(ToPath(ToWide(where)) / kProjectFileName).permissions() &
               (fs::perms::group_all | fs::perms::others_all);
    };
    const fs::perms usual = others();
    QString problem;
    for (const wchar_t* url : {L"https://h/B.las", kSigned}) {
        Project project;
        project.layers = {{L"\u00fc", "", {{url, {}}}, LayerKind::Cloud}};
        project.layers[0].files[0].cloud = {url == kSigned, L"id", L"p"};
        ASSERT_TRUE(SaveProject(where, project, problem)) << problem.toStdString();
        EXPECT_EQ(LoadProject(where, problem), project);
        const bool knowsUsers = fs::path::preferred_separator == '/';
        EXPECT_EQ(others(), url == kSigned && knowsUsers ? fs::perms::none : usual) << ToUtf8(url);
    }
}

TEST_F(CloudLayersTest, TheAccountIsThatOfTheEnvironmentElseTheChosenOneElseTheSample) {
    const fs::path sample = EnsureSampleAccount(folder_.Path() / "sample");
    ASSERT_FALSE(sample.empty());
    preferences_.sampleAccount = ToQString(FromPath(sample));
    folder_.Write(L"token.txt", "s3cret \n");
    const QString tokenFile = ToQString(folder_.Name(L"token.txt"));
    const QString away = ToQString(folder_.Name(L"away"));
    const struct {
        const char* what;
        const char* account;
        QString token, tokenFile;
        std::optional<QString> chosen;
        std::wstring service, userName, sent;  ///< of the account; no service: nobody is signed in
    } cases[] = {
        {"nothing chosen", "", "t", {}, {}, FromPath(sample), Text(text::kSampleAccount), L""},
        {"signed out", "", "t", {}, "", L"", L"", L""},
        {"chosen", "", "t", {}, "https://h:1/p", L"https://h:1/p", L"h", L""},
        {"on a drive that is not there", "", "t", {}, away, ToWidePath(away), L"away", L""},
        {"environment", "http://me:pw@h/p/?q=1#f", " t ", tokenFile, "", L"http://h/p", L"h", L"t"},
        {"token file", "https://h", "", tokenFile, "", L"https://h", L"h", L"s3cret"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        qputenv("ORVEX_CLOUD_ACCOUNT", c.account);
        qputenv("ORVEX_CLOUD_TOKEN", c.token.toUtf8());
        qputenv("ORVEX_CLOUD_TOKEN_FILE", c.tokenFile.toUtf8());
        preferences_.cloudService = c.chosen;
        const CloudAccount account = AccountAtStart(preferences_).value_or(CloudAccount());
        EXPECT_EQ(account.service, c.service);
        EXPECT_EQ(account.userName, c.userName);
        EXPECT_EQ(account.token, c.sent);
        EXPECT_FALSE(qEnvironmentVariableIsSet("ORVEX_CLOUD_TOKEN")) << "for programs that are started";
    }
    qputenv("ORVEX_CLOUD_TOKEN_FILE", "/nowhere");
    EXPECT_THROW(AccountAtStart(preferences_), LDataError);
    qputenv("ORVEX_CLOUD_ACCOUNT", "ftp://h");
    EXPECT_THROW(AccountAtStart(preferences_), LDataError);
    for (const char* name : {"ORVEX_CLOUD_ACCOUNT", "ORVEX_CLOUD_TOKEN", "ORVEX_CLOUD_TOKEN_FILE"}) {
        qunsetenv(name);
    }
}

TEST_F(CloudLayersTest, TheDialogSignsInAndOutAndKeepsTheToken) {
    const auto run = [&](const std::optional<CloudAccount>& now, const char* service, const char* token) {
        CloudAccountDlg dialog(preferences_, now, nullptr);
        dialog.findChild<QComboBox*>("service")->setEditText(service);
        dialog.findChild<QLineEdit*>("token")->setText(token);
        dialog.findChild<QPushButton*>("signIn")->click();
        return dialog.Account().value();
    };
    const CloudAccount first = run(std::nullopt, "https://a", "t");
    EXPECT_EQ(first.token, L"t");
    EXPECT_EQ(run(first, "https://a/", "").token, L"t") << "of the same service";
    EXPECT_EQ(run(first, "https://b", "").token, L"") << "of another service";
    CloudAccountDlg dialog(preferences_, first, nullptr);
    dialog.findChild<QPushButton*>("signOut")->click();
    EXPECT_FALSE(dialog.Account());
    window_.SetAccount(first);
    EXPECT_EQ(window_.findChild<QLabel*>("signedIn")->text(), HostText(text::kStatusSignedIn, {L"a"}));
    window_.SetAccount(std::nullopt);
    EXPECT_EQ(window_.findChild<QLabel*>("signedIn")->text(), HostText(text::kStatusSignedOut));
}

TEST_F(CloudLayersTest, EveryLayerOfTheSampleAccountHasAFile) {
    const fs::path account = EnsureSampleAccount(folder_.Path() / "sample");
    const auto json = [&](const fs::path& path) {
        return QJsonDocument::fromJson(QByteArray::fromStdString(testing::ReadFile(FromPath(path)))).object();
    };
    int layers = 0;
    for (const auto& project : json(account / "projects.json")["projects"].toArray()) {
        const std::string id = project.toObject()["id"].toString().toStdString();
        for (const auto& layer : json(account / "projects" / (id + ".json"))["layers"].toArray()) {
            ++layers;
            EXPECT_TRUE(fs::exists(account / layer.toObject()["url"].toString().toStdString()));
        }
    }
    EXPECT_EQ(layers, 8);
}

}  // namespace
}  // namespace orvex
