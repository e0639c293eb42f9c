#pragma once
#include <map>
#include <string>

namespace orvex {

/// The compatibility groups of WKTs; each text is looked at once.
class CrsGroups {
  public:
    /// The text that WKTs share whose files can be shown and kept together; see OrvexUtilities.
    const std::string& Of(const std::string& wkt);

  private:
    std::map<std::string, std::string> groupOfWkt_;
};

}  // namespace orvex
