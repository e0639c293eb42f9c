// What the photo page has of its own; PhotoPageContractTest.cpp has what it shares with the other pages.
#include <gmock/gmock.h>

#include <QLineEdit>
#include <QTextEdit>

#include "dialog/testing/PageFixture.h"
#include "photo/page/AddPhotoFilesPP.h"
#include "photo/page/tests/PhotoFile.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using testing::FakeLayer;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kAppend = 521;
constexpr int kLayer = 523;
constexpr int kBrowse = 524;

const std::set<std::wstring> kFields{L"TimeUTC",    L"Latitude", L"Longitude", L"Altitude",
                                     L"MasterTick", L"CameraID", L"PhotoPath"};

class PhotoPage : public testing::PageFixture {
  protected:
    PhotoPage() : PageFixture(testing::MakePage<AddPhotoFilesPP>) {
        hostObjects.projectFolder = folder.Name({});
        hostObjects.photoFolder = folder.Name(L"Photos");
    }

    /// The texts of the messages since the last call.
    std::vector<std::wstring> Told() {
        std::vector<std::wstring> texts;
        for (const Prompt& prompt : std::exchange(prompts.shown, {})) {
            texts.push_back(prompt.text);
        }
        return texts;
    }
    void NameLayer(const QString& path) const {
        Check(kAppend);
        Find<QLineEdit>(kLayer)->setText(path);
    }

    const std::wstring a = testing::WritePhoto(folder, L"a.jpg");
    const std::wstring b = testing::WritePhoto(folder, L"b.jpg", 8.51);
};

TEST_F(PhotoPage, PhotosGoToANewLayerInTheOrderShown) {
    const std::wstring bare = testing::WritePhoto(folder, L"c.jpg", 0, 0, 0);
    page->AddPaths({a, bare, folder.Write(L"broken.jpg", "no photo"), b});
    EXPECT_THAT(Told(), IsEmpty());
    EXPECT_EQ(Shown("summary")[0], Text(text::kTruePosePhoto));
    Model().sort(ColumnNamed("fileName"), Qt::DescendingOrder);
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.photoFiles, ElementsAre(bare, b, a)) << "without the one that was not read";
    EXPECT_EQ(params.photoLayer, L"");
    EXPECT_FALSE(params.photoReplaceExisting);
    EXPECT_THAT(Told(),
                ElementsAre(Text(text::kPhotoIncompletePositionQuestion), Text(text::kPhotosTakenOver)));
}

TEST_F(PhotoPage, WithoutPhotosToLoadNothingIsAsked) {
    hostObjects.projectFolder.clear();
    page->AddPaths({folder.Write(L"broken.jpg", "no photo")});
    EXPECT_THAT(Told(), ElementsAre(Text(text::kPhotoMetadataReadFailed)));
    ASSERT_TRUE(Press("ok"));
    EXPECT_THAT(params.photoFiles, IsEmpty());
    EXPECT_THAT(Told(), IsEmpty());
}

