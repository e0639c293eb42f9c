// A drive that takes no more, in the form that a process can bring about for itself.
#include <gtest/gtest.h>
#include <sys/resource.h>

#include <csignal>
#include <cstring>

#include "host/utilities/testing/LazSamples.h"
#include "orvexcommon/OrvexUtilities.h"
#include "support/Text.h"
#include "support/testing/Scripted.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex {
namespace {

using testing::RecordingProgress;
using testing::TemporaryFolder;
using testing::WriteSample;

/// Lets the process write files of up to so many bytes only.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t bytes) : oldHandler_(std::signal(SIGXFSZ, SIG_IGN)) {
        getrlimit(RLIMIT_FSIZE, &old_);
        const rlimit limit{bytes, old_.rlim_max};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &old_);
        std::signal(SIGXFSZ, oldHandler_);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;

  private:
    rlimit old_{};
    void (*oldHandler_)(int);
};

TEST(LazDecompress, WriteErrorsInTheMiddleAndAtTheEndGiveTheSystemsReason) {
    const TemporaryFolder folder;
    const std::wstring laz = folder.Name(L"a.laz");
    WriteSample(laz, {2, 1, 28, 100000}, true);
    const rlim_t whole = 227 + 54 + 21 + 28 * 100000;
    for (const rlim_t limit : {rlim_t{100}, rlim_t{100000}, whole - 1}) {
        RecordingProgress progress;
        std::wstring reason;
        bool done = true;
        {
            const FileSizeLimit limited(limit);
            done = OrvexUtilities::LAZDecompress(laz, folder.Name(L"a.las"), progress, reason);
        }
        EXPECT_FALSE(done) << limit;
        EXPECT_NE(reason.find(L"a.las"), std::wstring::npos);
        EXPECT_NE(reason.find(FromUtf8(std::strerror(EFBIG))), std::wstring::npos) << ToUtf8(reason);
        EXPECT_EQ(folder.Entries(), 1U) << limit;
    }
}

TEST(LazDecompress, AFolderOfTheSystemIsNoPlaceToWrite) {
    const TemporaryFolder folder;
    const std::wstring laz = folder.Name(L"a.laz");
    WriteSample(laz, {2, 1, 28, 100}, true);
    RecordingProgress progress;
    std::wstring reason;
    EXPECT_FALSE(OrvexUtilities::LAZDecompress(laz, L"/proc/a.las", progress, reason));
    EXPECT_NE(reason.find(L"/proc/a.las"), std::wstring::npos) << ToUtf8(reason);
}

}  // namespace
}  // namespace orvex
