// The values of the host: what a formula yields, what an argument carries.
#pragma once

#include <cstdint>
#include <memory>
#include <utility>
#include <variant>

#include "host/values/area.h"
#include "host/values/array.h"
#include "host/values/cell_view.h"

namespace qcalc {

enum class ValueKind : std::uint8_t { kEmpty, kMissing, kNumber, kText, kBoolean, kError, kArray, kReference };

/// Any value: a scalar, an empty cell, a missing argument, an array or a reference. Copying is cheap but for long
/// texts.
class Value {
 public:
  Value() = default;  ///< an empty cell
  static Value Empty() { return {}; }
  static Value Missing() { return Value(Content(MissingTag{})); }
  static Value Number(double number) { return Value(Content(WithoutSubnormal(number))); }
  static Value Text(XString text) { return Value(Content(std::move(text))); }
  static Value Boolean(bool truth) { return Value(Content(truth)); }
  static Value Error(std::int32_t code) { return Value(Content(ErrorTag{code})); }
  static Value OfArray(ArrayPtr array) { return Value(Content(std::move(array))); }
  static Value OfReference(Reference reference) {
    return Value(Content(std::make_shared<const Reference>(std::move(reference))));
  }
  /// The scalar value of a cell; a text is copied.
  static Value OfCell(const CellView& cell);

  ValueKind Kind() const;
  bool IsEmpty() const { return Kind() == ValueKind::kEmpty; }
  bool IsMissing() const { return Kind() == ValueKind::kMissing; }
  bool IsNumber() const { return Kind() == ValueKind::kNumber; }
  bool IsText() const { return Kind() == ValueKind::kText; }
  bool IsBoolean() const { return Kind() == ValueKind::kBoolean; }
  bool IsError() const { return Kind() == ValueKind::kError; }
  bool IsArray() const { return Kind() == ValueKind::kArray; }
  bool IsReference() const { return Kind() == ValueKind::kReference; }

  /// Each is valid for its kind alone (std::bad_variant_access otherwise).
  double AsNumber() const { return std::get<double>(content_); }
  const XString& AsText() const { return std::get<XString>(content_); }
  bool AsBoolean() const { return std::get<bool>(content_); }
  std::int32_t AsError() const { return std::get<ErrorTag>(content_).code; }
  const ArrayPtr& AsArray() const { return std::get<ArrayPtr>(content_); }
  const Reference& AsReference() const { return *std::get<std::shared_ptr<const Reference>>(content_); }

  /// A scalar as a cell; a missing argument as an empty one. Views this value's text. Not for arrays and references.
  CellView AsCell() const;

 private:
  struct MissingTag {};
  struct ErrorTag {
    std::int32_t code;
  };
  using Content = std::variant<std::monostate, MissingTag, double, XString, bool, ErrorTag, ArrayPtr,
                               std::shared_ptr<const Reference>>;
  explicit Value(Content content) : content_(std::move(content)) {}

  Content content_;
};

}  // namespace qcalc
