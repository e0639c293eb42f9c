#include "dialog/details/DetailsHtml.h"

#include <gtest/gtest.h>

#include <QAbstractTextDocumentLayout>
#include <QLabel>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <initializer_list>

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

TEST(Details, SectionsStandBesideTheOneBeforeWhereThereIsRoom) {
    const auto titles = [](double width, std::initializer_list<bool> below) {
        std::vector<DetailSection> sections;
        for (const bool isBelow : below) {
            sections.push_back({text::kDetailsFile, {{text::kModifiedUtc, L"value"}}, isBelow});
        }
        QTextDocument shown;
        shown.setHtml(SectionsHtml(sections, QStringLiteral("#888888")));
        shown.setTextWidth(width);
        std::vector<QPointF> places;
        const QString title = ToQString(Text(text::kDetailsFile));
        for (QTextCursor at = shown.find(title); !at.isNull(); at = shown.find(title, at)) {
            places.push_back(shown.documentLayout()->blockBoundingRect(at.block()).topLeft());
        }
        return places;
    };
    const auto beside = titles(2000, {false, false, false});
    ASSERT_EQ(beside.size(), 3U);
    EXPECT_LT(beside[0].x(), beside[1].x());
    EXPECT_LT(beside[1].x(), beside[2].x());
    EXPECT_EQ(beside[0].y(), beside[2].y());
    const auto below = titles(2000, {false, true, false});
    ASSERT_EQ(below.size(), 3U);
    EXPECT_EQ(below[0].x(), below[1].x());
    EXPECT_EQ(below[2], beside[1]);
    const auto narrow = titles(beside[2].x() + 10, {false, false, false});  // and the margin
    ASSERT_EQ(narrow.size(), 3U);
    EXPECT_EQ(narrow[1], beside[1]);
    EXPECT_EQ(narrow[2].x(), narrow[0].x());
    EXPECT_GT(narrow[2].y(), narrow[0].y());
}

TEST(Details, ATitleThatLooksLikeMarkupIsShownAsItIs) {
    DetailsPanel panel({}, {});
    panel.Show({L"a<b>c.tif", {}});
    const auto* title = panel.findChild<QLabel*>(QStringLiteral("detailsTitle"));
    EXPECT_TRUE(title->text().endsWith(QStringLiteral("a<b>c.tif")));
    EXPECT_EQ(title->textFormat(), Qt::PlainText);
}

}  // namespace
}  // namespace orvex
