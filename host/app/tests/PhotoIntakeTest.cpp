// Photos of a record: into the photo layer, the project, and onto the map.
#include <gmock/gmock.h>
#include <ogrsf_frmts.h>

#include <QAction>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <cmath>

#include "host/app/HostText.h"
#include "host/app/HostWindow.h"
#include "host/app/MapView.h"
#include "host/app/PhotoCard.h"
#include "host/app/PhotoJobs.h"
#include "host/app/ProjectFile.h"
#include "host/app/RecordFiles.h"
#include "host/app/RecordIntake.h"
#include "host/app/SampleProject.h"
#include "host/objects/HostClasses.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Files.h"
#include "support/QtText.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;

/// Photos of a sample project, made once: eight with full pose, one with a position, one without.
class SamplePhotos : public ::testing::Test {
  protected:
    static std::wstring Path(const std::wstring& name) {
        static const TemporaryFolder folder;
        static const std::filesystem::path project = EnsureSampleProject(folder.Path() / "sample");
        return FromPath(SampleData(project) / "photos" / ToPath(name));
    }
    static std::wstring Placed(int number) {
        return Path(L"strip " + std::to_wstring(number > 4 ? 2 : 1) + L" photo " + std::to_wstring(number) +
                    L".jpg");
    }

    TemporaryFolder folder_;
};

using PhotoMetadataTest = SamplePhotos;

TEST_F(PhotoMetadataTest, IsWhatTheLayerNeeds) {
    testing::RecordingProgress progress;
    const std::wstring bad = folder_.Write(L"bad.jpg", "no photo");
    const ReadPhotos read =
        ReadPhotoMetadata({Placed(2), Path(L"position only.jpg"), bad, Path(L"no position.jpg")}, progress);
    ASSERT_EQ(read.photos.size(), 3U);
    const PhotoRecord& pose = read.photos[0];
    EXPECT_EQ(pose.path, Placed(2));
    ASSERT_TRUE(pose.position);
    EXPECT_NEAR((*pose.position)[0], 9.1665, 0.001);
    EXPECT_NEAR((*pose.position)[1], 48.78096, 0.0001);
    EXPECT_EQ((*pose.position)[2], 520);
    EXPECT_EQ(pose.heading, 90);
    EXPECT_EQ(pose.timeUtc, L"2024-05-01 08:20:12");
    EXPECT_EQ(pose.camera, L"Camera 1");
    EXPECT_TRUE(read.photos[1].position);
    EXPECT_FALSE(read.photos[1].heading);
    EXPECT_FALSE(read.photos[2].position);
    ASSERT_EQ(read.failures.size(), 1U);
    EXPECT_EQ(read.failures[0].path, bad);
    EXPECT_NE(read.failures[0].cause, L"");
    EXPECT_EQ(progress.position, 4U);
}

TEST_F(PhotoMetadataTest, PositionsOfOtherDatumsBecomeWgs84) {
    std::string wkt = OrvexUtilities::CrsGetPrettyWktFromEPSG(4267);
    for (std::size_t at = 0; (at = wkt.find('"', at)) != std::string::npos; at += 6) {
        wkt.replace(at, 1, "&quot;");
    }
    const std::string xmp = std::string("http://ns.adobe.com/xap/1.0/\0", 29) +
                            "<x:xmpmeta xmlns:x=\"adobe:ns:meta/\"><rdf:RDF "
                            "xmlns:rdf=\"http://www.w3.org/1999/02/22-rdf-syntax-ns#\"><rdf:Description "
                            "xmlns:p=\"http://orvex.com/photo/1.0/\" p:GPSLongitude=\"-100\" "
                            "p:GPSLatitude=\"40\" p:GeographicWKT=\"" +
                            wkt + "\"/></rdf:RDF></x:xmpmeta>";
    const std::size_t size = xmp.size() + 2;
    const std::string header = {'\xFF', '\xE1', static_cast<char>(size >> 8U),
                                static_cast<char>(size & 0xFFU)};
    std::string photo = testing::ReadFile(Path(L"no position.jpg"));
    photo.insert(2, header + xmp);
    testing::RecordingProgress progress;
    const ReadPhotos read = ReadPhotoMetadata({folder_.Write(L"nad27.jpg", photo)}, progress);
    ASSERT_EQ(read.photos.size(), 1U);
    ASSERT_TRUE(read.photos[0].position);
    EXPECT_NEAR((*read.photos[0].position)[0], -100.00038, 0.0001) << "some 30 m to the west";
}

