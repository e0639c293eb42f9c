#include "dialog/grid/GridFilter.h"

#include <algorithm>
#include <charconv>

#include "support/Format.h"
#include "support/NaturalOrder.h"

namespace orvex {
namespace {

constexpr std::size_t kMostListed = 12;  // columns in a problem

bool IsBlank(wchar_t c) {
    return c == L' ' || c == L'\t' || c == L'\u00A0';
}

bool StartsNoCase(std::wstring_view text, std::wstring_view start) {
    return EqualNoCase(text.substr(0, start.size()), start);
}

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

/// "1,234,567.8" without its commas; "1,5" with a point.
std::string WithPoint(std::string_view text) {
    std::string out;
    bool groups = !text.empty() && IsDigit(text[0]);
    for (std::size_t comma = text.find(','); comma != text.npos; comma = text.find(',', comma + 1)) {
        const std::string_view after = text.substr(comma + 1);
        const auto digits = std::find_if_not(after.begin(), after.end(), IsDigit) - after.begin();
        groups = groups && comma > 0 && digits == 3;
    }
    for (const char c : text) {
        if (c != ',') {
            out.push_back(c);
        } else if (!groups) {
            out.push_back('.');
        }
    }
    return out;
}

std::optional<double> NumberIn(std::string_view text) {
    constexpr std::string_view kAuthority = "EPSG:";
    if (text.starts_with(kAuthority)) {
        text.remove_prefix(kAuthority.size());
    }
    const std::string plain = WithPoint(text);
    if (plain.empty() || plain.find_first_not_of("+-.0123456789E") != plain.npos) {
        return std::nullopt;
    }
    const char* begin = plain.data() + (plain[0] == '+' ? 1 : 0);
    const char* end = plain.data() + plain.size();
    double number = 0;
    const auto [stop, error] = std::from_chars(begin, end, number);
    return error == std::errc() && stop == end ? std::optional(number) : std::nullopt;
}

int OrderOf(double a, double b) {
    return a < b ? -1 : (a > b ? 1 : 0);
}

}  // namespace

/// Takes what was typed apart.
class GridFilter::Reader {
  public:
    explicit Reader(std::wstring_view text) : rest_(text) { SkipBlanks(); }

    bool IsAtEnd() const { return rest_.empty(); }

    bool TakeMinus() {
        const bool minus = rest_.starts_with(L'-');
        rest_.remove_prefix(minus ? 1 : 0);
        return minus;
    }

    /// A quoted phrase, or a word up to a blank and, in a name, up to a sign.
    std::wstring_view TakeWord(bool isName) {
        if (rest_.starts_with(L'"')) {
            const std::size_t end = std::min(rest_.find(L'"', 1), rest_.size());
            return Take(1, end, end + 1);
        }
        std::size_t end = 0;
        while (end < rest_.size() && !IsBlank(rest_[end]) && !(isName && SignLength(end) > 0)) {
            ++end;
        }
        return Take(0, end, end);
    }

    bool IsAtQuote() const { return rest_.starts_with(L'"'); }

    /// Empty if there is none.
    std::wstring_view TakeSign() {
        const std::size_t length = SignLength(0);
        return Take(0, length, length);
    }

  private:
    std::size_t SignLength(std::size_t at) const {
        for (const std::wstring_view sign : {L"!=", L"<=", L">=", L"==", L"=", L"<", L">"}) {
            if (rest_.substr(at).starts_with(sign)) {
                return sign.size();
            }
        }
        return 0;
    }

    std::wstring_view Take(std::size_t begin, std::size_t end, std::size_t next) {
        const std::wstring_view taken = rest_.substr(begin, end - begin);
        rest_.remove_prefix(std::min(next, rest_.size()));
        SkipBlanks();
        return taken;
    }

    void SkipBlanks() {
        while (!rest_.empty() && IsBlank(rest_.front())) {
            rest_.remove_prefix(1);
        }
    }

