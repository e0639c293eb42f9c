#include "record/RecordMembers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <regex>

namespace orvex {
namespace {

using ::testing::ElementsAreArray;

// Lines that declare a member: indented, a type, a name, maybe a value, a semicolon.
std::vector<std::string> DeclaredMembers() {
    const std::regex member(R"(^    [A-Za-z_:][^()=/;]* \*?\*?([A-Za-z0-9]+)( = [^;]+|\{\})?;.*)");
    std::vector<std::string> names;
    std::ifstream header(ORVEX_SOURCE_FOLDER "/include/orvexcommon/AddFilesParams.h");
    bool isInside = false;
    for (std::string line; std::getline(header, line);) {
        isInside = isInside || line.starts_with("class AddFilesParams");
        isInside = isInside && line != "};";
        std::smatch found;
        if (isInside && std::regex_match(line, found, member)) {
            names.push_back(found[1]);
        }
    }
    return names;
}

TEST(RecordMembers, EveryDeclaredMemberHasARow) {
    std::vector<std::string> names;
    for (const RecordMember& row : RecordMembers()) {
        names.emplace_back(row.name);
        EXPECT_EQ(FindRecordMember(row.name), &row);
    }
    EXPECT_THAT(names, ElementsAreArray(DeclaredMembers()));
    EXPECT_EQ(FindRecordMember("lasfiles"), nullptr);
}

class CountedDetails final : public LasFileInfo {
  public:
    explicit CountedDetails(int& deleted) : deleted_(deleted) {}
    ~CountedDetails() override { ++deleted_; }
    CountedDetails(const CountedDetails&) = delete;
    CountedDetails& operator=(const CountedDetails&) = delete;

    const std::wstring& FileName() const override { return name_; }
    int Version() const override { return 0; }
    int PointFormat() const override { return 0; }
    std::uint64_t GetPointCount() const override { return 0; }
    bool IsReadOnly() const override { return true; }
    std::array<double, 3> Minimum() const override { return {}; }
    std::array<double, 3> Maximum() const override { return {}; }
    std::string CrsWkt() const override { return {}; }
    int GetCompanionStatus() const override { return 0; }
    bool IsDamaged() const override { return false; }
    std::uint16_t RegisteredId() const override { return 0; }

  private:
    std::wstring name_;
    int& deleted_;
};

/// A value that no new record has.
struct Used {
    int& deleted;

    void operator()(bool& value) const { value = true; }
    void operator()(std::int32_t& value) const { value = 5; }
    void operator()(std::uint16_t& value) const { value = 5; }
    void operator()(std::wstring& value) const { value = L"5"; }
    void operator()(std::vector<std::wstring>& value) const { value = {L"5"}; }
    void operator()(TextByName& value) const { value = {{L"5", L""}}; }
    void operator()(FilesByFolder& value) const { value = {{L"5", {L"a.las"}}}; }
    void operator()(std::array<std::int32_t, 5>& value) const { value = {0, 0, 0, 0, 5}; }
    void operator()(LasDetails& value) const {
        value = {{L"5", new CountedDetails(deleted)}, {L"6", nullptr}};
    }
    void operator()(RasterDetails& value) const { value = {{L"5", nullptr}}; }
    void operator()(OrvexApplication*& value) const { value = reinterpret_cast<OrvexApplication*>(8); }
};

TEST(RecordMembers, ClearResultsKeepsTheInputsAndNothingElse) {
    int deleted = 0;
    AddFilesParams record;
    for (const RecordMember& row : RecordMembers()) {
        std::visit([&](auto member) { Used{deleted}(record.*member); }, row.member);
    }
    record.ClearResults();
    EXPECT_EQ(deleted, 1);
    const AddFilesParams fresh;
    for (const RecordMember& row : RecordMembers()) {
        const bool isFresh =
            std::visit([&](auto member) { return record.*member == fresh.*member; }, row.member);
        EXPECT_EQ(isFresh, row.use == MemberUse::Result) << row.name;
    }
}

}  // namespace
}  // namespace orvex
