#include "las/LasRecords.h"

#include <gtest/gtest.h>

#include "las/testing/LasBuilder.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/testing/TemporaryFolder.h"
#include "support/testing/TestSystem.h"

namespace orvex {
namespace {

using testing::Bytes;
using testing::LasBuilder;

std::span<const std::byte> BytesOf(const std::string& text) {
    return std::as_bytes(std::span(text));
}

std::vector<int> IdsOf(const VlrList& list) {
    std::vector<int> ids;
    for (const VlrView& vlr : list.records) {
        ids.push_back(vlr.RecordId());
    }
    return ids;
}

/// The VLRs of a file, read one by one.
VlrList ReadVlrsOf(const std::wstring& path) {
    MappedFile file;
    EXPECT_EQ(file.Open(path, true), 0);
    std::string header(375, '\0');
    std::size_t read = 0;
    EXPECT_EQ(file.ReadAt(0, std::as_writable_bytes(std::span(header)), read), 0);
    VlrList list;
    EXPECT_EQ(ReadVlrs(file, LasHeader(BytesOf(header)), list), 0);
    return list;
}

LasBuilder ThreeRecords() {
    return LasBuilder().AddVlr("a", 1, "12345").AddVlr("b", 2, "").AddVlr("c", 3, "123").AddPoints(4);
}

TEST(Vlrs, StopAtTheCountTheAreaOrTheHeader) {
    const testing::TemporaryFolder folder;
    constexpr std::size_t kSecond = 227 + 54 + 5;
    constexpr std::size_t kEnd = kSecond + 54 + 54 + 3;
    const struct {
        const char* what;
        LasBuilder builder;
        std::vector<int> ids;
    } cases[] = {
        {"all", ThreeRecords(), {1, 2, 3}},
        {"the count is a bound", ThreeRecords().Lie<std::uint32_t>(100, 2), {1, 2}},
        {"a count beyond the area", ThreeRecords().Lie<std::uint32_t>(100, 0xFFFFFFFF), {1, 2, 3}},
        {"no count", ThreeRecords().Lie<std::uint32_t>(100, 0), {}},
        {"a record into the points", ThreeRecords().Lie<std::uint16_t>(kSecond + 20, 65535), {1, 2}},
        {"room for the last header", ThreeRecords().Lie<std::uint32_t>(96, kEnd - 3), {1, 2, 3}},
        {"no room for the last header", ThreeRecords().Lie<std::uint32_t>(96, kEnd - 4), {1, 2}},
        {"offset below one header", ThreeRecords().Lie<std::uint32_t>(96, 53), {}},
        {"offset 0", ThreeRecords().Lie<std::uint32_t>(96, 0), {}},
        {"header size 0", ThreeRecords().Lie<std::uint16_t>(94, 0), {}},
        {"header beyond the points", ThreeRecords().Lie<std::uint16_t>(94, 65535), {}},
        {"shortened area", ThreeRecords().Cut(kSecond + 54), {1, 2}},
    };
    for (const auto& expected : cases) {
        const std::string bytes = expected.builder.Build();
        EXPECT_EQ(IdsOf(ReadVlrsOf(folder.Write(L"a.las", bytes))), expected.ids) << expected.what;
    }
}

// A list of files keeps what it shows, whatever the files hold.
TEST(Vlrs, KeepShortDataAndWhatIsDecoded) {
    const testing::TemporaryFolder folder;
    const auto holds = [&](const LasBuilder& builder) {
        std::string text;
        const VlrList list = ReadVlrsOf(folder.Write(L"a.las", builder.Build()));
        for (const VlrView& vlr : list.records) {
            const auto data = vlr.Data();
            text += vlr.HasData() ? "kept " : "left ";
            text += vlr.IsTruncated() ? "cut " : "";
            text += std::to_string(data.size());
            text += data.empty() ? "" : std::string(" ") + static_cast<char>(data.back());
            text += "\n";
        }
        EXPECT_LE(list.bytes.size(), kMostRecordData + list.records.size() * VlrView::kHeaderSize);
        return text;
    };
    const std::string large(60000, 'x');
    EXPECT_EQ(holds(LasBuilder()
                        .AddVlr("any", 1, large)
                        .AddVlr("any", 2, large.substr(0, 255) + "y")
                        .AddVlr("LASF_Projection", 2112, large + "z")
                        .AddVlr("any", 4, large.substr(0, 300) + "e")
                        .AddVlr("any", 5, "")),
              "left 0\nkept 256 y\nkept 60001 z\nkept 301 e\nkept 0\n");
    EXPECT_EQ(holds(LasBuilder().AddVlr("LASF_Projection", 1, "wkt").Lie<std::uint16_t>(227 + 20, 65535)),
              "kept cut 3 t\n");
    LasBuilder many;
    std::string expected;
    for (int i = 0; i < 20; ++i) {
        many.AddVlr("LASF_Projection", 2112, large + "z");
        expected += i < 17 ? "kept 60001 z\n" : "left 0\n";
    }
    EXPECT_EQ(holds(many), expected);
}

/// A record header and its data; `length` is what the header states.
std::string Evlr(std::string_view userId, std::uint64_t length, std::string_view data) {
    std::string record(60, '\0');
    record.replace(2, userId.size(), userId);
    record.replace(20, 8, Bytes(length));
    return record.append(data);
}

class Evlrs : public ::testing::Test {
  protected:
    /// The number of records, or the text of the failure. `size`: the file is extended with zeros.
    std::wstring Read(const std::string& bytes, std::uint64_t start, std::uint32_t count,
                      bool truncates = false, std::uint64_t size = 0) {
        const std::wstring path = folder_.Write(L"evlrs.bin", bytes);
        if (size > 0) {
            testing::GrowSparse(path, size);
        }
        MappedFile file;
        EXPECT_EQ(file.Open(path, true), 0);
        try {
            entries_ = ReadEvlrs(file, start, count, truncates);
            return std::to_wstring(entries_.size());
        } catch (const LDataError& error) {
            return error.Text();
        }
    }

