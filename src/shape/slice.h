// Rows, or columns, that were picked of a table.
#pragma once

#include <cstdint>
#include <numeric>
#include <span>

#include "frame/errors/exceptions.h"
#include "frame/values/scratch_array.h"
#include "frame/values/scratch_list.h"

namespace quillmere::shape {

/// Places that follow each other, from 0.
struct PlaceRun {
  std::int32_t first;
  std::int32_t count;
};

/// Places of a table's rows, or of its columns, from 0, in the order in which they were picked, some perhaps twice.
/// They are kept as runs: a million neighbouring rows take the room of one.
class Slice {
 public:
  /// A slice of at most so many places.
  explicit Slice(std::int32_t most) noexcept : most_(most) {}

  /// Picks the places of a run, of none perhaps, behind those that it has. CXlArrayTooLargeException for more than it
  /// may have, and then it is as it was.
  void Append(const PlaceRun& run) {
    if (run.count == 0) return;
    if (run.count > most_ - count_) [[unlikely]]
      throw CXlArrayTooLargeException();
    if (run.first == next_)
      runs_[runs_.size() - 1].count += run.count;
    else
      runs_.Append(run);
    count_ += run.count;
    next_ = run.first + run.count;
  }

  std::int32_t Count() const noexcept { return count_; }
  /// In the order of the places; neighbouring ones never go on where the one before ends.
  std::span<const PlaceRun> Runs() const noexcept { return runs_.Values(); }
  /// Whether each place is the one before plus one.
  bool IsContiguous() const noexcept { return runs_.size() <= 1; }
  /// The place that was picked last; there is one at least.
  std::int32_t Last() const noexcept { return next_ - 1; }

  /// Every place.
  ScratchArray<std::int32_t> Places() const {
    ScratchArray<std::int32_t> places(static_cast<std::size_t>(count_));
    std::int32_t* to = places.data();
    for (const PlaceRun& run : runs_) {
      std::iota(to, to + run.count, run.first);
      to += run.count;
    }
    return places;
  }

 private:
  std::int32_t most_;
  std::int32_t count_ = 0;
  std::int32_t next_ = -1;  ///< behind the last
  ScratchList<PlaceRun> runs_;
};

}  // namespace quillmere::shape
