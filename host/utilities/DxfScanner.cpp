#include "host/utilities/DxfScanner.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "support/Files.h"
#include "support/Format.h"
#include "support/LDataError.h"
#include "support/MappedFile.h"
#include "support/Text.h"

namespace orvex {
namespace {

// Inserting an object takes GDAL some microseconds and no bytes of the file.
constexpr double kMostInserted = 250'000;
constexpr double kInsertedPerByte = 0.1;

// GDAL keeps definitions in memory, half a kilobyte and more for each.
constexpr std::uint64_t kMostDefinitions = 400'000;
constexpr std::uint64_t kMostBytesOfDefinitions = std::uint64_t{64} << 20U;

// GDAL reads an object with all its vertices, and joins the edges of a hatch in quadratic time.
constexpr std::uint64_t kMostBytesOfItem = std::uint64_t{32} << 20U;
constexpr std::uint64_t kMostEdges = 30'000;

constexpr std::size_t kMostOfLine = 512;  // names are shorter
constexpr std::size_t kMostOfCode = 16;
constexpr int kMostNested = 64;  // fewer than where GDAL stops
constexpr std::size_t kMostKinds = 100;
constexpr std::size_t kMostOfKind = 40;

// Parts of the object before them.
constexpr std::array<std::string_view, 3> kParts{"VERTEX", "SEQEND", "ATTRIB"};
constexpr std::array<std::string_view, 24> kRead{
    "POINT",  "MTEXT",     "TEXT",  "ATTDEF", "LINE",    "POLYLINE",    "MLINE",      "LWPOLYLINE",
    "CIRCLE", "ELLIPSE",   "ARC",   "SPLINE", "HELIX",   "3DFACE",      "SOLID",      "TRACE",
    "INSERT", "DIMENSION", "HATCH", "LEADER", "MLEADER", "MULTILEADER", "ACAD_TABLE", "ATTRIB"};

template <std::size_t N>
bool IsOneOf(std::string_view type, const std::array<std::string_view, N>& types) {
    return std::ranges::find(types, type) != types.end();
}

std::string_view Trimmed(std::string_view text) {
    const auto isBlank = [](char c) { return c == ' ' || c == '\t'; };
    while (!text.empty() && isBlank(text.front())) {
        text.remove_prefix(1);
    }
    while (!text.empty() && isBlank(text.back())) {
        text.remove_suffix(1);
    }
    return text;
}

/// Number at the start of a text, at least 1; 1 if there is none.
double AtLeastOne(std::string_view text) {
    int number = 1;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return std::max(number, 1);
}

}  // namespace

DxfScanner::DxfScanner(std::uint64_t fileSize)
    : mostInserted_(kMostInserted +
                    1000 * std::floor(static_cast<double>(fileSize) * kInsertedPerByte / 1000)) {}

void DxfScanner::Feed(std::span<const std::byte> bytes) {
    const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    std::size_t at = 0;
    while (at < text.size()) {
        // Lines end like those of any system; a mixed pair is one end.
        if ((text[at] == '\n' || text[at] == '\r') && lineEnd_ != 0 && lineEnd_ != text[at]) {
            lineEnd_ = 0;
            ++at;
            continue;
        }
        std::size_t end = at;
        while (end < text.size() && text[end] != '\n' && text[end] != '\r') {
            ++end;
        }
        lineEnd_ = end < text.size() ? text[end] : '\0';
        itemBytes_ += end - at + 1;
        line_.append(text.substr(at, std::min(end - at, kMostOfLine - line_.size())));
        if (lineEnd_ != 0) {
            Line(line_);
            line_.clear();
        }
        at = end + 1;
    }
    position_ += bytes.size();
}

void DxfScanner::Refuse() const {
    throw LDataError(FormatText(Text(text::kDxfDamaged), {GroupedNumber(lines_)}));
}

void DxfScanner::Line(std::string_view line) {
    ++lines_;
    if (section_ == Section::Done) {
        return;
    }
    if (itemBytes_ > kMostBytesOfItem) {
        throw LDataError(FormatText(Text(text::kDxfObjectTooLarge), {lines_}));
    }
    if (hasCode_) {
        hasCode_ = false;
        return Pair(code_, Trimmed(line));
    }
    const std::string_view text = Trimmed(line);
    const auto parsed = std::from_chars(text.data(), text.data() + text.size(), code_);
    if (text.size() > kMostOfCode || parsed.ec != std::errc() || parsed.ptr != text.data() + text.size()) {
        Refuse();
    }
    hasCode_ = true;
}

void DxfScanner::Pair(int code, std::string_view value) {
    constexpr int kVariable = 9;
    constexpr int kComment = 999;
    const bool isDefinition = !isPastDefinitions_ && (code == 0 || code == kVariable);
    definitions_ += isDefinition ? 1 : 0;
    if (definitions_ > kMostDefinitions || (!isPastDefinitions_ && position_ > kMostBytesOfDefinitions)) {
        throw LDataError(Text(text::kDxfTooManyDefinitions));
    }
    if (code == 1 && variable_ == "$ACADVER") {
        version_ = value;
    }
    variable_ = code == kVariable ? value.substr(0, kMostOfKind) : std::string_view();
    if (code == 0) {
        Begin(value);
    } else if (code != kComment) {
        Value(code, value);
    }
}

void DxfScanner::Begin(std::string_view type) {
    FinishItem();
    if (!IsOneOf(type, kParts)) {
        itemBytes_ = 0;
    }
    edges_ = 0;
    item_ = {};
    item_.type = type.substr(0, kMostOfKind);
    if (type == "SECTION") {
        section_ = Section::Named;
    } else if (type == "ENDSEC" || type == "EOF") {
        section_ = section_ == Section::Entities || type == "EOF" ? Section::Done : Section::None;
    }
}

void DxfScanner::Value(int code, std::string_view value) {
    constexpr int kName = 2;
    constexpr int kHandle = 5;
    constexpr int kColumns = 70;
    constexpr int kRows = 71;
    constexpr int kEdge = 72;
    constexpr int kRecord = 344;
    if (code == kName && section_ == Section::Named) {
        section_ = value == "BLOCKS"     ? Section::Blocks
                   : value == "ENTITIES" ? Section::Entities
                                         : Section::Other;
        isPastDefinitions_ = isPastDefinitions_ || section_ == Section::Entities;
    } else if (code == kName && item_.name.empty()) {
        item_.name = value;
    } else if (code == kHandle) {
        item_.handle = value;
    } else if (code == kRecord) {
        item_.record = value;
    } else if (code == kColumns) {
        item_.columns = AtLeastOne(value);
    } else if (code == kRows) {
        item_.rows = AtLeastOne(value);
    } else if (code == kEdge && item_.type == "HATCH" && ++edges_ > kMostEdges) {
        throw LDataError(FormatText(Text(text::kDxfObjectTooLarge), {lines_}));
    }
}

void DxfScanner::FinishItem() {
    if (section_ == Section::Blocks) {
        FinishInBlocks();
    } else if (section_ == Section::Entities) {
        FinishInEntities();
    } else if (item_.type == "BLOCK_RECORD") {
        blockNames_[item_.handle] = item_.name;
    }
}

const std::string* DxfScanner::BlockOf(const Item& item) const {
    if (item.type == "INSERT" || item.type == "DIMENSION" || item.type == "ACAD_TABLE") {
        return &item.name;
    }
    const bool isLeader = item.type == "MULTILEADER" || item.type == "MLEADER";
    const auto named = isLeader ? blockNames_.find(item.record) : blockNames_.end();
    return named == blockNames_.end() ? nullptr : &named->second;
}

void DxfScanner::FinishInBlocks() {
    if (item_.type == "BLOCK") {
        blockName_ = item_.name;
        block_ = {};
        return;
    }
    if (item_.type == "ENDBLK") {
        Block& whole = blocks_[blockName_];
        whole.own += block_.own;
        hasLargeBlock_ = hasLargeBlock_ || whole.own > kMostOfBlock;
        std::ranges::move(block_.inserts, std::back_inserter(whole.inserts));
        return;
    }
    block_.own += IsOneOf(item_.type, kParts) ? 0 : 1;
    if (const std::string* name = BlockOf(item_); name != nullptr) {
        block_.inserts.push_back({*name, item_.type == "INSERT" ? item_.columns * item_.rows : 1});
    }
}

double DxfScanner::Expanded(const std::string& name, int depth) {
    const auto found = blocks_.find(name);
    if (found == blocks_.end()) {
        return 1;
    }
    if (depth > kMostNested) {
        throw LDataError(Text(text::kDxfBlocksNested));
    }
    Block& block = found->second;
    if (block.expanded < 0) {
        double sum = block.own;
        for (const Insert& insert : block.inserts) {
            sum += insert.times * Expanded(insert.block, depth + 1);
        }
        block.expanded = std::max(sum, 1.0);
    }
    return block.expanded;
}

void DxfScanner::FinishInEntities() {
    // The section's own name is not an object.
    if (item_.type == "SECTION" || IsOneOf(item_.type, kParts)) {
        return;
    }
    if (const std::string* name = BlockOf(item_); name != nullptr) {
        inserted_ += Expanded(*name, 0) * (item_.type == "INSERT" ? item_.columns * item_.rows : 1);
        if (inserted_ > mostInserted_) {
            throw LDataError(
                FormatText(Text(text::kDxfTooManyInserted), {static_cast<std::uint64_t>(mostInserted_)}));
        }
    }
    if (!IsOneOf(item_.type, kRead) && (leftOut_.size() < kMostKinds || leftOut_.contains(item_.type))) {
        ++leftOut_[item_.type];
    }
}

std::vector<std::wstring> DxfScanner::LeftOut() const {
    std::wstring kinds;
    for (const auto& [kind, count] : leftOut_) {
        kinds += (kinds.empty() ? L"" : L", ") + WithoutControls(FromUtf8(ValidUtf8(kind))) + L" (" +
                 GroupedNumber(count) + L")";
    }
    std::vector<std::wstring> sentences;
    if (!kinds.empty()) {
        sentences.push_back(FormatText(Text(text::kFeatureKindsLeftOut), {kinds}));
    }
    if (hasLargeBlock_) {
        sentences.push_back(FormatText(Text(text::kDxfBlockPartly), {kMostOfBlock}));
    }
    return sentences;
}

void ScanDefinitions(const std::wstring& path, DxfScanner& scanner) {
    constexpr std::size_t kChunk = 65536;
    MappedFile file;
    if (file.Open(path, true) != 0) {
        throw LDataError(Text(text::kFileOpenRefused));
    }
    std::vector<std::byte> buffer(kChunk);
    while (!scanner.IsPastDefinitions()) {
        std::size_t read = 0;
        if (file.ReadAt(scanner.Position(), buffer, read) != 0) {
            throw LDataError(Text(text::kFileOpenRefused));
        }
        if (read == 0) {
            throw LDataError(Text(text::kCadIncomplete));
        }
        scanner.Feed(std::span(buffer).first(read));
    }
}

}  // namespace orvex
