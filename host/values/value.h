// The values of the host: what a cell holds, what a formula yields, what an argument carries.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <variant>
#include <vector>

#include "xlcall/xlcall.h"

namespace qcalc {

/// #SPILL! and #CALC!: Excel numbers them behind the published error codes.
constexpr std::int32_t kErrorSpill = 45;
constexpr std::int32_t kErrorCalc = 50;

enum class CellKind : std::uint8_t { kEmpty, kNumber, kText, kBoolean, kError };

/// The most cells of one array: a gigabyte. Excel, too, ends somewhere below what its sheet could hold.
constexpr std::int64_t kMaxArrayCells = std::int64_t{1} << 26;

/// The content of one cell or one array element: 16 bytes, copied freely. A text is viewed, not owned: its units belong
/// to the sheet, array or value that the view was taken from.
class CellView {
 public:
  constexpr CellView() : number_(0), length_(0), kind_(CellKind::kEmpty) {}
  static constexpr CellView Number(double number) {
    CellView cell;
    cell.number_ = number;
    cell.kind_ = CellKind::kNumber;
    return cell;
  }
  /// `text` has at most 2^32 - 1 units and outlives the view.
  static constexpr CellView Text(XStringView text) {
    CellView cell;
    cell.text_ = text.data();
    cell.length_ = static_cast<std::uint32_t>(text.size());
    cell.kind_ = CellKind::kText;
    return cell;
  }
  static constexpr CellView Boolean(bool truth) {
    CellView cell;
    cell.code_ = truth ? 1 : 0;
    cell.kind_ = CellKind::kBoolean;
    return cell;
  }
  /// `code` is one of the xlerr numbers, or a newer one.
  static constexpr CellView Error(std::int32_t code) {
    CellView cell;
    cell.code_ = code;
    cell.kind_ = CellKind::kError;
    return cell;
  }

  constexpr CellKind Kind() const { return kind_; }
  constexpr bool IsEmpty() const { return kind_ == CellKind::kEmpty; }
  constexpr bool IsNumber() const { return kind_ == CellKind::kNumber; }
  constexpr bool IsText() const { return kind_ == CellKind::kText; }
  constexpr bool IsBoolean() const { return kind_ == CellKind::kBoolean; }
  constexpr bool IsError() const { return kind_ == CellKind::kError; }

  /// Each is valid for its kind alone.
  constexpr double AsNumber() const { return number_; }
  constexpr XStringView AsText() const { return {text_, length_}; }
  constexpr bool AsBoolean() const { return code_ != 0; }
  constexpr std::int32_t AsError() const { return code_; }

 private:
  union {
    double number_;
    const XCHAR* text_;
    std::int32_t code_;
  };
  std::uint32_t length_;
  CellKind kind_;
};
static_assert(sizeof(CellView) == 16);

/// Same kind and same content: texts and errors exactly, numbers as equal doubles (0 and -0 are equal, NaN equals NaN).
bool SameContent(const CellView& left, const CellView& right);

/// Texts of many cells in few blocks. Units never move, so views stay good as long as the pool lives; one writer may
/// add while others read what they were given before.
class TextPool {
 public:
  /// Copies the text in and returns the copy.
  XStringView Add(XStringView text);
  /// Room for `units` units whose content the caller writes at once; only the first `used` of them, named to Keep, stay
  /// taken.
  XCHAR* Reserve(std::size_t units);
  XStringView Keep(XCHAR* start, std::size_t used);
  /// Units taken so far.
  std::size_t UnitsUsed() const { return unitsUsed_; }

 private:
  std::vector<std::unique_ptr<XCHAR[]>> blocks_;
  XCHAR* next_ = nullptr;
  std::size_t left_ = 0;
  std::size_t unitsUsed_ = 0;
};

/// A rectangle of values, at least 1 x 1, never changed once built; handed round as ArrayPtr.
class Array {
 public:
  std::int32_t Rows() const { return rows_; }
  std::int32_t Columns() const { return columns_; }
  std::size_t Size() const { return cells_.size(); }
  /// Zero-based.
  const CellView& At(std::int32_t row, std::int32_t column) const {
    return cells_[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns_) +
                  static_cast<std::size_t>(column)];
  }
  /// All elements, row by row.
  std::span<const CellView> Cells() const { return cells_; }

 private:
  friend class ArrayBuilder;
  Array(std::int32_t rows, std::int32_t columns)
      : rows_(rows), columns_(columns), cells_(static_cast<std::size_t>(rows) * static_cast<std::size_t>(columns)) {}

