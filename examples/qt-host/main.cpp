// A host with Qt, built with the component's own compiler: it passes the record itself.
#include <orvexcommon/Exports.h>
#include <orvexcommon/HostInterfaces.h>
#include <orvexcommon/LasFileInfo.h>

#include <QApplication>
#include <QDir>
#include <QTextStream>
#include <map>

namespace {

/// Settings for as long as the program runs; a real host has a place for them.
class Settings final : public orvex::OrvexSystemSettings {
  public:
    std::int32_t Get(const std::wstring& section, const std::wstring& key,
                     orvex::SettingValue& value) override {
        if (const auto stored = values.find({section, key}); stored != values.end()) {
            value = stored->second;
        }
        return orvex::kHostOk;
    }
    std::int32_t Set(const std::wstring& section, const std::wstring& key,
                     const orvex::SettingValue& value) override {
        values[{section, key}] = value;
        return orvex::kHostOk;
    }

  private:
    // Of all objects: the component makes one whenever it needs it.
    static inline std::map<std::pair<std::wstring, std::wstring>, orvex::SettingValue> values;
};

class Application final : public orvex::OrvexApplication {
  public:
    std::int32_t GetProjectFolder(std::wstring& folder) override {
        folder = QDir::toNativeSeparators(QDir::homePath() + '/').toStdWString();
        return orvex::kHostOk;
    }
    std::int32_t GetOptionItem(std::int32_t, orvex::SettingValue&) override { return orvex::kHostOk; }
};

/// The two objects that every host has, registered while this lives.
struct HostObjects {
    HostObjects() {
        RegisterHostClass(orvex::kSystemSettingsClass, [] { return std::make_unique<Settings>(); });
        RegisterHostClass(orvex::kApplicationClass, [] { return std::make_unique<Application>(); });
    }
    ~HostObjects() {
        RegisterHostClass(orvex::kApplicationClass, nullptr);
        RegisterHostClass(orvex::kSystemSettingsClass, nullptr);
    }
    HostObjects(const HostObjects&) = delete;
    HostObjects& operator=(const HostObjects&) = delete;
};

}  // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const HostObjects objects;  // the component asks them for settings and for the project's folder

    AddFilesParams record;
    record.existingLasLayers = {{L"Survey 2019", L""}};  // what files can be appended to
    if (!ShowAddFilesDialog(&record)) {
        return 0;  // cancelled, or nothing was chosen
    }
    QTextStream out(stdout);
    for (const auto& [path, details] : record.lasFileDetails) {
        out << QString::fromStdWString(path) << ": " << details->GetPointCount() << " points to layer "
            << QString::fromStdWString(record.lasFileLayers[path]) << '\n';
        delete details;  // ours since OK
    }
    return 0;
}
