#include "dialog/details/DetailsHtml.h"

#include <gtest/gtest.h>

#include <QLabel>

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

}  // namespace
}  // namespace orvex
