// Where random calls are made from.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "xlcall/xlcall.h"

namespace qcalc::models {

/// The cells that a formula stands in: one, or a rectangle. Zero-based.
struct CallingPlace {
  std::string book;
  IDSHEET sheet = 0;
  std::int32_t row = 0;
  std::int32_t column = 0;
  std::int32_t rows = 1;
  std::int32_t columns = 1;
};

/// What calls come from: single cells and columns of cells, on several sheets, some in the same row. A call may make
/// one of several columns of them.
using CallingPlaces = std::vector<CallingPlace>;

}  // namespace qcalc::models
