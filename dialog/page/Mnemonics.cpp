#include "dialog/page/Mnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <optional>

namespace orvex {

namespace {

constexpr QChar kMark = '&';

/// The letter that a text marks; "&&" is a plain "&".
std::optional<QChar> MarkedLetter(const QString& text) {
    for (qsizetype i = 0; i + 1 < text.size(); ++i) {
        if (text[i] == kMark) {
            if (text[i + 1] != kMark) {
                return text[i + 1].toUpper();
            }
            ++i;
        }
    }
    return std::nullopt;
}

bool IsFree(QChar letter, const std::set<QChar>& used) {
    return letter.isLetterOrNumber() && !used.contains(letter.toUpper());
}

/// Where the mnemonic goes; none when no letter is free.
std::optional<qsizetype> FreePosition(const QString& text, const std::set<QChar>& used) {
    for (const bool wordStartsOnly : {true, false}) {
        for (qsizetype i = 0; i < text.size(); ++i) {
            const bool startsWord = i == 0 || text[i - 1].isSpace();
            if ((startsWord || !wordStartsOnly) && IsFree(text[i], used)) {
                return i;
            }
        }
    }
    return std::nullopt;
}

}  // namespace

QString WithMnemonic(const QString& text, std::set<QChar>& used) {
    if (const auto marked = MarkedLetter(text)) {
        used.insert(*marked);
        return text;
    }
    const auto position = FreePosition(text, used);
    if (!position) {
        return text;
    }
    used.insert(text[*position].toUpper());
    return QString(text).insert(*position, kMark);
}

void AssignMnemonics(QWidget& parent) {
    std::set<QChar> used;
    for (QWidget* widget : parent.findChildren<QWidget*>()) {
        if (auto* button = qobject_cast<QAbstractButton*>(widget)) {
            button->setText(WithMnemonic(button->text(), used));
        } else if (auto* label = qobject_cast<QLabel*>(widget);
                   label != nullptr && label->buddy() != nullptr) {
            label->setText(WithMnemonic(label->text(), used));
        }
    }
}

}  // namespace orvex
