#pragma once
#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractItemModelTester>
#include <QLabel>
#include <QPushButton>
#include <QRadioButton>
#include <QRegularExpression>
#include <QScreen>
#include <QTabBar>
#include <QTest>
#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "dialog/AddFilesDlg.h"
#include "dialog/DialogProgress.h"
#include "dialog/grid/GridFilter.h"
#include "dialog/grid/GridView.h"
#include "dialog/page/ControlWidget.h"
#include "dialog/page/OptionsPanel.h"
#include "dialog/testing/ScriptedServices.h"
#include "orvexcommon/LasFileInfo.h"
#include "orvexcommon/RasterFileInfo.h"
#include "support/LDataError.h"
#include "support/testing/TemporaryFolder.h"

namespace orvex::testing {

template <typename Page>
std::unique_ptr<AddFilesPage> MakePage(const PageContext& context) {
    return std::make_unique<Page>(context);
}

/// A page that does what a test tells it.
class ScriptedPage final : public AddFilesPage {
  public:
    enum class AtOk { Accept, Refuse, Throw };
    struct Script {
        AtOk atOk = AtOk::Accept;
        std::wstring takes;                    ///< an extension, in capitals
        std::vector<std::wstring> added = {};  ///< names of the files that it was given
    };
    ScriptedPage(Script& script, DialogProgress& progress) : script_(script), progress_(progress) {}
    bool ValidateAndStore() override {
        if (script_.atOk == AtOk::Throw) {
            throw LDataError(L"no more");
        }
        return script_.atOk == AtOk::Accept;
    }
    void Release() override {}
    void AddPaths(const std::vector<std::wstring>& paths) override {
        const DialogProgress::Run run(progress_);
        std::ranges::transform(paths, std::back_inserter(script_.added), FileNameOf);
    }
    bool Accepts(const std::wstring& path) const override {
        return !script_.takes.empty() && UpperExtensionOf(path) == script_.takes;
    }

  private:
    Script& script_;
    DialogProgress& progress_;
};

/// A page with a list in the dialog, with everything around it scripted. A second tab holds a ScriptedPage,
/// which is asked last at OK.
class PageFixture : public ::testing::Test, protected ScriptedServices {
  protected:
    using Maker = std::unique_ptr<AddFilesPage> (*)(const PageContext&);

    explicit PageFixture(Maker make) {
        pages_[0].templateId = 1;
        pages_[0].create = make;
        pages_[1].create = [this](const PageContext& context) {
            return std::make_unique<ScriptedPage>(lastPage, context.progress);
        };
        Open();
    }
    ~PageFixture() override { Close(); }

