#include "dialog/details/DetailsHtml.h"

#include "support/Format.h"
#include "support/ImageIndex.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

namespace {

QString Escaped(const std::wstring& text) {
    return ToQString(text).toHtmlEscaped();
}

QString FindingLine(int image, const std::wstring& text) {
    return QStringLiteral(
               "<tr><td style=\"padding-right:6px\"><img src=\"image:%1\" width=\"16\" height=\"16\"></td>"
               "<td>%2</td></tr>")
        .arg(image)
        .arg(Escaped(text));
}

int ImageOf(FindingSeverity severity) {
    switch (severity) {
        case FindingSeverity::Note:
            return kImageInformation;
        case FindingSeverity::Warning:
            return kImageWarning;
        case FindingSeverity::Error:
            return kImageNotLoadable;
    }
    return kImageInformation;
}

QString CellHtml(const std::wstring& text, const QString& style) {
    return QStringLiteral("<td style=\"padding-right:16px;white-space:pre%1\">%2</td>")
        .arg(style, Escaped(text));
}

std::vector<DetailField> CrsFields(const CrsDescription& crs) {
    std::vector<DetailField> fields;
    AddField(fields, text::kDetailsCrsName, crs.name);
    const long epsg = crs.Epsg();
    AddField(fields, text::kProjectionCode, epsg == 0 ? std::wstring() : std::to_wstring(epsg));
    AddField(fields, text::kDetailsCrsKind,
             Text(crs.isGeographic ? text::kCrsGeographic : text::kCrsProjectedOrLocal));
    AddField(fields, text::kDetailsLinearUnit, crs.linearUnits);
    AddField(fields, text::kDetailsAngularUnit, crs.angularUnits);
    AddField(fields, text::kVerticalCrs, crs.verticalName);
    return fields;
}

}  // namespace

QString TableHtml(const DetailTable& table, std::size_t unlisted, const QString& captionColour) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\"><tr>");
    for (const StringId caption : table.captions) {
        html += CellHtml(Text(caption), QStringLiteral(";color:") + captionColour);
    }
    for (const std::vector<std::wstring>& cells : table.rows) {
        html += QStringLiteral("</tr><tr>");
        for (const std::wstring& cell : cells) {
            html += CellHtml(cell, {});
        }
    }
    html += QStringLiteral("</tr></table>");
    return unlisted == 0 ? html : html + TextHtml(FormatText(Text(text::kMoreItems), {unlisted}));
}

QString CrsHtml(const CrsDescription& crs, const QString& captionColour) {
    return crs.sourceWkt.empty()
               ? TextHtml(Text(text::kDetailsNoCrs))
               : FieldsHtml(CrsFields(crs), captionColour) + PreformattedHtml(crs.prettyWkt);
}

QString FieldsHtml(std::span<const DetailField> fields, const QString& captionColour) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\">");
    for (const DetailField& field : fields) {
        html += QStringLiteral(
                    "<tr><td style=\"color:%1; padding-right:8px; white-space:nowrap\">%2</td>"
                    "<td style=\"white-space:nowrap\">%3</td></tr>")
                    .arg(captionColour, Escaped(Text(field.caption)), TextHtml(field.value));
    }
    return html + QStringLiteral("</table>");
}

QString SectionsHtml(std::span<const DetailSection> sections, const QString& captionColour) {
    QString html;
    const auto end = sections.end();
    for (auto section = sections.begin(); section != end;) {
        // Floating, so that what does not fit beside the others comes below them.
        html += QStringLiteral(
            "<table cellspacing=\"0\" cellpadding=\"0\" style=\"float:left\">"
            "<tr><td style=\"padding-top:8px; padding-right:14px\">");
        do {
            html += QStringLiteral("<p style=\"margin-bottom:3px; white-space:nowrap\"><b>%1</b></p>%2")
                        .arg(Escaped(Text(section->title)), FieldsHtml(section->fields, captionColour));
            ++section;
        } while (section != end && section->isBelow);
        html += QStringLiteral("</td></tr></table>");
    }
    return html;
}

QString FindingsHtml(std::span<const Finding> findings, const std::wstring& failure,
                     const std::wstring& allWell) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\">");
    if (!failure.empty()) {
        html += FindingLine(kImageNotLoadable, failure);
    } else if (findings.empty()) {
        html += FindingLine(kImageLoadable, allWell);
    }
    for (const Finding& finding : findings) {
        if (finding.text != failure) {  // the failure may be among them
            html += FindingLine(ImageOf(finding.severity), finding.text);
        }
    }
    return html + QStringLiteral("</table>");
}

QString TextHtml(const std::wstring& text) {
    return Escaped(text).replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

QString PreformattedHtml(const std::wstring& text) {
    return QStringLiteral("<pre>%1</pre>").arg(Escaped(text));
}

}  // namespace orvex
