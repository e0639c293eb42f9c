#pragma once
#include <string>
#include <string_view>

#include "support/registration/RegistrarScript.h"

namespace orvex {

/// One word of a registrar script.
struct RegistrarWord {
    std::wstring text;  ///< without quotes, with the replacements
    bool quoted = false;
    int line = 0;  ///< from 1

    /// True for the keyword or the sign, which are never quoted. The case of ASCII letters makes no
    /// difference.
    bool Is(std::wstring_view keyword) const;
    /// The end of the script.
    bool IsEnd() const { return text.empty() && !quoted; }
};

/// Takes a script apart. Throws LDataError, which names the line.
class RegistrarWords {
  public:
    /// Both must outlive this object.
    RegistrarWords(std::string_view text, const RegistrarReplacements& replacements);

    /// The word that comes next; asking does not take it.
    const RegistrarWord& Next() const { return next_; }
    RegistrarWord Take();
    /// Throws unless the next word is this one, and takes it.
    void Expect(std::wstring_view keyword);
    /// Takes the next word if it is this one.
    bool TakeIf(std::wstring_view keyword);
    [[noreturn]] static void Fail(int line, std::wstring_view problem);

  private:
    RegistrarWord Read();
    std::string ReadQuoted();
    std::wstring Replaced(std::wstring_view text) const;

    std::string_view rest_;
    const RegistrarReplacements& replacements_;
    int line_ = 1;
    RegistrarWord next_;
};

}  // namespace orvex
