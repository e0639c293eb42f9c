// How a host uses the component: the whole of it.
#include <QApplication>
#include <filesystem>
#include <iostream>

#include "host/objects/HostClasses.h"
#include "orvexcommon/Exports.h"
#include "orvexcommon/LasFileInfo.h"
#include "support/Text.h"

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    // The component asks for these two objects; a host brings its own settings and its own project folder.
    const orvex::host::HostClasses classes(
        {orvex::host::DefaultSettingsFile(),
         [] { return orvex::FromPath(std::filesystem::temp_directory_path()); }});

    AddFilesParams record;
    record.existingLasLayers = {{L"Survey 2019", L""}};  // what files can be appended to
    if (!ShowAddFilesDialog(&record)) {
        return 0;  // cancelled, or nothing was chosen
    }
    for (const auto& [path, details] : record.lasFileDetails) {
        std::cout << orvex::ToUtf8(path) << ": " << details->GetPointCount() << " points to layer "
                  << orvex::ToUtf8(record.lasFileLayers[path]) << '\n';
        delete details;  // ours since OK
    }
    return 0;
}
