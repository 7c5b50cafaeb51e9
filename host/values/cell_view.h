// What one cell or one element of an array holds.
#pragma once

#include <cstdint>
#include <limits>

#include "xlcall/xlcall.h"

namespace qcalc {

/// #SPILL! and #CALC!: Excel numbers them behind the published error codes.
constexpr std::int32_t kErrorSpill = 45;
constexpr std::int32_t kErrorCalc = 50;

/// Whether the error is younger than the first workbook files, which have no word for it: #VALUE! stands for it there.
constexpr bool IsNewerError(std::int32_t code) { return code > xlerrGettingData; }

/// The number as a value of Excel's, which knows no subnormal ones: they are 0. What is not finite stays as it is.
constexpr double WithoutSubnormal(double number) {
  constexpr double kLeast = std::numeric_limits<double>::min();
  return number > -kLeast && number < kLeast && number != 0 ? 0 : number;
}

enum class CellKind : std::uint8_t { kEmpty, kNumber, kText, kBoolean, kError };

/// The content of one cell or one array element: 16 bytes, copied freely. A text is viewed, not owned: its units belong
/// to the sheet, array or value that the view was taken from.
class CellView {
 public:
  constexpr CellView() : number_(0), length_(0), kind_(CellKind::kEmpty) {}
  static constexpr CellView Number(double number) {
    CellView cell;
    cell.number_ = WithoutSubnormal(number);
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

/// An empty value as a cell shows it, and as a lookup takes it: 0.
constexpr CellView EmptyAsZero(const CellView& cell) { return cell.IsEmpty() ? CellView::Number(0) : cell; }

}  // namespace qcalc