    std::wstring_view rest_;
};

GridFilter::GridFilter(std::wstring_view text, const GridModel& model, std::vector<int> shownColumns)
    : model_(&model), shownColumns_(std::move(shownColumns)) {
    for (Reader reader(text); !reader.IsAtEnd();) {
        Part part;
        part.excludes = reader.TakeMinus();
        const std::wstring_view word = reader.TakeWord(true);
        const std::wstring_view sign = reader.TakeSign();
        if (!sign.empty()) {
            const bool isQuoted = reader.IsAtQuote();
            const std::wstring_view value = reader.TakeWord(false);
            if (word.empty()) {
                Tell(FormatText(Text(text::kFilterNameMissing), {sign}));
            } else if (value.empty() && !isQuoted) {
                Tell(FormatText(Text(text::kFilterValueMissing),
                                {std::wstring(word) + L" " + std::wstring(sign)}));
            } else {
                AddCondition(std::move(part), word, sign, value);
            }
        } else if (!word.empty()) {
            part.columns = shownColumns_;
            part.text = GridSearchText::Folded(word);
            parts_.push_back(std::move(part));
        }
    }
}

void GridFilter::AddCondition(Part part, std::wstring_view name, std::wstring_view sign,
                              std::wstring_view value) {
    part.columns = ColumnsCalled(name);
    if (part.columns.empty()) {
        return;
    }
    part.text = GridSearchText::Folded(value);
    part.number = NumberIn(part.text);
    const bool numbersOnly = std::all_of(part.columns.begin(), part.columns.end(), [this](int column) {
        return model_->Columns()[static_cast<std::size_t>(column)].kind == CellKind::Number;
    });
    if (numbersOnly && !part.number && !part.text.empty()) {
        Tell(FormatText(Text(text::kFilterNoNumber), {value}));
        return;
    }
    const bool orEqual = sign.size() == 2;
    switch (sign.front()) {
        case L'<':
            part.relation = orEqual ? Relation::LessOrEqual : Relation::Less;
            break;
        case L'>':
            part.relation = orEqual ? Relation::GreaterOrEqual : Relation::Greater;
            break;
        default:
            part.relation = Relation::Equal;
            part.excludes = part.excludes != (sign.front() == L'!');
    }
    parts_.push_back(std::move(part));
}

std::vector<int> GridFilter::ColumnsCalled(std::wstring_view name) {
    const auto columns = model_->Columns();
    const auto called = [&](bool (*matches)(std::wstring_view, std::wstring_view)) {
        std::vector<int> found;
        for (int i = 0; i < static_cast<int>(columns.size()); ++i) {
            const GridColumn& column = columns[static_cast<std::size_t>(i)];
            if (IsOffered(column) &&
                (matches(FromUtf8(column.name), name) || matches(FromUtf8(column.alsoKnownAs), name) ||
                 matches(Text(column.caption), name))) {
                found.push_back(i);
            }
        }
        return found;
    };
    std::vector<int> found = called(EqualNoCase);
    if (!found.empty()) {
        return found;
    }
    found = called(StartsNoCase);
    if (found.size() == 1) {
        return found;
    }
    Tell(found.empty() ? FormatText(Text(text::kFilterNoColumn), {name, Captions(shownColumns_)})
                       : FormatText(Text(text::kFilterSeveralColumns), {name, Captions(found)}));
    return {};
}

std::wstring GridFilter::Captions(const std::vector<int>& columns) const {
    std::wstring list;
    std::size_t count = 0;
    for (const int column : columns) {
        const std::wstring caption = Text(model_->Columns()[static_cast<std::size_t>(column)].caption);
        if (caption.empty()) {
            continue;
        }
        if (count++ == kMostListed) {
            return list + L", ...";
        }
        list += (list.empty() ? L"" : L", ") + caption;
    }
    return list;
}

void GridFilter::Tell(std::wstring problem) {
    if (problem_.empty()) {
        problem_ = std::move(problem);
    }
}

bool GridFilter::Holds(Relation relation, int order) {
    switch (relation) {
        case Relation::Equal:
            return order == 0;
        case Relation::Less:
            return order < 0;
        case Relation::LessOrEqual:
            return order <= 0;
        case Relation::Greater:
            return order > 0;
        case Relation::GreaterOrEqual:
            break;
    }
    return order >= 0;
}

bool GridFilter::HoldsFor(const Part& part, std::string_view cell) {
    if (cell.empty() || part.text.empty()) {
        return *part.relation == Relation::Equal && cell == part.text;
    }
    const std::optional<double> number = part.number ? NumberIn(cell) : std::nullopt;
    if (number) {
        return Holds(*part.relation, OrderOf(*number, *part.number));
    }
    if (*part.relation == Relation::Equal) {
        return cell == part.text;
    }
    return Holds(*part.relation, NaturalKey(FromUtf8(cell)).compare(NaturalKey(FromUtf8(part.text))));
}

bool GridFilter::HoldsFor(const Part& part, const GridCell& cell) {
    const auto* number = std::get_if<double>(&cell);
    return number != nullptr && part.number && *number == *number &&
           Holds(*part.relation, OrderOf(*number, *part.number));
}

void GridFilter::MarkTexts(const Part& part, int column, std::vector<std::uint8_t>& hits) const {
    const GridSearchText& texts = model_->SearchText(column);
    std::vector<std::uint8_t> matches;
    if (part.relation) {
        for (std::size_t number = 0; number < texts.TextCount(); ++number) {
            matches.push_back(HoldsFor(part, texts.TextAt(number)) ? 1 : 0);
        }
    } else {
        matches = texts.TextsWith(part.text);
    }
    for (std::size_t record = 0; record < hits.size(); ++record) {
        hits[record] |= matches[texts.NumberOf(record)];
    }
}

void GridFilter::MarkNumbers(const Part& part, int column, std::vector<std::uint8_t>& hits) const {
    for (std::size_t record = 0; record < hits.size(); ++record) {
        if (HoldsFor(part, model_->Value(record, column))) {
            hits[record] = 1;
        }
    }
}

void GridFilter::FindAll() const {
    kept_.assign(model_->Records(), 1);
    for (const Part& part : parts_) {
        std::vector<std::uint8_t> hits(kept_.size(), 0);
        for (const int column : part.columns) {
            const bool isNumber =
                model_->Columns()[static_cast<std::size_t>(column)].kind == CellKind::Number;
            if (isNumber && part.relation) {
                MarkNumbers(part, column, hits);
            }
            if (!isNumber || !part.relation) {
                MarkTexts(part, column, hits);
            } else if (Holds(*part.relation, 0)) {  // a number also equals what is shown of it, rounded
                Part equal = part;
                equal.relation = Relation::Equal;
                MarkTexts(equal, column, hits);
            }
        }
        for (std::size_t record = 0; record < hits.size(); ++record) {
            if ((hits[record] != 0) == part.excludes) {
                kept_[record] = 0;
            }
        }
    }
}

bool GridFilter::Keeps(std::size_t record) const {
    if (parts_.empty()) {
        return true;
    }
    if (revision_ != model_->Revision()) {
        FindAll();
        revision_ = model_->Revision();
    }
    return kept_[record] != 0;
}

}  // namespace orvex
