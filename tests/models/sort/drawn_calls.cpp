#include <algorithm>
#include <deque>

#include "tests/models/draws.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {
namespace {

// Every so many calls have tables of some hundred rows, or large ones.
constexpr std::uint64_t kMiddleEvery = 12, kLargeEvery = 300;
constexpr std::int32_t kMiddleRows = 500, kLargeRows = 25'000;

const std::vector<CellView> kTexts = models::CellsIn(
    R"({"","a","A","b","B","ab","aB","Ab","AB","ab "," a","a b","1","10","2","é","É","e","ea","éa","eb",)"
    R"("z","Zz","côte","coté","cote","a"U+00AD"b","a"U+0001"b","_",)"
    R"("TRUE","ﬀ","abcdefg","abcdefG","abcdefgh","e"U+0301,"ß","ss","æ","Ä")"
#ifdef _WIN32
    // Natively the host orders these as Windows does, the add-in does not.
    R"(,"co-op","coop","CO-OP","it's","its")"
#endif
    "}");
constexpr double kNumbers[] = {0,         -0.0, 1,     2,      3,      -1,   -2,           0.5,
                               0.1 + 0.2, 0.3,  1e308, -1e308, 1e-300, 1e15, 4294967296.0, 9007199254740993.0};
constexpr XStringView kLabels[] = {XTEXT("Name"), XTEXT("Qty"), XTEXT("Price"), XTEXT("Day 1")};

/// What the values of a column are.
enum class Kind { kMixed, kFewNumbers, kManyNumbers, kPlainTexts, kLongTexts };

Value TextValue(XStringView text) { return Value::Text(XString(text)); }
Value RowValue(const Row& row) { return Value::OfArray(ArrayOf({row})); }

class CallMaker : private models::Draws {
 public:
  CallMaker(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places) : Draws(seed, number) {
    isLarge_ = number % kLargeEvery == kLargeEvery - 1;
    isMiddle_ = number % kMiddleEvery == kMiddleEvery - 1;
    hasMany_ = isLarge_ && Chance(50);
    call_.place = Pick(places);
    call_.isReference = Chance(50);
    call_.isTall = Chance(10);
  }

  Call MakeSort() {
    constexpr std::int32_t kManyColumns = 16, kMostKeys = 15;
    const std::int32_t columns = isLarge_ || Chance(90) ? 1 + Below(4) : kManyColumns;
    call_.function = Pick(kSortFunctions).name;
    AddTable(DrawHeight(), columns);
    call_.settings.resize(kMostKeys, Value::Missing());
    std::int32_t keys = columns == kManyColumns && Chance(50) ? kMostKeys : Below(4);
    while (keys-- > 0) call_.settings[static_cast<std::size_t>(keys)] = DrawKey(columns);
    return std::move(call_);
  }

  Call MakeDistinct() {
    const DistinctFunction& function = Pick(kDistinctFunctions);
    const std::int32_t columns = 1 + Below(Chance(90) ? 3 : 10), rows = DrawHeight();
    call_.function = function.name;
    AddTable(rows, columns);
    if (function.figure >= Figure::kSum) AddCompanions(rows);
    const auto set = [&](std::size_t place, Value value) {
      if (place == kNowhere) return;
      call_.settings.resize(std::max(call_.settings.size(), place + 1));
      call_.settings[place] = std::move(value);
    };
    set(0, DrawIgnore());
    set(function.byRows, DrawTruth());
    set(function.caseSense, DrawTruth());
    set(function.sort, Value::Number(Below(5) - 2));
    set(function.fill, DrawNumber({0, 1, 2}));
    call_.place.rows = Chance(50) ? 1 : 1 + Below(std::min(rows + 4, 60));
    if (call_.place.rows > 1) call_.place.columns = 1 + Below(columns + 3);
    return std::move(call_);
  }

