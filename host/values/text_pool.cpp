#include "host/values/text_pool.h"

#include <algorithm>

namespace qcalc {

namespace {

constexpr std::size_t kBlockUnits = std::size_t{1} << 18;

}  // namespace

XCHAR* TextPool::Reserve(std::size_t units) {
  if (units > left_ || next_ == nullptr) {
    const std::size_t size = std::max(units, kBlockUnits);
    blocks_.push_back(std::make_unique_for_overwrite<XCHAR[]>(size));
    next_ = blocks_.back().get();
    left_ = size;
  }
  return next_;
}

XStringView TextPool::Keep(XCHAR* start, std::size_t used) {
  next_ = start + used;
  left_ -= used;
  unitsUsed_ += used;
  return {start, used};
}

XStringView TextPool::Add(XStringView text) {
  XCHAR* start = Reserve(text.size());
  std::copy(text.begin(), text.end(), start);
  return Keep(start, text.size());
}

}  // namespace qcalc
