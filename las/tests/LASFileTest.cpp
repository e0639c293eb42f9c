#include "las/LASFile.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <tuple>

#include "las/LasPointViews.h"
#include "las/LasRow.h"
#include "las/companion/QvrFile.h"
#include "las/testing/LasFiles.h"
#include "support/Files.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::FailureToOpen;
using testing::LasBuilder;

class LASFileTest : public ::testing::Test {
  protected:
    const testing::LasFolder folder_{};
};

TEST_F(LASFileTest, NamesTheFileThatCannotBeOpened) {
    const std::wstring shortFile = folder_.Write(L"short.las", std::string(226, 'x'));
    for (const bool readOnly : {true, false}) {
        EXPECT_EQ(FailureToOpen(shortFile, readOnly), L"ReadHeaderBlock failed on '" + shortFile + L"'.");
    }
    // A message never outgrows its buffer of 515 characters.
    const std::wstring longName = L"/" + std::wstring(600, L'n');
    EXPECT_EQ(FailureToOpen(longName), (L"'" + longName).substr(0, 514));
}

// Half a field is no field; the view of a file that is written to holds the whole header or the legacy one.
TEST_F(LASFileTest, ReadsTheHeaderThatATruncatedFileHas) {
    const LasBuilder whole = LasBuilder(14, 6).AddPoints(3).Lie<std::uint64_t>(227, 77);
    const struct {
        std::size_t length;
        bool readOnly;
        std::uint64_t waveformStart, points;
    } cases[] = {{227, true, 0, 0},  {229, true, 0, 0},  {235, true, 77, 0},
                 {255, true, 77, 3}, {374, false, 0, 0}, {375, false, 77, 3}};
    for (const auto& c : cases) {
        const auto file = folder_.Open(LasBuilder(whole).Cut(c.length), c.readOnly);
        EXPECT_EQ(file->Header().WaveformStart(), c.waveformStart) << c.length;
        EXPECT_EQ(file->GetPointCount(), c.points) << c.length;
    }
}

TEST_F(LASFileTest, FindsTheWktInVlrsThenEvlrs) {
    const auto wktOf = [&](const LasBuilder& builder) {
        const auto file = folder_.Open(builder);
        const auto data = file->FindWKT();
        EXPECT_EQ(data.has_value(), file->HasProjectionRecords());
        return data ? std::string(reinterpret_cast<const char*>(data->data())) : "none";
    };
    EXPECT_EQ(wktOf(LasBuilder(14, 6).AddPoints(1).Wkt("second", true)), "second");
    EXPECT_EQ(wktOf(LasBuilder(14, 6).AddPoints(1).Wkt("second", true).Wkt("first")), "first");
    EXPECT_EQ(wktOf(LasBuilder().AddVlr("liblas", 2112, "text")), "none");
}

TEST_F(LASFileTest, SharesVlrsWithFilesThatHaveTheSame) {
    const auto tile = [](std::size_t points) {
        return LasBuilder(14, 6).AddPoints(points).AddVlr("a", 1, "one").AddVlr("b", 2, "two");
    };
    const auto first = folder_.Open(tile(1));
    EXPECT_EQ(&folder_.Open(tile(7))->GetVLRs(), &first->GetVLRs());
    const auto fewer = folder_.Open(tile(1).Lie(las::at::kVlrCount, std::uint32_t{1}));
    EXPECT_EQ(fewer->GetVLRs().size(), 1U);
    EXPECT_EQ(first->GetVLRs().size(), 2U);
    const auto later = folder_.Open(tile(1).HeaderSize(376));
    EXPECT_EQ(later->GetVLRs().front().FileOffset(), 376U);
    // The same up to the end of the file, which cuts the second record off.
    const auto cut = folder_.Open(tile(1).Cut(375 + 57 + 54));
    EXPECT_TRUE(cut->GetVLRs().back().IsTruncated());
}

TEST_F(LASFileTest, DecodesExtraBytesOfAnyUserId) {
    const std::string descriptor = std::string(2, '\0') + '\x0B' + std::string(189, '\0');
    EXPECT_EQ(FailureToOpen(folder_.Write(LasBuilder().AddVlr("anybody", 4, descriptor))),
              L"GetExtraByteOffsets: '11' is not a valid extra bytes data_type value.");
    EXPECT_EQ(FailureToOpen(folder_.Write(LasBuilder().AddVlr("LASF_Spec", 4, descriptor.substr(1)))), L"");
    const auto raw = folder_.Open(LasBuilder(12, 1).AddExtraBytes("first", 10, 8).AddExtraBytes("raw", 0, 3));
    EXPECT_EQ(raw->GetExtraBytes().Find(L"raw")->offset, 8U);
    EXPECT_EQ(raw->GetExtraBytes().Find(L"raw")->size, 3U);
}

