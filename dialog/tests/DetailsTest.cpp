#include "dialog/details/DetailsHtml.h"

#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QLabel>
#include <QMimeData>
#include <QTest>
#include <QTextEdit>
#include <QToolButton>

#include "dialog/details/DetailsPanel.h"
#include "support/QtText.h"

namespace orvex {
namespace {

TEST(Details, EscapesTextsAndPutsTheFailureFirstAndOnce) {
    const Finding findings[] = {{FindingSeverity::Error, L"<broken>"}, {FindingSeverity::Note, L"a & b"}};
    const QString html = FindingsHtml(findings, L"<broken>", L"fine");
    EXPECT_EQ(html.count(QStringLiteral("&lt;broken&gt;")), 1);
    EXPECT_TRUE(html.contains(QStringLiteral("a &amp; b")));
    EXPECT_FALSE(html.contains(QStringLiteral("fine")));
    EXPECT_LT(html.indexOf(QStringLiteral("broken")), html.indexOf(QStringLiteral("a &amp; b")));
    EXPECT_TRUE(FindingsHtml({}, {}, L"fine").contains(QStringLiteral("fine")));
    EXPECT_EQ(TextHtml(L"one\n<two>"), QStringLiteral("one<br>&lt;two&gt;"));
}

TEST(Details, ATitleThatLooksLikeMarkupIsShownAsItIs) {
    DetailsPanel panel({}, {});
    panel.Show({L"a<b>c.tif", {}});
    const auto* title = panel.findChild<QLabel*>(QStringLiteral("detailsTitle"));
    EXPECT_TRUE(title->text().endsWith(QStringLiteral("a<b>c.tif")));
    EXPECT_EQ(title->textFormat(), Qt::PlainText);
}

class DetailsView : public ::testing::Test {
  protected:
    DetailsView() { panel.resize(600, 400); }

    void Show(const QString& html) { panel.Show({{}, {html}}); }
    QString Copied() const {
        view->copy();
        return QGuiApplication::clipboard()->text();
    }

    const DetailsTab tab_{"html", text::kDetailsOverviewTab};
    DetailsPanel panel{{}, {&tab_, 1}};
    QTextEdit* view = panel.findChild<QTextEdit*>(QStringLiteral("html"));
};

TEST_F(DetailsView, LabelsAndValuesAreCopiedOnOneLine) {
    const Finding findings[] = {{FindingSeverity::Error, L"broken"}, {FindingSeverity::Note, L"odd"}};
    const DetailSection sections[] = {
        {text::kDetailsFile, {{text::kUnits, L"m"}, {text::kLasLayer, L"a\nb"}}},
        {text::kDetailsPoints, {{text::kLasPoints, L"3,000"}}}};
    Show(FindingsHtml(findings, {}, {}) + SectionsHtml(sections, QStringLiteral("#808080")));
    view->selectAll();
    EXPECT_EQ(ToWide(Copied()), L"broken\nodd\n" + Text(text::kDetailsFile) + L"\n" + Text(text::kUnits) +
                                    L"\tm\n" + Text(text::kLasLayer) + L"\ta\nb\n" +
                                    Text(text::kDetailsPoints) + L"\n" + Text(text::kLasPoints) + L"\t3,000");
    EXPECT_TRUE(QGuiApplication::clipboard()->mimeData()->hasHtml());

    Show(
        QStringLiteral("<table><tr><td>1</td><td></td><td>x</td></tr><tr><td>2</td><td>y</td></tr></table>"));
    view->selectAll();
    EXPECT_EQ(Copied(), QStringLiteral("1\t\tx\n2\ty\t"));
    Show(QStringLiteral("<p>one two</p>"));
    view->find(QStringLiteral("two"));
    EXPECT_EQ(Copied(), QStringLiteral("two"));
}

TEST_F(DetailsView, ShowsThatItHasTheFocus) {
    panel.show();
    panel.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&panel));
    const auto frame = [this] { return view->grab().toImage().pixelColor(view->width() / 2, 0); };
    const QColor highlight = view->palette().color(QPalette::Highlight);
    EXPECT_NE(frame(), highlight);
    view->setFocus();
    EXPECT_EQ(frame(), highlight);
    view->clearFocus();
    EXPECT_NE(frame(), highlight);
}

TEST_F(DetailsView, TheFoldArrowSaysWhyItCannotBePressed) {
    const auto* fold = panel.findChild<QToolButton*>(QStringLiteral("detailsFold"));
    for (const bool crowded : {false, true, false}) {
        panel.SetCrowded(crowded);
        EXPECT_EQ(fold->isEnabled(), !crowded);
        EXPECT_EQ(ToWide(fold->toolTip()),
                  Text(crowded ? text::kDetailsNoRoomTooltip : text::kDetailsFoldTooltip));
    }
}

}  // namespace
}  // namespace orvex
