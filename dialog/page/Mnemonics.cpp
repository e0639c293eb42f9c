#include "dialog/page/Mnemonics.h"

#include <QAbstractButton>
#include <QLabel>
#include <QRadioButton>
#include <QTabBar>
#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <utility>
#include <vector>

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

/// Where the mnemonic can go, the best place first.
std::vector<qsizetype> FreePositions(const QString& text, const std::set<QChar>& used) {
    std::vector<qsizetype> starts;
    std::vector<qsizetype> others;
    for (qsizetype i = 0; i < text.size(); ++i) {
        if (IsFree(text[i], used)) {
            (i == 0 || text[i - 1].isSpace() ? starts : others).push_back(i);
        }
    }
    starts.insert(starts.end(), others.begin(), others.end());
    return starts;
}

/// Letters for several texts. One whose letters are all taken moves another to a letter that is free.
class Assignment {
  public:
    explicit Assignment(std::set<QChar> used) : used_(std::move(used)) {}

    void Add(const QString& text, std::function<void(const QString&)> show) {
        texts_.push_back({WithoutMnemonic(text), std::move(show), std::nullopt});
    }

    void Apply() {
        for (std::size_t i = 0; i < texts_.size(); ++i) {
            std::set<QChar> tried;
            Place(i, tried);
        }
        for (const Text& text : texts_) {
            text.show(text.position ? QString(text.words).insert(*text.position, kMark) : text.words);
        }
    }

  private:
    struct Text {
        QString words;
        std::function<void(const QString&)> show;
        std::optional<qsizetype> position;
    };

    bool Place(std::size_t index, std::set<QChar>& tried) {
        const QString& words = texts_[index].words;
        const std::vector<qsizetype> positions = FreePositions(words, used_);
        const auto take = [&](qsizetype position) {
            owners_[words[position].toUpper()] = index;
            texts_[index].position = position;
            return true;
        };
        for (const qsizetype position : positions) {
            if (!owners_.contains(words[position].toUpper())) {
                return take(position);
            }
        }
        return std::ranges::any_of(positions, [&](qsizetype position) {
            const QChar letter = words[position].toUpper();
            return tried.insert(letter).second && Place(owners_.at(letter), tried) && take(position);
        });
    }

    const std::set<QChar> used_;
    std::vector<Text> texts_;
    std::map<QChar, std::size_t> owners_;
};

}  // namespace

QString WithMnemonic(const QString& text, std::set<QChar>& used) {
    if (const auto marked = MarkedLetter(text)) {
        used.insert(*marked);
        return text;
    }
    const std::vector<qsizetype> positions = FreePositions(text, used);
    if (positions.empty()) {
        return text;
    }
    used.insert(text[positions.front()].toUpper());
    return QString(text).insert(positions.front(), kMark);
}

QString WithoutMnemonic(const QString& text) {
    QString plain;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const bool isPlain = text[i] != kMark;
        if (!isPlain && i + 1 < text.size() && text[i + 1] == kMark) {
            plain += QStringLiteral("&&");
            ++i;
        } else if (isPlain) {
            plain += text[i];
        }
    }
    return plain;
}

void AssignMnemonics(QWidget& parent, std::set<QChar> used) {
    Assignment letters(std::move(used));
    QList<QWidget*> widgets = parent.findChildren<QWidget*>();
    // There can be more texts than letters. The arrow keys reach a radio button from the next one.
    std::stable_partition(widgets.begin(), widgets.end(), [](const QWidget* widget) {
        return qobject_cast<const QRadioButton*>(widget) == nullptr;
    });
    for (QWidget* widget : widgets) {
        const bool isAway = widget->isHidden() && widget->testAttribute(Qt::WA_WState_ExplicitShowHide);
        if (auto* button = qobject_cast<QAbstractButton*>(widget); button != nullptr && !isAway) {
            letters.Add(button->text(), [button](const QString& text) { button->setText(text); });
        } else if (auto* label = qobject_cast<QLabel*>(widget);
                   label != nullptr && label->buddy() != nullptr && !isAway) {
            letters.Add(label->text(), [label](const QString& text) { label->setText(text); });
        } else if (auto* tabs = qobject_cast<QTabBar*>(widget)) {
            for (int tab = 0; tab < tabs->count(); ++tab) {
                letters.Add(tabs->tabText(tab), [=](const QString& text) { tabs->setTabText(tab, text); });
            }
        }
    }
    letters.Apply();
}

}  // namespace orvex
