// How an argument becomes a scalar, a vector or a matrix: its name in messages, whether it may be left out, and which
// counts and values are allowed. Each failure is a CXlConversionException that names the argument.
#pragma once

#include <cstdint>
#include <span>

#include "frame/convert/element_kind.h"
#include "frame/errors/exceptions.h"

namespace quillmere {

/// What all argument conversions share. `name` is the registered name of the argument and must outlive this object.
class CConvertParamsBase {
 public:
  explicit CConvertParamsBase(XStringView name) noexcept : name_(name) {}
  XStringView Name() const noexcept { return name_; }

  /// "{0} is not initialized": a required argument of no single kind was left out.
  [[noreturn]] void ThrowNotInitialized() const;
  /// "Label {1} not found in {0}".
  [[noreturn]] void ThrowLabelNotFound(XStringView label) const;
  /// "Failed to convert {0} to any of the permitted types".
  [[noreturn]] void ThrowNoPermittedType() const;
  /// "Failed to convert {0} from {1} to {2}", {1} the kind of `value`.
  [[noreturn]] void ThrowFailedToConvert(const XLOPER12& value, XStringView target) const;
  /// "Expected {1} for {0}".
  [[noreturn]] void ThrowExpected(XStringView typeName) const;

 private:
  XStringView name_;
};

/// A scalar argument of any kind.
class CScalarConvertParamsBase : public CConvertParamsBase {
 public:
  using CConvertParamsBase::CConvertParamsBase;

  /// "{0} is not initialized. Expected {1}."
  [[noreturn]] void ThrowScalarNotInitialized(ElementKind kind) const;
  /// "Expected one of {1} for {0}", {1} the allowed values as "1, 2, 3".
  [[noreturn]] void ThrowNotOneOf(std::span<const std::int32_t> allowed) const;
  [[noreturn]] void ThrowNotOneOf(std::span<const XStringView> allowed) const;
};

/// A scalar argument of one kind. A default is the argument's own: see CXlArgument.
template <ElementKind kind>
class CScalarConvertParams : public CScalarConvertParamsBase {
 public:
  using Value = ElementOf<kind>;
  /// Allowed values are given as integers, or as words compared without regard to the case of A to Z.
  using Allowed = std::conditional_t<kind == ElementKind::kString, XStringView, std::int32_t>;

  using CScalarConvertParamsBase::CScalarConvertParamsBase;

  /// The values allowed; the list must outlive this object. For integers and texts.
  CScalarConvertParams& OneOf(std::span<const Allowed> allowed) requires(std::is_integral_v<Value> ||
                                                                         kind == ElementKind::kString) {
    allowed_ = allowed;
    return *this;
  }

  std::span<const Allowed> AllowedValues() const noexcept { return allowed_; }

 private:
  std::span<const Allowed> allowed_;
};

/// A vector or matrix argument of any kind: the counts it must have. A count of 0 asks for nothing.
class CVectorConvertParamsBase : public CConvertParamsBase {
 public:
  enum class Shape {
    kVector,  ///< one row or one column
    kMatrix,  ///< any rectangle
    kList,    ///< any rectangle, read row by row, its empty cells passed over
  };

  CVectorConvertParamsBase(XStringView name, Shape shape) noexcept : CConvertParamsBase(name), shape_(shape) {}

  Shape GetShape() const noexcept { return shape_; }

  /// Raises message 46 or 47, by shape, for an argument left out that may not be.
  void CheckPresent(ElementKind kind) const;
  /// Raises the message for an argument of that size whose shape or counts are not as asked.
  void CheckSize(std::int64_t rows, std::int64_t columns) const;
  /// Raises the message for a list of that many values.
  void CheckListCount(std::int64_t count) const;
  /// Raises the message for a row (1-based) that has not `expected` values.
  void CheckRowLength(std::int64_t row, std::int64_t count, std::int64_t expected) const;
  /// The same for a column.
  void CheckColumnLength(std::int64_t column, std::int64_t count, std::int64_t expected) const;
  /// Whether rows (columns) that end in empty cells are refused as too short.
  bool RefusesShortRows() const noexcept { return fullRows_; }
  bool RefusesShortColumns() const noexcept { return fullColumns_; }

 protected:
  struct Count {
    std::int64_t exact = 0;
    std::int64_t least = 0;
  };

  Shape shape_;
  bool required_ = true;
  bool fullRows_ = false;
  bool fullColumns_ = false;
  Count rows_;
  Count columns_;
  Count values_;

 private:
  void CheckValueCount(std::int64_t count) const;
};

/// A vector, matrix or list of one kind: required, and of any size, unless told otherwise.
template <ElementKind kind>
class CVectorConvertParams : public CVectorConvertParamsBase {
 public:
  using CVectorConvertParamsBase::CVectorConvertParamsBase;

  /// An argument left out gives no values.
  CVectorConvertParams& Optional() { return Set(required_, false); }
  CVectorConvertParams& Rows(std::int64_t exact) { return Set(rows_.exact, exact); }
  CVectorConvertParams& LeastRows(std::int64_t least) { return Set(rows_.least, least); }
  CVectorConvertParams& Columns(std::int64_t exact) { return Set(columns_.exact, exact); }
  CVectorConvertParams& LeastColumns(std::int64_t least) { return Set(columns_.least, least); }
  CVectorConvertParams& Values(std::int64_t exact) { return Set(values_.exact, exact); }
  CVectorConvertParams& LeastValues(std::int64_t least) { return Set(values_.least, least); }
  CVectorConvertParams& FullRows() { return Set(fullRows_, true); }
  CVectorConvertParams& FullColumns() { return Set(fullColumns_, true); }

 private:
  template <class Field, class Value>
  CVectorConvertParams& Set(Field& field, Value value) {
    field = value;
    return *this;
  }
};

}  // namespace quillmere
