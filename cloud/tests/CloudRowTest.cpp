#include "cloud/CloudRow.h"

#include <gmock/gmock.h>

#include <clocale>
#include <numeric>
#include <string>
#include <vector>

#include "cloud/CloudColumns.h"
#include "cloud/CloudListing.h"
#include "cloud/RemoteLas.h"

namespace orvex {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr std::int64_t kMinuteMs = 60'000;
constexpr std::int64_t kNoon = 1'790'251'200'000;  // 2026-09-24 12:00 UTC
constexpr const wchar_t* kSigned =
    L"https://store.example/lidar/tile.laz?X-Amz-Date=20260924T110000Z&X-Amz-Expires=7200"
    L"&X-Amz-Credential=KEYID&X-Amz-Signature=c0ffee";

CloudRow Row(const wchar_t* name, const wchar_t* kind, const wchar_t* url, const wchar_t* value2 = L"",
             const wchar_t* value3 = L"") {
    CloudRow row;
    row.name = name;
    row.kind = kind;
    row.url = url;
    row.value2 = value2;
    row.value3 = value3;
    return row;
}

std::vector<std::size_t> InOrder(const std::vector<CloudRow>& rows) {
    std::vector<std::size_t> order(rows.size());
    std::iota(order.begin(), order.end(), 0U);
    return order;
}

std::vector<std::string> Codes(const CloudRow& row) {
    std::vector<std::string> codes;
    for (const Finding& finding : row.findings) {
        codes.emplace_back(finding.code);
    }
    return codes;
}

TEST(CloudRecord, GetsTheFirstRowOfANameAndOfEachKind) {
    const std::vector<CloudRow> rows{
        Row(L"A", kPresignedUrlKind, L"u1", L"x", L"y"),
        Row(L"A", L"[ pre-SIGNED url ]", L"u2"),  // the kind ignores letter case; the name is taken
        Row(L"B", L"[ PRE-signed URL ]", L"u3"),
        Row(L"A", kOrvexLasUrlKind, L"u4", L"id4", L"p4"),  // another map
        Row(L"A", kOrvexLasUrlKind, L"u5", L"id5", L"p5"),
        Row(L"C", kOrvexLasUrlKind, L"", L"id6", L"p6"),  // no URL: nothing of it
        Row(L"C", kOrvexLasUrlKind, L"u7", L"", L""),
        Row(L"D", kPresignedUrlKind, L""),
        Row(L"", kPresignedUrlKind, L"u8"),
        Row(L"E", kPackageUrlKind, L"u9"),
        Row(L"E", kPackageFileKind, L"u10"),
        Row(L"F", L"[ Pre-Signed URL ] ", L"u11"),  // longer
        Row(L"F", L"[ Pre-Signed URL", L"u12"),     // shorter
        Row(L"F", L"", L"u13"),
        Row(L"a", kPresignedUrlKind, L"u14"),  // names differ in letter case
    };
    AddFilesParams record;
    StoreCloudRows(rows, record);
    using Map = std::map<std::wstring, std::wstring>;
    EXPECT_EQ(record.presignedUrlLayers, (Map{{L"A", L"u1"}, {L"B", L"u3"}, {L"a", L"u14"}}));
    EXPECT_EQ(record.cloudLasLayers, (Map{{L"A", L"u4"}, {L"C", L"u7"}}));
    EXPECT_EQ(record.cloudLasLayerValues2, (Map{{L"A", L"id4"}, {L"C", L""}}));
    EXPECT_EQ(record.cloudLasLayerValues3, (Map{{L"A", L"p4"}, {L"C", L""}}));
}

TEST(CloudRow, KeepsTheUrlAndShowsItWithoutItsSignature) {
    CloudLayer layer;
    layer.name = L"Tile";
    layer.bytes = 3'221'225'472;
    layer.size = L"3.000";
    layer.points = L"17";
    layer.crs = L"Unknown";
    layer.modified = L"2026-01-02";
    layer.url = kSigned;
    layer.id = L"l1";
    layer.project = L"p1";
    for (const CloudRow& row : {PresignedRow(kSigned), BrowsedRow(layer)}) {
        EXPECT_EQ(row.url, kSigned);
        EXPECT_EQ(row.expiresMs, kNoon + 60 * kMinuteMs);
        for (const auto& column : CloudColumns()) {
            const std::wstring text = CellText(column, row) +
                                      (column.look.tooltip == nullptr ? L"" : column.look.tooltip(row)) +
                                      ExactText(column, row);
            EXPECT_EQ(text.find(L"c0ffee"), std::wstring::npos) << column.name;
            EXPECT_EQ(text.find(L"KEYID"), std::wstring::npos) << column.name;
        }
    }
    EXPECT_EQ(PresignedRow(L"u").name, L"Cloud LAS_Layer");
    std::vector<std::wstring> cells;
    for (const auto& column : CloudColumns()) {
        cells.push_back(CellText(column, BrowsedRow(layer)));
    }
    EXPECT_THAT(
        cells, ElementsAre(L"Tile", L"[ OrvexLAS URL ]", L"3.000", L"3.000", L"17", L"Unknown", L"2026-01-02",
                           ::testing::StartsWith(L"https://store.example/lidar/tile.laz"), L"l1", L"p1",
                           L"2026-09-24 13:00", Text(text::kCloudNotInspected)));
}

TEST(CloudColumns, HaveTheirCaptionsAndWidths) {
    struct Look {
        int caption, width;
        HeaderAlign align;
        bool hidden;
    };
    using enum HeaderAlign;
    constexpr Look kExpected[] = {{3351, 200, Centre, false}, {3352, 100, Left, false},
                                  {3353, 100, Right, false},  {3354, 200, Centre, false},
                                  {3355, 100, Left, false},   {3356, 100, Left, false},
                                  {3357, 100, Left, false},   {3358, 100, Left, true},
                                  {3359, 100, Left, true},    {3360, 100, Left, true}};
    const auto columns = CloudColumns();
    ASSERT_GE(columns.size(), std::size(kExpected));
    for (std::size_t i = 0; i < std::size(kExpected); ++i) {
        EXPECT_EQ(columns[i].caption.value, kExpected[i].caption) << i;
        EXPECT_EQ(columns[i].width, kExpected[i].width) << i;
        EXPECT_EQ(columns[i].align, kExpected[i].align) << i;
        EXPECT_EQ(columns[i].hidden, kExpected[i].hidden) << i;
    }
}

TEST(CloudRules, SayWhenALinkEndsAndWhenTheyChange) {
    struct Case {
        std::int64_t after;  ///< the end of the link, minutes after now
        std::vector<std::string> codes;
        std::optional<std::int64_t> next;  ///< minutes after now
    };
    const Case cases[] = {{-1, {"link-expired"}, {}},
                          {0, {"link-expired"}, {}},
                          {1, {"link-expires-soon"}, 1},
                          {60, {"link-expires-soon"}, 60},
                          {61, {}, 1},
                          {600, {}, 540}};
    for (const Case& c : cases) {
        std::vector<CloudRow> rows{Row(L"A", kPresignedUrlKind, L"u"), Row(L"B", kPresignedUrlKind, L"v")};
        rows[0].expiresMs = kNoon + c.after * kMinuteMs;
        const auto next = ApplyCloudRules(rows, InOrder(rows), kNoon);
        EXPECT_EQ(Codes(rows[0]), c.codes) << c.after;
        EXPECT_EQ(next.has_value(), c.next.has_value()) << c.after;
        EXPECT_EQ(next.value_or(kNoon), kNoon + c.next.value_or(0) * kMinuteMs) << c.after;
        EXPECT_THAT(Codes(rows[1]), IsEmpty());
        EXPECT_TRUE(rows[0].loadable);
    }
}

TEST(CloudRules, JudgeNamesAsTheRecordTakesThem) {
    std::vector<CloudRow> rows{
        Row(L"A", kPresignedUrlKind, L"u1"), Row(L"A", kOrvexLasUrlKind, L"u2"),
        Row(L"A", kPresignedUrlKind, L"u3"), Row(L"", kPresignedUrlKind, L"u4"),
        Row(L"B", kOrvexLasUrlKind, L""),    Row(L"B", kOrvexLasUrlKind, L"u5"),
    };
    const std::vector<std::size_t> order{2, 1, 0, 3, 4, 5};
    ApplyCloudRules(rows, order, kNoon);
    EXPECT_THAT(Codes(rows[0]), ElementsAre("duplicate-name"));
    EXPECT_THAT(rows[0].summary, ::testing::HasSubstr(L"'A'"));
    EXPECT_THAT(Codes(rows[1]), IsEmpty());
    EXPECT_THAT(Codes(rows[2]), IsEmpty());
    EXPECT_THAT(Codes(rows[3]), ElementsAre("no-name"));
    EXPECT_THAT(Codes(rows[4]), ElementsAre("no-url"));
    EXPECT_THAT(Codes(rows[5]), IsEmpty());
    EXPECT_EQ(LoadFlagOf(rows[0]), LoadFlag::Findings);
    EXPECT_EQ(LoadFlagOf(rows[1]), LoadFlag::Good);
    rows[0].name = L"another";
    ApplyCloudRules(rows, order, kNoon);
    EXPECT_THAT(Codes(rows[0]), IsEmpty());
    EXPECT_EQ(rows[0].summary, L"");
}

TEST(CloudRules, TakeWhatALookInsideHasFound) {
    const auto remote = [](bool loadable, CloudStatus status) {
        auto found = std::make_shared<RemoteLas>();
        found->row.loadable = loadable;
        found->row.summary = L"why not";
        found->row.crs = std::make_shared<CrsDescription>();
        found->row.findings = {{FindingSeverity::Note, L"a note", "wkt-bit-missing"}};
        found->status = status;
        return found;
    };
    std::vector<CloudRow> rows(4, PresignedRow(kSigned));
    rows[3].expiresMs.reset();
    for (CloudRow& row : rows) {
        row.name = std::to_wstring(&row - rows.data());
    }
    TakeRemote(rows[0], remote(true, CloudStatus::Ok));
    TakeRemote(rows[1], remote(false, CloudStatus::Ok));
    TakeRemote(rows[2], remote(false, CloudStatus::Forbidden));
    TakeRemote(rows[3], remote(true, CloudStatus::Ok));
    ApplyCloudRules(rows, InOrder(rows), kNoon + 61 * kMinuteMs);
    EXPECT_THAT(Codes(rows[0]), ElementsAre("link-expired", "wkt-bit-missing"));
    EXPECT_THAT(Codes(rows[1]), ElementsAre("remote-unusable", "link-expired"));
    EXPECT_THAT(Codes(rows[2]), ElementsAre("link-expired", "remote-not-read"));
    EXPECT_THAT(Codes(rows[3]), ElementsAre("wkt-bit-missing"));
    ApplyCloudRules(rows, InOrder(rows), kNoon + 30 * kMinuteMs);
    EXPECT_THAT(Codes(rows[2]), ElementsAre("remote-not-read", "link-expires-soon"));
    EXPECT_NE(rows[0].crs, nullptr);
    EXPECT_EQ(rows[2].crs, nullptr);
    EXPECT_TRUE(rows[1].loadable);  // nothing of this keeps a row from the record
}

TEST(UrlNotes, SayWhatIsOddAndNeverTheUrl) {
    const std::wstring text(kSigned);
    const auto notes = [](const std::wstring& url, std::int64_t after = 0) {
        return UrlNotes(url, kNoon + after * kMinuteMs);
    };
    const auto said = [](StringId id) { return FormatText(Text(id), {L"2026-09-24 13:00"}); };
    EXPECT_THAT(notes(L""), IsEmpty());
    EXPECT_THAT(notes(text, -1), ElementsAre(said(text::kCloudLinkExpires)));
    EXPECT_THAT(notes(text), ElementsAre(said(text::kCloudLinkExpiresSoon)));
    EXPECT_THAT(notes(text, 60), ElementsAre(said(text::kCloudLinkExpired)));
    EXPECT_THAT(notes(L"HTTPS://a/b.las"), ElementsAre(Text(text::kCloudLinkHasNoEnd)));
    EXPECT_THAT(notes(L"<\"a.las \r\n'"),
                ElementsAre(Text(text::kCloudLinkHasNoEnd), Text(text::kCloudUrlScheme),
                            Text(text::kCloudUrlLineBreaks), Text(text::kCloudUrlBlanks),
                            Text(text::kCloudUrlQuotes), Text(text::kCloudUrlBrackets)));
}

}  // namespace
}  // namespace orvex
