#include "host/app/RecordFeatures.h"

#include <utility>

#include "orvexcommon/AddFilesParams.h"
#include "support/Format.h"
#include "support/Text.h"

namespace orvex {

namespace {

/// The kinds that are imported from CAD and KML files, as their check boxes name them.
std::wstring ImportedKinds(const AddFilesParams& record) {
    const std::pair<bool, StringId> kinds[] = {{record.featureImportPoints, text::kFeaturePoints},
                                               {record.featureImportLines, text::kFeatureLines},
                                               {record.featureImportPolygons, text::kFeaturePolygons},
                                               {record.featureImportText, text::kFeatureText}};
    std::wstring list;
    for (const auto& [isImported, name] : kinds) {
        list += isImported ? (list.empty() ? L"" : L", ") + Text(name) : L"";
    }
    return list.empty() ? Text(text::kRecordNothing) : list;
}

}  // namespace

std::vector<AssignedFile> FeatureFilesOf(const AddFilesParams& record, const Project& project) {
    const auto layers = project.LayersForDialog(LayerKind::Feature);
    std::vector<AssignedFile> files;
    for (const auto& [key, path] : record.featureFiles) {
        std::wstring layer = key;
        for (int number = 2; layers.contains(layer) || (layer != key && record.featureFiles.contains(layer));
             ++number) {
            layer = key + L" (" + std::to_wstring(number) + L")";
        }
        files.push_back({path, layer});
    }
    return files;
}

std::wstring FeaturesText(const AddFilesParams& record) {
    std::wstring text = FormatText(Text(text::kRecordFeatureFiles), {record.featureFiles.size()}) + L"\n";
    for (const auto& [key, path] : record.featureFiles) {
        text.append(L"  ").append(key).append(L": ").append(path).append(L"\n");
    }
    text += L"\n" + Text(text::kRecordOptions) + L"\n";
    if (!record.featureOutputFolder.empty()) {
        text += L"  " + Text(text::kRecordImport) + L": " + ImportedKinds(record) + L"\n";
        text += L"  " + Text(text::kRecordOutputFolder) + L": " + record.featureOutputFolder + L"\n";
    }
    return text + L"  " + Text(text::kRequireKnownCrs) + L": " +
           Text(record.featureRequireCrs ? text::kRecordYes : text::kRecordNo) + L"\n";
}

}  // namespace orvex
