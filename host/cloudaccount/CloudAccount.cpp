#include "orvexcommon/CloudAccount.h"

namespace orvex {
namespace {

CloudOutcome NotYet() {
    return {CloudStatus::Unreachable, L"The cloud account cannot be read yet."};
}

class NoReader final : public RangeReader {
  public:
    CloudOutcome Read(std::uint64_t, std::span<std::byte>, std::size_t& read, const CloudCall&) override {
        read = 0;
        return NotYet();
    }
    std::optional<std::uint64_t> FileSize() const override { return std::nullopt; }
    std::uint64_t Transferred() const override { return 0; }
};

}  // namespace

void listArchivingProjects(const CloudAccount&, ArchivingProjectList& list, const std::wstring&,
                           const CloudCall&) {
    list.projects.clear();
    list.outcome = NotYet();
}

CloudOutcome getArchivingProjectFiles(const CloudAccount&, const std::string&, const std::string&,
                                      std::string& json, const CloudCall&) {
    json.clear();
    return NotYet();
}

std::unique_ptr<RangeReader> openUrl(const std::wstring&) {
    return std::make_unique<NoReader>();
}

}  // namespace orvex