  std::int32_t rows_;
  std::int32_t columns_;
  std::vector<CellView> cells_;
  std::vector<std::shared_ptr<const TextPool>> pools_;
};

using ArrayPtr = std::shared_ptr<const Array>;

/// Fills an array of a known size; elements not set are empty.
class ArrayBuilder {
 public:
  /// Throws std::length_error below 1, beyond 1,048,576 x 16,384 or with more than kMaxArrayCells.
  ArrayBuilder(std::int32_t rows, std::int32_t columns);
  std::int32_t Rows() const { return array_->rows_; }
  std::int32_t Columns() const { return array_->columns_; }
  /// Copies a text into the array's own pool.
  void Set(std::int32_t row, std::int32_t column, const CellView& cell) {
    Slot(row, column) = cell.IsText() ? CellView::Text(pool_->Add(cell.AsText())) : cell;
  }
  /// Stores the view as it is; its text must live in a pool named to Share, or be static.
  void SetShared(std::int32_t row, std::int32_t column, const CellView& cell) { Slot(row, column) = cell; }
  /// Keeps `pool` alive as long as the array.
  void Share(std::shared_ptr<const TextPool> pool);
  /// Keeps the texts of `array` alive as long as this one.
  void ShareTextsOf(const Array& array);
  /// The elements, row by row, to be written in place under the rule of SetShared.
  std::span<CellView> Cells() { return array_->cells_; }
  /// The finished array; the builder is used up.
  ArrayPtr Finish();

 private:
  CellView& Slot(std::int32_t row, std::int32_t column) {
    return array_->cells_[static_cast<std::size_t>(row) * static_cast<std::size_t>(array_->columns_) +
                          static_cast<std::size_t>(column)];
  }

  std::shared_ptr<Array> array_;
  std::shared_ptr<TextPool> pool_;
};

/// A rectangle of cells, zero-based and inclusive at both ends.
struct Area {
  std::int32_t firstRow = 0;
  std::int32_t lastRow = 0;
  std::int32_t firstColumn = 0;
  std::int32_t lastColumn = 0;

  std::int32_t Rows() const { return lastRow - firstRow + 1; }
  std::int32_t Columns() const { return lastColumn - firstColumn + 1; }
  bool IsOneCell() const { return firstRow == lastRow && firstColumn == lastColumn; }
  /// Within the sheet and its ends in order.
  bool IsOnSheet() const {
    return firstRow >= 0 && firstRow <= lastRow && lastRow < kXlMaxRows && firstColumn >= 0 &&
           firstColumn <= lastColumn && lastColumn < kXlMaxColumns;
  }
  bool Contains(std::int32_t row, std::int32_t column) const {
    return row >= firstRow && row <= lastRow && column >= firstColumn && column <= lastColumn;
  }
  bool Intersects(const Area& other) const {
    return firstRow <= other.lastRow && other.firstRow <= lastRow && firstColumn <= other.lastColumn &&
           other.firstColumn <= lastColumn;
  }
  bool operator==(const Area&) const = default;
};

/// Cells of one sheet: one area, or several (a union).
struct Reference {
  IDSHEET sheet = 0;
  std::vector<Area> areas;

  bool IsOneCell() const { return areas.size() == 1 && areas[0].IsOneCell(); }
  bool operator==(const Reference&) const = default;
};

enum class ValueKind : std::uint8_t { kEmpty, kMissing, kNumber, kText, kBoolean, kError, kArray, kReference };

/// Any value: a scalar, an empty cell, a missing argument, an array or a reference. Copying is cheap but for long
/// texts.
class Value {
 public:
  Value() = default;  ///< an empty cell
  static Value Empty() { return {}; }
  static Value Missing() { return Value(Content(MissingTag{})); }
  static Value Number(double number) { return Value(Content(number)); }
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

/// How two values are held against each other: `relative` and `absolute` are zero for exact equality. Numbers are equal
/// within `relative` of the expected one, or within `absolute` where 0 is expected.
struct Tolerance {
  double relative = 0;
  double absolute = 0;
};

/// Whether `actual` has the kind, shape and content of `expected`. References are compared as references: dereference
/// first to compare what they hold. A scalar never equals a 1 x 1 array.
bool SameValue(const Value& expected, const Value& actual, const Tolerance& tolerance = {});

}  // namespace qcalc
