// Where the texts of cells lie.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "xlcall/xchar.h"

namespace qcalc {

/// Texts of many cells in few blocks. Units never move, so views stay good as long as the pool lives; one writer may
/// add while others read what they were given before.
class TextPool {
 public:
  /// Copies the text in and returns the copy.
  XStringView Add(XStringView text);
  /// Room for `units` units whose content the caller writes at once; only the first `used` of them, named to Keep, stay
  /// taken.
  XCHAR* Reserve(std::size_t units);
  XStringView Keep(XCHAR* start, std::size_t used);
  /// Units taken so far.
  std::size_t UnitsUsed() const { return unitsUsed_; }

 private:
  std::vector<std::unique_ptr<XCHAR[]>> blocks_;
  XCHAR* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t unitsUsed_ = 0;
};

}  // namespace qcalc