TEST_F(SamplePhotos, StoppingTheReadingWritesNothing) {
    struct : testing::RecordingProgress {
        bool IsCancelled() override { return position >= 64; }
    } progress;
    const PhotoImport import =
        ImportPhotos(std::vector<std::wstring>(100, Placed(1)), {folder_.Name(L"a.shp")}, progress);
    EXPECT_TRUE(import.layer.stopped);
    EXPECT_EQ(progress.position, 64U);
    EXPECT_TRUE(import.files.empty());
    EXPECT_EQ(folder_.Entries(), 0U);
}

TEST_F(SamplePhotos, ALayerIsNamedInManyWays) {
    const std::wstring project = folder_.Name(L"project");
    const std::wstring inPhotos = NativePath(project + L"/Photos/flight 1.shp");
    const struct {
        std::wstring typed;
        std::wstring path;
    } cases[] = {
        {L"flight 1", inPhotos},
        {L"flight 1.SHP", NativePath(project + L"/Photos/flight 1.SHP")},
        {L"<ORVEX_PROJECT_PATH>\\Photos\\flight 1.shp", inPhotos},
        {folder_.Name(L"v1.2"), folder_.Name(L"v1.2.shp")},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(PhotoLayerPath(c.typed, project), c.path) << ToUtf8(c.typed);
    }
    EXPECT_EQ(PhotoFolderOf(L""), L"");
}

class PhotoIntakeTest : public SamplePhotos {
  protected:
    PhotoIntakeTest() {
        window_.OpenProject(ToQString(project_));
        // Reports of what was left out are closed.
        QObject::connect(&closing_, &QTimer::timeout, &closing_, [] {
            if (QWidget* report = QApplication::activeModalWidget()) {
                report->close();
            }
        });
        closing_.start(1);
    }
    const Layer& PhotoLayer() const { return window_.CurrentProject().layers.at(0); }
    static std::size_t RecordsIn(const std::wstring& path) {
        const GDALDatasetUniquePtr dataset(GDALDataset::Open(ToUtf8(path).c_str(), GDAL_OF_VECTOR));
        return dataset == nullptr ? 0 : static_cast<std::size_t>(dataset->GetLayer(0)->GetFeatureCount());
    }
    bool Tells(const std::wstring& text) const { return window_.LastRecord().contains(ToQString(text)); }

    const std::wstring project_ = folder_.Name(L"project");
    const std::wstring layer_ = JoinPath(PhotoFolderOf(project_), Text(text::kDefaultPhotoLayer) + L".shp");
    PrivateSettings settings_{ToPath(folder_.Name(L"settings"))};
    HostPreferences preferences_{QString()};
    HostWindow window_{preferences_};
    QTimer closing_;
};

TEST_F(PhotoIntakeTest, ANewLayerThenMoreOfIt) {
    AddFilesParams record;
    record.photoFiles = {Placed(1), Path(L"no position.jpg"), Placed(2), folder_.Name(L"gone.jpg")};
    window_.TakeRecord(record);
    EXPECT_EQ(PhotoLayer().kind, LayerKind::Photo);
    EXPECT_EQ(PhotoLayer().name, Text(text::kDefaultPhotoLayer));
    ASSERT_EQ(PhotoLayer().files.size(), 3U) << "a photo without a position is in the project all the same";
    EXPECT_EQ(RecordsIn(layer_), 2U);
    EXPECT_TRUE(Tells(Text(text::kPhotoWithoutPosition)));
    EXPECT_TRUE(Tells(L"gone.jpg"));
    EXPECT_TRUE(Tells(FormatText(Text(text::kRecordPhotoFiles), {4})));
    QString problem;
    EXPECT_EQ(LoadProject(ToQString(project_), problem), window_.CurrentProject());

    // The layer has the second; the project gets the third only.
    record.photoFiles = {Placed(2), Placed(3)};
    record.photoLayer = Text(text::kDefaultPhotoLayer);
    window_.TakeRecord(record);
    EXPECT_EQ(PhotoLayer().files.size(), 4U);
    EXPECT_EQ(RecordsIn(layer_), 3U);
    EXPECT_TRUE(Tells(Text(text::kPhotoInLayerAlready)));

    // What the project knows of a photo is replaced with its record.
    Project changed = window_.CurrentProject();
    record.photoFiles = {Placed(2)};
    record.photoReplaceExisting = true;
    changed.layers[0].files[2].photo.heading = 1;
    const IntakeResult result = RecordIntake(changed, ToQString(project_), true, &window_).Take(record);
    EXPECT_EQ(result.places, (FilePlaces{{0, 2}}));
    EXPECT_EQ(result.mainLayer, 0U);
    EXPECT_EQ(changed, window_.CurrentProject());
    EXPECT_EQ(RecordsIn(layer_), 3U);

    window_.findChild<QAction*>("undo")->trigger();
    EXPECT_EQ(PhotoLayer().files.size(), 3U);
}

