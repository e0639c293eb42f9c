#include "host/inspect/pages/Pages.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>
#include <string_view>
#include <vector>

#include "feature/FeatureColumns.h"
#include "host/inspect/InspectOptions.h"
#include "las/LasColumns.h"
#include "orvexcommon/Version.h"
#include "photo/PhotoColumns.h"
#include "raster/RasterColumns.h"
#include "report/ReportColumns.h"

namespace orvex {
namespace {

using Json = nlohmann::ordered_json;

std::string TextOf(StringId id) {
    return ToUtf8(Text(id));
}

/// "-q, --quiet", "--as KIND"; `mark` is applied to each name and placeholder.
template <typename Mark>
std::string OptionNames(const InspectOption& option, Mark mark) {
    std::string names = *option.letter == L'\0' ? "" : mark(ToUtf8(option.letter), false) + ", ";
    names += mark(ToUtf8(option.name), false);
    return names + (*option.value == L'\0' ? "" : " " + mark(ToUtf8(option.value), true));
}

std::string Replaced(std::string text, std::string_view what, std::string_view by) {
    for (std::size_t at = 0; (at = text.find(what, at)) != std::string::npos; at += by.size()) {
        text.replace(at, what.size(), by);
    }
    return text;
}

/// Text for man(1), which takes a line that begins with a point for a command.
std::string Roff(const std::string& text) {
    const std::string escaped = Replaced(Replaced(text, "\\", "\\e"), "-", "\\-");
    return escaped.starts_with('.') || escaped.starts_with('\'') ? "\\&" + escaped : escaped;
}

void AppendRoffItem(std::string& page, const std::string& name, const std::string& help) {
    page += ".TP\n" + name + "\n" + Roff(help) + "\n";
}

std::string CellText(const std::string& text) {
    return Replaced(text, "|", "\\|");
}

std::string TypeName(const std::string& name) {
    return name == "array" ? "list" : name == "string" ? "text" : name == "boolean" ? "true or false" : name;
}

const Json& Resolved(const Json& schema, const Json& member) {
    const auto reference = member.find("$ref");
    return reference == member.end() ? member
                                     : schema.at(Json::json_pointer(reference->get<std::string>().substr(1)));
}

/// Types of a member in words: "list: integer or null".
std::string TypesOf(const Json& schema, const Json& member) {
    const Json& described = Resolved(schema, member);
    if (described.contains("const")) {
        return described["const"].dump();
    }
    std::vector<std::string> names;
    for (const Json& value : described.value("enum", Json::array())) {
        names.push_back("`" + (value.is_string() ? value.get<std::string>() : value.dump()) + "`");
    }
    for (const Json& choice : described.value("oneOf", Json::array())) {
        names.push_back(TypesOf(schema, choice));
    }
    const Json type = described.value("type", Json::array());
    for (const Json& name : type.is_array() ? type : Json::array({type})) {
        names.push_back(TypeName(name));
    }
    if (described.contains("items")) {
        names.front() += ": " + TypesOf(schema, described["items"]);
    }
    return fmt::format("{}", fmt::join(names, described.contains("enum") ? ", " : " or "));
}

const Json& ObjectOf(const Json& schema, const Json& member) {
    const Json& described = Resolved(schema, member);
    return described.contains("items") ? Resolved(schema, described["items"]) : described;
}

void AppendMembers(std::string& page, const Json& schema, const Json& object, const std::string& path) {
    page += fmt::format("\n### {}\n\n| member | type | |\n|---|---|---|\n",
                        path.empty() ? "The report of a file" : "`" + path + "`");
    for (const auto& [name, member] : object.at("properties").items()) {
        page += fmt::format("| `{}` | {} | {} |\n", name, TypesOf(schema, member),
                            CellText(member.at("description")));
    }
    for (const auto& [name, member] : object.at("properties").items()) {
        const Json& part = ObjectOf(schema, member);
        if (part.contains("properties")) {
            const bool isList = Resolved(schema, member).contains("items");
            const std::string_view separator = path.empty() ? "" : ".";
            AppendMembers(page, schema, part,
                          fmt::format("{}{}{}{}", path, separator, name, isList ? "[]" : ""));
        }
    }
}

/// Kinds whose pages have a column of a name, as after --as.
std::string KindsWith(std::string_view name) {
    std::vector<const char*> kinds;
    const auto add = [&](const char* kind, auto columns) {
        if (std::ranges::any_of(columns, [name](const GridColumn& column) { return column.name == name; })) {
            kinds.push_back(kind);
        }
    };
    add("las", LasColumns());
    add("raster", RasterColumns(RasterUse::Image));
    add("dem", RasterColumns(RasterUse::Dem));
    add("feature", FeatureColumns());
    add("photo", PhotoColumns());
    return fmt::format("{}", fmt::join(kinds, ", "));
}

void AppendColumns(std::string& page) {
    page +=
        "\n### `columns`\n\nA file that is read as one of the kinds has the column; `cloud` has those of "
        "`las`. In `--csv` the columns follow\n`path`, `kind`, `loadable`, `summary` and `findings`.\n\n"
        "| column | in the dialog | kinds |\n|---|---|---|\n";
    for (const ReportColumn& column : ReportColumns()) {
        page += fmt::format("| `{}` | {} | {} |\n", column.Look().name,
                            CellText(TextOf(column.Look().caption)), KindsWith(column.Look().name));
    }
}

}  // namespace

std::string ManualPage() {
    const auto mark = [](const std::string& name, bool isValue) {
        return (isValue ? "\\fI" : "\\fB") + Roff(name) + "\\fR";
    };
    std::string page = ".TH ORVEX\\-INSPECT 1 \"\" \"OrvexCommon " ORVEX_VERSION_TEXT
                       "\" \"User Commands\"\n"
                       ".SH NAME\norvex\\-inspect \\- print what is in point clouds, rasters, feature files "
                       "and photos\n.SH SYNOPSIS\n.B orvex\\-inspect\n[\\fIOPTION\\fR]... "
                       "\\fIPATH\\fR|\\fIURL\\fR|\\fB\\-\\fR...\n.SH DESCRIPTION\n";
    page += Roff(TextOf(text::kInspectAbout)) + "\n.SH OPTIONS\n";
    for (const InspectOption& option : InspectOptionTable()) {
        AppendRoffItem(page, OptionNames(option, mark), TextOf(option.help));
    }
    page += ".SH EXIT STATUS\n";
    for (const InspectExitCode& code : InspectExitCodeTable()) {
        AppendRoffItem(page, fmt::format("\\fB{}\\fR", code.code), TextOf(code.help));
    }
    return page;
}

std::string BashCompletion() {
    std::vector<std::string> names;
    std::string cases;
    for (const InspectOption& option : InspectOptionTable()) {
        const std::string name = ToUtf8(option.name);
        if (name.size() > 2) {
            names.push_back(name);
        }
        if (*option.choices != L'\0') {
            cases += fmt::format("        {}) words=\"{}\" ;;\n", name, ToUtf8(option.choices));
        }
    }
    return fmt::format(
        "# Completion of orvex-inspect for bash; where nothing is offered here, file names are.\n"
        "_orvex_inspect()\n{{\n    local words=\n    case ${{COMP_WORDS[COMP_CWORD-1]}} in\n{}"
        "        *) [[ ${{COMP_WORDS[COMP_CWORD]}} == -* ]] && words=\"{}\" ;;\n    esac\n"
        "    mapfile -t COMPREPLY < <(compgen -W \"$words\" -- \"${{COMP_WORDS[COMP_CWORD]}}\")\n}}\n"
        "complete -o bashdefault -o default -F _orvex_inspect orvex-inspect\n",
        cases, fmt::join(names, " "));
}

std::string MarkdownPage(const Json& schema) {
    const auto mark = [](const std::string& name, bool) { return name; };
    std::string page =
        "# orvex-inspect\n\n<!-- Made from the program's tables and inspect.schema.json by the target "
        "inspect_page. -->\n\n"
        "`orvex-inspect [OPTION]... PATH|URL|-...`\n\n" +
        TextOf(text::kInspectAbout) + "\n\n## Options\n\n| option | |\n|---|---|\n";
    for (const InspectOption& option : InspectOptionTable()) {
        page += fmt::format("| `{}` | {} |\n", OptionNames(option, mark), CellText(TextOf(option.help)));
    }
    page += "\n## Exit codes\n\n| code | |\n|---|---|\n";
    for (const InspectExitCode& code : InspectExitCodeTable()) {
        page += fmt::format("| {} | {} |\n", code.code, CellText(TextOf(code.help)));
    }
    page += "\n## Output of `--json` and `--ndjson`\n\n" + schema.at("description").get<std::string>() +
            " [inspect.schema.json](inspect.schema.json) says the same to programs.\n";
    AppendMembers(page, schema, schema, "");
    AppendColumns(page);
    return page;
}

}  // namespace orvex
