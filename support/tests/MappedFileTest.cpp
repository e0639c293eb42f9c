#include "support/MappedFile.h"

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <filesystem>
#include <fstream>

#include "support/ByteReader.h"
#include "support/Text.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::TemporaryFolder;

TEST(MappedFile, ReadsAndMapsBeyondFourGigabytes) {
    const TemporaryFolder folder;
    constexpr std::uint64_t kOffset = (std::uint64_t{5} << 30) + 12345;
    const std::wstring name = folder.Write(L"sparse ä.bin", "");
    std::filesystem::resize_file(ToPath(name), kOffset);
    std::ofstream(ToPath(name), std::ios::binary | std::ios::app) << "tail";

    MappedFile file;
    ASSERT_EQ(file.Open(name, true), 0);
    std::uint64_t size = 0;
    ASSERT_EQ(file.Size(size), 0);
    EXPECT_EQ(size, kOffset + 4);

    std::array<std::byte, 8> buffer{};
    std::size_t read = 0;
    ASSERT_EQ(file.ReadAt(kOffset, buffer, read), 0);
    EXPECT_EQ(read, 4U);
    EXPECT_EQ(ByteReader(buffer).FixedText(0, 4), "tail");

    MappedView view;
    ASSERT_EQ(file.CreateMapping(), 0);
    ASSERT_EQ(file.Map(kOffset, 4, false, view), 0);
    EXPECT_EQ(ByteReader(view.Bytes()).FixedText(0, 4), "tail");
    EXPECT_NE(file.Map(kOffset, 5, false, view), 0);
    EXPECT_NE(file.Map(~std::uint64_t{0}, 4, false, view), 0);
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

TEST(MappedFile, NamesTheSystemsReason) {
    const TemporaryFolder folder;
    MappedFile file;
    EXPECT_EQ(file.Open(folder.Name(L"absent.las"), true), ENOENT);
    EXPECT_EQ(file.Open(FromPath(folder.Path()), true), EISDIR);
    EXPECT_FALSE(file.IsOpen());
    EXPECT_FALSE(SystemErrorText(ENOENT).empty());
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
