#include "support/registration/RegistrarWords.h"

#include <utility>

#include "support/LDataError.h"
#include "support/Text.h"

namespace orvex {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

wchar_t Lower(wchar_t c) {
    return c >= L'A' && c <= L'Z' ? static_cast<wchar_t>(c + (L'a' - L'A')) : c;
}

}  // namespace

bool RegistrarWord::Is(std::wstring_view keyword) const {
    if (quoted || text.size() != keyword.size()) {
        return false;
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (Lower(text[i]) != Lower(keyword[i])) {
            return false;
        }
    }
    return true;
}

RegistrarWords::RegistrarWords(std::string_view text, const RegistrarReplacements& replacements)
    : rest_(text), replacements_(replacements), next_(Read()) {}

RegistrarWord RegistrarWords::Take() {
    RegistrarWord taken = std::move(next_);
    next_ = Read();
    return taken;
}

void RegistrarWords::Expect(std::wstring_view keyword) {
    if (!TakeIf(keyword)) {
        const std::wstring found = next_.IsEnd() ? L"the end" : L"\"" + next_.text + L"\"";
        Fail(next_.line, L"\"" + std::wstring(keyword) + L"\" is missing before " + found);
    }
}

bool RegistrarWords::TakeIf(std::wstring_view keyword) {
    const bool is = next_.Is(keyword);
    if (is) {
        Take();
    }
    return is;
}

void RegistrarWords::Fail(int line, std::wstring_view problem) {
    throw LDataError(L"Registration script, line " + std::to_wstring(line) + L": " + std::wstring(problem));
}

RegistrarWord RegistrarWords::Read() {
    while (!rest_.empty() && kBlanks.find(rest_.front()) != std::string_view::npos) {
        line_ += rest_.front() == '\n' ? 1 : 0;
        rest_.remove_prefix(1);
    }
    RegistrarWord word;
    word.line = line_;
    if (rest_.empty()) {
        return word;
    }
    word.quoted = rest_.front() == '\'';
    if (word.quoted) {
        word.text = Replaced(FromUtf8(ReadQuoted()));
    } else {
        const std::string_view plain = rest_.substr(0, rest_.find_first_of(kBlanks));
        rest_.remove_prefix(plain.size());
        word.text = Replaced(FromUtf8(plain));
        if (word.text.empty()) {
            Fail(line_, L"a word that is replaced by nothing must be quoted");
        }
    }
    return word;
}

std::string RegistrarWords::ReadQuoted() {
    std::string text;
    rest_.remove_prefix(1);
    for (;;) {
        const std::size_t quote = rest_.find('\'');
        if (quote == std::string_view::npos || rest_.substr(0, quote).find('\n') != std::string_view::npos) {
            Fail(line_, L"a quote is not closed");
        }
        text += rest_.substr(0, quote);
        rest_.remove_prefix(quote + 1);
        if (!rest_.starts_with('\'')) {
            break;
        }
        text += '\'';
        rest_.remove_prefix(1);
    }
    if (!rest_.empty() && kBlanks.find(rest_.front()) == std::string_view::npos) {
        Fail(line_, L"no blank behind a quote");
    }
    return text;
}

std::wstring RegistrarWords::Replaced(std::wstring_view text) const {
    std::wstring replaced;
    for (;;) {
        const std::size_t begin = text.find(L'%');
        replaced += text.substr(0, begin);
        if (begin == std::wstring_view::npos) {
            return replaced;
        }
        const std::size_t end = text.find(L'%', begin + 1);
        if (end == std::wstring_view::npos) {
            Fail(line_, L"a percent sign stands alone");
        }
        const std::wstring_view name = text.substr(begin + 1, end - begin - 1);
        const auto found = replacements_.find(name);
        if (!name.empty() && found == replacements_.end()) {
            Fail(line_, L"nothing is known to stand for %" + std::wstring(name) + L"%");
        }
        replaced += name.empty() ? L"%" : found->second;
        text.remove_prefix(end + 1);
    }
}

}  // namespace orvex
