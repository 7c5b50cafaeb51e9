// How much memory a book may take.
#pragma once

#include <cstddef>
#include <string>

#include "host/xlsx/stored_book.h"

namespace qcalc {

/// Counts what grows with a book. Ten million cells, or four million formulas, or as many texts of some length, stay
/// far within; cells strewn over all columns and rows, each of which takes the room of 1,024, do not.
class MemoryLimit {
 public:
  /// Throws BookRefused beyond the limit.
  void Take(std::size_t bytes) {
    if ((taken_ += bytes) > kMostBytes)
      throw BookRefused("it holds more than fits into " + std::to_string(kMostBytes >> 20) + " MiB of memory");
  }

 private:
  static constexpr std::size_t kMostBytes = std::size_t{720} << 20;
  std::size_t taken_ = 0;
};

}  // namespace qcalc
