#include "host/companion/CompanionOptions.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>

#include "host/terminal/Terminal.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {
namespace {

using enum CompanionAction;

struct Option {
    const wchar_t* name;
    CompanionAction action;
    bool hasValue;
    /// Stores the value; false if it is not one.
    bool (*set)(CompanionOptions& options, const std::wstring& value);
    /// Text about a wrong value, with these arguments behind the option's name.
    StringId error{};
    std::uint64_t least = 0;
    std::uint64_t most = 0;
    const wchar_t* values = L"";
};

constexpr std::uint64_t kAnyNumber = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t kMostFactor = std::numeric_limits<std::uint16_t>::max();
constexpr std::uint64_t kMegabyte = std::uint64_t{1} << 20U;

/// Stores a number in a member that its range fits into.
template <auto Member, std::uint64_t Least, std::uint64_t Most, std::uint64_t Unit = 1>
bool SetNumber(CompanionOptions& options, const std::wstring& value) {
    const std::optional<std::uint64_t> number = ParseNumber(value, Least, Most);
    if (number) {
        auto& member = std::invoke(Member, options);
        member = static_cast<std::remove_reference_t<decltype(member)>>(*number * Unit);
    }
    return number.has_value();
}

template <auto Member, std::uint64_t Least, std::uint64_t Most, std::uint64_t Unit = 1>
constexpr Option Number(const wchar_t* name, CompanionAction action) {
    return {name,  action, true, SetNumber<Member, Least, Most, Unit>, text::kCompanionNumberRange,
            Least, Most};
}

template <auto Member>
constexpr Option Switch(const wchar_t* name, CompanionAction action) {
    return {name, action, false, [](CompanionOptions& options, const std::wstring&) {
                std::invoke(Member, options) = true;
                return true;
            }};
}

/// One of two words, for false and true.
constexpr bool Choose(const std::wstring& value, const wchar_t* no, const wchar_t* yes, bool& isYes) {
    isYes = value == yes;
    return isYes || value == no;
}

bool SetOrder(CompanionOptions& options, const std::wstring& value) {
    bool isRandom = false;
    const bool isKnown = Choose(value, L"file", L"random", isRandom);
    options.settings.randomOrder = isRandom;
    return isKnown;
}

bool SetColour(CompanionOptions& options, const std::wstring& value) {
    bool isClass = false;
    const bool isKnown = Choose(value, L"height", L"classification", isClass);
    options.colour = isClass ? PointColour::Classification : PointColour::Height;
    return isKnown;
}

bool SetOutput(CompanionOptions& options, const std::wstring& value) {
    options.output = value;
    return UpperExtensionOf(value) == L".PNG";
}

bool SetExtent(CompanionOptions& options, const std::wstring& value) {
    const std::string text = ToUtf8(value);
    const char* at = text.data();
    const char* const end = at + text.size();
    std::array<double, 4> extent{};
    for (std::size_t i = 0; i < extent.size(); ++i) {
        const auto [rest, error] = std::from_chars(at, end, extent[i]);
        const bool isLast = i + 1 == extent.size();
        if (error != std::errc() || !std::isfinite(extent[i]) || (rest == end) != isLast ||
            (!isLast && *rest != ',')) {
            return false;
        }
        at = isLast ? rest : rest + 1;
    }
    options.extent = extent;
    return extent[0] < extent[2] && extent[1] < extent[3];
}

// Members of a member, which no pointer to a member names.
std::uint16_t& Factor(CompanionOptions& options) {
    return options.settings.factor;
}
std::uint64_t& Memory(CompanionOptions& options) {
    return options.settings.memory;
}
unsigned& Threads(CompanionOptions& options) {
    return options.settings.threads;
}
std::uint64_t& Seed(CompanionOptions& options) {
    return options.settings.seed;
}

constexpr Option kOptions[] = {
    Number<Factor, 1, kMostFactor>(L"--factor", Build),
    Number<Memory, 16, 1U << 20U, kMegabyte>(L"--memory", Build),
    Number<Threads, 1, 256>(L"--threads", Build),
    Number<Seed, 0, kAnyNumber>(L"--seed", Build),
    {L"--order", Build, true, SetOrder, text::kCompanionChoice, 0, 0, L"random | file"},
    Switch<&CompanionOptions::overwrite>(L"--overwrite", Build),
    Switch<&CompanionOptions::deep>(L"--deep", Check),
    Number<&CompanionOptions::points, 1, kAnyNumber>(L"--points", Show),
    {L"--extent", Show, true, SetExtent, text::kCompanionExtentForm},
    Switch<&CompanionOptions::entries>(L"--entries", Show),
    {L"--colour", Show, true, SetColour, text::kCompanionChoice, 0, 0, L"height | classification"},
    Number<&CompanionOptions::width, 16, 4096>(L"--width", Show),
    {L"--output", Show, true, SetOutput, text::kCompanionChoice, 0, 0, L"*.png"},
};

std::wstring ErrorOf(const Option& option) {
    if (option.error == text::kCompanionNumberRange) {
        return FormatText(Text(option.error), {option.name, option.least, option.most});
    }
    return FormatText(Text(option.error), {option.name, option.values});
}

/// The option's value, which is empty for a switch; nullopt if `arguments[i]` is another option.
std::optional<std::wstring> ValueOf(const Option& option, const std::vector<std::wstring>& arguments,
                                    std::size_t& i) {
    if (option.hasValue) {
        return orvex::ValueOf(option.name, arguments, i);
    }
    return arguments[i] == option.name ? std::optional(std::wstring()) : std::nullopt;
}

bool IsHelp(const std::wstring& argument) {
    return argument == L"--help" || argument == L"-h";
}

void ParseOption(const std::vector<std::wstring>& arguments, std::size_t& i, CompanionOptions& options) {
    options.help = IsHelp(arguments[i]);
    if (options.help) {
        return;
    }
    for (const Option& option : kOptions) {
        if (option.action != options.action) {
            continue;
        }
        if (const auto value = ValueOf(option, arguments, i)) {
            options.error = option.set(options, *value) ? L"" : ErrorOf(option);
            return;
        }
    }
    options.error = WithoutControls(FormatText(Text(text::kInspectUnknownOption), {arguments[i]}));
}

bool ParseAction(const std::wstring& name, CompanionOptions& options) {
    constexpr std::pair<const wchar_t*, CompanionAction> kActions[] = {
        {L"build", Build}, {L"check", Check}, {L"show", Show}};
    const auto* const found =
        std::ranges::find(kActions, name, [](const auto& action) { return action.first; });
    if (found != std::end(kActions)) {
        options.action = found->second;
        return true;
    }
    options.help = IsHelp(name);
    options.version = name == L"--version";
    if (!options.help && !options.version) {
        options.error = WithoutControls(FormatText(Text(text::kCompanionUnknownCommand), {name}));
    }
    return false;
}

/// An error if two files would be drawn as one picture; else empty.
std::wstring SamePicture(const std::vector<std::wstring>& files) {
    std::map<std::wstring, std::wstring> drawn;
    for (const std::wstring& file : files) {
        const auto [other, isNew] = drawn.try_emplace(ToUpper(PictureNameOf(file)), file);
        if (!isNew) {
            return WithoutControls(
                FormatText(Text(text::kCompanionSamePicture), {other->second, file, PictureNameOf(file)}));
        }
    }
    return {};
}

}  // namespace

std::wstring PictureNameOf(const std::wstring& file) {
    return WithExtension(FileNameOf(file), L".qvr.png");
}

CompanionOptions ParseCompanionArguments(const std::vector<std::wstring>& arguments) {
    CompanionOptions options;
    if (!ParseAction(arguments.empty() ? std::wstring() : arguments.front(), options)) {
        return options;
    }
    bool onlyFiles = false;
    for (std::size_t i = 1; i < arguments.size() && options.error.empty() && !options.help; ++i) {
        if (!onlyFiles && arguments[i] == L"--") {
            onlyFiles = true;
        } else if (!onlyFiles && arguments[i].size() > 1 && arguments[i].front() == L'-') {
            ParseOption(arguments, i, options);
        } else {
            options.files.push_back(NativePath(arguments[i]));
        }
    }
    if (options.help) {
        return options;
    }
    if (options.error.empty() && options.files.empty()) {
        options.error = Text(text::kCompanionNoFile);
    } else if (options.error.empty() && !options.output.empty() && options.files.size() > 1) {
        options.error = Text(text::kCompanionOneOutput);
    } else if (options.error.empty() && options.action == CompanionAction::Show) {
        options.error = SamePicture(options.files);
    }
    return options;
}

}  // namespace orvex
