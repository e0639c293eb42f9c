// Drives that take no more.
#include <gtest/gtest.h>

#include <cstring>

#include "host/dem/HostGdal.h"
#include "host/vector/VectorConversion.h"
#include "support/LDataError.h"
#include "support/Text.h"
#include "support/testing/FileSizeLimit_linux.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

TEST(VectorFiles, WriteErrorsGiveTheSystemsReasonAndLeaveNothing) {
    SetUpGdal();
    const testing::TemporaryFolder folder;
    std::string drawing = "0\nSECTION\n2\nENTITIES\n";
    for (int i = 0; i < 2000; ++i) {
        drawing += "0\nPOINT\n8\nA\n10\n1\n20\n2\n30\n3\n";
    }
    const std::wstring path = folder.Write(L"in/b.dxf", drawing + "0\nENDSEC\n0\nEOF\n");
    VectorConversionOptions options;
    options.outputFolder = folder.Name(L"out");
    Kst::NullProgress progress;
    // Of the shapes and of the table, in the middle and near the end.
    for (const rlim_t limit : {rlim_t{20000}, rlim_t{60000}, rlim_t{88000}}) {
        std::wstring text;
        try {
            const testing::FileSizeLimit limited(limit);
            ConvertVector(path, options, progress);
        } catch (const LDataError& error) {
            text = error.Text();
        }
        EXPECT_NE(text.find(L"b_A_points.shp"), std::wstring::npos) << limit << ToUtf8(text);
        EXPECT_NE(text.find(FromUtf8(std::strerror(EFBIG))), std::wstring::npos) << limit << ToUtf8(text);
        EXPECT_TRUE(std::filesystem::is_empty(ToPath(options.outputFolder))) << limit;
    }
}

}  // namespace
}  // namespace orvex
