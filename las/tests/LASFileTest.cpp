#include "las/LASFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <string_view>

#include "las/LasPointViews.h"
#include "las/testing/LasBuilder.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/ProcessFacts.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::LasBuilder;
using testing::TemporaryFolder;

class LASFileTest : public ::testing::Test {
  protected:
    std::wstring Write(const LasBuilder& builder, const std::wstring& name = L"a.las") const {
        return folder_.Write(name, builder.Build());
    }
    std::unique_ptr<LASFile> Open(const LasBuilder& builder, bool readOnly = true) const {
        return LASFile::Open(Write(builder), readOnly, true);
    }
    /// The text of the failure to open; empty when it opens.
    std::wstring Failure(const LasBuilder& builder, bool readOnly = true) const {
        return FailureOf(Write(builder), readOnly);
    }
    static std::wstring FailureOf(const std::wstring& path, bool readOnly = true) {
        try {
            LASFile::Open(path, readOnly, true);
            return {};
        } catch (const LDataError& error) {
            return error.Text();
        }
    }

    const TemporaryFolder folder_;
};

TEST_F(LASFileTest, AnswersFromTheHeader) {
    const std::wstring path = Write(LasBuilder(12, 3).AddPoints(9).ProjectedEpsg(25832));
    for (const bool readOnly : {true, false}) {
        const auto file = LASFile::Open(path, readOnly, true);
        EXPECT_EQ(file->FileName(), path);
        EXPECT_EQ(file->IsReadOnly(), readOnly);
        EXPECT_EQ(file->Version(), 12);
        EXPECT_EQ(file->GetVersionCode(), 3);
        EXPECT_EQ(file->PointFormat(), 3);
        EXPECT_EQ(file->GetPointCount(), 9U);
        EXPECT_EQ(file->Minimum(), (std::array<double, 3>{1000, 2000, 100}));
        EXPECT_EQ(file->Maximum(), (std::array<double, 3>{1002, 2002, 100.08}));
        EXPECT_EQ(file->FileSize(), std::filesystem::file_size(ToPath(path)));
        EXPECT_EQ(file->GetCompanionStatus(), 0);
        EXPECT_EQ(file->Points(), nullptr);
        ASSERT_EQ(file->GetVLRs().size(), 1U);
        EXPECT_TRUE(file->HasProjectionRecords());
        EXPECT_TRUE(file->FindGeoKeyDirectory());
        EXPECT_FALSE(file->FindWKT());
    }
}

TEST_F(LASFileTest, NamesTheFileThatCannotBeOpened) {
    const std::wstring absent = folder_.Name(L"absent.las");
    EXPECT_EQ(FailureOf(absent), L"'" + absent + L"' file does not exist. Cannot open.");
    const std::wstring shortFile = folder_.Write(L"short.las", std::string(226, 'x'));
    for (const bool readOnly : {true, false}) {
        EXPECT_EQ(FailureOf(shortFile, readOnly), L"ReadHeaderBlock failed on '" + shortFile + L"'.");
    }
    // A message never outgrows its buffer of 515 characters.
    const std::wstring longName = L"/" + std::wstring(600, L'n');
    EXPECT_EQ(FailureOf(longName), (L"'" + longName).substr(0, 514));
}

TEST_F(LASFileTest, FindsTheWktInVlrsThenEvlrs) {
    const auto textOf = [](std::span<const std::byte> data) {
        return std::string(reinterpret_cast<const char*>(data.data()));
    };
    const auto inEvlr = Open(LasBuilder(14, 6).AddPoints(1).Wkt("second", true));
    ASSERT_TRUE(inEvlr->FindWKT());
    EXPECT_EQ(textOf(*inEvlr->FindWKT()), "second");
    const auto inBoth = Open(LasBuilder(14, 6).AddPoints(1).Wkt("second", true).Wkt("first"));
    EXPECT_EQ(textOf(*inBoth->FindWKT()), "first");
    const auto foreign = Open(LasBuilder().AddVlr("liblas", 2112, "text"));
    EXPECT_FALSE(foreign->FindWKT());
    EXPECT_FALSE(foreign->HasProjectionRecords());
}

TEST_F(LASFileTest, DecodesExtraBytesOfAnyUserId) {
    const auto ownRecord =
        Open(LasBuilder(12, 1).AddExtraBytes("reflectance", 10, 8).AddExtraBytes("raw", 0, 3));
    ASSERT_EQ(ownRecord->GetExtraBytes().Attributes().size(), 2U);
    EXPECT_EQ(ownRecord->GetExtraBytes().Find(L"raw")->offset, 8U);
    EXPECT_EQ(ownRecord->GetExtraBytes().Find(L"raw")->size, 3U);
    EXPECT_FALSE(ownRecord->HasRangeIncidencePhotoIndex());

    std::string descriptor(192, '\0');
    descriptor[2] = 11;
    EXPECT_EQ(Failure(LasBuilder().AddVlr("anybody", 4, descriptor)),
              L"GetExtraByteOffsets: '11' is not a valid extra bytes data_type value.");
    EXPECT_EQ(Failure(LasBuilder().AddVlr("LASF_Spec", 4, descriptor.substr(0, 191))), L"");
}

