// Lists arbitrary bytes as a LAS file and reads them in both modes.
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
    const std::wstring path =
        folder.Write(L"input.las", std::string(reinterpret_cast<const char*>(data), size));
    orvex::testing::RowText(path);
    for (const bool readOnly : {true, false}) {
        orvex::testing::ReadAllOfLas(path, readOnly);
    }
    return 0;
}
