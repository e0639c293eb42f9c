#pragma once
#include <string>
#include <utility>
#include <vector>

#include "support/TemporaryFile.h"

namespace orvex {

/// A shapefile that is written under a temporary name beside its target. Its files get their names when all
/// are complete; what is not committed is removed.
class NewShapefile {
  public:
    /// `target`: full path of the .shp.
    explicit NewShapefile(std::wstring target);
    ~NewShapefile();
    NewShapefile(const NewShapefile&) = delete;
    NewShapefile& operator=(const NewShapefile&) = delete;

    const std::wstring& Target() const { return target_; }
    /// The .shp to be written; to be closed before the rest is called.
    std::wstring Path() const { return temporary_.Path() + L".shp"; }
    /// Gives the files their names. `replaced`: full paths of the files of a shapefile whose place they take,
    /// which are removed at the end. Throws LDataError and leaves everything as it was if the system refuses
    /// a name or a file that is not to be replaced has it.
    void Commit(const std::vector<std::wstring>& replaced = {});

    /// The path itself, or with the first number from 2 behind its name for which no file of a shapefile
    /// exists.
    static std::wstring FreeTarget(const std::wstring& target);

  private:
    using Renamed = std::vector<std::pair<std::wstring, std::wstring>>;  ///< old and new name

    void Rename(const std::wstring& from, const std::wstring& to, Renamed& done) const;
    void NameParts(Renamed& done) const;

    std::wstring target_;
    TemporaryFile temporary_;  ///< keeps the name, and others from removing what is written under it
};

}  // namespace orvex
