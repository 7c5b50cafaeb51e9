// The value of a formula into the cells that it fills.
#pragma once

#include <cstddef>
#include <vector>

#include "host/calculation/dependencies.h"

namespace qcalc {

/// Writes while nobody reads.
class ResultWriter {
 public:
  /// `dependencies` outlives this.
  explicit ResultWriter(Dependencies& dependencies) : dependencies_(dependencies) {}

  /// The formula's value, no reference, into its cells, which count from now on. Empty is 0. Where other cells are
  /// filled than before: the formulas that read those, and all that depends on them; the clean ones are dirty now.
  std::vector<std::size_t> Write(std::size_t number, const Value& value);

 private:
  void Spill(std::size_t number, const Array& array, std::vector<std::size_t>& readers);
  void TakeBack(std::size_t number, std::vector<std::size_t>& readers);
  void SoilReaders(const SheetArea& where, std::vector<std::size_t>& readers);

  Dependencies& dependencies_;
};

}  // namespace qcalc
