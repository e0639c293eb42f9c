#pragma once
#include <QString>
#include <set>

class QWidget;

namespace orvex {

/// The text with "&" before the letter that it gets as its mnemonic: the first letter of a word if one is
/// free, else any letter or digit; unchanged when none is free or the text has one. `used`: the upper-cased
/// letters that are taken.
QString WithMnemonic(const QString& text, std::set<QChar>& used);

/// The text without the marks of WithMnemonic; "&&" stays.
QString WithoutMnemonic(const QString& text);

/// Gives every button, every label with a buddy and every tab below `parent` a mnemonic, in the order of
/// creation, radio buttons last, but none to what comes and goes and is hidden now; those that they have are
/// given anew. Translated texts need no mnemonics of their own. `used`: the letters that are taken around
/// `parent`.
void AssignMnemonics(QWidget& parent, std::set<QChar> used = {});

}  // namespace orvex
