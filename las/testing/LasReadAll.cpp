#include "las/testing/LasReadAll.h"

#include "las/LASFile.h"
#include "las/LasPointViews.h"
#include "las/LasText.h"
#include "las/LasValidate.h"
#include "support/LDataError.h"

namespace orvex::testing {
namespace {

std::wstring LastPointText(const LasPointViews* points) {
    if (points == nullptr || points->PointCount() == 0) {
        return L"no points\n";
    }
    const std::uint64_t last = points->PointCount() - 1;
    const LasPointView view = points->Map(points->ViewOf(last));
    return std::to_wstring(view.Record(last).size()) + L" bytes at " +
           std::to_wstring(view.Position(last)[0]) + L"\n";
}

}  // namespace

std::wstring ReadAllOfLas(const std::wstring& path, bool readOnly) {
    try {
        const auto file = LASFile::Open(path, readOnly, false);
        std::wstring text = LasVlrText(*file) + LasEvlrText(*file) + LasGpsTimeText(*file) + L"\n";
        for (const LasFinding& finding : ValidateLas(*file)) {
            text += finding.text + L"\n";
        }
        for (const ExtraBytesAttribute& attribute : file->GetExtraBytes().Attributes()) {
            text += attribute.name + L" at " + std::to_wstring(attribute.offset) + L"\n";
        }
        text += std::to_wstring(file->GetPointCount()) + L" points, companion " +
                std::to_wstring(file->GetCompanionStatus()) + L"\n";
        return text + LastPointText(file->Points());
    } catch (const LDataError& error) {
        return error.Text();
    }
}

}  // namespace orvex::testing
