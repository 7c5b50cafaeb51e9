// Which formulas read cells of an area.
#pragma once

#include <cstddef>
#include <memory>
#include <utility>
#include <vector>

#include "host/calculation/formula_places.h"

namespace qcalc {

/// What formulas read, to be asked for areas; never changed once built.
class AreaReaders {
 public:
  /// An area that is read, and the number of the formula that reads it.
  using Reading = std::pair<SheetArea, std::size_t>;

  explicit AreaReaders(const std::vector<Reading>& readings);
  ~AreaReaders();
  AreaReaders(const AreaReaders&) = delete;
  AreaReaders& operator=(const AreaReaders&) = delete;

  /// Adds the numbers of those that read a cell of the area, some perhaps several times.
  void Find(const SheetArea& where, std::vector<std::size_t>& readers) const;

 private:
  struct Trees;
  std::unique_ptr<Trees> trees_;
};

}  // namespace qcalc
