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
    std::wstring title;          ///< empty: the system's default
    std::wstring initialFolder;  ///< empty: the system's choice
    std::vector<FileFilter> filters;
    /// Limit of one selection in characters: the folder and each name count with one separator.
    std::size_t bufferCharacters = 130261;
};

/// BufferTooSmall: more names were chosen than bufferCharacters allows.
enum class PickOutcome { Picked, Cancelled, BufferTooSmall, OutOfMemory, Failed };

struct PickedFiles {
    PickOutcome outcome = PickOutcome::Cancelled;
    std::vector<std::wstring> paths;  ///< full paths in the order chosen; empty unless Picked
};

struct SaveFileRequest {
    std::wstring title;
    std::wstring path;  ///< proposed
    FileFilter filter;
    std::wstring suffix;  ///< that a typed name without one gets: "csv"
};

/// File and folder dialogs of the system over the application's active window, or scripted answers in tests.
class FilePickers {
  public:
    virtual ~FilePickers() = default;
    /// Picks one or more files. A typed name may not exist: Windows' dialog only checks its folder.
    virtual PickedFiles PickFiles(const OpenFilesRequest& request) = 0;
    /// Picks a folder, beginning in `initialFolder` (empty: the process's current one); nullopt if the user
    /// cancelled.
    virtual std::optional<std::wstring> PickFolder(const std::wstring& title,
                                                   const std::wstring& initialFolder) = 0;
    /// Picks the file to write; the user has agreed to replace an existing one. Nullopt if cancelled.
    virtual std::optional<std::wstring> PickSaveFile(const SaveFileRequest& request) = 0;
    /// Opens the file manager on a file's folder, with the file selected where the system can. False if it
    /// does not open.
    virtual bool ShowInFolder(const std::wstring& path) = 0;
};

std::unique_ptr<FilePickers> MakeFilePickers();

}  // namespace orvex
