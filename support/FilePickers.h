#pragma once
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvex {

struct FileFilter {
    std::wstring caption;   ///< "LAS Files (*.las)"
    std::wstring patterns;  ///< "*.las;*.laz"
};

struct OpenFilesRequest {
    std::wstring title;          ///< empty: the system's own
    std::wstring initialFolder;  ///< empty: the system's choice
    std::vector<FileFilter> filters;
    /// The names of one selection must fit in this many characters: the folder and each name count with one
    /// separator.
    std::size_t bufferCharacters = 130261;
};

/// BufferTooSmall: more names were chosen than bufferCharacters hold.
enum class PickOutcome { Picked, Cancelled, BufferTooSmall, OutOfMemory, Failed };

struct PickedFiles {
    PickOutcome outcome = PickOutcome::Cancelled;
    std::vector<std::wstring> paths;  ///< full paths in the order chosen; empty unless Picked
};

/// Choosing files and folders. The real half shows the system's dialogs; the scripted half answers tests.
class FilePickers {
  public:
    virtual ~FilePickers() = default;
    /// One or more files. A name that was typed may be of none: Windows' dialog asks for its folder only.
    virtual PickedFiles PickFiles(const OpenFilesRequest& request) = 0;
    /// None when the user cancelled.
    virtual std::optional<std::wstring> PickFolder(const std::wstring& title) = 0;
};

/// The platform's half: the system's dialogs over the active window of the application.
std::unique_ptr<FilePickers> MakeFilePickers();

}  // namespace orvex
