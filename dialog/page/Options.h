#pragma once
// Options of a page, without a widget: each is one row of a table that says everything about it. Controls are
// made, loaded, saved, enabled and written into the host's record from the same row.
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>

#include "dialog/page/FixedText.h"
#include "orvexcommon/AddFilesParams.h"
#include "settings/OptionStore.h"
#include "settings/SystemSettings.h"

namespace orvex {

/// Thinning factors: every n-th point is kept.
inline constexpr std::int32_t kMinimumThinning = 2;
inline constexpr std::int32_t kMaximumThinning = 256;
inline constexpr std::int32_t kDefaultThinning = 16;

/// The choices of a page. The members that the options' rows name are used, the rest is not.
struct OptionValues {
    AddFilesParams record;
    bool detailColumns = false;    ///< the grid shows its detail columns
    bool toExistingLayer = false;  ///< the photos go to the layer that the record names
};

/// Member that holds an option's value, in the record unless the host need not know it.
using OptionMember =
    std::variant<bool AddFilesParams::*, std::uint16_t AddFilesParams::*, std::int32_t AddFilesParams::*,
                 std::wstring AddFilesParams::*, bool OptionValues::*, std::monostate>;

/// Where an option is kept between calls: nowhere, in an item of the option store, or under a name in the
/// host's settings object.
using OptionStorage = std::variant<std::monostate, OrvexOptionItem2, const wchar_t*>;

/// What an option is where nothing is stored, or something that makes no sense: a number (bools: 0 or 1) or a
/// text.
struct OptionFallback {
    std::int32_t number = 0;
    const wchar_t* text = L"";
};

/// One value of an option that has a few.
struct OptionChoice {
    std::int32_t value;
    FixedText caption = {};
    StringId tooltip = {};
    int id = 0;  ///< of its radio button
    /// Of its radio button; null: usable whenever the option is.
    bool (*enabled)(const AddFilesParams& chosen) = nullptr;
};

enum class OptionControl {
    CheckBox,
    Radios,        ///< a radio button per choice
    List,          ///< a drop-down list of the choices
    Number,        ///< an edit field for an integer
    Text,          ///< an edit field
    Button,        ///< no option of its own: belongs to the one before it
    Note,          ///< no option of its own: words beside the one before it
    DetailColumns  ///< the page's own button for the detail columns
};

/// One option. Ids are those of controls; a widget is named "c" and its id.
struct OptionRow {
    OptionControl control;
    int id = 0;
    int group = 0;
    int line = 0;  ///< options of one line of a group stand beside each other
    FixedText caption = {};
    int captionId = 0;  ///< of the label before a field or a list
    StringId tooltip = {};
    OptionMember member = std::monostate();
    OptionStorage storage = {};
    OptionFallback fallback = {};
    /// Decides instead of `fallback` while nothing is stored; null: none.
    std::int32_t (*storedFallback)(const OptionStore& store) = nullptr;
    std::span<const OptionChoice> choices = {};
    /// The choices, where they depend on other options; null: `choices`.
    std::span<const OptionChoice> (*choicesFor)(const AddFilesParams& chosen) = nullptr;
    bool choicesBeside = false;  ///< radio buttons stand beside each other
    std::int32_t minimum = 0;    ///< of numbers; less is refused
    std::int32_t maximum = 0;    ///< of numbers; more is lowered to it
    std::size_t digits = 0;      ///< characters that a number is read from
    StringId mask = {};          ///< input mask of a number; 0: digits
    /// Null: usable whenever no run is under way.
    bool (*enabled)(const AddFilesParams& chosen) = nullptr;
    int enabledBy = 0;           ///< id of the check box that has to be on too; 0: none
    bool changesLayers = false;  ///< decides which layers the files go into
};

/// A box around options. `within`: id of the group that it stands in, at `line`.
struct OptionGroup {
    int id;
    FixedText caption;
    int within = 0;
    int line = 0;
    bool isBelow = false;         ///< stands under the group before it, not beside it
    bool takesRoom = false;       ///< takes the width that is left
    bool alignsCaptions = false;  ///< captions stand in a column of their own
    bool (*enabled)(const AddFilesParams& chosen) = nullptr;
};

/// The options of a page, in the order in which they are saved.
struct OptionTable {
    std::span<const OptionGroup> groups;
    std::span<const OptionRow> rows;
};

/// An option's value as a number (bools: 0 or 1), or as a text.
std::int32_t NumberOf(const OptionRow& row, const OptionValues& values);
void SetNumber(const OptionRow& row, std::int32_t number, OptionValues& values);
std::wstring TextOf(const OptionRow& row, const OptionValues& values);
void SetText(const OptionRow& row, std::wstring text, OptionValues& values);
inline bool IsText(const OptionRow& row) {
    return std::holds_alternative<std::wstring AddFilesParams::*>(row.member);
}
std::span<const OptionChoice> ChoicesOf(const OptionRow& row, const AddFilesParams& chosen);

/// The values of a fresh machine.
OptionValues DefaultOptions(const OptionTable& table);
/// The stored options of a page. Made for one use: the host's settings object, where an option is kept there,
/// lives as long. Everything throws LDataError "Failed to create OrvexSystemSettings object" when the host
/// cannot make that object.
class StoredOptions {
  public:
    StoredOptions(const OptionStore& options, HostObjects& hostObjects)
        : options_(options), hostObjects_(hostObjects) {}

    /// What is not stored, or makes no sense, has its value of a fresh machine.
    OptionValues Load(const OptionTable& table);
    /// Without effect for an option that is not stored. A store that refuses is ignored: the choice still
    /// holds for this run.
    void Save(const OptionRow& row, const OptionValues& values);

  private:
    SystemSettings& Settings();
    void LoadItem(const OptionRow& row, OrvexOptionItem2 item, OptionValues& values) const;
    void LoadSetting(const OptionRow& row, const wchar_t* name, OptionValues& values);
    void SaveItem(const OptionRow& row, OrvexOptionItem2 item, const OptionValues& values) const;
    void SaveSetting(const OptionRow& row, const wchar_t* name, const OptionValues& values);

    const OptionStore& options_;
    HostObjects& hostObjects_;
    std::optional<SystemSettings> settings_;
};

/// Copies every option that the record has a member for.
void WriteOptions(const OptionTable& table, const OptionValues& values, AddFilesParams& record);

/// The number in a text: its first `row.digits` characters, read as a leading integer. Nullopt when it is no
/// number or below the row's minimum; more than the maximum gives the maximum.
std::optional<std::int32_t> ParseNumber(const OptionRow& row, std::wstring_view text);

}  // namespace orvex
