#pragma once
#include <QUrl>
#include <filesystem>
#include <functional>

#include "support/HelpViewer.h"

namespace orvex {

/// The HTML manual in the browser.
class HelpViewerQt final : public HelpViewer {
  public:
    using Open = std::function<bool(const QUrl&)>;

    /// `folder` holds "help/index.html"; `open` shows an address (empty: the desktop's browser).
    explicit HelpViewerQt(std::filesystem::path folder, Open open = {});

    /// Opens the topic's heading, whose id in the manual is "topic-" and the topic's number.
    bool Show(HelpTopic topic) override;

  private:
    std::filesystem::path folder_;
    Open open_;
};

}  // namespace orvex
