#include "host/strings/EmbeddedTables.h"

// Made from strings.en.tsv and strings.de.tsv by the build.
extern const unsigned char kStringsEn[];
extern const unsigned long long kStringsEnSize;
extern const unsigned char kStringsDe[];
extern const unsigned long long kStringsDeSize;

namespace orvex {
namespace {

std::string_view AsText(const unsigned char* bytes, unsigned long long size) {
    return {reinterpret_cast<const char*>(bytes), static_cast<std::size_t>(size)};
}

}  // namespace

std::string_view EmbeddedTable(Language language) {
    return language == Language::kGerman ? AsText(kStringsDe, kStringsDeSize)
                                         : AsText(kStringsEn, kStringsEnSize);
}

}  // namespace orvex
