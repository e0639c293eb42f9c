#include "photo/page/PhotoDetails.h"

#include <algorithm>
#include <initializer_list>
#include <string_view>
#include <utility>
#include <vector>

#include "dialog/details/FileDetails.h"
#include "photo/PhotoColumns.h"
#include "support/Format.h"
#include "support/QtText.h"

namespace orvex {
namespace {

/// A number of the metadata, and how it is written: its unit belongs to the format.
struct Number {
    StringId caption;
    double PhotoMetadata::*value;
    const wchar_t* format;
};

constexpr Number kPosition[] = {{text::kPhotoLongitude, &PhotoMetadata::gpsLongitude, L"%.8f\u00b0"},
                                {text::kPhotoLatitude, &PhotoMetadata::gpsLatitude, L"%.8f\u00b0"},
                                {text::kPhotoAltitude, &PhotoMetadata::gpsAltitude, L"%.3f m"}};
constexpr Number kOrientation[] = {{text::kPhotoYaw, &PhotoMetadata::cameraYaw, L"%.4f\u00b0"},
                                   {text::kPhotoPitch, &PhotoMetadata::cameraPitch, L"%.4f\u00b0"},
                                   {text::kPhotoRoll, &PhotoMetadata::cameraRoll, L"%.4f\u00b0"}};
constexpr Number kAccuracies[] = {
    {text::kPhotoXyAccuracy, &PhotoMetadata::cameraGpsXyAccuracy, L"%.3f m"},
    {text::kPhotoZAccuracy, &PhotoMetadata::cameraGpsZAccuracy, L"%.3f m"},
    {text::kPhotoRollPitchAccuracy, &PhotoMetadata::cameraRollPitchAccuracy, L"%.4f\u00b0"},
    {text::kPhotoYawAccuracy, &PhotoMetadata::cameraYawAccuracy, L"%.4f\u00b0"}};
constexpr Number kCalibration[] = {
    {text::kPhotoFocalLength, &PhotoMetadata::calibratedFocalLength, L"%.8g"},
    {text::kPhotoPrincipalPointCx, &PhotoMetadata::calibratedCx, L"%.8g"},
    {text::kPhotoPrincipalPointCy, &PhotoMetadata::calibratedCy, L"%.8g"},
    {text::kPhotoRadialDistortionK1, &PhotoMetadata::calibratedK1, L"%.8g"},
    {text::kPhotoRadialDistortionK2, &PhotoMetadata::calibratedK2, L"%.8g"},
    {text::kPhotoRadialDistortionK3, &PhotoMetadata::calibratedK3, L"%.8g"},
    {text::kPhotoTangentialDistortionP1, &PhotoMetadata::calibratedP1, L"%.8g"},
    {text::kPhotoTangentialDistortionP2, &PhotoMetadata::calibratedP2, L"%.8g"}};

/// Those of a group that belong together: none when all are 0, as where they are missing.
void AddTogether(std::vector<DetailField>& fields, const PhotoMetadata& metadata,
                 std::span<const Number> numbers) {
    const auto isStated = [&](const Number& number) { return metadata.*number.value != 0; };
    if (std::ranges::any_of(numbers, isStated)) {
        for (const Number& number : numbers) {
            AddField(fields, number.caption, FormatText(number.format, {metadata.*number.value}));
        }
    }
}

void AddStated(std::vector<DetailField>& fields, const PhotoMetadata& metadata,
               std::span<const Number> numbers) {
    for (const Number& number : numbers) {
        AddTogether(fields, metadata, {&number, 1});
    }
}

/// A text unless it stands for a missing one.
void AddStated(std::vector<DetailField>& fields, StringId caption, const std::wstring& value) {
    const bool isMissing =
        value == L"NONE" || value == Text(text::kPhotoNotAvailable) || value == Text(text::kUnknown);
    AddField(fields, caption, isMissing ? std::wstring() : value);
}

DetailSection PoseSection(const PhotoRow& row) {
    DetailSection section{text::kPhotoPoseSection, {}};
    auto& fields = section.fields;
    if (row.statesPosition) {
        AddTogether(fields, row.metadata, std::span(kPosition).first(2));
    }
    AddStated(fields, row.metadata, std::span(kPosition).subspan(2));
    AddStated(fields, row.metadata, std::span(kOrientation).first(1));
    AddTogether(fields, row.metadata, std::span(kOrientation).subspan(1));
    AddField(fields, text::kPhotoTimeUtc, row.timeUtc);
    AddStated(fields, text::kPhotoPositionQuality, row.metadata.posQuality);
    AddStated(fields, text::kPhotoOrientationQuality, row.metadata.oriQuality);
    return section;
}

DetailSection AccuracySection(const PhotoRow& row) {
    DetailSection section{text::kPhotoAccuracySection, {}, true};
    AddStated(section.fields, row.metadata, kAccuracies);
    return section;
}

DetailSection CameraSection(const PhotoRow& row) {
    DetailSection section{text::kPhotoCalibrationSection, {}};
    auto& fields = section.fields;
    const PhotoMetadata& metadata = row.metadata;
    AddField(fields, text::kPhotoCameraModel, row.image.cameraModel);
    AddStated(fields, text::kPhotoPlatformId, metadata.platformId);
    AddCells(fields, PhotoColumns(), row, {"calibrated"});
    AddStated(fields, text::kPhotoCalibrationDate, metadata.calibratedDate);
    AddStated(fields, metadata, kCalibration);
    return section;
}

DetailSection ImageSection(const PhotoRow& row) {
    DetailSection section{text::kRasterImageSection, {}};
    AddCells(section.fields, PhotoColumns(), row, {"fileType", "size"});
    AddField(section.fields, text::kModifiedUtc,
             row.modifiedMs == 0 ? std::wstring() : UtcTimeText(row.modifiedMs));
    AddCells(section.fields, PhotoColumns(), row,
             {"imageSize", "bands", "bitsPerBand", "colorModel", "photometric", "overviews", "pixelSizes"});
    AddStated(section.fields, text::kPhotoImageId, row.metadata.imageUniqueId);
    return section;
}

std::vector<DetailSection> PhotoSections(const PhotoRow& row) {
    std::vector<DetailSection> sections;
    for (DetailSection& section :
         std::vector{PoseSection(row), AccuracySection(row), CameraSection(row), ImageSection(row)}) {
        if (!section.fields.empty()) {
            section.isBelow = section.isBelow && !sections.empty();
            sections.push_back(std::move(section));
        }
    }
    return sections;
}

/// The findings, those first that keep the photo from being a true pose photo.
QString StateHtml(const PhotoRow& row) {
    const std::vector<std::wstring> reasons =
        row.loadable ? WhyNotTruePose(row) : std::vector<std::wstring>();
    if (reasons.empty()) {
        return FileFindingsHtml(row);
    }
    const auto isReason = [&](const Finding& finding) {
        return std::ranges::find(reasons, finding.text) != reasons.end();
    };
    std::vector<Finding> findings = row.findings;
    const auto rest = std::stable_partition(findings.begin(), findings.end(), isReason);
    QString html = TextHtml(Text(text::kPhotoNotTruePose)) + FindingsHtml({findings.begin(), rest}, {}, {});
    if (rest != findings.end() || row.place.inProject) {
        PhotoRow others;
        others.loadable = true;
        others.findings.assign(rest, findings.end());
        others.place = row.place;
        html += FileFindingsHtml(others);
    }
    return html;
}

QString OverviewHtml(const PhotoRow& row, const QString& preview, const QString& captionColour) {
    const QString picture = row.loadable
                                ? QStringLiteral(
                                      "<table cellspacing=\"0\" cellpadding=\"0\" style=\"float:left\">"
                                      "<tr><td style=\"padding-top:8px; padding-right:14px\">%1</td>"
                                      "</tr></table>")
                                      .arg(preview)
                                : QString();
    return StateHtml(row) + picture + SectionsHtml(PhotoSections(row), captionColour);
}

DetailSection PhotoTotals(std::span<const PhotoRow> rows, std::span<const std::size_t> records) {
    const FileTotals totals = TotalsOf(rows, records, [](const PhotoRow& row) -> DetailExtent {
        const PhotoMetadata& data = row.metadata;
        return HasPosition(row)
                   ? DetailExtent({data.gpsLongitude, data.gpsLatitude, data.gpsLongitude, data.gpsLatitude})
                   : DetailExtent();
    });
    std::size_t truePose = 0;
    std::vector<std::wstring> times;
    for (const std::size_t record : records) {
        truePose += rows[record].state == PhotoState::TruePose ? 1 : 0;
        if (!rows[record].timeUtc.empty()) {
            times.push_back(rows[record].timeUtc);
        }
    }
    std::vector<DetailField> own;
    AddField(own, text::kTotalsTruePosePhotos, GroupedNumber(truePose));
    if (!times.empty()) {  // such texts sort by time
        const auto [first, last] = std::ranges::minmax_element(times);
        AddField(own, text::kTotalsPhotoTimes, *first == *last ? *first : *first + L" \u2013 " + *last);
    }
    return TotalsSection(totals, std::move(own));
}

}  // namespace

DetailsContent PhotoDetailsContent(std::span<const PhotoRow> rows, std::span<const std::size_t> records,
                                   const QString& preview, const QString& captionColour) {
    if (records.size() == 1) {
        const PhotoRow& row = rows[records.front()];
        return {row.path, {OverviewHtml(row, preview, captionColour), CrsHtml(*row.crs, captionColour)}};
    }
    const DetailSection section = PhotoTotals(rows, records);
    return {FormatText(Text(text::kDetailsFilesSelected), {records.size()}),
            {SectionsHtml({&section, 1}, captionColour)}};
}

}  // namespace orvex
