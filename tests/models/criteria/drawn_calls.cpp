#include "tests/models/criteria/drawn_calls.h"

#include <algorithm>
#include <deque>
#include <limits>

#include "host/text/utf8.h"
#include "host/values/conversion.h"
#include "host/values/literal.h"
#include "tests/models/draws.h"

namespace qcalc::criteria {
namespace {

// Large tables have many values, and long lists to look for them: what is searched by halves in several stretches, or
// by hash, is so there alone.
constexpr std::uint64_t kLargeEvery = 25;
constexpr std::int32_t kLargeRows[] = {100, 100, 300, 300, 300, 1'000, 1'000, 3'000, 3'000, 20'000};
constexpr std::int32_t kManyValues = 40;

// Four units of the last place of 1 are within the tolerance, five are not; the least number is as good as 0.
constexpr double kUnit = std::numeric_limits<double>::epsilon(), kLeast = std::numeric_limits<double>::min();
constexpr double kNumbers[] = {0,  1,    1 + 4 * kUnit, 1 + 5 * kUnit, 2,    3,      5,  10,
                               -1, -0.5, 0.3,           0.1 + 0.2,     1e15, kLeast, 12, -kLeast};
constexpr XStringView kTexts[] = {XTEXT(""),    XTEXT(" "),  XTEXT("\u00A0\t"), XTEXT("a"),  XTEXT("A"),   XTEXT("ab"),
                                  XTEXT("ABC"), XTEXT("b"),  XTEXT("B_"),       XTEXT("1"),  XTEXT("5"),   XTEXT(" 5 "),
                                  XTEXT("1e0"), XTEXT("$5"), XTEXT("30%"),      XTEXT("x_"), XTEXT("XA"),  XTEXT("é"),
                                  XTEXT("É"),   XTEXT("<5"), XTEXT("TRUE"),     XTEXT("~a"), XTEXT("#N/A")};
constexpr XStringView kComparisons[] = {XTEXT("="), XTEXT("<>"), XTEXT("<"),  XTEXT("<="), XTEXT("<="),
                                        XTEXT(">"), XTEXT(">="), XTEXT(">="), XTEXT(""),   XTEXT("=")};
constexpr XStringView kPatterns[] = {XTEXT("~*"),   XTEXT("~a*"),  XTEXT("~?"),    XTEXT("~*b"),     XTEXT("~A?"),
                                     XTEXT("~?*"),  XTEXT("~1*"),  XTEXT("~a.b"),  XTEXT("~*5*"),    XTEXT("~x_"),
                                     XTEXT("~~^a"), XTEXT("~~b$"), XTEXT("~~^.$"), XTEXT("~~[0-9]"), XTEXT("~~a|1")};
constexpr XStringView kWords[] = {XTEXT("#n"),     XTEXT("#TXT"),  XTEXT("#Bool"),  XTEXT("#ERR"),
                                  XTEXT("#EMPTY"), XTEXT("#TYPE"), XTEXT("#BLANK"), XTEXT("#ZLS"),
                                  XTEXT("true"),   XTEXT("FALSE"), XTEXT("#TEXT"),  XTEXT("#N/A")};
constexpr XStringView kMarks[] = {XTEXT("#OR#"), XTEXT("#OR"), XTEXT("#or#")};
constexpr XStringView kLabels[] = {XTEXT("Name"), XTEXT("Qty"), XTEXT("Price"), XTEXT("Size 4")};
constexpr std::int32_t kErrors[] = {xlerrNull, xlerrDiv0, xlerrValue, xlerrNA};

Value TextValue(XStringView text) { return Value::Text(XString(text)); }

/// How a ColN is written. Labels, numbers and cells that hold them name columns of the data range.
enum class Form { kNumber, kLabel, kOneCell, kRange, kArray, kMark, kMissing };

class CallMaker : private models::Draws {
 public:
  CallMaker(std::uint64_t seed, std::uint64_t number, bool isReference) : Draws(seed, number) {
    call_.isReference = isReference;
    isLarge_ = number % kLargeEvery == kLargeEvery - 1;
  }

  FilterCall Make() {
    call_.function = &Pick(kFilterFunctions);
    order_ = call_.function->isSorted || Chance(40) ? 1 : Chance(50) ? -1 : 0;
    hasHeader_ = Chance(30);
    DrawRows();
    DrawForms();
    DrawReturned();
    if (order_ != 0) Sort();
    StoreCells();
    for (std::size_t pair = 0; pair < forms_.size(); ++pair) {
      if (pair == 0 || forms_[pair] == Form::kMark) witness_ = static_cast<std::size_t>(Below(call_.cells->Rows()));
      call_.pairs.push_back(MakePair(pair));
    }
    const std::int32_t spoilt = Chance(8) ? Below(6) : -1;
    Spoil(spoilt);
    DeclareOrder();
    if (spoilt == 5) call_.sortedCount = PickOf({Value::Missing(), TextValue(XTEXT("1")), Value::Error(xlerrNum)});
    return std::move(call_);
  }

 private:
  CellView Keep(XString text) { return CellView::Text(texts_.emplace_back(std::move(text))); }

  CellView DrawCell() {
    const std::int32_t kind = Below(12);
    if (kind == 0) return CellView::Boolean(Chance(50));
    if (kind == 1) return CellView::Error(Pick(kErrors));
    if (kind == 2) return {};
    return kind <= 6 ? DrawNumber() : DrawText();
  }

  CellView DrawNumber() {
    const bool isOneOfMany = isLarge_ && Chance(70);
    return CellView::Number(isOneOfMany ? Below(kManyValues) * (1 + Below(7) * kUnit) : Pick(kNumbers));
  }

  CellView DrawText() {
    if (!isLarge_ || Chance(30)) return CellView::Text(Pick(kTexts));
    return Keep(XString(Chance(50) ? XTEXT("key") : XTEXT("Key")) +
                static_cast<XCHAR>(XTEXT('0') + Below(kManyValues)));
  }

  /// Cells of a column come from a few values, in half of the columns of one kind.
  void DrawRows() {
    call_.columns = 1 + Below(4);
    rows_.resize(static_cast<std::size_t>(isLarge_ ? Pick(kLargeRows) : Chance(10) ? 1 : 1 + Below(24)));
    for (auto& row : rows_) row.resize(static_cast<std::size_t>(call_.columns + Below(2) + 1));
    for (auto& row : rows_) row.resize(rows_[0].size());
    for (std::size_t column = 0; column + 1 < rows_[0].size(); ++column) {
      auto& values =
          values_.emplace_back(static_cast<std::size_t>(1 + Below(isLarge_ && Chance(50) ? kManyValues : 7)));
      const std::int32_t kind = Below(4);
      for (CellView& value : values) {
        value = DrawCell();
        if (kind == 0 && !value.IsNumber()) value = DrawNumber();
        if (kind == 1 && !value.IsText()) value = DrawText();
      }
      for (auto& row : rows_) row[column] = Pick(values);
    }
    for (std::size_t column = 0; hasHeader_ && column < rows_[0].size(); ++column)
      rows_[0][column] = CellView::Text(kLabels[column % std::size(kLabels)]);
  }

  void DrawForms() {
    constexpr Form kForms[] = {Form::kNumber,  Form::kNumber, Form::kNumber, Form::kLabel, Form::kLabel,
                               Form::kOneCell, Form::kRange,  Form::kRange,  Form::kArray};
    const std::int32_t pairs = Chance(2) ? 18 : Below(Chance(50) ? 4 : 7);
    for (std::int32_t pair = 0; pair < pairs; ++pair) {
      const bool hasCriteria = columnOf_.end() != std::find_if(columnOf_.begin(), columnOf_.end(),
                                                               [](std::int32_t column) { return column >= 0; });
      Form form = Chance(4)                                          ? Form::kMissing
                  : Chance(hasCriteria ? 20 : 3) && pair + 1 < pairs ? Form::kMark
                                                                     : Pick(kForms);
      if (form == Form::kLabel && !hasHeader_) form = Form::kNumber;
      const bool isAny = form == Form::kRange || form == Form::kArray;
      const auto all = static_cast<std::int32_t>(values_.size());
      const bool isNone = form == Form::kMissing || form == Form::kMark;
      columnOf_.push_back(isNone ? -1 : Below(isAny ? all : call_.columns));
      isHeaderUsed_ = isHeaderUsed_ || form == Form::kLabel;
      forms_.push_back(form);
    }
    // A mark alone asks for nothing.
    if (std::count(columnOf_.begin(), columnOf_.end(), -1) == pairs)
      std::fill(forms_.begin(), forms_.end(), Form::kMissing);
  }

  void DrawReturned() {
    const auto draw = [&] {
      const std::int32_t column = Below(call_.columns);
      if (!hasHeader_ || Chance(60)) return CellView::Number(column + (Chance(90) ? 1 : 1.75));
      isHeaderUsed_ = true;
      return Label(column);
    };
    call_.returned = Value::OfCell(Chance(15) ? CellView::Number(Chance(80) ? 0 : -0.5) : draw());
    if (!Chance(15)) return;
    ArrayBuilder columns(1, 1 + Below(3));
    for (std::int32_t i = 0; i < columns.Columns(); ++i) columns.Set(0, i, draw());
    call_.returned = Value::OfArray(columns.Finish());
  }

  /// The label in any case; in a range now and then as Excel alone finds it.
  CellView Label(std::int32_t column) {
    XString label(kLabels[static_cast<std::size_t>(column)]);
    if (call_.isReference && Chance(10)) return Keep(label.substr(0, 2) + XTEXT("*"));
    if (Chance(30)) label[0] ^= 0x20;
    return Keep(std::move(label));
  }

  /// Puts the rows in the order of the first pairs' columns; cells that count as equal stay mixed.
  void Sort() {
    std::vector<std::vector<CellView>> orders(values_.size());
    for (std::size_t column = 0; column < orders.size(); ++column) {
      orders[column] = values_[column];
      std::sort(orders[column].begin(), orders[column].end(),
                [](const CellView& a, const CellView& b) { return CompareCells(a, b) < 0; });
    }
    const auto rank = [&](std::size_t column, const CellView& cell) {
      std::int32_t place = 0;
      for (std::size_t i = 1; i < orders[column].size() && CompareCells(orders[column][i], cell) <= 0; ++i)
        place += EqualCells(orders[column][i - 1], orders[column][i]) ? 0 : 1;
      return place;
    };
    std::stable_sort(rows_.begin() + (hasHeader_ ? 1 : 0), rows_.end(), [&](const auto& a, const auto& b) {
      for (const std::int32_t named : columnOf_) {
        if (named < 0) continue;
        const auto column = static_cast<std::size_t>(named);
        const std::int32_t side = rank(column, a[column]) - rank(column, b[column]);
        if (side != 0) return side * order_ < 0;
      }
      return false;
    });
  }

  /// The last column holds what references to one cell read.
  void StoreCells() {
    for (std::size_t pair = 0; pair < forms_.size() && pair < rows_.size(); ++pair)
      if (forms_[pair] == Form::kOneCell) rows_[pair].back() = Name(columnOf_[pair]);
    ArrayBuilder cells(static_cast<std::int32_t>(rows_.size()), static_cast<std::int32_t>(rows_[0].size()));
    for (std::int32_t row = 0; row < cells.Rows(); ++row)
      for (std::int32_t column = 0; column < cells.Columns(); ++column)
        cells.Set(row, column, rows_[static_cast<std::size_t>(row)][static_cast<std::size_t>(column)]);
    call_.cells = cells.Finish();
  }

  CellView Name(std::int32_t column) {
    return isHeaderUsed_ && Chance(50) ? Label(column) : CellView::Number(column + 1);
  }

  Pair MakePair(std::size_t at) {
    Pair pair;
    const std::int32_t column = columnOf_[at];
    const Form form = forms_[at];
    pair.criterion = form == Form::kMark ? Value::Number(0) : DrawCriterion(column);
    if (form == Form::kMark) pair.column = TextValue(Pick(kMarks));
    if (form == Form::kNumber) pair.column = Value::Number(column + (Chance(90) ? 1 : 1.75));
    if (form == Form::kLabel) pair.column = Value::OfCell(Label(column));
    if (form == Form::kOneCell) {
      const auto row = static_cast<std::int32_t>(at);
      if (!call_.isReference || row >= call_.cells->Rows())
        pair.column = OneCell(Name(column));
      else
        pair.beside = Beside{row, 1, call_.cells->Columns() - 1};
    }
    if (form != Form::kRange && form != Form::kArray) return pair;
    const bool isShort = isHeaderUsed_ && call_.cells->Rows() > 1 && Chance(50);
    hasShort_ = hasShort_ || isShort;
    const Beside place{isShort ? 1 : 0, call_.cells->Rows() - (isShort ? 1 : 0), column};
    if (call_.isReference && form == Form::kRange)
      pair.beside = place;
    else
      pair.column = Copy(place);
    return pair;
  }

  static Value OneCell(const CellView& cell) {
    ArrayBuilder array(1, 1);
    array.Set(0, 0, cell);
    return Value::OfArray(array.Finish());
  }

  Value Copy(const Beside& place) const {
    ArrayBuilder array(place.rows, 1);
    for (std::int32_t row = 0; row < place.rows; ++row)
      array.Set(row, 0, call_.cells->At(place.row + row, place.column));
    return Value::OfArray(array.Finish());
  }

  /// One criterion, or a list; expressions that are none do not stand in lists.
  Value DrawCriterion(std::int32_t column) {
    if (column < 0 || Chance(4)) return Value::Missing();
    if (Chance(2)) return TextValue(Chance(50) ? XTEXT("~~(") : XTEXT("¬~~("));
    if (Chance(4)) return TextValue(Chance(50) ? XTEXT("~") : XTEXT("¬~"));
    if (!Chance(20)) return Value::OfCell(DrawOne(column));
    const bool isAcross = Chance(50), isReversed = Chance(25);
    const std::int32_t size = 1 + Below(isLarge_ && Chance(50) ? 2 * kManyValues : 4);
    ArrayBuilder list(isAcross ? 1 : size, isAcross ? size : 1);
    for (std::int32_t i = 0; i < size; ++i) {
      CellView one = DrawOne(column);
      const bool isBare = !one.IsText() || !one.AsText().starts_with(XTEXT("¬"));
      if (isReversed && isBare) one = Keep(XTEXT("¬") + Written(one));
      list.Set(isAcross ? 0 : i, isAcross ? i : 0, one);
    }
    return Value::OfArray(list.Finish());
  }

  CellView DrawOne(std::int32_t column) {
    const XString prefix = XString(Chance(15) ? XTEXT("¬") : XTEXT("")) + (Chance(12) ? XTEXT("&") : XTEXT(""));
    const std::int32_t kind = Below(10);
    if (kind == 0) return Keep(prefix + XString(Pick(kWords)));
    if (kind == 1) return Keep(prefix + XString(Pick(kPatterns)));
    const auto at = static_cast<std::size_t>(column);
    const CellView value = Chance(65) ? rows_[witness_][at] : Chance(60) ? Pick(values_[at]) : DrawCell();
    if (kind <= 3) return value;
    return Keep(prefix + XString(Pick(kComparisons)) + Written(value));
  }

  /// The cell as a text; of a number now and then all digits.
  XString Written(const CellView& cell) {
    if (cell.IsError()) return XString(XTEXT("#N/A"));
    if (cell.IsNumber() && Chance(30)) return *FromUtf8(PrintLiteral(cell));
    return ToText(cell, {}).AsText();
  }

  /// Whether the data of a group are in order as far as that criterion, where they are equal in those before it.
  bool IsInOrder(const std::vector<const Condition*>& group, std::size_t at, std::int32_t direction) const {
    const Condition& last = *group[at];
    for (std::size_t row = 1; row < last.cells.size(); ++row) {
      const bool isSame =
          std::all_of(group.begin(), group.begin() + static_cast<std::ptrdiff_t>(at),
                      [&](const Condition* other) { return EqualCells(other->cells[row - 1], other->cells[row]); });
      if (!isSame) continue;
      const CellView &a = last.cells[row - 1], &b = last.cells[row];
      if (!EqualCells(a, b) && CompareCells(a, b) * direction > 0) return false;
      if (HasOrder(last.criteria) &&
          Compare(a, last.criteria[0]) * direction > Compare(b, last.criteria[0]) * direction)
        return false;
    }
    return true;
  }

  /// How many criteria of a group may be called sorted; now and then a calculated one, which is refused.
  std::int32_t MostSorted(const std::vector<const Condition*>& group, std::int32_t direction) {
    std::size_t most = 0;
    while (most < group.size() && (!group[most]->isCalculated || Chance(5)) && IsInOrder(group, most, direction))
      ++most;
    return static_cast<std::int32_t>(most) + (most == group.size() && Chance(20) ? 2 : 0);
  }

  /// Says of each group how many of its criteria are sorted.
  void DeclareOrder() {
    call_.sortedCount = Value::Number(0);
    const FilterFunction* function = call_.function;
    call_.function = &kFilterFunctions[0];
    const Question question = ReadQuestion(call_);
    if (!function->isSorted) call_.function = function;
    if (question.failure) return;
    const std::int32_t direction = order_ < 0 ? -1 : 1;
    std::vector<std::vector<const Condition*>> groups(1);
    for (const Condition& condition : question.conditions) {
      if (condition.isMark) groups.emplace_back();
      if (!condition.isMark) groups.back().push_back(&condition);
    }
    std::vector<double> counts;
    for (const auto& group : groups) {
      const std::int32_t most = MostSorted(group, direction);
      counts.push_back(direction * ((Chance(80) ? most : Below(most + 1)) + (Chance(90) ? 0 : 0.9)));
    }
    const bool canBeSorted = groups[0].empty() || (direction > 0 && counts[0] >= 1);
    if (canBeSorted) call_.function = function;
    call_.sortedCount = Chance(95) ? Value::Number(counts[0]) : OneCell(CellView::Number(counts[0]));
    std::size_t group = 0;
    for (std::size_t pair = 0; pair < forms_.size(); ++pair)
      if (forms_[pair] == Form::kMark) call_.pairs[pair].criterion = Value::Number(counts[++group]);
  }

  /// Makes one argument wrong; which of several faults is told is not asked.
  void Spoil(std::int32_t spoilt) {
    const auto any = static_cast<std::size_t>(Below(static_cast<std::int32_t>(forms_.size())));
    const Value nowhere =
        PickOf({Value::Number(-1), Value::Number(call_.columns + 1), TextValue(XTEXT("no such label"))});
    const bool isColumn = any < forms_.size() && columnOf_[any] >= 0 && !hasShort_;
    if (spoilt == 0) call_.hasRange = false;
    if (spoilt == 1) call_.returned = PickOf({Value::Missing(), Value::Boolean(true), Value::Error(xlerrNA)});
    if (spoilt == 2 && !hasShort_) call_.returned = nowhere;
    if ((spoilt != 3 && spoilt != 4) || !isColumn) return;
    call_.pairs[any].beside.reset();
    call_.pairs[any].column = PickOf({nowhere, Value::Number(0), Value::Boolean(true), Value::Error(xlerrNA)});
    if (spoilt == 3) return;
    ArrayBuilder tooHigh(call_.cells->Rows() + 1, 1);
    call_.pairs[any].column = Value::OfArray(tooHigh.Finish());
  }

  FilterCall call_;
  bool isLarge_ = false;
  std::int32_t order_ = 0;
  bool hasHeader_ = false;
  bool isHeaderUsed_ = false;
  bool hasShort_ = false;  ///< columns as high as the data below the header
  std::vector<std::vector<CellView>> rows_;
  std::vector<std::vector<CellView>> values_;  ///< of each column
  std::vector<Form> forms_;                    ///< of the pairs
  std::vector<std::int32_t> columnOf_;         ///< that the pairs look at; -1 for marks and gaps
  std::size_t witness_ = 0;                    ///< the row that a group's criteria are made for
  std::deque<XString> texts_;                  ///< of cells until they are stored
};

}  // namespace

FilterCall DrawCall(std::uint64_t seed, std::uint64_t number, bool isReference) {
  return CallMaker(seed, number, isReference).Make();
}

}  // namespace qcalc::criteria