TEST_F(LASFileTest, RecognizesRangeIncidencePhotoIndex) {
    const std::tuple<const char*, int, bool> cases[] = {
        {"LASF_Spec", 4, true}, {"Kst", 4, false}, {"LASF_Spec", 5, false}};
    for (const auto& [userId, id, expected] : cases) {
        const auto file = folder_.Open(LasBuilder().AddVlr(userId, static_cast<std::uint16_t>(id), "",
                                                           "Xtra:range/incidentVec/photoNdx"));
        EXPECT_EQ(file->HasRangeIncidencePhotoIndex(), expected) << userId << id;
    }
}

TEST_F(LASFileTest, DecidesTheCompanionStatus) {
    const auto statusOf = [&](const LasBuilder& builder) {
        return folder_.Open(builder)->GetCompanionStatus();
    };
    const LasBuilder index = LasBuilder(14, 6).AddPoints(1).AddVlr("BrightwellMarsh", 64, "");
    const LasBuilder both = LasBuilder(index).AddEvlr("any", 157, "data");
    EXPECT_EQ(statusOf(LasBuilder().AddVlr("BrightwellMarsh", 65, "")), 0);
    EXPECT_EQ(statusOf(LasBuilder().AddVlr("LASF_Spec", 64, "")), 0);
    EXPECT_EQ(statusOf(index), 3);
    EXPECT_EQ(statusOf(both), 6);
    folder_.Write(L"a.qvr", "");
    EXPECT_EQ(statusOf(both), 2);
    EXPECT_EQ(LASFile::Open(folder_.Write(both, L"b.las"), true, true)->GetCompanionStatus(), 6);
}

TEST_F(LASFileTest, IsConstructedWithACompanionWhenAsked) {
    const std::wstring path = folder_.Write(LasBuilder(12, 0).AddPoints(50));
    const std::wstring qvr = WithExtension(path, L".qvr");
    Kst::NullProgress progress;
    EXPECT_NE(LASFile::Construct(path, {}, progress)->Points(), nullptr);
    EXPECT_FALSE(FileExists(qvr));
    LasConstruction options;
    options.buildQvr = true;
    options.factor = 3;
    const auto file = LASFile::Construct(path, options, progress);
    EXPECT_EQ(file->GetCompanionStatus(), 2);
    EXPECT_EQ(file->Points(), nullptr);
    EXPECT_EQ(QvrFile::Open(qvr)->Index().factor, 3);

    const std::wstring indexed =
        folder_.Write(LasBuilder(14, 6).AddPoints(1).AddEvlr("any", 157, "data"), L"b.las");
    EXPECT_EQ(LASFile::Construct(indexed, options, progress)->GetCompanionStatus(), 6);
    EXPECT_FALSE(FileExists(WithExtension(indexed, L".qvr")));

    testing::RecordingProgress cancel;
    cancel.stopAfter = 0;
    std::filesystem::remove(ToPath(qvr));
    const auto cancelled = LASFile::Construct(path, options, cancel);
    EXPECT_EQ(cancelled->GetCompanionStatus(), 0);
    EXPECT_NE(cancelled->Points(), nullptr);
}

/// Changes a file when its companion is begun. One that is mapped cannot be cut off on every system.
class Toucher final : public testing::RecordingProgress {
  public:
    explicit Toucher(const std::wstring& path) : path_(ToPath(path)) {}
    void SetText(const std::wstring&) override {
        std::filesystem::last_write_time(path_,
                                         std::filesystem::last_write_time(path_) + std::chrono::hours(1));
    }

  private:
    const std::filesystem::path path_;
};

TEST_F(LASFileTest, SaysWhyACompanionCannotBeBuilt) {
    const std::wstring path = folder_.Write(LasBuilder(12, 0).AddPoints(50));
    LasConstruction options;
    options.buildQvr = true;
    const auto expectFailure = [&](Kst::ProgressIf& progress, const std::wstring& reason) {
        try {
            LASFile::Construct(path, options, progress);
            ADD_FAILURE();
        } catch (const LDataError& error) {
            EXPECT_EQ(error.Text(), L"Failed to create qvr file for " + path +
                                        L". Please try increasing thinning factor. \nReason: " + reason);
        }
        EXPECT_FALSE(FileExists(WithExtension(path, L".qvr")));
    };
    Toucher toucher(path);
    expectFailure(toucher, FormatText(Text(text::kQvrSourceChanged), {path}));
    std::filesystem::resize_file(ToPath(path), 600);
    Kst::NullProgress none;
    expectFailure(none,
                  FormatText(Text(text::kQvrSourceTruncated), {path, GroupedNumber(50), GroupedNumber(18)}));
}

