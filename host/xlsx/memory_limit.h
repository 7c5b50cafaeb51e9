// How much memory a book may take.
#pragma once

#include <cstddef>
#include <string>

#include "host/xlsx/stored_book.h"

namespace qcalc {

/// Counts what grows with a book. Ten million texts of twenty characters, each another, are just within, and so are two
/// million formulas with what calculating them takes; cells strewn over all columns and rows, each of which takes the
/// room of 1,024, are not.
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
