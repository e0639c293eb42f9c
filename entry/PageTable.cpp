#include "entry/PageTable.h"

#include "dialog/Images.h"
#include "las/AddLASFilesPP.h"

namespace orvex {
namespace {

template <typename Page>
std::unique_ptr<AddFilesPage> Make(const PageContext& context) {
    return std::make_unique<Page>(context);
}

}  // namespace

std::span<const PageDescription> AddFilesPages() {
    static const PageDescription pages[] = {
        {PageKind::Las, 13558_lsid, 13559_lsid, nullptr, 13560_lsid, nullptr, 363, kImageLas, nullptr,
         Make<AddLASFilesPP>},
    };
    return pages;
}

}  // namespace orvex
