#pragma once
#include "support/FilePickers.h"

namespace orvex {

/// The system's file and folder dialogs, over the active window.
class FilePickersQt final : public FilePickers {
  public:
    PickedFiles PickFiles(const OpenFilesRequest& request) override;
    std::optional<std::wstring> PickFolder(const std::wstring& title) override;
};

/// Characters that one selection takes: its folder and each name, each with one separator.
std::size_t SelectionCharacters(const std::vector<std::wstring>& paths);

}  // namespace orvex
