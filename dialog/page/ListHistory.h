#pragma once
#include <cstddef>
#include <deque>
#include <string>
#include <vector>

namespace orvex {

/// One change of a list of files, with what is needed to reverse it: paths, since removal frees what a row
/// holds.
struct ListChange {
    enum class Kind { Added, Removed };
    struct Entry {
        std::size_t place;  ///< in the order of adding, while the file is listed
        std::wstring path;
    };

    Kind kind;
    std::vector<Entry> entries;  ///< by place, ascending
};

/// "12 files removed".
std::wstring ListChangeText(const ListChange& change);

/// The changes of a list that can be undone and redone. A new one ends what could be redone. The oldest are
/// forgotten: beyond 100 changes, or 300,000 paths in all of them.
class ListHistory {
  public:
    /// A change without entries is none.
    void Record(ListChange change);
    void Clear();

    bool CanUndo() const { return done_ > 0; }
    bool CanRedo() const { return done_ < changes_.size(); }
    /// The change to reverse now. Only if CanUndo(); valid until the next Record() or Clear().
    const ListChange& Undo() { return changes_[--done_]; }
    /// The change to make again now. Only if CanRedo().
    const ListChange& Redo() { return changes_[done_++]; }

  private:
    std::deque<ListChange> changes_;
    std::size_t done_ = 0;   ///< changes that are not undone
    std::size_t paths_ = 0;  ///< in all changes
};

/// Where each record goes so that those appended last stand at their places (ascending) among the others,
/// which keep their order. `before`: records that were listed already.
std::vector<std::size_t> NewIndices(std::size_t before, const std::vector<std::size_t>& places);

}  // namespace orvex
