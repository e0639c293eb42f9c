#pragma once
// Sample cloud account over HTTP: serves the listings and files of a folder, for trying the cloud pages and
// for tests over real sockets. See docs/cloud-account.md for the interface.
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace orvex {

/// Departure from the usual answer to requests below a path. Members combine: a delayed answer can be cut
/// off.
struct CloudFault {
    int delayMs = 0;              ///< before the answer; ends early with ClearFaults and with the server
    int status = 0;               ///< answered instead of the usual, with an error body; 0: as usual
    std::string retryAfter = {};  ///< header "Retry-After"; empty: none
    std::int64_t cutAfter = -1;   ///< bytes of the body, then the connection is closed; -1: complete
    std::string redirect = {};    ///< header "Location" of an answer 302 (or `status`); empty: none
    std::optional<std::string> body = std::nullopt;  ///< instead of the usual, with 200 (or `status`)
    bool ignoresRanges = false;                      ///< files are sent whole with 200
    int times = -1;                                  ///< number of requests, then as usual; -1: all
};

struct CloudServerSettings {
    std::filesystem::path folder;  ///< holds projects.json, projects/<id>.json and files/
    std::string address = "127.0.0.1";
    int port = 0;            ///< 0: a free one
    std::string token = {};  ///< bearer token of the listings; empty: none is asked for
    std::filesystem::path certificate = {},
                          key = {};  ///< PEM; both or neither, with them the server speaks HTTPS only
    std::string signingSecret = {};  ///< of file URLs; empty: a random one for this server
};

/// Server on threads of its own, from construction to destruction; all calls may be made on any thread.
/// Leaves the process's signal handling as it is.
class CloudServer {
  public:
    /// Throws LDataError with a text for the user: no such folder, address not available, certificate
    /// unusable.
    explicit CloudServer(CloudServerSettings settings);
    /// Ends open connections and delays.
    ~CloudServer();
    CloudServer(const CloudServer&) = delete;
    CloudServer& operator=(const CloudServer&) = delete;

    /// "http://127.0.0.1:PORT", without a trailing slash.
    std::string Address() const;

    /// Sets the fault of requests whose path (without query, as in the request line) begins with this; the
    /// longest prefix counts. Replaces an earlier one of the same prefix.
    void SetFault(const std::string& pathPrefix, CloudFault fault);
    void ClearFaults();

    /// Signed URL of a file: "files/a.las", or "a.las" for short. One that has expired for 0 or fewer
    /// seconds.
    std::string SignedUrl(const std::string& file, int seconds) const;

    /// Bytes of bodies handed to the system.
    std::uint64_t BytesSent() const;
    /// The last 10,000 requests, oldest first, without their queries: "GET /v1/projects".
    std::vector<std::string> Requests() const;

  private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

/// True for an address or name that means this computer everywhere.
bool IsLoopback(std::string_view address);

/// Address of a server with these settings at a port: "https://[::1]:8080".
std::string ServerAddress(const CloudServerSettings& settings, int port);

/// Signed URL of a file for the server at `address` ("http://host:port") with this secret; see SignedUrl.
/// `file` is its path below the folder, "files/a.las", percent-encoded or not.
std::string SignFileUrl(const std::string& address, const std::string& signingSecret, const std::string& file,
                        int seconds);

}  // namespace orvex
