#pragma once
#include <functional>
#include <memory>
#include <span>

#include "dialog/page/AddFilesPage.h"
#include "orvexcommon/AddFilesParams.h"
#include "support/Text.h"

namespace orvex {

/// Kinds of pages, in the order of OK and of the tabs.
enum class PageKind { Las = 0, Raster = 1, Feature = 2, Dem = 3, Photo = 4, CloudLas = 5 };

/// One row of the table that the dialog is built from. A text is given by id, or literally where there is no
/// id.
struct PageDescription {
    PageKind kind;
    StringId caption;
    StringId insertFailureId;  ///< said when the tab cannot be added
    const wchar_t* insertFailureText;
    StringId createFailureId;  ///< said when the page cannot be made
    const wchar_t* createFailureText;
    int templateId;                    ///< name of the page's widget: "page<templateId>"
    int imageIndex;                    ///< image of its tab while selected
    bool AddFilesParams::*pageSwitch;  ///< null: the page always exists
    std::function<std::unique_ptr<AddFilesPage>(const PageContext&)> create;
};

}  // namespace orvex
