// A call of a sort, a distinct list, a join or a comparison, and the plain rows that models work on.
#pragma once

#include <vector>

#include "host/values/value.h"
#include "tests/models/calling_place.h"

namespace qcalc::sort {

struct Call {
  XStringView function;
  std::vector<ArrayPtr> tables;  ///< the first arguments
  std::vector<Value> settings;   ///< all others; those that are left out are missing values
  models::CallingPlace place;
  bool isReference = false;  ///< the tables stand in a sheet
  bool isTall = false;       ///< and the references go down to the sheet's end
};

using Row = std::vector<CellView>;
using Rows = std::vector<Row>;

/// The array's rows, which view its texts.
Rows RowsOf(const Array& array);

/// An array as wide as the first row.
ArrayPtr ArrayOf(const Rows& rows);

/// The same as a result: a single cell is a plain value.
Value ResultOf(const Rows& rows);

/// What a setting says, TRUE being 1, or what it stands for when it is left out.
double SettingOr(double leftOut, const Value& setting);

}  // namespace qcalc::sort
