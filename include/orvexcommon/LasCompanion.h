#pragma once
// The point-order companions (".qvr" beside the file) of LAS and LAZ files: their state, building them, and
// reading points from them for display. Nothing here throws or shows a window; everything may be called from
// any thread, several at once.
//
// As with AddFilesParams, the classes and structures have the layout of this library's compiler.
#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "orvexcommon/Exports.h"

namespace Kst {
class ProgressIf;
}

namespace orvex {

enum class LasCompanionState {
    None,        ///< there is no companion file
    Fresh,       ///< the companion was built from the file as it is
    Stale,       ///< the file has been changed or replaced since
    Unreadable,  ///< the companion, or the file itself, cannot be read, or is damaged
    OfOther,     ///< it fits the file of the same name in the other format: tile.las beside tile.laz
};

struct LasCompanionStatus {
    LasCompanionState state = LasCompanionState::None;
    std::wstring path;    ///< of the companion, also where there is none yet
    std::wstring reason;  ///< for the user: what differs or cannot be read; empty if fresh or none
};

struct LasCompanionOptions {
    /// Thinning factor: a greater one makes the index smaller and coarser. The dialog gives 2 to 256; any
    /// number is taken, 0 as 1.
    std::uint16_t factor = 10;
    std::uint64_t memory = 512ULL << 20U;  ///< bytes that building may use; a plan tells what it needs
    unsigned threads = 0;                  ///< 0: one for each processor
    /// A file at the companion's path, whatever it is, is replaced. Otherwise it makes planning fail, and
    /// building as well if it appears while that goes on.
    bool replaceExisting = false;
};

/// Space that building a companion takes.
struct LasCompanionPlan {
    std::wstring source;               ///< path of the LAS or LAZ file as it was given
    std::wstring target;               ///< path of its companion, in the same folder
    std::uint64_t points = 0;          ///< of the source
    std::uint64_t targetBytes = 0;     ///< size of the companion, at most
    std::uint64_t temporaryBytes = 0;  ///< beside the companion, until it is complete
    std::uint64_t memoryBytes = 0;
    std::wstring problem;  ///< why it cannot be built, in plain words; empty if it can
};

enum class LasCompanionEnd { Built, Cancelled, Failed };

struct LasCompanionResult {
    LasCompanionEnd end = LasCompanionEnd::Failed;
    std::wstring reason;  ///< of a failure, for the user; else empty
};

/// Points that follow each other in a companion.
struct LasPointRange {
    std::uint64_t first = 0;
    std::uint64_t count = 0;

    friend bool operator==(const LasPointRange&, const LasPointRange&) = default;
};

/// A point as a map draws it.
struct LasPoint {
    double x = 0;  ///< in the units of the file's CRS, as are y and z
    double y = 0;
    double z = 0;
    std::uint8_t classification = 0;
};

/// An open companion. Reads from its file when asked; the owner deletes it.
class LasCompanion {
  public:
    virtual ~LasCompanion() = default;

    virtual std::uint64_t PointCount() const = 0;
    /// Minimum and maximum of X, Y, Z in the units of the CRS, from the header.
    virtual std::array<double, 3> Minimum() const = 0;
    virtual std::array<double, 3> Maximum() const = 0;
    /// Ranges that show an extent (minX, minY, maxX, maxY in the units of the CRS) evenly with up to about
    /// `mostPoints` points in it, in ascending order. They hold points beside the extent as well, in all up
    /// to eight times as many. Empty if no point can lie in it.
    virtual std::vector<LasPointRange> Select(const std::array<double, 4>& extent,
                                              std::uint64_t mostPoints) const = 0;
    /// Appends the points of a range, whose part beyond the last point is left out. False if the file can no
    /// longer be read; points read before the failure stay.
    virtual bool Read(const LasPointRange& range, std::vector<LasPoint>& points) const = 0;
};

/// The component's work on companions. Owned by the component, valid as long as it is loaded.
class LasCompanions {
  public:
    virtual LasCompanionStatus Status(const std::wstring& lasPath) const = 0;
    /// Reads the header of the file and looks at the space on the disk; writes nothing.
    virtual LasCompanionPlan Plan(const std::wstring& lasPath, const LasCompanionOptions& options) const = 0;
    /// Builds a companion under a temporary name, renamed when complete. Cancelled or failed, it leaves what
    /// was there. `progress` is called on the thread of the call; it gets one range, in which the position
    /// only grows, and a text for each phase.
    virtual LasCompanionResult Build(const LasCompanionPlan& plan, const LasCompanionOptions& options,
                                     Kst::ProgressIf& progress) const = 0;
    /// Opens the companion of a file. Null with a reason for the user unless it is fresh.
    virtual std::unique_ptr<LasCompanion> Open(const std::wstring& lasPath, std::wstring& reason) const = 0;

  protected:
    ~LasCompanions() = default;
};

}  // namespace orvex

/// Never null.
ORVEXCOMMON_API const orvex::LasCompanions* GetLasCompanions();
