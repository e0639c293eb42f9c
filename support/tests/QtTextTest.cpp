#include "support/QtText.h"

#include <gtest/gtest.h>

#include <QTextDocument>

#include "support/Text.h"

namespace orvex {
namespace {

TEST(QtText, KeepsEveryTextWhateverItHolds) {
    const std::wstring texts[] = {
        L"",
        L"plain",
        std::wstring(L"nul\0inside", 10),
        L"\u00e4\u4e2d",
        FromUtf8("\xF0\x9F\x8C\x8D globe"),
        FromUtf8("bad \xFF\xFE bytes"),
        std::wstring{L'a', static_cast<wchar_t>(0xD800)},
        std::wstring{static_cast<wchar_t>(0xDC00), L'b'},
        std::wstring{static_cast<wchar_t>(0xDC00), static_cast<wchar_t>(0xD800)},
    };
    for (const std::wstring& text : texts) {
        EXPECT_EQ(ToWide(ToQString(text)), text) << ToUtf8(text);
    }
    const QString lone = QString(QChar(0xD83C)) + QStringLiteral("x") + QChar(0xDF0D);
    EXPECT_EQ(ToQString(ToWide(lone)), lone);
}

TEST(QtText, PairsBecomeOneCharacterWhereWideTextsAreUtf32) {
    const QString globe = QString::fromUtf8("\xF0\x9F\x8C\x8D");
    EXPECT_EQ(globe.size(), 2);
    EXPECT_EQ(ToWide(globe).size(), sizeof(wchar_t) == 4 ? 1U : 2U);
    if (sizeof(wchar_t) == 4) {
        EXPECT_EQ(ToQString(std::wstring{static_cast<wchar_t>(0x110000)}), QString(QChar(0xFFFD)));
    }
}

TEST(QtText, ATooltipShowsWhatLooksLikeMarkup) {
    for (const char* text : {"a<b>&\"c.tif", "<i>", "line\nline", "a  b"}) {
        const QString tooltip = TooltipText(QLatin1String(text));
        QTextDocument shown;
        Qt::mightBeRichText(tooltip) ? shown.setHtml(tooltip) : shown.setPlainText(tooltip);
        EXPECT_EQ(shown.toPlainText(), QLatin1String(text));
    }
}

}  // namespace
}  // namespace orvex
