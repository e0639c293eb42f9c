#pragma once
// Calls of the library as tests make them.
#include <span>
#include <string>

#include "orvexcommon/CloudAccount.h"
#include "support/Text.h"

namespace orvex::testing {

inline constexpr const char* kToken = "secret-token.1234567890";

inline CloudAccount AccountAt(const std::string& service) {
    return {L"Someone", FromUtf8(service), FromUtf8(kToken)};
}

/// "127.0.0.1:8080" of "http://127.0.0.1:8080".
inline std::wstring HostOf(const std::string& address) {
    return FromUtf8(address.substr(address.find("//") + 2));
}

/// The list that a server gives.
inline ArchivingProjectList Projects(const std::string& service, const CloudCall& call = {}) {
    ArchivingProjectList list;
    listArchivingProjects(AccountAt(service), list, {}, call);
    return list;
}

struct Part {
    CloudOutcome outcome;
    std::string bytes;
};

/// Reads up to `length` bytes.
inline Part Read(RangeReader& reader, std::uint64_t offset, std::size_t length, const CloudCall& call = {}) {
    Part part;
    std::string buffer(length, '?');
    std::size_t read = 0;
    part.outcome = reader.Read(offset, std::as_writable_bytes(std::span(buffer)), read, call);
    part.bytes = buffer.substr(0, read);
    return part;
}

inline std::string FileUrl(const std::wstring& path) {
    return (path.starts_with(L"/") ? "file://" : "file:///") + ToUtf8(path);
}

}  // namespace orvex::testing
