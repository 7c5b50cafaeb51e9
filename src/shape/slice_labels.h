// Where labels stand among those of a table's rows or columns.
#pragma once

#include <cstdint>
#include <span>
#include <unordered_map>

#include "shape/slice.h"
#include "table/cell_hash.h"
#include "table/cell_line.h"
#include "table/labels.h"

namespace quillmere::shape {

/// All places of some labels, which are told of first and then looked for in one pass: cost grows with the labels plus
/// the cells, not with their product. Labels are equal as UpperLabel has it.
class SliceLabels {
 public:
  /// A label to be looked for, perhaps again.
  void Want(const XLOPER12& label);

  /// Looks at cells, the first of which is at place `first`; a line may come in several stretches, in order.
  void LookAt(const CellLine& cells, std::int32_t first);

  /// Where a label that was wanted stands, in ascending order.
  std::span<const PlaceRun> PlacesOf(const XLOPER12& label);

 private:
  bool MayBeWanted(const XLOPER12& cell) const;

  UpperLabel upper_;
  std::unordered_map<XString, Slice, TextHash<TextCase::kCounts>> places_;
  std::uint64_t lengths_ = 0;     ///< of those wanted: a bit each, long ones the last
  std::uint64_t endings_ = 0;     ///< their last units: a bit each, which some share
  bool someLookNumeric_ = false;  ///< some begin as the text form of a number does
};

}  // namespace quillmere::shape
