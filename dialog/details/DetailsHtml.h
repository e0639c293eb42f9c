#pragma once
#include <QString>
#include <span>
#include <string>

#include "crs/CrsDescription.h"
#include "dialog/details/DetailSection.h"
#include "support/Finding.h"

namespace orvex {

/// The sections beside each other as far as there is room, and then below; what they are put into ends with
/// them. `captionColour`: of the names of the fields, as "#rrggbb".
QString SectionsHtml(std::span<const DetailSection> sections, const QString& captionColour);

/// A two-column table of fields.
QString FieldsHtml(std::span<const DetailField> fields, const QString& captionColour);

/// A table with a heading. `unlisted`: how many rows there are beyond these.
QString TableHtml(const DetailTable& table, std::size_t unlisted, const QString& captionColour);

/// A coordinate reference system in full, or that there is none.
QString CrsHtml(const CrsDescription& crs, const QString& captionColour);

/// What is odd about a file, a line each, with the picture of its severity ("image:" and its index).
/// `failure`: why the file cannot be loaded, which comes first; empty when it can. `allWell`: what is said
/// when nothing is odd.
QString FindingsHtml(std::span<const Finding> findings, const std::wstring& failure,
                     const std::wstring& allWell);

/// A text with its line breaks.
QString TextHtml(const std::wstring& text);

/// A monospaced block that keeps its lines.
QString PreformattedHtml(const std::wstring& text);

}  // namespace orvex
