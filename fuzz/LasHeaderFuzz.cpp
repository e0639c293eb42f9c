// Lists arbitrary bytes as a LAS file, reads them in both modes, and as a source that gives a part of them.
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

#include "las/testing/LasFiles.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const orvex::testing::TemporaryFolder folder;
    // A file that is truncated and written anew goes to the disk when it is closed, which takes long.
    std::filesystem::remove(folder.Path() / "input.las");
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    const std::wstring path = folder.Write(L"input.las", bytes);
    orvex::testing::RowText(path);
    for (const bool readOnly : {true, false}) {
        orvex::testing::ReadAllOfLas(path, readOnly);
    }
    for (const std::uint64_t most : {std::uint64_t{1000}, std::uint64_t{size / 2}, ~std::uint64_t{0}}) {
        orvex::testing::RowText(orvex::InspectLasSource(path, orvex::testing::MemorySource(bytes, most)));
    }
    return 0;
}