    const testing::TemporaryFolder folder_;
    std::vector<EvlrEntry> entries_;
};

TEST_F(Evlrs, SayWhatIsWrong) {
    const std::wstring headerError = L"Failed to read EVLR header section of LAS file into memory.";
    const std::wstring dataError = L"Failed to read EVLR record data section of LAS file into memory.";
    const std::wstring skipError = L"Setting file pointer failed when skipping record data for evlr.";
    constexpr std::uint64_t kMost = ~std::uint64_t{0};
    const std::string pad(8, '.');
    const struct {
        const char* what;
        std::string bytes;
        std::uint64_t start;
        std::uint32_t count;
        std::wstring result;
    } cases[] = {
        {"none", pad + Evlr("a", 0, ""), 8, 0, L"0"},
        {"no start", pad + Evlr("a", 0, ""), 0, 1, L"0"},
        {"two", pad + Evlr("a", 3, "123") + Evlr("Kst", 2, "ab"), 8, 2, L"2"},
        {"one more than there are", pad + Evlr("a", 3, "123"), 8, 2, headerError},
        {"half a header", pad + Evlr("a", 0, "").substr(1), 8, 1, headerError},
        {"a count beyond reason", pad + Evlr("a", 0, ""), 8, 0xFFFFFFFF, headerError},
        {"start at the end", pad, 8, 1, headerError},
        {"start beyond the end", pad, 9000, 1, headerError},
        {"start at the last position", pad, kMost >> 1U, 1, headerError},
        {"start no file has", pad, kMost - 7, 1,
         L"Moving file pointer to the eVlr offset failed. Unable to populate the evlr list. "
         L"evlrOffset (-8) | filesize (8)."},
        {"skipped data beyond the end", pad + Evlr("a", 9, "123"), 8, 1, L"1"},
        {"and a record behind it", pad + Evlr("a", 9, "123"), 8, 2, headerError},
        {"skipped data beyond any file", pad + Evlr("a", kMost, "123"), 8, 1, skipError},
        {"kept data beyond the end", pad + Evlr("Kst", 4, "123"), 8, 1, dataError},
        {"kept data beyond any file", pad + Evlr("LASF_Projection", kMost, "123"), 8, 1, dataError},
    };
    for (const auto& expected : cases) {
        EXPECT_EQ(Read(expected.bytes, expected.start, expected.count), expected.result) << expected.what;
    }
}

TEST_F(Evlrs, EndWithTheFileWhereAskedForAndAreKeptUpToALimit) {
    constexpr std::uint64_t kLarge = std::uint64_t{3} << 30U;
    const struct {
        std::uint64_t length;
        std::string data;
        std::uint64_t fileSize;
        bool truncates;
        std::uint64_t held;
    } cases[] = {{4, "123", 0, true, 3},
                 {~std::uint64_t{0}, "123", 0, true, 3},
                 {9, "", 0, true, 0},
                 {kLarge, "123", 2 * kLarge, true, 0},
                 {kMostRecordData, "123", kLarge, false, kMostRecordData},
                 {kMostRecordData + 1, "123", kLarge, false, 0}};
    for (const auto& c : cases) {
        ASSERT_EQ(Read(Evlr("", 0, "") + Evlr("Kst", c.length, c.data), 60, 1, c.truncates, c.fileSize),
                  L"1");
        EXPECT_EQ(entries_[0].RecordLength(), c.length);
        EXPECT_EQ(entries_[0].IsTruncated(), c.fileSize == 0);
        EXPECT_EQ(entries_[0].HasData(), c.fileSize == 0 || c.held > 0);
        ASSERT_EQ(entries_[0].Data().size(), c.held);
        EXPECT_TRUE(c.held == 0 || entries_[0].Data()[2] == std::byte{'3'});
    }
}

std::string Descriptor(std::uint8_t dataType, std::uint8_t options, std::string_view name) {
    std::string bytes(192, '\0');
    bytes[2] = static_cast<char>(dataType);
    bytes[3] = static_cast<char>(options);
    bytes.replace(4, name.size(), name);
    return bytes;
}

TEST(ExtraBytes, AddsUpTheSizesOfTheDataTypes) {
    std::string data;
    for (std::uint8_t dataType = 0; dataType <= 10; ++dataType) {
        data += Descriptor(dataType, 3, "attribute " + std::to_string(dataType));
    }
    ExtraBytes extraBytes;
    extraBytes.Add(BytesOf(data));
    const std::uint64_t offsets[] = {0, 3, 4, 5, 7, 9, 13, 17, 25, 33, 37};
    ASSERT_EQ(extraBytes.Attributes().size(), 11U);
    for (std::size_t i = 0; i < 11; ++i) {
        EXPECT_EQ(extraBytes.Attributes()[i].offset, offsets[i]) << i;
        EXPECT_EQ(extraBytes.Find(L"attribute " + std::to_wstring(i)), &extraBytes.Attributes()[i]);
    }
    EXPECT_EQ(extraBytes.Attributes().back().size, 8);
    EXPECT_EQ(extraBytes.Find(L"attribute"), nullptr);
}

// The lookup starts anew in each record; the points do not.
TEST(ExtraBytes, OfSeveralRecordsFollowEachOtherInThePoints) {
    ExtraBytes extraBytes;
    extraBytes.Add(BytesOf(Descriptor(9, 0, "a") + Descriptor(1, 0, "b")));
    EXPECT_FALSE(extraBytes.IsSpread());
    extraBytes.Add(BytesOf(Descriptor(3, 0, "c")));
    extraBytes.Add(BytesOf(Descriptor(2, 0, "d")));
    EXPECT_TRUE(extraBytes.IsSpread());
    std::string offsets;
    for (const ExtraBytesAttribute& attribute : extraBytes.Attributes()) {
        offsets += std::to_string(attribute.offset) + "/" + std::to_string(attribute.pointOffset) + " ";
    }
    EXPECT_EQ(offsets, "0/0 4/4 0/5 0/7 ");
}

TEST(ExtraBytes, CountsWholeDescriptorsUpToTheLimit) {
    const std::string data = Descriptor(1, 0, "a") + Descriptor(2, 0, "b") + Descriptor(11, 0, "c");
    const auto countOf = [&](std::size_t length, std::size_t most) {
        ExtraBytes extraBytes;
        extraBytes.Add(BytesOf(data).first(length), most);
        return extraBytes.Attributes().size();
    };
    EXPECT_EQ(countOf(191, 9), 0U);
    EXPECT_EQ(countOf(192, 9), 1U);
    EXPECT_EQ(countOf(575, 9), 2U);
    EXPECT_EQ(countOf(576, 2), 2U);
    EXPECT_THROW(countOf(576, 3), LDataError);
}

}  // namespace
}  // namespace orvex
