#include "las/LasDetailsHtmlView.h"

#include "dialog/Images.h"
#include "support/QtText.h"
#include "support/Text.h"

namespace orvex {

namespace {

QString Escaped(const std::wstring& text) {
    return ToQString(text).toHtmlEscaped();
}

QString EscapedLines(const std::wstring& text) {
    return Escaped(text).replace(QLatin1Char('\n'), QStringLiteral("<br>"));
}

QString FindingLine(int image, const std::wstring& text) {
    return QStringLiteral(
               "<tr><td style=\"padding-right:6px\"><img src=\"image:%1\" width=\"16\" height=\"16\"></td>"
               "<td>%2</td></tr>")
        .arg(image)
        .arg(Escaped(text));
}

int ImageOf(LasSeverity severity) {
    switch (severity) {
        case LasSeverity::Note:
            return kImageInformation;
        case LasSeverity::Warning:
            return kImageWarning;
        case LasSeverity::Error:
            return kImageNotLoadable;
    }
    return kImageInformation;
}

}  // namespace

QString FieldsHtml(std::span<const LasDetailField> fields, const QString& captionColour) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\">");
    for (const LasDetailField& field : fields) {
        html += QStringLiteral(
                    "<tr><td style=\"color:%1; padding-right:8px; white-space:nowrap\">%2</td>"
                    "<td>%3</td></tr>")
                    .arg(captionColour, Escaped(Text(field.caption)), EscapedLines(field.value));
    }
    return html + QStringLiteral("</table>");
}

QString SectionsHtml(std::span<const LasDetailSection> sections, const QString& captionColour) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"0\" style=\"margin-top:8px\"><tr>");
    for (const LasDetailSection& section : sections) {
        html += QStringLiteral(
                    "<td style=\"padding-right:14px\"><p style=\"margin-bottom:3px\"><b>%1</b></p>%2</td>")
                    .arg(Escaped(Text(section.title)), FieldsHtml(section.fields, captionColour));
    }
    return html + QStringLiteral("</tr></table>");
}

QString FindingsHtml(const LasRow& row) {
    QString html = QStringLiteral("<table cellspacing=\"0\" cellpadding=\"1\">");
    if (row.inspection.file == nullptr) {
        html += FindingLine(kImageNotLoadable, row.inspection.summary);
    } else if (row.inspection.findings.empty()) {
        html += FindingLine(kImageLoadable, Text(40641_lsid));
    }
    for (const LasFinding& finding : row.inspection.findings) {
        html += FindingLine(ImageOf(finding.severity), finding.text);
    }
    return html + QStringLiteral("</table>");
}

QString PreformattedHtml(const std::wstring& text) {
    return QStringLiteral("<pre>%1</pre>").arg(Escaped(text));
}

}  // namespace orvex
