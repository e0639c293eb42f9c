// An account that is a folder of listings: projects.json, projects/<id>.json and the files that they name.
#include <algorithm>
#include <charconv>

#include "host/cloudaccount/Accounts.h"
#include "host/cloudaccount/CloudTexts.h"
#include "host/cloudaccount/ListingJson.h"
#include "support/Files.h"
#include "support/Format.h"
#include "support/JsonLimits.h"
#include "support/MappedFile.h"

namespace orvex::cloud {
namespace {

/// A listing from one page on. A page needs no more of a file than its own part.
class ListingFile {
  public:
    /// `page`: empty for the first.
    ListingFile(const std::wstring& path, std::string_view key, const std::string& page)
        : path_(NativePath(path)), key_(key) {
        if (const FileKind kind = KindOf(path_); kind != FileKind::File || file_.Open(path_, true) != 0) {
            const bool isMissing = kind == FileKind::Missing;
            Throw(isMissing ? CloudStatus::NotFound : CloudStatus::Unreachable,
                  Text(isMissing ? text::kFileMissing : text::kFileOpenRefused));
        }
        if (const SystemError error = file_.Size(size_)) {
            Throw(CloudStatus::Unreachable, SystemErrorText(error));
        }
        if (!page.empty() && !ReadPageName(page)) {
            throw CloudError(CloudStatus::BadAnswer, FormatText(Text(text::kCloudChanged), {path_}));
        }
    }

    const std::wstring& Path() const { return path_; }
    bool IsAtEnd() const { return part_.isLast; }
    /// Offset in the file of an element of the part.
    std::uint64_t PlaceOf(const ListingPart::Element& element) const { return start_ + element.at; }

    /// The next elements; valid until the next call.
    const std::vector<ListingPart::Element>& Next() {
        start_ = next_;
        text_.resize(static_cast<std::size_t>(std::min<std::uint64_t>(kMostJsonBytes, size_ - start_)));
        std::size_t read = 0;
        const SystemError error = file_.ReadAt(start_, std::as_writable_bytes(std::span(text_)), read);
        if (error != 0) {
            Throw(CloudStatus::Unreachable, SystemErrorText(error));
        }
        text_.resize(read);
        part_ = SplitListing(text_, key_, start_, start_ + read >= size_, kPageLength, path_);
        next_ = start_ + part_.end;
        return part_.elements;
    }

    /// Where Next() has looked for them.
    const std::string& PartText() const { return text_; }

    /// Name of the page that follows; empty after the last.
    std::string NextPage() const {
        return IsAtEnd() ? std::string() : std::to_string(next_) + ":" + std::to_string(size_);
    }

  private:
    [[noreturn]] void Throw(CloudStatus status, const std::wstring& reason) const {
        throw CloudError(status, FormatText(Text(text::kCloudFileUnreadable), {path_, reason}));
    }

    bool ReadPageName(const std::string& page) {
        std::uint64_t size = 0;
        const char* end = page.data() + page.size();
        const auto [colon, error] = std::from_chars(page.data(), end, next_);
        if (error != std::errc() || colon == end || *colon != ':') {
            return false;
        }
        const auto [last, sizeError] = std::from_chars(colon + 1, end, size);
        return sizeError == std::errc() && last == end && size == size_ && next_ > 0 && next_ < size;
    }

    std::wstring path_;
    std::string_view key_;
    MappedFile file_;
    std::uint64_t size_ = 0;
    std::uint64_t start_ = 0;
    std::uint64_t next_ = 0;
    std::string text_;
    ListingPart part_;
};

/// A project's id names a file; it must not lead anywhere else.
bool IsFileName(std::string_view id) {
    return id.find_first_not_of('.') != std::string_view::npos && std::ranges::none_of(id, [](char c) {
               return static_cast<unsigned char>(c) < ' ' ||
                      std::string_view("/\\:*?\"<>|").find(c) != std::string_view::npos;
           });
}

std::string PageOfLayers(ListingFile& file, const QUrl& base) {
    std::string json = "{\"layers\":[";
    for (const ListingPart::Element& element : file.Next()) {
        json += json.back() == '[' ? "" : ",\n";
        json += LayerWithAbsoluteUrl(element.json, file.Path(), base);
    }
    const std::string next = file.NextPage();
    return json + (next.empty() ? "]}" : "],\"next\":\"" + next + "\"}");
}

std::wstring InFolder(const std::wstring& folder, const std::wstring& name) {
    return AbsolutePath(folder) + L"/" + name;
}

}  // namespace

void ListFolderProjects(const std::wstring& folder, const std::wstring& filter, ArchivingProjectList& list,
                        const CloudCall& call) {
    const std::wstring wanted = ToUpper(filter);
    ListingFile file(InFolder(folder, L"projects.json"), "projects", list.next);
    do {
        if (call.isCancelled && call.isCancelled()) {
            throw CloudError(CloudStatus::Cancelled, {});
        }
        for (const ListingPart::Element& element : file.Next()) {
            ArchivingProject project = ReadProject(element.json, file.Path(), file.PlaceOf(element));
            const bool isWanted = ToUpper(FromUtf8(project.name)).find(wanted) != std::wstring::npos;
            if (isWanted && !project.id.empty()) {
                list.projects.push_back(std::move(project));
            }
        }
    } while (list.projects.empty() && !file.IsAtEnd());
    list.next = file.NextPage();
}

std::string FolderProjectFiles(const std::wstring& folder, const std::string& projectId,
                               const std::string& page) {
    if (!IsFileName(projectId)) {
        throw CloudError(CloudStatus::NotFound, FormatText(Text(text::kCloudProjectInvalid),
                                                           {WithoutControls(FromUtf8(projectId))}));
    }
    ListingFile file(InFolder(folder, L"projects/" + FromUtf8(projectId) + L".json"), "layers", page);
    const QUrl base = QUrl::fromLocalFile(QString::fromStdWString(AbsolutePath(folder)) + QLatin1Char('/'));
    try {
        return PageOfLayers(file, base);
    } catch (const MalformedListing&) {
        return AsNoJson(file.PartText());
    }
}

}  // namespace orvex::cloud
