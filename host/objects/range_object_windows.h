// One rectangle of a sheet.
#pragma once

#include "host/objects/dispatch_object_windows.h"

namespace qcalc {

class RangeObject final : public DispatchObject {
 public:
  RangeObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet, const Area& area);

  Variant Row(const ObjectCall& call);
  Variant Column(const ObjectCall& call);
  /// The same cells, counted as rows or columns.
  Variant Rows(const ObjectCall& call);
  Variant Columns(const ObjectCall& call);
  Variant Count(const ObjectCall& call);
  /// In the optional order of Excel's arguments: whether rows and columns are absolute, the style, whether book and
  /// sheet stand before it.
  Variant Address(const ObjectCall& call);
  Variant Worksheet(const ObjectCall& call);

 private:
  enum class Unit { kCells, kRows, kColumns };
  friend class DispatchObject;
  RangeObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet, const Area& area, Unit unit);

  const IDSHEET sheet_;
  const Area area_;
  const Unit unit_;
};

}  // namespace qcalc
