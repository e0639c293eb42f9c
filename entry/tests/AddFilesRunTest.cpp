#include "entry/AddFilesRun.h"

#include <gmock/gmock.h>

#include <QApplication>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include "dialog/testing/ScriptedServices.h"

namespace orvex {
namespace {

TEST(HasResults, CountsTheListsThatAHostActsOn) {
    struct Case {
        const char* name;
        void (*fill)(AddFilesParams&);
        bool counts;
    };
    const Case cases[] = {
        {"nothing", [](AddFilesParams&) {}, false},
        {"las", [](AddFilesParams& p) { p.lasFiles[L"/d"]; }, true},
        {"raster", [](AddFilesParams& p) { p.rasterFiles[L"/d"]; }, true},
        {"feature", [](AddFilesParams& p) { p.featureFiles[L"l"]; }, true},
        {"dem", [](AddFilesParams& p) { p.demFiles[L"/d"]; }, true},
        {"photo", [](AddFilesParams& p) { p.photoFiles.emplace_back(); }, true},
        {"presigned", [](AddFilesParams& p) { p.presignedUrlLayers[L"l"]; }, true},
        {"cloud", [](AddFilesParams& p) { p.cloudLasLayers[L"l"]; }, true},
        {"cloud 2", [](AddFilesParams& p) { p.cloudLasLayerValues2[L"l"]; }, false},
        {"cloud 3", [](AddFilesParams& p) { p.cloudLasLayerValues3[L"l"]; }, false},
        {"inputs", [](AddFilesParams& p) { p.existingLasLayers[L"l"]; }, false},
    };
    for (const Case& c : cases) {
        AddFilesParams params;
        c.fill(params);
        EXPECT_EQ(HasResults(params), c.counts) << c.name;
    }
}

// A page that stores one file, when it is told to.
class OneFilePage : public AddFilesPage {
  public:
    OneFilePage(AddFilesParams& params, bool store, int& released)
        : params_(params), store_(store), released_(released) {}
    bool ValidateAndStore() override {
        if (store_) {
            params_.lasFiles[L"/d"] = {L"a.las"};
        }
        return true;
    }
    void Release() override { ++released_; }
    void AddPaths(const std::vector<std::wstring>&) override {}
    bool Accepts(const std::wstring&) const override { return false; }

  private:
    AddFilesParams& params_;
    bool store_;
    int& released_;
};

class Running : public ::testing::Test, protected testing::ScriptedServices {
  protected:
    bool RunWith(bool pageStores) {
        PageDescription page{PageKind::Las,
                             text::kLasTab,
                             text::kLasTabInsertFailed,
                             nullptr,
                             text::kLasPageCreateFailed,
                             nullptr,
                             363,
                             8,
                             nullptr,
                             {}};
        page.create = [&](const PageContext& context) {
            return std::make_unique<OneFilePage>(*context.params, pageStores, released);
        };
        return RunAddFiles(params, services, {&page, 1}, nullptr);
    }
    bool Run(bool pageStores, const char* press) {
        QTimer::singleShot(0, qApp, [press] {
            QTest::mouseClick(
                QApplication::activeModalWidget()->findChild<QPushButton*>(QLatin1String(press)),
                Qt::LeftButton);
        });
        return RunWith(pageStores);
    }
    AddFilesParams params;
    int released = 0;
};

TEST_F(Running, IsTrueOnlyForOkWithSomethingToAdd) {
    EXPECT_FALSE(Run(false, "ok"));
    EXPECT_FALSE(Run(true, "cancel"));
    EXPECT_TRUE(params.lasFiles.empty());
    EXPECT_EQ(released, 2) << "once by Cancel, once more after the dialog";
    EXPECT_TRUE(Run(true, "ok"));
    EXPECT_EQ(released, 2) << "nothing is released after OK";
}

TEST_F(Running, ReleasesWhenTheDialogCannotOpen) {
    hostObjects.createApplicationResult = kHostFail;
    EXPECT_FALSE(RunWith(true));
    EXPECT_EQ(released, 1);
    EXPECT_EQ(prompts.shown.size(), 1U);
}

}  // namespace
}  // namespace orvex
