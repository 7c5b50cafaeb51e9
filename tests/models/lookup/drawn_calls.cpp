#include "tests/models/lookup/drawn_calls.h"

#include <algorithm>
#include <array>
#include <deque>
#include <numeric>

#include "tests/models/draws.h"
#include "tests/models/lookup/model_matching.h"
#include "tests/models/text/plain_regex.h"

namespace qcalc::lookup {
namespace {

// Every so many calls have a large table and many keys, or a large table and few.
constexpr std::uint64_t kLargeEvery = 250;
// Rows times keys of a large table; the model looks at every row for every key.
constexpr std::int32_t kArrayWork = 1'000'000;
constexpr std::int32_t kReferenceWork = 60'000;

constexpr XStringView kLong1 = XTEXT("the same long beginning 1"), kLong2 = XTEXT("the same long beginning 2"),
                      kLongCapitals = XTEXT("The Same Long Beginning");
constexpr XStringView kTexts[] = {
    XTEXT(""),     XTEXT("a"),     XTEXT("A"),     XTEXT("ab"), XTEXT("AB"), XTEXT("aB"),   XTEXT("abc"),
    XTEXT("b"),    XTEXT("B"),     XTEXT("1"),     XTEXT("2"),  XTEXT("é"),  XTEXT("É"),    XTEXT("éa"),
    XTEXT("ÉA"),   XTEXT("a*"),    XTEXT("a?c"),   XTEXT("~a"), XTEXT(" a"), XTEXT("TRUE"), XTEXT("a\nb"),
    XTEXT("#N/A"), XTEXT("x@[`{"), XTEXT("X@[`{"), kLong1,      kLong2,      kLongCapitals};
// Excel's order and that of the units agree on these.
constexpr XStringView kOrderedTexts[] = {
    XTEXT(""),   XTEXT("a"),         XTEXT("A"),         XTEXT("aa"),   XTEXT("aB"), XTEXT("AB"), XTEXT("b"),
    XTEXT("ba"), XTEXT("abcdabcda"), XTEXT("abcdabcdb"), XTEXT("ABCD"), XTEXT("cd"), XTEXT("Cd"), XTEXT("e")};
constexpr XStringView kPatterns[] = {XTEXT("*"),  XTEXT("a*"),    XTEXT("?"),   XTEXT("??"),  XTEXT("*b"),
                                     XTEXT("A?"), XTEXT("*a*"),   XTEXT("É*"),  XTEXT("a~*"), XTEXT("~~a*"),
                                     XTEXT("?*"), XTEXT("the*2"), XTEXT("a~?c")};
constexpr XStringView kOrderedPatterns[] = {XTEXT("*"),  XTEXT("a*"),  XTEXT("?"), XTEXT("??"),
                                            XTEXT("*b"), XTEXT("*a*"), XTEXT("A?")};
constexpr double kNumbers[] = {
    0, -0.0, 1, 2, 3, -1, 0.5, 0.1 + 0.2, 0.3, 1e308, -1e308, 1e-300, 1e15, 1e15 + 1, 9007199254740993.0};
constexpr std::int32_t kErrors[] = {xlerrNull, xlerrDiv0, xlerrValue, xlerrRef, xlerrName, xlerrNum, xlerrNA};
constexpr XStringView kLabels[] = {XTEXT("Name"), XTEXT("Qty"), XTEXT("Price"), XTEXT("É 1")};

class CallMaker : private models::Draws {
 public:
  CallMaker(std::uint64_t seed, std::uint64_t number, TableKind kind, const models::CallingPlaces& places)
      : Draws(seed, number), places_(places) {
    call_.isReference = kind == TableKind::kReference;
    isLarge_ = number % kLargeEvery == kLargeEvery - 1;
  }

  LookupCall Make() {
    call_.function = &Pick(kLookupFunctions);
    call_.byExpression = Chance(30);
    call_.caseSensitive = Chance(50);
    order_ = call_.byExpression || Chance(50) ? 0 : Chance(50) ? 1 : -1;
    hasHeader_ = Chance(25);
    DrawSizes();
    if (call_.isReference && rows_ > 0 && Chance(10)) call_.rowsBelow = 1 + Below(5);
    DrawLookupColumns();
    DrawTable();
    DrawKeys();
    DrawSelectors();
    DrawSettings();
    if (Chance(6)) Spoil();
    return std::move(call_);
  }

