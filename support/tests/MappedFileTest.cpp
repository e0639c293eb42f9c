#include "support/MappedFile.h"

#include <gtest/gtest.h>

#include <array>

#include "support/ByteReader.h"
#include "support/testing/SparseFile.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;

TEST(MappedFile, ReadsAndMapsBeyondFourGigabytes) {
    constexpr std::uint64_t kGigabyte = std::uint64_t{1} << 30U;
    struct Part {
        std::uint64_t offset;
        const char* text;
    };
    // Two places whose offsets differ in the upper half only, one across the border, one at the end.
    const Part parts[] = {{12345, "near"},
                          {4 * kGigabyte + 12345, "far "},
                          {4 * kGigabyte - 2, "edge"},
                          {5 * kGigabyte - 4, "tail"}};
    const TemporaryFolder folder;
    const std::wstring name = folder.Write(L"sparse ä.bin", "");
    testing::GrowSparse(name, 5 * kGigabyte);
    for (const Part& part : parts) {
        testing::WriteAt(name, part.offset, part.text);
    }
    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    ASSERT_EQ(file.CreateMapping(), 0);
    std::uint64_t size = 0;
    ASSERT_EQ(file.Size(size), 0);
    EXPECT_EQ(size, 5 * kGigabyte);
    MappedView view;
    for (const Part& part : parts) {
        std::array<std::byte, 4> buffer{};
        std::size_t read = 0;
        ASSERT_EQ(file.ReadAt(part.offset, buffer, read), 0);
        EXPECT_EQ(ByteReader(buffer).FixedText(0, read), part.text);
        ASSERT_EQ(file.Map(part.offset, 4, false, view), 0);
        EXPECT_EQ(ByteReader(view.Bytes()).FixedText(0, 4), part.text);
    }
    std::array<std::byte, 8> beyond{};
    std::size_t read = 0;
    EXPECT_EQ(file.ReadAt(size - 4, beyond, read), 0);
    EXPECT_EQ(read, 4U);
    EXPECT_EQ(file.ReadAt(size + 1, beyond, read), 0);
    EXPECT_EQ(read, 0U);
    EXPECT_NE(file.ReadAt(~std::uint64_t{0}, beyond, read), 0);
    EXPECT_NE(file.Map(size - 4, 5, false, view), 0);
    EXPECT_NE(file.Map(~std::uint64_t{0}, 4, false, view), 0);
}

// Other programs go on reading and writing a file that is listed.
TEST(MappedFile, IsSharedWithOthers) {
    const TemporaryFolder folder;
    const std::wstring name = folder.Write(L"a.bin", "abcdef");
    MappedFile first, reader, writer;
    ASSERT_EQ(first.Open(name, false), 0);
    ASSERT_EQ(first.CreateMapping(), 0);
    MappedView view;
    ASSERT_EQ(first.Map(0, 6, true, view), 0);
    EXPECT_EQ(reader.Open(name, true), 0);
    EXPECT_EQ(writer.Open(name, false), 0);
    testing::WriteAt(name, 1, "X");
    std::array<std::byte, 6> buffer{};
    std::size_t read = 0;
    EXPECT_EQ(reader.ReadAt(0, buffer, read), 0);
    EXPECT_EQ(ByteReader(buffer).FixedText(0, read), "aXcdef");
    first.Close();
    EXPECT_EQ(ByteReader(view.Bytes()).FixedText(0, 6), "aXcdef") << "the view outlives the file";
}

TEST(MappedFile, WritesThroughAWritableView) {
    const TemporaryFolder folder;
    const std::wstring name = folder.Write(L"a.bin", "abcdef");
    {
        MappedFile file;
        ASSERT_EQ(file.Open(name, false), 0);
        MappedView view;
        ASSERT_NE(file.Map(2, 3, true, view), 0);
        ASSERT_EQ(file.CreateMapping(), 0);
        ASSERT_EQ(file.Map(2, 3, true, view), 0);
        view.Bytes()[0] = std::byte{'X'};
    }
    EXPECT_EQ(testing::ReadFile(name), "abXdef");
}

TEST(ByteReader, NeverReadsBeyondItsEnd) {
    const std::array<std::byte, 6> bytes{std::byte{1}, std::byte{2}, std::byte{3}, std::byte{4},
                                         std::byte{5}};
    const ByteReader reader(bytes);
    EXPECT_EQ(reader.Read<std::uint32_t>(0), 0x04030201U);
    EXPECT_EQ(reader.TryRead<std::uint32_t>(3), std::nullopt);
    EXPECT_EQ(reader.TryRead<std::uint8_t>(~std::uint64_t{0}), std::nullopt);
    EXPECT_EQ(reader.Bytes(4, ~std::uint64_t{0}).size(), 2U);
    EXPECT_TRUE(reader.Bytes(7, 1).empty());
    EXPECT_FALSE(reader.Contains(~std::uint64_t{0}, 2));
}

}  // namespace
}  // namespace orvex
