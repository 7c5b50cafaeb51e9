#include "host/values/array.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace qcalc {

ArrayBuilder::ArrayBuilder(std::int32_t rows, std::int32_t columns) : pool_(std::make_shared<TextPool>()) {
  if (rows < 1 || columns < 1 || rows > kXlMaxRows || columns > kXlMaxColumns ||
      std::int64_t{rows} * columns > kMaxArrayCells)
    throw std::length_error("an array of " + std::to_string(rows) + " x " + std::to_string(columns) +
                            " cells is too large: at most " + std::to_string(kMaxArrayCells) + " cells");
  array_.reset(new Array(rows, columns));
}

void ArrayBuilder::Share(std::shared_ptr<const TextPool> pool) {
  auto& pools = array_->pools_;
  if (std::find(pools.begin(), pools.end(), pool) == pools.end()) pools.push_back(std::move(pool));
}

void ArrayBuilder::ShareTextsOf(const Array& array) {
  for (const auto& pool : array.pools_) Share(pool);
}

ArrayPtr ArrayBuilder::Finish() {
  if (pool_->UnitsUsed() > 0) Share(std::move(pool_));
  return std::move(array_);
}

}  // namespace qcalc