TEST_F(PhotoPage, TheProjectHasToHaveAPlaceForPhotos) {
    using Host = testing::FakeHostObjects;
    const struct {
        const char* what;
        void (*change)(Host& host);
        std::optional<StringId> refusal;
    } cases[] = {
        {"no application", [](Host& host) { host.createApplicationResult = kHostFail; },
         text::kPhotoProjectFolderMissing},
        {"no folder", [](Host& host) { host.projectFolder.clear(); }, text::kPhotoProjectFolderMissing},
        {"folder fails", [](Host& host) { host.projectFolderResult = kHostFail; },
         text::kPhotoProjectFolderMissing},
        {"no target", [](Host& host) { host.photoFolder.clear(); }, text::kPhotoTargetMissing},
        {"target fails", [](Host& host) { host.photoFolderResult = kHostFail; }, text::kPhotoTargetMissing},
        {"no project", [](Host& host) { host.projectResult = kHostFail; }, text::kPhotoTargetMissing},
        {"a host that knows no photo layers", [](Host& host) { host.projectResult = kHostNotImplemented; },
         std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Open();
        page->AddPaths({a});
        const auto usual = std::tuple(hostObjects.createApplicationResult, hostObjects.projectFolder,
                                      hostObjects.projectFolderResult, hostObjects.photoFolder,
                                      hostObjects.photoFolderResult, hostObjects.projectResult);
        c.change(hostObjects);
        EXPECT_EQ(Press("ok"), !c.refusal.has_value());
        EXPECT_THAT(Told(), ElementsAre(Text(c.refusal.value_or(text::kPhotosTakenOver))));
        EXPECT_EQ(params.photoFiles.empty(), c.refusal.has_value());
        std::tie(hostObjects.createApplicationResult, hostObjects.projectFolder,
                 hostObjects.projectFolderResult, hostObjects.photoFolder, hostObjects.photoFolderResult,
                 hostObjects.projectResult) = usual;
    }
}

TEST_F(PhotoPage, AnExistingLayerIsOpenedTestedAndAskedAbout) {
    using enum PromptAnswer;
    const std::wstring there = folder.Write(L"there.shp", "x");
    const std::wstring none = folder.Name(L"none.shp");
    FakeLayer full;
    full.photos = {b};
    const auto withFields = [](std::int32_t type, std::set<std::wstring> fields) {
        FakeLayer layer;
        layer.isPhotoLayer = false;
        layer.geometryType = type;
        layer.fields = std::move(fields);
        return layer;
    };
    std::set<std::wstring> lessOne = kFields;
    lessOne.erase(L"PhotoPath");
    FakeLayer silent = withFields(kPointLayer, kFields);
    silent.result = kHostFail;
    const struct {
        const char* what;
        QString path;
        std::optional<FakeLayer> layer;
        std::optional<PromptAnswer> answer;
        StringId told;
        bool closes;
        bool replaces = false;
    } cases[] = {
        {"a photo layer", "  /p/l.shp ", FakeLayer(), {}, text::kPhotosTakenOver, true},
        {"points", "/p/l.shp", withFields(0x10002, kFields), {}, text::kPhotosTakenOver, true},
        {"points with Z", "/p/l.shp", withFields(0x10006, kFields), {}, text::kPhotosTakenOver, true},
        {"lines", "/p/l.shp", withFields(0x10004, kFields), {}, text::kPhotoLayerFieldsMissing, false},
        {"a field less", "/p/l.shp", withFields(0x10002, lessOne), {}, text::kPhotoLayerFieldsMissing, false},
        {"silent", "/p/l.shp", silent, {}, text::kPhotoLayerFieldsMissing, false},
        {"holds one: replace", "/p/l.shp", full, Yes, text::kPhotoReplaceQuestion, true, true},
        {"holds one: keep", "/p/l.shp", full, No, text::kPhotoReplaceQuestion, true},
        {"holds one: back", "/p/l.shp", full, Cancel, text::kPhotoReplaceQuestion, false},
        {"no name", "  ", {}, {}, text::kPhotoLayerUnusable, false},
        {"cannot be opened", ToQString(there), {}, {}, text::kPhotoLayerUnusable, false},
        {"to be made", ToQString(none), {}, Yes, text::kPhotoCreateLayerQuestion, true},
        {"not to be made", ToQString(none), {}, No, text::kPhotoCreateLayerQuestion, false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Open();
        hostObjects.layers.clear();
        if (c.layer.has_value()) {
            hostObjects.layers[L"/p/l.shp"] = *c.layer;
        }
        page->AddPaths({a, b});
        NameLayer(c.path);
        prompts.answers.clear();
        if (c.answer.has_value()) {
            prompts.answers.push_back(*c.answer);
        }
        EXPECT_EQ(Press("ok"), c.closes);
        EXPECT_EQ(Told().front(), Text(c.told));
        EXPECT_EQ(params.photoLayer, c.closes ? ToWide(c.path.trimmed()) : L"");
        EXPECT_EQ(params.photoReplaceExisting, c.replaces);
        EXPECT_EQ(params.photoFiles.size(), c.closes ? 2U : 0U);
    }
    hostObjects.projectResult = kHostNotImplemented;
    Open();
    page->AddPaths({a});
    NameLayer("/p/l.shp");
    EXPECT_FALSE(Press("ok")) << "nobody can open the layer";
    EXPECT_THAT(Told(), ElementsAre(Text(text::kPhotoLayerUnusable)));
}

TEST_F(PhotoPage, PhotosWithoutACompletePositionAreSelectedWhenTheyAreNotWanted) {
    page->AddPaths({a, testing::WritePhoto(folder, L"low.jpg", 8, 47, 0), b,
                    testing::WritePhoto(folder, L"none.jpg", 0, 0, 0),
                    testing::WritePhoto(folder, L"meridian.jpg", 0, 47, 500)});
    prompts.answers = {PromptAnswer::No};
    EXPECT_FALSE(Press("ok"));
    EXPECT_THAT(Told(), ElementsAre(Text(text::kPhotoIncompletePositionQuestion)));
    EXPECT_THAT(Grid().SelectedRows(), ElementsAre(1, 3));
    EXPECT_THAT(params.photoFiles, IsEmpty());
}

TEST_F(PhotoPage, TheLayersFieldIsUsableWhileItsBoxIsTicked) {
    EXPECT_FALSE(Enabled(kLayer) || Enabled(kBrowse));
    Check(kAppend);
    EXPECT_TRUE(Enabled(kLayer) && Enabled(kBrowse));
    pickers.files = {{PickOutcome::Picked, {L"/p/photos.shp"}}};
    Click(kBrowse);
    EXPECT_EQ(pickers.asked.back().filters.front().patterns, L"*.shp");
    EXPECT_EQ(Find<QLineEdit>(kLayer)->text(), "/p/photos.shp");
    Click(kBrowse);
    EXPECT_EQ(Find<QLineEdit>(kLayer)->text(), "/p/photos.shp") << "cancelled";
}

TEST_F(PhotoPage, RgbFilesArePickedAndFoundInFoldersButNotDropped) {
    const std::wstring rgb = folder.Write(L"in/a.rgb", "x");
    Drop({rgb});
    EXPECT_EQ(Model().rowCount(), 0);
    pickers.files = {{PickOutcome::Picked, {rgb}}};
    Click(511);
    EXPECT_EQ(Model().rowCount(), 1);
    page->Release();
    Drop({folder.Name(L"in")});
    EXPECT_EQ(Model().rowCount(), 1);
}

TEST_F(PhotoPage, DetailsSayWhatKeepsAPhotoFromATruePose) {
    page->AddPaths({a, testing::WritePhoto(folder, L"low.jpg", 8, 47, 0)});
    const auto* overview = Find<QTextEdit>("photoOverview");
    const std::wstring whyNot = Text(text::kPhotoNotTruePose);
    Grid().SelectRows({0});
    EXPECT_THAT(ToWide(overview->toPlainText()), ::testing::Not(HasSubstr(whyNot)));
    EXPECT_THAT(ToWide(overview->toPlainText()), HasSubstr(L"47.25000000"));
    EXPECT_TRUE(QTest::qWaitFor([&] {
        return ToWide(overview->toPlainText()).find(Text(text::kPreviewNone)) != std::wstring::npos;
    }));
    Grid().SelectRows({1});
    EXPECT_THAT(ToWide(overview->toPlainText()), HasSubstr(whyNot));
    EXPECT_THAT(ToWide(Find<QTextEdit>("photoCrs")->toPlainText()), HasSubstr(L"4326"));
    Grid().SelectAll();
    EXPECT_THAT(ToWide(overview->toPlainText()), HasSubstr(Text(text::kTotalsTruePosePhotos)));
}

}  // namespace
}  // namespace orvex