    /// Opens the dialog anew with the host's inputs, in place of the one before.
    void Open() {
        Close();
        params = given;
        dialog = std::make_unique<AddFilesDlg>(params, services, pages_);
        EXPECT_EQ(dialog->Initialise(), kHostOk);
        dialog->show();
        page = dialog->findChild<AddFilesPage*>(QStringLiteral("page1"));
        tester_ = std::make_unique<QAbstractItemModelTester>(
            &Model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    }
    /// Ends the dialog, and deletes what is the host's then. Returns how many details those were.
    std::size_t Close() {
        tester_.reset();
        dialog.reset();
        const std::size_t count = params.lasFileDetails.size() + params.rasterFileDetails.size();
        for (const auto& [path, details] : std::exchange(params.lasFileDetails, {})) {
            delete details;
        }
        for (const auto& [path, details] : std::exchange(params.rasterFileDetails, {})) {
            delete details;
        }
        return count;
    }

    /// By object name or control id.
    template <typename Widget = QWidget>
    Widget* Find(const QString& name) const {
        auto* widget = page->findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    template <typename Widget = QWidget>
    Widget* Find(int id) const {
        return Find<Widget>(ControlName(id));
    }
    template <typename Id>
    void Click(Id id) const {
        QTest::mouseClick(Find<QAbstractButton>(id), Qt::LeftButton);
    }
    /// A click on the mark of a check box or radio button, which is at its left.
    void Check(int id) const {
        auto* button = Find<QAbstractButton>(id);
        QTest::mouseClick(button, Qt::LeftButton, {}, {8, button->height() / 2});
    }
    bool Enabled(int id) const { return Find(id)->isEnabled(); }
    /// Presses a button of the dialog; true when that closes it.
    bool Press(const char* name) const {
        QTest::mouseClick(dialog->findChild<QPushButton*>(QLatin1String(name)), Qt::LeftButton);
        return !dialog->isVisible();
    }

    GridView& Grid() const { return *page->findChild<GridView*>(); }
    GridModel& Model() const { return *page->findChild<GridModel*>(); }
    DialogProgress& Progress() const { return *dialog->findChild<DialogProgress*>(); }
    int ColumnNamed(std::string_view name) const {
        const auto columns = Model().Columns();
        return static_cast<int>(std::ranges::find(columns, name, &GridColumn::name) - columns.begin());
    }
    /// A column of all rows, as shown.
    std::vector<std::wstring> Shown(std::string_view column) const {
        std::vector<std::wstring> texts;
        for (int row = 0; row < Model().rowCount(); ++row) {
            texts.push_back(ToWide(Model().index(row, ColumnNamed(column)).data().toString()));
        }
        return texts;
    }
    std::vector<std::wstring> Names() const { return Shown("fileName"); }

    std::wstring Outcome() const {
        return ToWide(dialog->findChild<QLabel*>(QStringLiteral("outcome"))->text());
    }
    /// The names of the rows that a filter finds.
    std::vector<std::wstring> Found(std::wstring_view text) const {
        const GridFilter filter(text, Model(), Grid().ShownColumns());
        EXPECT_EQ(filter.Problem(), L"");
        Model().SetFilter([&filter](std::size_t record) { return filter.Keeps(record); });
        std::vector<std::wstring> names = Names();
        Model().SetFilter({});
        return names;
    }

    void Drop(const std::vector<std::wstring>& paths) const { DropOn(*page, paths); }

    /// Every control has a text or an image, and a tooltip; no text is cut off.
    void ExpectTextsOfControls() const {
        for (const auto* button : page->findChildren<QAbstractButton*>(QRegularExpression("^c[0-9]+$"))) {
            const std::string name = button->objectName().toStdString();
            EXPECT_FALSE(button->text().isEmpty() && button->icon().isNull()) << name;
            EXPECT_FALSE(button->toolTip().isEmpty()) << name;
            EXPECT_EQ(button->whatsThis(), button->toolTip()) << name;
            EXPECT_GE(button->width(), button->fontMetrics().horizontalAdvance(button->text())) << name;
        }
        for (const auto* label : page->findChildren<QLabel*>(QRegularExpression("^c[0-9]+$"))) {
            EXPECT_FALSE(label->text().isEmpty()) << label->objectName().toStdString();
            EXPECT_GE(label->width(), label->minimumSizeHint().width()) << label->objectName().toStdString();
        }
    }

    /// No two texts in sight share a mnemonic.
    void ExpectLettersOfTheirOwn() const {
        std::map<QString, std::vector<QString>> texts;  // by letter
        const auto add = [&](const QString& text) {
            texts[QKeySequence::mnemonic(text).toString()].push_back(text);
        };
        for (const auto* button : dialog->findChildren<QAbstractButton*>()) {
            const bool hasWords = button->text().contains(QRegularExpression("[A-Za-z]"));
            const bool mayHaveNone = qobject_cast<const QRadioButton*>(button) != nullptr &&
                                     QKeySequence::mnemonic(button->text()).isEmpty();
            if (hasWords && !mayHaveNone && button->isVisibleTo(dialog.get())) {
                add(button->text());
            }
        }
        for (const auto* label : page->findChildren<QLabel*>()) {
            if (label->buddy() != nullptr && label->isVisibleTo(dialog.get())) {
                add(label->text());
            }
        }
        for (const auto* bar : dialog->findChildren<QTabBar*>()) {
            for (int tab = 0; tab < bar->count() && !bar->tabText(tab).isEmpty(); ++tab) {
                add(bar->tabText(tab));
            }
        }
        for (const auto& [letter, sharing] : texts) {
            EXPECT_NE(letter, QString()) << sharing.front().toStdString();
            EXPECT_EQ(sharing.size(), 1U) << sharing.back().toStdString();
        }
    }

    /// The dialog stays on the screen, wherever it was left; of the page, some rows and the options that are
    /// shown by `controls` (0: none) can be reached.
    void ExpectEverythingWithinReach(const std::vector<int>& controls) {
        ExpectWithinReach(controls, "first ");
        const std::pair<QPoint, QSize> elsewhere[] = {
            {{2000, 1500}, {1600, 1200}}, {{-300, -300}, {900, 500}}, {{0, 0}, {5000, 3000}}};
        for (const auto& [place, size] : elsewhere) {
            dialog->move(place);
            dialog->resize(size);
            dialog->done(QDialog::Rejected);
            Open();
            ExpectWithinReach(controls, "restored ");
        }
    }

    TemporaryFolder folder;
    AddFilesParams given;   ///< the record with the host's inputs
    AddFilesParams params;  ///< the record of this dialog
    ScriptedPage::Script lastPage;
    std::unique_ptr<AddFilesDlg> dialog;
    AddFilesPage* page = nullptr;

  private:
    void ExpectWithinReach(const std::vector<int>& controls, const char* when) const {
        const auto isWhole = [](const QWidget& widget) {
            return widget.visibleRegion().boundingRect().size() == widget.size();
        };
        QCoreApplication::processEvents();
        EXPECT_TRUE(dialog->screen()->availableGeometry().contains(dialog->frameGeometry())) << when;
        for (const char* name : {"ok", "cancel"}) {
            EXPECT_TRUE(isWhole(*dialog->findChild<QPushButton*>(QLatin1String(name)))) << when << name;
        }
        EXPECT_GE(Grid().height(), Grid().HeightOfRows(3)) << when;
        auto* options = page->findChild<OptionsPanel*>();
        for (const int id : controls) {
            auto* control = id == 0 ? nullptr : Find(id);
            if (control != nullptr && options->isAncestorOf(control)) {
                // Of an input field ensureWidgetVisible() shows the cursor only.
                const QRect place(control->mapTo(options->widget(), QPoint()), control->size());
                options->ensureVisible(place.right() + 1, place.bottom() + 1, 0, 0);
                options->ensureVisible(place.left(), place.top(), 0, 0);
                EXPECT_TRUE(isWhole(*control)) << when << id;
            }
        }
    }

    std::array<PageDescription, 2> pages_{};
    std::unique_ptr<QAbstractItemModelTester> tester_;
};

}  // namespace orvex::testing