 private:
  static Value TextValue(XStringView text) { return Value::Text(XString(text)); }

  void DrawSizes() {
    columns_ = 1 + Below(4);
    rows_ = 1 + Below(40);
    keyRows_ = Chance(40) ? 1 : 1 + Below(6);
    keyColumns_ = Chance(60) ? 1 : 1 + Below(std::min(columns_, 3));
    if (hasHeader_ && Chance(5)) rows_ = 0;
    if (!isLarge_) return;
    const std::int32_t work = call_.isReference || call_.byExpression ? kReferenceWork : kArrayWork;
    constexpr std::array kManyRows = {300, 1'000, 5'000};
    rows_ = Pick(kManyRows);
    keyRows_ = Chance(30) ? 1 + Below(3) : std::min(work / rows_, 2'000);
  }

  /// The places of the key parts: the first columns, or any.
  void DrawLookupColumns() {
    lookupColumns_.resize(static_cast<std::size_t>(keyColumns_));
    std::iota(lookupColumns_.begin(), lookupColumns_.end(), 0);
    areColumnsGiven_ = Chance(50);
    if (!areColumnsGiven_) return;
    for (std::int32_t& column : lookupColumns_) column = Below(columns_);
  }

  CellView DrawCell() {
    const std::int32_t kind = Below(12);
    if (kind == 0) return CellView::Boolean(Chance(50));
    if (kind == 1) return CellView::Error(Pick(kErrors));
    if (kind == 2) return {};
    if (kind <= 6) return CellView::Number(isLarge_ ? Below(rows_) : Pick(kNumbers));
    return DrawText();
  }

  /// Texts of large tables are many; those that Excel may have to order are plain.
  CellView DrawText() {
    if (!call_.byExpression && Chance(2))
      return CellView::Text(texts_.emplace_back(kExcelMatchUnits + 1, Chance(50) ? XTEXT('k') : XTEXT('K')));
    if (isLarge_) {
      XString& text = texts_.emplace_back(Chance(50) ? XTEXT("key") : XTEXT("KEY"));
      for (std::int32_t rest = Below(rows_); rest > 0; rest /= 26) text += static_cast<XCHAR>(XTEXT('a') + rest % 26);
      return CellView::Text(text);
    }
    if (call_.byExpression && Chance(70)) return CellView::Text(texts_.emplace_back(text::DrawText(*this)));
    return CellView::Text(IsOrderedByExcel() ? Pick(kOrderedTexts) : Pick(kTexts));
  }

  bool IsOrderedByExcel() const { return call_.isReference && order_ != 0; }

  /// Cells of a column come from a few values, so that many are equal, and in one column of three from one type.
  void DrawTable() {
    std::vector<std::vector<CellView>> rows(static_cast<std::size_t>(rows_),
                                            std::vector<CellView>(static_cast<std::size_t>(columns_)));
    for (std::size_t column = 0; column < static_cast<std::size_t>(columns_); ++column) {
      std::vector<CellView> values(static_cast<std::size_t>(isLarge_ ? rows_ / 2 : 2 + Below(10)));
      for (CellView& value : values) value = DrawCell();
      if (Chance(33))
        for (CellView& value : values)
          if (!value.IsEmpty()) value = value.IsNumber() ? value : CellView::Number(Below(8));
      for (auto& row : rows) row[column] = Pick(values);
    }
    if (order_ != 0) Sort(rows);
    ArrayBuilder table(rows_ + (hasHeader_ ? 1 : 0), columns_);
    std::int32_t at = 0;
    if (hasHeader_) {
      for (std::int32_t column = 0; column < columns_; ++column)
        table.Set(0, column, CellView::Text(kLabels[static_cast<std::size_t>(column)]));
      ++at;
    }
    for (const auto& row : rows) {
      for (std::int32_t column = 0; column < columns_; ++column)
        table.Set(at, column, row[static_cast<std::size_t>(column)]);
      ++at;
    }
    call_.table = table.Finish();
  }

  /// Puts the rows in order of the key columns, which hold no empty cells but in blank rows at the end.
  void Sort(std::vector<std::vector<CellView>>& rows) {
    const std::size_t blank = static_cast<std::size_t>(Chance(30) ? Below(4) : 0);
    const std::size_t filled = rows.size() - std::min(blank, rows.size());
    for (std::size_t row = 0; row < rows.size(); ++row)
      for (const std::int32_t column : lookupColumns_) {
        CellView& cell = rows[row][static_cast<std::size_t>(column)];
        if (row >= filled)
          cell = {};
        else if (cell.IsEmpty())
          cell = CellView::Number(Below(4));
      }
    std::stable_sort(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(filled),
                     [&](const auto& a, const auto& b) {
                       for (const std::int32_t column : lookupColumns_) {
                         const auto at = static_cast<std::size_t>(column);
                         const int side = Compare(a[at], b[at], call_.caseSensitive);
                         if (side != 0) return side * order_ < 0;
                       }
                       return false;
                     });
  }

  void DrawKeys() {
    ArrayBuilder keys(keyRows_, keyColumns_);
    const bool arePatterns = !isLarge_ && Chance(12);
    for (std::int32_t row = 0; row < keyRows_; ++row) {
      const bool isFromTable = rows_ > 0 && Chance(75);
      const std::int32_t tableRow = call_.table->Rows() - 1 - Below(rows_);
      for (std::int32_t part = 0; part < keyColumns_; ++part) {
        CellView key = DrawCell();
        if (isFromTable && Chance(95)) key = call_.table->At(tableRow, lookupColumns_[static_cast<std::size_t>(part)]);
        if (key.IsText() && Chance(30)) key = SwapCase(key.AsText());
        if (arePatterns && Chance(60))
          key = CellView::Text(IsOrderedByExcel() ? Pick(kOrderedPatterns) : Pick(kPatterns));
        if (call_.byExpression && Chance(80)) key = CellView::Text(texts_.emplace_back(text::DrawExpression(*this)));
        if (!call_.isReference && key.IsText() && key.AsText().empty() && Chance(50)) key = {};
        keys.Set(row, part, key);
      }
    }
    const ArrayPtr array = keys.Finish();
    const bool isScalar = array->Size() == 1 && Chance(80);
    call_.keys = Value::OfArray(array);
    if (isScalar) call_.keys = Value::OfCell(array->At(0, 0));
  }

  CellView SwapCase(XStringView text) {
    XString& swapped = texts_.emplace_back(text);
    for (XCHAR& unit : swapped)
      if ((unit >= XTEXT('A') && unit <= XTEXT('Z')) || (unit >= XTEXT('a') && unit <= XTEXT('z'))) unit ^= 0x20;
    return CellView::Text(swapped);
  }

  /// Columns by number; where there is a header, at least one by its label.
  void DrawSelectors() {
    const bool isLabelInAnswers = call_.function->returnsValues && Chance(60);
    if (areColumnsGiven_ || (hasHeader_ && !isLabelInAnswers))
      call_.lookupColumns = Selector(lookupColumns_, hasHeader_ && !isLabelInAnswers);
    std::vector<std::int32_t> answers(static_cast<std::size_t>(Chance(60) ? 1 : 1 + Below(4)));
    for (std::int32_t& answer : answers) answer = Below(columns_);
    if (call_.function->returnsValues) call_.answerColumns = Selector(answers, hasHeader_ && isLabelInAnswers);
  }

  Value Selector(const std::vector<std::int32_t>& columns, bool hasLabel) {
    ArrayBuilder entries(1, static_cast<std::int32_t>(columns.size()));
    for (std::size_t i = 0; i < columns.size(); ++i) {
      CellView entry = CellView::Number(columns[i] + (Chance(90) ? 1 : 1.75));
      if (hasHeader_ && (Chance(50) || (hasLabel && i == 0))) entry = Label(columns[i]);
      entries.Set(0, static_cast<std::int32_t>(i), entry);
    }
    ArrayPtr array = entries.Finish();
    if (array->Size() == 1 && Chance(80)) return Value::OfCell(array->At(0, 0));
    return Value::OfArray(std::move(array));
  }

  /// The label in any case; now and then as Excel alone finds it.
  CellView Label(std::int32_t column) {
    const XStringView label = kLabels[static_cast<std::size_t>(column)];
    if (Chance(60)) return CellView::Text(label);
    if (Chance(70)) return SwapCase(label);
    return CellView::Text(texts_.emplace_back(XString(label.substr(0, 1)) + XTEXT("*")));
  }

  void DrawSettings() {
    const auto text = TextValue;
    if (order_ > 0)
      call_.sorted = PickOf({Value::Boolean(true), Value::Number(1), Value::Number(2.5), text(XTEXT("Asc")),
                             text(XTEXT("yesterday")), text(XTEXT("TRUE"))});
    else if (order_ < 0)
      call_.sorted = PickOf({Value::Number(-1), Value::Number(-7), text(XTEXT("Des")), text(XTEXT("descending"))});
    else
      call_.sorted = PickOf({Value::Missing(), Value::Missing(), Value::Boolean(false), Value::Number(0),
                             Value::Number(-0.9), text(XTEXT("No")), text(XTEXT("De")), text(XTEXT("up"))});
    call_.exactMatch = PickOf({Value::Missing(), Value::Boolean(true), Value::Boolean(false), Value::Boolean(false),
                               Value::Number(-5), text(XTEXT("none")), text(XTEXT(""))});
    constexpr std::array<std::int32_t, 8> kPositions = {0, -1, -2, -3, 1, 2, 3, 4};
    call_.position = Pick(kPositions);
    call_.caller = Pick(places_);
    if (call_.caller.rows > 1 && call_.caller.rows < keyRows_) call_.caller = places_[0];
    call_.memory = PickOf({Value::Missing(), Value::Number(0), Value::Number(0), Value::Number(1), Value::Number(2),
                           Value::Number(3), text(XTEXT("north")), text(XTEXT("south")), text(XTEXT(""))});
  }

  /// An argument that makes the whole call #VALUE!, if the function takes it.
  void Spoil() {
    const Value badColumn =
        PickOf({Value::Number(0), Value::Number(-1), Value::Number(columns_ + 1), Value::Number(0.5),
                Value::Boolean(true), Value::Error(xlerrNA), TextValue(XTEXT("no such label"))});
    const std::int32_t spoilt = Below(9);
    if (spoilt == 0) call_.position = -4;
    if (spoilt == 1) call_.sorted = Value::Error(xlerrNum);
    if (spoilt == 2) call_.exactMatch = Value::Error(xlerrNA);
    if (spoilt == 3)
      call_.memory = PickOf({Value::Number(4), Value::Number(-1), Value::Boolean(true), Value::Error(xlerrRef)});
    if (spoilt == 4) call_.answerColumns = badColumn;
    if (spoilt == 5) call_.lookupColumns = keyColumns_ == 1 ? badColumn : Value::Number(1);
    if (spoilt == 6) call_.answerColumns = Filled(2, 1);
    if (spoilt == 7) {
      call_.keys = Filled(1, columns_ + 1);
      call_.lookupColumns = Value::Missing();
    }
    if (spoilt == 8) call_.keys = PickOf({Value::Missing(), Value::Empty()});
    if (!call_.function->returnsValues) call_.answerColumns = Value::Missing();
  }

  static Value Filled(std::int32_t rows, std::int32_t columns) {
    ArrayBuilder array(rows, columns);
    for (CellView& cell : array.Cells()) cell = CellView::Number(1);
    return Value::OfArray(array.Finish());
  }

  const models::CallingPlaces& places_;
  LookupCall call_;
  bool isLarge_ = false;
  std::int32_t order_ = 0;
  bool hasHeader_ = false;
  bool areColumnsGiven_ = false;
  std::int32_t rows_ = 1;  ///< below the header
  std::int32_t columns_ = 1;
  std::int32_t keyRows_ = 1;
  std::int32_t keyColumns_ = 1;
  std::vector<std::int32_t> lookupColumns_;
  std::deque<XString> texts_;  ///< of cells until they are stored
};

}  // namespace

LookupCall DrawCall(std::uint64_t seed, std::uint64_t number, TableKind kind, const models::CallingPlaces& places) {
  return CallMaker(seed, number, kind, places).Make();
}

}  // namespace qcalc::lookup