  Call MakeJoin() {
    call_.function = Pick(kJoinFunctions);
    const bool isJoin = call_.function == kJoinFunctions[0] || call_.function == kJoinFunctions[1];
    hasHeader_ = isJoin && Chance(40);
    for (int table = 0; table < 2; ++table)
      AddTable(hasMany_ ? 2'000 : isLarge_ ? 600 : Chance(15) ? 1 : 1 + Below(14), 1 + Below(4));
    if (isJoin) {
      DrawJoinSettings();
    } else if (call_.function == kJoinFunctions[2]) {
      call_.settings = {DrawIgnore(), DrawTruth(), Value::Number(Below(5) - 2)};
    } else {
      if (Chance(60)) call_.tables[1] = Varied(*call_.tables[0]);
      call_.settings = {DrawNumber({0, 1, 1, 2, 2, 2.5, 3}), DrawNumber({0, 0.5, 1, -1, 1e-9}), DrawTruth()};
    }
    return std::move(call_);
  }

 private:
  std::int32_t DrawHeight() {
    return isLarge_ ? kLargeRows : isMiddle_ ? Below(kMiddleRows) + 1 : Chance(10) ? 1 : 1 + Below(30);
  }

  CellView Keep(XString text) { return CellView::Text(texts_.emplace_back(std::move(text))); }

  /// Texts that are alike but for a late unit, or for the case of an early one.
  CellView DrawLongText(std::size_t units) {
    XString text(units, XTEXT('k'));
    if (Chance(20)) text[2] = XTEXT('K');
    for (const std::size_t place : {units - 1, units / 2})
      text[place] = static_cast<XCHAR>(XTEXT('a') + Below(isLarge_ ? 26 : 3));
    text.resize(units - static_cast<std::size_t>(Below(2)));
    return Keep(std::move(text));
  }

  CellView DrawCell(Kind kind) {
    const std::int32_t drawn = Below(kind == Kind::kMixed ? 9 : 1);
    if (drawn == 1) return CellView::Boolean(Chance(50));
    if (drawn == 2) return CellView::Error(Chance(50) ? xlerrNull : xlerrNA);
    if (drawn == 3 || drawn == 4) return {};
    if (kind == Kind::kManyNumbers) return CellView::Number((Below(1'000'000) - 400'000) * 0.25);
    if (kind == Kind::kFewNumbers || drawn >= 7) return CellView::Number(Pick(kNumbers));
    if (kind == Kind::kPlainTexts || drawn >= 5) return Pick(kTexts);
    return DrawLongText(Chance(95) ? 30 : 300);
  }

  /// The values that a column of any table takes its cells from: few, but in large tables now and then many, and among
  /// those of one kind there may be one of another.
  const std::vector<CellView>& ValuesOf(std::size_t column) {
    constexpr Kind kKinds[] = {Kind::kMixed,       Kind::kMixed,      Kind::kFewNumbers,
                               Kind::kManyNumbers, Kind::kPlainTexts, Kind::kLongTexts};
    while (values_.size() <= column) {
      const Kind kind = Pick(kKinds);
      auto& values = values_.emplace_back(static_cast<std::size_t>(hasMany_ && Chance(80) ? 40'000 : 1 + Below(7)));
      for (CellView& value : values) value = DrawCell(kind);
      if (Chance(30)) Pick(values) = DrawCell(Kind::kMixed);
    }
    return values_[column];
  }

  /// A large table is in order now and then, either way, and holds a few odd cells. The last row of a tall one is not
  /// empty.
  void AddTable(std::int32_t height, std::int32_t columns) {
    Rows rows(static_cast<std::size_t>(height), Row(static_cast<std::size_t>(columns)));
    for (Row& row : rows)
      for (std::size_t column = 0; column < row.size(); ++column) row[column] = Pick(ValuesOf(column));
    for (std::int32_t odd = isLarge_ || isMiddle_ ? Below(6) : 0; odd > 0; --odd)
      Pick(Pick(rows)) = DrawCell(Kind::kMixed);
    if (isLarge_ && Chance(40)) rows = SortedRows(rows, {Chance(50) ? 1 : -1}, TextOrder::kUnits);
    const std::int32_t first = Below(4);
    for (std::int32_t column = 0; hasHeader_ && column < columns; ++column)
      rows[0][static_cast<std::size_t>(column)] = CellView::Text(kLabels[(first + column) % 4]);
    if (call_.isTall && rows.back()[0].IsEmpty()) rows.back()[0] = CellView::Number(1);
    call_.tables.push_back(ArrayOf(rows));
  }

  /// A column or a row, mostly with a value for each row. Tall are only columns of the right length.
  void AddCompanions(std::int32_t rows) {
    Row values(static_cast<std::size_t>(rows + (Chance(90) ? 0 : 1)));
    for (CellView& value : values) value = Pick(ValuesOf(3));
    Rows column;
    for (const CellView& value : values) column.push_back({value});
    const bool isRow = rows < kMiddleRows && Chance(30);
    call_.isTall = call_.isTall && !isRow && column.size() == static_cast<std::size_t>(rows);
    call_.tables.push_back(ArrayOf(isRow ? Rows{values} : column));
  }

  Value DrawKey(std::int32_t columns) {
    const std::int32_t sign = Chance(50) ? 1 : -1, column = (1 + Below(columns)) * sign;
    switch (Below(30)) {
      case 0:
        return PickOf({Value::Number(columns + 1), Value::Number(-columns - 1), Value::Number(1e10)});
      case 1:
        return PickOf({TextValue(XTEXT("x")), TextValue(XTEXT("")), Value::Error(xlerrNA)});
      case 2:
        return PickOf({Value::Number(0), Value::Number(-0.5), Value::Missing()});
      case 3:
        return PickOf({TextValue(XTEXT("1")), TextValue(XTEXT("-1")), Value::Number(column + sign * 0.9)});
      default:
        return Value::Number(column);
    }
  }

  Value DrawNumber(std::initializer_list<double> numbers) {
    if (Chance(30)) return Value::Missing();
    return Value::Number(numbers.begin()[Below(static_cast<std::int32_t>(numbers.size()))]);
  }

  Value DrawIgnore() { return DrawNumber({-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 4.9}); }

  Value DrawTruth() { return Chance(50) ? DrawNumber({0, 2}) : Value::Boolean(Chance(50)); }

  /// The same cells but for some.
  ArrayPtr Varied(const Array& table) {
    Rows rows = RowsOf(table);
    for (Row& row : rows)
      for (std::size_t column = 0; column < row.size(); ++column)
        if (Chance(15)) row[column] = Pick(ValuesOf(column));
    return ArrayOf(rows);
  }

  void DrawJoinSettings() {
    const bool isMatches = call_.function == kJoinFunctions[0];
    const std::int32_t keys = Chance(65) ? 1 : 2;
    auto& settings = call_.settings;
    settings.resize(kJoinSettings, Value::Missing());
    settings[kMatchType] = isMatches ? DrawNumber({4, 5, 6, 7}) : DrawNumber({1, 2, 3});
    if (keys > 1 || Chance(60)) settings[kLeftColumns] = DrawColumnNames(keys, *call_.tables[0]);
    if (Chance(60)) settings[kRightColumns] = DrawColumnNames(keys, *call_.tables[1]);
    settings[kJoinCase] = DrawTruth();
    const Row ones(4, CellView::Number(1));
    if (Chance(60)) settings[kFill] = PickOf({TextValue(XTEXT("")), Value::Number(0), RowValue({ones[0]})});
    const Value badColumn = PickOf({Value::Number(0), Value::Number(-1), Value::Number(5), Value::Boolean(true),
                                    Value::Error(xlerrNA), TextValue(XTEXT("no such label")), RowValue(ones)});
    if (Chance(4)) settings[Chance(50) ? kLeftColumns : kRightColumns] = badColumn;
    if (!Chance(4)) return;
    // Nothing else is wrong then.
    settings[kLeftColumns] = settings[kRightColumns] = Value::Missing();
    const bool isTypeWrong = Chance(50);
    settings[isTypeWrong ? kMatchType : kFill] = isTypeWrong ? Value::Number(isMatches ? 3 : 4) : RowValue(ones);
  }

  /// Numbers and, where there is a header, labels in any case, mostly such as the table has.
  Value DrawColumnNames(std::int32_t keys, const Array& table) {
    Row names;
    for (std::int32_t key = 0; key < keys; ++key) {
      const std::int32_t column = Below(table.Columns());
      XString label(hasHeader_ && Chance(95) ? table.At(0, column).AsText() : Pick(kLabels));
      if (Chance(30)) label[1] ^= 0x20;
      names.push_back(hasHeader_ && Chance(50) ? Keep(label) : CellView::Number(column + 1));
    }
    return keys == 1 && Chance(80) ? Value::OfCell(names[0]) : RowValue(names);
  }

  Call call_;
  bool isLarge_ = false;
  bool isMiddle_ = false;
  bool hasMany_ = false;  ///< distinct values
  bool hasHeader_ = false;
  std::vector<std::vector<CellView>> values_;  ///< of each column
  std::deque<XString> texts_;                  ///< of cells until they are stored
};

}  // namespace

Call DrawSort(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places) {
  return CallMaker(seed, number, places).MakeSort();
}

Call DrawDistinct(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places) {
  return CallMaker(seed, number, places).MakeDistinct();
}

Call DrawJoin(std::uint64_t seed, std::uint64_t number, const models::CallingPlaces& places) {
  return CallMaker(seed, number, places).MakeJoin();
}

}  // namespace qcalc::sort