TEST_F(LASFileTest, ReadsEvlrsOfLas14Only) {
    LasBuilder las13(13, 1);
    las13.HeaderSize(375).AddPoints(1).Lie<std::uint64_t>(235, 395).Lie<std::uint32_t>(243, 7);
    EXPECT_TRUE(folder_.Open(las13)->GetEVLRs().empty());
    const auto file = folder_.Open(LasBuilder(14, 6).AddEvlr("copc", 1000, "12").AddEvlr("Kst", 9, "ab"));
    ASSERT_EQ(file->GetEVLRs().size(), 2U);
    EXPECT_FALSE(file->GetEVLRs()[0].HasData());
    EXPECT_EQ(file->GetEVLRs()[1].Data()[1], std::byte{'b'});
}

// The system limits a process's descriptors and mappings; a list may have tens of thousands of files.
TEST_F(LASFileTest, HoldsNothingButThePointsAskedFor) {
    const std::wstring path =
        folder_.Write(LasBuilder(14, 6).AddPoints(50).ProjectedEpsg(25832).AddEvlr("Kst", 1, "data"));
    const std::size_t before = testing::OpenHandles();
    const auto listed = LASFile::Open(path, true, true);
    EXPECT_EQ(testing::MappingsOf(path), 0U);
    const auto editable = LASFile::Open(path, false, true);
    EXPECT_EQ(testing::OpenHandles(), before);
    EXPECT_EQ(editable->GetPointCount(), 50U);
    EXPECT_EQ(editable->Maximum(), listed->Maximum());
    EXPECT_EQ(editable->GetVLRs().size(), listed->GetVLRs().size());
    const auto mapped = LASFile::Open(path, true, false);
    ASSERT_NE(mapped->Points(), nullptr);
    EXPECT_EQ(mapped->Points()->PointCount(), 50U);
    EXPECT_GT(testing::OpenHandles(), before) << "a file, and a mapping where that is a thing of its own";
}

// A mapped file that shrinks ends the process that looks at the missing part.
TEST_F(LASFileTest, TellsWhatItReadWhenTheFileHasShrunk) {
    for (const bool readOnly : {true, false}) {
        const std::wstring path =
            folder_.Write(LasBuilder(14, 6).AddPoints(3).Wkt("text").AddEvlr("Kst", 9, "behind"));
        const auto file = LASFile::Open(path, readOnly, true);
        EXPECT_EQ(testing::MappingsOf(path), 0U);
        std::filesystem::resize_file(ToPath(path), 0);
        EXPECT_EQ(file->Header().VersionMinor(), 4);
        EXPECT_EQ(file->FindWKT().value()[0], std::byte{'t'});
        EXPECT_EQ(file->GetEVLRs().at(0).Data()[0], std::byte{'b'});
    }
}

// Older Windows programs are limited to paths of 260 characters.
TEST_F(LASFileTest, ReadsMapsAndDescribesUnderALongPath) {
    const std::wstring deep =
        folder_.Name(std::wstring(140, L'd') + L"/" + std::wstring(110, L'ü') + L"/Süd und West");
    ASSERT_EQ(CreateFolders(deep), 0);
    const std::wstring path = FromPath(ToPath(deep) / "tile.las");
    ASSERT_GT(path.size(), 260U);
    const std::string bytes = LasBuilder(14, 6).AddPoints(7).Wkt("LOCAL_CS[\"site\"]").Build();
    std::ofstream(ToPath(path), std::ios::binary) << bytes;

    const LasRow found = InspectLasFile(path);
    ASSERT_TRUE(found.loadable) << ToUtf8(found.summary);
    EXPECT_EQ(found.path, path);
    EXPECT_EQ(found.fileSize, bytes.size());
    EXPECT_GT(found.modifiedMs, 0);
    EXPECT_EQ(found.crs->name, L"site");
    EXPECT_EQ(found.file->GetCompanionStatus(), 0);
    std::ofstream(ToPath(WithExtension(path, L".qvr")), std::ios::binary) << "companion";
    for (const bool readOnly : {true, false}) {
        const auto file = LASFile::Open(path, readOnly, false);
        EXPECT_EQ(file->GetCompanionStatus(), 2);
        EXPECT_EQ(file->FileName(), path);
        ASSERT_NE(file->Points(), nullptr);
        EXPECT_EQ(file->Points()->Map(0).Count(), 7U);
    }
}

#ifndef _WIN32
TEST(LASFileOnLinux, TellsAReadErrorFromAShortFile) {
    // A file that opens, but whose first bytes are nobody's memory.
    const std::wstring failure = FailureToOpen(L"/proc/self/mem");
    EXPECT_TRUE(failure.starts_with(L"The header of '/proc/self/mem' could not be read."));
}
#endif

}  // namespace
}  // namespace orvex
