#include "host/values/value.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <stdexcept>
#include <string>
#include <utility>

namespace qcalc {

namespace {

constexpr std::size_t kBlockUnits = std::size_t{1} << 18;

}  // namespace

bool SameContent(const CellView& left, const CellView& right) {
  if (left.Kind() != right.Kind()) return false;
  switch (left.Kind()) {
    case CellKind::kEmpty:
      return true;
    case CellKind::kNumber:
      return left.AsNumber() == right.AsNumber() || (std::isnan(left.AsNumber()) && std::isnan(right.AsNumber()));
    case CellKind::kText:
      return left.AsText() == right.AsText();
    case CellKind::kBoolean:
      return left.AsBoolean() == right.AsBoolean();
    case CellKind::kError:
      return left.AsError() == right.AsError();
  }
  return false;
}

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

ArrayBuilder::ArrayBuilder(std::int32_t rows, std::int32_t columns) : pool_(std::make_shared<TextPool>()) {
  if (rows < 1 || columns < 1 || rows > kXlMaxRows || columns > kXlMaxColumns ||
      std::int64_t{rows} * columns > kMaxArrayCells)
    throw std::length_error("an array of " + std::to_string(rows) + " x " + std::to_string(columns) +
                            " cells is none that can be held");
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

Value Value::OfCell(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kNumber:
      return Number(cell.AsNumber());
    case CellKind::kText:
      return Text(XString(cell.AsText()));
    case CellKind::kBoolean:
      return Boolean(cell.AsBoolean());
    case CellKind::kError:
      return Error(cell.AsError());
    case CellKind::kEmpty:
      break;
  }
  return {};
}

ValueKind Value::Kind() const {
  static constexpr ValueKind kKinds[] = {ValueKind::kEmpty, ValueKind::kMissing,  ValueKind::kNumber,
                                         ValueKind::kText,  ValueKind::kBoolean,  ValueKind::kError,
                                         ValueKind::kArray, ValueKind::kReference};
  return kKinds[content_.index()];
}

CellView Value::AsCell() const {
  switch (Kind()) {
    case ValueKind::kNumber:
      return CellView::Number(AsNumber());
    case ValueKind::kText:
      return CellView::Text(AsText());
    case ValueKind::kBoolean:
      return CellView::Boolean(AsBoolean());
    case ValueKind::kError:
      return CellView::Error(AsError());
    case ValueKind::kEmpty:
    case ValueKind::kMissing:
      return {};
    case ValueKind::kArray:
    case ValueKind::kReference:
      break;
  }
  throw std::bad_variant_access();
}

namespace {

bool SameCell(const CellView& expected, const CellView& actual, const Tolerance& tolerance) {
  if (SameContent(expected, actual)) return true;
  if (!expected.IsNumber() || !actual.IsNumber()) return false;
  const double wanted = expected.AsNumber(), difference = std::fabs(actual.AsNumber() - wanted);
  return wanted == 0 ? difference <= tolerance.absolute : difference <= tolerance.relative * std::fabs(wanted);
}

bool SameArray(const Array& expected, const Array& actual, const Tolerance& tolerance) {
  return expected.Rows() == actual.Rows() && expected.Columns() == actual.Columns() &&
         std::equal(expected.Cells().begin(), expected.Cells().end(), actual.Cells().begin(),
                    [&](const CellView& left, const CellView& right) { return SameCell(left, right, tolerance); });
}

}  // namespace

bool SameValue(const Value& expected, const Value& actual, const Tolerance& tolerance) {
  if (expected.Kind() != actual.Kind()) return false;
  if (expected.IsArray()) return SameArray(*expected.AsArray(), *actual.AsArray(), tolerance);
  if (expected.IsReference()) return expected.AsReference() == actual.AsReference();
  return SameCell(expected.AsCell(), actual.AsCell(), tolerance);
}

}  // namespace qcalc
