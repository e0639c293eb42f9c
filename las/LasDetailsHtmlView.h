#pragma once
#include <QString>
#include <span>

#include "las/LasDetails.h"

namespace orvex {

/// The sections beside each other. `captionColour`: of the names of the fields, as "#rrggbb".
QString SectionsHtml(std::span<const LasDetailSection> sections, const QString& captionColour);

/// A two-column table of fields.
QString FieldsHtml(std::span<const LasDetailField> fields, const QString& captionColour);

/// What is odd about a row, a line each, with the picture of its severity ("image:" and its index); one line
/// that says so when nothing is.
QString FindingsHtml(const LasRow& row);

/// A monospaced block that keeps its lines.
QString PreformattedHtml(const std::wstring& text);

}  // namespace orvex
