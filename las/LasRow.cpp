#include "las/LasRow.h"

namespace orvex {

LoadFlag LoadFlagOf(const LasRow& row) {
    return LoadFlagFor(row.inspection.file != nullptr, row.inspection.findings);
}

std::wstring FindingsText(const LasRow& row) {
    const LasInspection& inspection = row.inspection;
    const bool isFailure = inspection.findings.empty() && inspection.file == nullptr;
    return isFailure ? inspection.summary : FindingLines(inspection.findings);
}

}  // namespace orvex