TEST_F(PhotoIntakeTest, ALayerThatCannotBeWrittenLeavesThePhotosOut) {
    folder_.Write(L"project/Photos/other.shp", "no shapefile");
    AddFilesParams record;
    record.photoFiles = {Placed(1), Placed(2)};
    record.photoLayer = L"other.shp";
    window_.TakeRecord(record);
    EXPECT_TRUE(window_.CurrentProject().IsEmpty());
    EXPECT_TRUE(Tells(Placed(1)));
    EXPECT_TRUE(Tells(L"other.shp"));
    EXPECT_EQ(testing::ReadFile(folder_.Name(L"project/Photos/other.shp")), "no shapefile");
}

class PhotoMapTest : public SamplePhotos {
  protected:
    void Show(const std::vector<LayerFile>& files) {
        project_.layers = {{L"photos", "", files, LayerKind::Photo}};
        view_.resize(400, 300);
        view_.show();
        view_.ShowCrs("");
    }
    static LayerFile Photo(const std::wstring& path, double longitude, double latitude) {
        LayerFile file;
        file.path = path;
        file.photo = {{{longitude, latitude, 0}}, 90, L"2024-05-01 08:20:12"};
        return file;
    }
    void Hover(const QPoint& pixel) {
        QMouseEvent move(QEvent::MouseMove, pixel, view_.viewport()->mapToGlobal(pixel), Qt::NoButton,
                         Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(view_.viewport(), &move);
        EXPECT_TRUE(QTest::qWaitFor([this] { return !view_.IsLoading(); }));
        QApplication::processEvents();
    }
    /// Pixels of a part of the map that differ from another picture of it.
    int Changed(const QImage& before, const QRect& part) {
        const QImage now = view_.grab().toImage();
        int changed = 0;
        for (int y = part.top(); y <= part.bottom(); ++y) {
            for (int x = part.left(); x <= part.right(); ++x) {
                changed += now.pixel(x, y) != before.pixel(x, y) ? 1 : 0;
            }
        }
        return changed;
    }

    Project project_;
    MapView view_{project_};
};

TEST_F(PhotoMapTest, PhotosArePointsWithACardUnderTheCursor) {
    Show({Photo(Placed(1), 9, 48),
          Photo(folder_.Write(L"bad.jpg", "no photo"), 9.002, 48),
          {Path(L"no position.jpg"), {}}});
    const QImage before = view_.grab().toImage();
    // The first lies at the left edge of what fits, in the middle of its height, and looks east.
    const QRect east(45, 146, 10, 8);
    const QRect west(20, 140, 14, 20);
    EXPECT_GT(Changed(QImage(400, 300, before.format()), east), 0);
    EXPECT_NE(before.pixel(49, 150), before.pixel(30, 150)) << "a wedge to the east, none to the west";

    const QRect card(60, 20, 200, 120);
    Hover({40, 150});
    EXPECT_GT(Changed(before, card), 10000) << "the preview covers it";
    Hover({200, 20});
    EXPECT_EQ(Changed(before, card), 0);
    Hover({360, 150});
    EXPECT_GT(Changed(before, QRect(240, 170, 100, 40)), 0) << "left of the place, where there is room";
    EXPECT_EQ(Changed(before, west), 0);
}

TEST_F(PhotoMapTest, OnePhotoAloneIsSeenWithItsSurroundings) {
    Show({Photo(Placed(1), 9, 48)});
    EXPECT_NEAR(view_.mapToScene(QPoint(400, 150)).x() - view_.mapToScene(QPoint(0, 150)).x(), 0.002, 0.001);
}

TEST_F(SamplePhotos, APreviewIsTheOneInTheFile) {
    const auto never = [] { return false; };
    const Thumbnail preview = ReadPhotoPreview(Placed(1), never, {});
    EXPECT_EQ(preview.image.size(), QSize(200, 150));
    const Thumbnail none = ReadPhotoPreview(folder_.Write(L"bad.jpg", "no photo"), never, {});
    EXPECT_TRUE(none.image.isNull());
    EXPECT_EQ(none.problem, HostText(text::kPreviewNone));
}

}  // namespace
}  // namespace orvex
