#pragma once
#include <cstddef>
#include <string>
#include <unordered_set>
#include <vector>

#include "dialog/grid/GridModel.h"

namespace orvex {

/// The rows of a file page, whatever their type.
class FileRows : public GridModel {
  public:
    using GridModel::GridModel;

    virtual std::size_t Count() const = 0;
    /// The paths of all files, in the order of adding.
    virtual std::vector<std::wstring> Paths() const = 0;
    /// PathKey of every listed file.
    virtual std::unordered_set<std::wstring> PathKeys() const = 0;
    /// Removes records by index, in any order, and frees what they hold.
    virtual void Remove(std::vector<std::size_t> records) = 0;
    virtual void Clear() = 0;
};

}  // namespace orvex
