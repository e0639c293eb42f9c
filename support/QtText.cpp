#include "support/QtText.h"

#include <QDir>
#include <QMimeData>
#include <QTextDocument>
#include <QUrl>

namespace orvex {

// QString::fromStdWString and toStdWString replace lone surrogates where wchar_t has 32 bits; file names that
// are no UTF-8 carry such surrogates.
QString ToQString(std::wstring_view text) {
    QString out;
    out.reserve(static_cast<qsizetype>(text.size()));
    for (const wchar_t character : text) {
        const auto code = static_cast<char32_t>(character);
        if (code < 0x10000) {
            out.append(QChar(static_cast<char16_t>(code)));
        } else if (code <= 0x10FFFF) {
            out.append(QChar(QChar::highSurrogate(code)));
            out.append(QChar(QChar::lowSurrogate(code)));
        } else {
            out.append(QChar(QChar::ReplacementCharacter));
        }
    }
    return out;
}

std::wstring ToWide(const QString& text) {
    std::wstring out;
    out.reserve(static_cast<std::size_t>(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const QChar unit = text[i];
        const bool pair = unit.isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate();
        if (sizeof(wchar_t) > 2 && pair) {
            out.push_back(static_cast<wchar_t>(QChar::surrogateToUcs4(unit, text[i + 1])));
            ++i;
        } else {
            out.push_back(static_cast<wchar_t>(unit.unicode()));
        }
    }
    return out;
}

QString TooltipText(const QString& text) {
    return Qt::mightBeRichText(text) ? Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal) : text;
}

std::wstring ToWidePath(const QString& path) {
    return ToWide(QDir::toNativeSeparators(path));
}

std::vector<std::wstring> LocalPaths(const QMimeData& data) {
    std::vector<std::wstring> paths;
    for (const QUrl& url : data.urls()) {
        if (url.isLocalFile()) {
            paths.push_back(ToWidePath(url.toLocalFile()));
        }
    }
    return paths;
}

}  // namespace orvex
