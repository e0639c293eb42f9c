#pragma once
// The members of AddFilesParams as data: one row each.
#include <array>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "orvexcommon/AddFilesParams.h"

namespace orvex {

enum class MemberUse { Input, Result };

using TextByName = std::map<std::wstring, std::wstring>;
using LasDetails = std::map<std::wstring, LasFileInfo*>;
using RasterDetails = std::map<std::wstring, RasterFileInfo*>;

/// Pointer to a member of any of the record's types.
using MemberPointer =
    std::variant<bool AddFilesParams::*, std::int32_t AddFilesParams::*, std::uint16_t AddFilesParams::*,
                 std::wstring AddFilesParams::*, std::vector<std::wstring> AddFilesParams::*,
                 TextByName AddFilesParams::*, FilesByFolder AddFilesParams::*,
                 std::array<std::int32_t, 5> AddFilesParams::*, LasDetails AddFilesParams::*,
                 RasterDetails AddFilesParams::*, OrvexApplication * AddFilesParams::*>;

/// One member of the record.
struct RecordMember {
    const char* name;  ///< in C++ and in JSON
    MemberUse use;
    MemberPointer member;
    const char* tab;      ///< that reads or fills it: "LAS", "raster" ...; "all" for the dialog as a whole
    const char* unit;     ///< unit or range; empty if it has none
    const char* meaning;  ///< a sentence or two
};

/// Every member, in the order of their declarations.
std::span<const RecordMember> RecordMembers();

/// The member of a name; null if there is none.
const RecordMember* FindRecordMember(std::string_view name);

}  // namespace orvex
