#include "host/app/RecordText.h"

#include <map>

#include "host/app/Project.h"
#include "orvexcommon/AddFilesParams.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/Format.h"
#include "support/NaturalOrder.h"
#include "support/Text.h"

namespace orvex {

namespace {

std::wstring YesNo(bool value) {
    return Text(value ? 40830_lsid : 40831_lsid);
}

void Option(std::wstring& text, StringId caption, const std::wstring& value) {
    text += L"  " + Text(caption) + L": " + value + L"\n";
}

std::wstring FileLine(const AddFilesParams& record, const std::wstring& folder, const std::wstring& name) {
    const std::wstring path = JoinPath(folder, name);
    std::wstring line = L"  " + name;
    const auto details = record.lasFileDetails.find(path);
    if (details != record.lasFileDetails.end() && details->second != nullptr) {
        const LasFileInfo& file = *details->second;
        line += L"  " + FormatText(Text(40832_lsid), {file.Version() / 10, file.Version() % 10,
                                                      file.PointFormat(), file.GetPointCount()});
        line += L", " + Text(file.IsReadOnly() ? 40833_lsid : 40834_lsid);
        if (FileNameOf(file.FileName()) != name) {
            line += L" (" + FileNameOf(file.FileName()) + L")";
        }
    }
    return line + L"\n";
}

std::wstring FilesText(const AddFilesParams& record) {
    std::size_t files = 0;
    std::wstring text;
    for (const auto& [folder, names] : record.lasFiles) {
        text += folder + L"\n";
        for (const std::wstring& name : names) {
            text += FileLine(record, folder, name);
        }
        files += names.size();
    }
    return FormatText(Text(40835_lsid), {files, record.lasFiles.size()}) + L"\n" + text;
}

std::wstring LayersText(const AddFilesParams& record) {
    std::map<std::wstring, std::size_t, decltype(&NaturalLess)> filesOfLayer(&NaturalLess);
    for (const auto& [path, layer] : record.lasFileLayers) {
        ++filesOfLayer[layer];
    }
    std::wstring text = Text(40836_lsid) + L"\n";
    for (const auto& [layer, files] : filesOfLayer) {
        const bool existing = record.existingLasLayers.contains(layer);
        text += L"  " + FormatText(Text(existing ? 40837_lsid : 40838_lsid), {layer, files}) + L"\n";
    }
    return text;
}

std::wstring PyramidName(std::int32_t type) {
    switch (type) {
        case 1:
            return Text(40840_lsid);
        case 2:
            return Text(40841_lsid);
        default:
            return Text(40842_lsid);
    }
}

std::wstring BackupName(std::int32_t option) {
    switch (option) {
        case 0:
            return Text(40843_lsid);
        case 1:
            return Text(40844_lsid);
        default:
            return Text(40845_lsid);
    }
}

std::wstring OptionsText(const AddFilesParams& record) {
    std::wstring text = Text(40846_lsid) + L"\n";
    Option(text, 40847_lsid, Text(record.lasOpenSetting ? 40834_lsid : 40833_lsid));
    Option(text, 40848_lsid, Text(record.lasLoadSetting ? 40849_lsid : 40850_lsid));
    Option(text, 40851_lsid, YesNo(record.lasAppend));
    Option(text, 40852_lsid, YesNo(record.lasIgnoreIncompatibleCrs));
    Option(text, 40853_lsid, YesNo(record.lasLoadCorruptFiles));
    Option(text, 40854_lsid, FormatText(L"%u", {record.lasThinning}));
    Option(text, 40855_lsid, PyramidName(record.lasPyramidType));
    Option(text, 40856_lsid, YesNo(record.convertExistingQvr));
    Option(text, 40857_lsid, BackupName(record.orvexLasBackupOption));
    Option(text, 40858_lsid, YesNo(record.reCreateOrvexLas));
    return text;
}

}  // namespace

std::wstring RecordText(const AddFilesParams& record) {
    if (record.lasFiles.empty()) {
        return Text(40859_lsid) + L"\n";
    }
    return FilesText(record) + L"\n" + LayersText(record) + L"\n" + OptionsText(record);
}

}  // namespace orvex
