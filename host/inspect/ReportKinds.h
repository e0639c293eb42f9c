#pragma once
#include <string_view>

#include "host/inspect/FileReport.h"

namespace orvex {

/// One kind of file that the command reads.
struct ReportKind {
    const char* name;                            ///< in reports and after --as
    bool (*isNamed)(std::wstring_view path);     ///< whether files of that name are of this kind
    bool (*isSearched)(std::wstring_view path);  ///< whether a folder is searched for them when all are of it
    void (*inspect)(FileReport& report);
};

/// The kind of a name, as it follows --as; null for none.
const ReportKind* ReportKindNamed(std::wstring_view name);

/// The kind that a file's name says; null when no reader is for it.
const ReportKind* ReportKindOf(std::wstring_view path);

}  // namespace orvex
