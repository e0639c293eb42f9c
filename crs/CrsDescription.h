#pragma once
#include <atomic>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "crs/AreaOfUse.h"

namespace orvex {

/// What a CRS is, whatever the text that describes it.
struct CrsIdentity {
    std::string group;  ///< OrvexUtilities::GetCompatibilityGroup of the WKT
    long epsg = 0;      ///< EPSG code of the horizontal CRS, also where the text gives none; 0 for none
};

/// The identity of one CRS, found when it is first asked for: the search takes up to a tenth of a second for
/// a CRS without a code. Safe from any thread.
class LazyCrsIdentity {
  public:
    /// Finds the identity of a WKT, which must be the same at each call. Throws std::bad_alloc only.
    const CrsIdentity& Get(const std::string& wkt) const;
    /// Null until the identity has been found.
    const CrsIdentity* Known() const { return isKnown_ ? &identity_ : nullptr; }

  private:
    mutable std::once_flag once_;
    mutable CrsIdentity identity_;
    mutable std::atomic<bool> isKnown_ = false;
};

/// A coordinate reference system as files, rows and panes show it.
struct CrsDescription {
    std::string sourceWkt;  ///< as read from the file, UTF-8; empty when the file has none
    std::wstring problem;   ///< why the WKT cannot be read, in a few words; empty when it can
    std::wstring name;      ///< empty when there is no CRS or it cannot be read
    bool isGeographic = false;
    std::wstring linearUnits;   ///< name of the linear unit; "Unknown" when not stated, empty without a CRS
    std::wstring angularUnits;  ///< the same for the angular unit
    std::wstring prettyWkt;     ///< multi-line, lines end in "\r\n"
    long epsg = 0;  ///< EPSG code of the CRS or of its horizontal part as the WKT gives it; 0 for none
    std::wstring verticalName;      ///< name of the vertical part; empty for none
    std::wstring verticalUnits;     ///< name of its unit; "Unknown" when not stated, empty without that part
    long verticalEpsg = 0;          ///< EPSG code of the vertical part; 0 for none
    std::optional<AreaOfUse> area;  ///< nullopt if unknown
    LazyCrsIdentity identity;       ///< known at once when there is no WKT or it gives a code

    const CrsIdentity& Identify() const { return identity.Get(sourceWkt); }
    /// The stated code, else the one found; 0 for none or while the identity is not known.
    long Epsg() const;
};

using CrsPtr = std::shared_ptr<const CrsDescription>;

/// Describes a WKT; the few hundred used last are cached. Never null, never throws. GDAL's errors do not
/// reach the console. Safe from any thread.
CrsPtr DescribeCrs(std::string_view wkt);

/// The CRSs of rows (with a CrsPtr `crs`) whose identity is not known yet, each once.
template <typename Rows>
std::vector<CrsPtr> UnidentifiedCrss(const Rows& rows) {
    std::vector<CrsPtr> found;
    std::unordered_set<CrsPtr> seen;
    for (const auto& row : rows) {
        if (row.crs->identity.Known() == nullptr && seen.insert(row.crs).second) {
            found.push_back(row.crs);
        }
    }
    return found;
}

/// Returns the CRS of KML and KMZ files: WGS 84 with EGM96 heights.
CrsPtr DescribeDefaultCrs();

}  // namespace orvex
