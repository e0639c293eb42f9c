#pragma once
// The host's cloud-account library: the archiving projects of a signed-in user, and parts of files that have
// a URL. Every function blocks the calling thread, on which user input waits meanwhile, may be called on any
// thread, throws nothing, and returns within about 100 ms after the caller has cancelled; of folders and
// file: URLs as soon as the file system answers. What uses the network needs a QCoreApplication in the
// process, and is Unreachable without one; folders and file: URLs need none.
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#if defined(_WIN32)
#if defined(ORVEXCLOUDACCOUNT_BUILD)
#define ORVEXCLOUDACCOUNT_API __declspec(dllexport)
#else
#define ORVEXCLOUDACCOUNT_API __declspec(dllimport)
#endif
#else
#define ORVEXCLOUDACCOUNT_API __attribute__((visibility("default")))
#endif

namespace orvex {

/// A signed-in user account; a copy that any thread may use.
struct CloudAccount {
    std::wstring userName;  ///< shown to the user; may be empty
    /// Base address of the service ("https://host/path"), or the full path of a folder of listings.
    std::wstring service;
    /// Bearer token; empty: none. Sent to the service's scheme, host and port only, and over http only to
    /// this computer. Never shown or logged.
    std::wstring token;
};

enum class CloudStatus {
    Ok,
    Cancelled,
    NotSignedIn,   ///< the token is missing, wrong or too old (401)
    Forbidden,     ///< no right to it, or a signed URL has expired (403)
    NotFound,      ///< no such project or file (404, 410)
    Busy,          ///< still too many requests after several attempts (429)
    ServerFailed,  ///< the server reports a failure of its own (5xx)
    Unreachable,   ///< no name, no connection, no answer in time, or cut off
    Untrusted,     ///< the certificate cannot be trusted, or a redirect leads where it must not
    NoRanges,      ///< the server can only send whole files
    BadAnswer      ///< not what the interface promises: malformed, too large, changed while it was read
};

/// How a call ended.
struct CloudOutcome {
    CloudStatus status = CloudStatus::Ok;
    /// A sentence for the user with the host's name and the cause; empty after Ok and Cancelled. Never holds
    /// a token or a signature.
    std::wstring message = {};
};

/// What a call asks and tells while it runs, on the calling thread.
struct CloudCall {
    std::function<bool()> isCancelled = {};  ///< asked about every 50 ms; empty: never
    /// Told why the call takes longer ("... is busy. Next attempt in 4 s."); an empty text: no longer so.
    std::function<void(const std::wstring& text)> waiting = {};
};

/// A project of the account; UTF-8.
struct ArchivingProject {
    std::string name;
    std::string id;
};

/// One page of the account's projects.
struct ArchivingProjectList {
    std::vector<ArchivingProject> projects;
    std::string next;  ///< the page to read: empty for the first; afterwards the next one, empty for none
    CloudOutcome outcome;
};

/// Reads the page that `list.next` names. `filter`: part of the names, in any letter case; empty: all. After
/// a failure `list` has no projects, and `list.next` is unchanged so that the call can be repeated.
ORVEXCLOUDACCOUNT_API void listArchivingProjects(const CloudAccount& account, ArchivingProjectList& list,
                                                 const std::wstring& filter, const CloudCall& call = {});

/// Reads one page of a project's files as JSON text (docs/cloud-account.md): `page` is empty for the first,
/// else the "next" of the page before. URLs in it are absolute. A failure leaves `json` empty.
ORVEXCLOUDACCOUNT_API CloudOutcome getArchivingProjectFiles(const CloudAccount& account,
                                                            const std::string& projectId,
                                                            const std::string& page, std::string& json,
                                                            const CloudCall& call = {});

/// Reads parts of a file that has a URL, without an account: one connection as long as the server keeps it.
/// Belongs to the thread of the first Read, which also destroys it.
class RangeReader {
  public:
    virtual ~RangeReader() = default;
    /// Reads up to `buffer.size()` bytes from an offset; `read` is less at the end of the file, or after a
    /// failure. A server that would send the whole file is not listened to.
    virtual CloudOutcome Read(std::uint64_t offset, std::span<std::byte> buffer, std::size_t& read,
                              const CloudCall& call = {}) = 0;
    /// Bytes of the whole file; nullopt before the first part was read.
    virtual std::optional<std::uint64_t> FileSize() const = 0;
    /// Bytes that were received so far, without headers; also of parts that failed.
    virtual std::uint64_t Transferred() const = 0;
};

/// `url`: https, http, or file (of a regular file of this machine). Never null: a URL that cannot be read at
/// all is the outcome of every Read.
ORVEXCLOUDACCOUNT_API std::unique_ptr<RangeReader> openUrl(const std::wstring& url);

}  // namespace orvex