TEST_F(LASFileTest, RecognizesRangeIncidencePhotoIndex) {
    const std::string_view description = "Xtra:range/incidentVec/photoNdx";
    EXPECT_TRUE(Open(LasBuilder().AddVlr("LASF_Spec", 4, "", description))->HasRangeIncidencePhotoIndex());
    EXPECT_FALSE(Open(LasBuilder().AddVlr("Kst", 4, "", description))->HasRangeIncidencePhotoIndex());
    EXPECT_FALSE(Open(LasBuilder().AddVlr("LASF_Spec", 5, "", description))->HasRangeIncidencePhotoIndex());
}

TEST_F(LASFileTest, DecidesTheCompanionStatus) {
    const LasBuilder index = LasBuilder(14, 6).AddPoints(1).AddVlr("BrightwellMarsh", 64, "");
    const LasBuilder both = LasBuilder(index).AddEvlr("any", 157, "data");
    EXPECT_EQ(Open(LasBuilder().AddVlr("BrightwellMarsh", 65, ""))->GetCompanionStatus(), 0);
    EXPECT_EQ(Open(LasBuilder().AddVlr("LASF_Spec", 64, ""))->GetCompanionStatus(), 0);
    EXPECT_EQ(Open(index)->GetCompanionStatus(), 3);
    EXPECT_EQ(Open(both)->GetCompanionStatus(), 6);
    folder_.Write(L"a.qvr", "");
    EXPECT_EQ(Open(both)->GetCompanionStatus(), 2);
    EXPECT_EQ(LASFile::Open(Write(both, L"b.las"), true, true)->GetCompanionStatus(), 6);
}

TEST_F(LASFileTest, ReadsEvlrsOfLas14Only) {
    LasBuilder las13(13, 1);
    las13.HeaderSize(375).AddPoints(1).Lie<std::uint64_t>(235, 395).Lie<std::uint32_t>(243, 7);
    EXPECT_TRUE(Open(las13)->GetEVLRs().empty());

    const auto file = Open(LasBuilder(14, 6)
                               .AddPoints(2)
                               .AddEvlr("copc", 1000, "12345", "skipped", 7)
                               .AddEvlr("Kst", 9, "ab", "kept")
                               .AddEvlr("LASF_Projection", 2112, ""));
    const auto& evlrs = file->GetEVLRs();
    ASSERT_EQ(evlrs.size(), 3U);
    EXPECT_EQ(evlrs[0].UserId(), "copc");
    EXPECT_EQ(evlrs[0].RecordId(), 1000);
    EXPECT_EQ(evlrs[0].Reserved(), 7);
    EXPECT_EQ(evlrs[0].RecordLength(), 5U);
    EXPECT_EQ(evlrs[0].Description(), "skipped");
    EXPECT_FALSE(evlrs[0].HasData());
    EXPECT_TRUE(evlrs[1].HasData());
    EXPECT_EQ(evlrs[1].Data()[1], std::byte{'b'});
    EXPECT_TRUE(evlrs[2].HasData());
    EXPECT_TRUE(evlrs[2].Data().empty());
}

TEST_F(LASFileTest, KeepsNoDescriptorUnlessThePointsAreMapped) {
    const std::wstring path = Write(LasBuilder(14, 6).AddPoints(50).AddEvlr("Kst", 1, "data"));
    const std::size_t before = testing::OpenHandles();
    const auto listed = LASFile::Open(path, true, true);
    const auto editable = LASFile::Open(path, false, true);
    EXPECT_EQ(testing::OpenHandles(), before);
    const auto mapped = LASFile::Open(path, true, false);
    ASSERT_NE(mapped->Points(), nullptr);
    EXPECT_EQ(mapped->Points()->PointCount(), 50U);
    EXPECT_GT(testing::OpenHandles(), before) << "a file, and a mapping where that is a thing of its own";
}

// The system limits a process's mappings; a list that is opened read-write may have thousands of files.
TEST_F(LASFileTest, HoldsOneMappingOfAFileOpenedReadWrite) {
    const std::wstring path = Write(LasBuilder(14, 6).AddPoints(3).ProjectedEpsg(25832));
    const auto readOnly = LASFile::Open(path, true, true);
    EXPECT_EQ(testing::MappingsOf(path), 0U);
    const auto readWrite = LASFile::Open(path, false, true);
    EXPECT_EQ(testing::MappingsOf(path), 1U);
    EXPECT_EQ(readWrite->GetPointCount(), 3U);
    EXPECT_EQ(readWrite->Maximum(), readOnly->Maximum());
    EXPECT_EQ(readWrite->GetVLRs().size(), readOnly->GetVLRs().size());
}

TEST_F(LASFileTest, SharesTheIdOfAFileName) {
    const LasBuilder builder;
    const auto first = LASFile::Open(Write(builder, L"one.las"), true, true);
    const auto again = LASFile::Open(Write(builder, L"one.las"), false, true);
    const auto other = LASFile::Open(Write(builder, L"two.las"), true, true);
    EXPECT_EQ(first->RegisteredId(), again->RegisteredId());
    EXPECT_NE(first->RegisteredId(), other->RegisteredId());
}

TEST_F(LASFileTest, CompressedFilesReadAlike) {
    const auto file =
        LASFile::Open(Write(LasBuilder(14, 7).AddPoints(5).MarkCompressed(), L"a.laz"), true, false);
    EXPECT_EQ(file->PointFormat(), 7);
    EXPECT_TRUE(file->Header().IsCompressed());
    EXPECT_EQ(file->GetPointCount(), 5U);
    EXPECT_EQ(file->Points(), nullptr);
}

}  // namespace
}  // namespace orvex
