#pragma once
#include <filesystem>
#include <memory>
#include <string>

namespace orvex {

/// Topics of the manual; the numbers are its help contexts.
enum class HelpTopic {
    LasFiles = 730,
    RasterFiles = 731,
    FeatureFiles = 732,
    DemFiles = 733,
    PhotoFiles = 734,
    CloudLas = 737,
    PresignedUrl = 738
};

/// Opens the manual at a topic. False if it cannot be shown; the caller tells the user.
class HelpViewer {
  public:
    virtual ~HelpViewer() = default;
    virtual bool Show(HelpTopic topic) = 0;
    /// Full path of the manual, for that message.
    virtual std::wstring ManualPath() const = 0;
};

/// The system's help: `folder` contains the manual, "help/index.html" and on Windows also "orvex.chm".
std::unique_ptr<HelpViewer> MakeHelpViewer(const std::filesystem::path& folder);

}  // namespace orvex
