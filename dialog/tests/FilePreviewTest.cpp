#include "dialog/details/FilePreview.h"

#include <gmock/gmock.h>

#include <QBuffer>
#include <QImage>
#include <QSignalSpy>
#include <condition_variable>
#include <mutex>
#include <set>
#include <stdexcept>

#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {
namespace {

/// A drive whose files answer when a test lets them.
class SlowDrive {
  public:
    std::string Read(const std::wstring& path) {
        std::unique_lock guard(lock_);
        ++reading_;
        changed_.notify_all();
        changed_.wait(guard, [&] { return answering_.contains(path); });
        --reading_;
        changed_.notify_all();
        return path == L"broken" ? "no image" : jpeg_;
    }
    void Answer(const std::wstring& path) {
        const std::lock_guard guard(lock_);
        answering_.insert(path);
        changed_.notify_all();
    }
    void WaitForReads(int count) {
        std::unique_lock guard(lock_);
        changed_.wait(guard, [&] { return reading_ == count; });
    }

  private:
    static std::string Jpeg() {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        QImage image(480, 320, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        image.save(&buffer, "JPEG");
        return bytes.toStdString();
    }

    const std::string jpeg_ = Jpeg();
    std::mutex lock_;
    std::condition_variable changed_;
    std::set<std::wstring> answering_;
    int reading_ = 0;
};

class FilePreviewTest : public ::testing::Test {
  protected:
    std::shared_ptr<SlowDrive> drive = std::make_shared<SlowDrive>();
    std::unique_ptr<FilePreview> preview = std::make_unique<FilePreview>(
        [drive = drive](const std::wstring& path) { return drive->Read(path); });
    QSignalSpy changed{preview.get(), &FilePreview::Changed};
};

TEST_F(FilePreviewTest, TheLastFileAskedForCounts) {
    EXPECT_EQ(ToWide(preview->Html(L"a")), Text(text::kPreviewReading));
    drive->WaitForReads(1);
    preview->Html(L"b");
    drive->WaitForReads(2);
    drive->Answer(L"b");
    ASSERT_TRUE(changed.wait());
    EXPECT_TRUE(preview->Html(L"b").startsWith("<img src=\"data:image/png;base64,")) << "though a is awaited";
    EXPECT_TRUE(preview->Html(L"b").endsWith("width=\"240\" height=\"160\">"));
    drive->Answer(L"a");
    drive->WaitForReads(0);
    QCoreApplication::processEvents();
    EXPECT_EQ(changed.count(), 1);
    preview->Forget();
    EXPECT_EQ(ToWide(preview->Html(L"b")), Text(text::kPreviewReading));
    EXPECT_TRUE(changed.wait());
}

TEST_F(FilePreviewTest, AFileThatHasNoneOrADamagedOneSaysSo) {
    drive->Answer(L"broken");
    preview->Html(L"broken");
    ASSERT_TRUE(changed.wait());
    EXPECT_EQ(ToWide(preview->Html(L"broken")), Text(text::kPreviewNone));
    FilePreview throwing([](const std::wstring&) -> std::string { throw std::runtime_error("no more"); });
    QSignalSpy told(&throwing, &FilePreview::Changed);
    throwing.Html(L"a");
    ASSERT_TRUE(told.wait());
    EXPECT_EQ(ToWide(throwing.Html(L"a")), Text(text::kPreviewNone));
}

TEST_F(FilePreviewTest, AFileThatDoesNotAnswerOutlivesTheObject) {
    int reads = 0;
    for (const wchar_t* path : {L"a", L"b", L"c"}) {
        preview->Html(path);
        drive->WaitForReads(++reads);
    }
    preview->Html(L"d");  // waits for a thread
    preview.reset();
    for (const wchar_t* path : {L"a", L"b", L"c", L"d"}) {
        drive->Answer(path);
    }
    drive->WaitForReads(0);
}

}  // namespace
}  // namespace orvex
