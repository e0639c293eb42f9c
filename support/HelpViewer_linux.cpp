#include "support/HelpViewerQt.h"

namespace orvex {

std::unique_ptr<HelpViewer> MakeHelpViewer(const std::filesystem::path& folder) {
    return std::make_unique<HelpViewerQt>(folder);
}

}  // namespace orvex
