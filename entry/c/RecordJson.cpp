#include "entry/c/RecordJson.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <utility>

#include "entry/ComponentCalls.h"
#include "record/RecordMembers.h"
#include "report/FileReportJson.h"
#include "support/JsonText.h"
#include "support/Text.h"

namespace orvex {
namespace {

using Json = nlohmann::json;

/// Reads a value of one type; false if the JSON is of another.
bool Read(const Json& json, bool& value) {
    value = json.is_boolean() && json.get<bool>();
    return json.is_boolean();
}

bool Read(const Json& json, std::int32_t& value) {
    using Limits = std::numeric_limits<std::int32_t>;
    if (!json.is_number_integer() || json.get<double>() < Limits::min() ||
        json.get<double>() > Limits::max()) {
        return false;
    }
    value = json.get<std::int32_t>();
    return true;
}

bool Read(const Json& json, std::wstring& value) {
    value = json.is_string() ? JsonWide(json.get_ref<const std::string&>()) : std::wstring();
    return json.is_string();
}

bool Read(const Json& json, std::vector<std::wstring>& value) {
    return json.is_array() && std::ranges::all_of(json, [&](const Json& element) {
               return Read(element, value.emplace_back());
           });
}

bool Read(const Json& json, TextByName& value) {
    if (!json.is_object()) {
        return false;
    }
    for (const auto& [key, element] : json.items()) {
        if (!Read(element, value[JsonWide(key)])) {
            return false;
        }
    }
    return true;
}

// No input that a request may hold is of another type.
template <typename Value>
bool Read(const Json& /*json*/, Value& /*value*/) {
    return false;
}

void ReadMember(const std::string& name, const Json& json, AddFilesParams& record) {
    const std::wstring quoted = L"\"" + FromUtf8(name) + L"\"";
    const RecordMember* const row = FindRecordMember(name);
    if (row == nullptr || row->use != MemberUse::Input) {
        throw InvalidCall(quoted + (row == nullptr ? L" is not a member of the record" : L" is a result"));
    }
    if (!std::visit([&](auto member) { return Read(json, record.*member); }, row->member)) {
        throw InvalidCall(quoted + L" is of the wrong type or out of range");
    }
}

/// Elements between brackets, each as `write` has it.
template <typename Range, typename WriteElement>
std::string List(const char* brackets, Range& range, const WriteElement& write) {
    std::string text(1, brackets[0]);
    const char* separator = "";
    for (auto& element : range) {
        text += separator + write(element);
        separator = ", ";
    }
    return text + brackets[1];
}

std::string Write(std::int32_t number) {
    return std::to_string(number);
}

std::string Write(bool value) {
    return value ? "true" : "false";
}

std::string Write(const std::wstring& text) {
    return JsonQuoted(text);
}

/// Reads a file again: the record does not hold what only the grid showed, such as findings.
std::string WriteFile(const std::wstring& path, const char* kind) {
    std::string text;
    AppendJson(text, FileReportJson(InspectFile(path, FindReportKind(FromUtf8(kind)))), 1);
    return text;
}

template <typename Element>
std::string Write(const std::vector<Element>& list) {
    return List("[]", list, [](const Element& element) { return Write(element); });
}

std::string Write(const std::array<std::int32_t, 5>& list) {
    return List("[]", list, [](std::int32_t element) { return Write(element); });
}

template <typename Value>
std::string Write(const std::map<std::wstring, Value>& map) {
    return List("{}", map, [](const auto& entry) { return Write(entry.first) + ": " + Write(entry.second); });
}

template <typename Details>
std::string WriteDetails(std::map<std::wstring, Details*>& details, const char* kind) {
    return List("{}", details, [&](auto& entry) {
        delete std::exchange(entry.second, nullptr);  // which may have the file open
        return "\n    " + Write(entry.first) + ": " + WriteFile(entry.first, kind);
    });
}

std::string Write(LasDetails& details) {
    return WriteDetails(details, "las");
}

std::string Write(RasterDetails& details) {
    return WriteDetails(details, "raster");
}

std::string Write(OrvexApplication* /*application*/) {
    return "null";  // an input of C++ only
}

}  // namespace

OwnRecord::~OwnRecord() {
    params.ClearResults();
}

void ReadRecord(const Json& request, AddFilesParams& record) {
    if (!request.is_object()) {
        throw InvalidCall(L"the request is no object");
    }
    for (const auto& [name, value] : request.items()) {
        ReadMember(name, value, record);
    }
}

std::string WriteRecord(AddFilesParams& record) {
    std::string text = "{";
    const char* separator = "";
    for (const RecordMember& row : RecordMembers()) {
        if (row.use == MemberUse::Result) {
            text += std::string(separator) + "\n  \"" + row.name + "\": ";
            text += std::visit([&](auto member) { return Write(record.*member); }, row.member);
            separator = ",";
        }
    }
    return text + "\n}\n";
}

}  // namespace orvex
