#pragma once
#include <QString>
#include <set>

class QWidget;

namespace orvex {

/// The text with "&" before the letter that it gets as its mnemonic: the first letter of a word if one is
/// free, else any letter or digit; unchanged when none is free or the text has one. `used`: the upper-cased
/// letters that are taken.
QString WithMnemonic(const QString& text, std::set<QChar>& used);

/// Gives every button, and every label with a buddy, below `parent` a mnemonic, in the order of creation.
/// Translated texts need no mnemonics of their own.
void AssignMnemonics(QWidget& parent);

}  // namespace orvex
