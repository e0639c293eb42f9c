#include "tools/rules/SourceText.h"

namespace orvex::rules {
namespace {

bool IsWordCharacter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
}

// Blanks what is no code; line breaks stay, so that line numbers do.
class Blanker {
  public:
    explicit Blanker(std::string_view bytes) : text_(bytes) {}

    std::string Run() {
        while (at_ < text_.size()) {
            if (Starts("//")) {
                BlankTo(text_.find('\n', at_));
            } else if (Starts("/*")) {
                BlankPast(text_.find("*/", at_ + 2), 2);
            } else if (text_[at_] == '"') {
                IsRaw() ? BlankRaw() : BlankLiteral('"');
            } else if (text_[at_] == '\'' && !IsDigitSeparator()) {
                BlankLiteral('\'');
            } else {
                ++at_;
            }
        }
        return std::move(text_);
    }

  private:
    bool Starts(std::string_view what) const { return std::string_view(text_).substr(at_).starts_with(what); }
    bool IsDigitSeparator() const {
        return at_ > 0 && IsWordCharacter(text_[at_ - 1]) && !IsPrefixedCharacter();
    }
    // L'x', u'x', U'x' and u8'x' are literals although a letter stands before them.
    bool IsPrefixedCharacter() const {
        std::size_t start = at_;
        while (start > 0 && IsWordCharacter(text_[start - 1])) {
            --start;
        }
        const std::string_view prefix = std::string_view(text_).substr(start, at_ - start);
        return prefix == "L" || prefix == "u" || prefix == "U" || prefix == "u8";
    }
    bool IsRaw() const { return at_ > 0 && text_[at_ - 1] == 'R'; }

    void BlankTo(std::size_t end) {
        end = end == std::string::npos ? text_.size() : end;
        for (; at_ < end; ++at_) {
            if (text_[at_] != '\n') {
                text_[at_] = ' ';
            }
        }
    }
    void BlankPast(std::size_t found, std::size_t length) {
        BlankTo(found == std::string::npos ? found : found + length);
    }
    void BlankRaw() {
        const std::size_t open = text_.find('(', at_);
        if (open == std::string::npos) {
            BlankTo(open);
            return;
        }
        const std::string close = ")" + text_.substr(at_ + 1, open - at_ - 1) + "\"";
        BlankPast(text_.find(close, open), close.size());
    }
    void BlankLiteral(char quote) {
        std::size_t end = at_ + 1;
        while (end < text_.size() && text_[end] != quote && text_[end] != '\n') {
            end += text_[end] == '\\' ? 2 : 1;
        }
        BlankTo(end < text_.size() ? end + 1 : end);
    }

    std::string text_;
    std::size_t at_ = 0;
};

std::vector<std::string> Lines(std::string_view text) {
    std::vector<std::string> lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

std::string_view SkipBlanks(std::string_view text) {
    const std::size_t first = text.find_first_not_of(" \t");
    return text.substr(first == std::string_view::npos ? text.size() : first);
}

bool TakeWord(std::string_view& text, std::string_view word) {
    text = SkipBlanks(text);
    if (!text.starts_with(word)) {
        return false;
    }
    text.remove_prefix(word.size());
    return true;
}

// `code` says that the line is a directive and no comment; the name stands in `raw` only.
bool ParseInclude(std::string_view code, std::string_view raw, Include& include) {
    if (!TakeWord(code, "#") || !TakeWord(code, "include")) {
        return false;
    }
    const std::size_t open = raw.find_first_of("<\"");
    if (open == std::string_view::npos) {
        return false;
    }
    include.quoted = raw[open] == '"';
    const std::size_t close = raw.find(include.quoted ? '"' : '>', open + 1);
    include.name = raw.substr(open + 1, close == std::string_view::npos ? close : close - open - 1);
    return true;
}

}  // namespace

SourceText ReadSource(std::string_view bytes) {
    SourceText source;
    source.code = Lines(Blanker(bytes).Run());
    const std::vector<std::string> raw = Lines(bytes);
    for (std::size_t i = 0; i < source.code.size(); ++i) {
        Include include;
        if (ParseInclude(source.code[i], raw[i], include)) {
            include.line = i + 1;
            source.includes.push_back(std::move(include));
        }
    }
    return source;
}

bool HasWord(std::string_view code, std::string_view word) {
    for (std::size_t at = code.find(word); at != std::string_view::npos; at = code.find(word, at + 1)) {
        const std::size_t end = at + word.size();
        if ((at == 0 || !IsWordCharacter(code[at - 1])) &&
            (end == code.size() || !IsWordCharacter(code[end]))) {
            return true;
        }
    }
    return false;
}

}  // namespace orvex::rules
