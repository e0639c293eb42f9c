#pragma once
#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// Reads a DXF file along with GDAL and ends the reading of what GDAL would not come to an end with: a header
/// without an end, blocks that contain blocks that contain blocks, arrays of a billion inserts, hatches of a
/// hundred thousand edges, definitions that fill the memory.
class DxfScanner {
  public:
    /// Objects of a block that GDAL reads: its own default, stated so that no setting of the process changes
    /// the counts.
    static constexpr int kMostOfBlock = 10'000;

    explicit DxfScanner(std::uint64_t fileSize);

    /// The bytes at Position(). Throws LDataError with the reason not to go on.
    void Feed(std::span<const std::byte> bytes);
    std::uint64_t Position() const { return position_; }
    /// True from the section on that holds the objects.
    bool IsPastDefinitions() const { return isPastDefinitions_; }

    /// True if the texts are UTF-8, as from the release 2007 on. Known once the definitions have been read.
    bool IsUtf8() const { return version_ >= "AC1021" && version_.starts_with("AC1"); }

    /// Sentences on what GDAL leaves out: kinds of objects, the rest of large blocks.
    std::vector<std::wstring> LeftOut() const;

  private:
    enum class Section { None, Named, Other, Blocks, Entities, Done };

    struct Insert {
        std::string block;
        double times = 1;
    };
    struct Block {
        double own = 0;  ///< objects without those of inserted blocks
        std::vector<Insert> inserts;
        double expanded = -1;  ///< objects with those; -1 before they are counted
    };
    /// Object, table entry or other item that begins with group code 0.
    struct Item {
        std::string type;
        std::string name;    ///< group 2
        std::string handle;  ///< group 5
        std::string record;  ///< group 344, handle of a block
        double columns = 1;
        double rows = 1;
    };

    void Line(std::string_view line);
    void Pair(int code, std::string_view value);
    void Begin(std::string_view type);
    void Value(int code, std::string_view value);
    void FinishItem();
    void FinishInBlocks();
    void FinishInEntities();
    const std::string* BlockOf(const Item& item) const;
    double Expanded(const std::string& name, int depth);
    [[noreturn]] void Refuse() const;

    const double mostInserted_;
    std::uint64_t position_ = 0;
    std::uint64_t lines_ = 0;
    std::string line_;  ///< begun in earlier bytes
    char lineEnd_ = 0;  ///< the last byte, if it ended a line
    int code_ = 0;      ///< of the value that comes next
    bool hasCode_ = false;
    Section section_ = Section::None;
    bool isPastDefinitions_ = false;
    Item item_;
    std::uint64_t itemBytes_ = 0;
    std::uint64_t edges_ = 0;
    std::uint64_t definitions_ = 0;
    std::string variable_;  ///< of the header, whose value comes next
    std::string version_;
    std::string blockName_;
    Block block_;
    std::map<std::string, Block> blocks_;
    std::map<std::string, std::string> blockNames_;  ///< by handle
    bool hasLargeBlock_ = false;
    double inserted_ = 0;
    std::map<std::string, std::uint64_t> leftOut_;
};

/// Feeds the scanner the file up to the section that holds the objects. Throws LDataError if there is none.
void ScanDefinitions(const std::wstring& path, DxfScanner& scanner);

}  // namespace orvex
