// The comparisons of cell values: texts held against the plain rules, the orders against lists that are in order.
#include "table/compare.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "table/sort_order.h"

namespace quillmere::testing {
namespace {

/// A copy of a text in a block of its own that begins `before` units earlier and ends with the text, so that a
/// sanitizer sees a read outside.
class Placed {
 public:
  Placed(XStringView text, std::size_t before) : units_(new XCHAR[before + text.size()]()) {
    view_ = {units_.get() + before, text.size()};
    std::copy(text.begin(), text.end(), units_.get() + before);
  }
  XStringView View() const { return view_; }

 private:
  std::unique_ptr<XCHAR[]> units_;
  XStringView view_;
};

XString PlainFold(XString text) {
  for (XCHAR& unit : text)
    if (unit >= XTEXT('A') && unit <= XTEXT('Z')) unit = static_cast<XCHAR>(unit + 32);
  return text;
}

int PlainOrder(const XString& a, const XString& b) {
  for (std::size_t at = 0; at < std::min(a.size(), b.size()); ++at)
    if (a[at] != b[at]) return static_cast<std::uint16_t>(a[at]) < static_cast<std::uint16_t>(b[at]) ? -1 : 1;
  return a.size() < b.size() ? -1 : a.size() > b.size();
}

TEST(FoldCase, FoldsTheLettersFromAToZAlone) {
  XString text(0x10000, XCHAR{});
  for (std::size_t unit = 0; unit < text.size(); ++unit) text[unit] = static_cast<XCHAR>(unit);
  const XString folded = PlainFold(text);
  EXPECT_TRUE(EqualFolded(text, folded));
  FoldCase(text);
  EXPECT_EQ(text, folded);
}

TEST(FoldCase, TextsOfAllLengthsAndPlacesAreComparedByThePlainRules) {
  static const XCHAR kUnits[] = {XTEXT('A'), XTEXT('a'), XTEXT('Z'), XTEXT('z'), XTEXT('@'), XTEXT('`'), XTEXT('['),
                                 XTEXT('{'), 0,          0x0141,     0x0161,     0x4141,     0x7FFF,     0x8041,
                                 0x8061,     0xFF21,     0xFF41,     0xFFFF,     0x00C9,     0x00E9};
  constexpr int kSeed = 11;
  std::mt19937 random(kSeed);
  const auto draw = [&random] { return kUnits[random() % std::size(kUnits)]; };
  for (int round = 0; round < 30'000; ++round) {
    XString a(random() % 41, XCHAR{});
    for (XCHAR& unit : a) unit = draw();
    XString b = a;
    if (random() % 2 == 0) b = PlainFold(b);
    if (!b.empty() && random() % 4 != 0) b[random() % b.size()] = draw();
    if (!b.empty() && random() % 8 == 0) b.resize(random() % b.size());
    const Placed placedA(a, random() % 9);
    const Placed placedB(b, random() % 9);
    const XStringView viewA = placedA.View();
    const XStringView viewB = placedB.View();
    const std::string what = "seed " + std::to_string(kSeed) + ", round " + std::to_string(round);
    ASSERT_EQ(EqualExact(viewA, viewB), a == b) << what;
    ASSERT_EQ(EqualFolded(viewA, viewB), PlainFold(a) == PlainFold(b)) << what;
    ASSERT_EQ(CompareExact(viewA, viewB), PlainOrder(a, b)) << what;
    ASSERT_EQ(CompareFolded(viewA, viewB), PlainOrder(PlainFold(a), PlainFold(b))) << what;
    const std::unique_ptr<XCHAR[]> folded(new XCHAR[a.size()]);
    FoldTo(folded.get(), viewA);
    ASSERT_EQ(XString(folded.get(), a.size()), PlainFold(a)) << what;
  }
}

XLOPER12 Array(std::vector<XLOPER12>& cells, int rows, int columns) {
  XLOPER12 value{};
  value.val.array.lparray = cells.data();
  value.val.array.rows = rows;
  value.val.array.columns = columns;
  value.xltype = xltypeMulti;
  return value;
}

/// Values in strictly ascending order, behind an absent one.
std::vector<CXlOper> OrderedValues() {
  static std::vector<XLOPER12> small = {NumberCell(9), NumberCell(9)};
  static std::vector<XLOPER12> larger = {NumberCell(9), BooleanCell(true)};
  static const XLOPER12 arrays[] = {Array(small, 1, 2), Array(larger, 1, 2), Array(small, 2, 1)};
  const XLREF12 area{5, 5, 1, 2};
  const XLREF12 wider{0, 0, 1, 3};
  const XLREF12 further{4, 4, 2, 2};
  std::vector<CXlOper> values;
  const double numbers[] = {-1e300, -0.5, 0, 1, 1 + 1e-15};
  for (const double number : numbers) values.push_back(CXlOper::Number(number));
  for (const XStringView text : {XTEXT(""), XTEXT("Z"), XTEXT("a"), XTEXT("\uFF21"), XTEXT("AA"), XTEXT("Aa")})
    values.push_back(CXlOper::Text(text));
  for (const bool value : {false, true}) values.push_back(CXlOper::Boolean(value));
  values.push_back(CXlOper::Reference(1, {{further}}));
  values.push_back(CXlOper::Reference(2, {{area}}));
  values.push_back(CXlOper::Reference(2, {{wider}}));
  values.push_back(CXlOper::Reference(2, {{area, area}}));
  for (const int code : {xlerrNull, xlerrValue, xlerrNA}) values.push_back(CXlOper::Error(code));
  for (const XLOPER12& array : arrays) values.push_back(CXlOper::Borrow(&array));
  values.push_back(CXlOper::Missing());
  values.push_back(CXlOper::Empty());
  values.push_back(CXlOper::Reference(area));
  values.push_back(CXlOper::Reference(wider));
  values.push_back(CXlOper::Reference(further));
  values.push_back(CXlOper::Integer(-3));
  values.push_back(CXlOper::Integer(2));
  return values;
}

TEST(CompareOpers, OrdersAnyTwoValues) {
  const std::vector<CXlOper> values = OrderedValues();
  EXPECT_EQ(CompareOpers(nullptr, nullptr), 0);
  for (std::size_t a = 0; a < values.size(); ++a) {
    EXPECT_EQ(CompareOpers(nullptr, &values[a].Raw()), -1);
    EXPECT_EQ(CompareOpers(&values[a].Raw(), nullptr), 1);
    for (std::size_t b = 0; b < values.size(); ++b) {
      // Ownership bits, and the bit that means nothing, have no say.
      XLOPER12 other = values[b].Raw();
      other.xltype |= xlbitXLFree | xlbitDLLFree | 0x200;
      EXPECT_EQ(CompareOpers(&values[a].Raw(), &other), a < b ? -1 : a > b) << a << ", " << b;
    }
  }
}

TEST(CompareOpers, TreatsTheOddOnesAsTold) {
  const auto compare = [](const CXlOper& a, const CXlOper& b) { return CompareOpers(&a.Raw(), &b.Raw()); };
  EXPECT_EQ(compare(CXlOper::Number(0.0), CXlOper::Number(-0.0)), 0);
  XLOPER12 nan = NumberCell(0);
  nan.val.num = std::numeric_limits<double>::quiet_NaN();
  const XLOPER12 one = NumberCell(1);
  EXPECT_EQ(CompareOpers(&nan, &one), 0);
  const XStringView withNul(XTEXT("a\0b"), 3);
  EXPECT_EQ(compare(CXlOper::Text(withNul), CXlOper::Text({XTEXT("a\0c"), 3})), 0);
  EXPECT_EQ(compare(CXlOper::Text(withNul), CXlOper::Text(XTEXT("aab"))), -1);

  XLOPER12 handle{};
  handle.xltype = xltypeBigData;
  handle.val.bigdata.cbData = 3;
  XLOPER12 longer = handle;
  longer.val.bigdata.cbData = 4;
  EXPECT_EQ(CompareOpers(&handle, &longer), -1);
  longer = handle;
  EXPECT_EQ(CompareOpers(&handle, &longer), 0);

  std::vector<XLOPER12> nested(1);
  nested[0] = Array(nested, 1, 1);
  std::vector<XLOPER12> alike = nested;
  const XLOPER12 other = Array(alike, 1, 1);
  EXPECT_THROW(CompareOpers(&nested[0], &other), CXlBadOperTypeException);
}

struct LookupCase {
  CXlOper cell;
  CXlOper value;
  int anyCase;
  int caseSensitive;
};

std::vector<LookupCase> LookupCases() {
  const auto text = [](XStringView units) { return CXlOper::Text(units); };
  std::vector<LookupCase> cases;
  const auto add = [&cases](CXlOper cell, CXlOper value, int anyCase, int caseSensitive) {
    cases.push_back({std::move(cell), std::move(value), anyCase, caseSensitive});
  };
  add(text(XTEXT("Z")), text(XTEXT("AA")), 1, 1);
  add(text(XTEXT("AB")), text(XTEXT("ABC")), -1, -1);
  add(text(XTEXT("Apple")), text(XTEXT("APPLE")), 0, 1);
  add(text(XTEXT("apple tart, hot")), text(XTEXT("APPLE TART, HOT")), 0, 1);
  add(text(XTEXT("_")), text(XTEXT("A")), -1, 1);
  add(text(XTEXT("\u00C9")), text(XTEXT("\u00E9")), -1, -1);
  add(text({XTEXT("a\0b"), 3}), text({XTEXT("a\0c"), 3}), -1, -1);
  add(text(XTEXT("1")), CXlOper::Number(1), 1, 1);
  add(CXlOper::Number(1), text(XTEXT("1")), -1, -1);
  add(CXlOper::Empty(), text(XTEXT("")), -1, -1);
  add(CXlOper::Error(xlerrNA), text(XTEXT("")), -1, -1);
  add(CXlOper::Number(2), CXlOper::Number(2), 0, 0);
  add(CXlOper::Number(1.5), CXlOper::Number(2), -1, -1);
  add(CXlOper::Boolean(true), CXlOper::Number(1), 1, 1);
  add(CXlOper::Boolean(true), CXlOper::Boolean(true), 0, 0);
  add(CXlOper::Error(xlerrDiv0), CXlOper::Number(1), 1, 1);
  add(CXlOper::Error(xlerrNA), CXlOper::Error(xlerrNA), 0, 0);
  add(CXlOper::Empty(), CXlOper::Number(0), 1, 1);
  add(CXlOper::Empty(), CXlOper::Error(xlerrNA), 1, 1);
  add(CXlOper::Empty(), CXlOper::Empty(), 0, 0);
  return cases;
}

TEST(CompareLookupCell, PlacesACellBesideTheValueLookedFor) {
  XCHAR room[32];
  int index = 0;
  for (const LookupCase& each : LookupCases()) {
    const PreparedLookupValue anyCase = PrepareLookupValue(each.value.Raw(), false, room);
    const PreparedLookupValue sensitive = PrepareLookupValue(each.value.Raw(), true, nullptr);
    EXPECT_EQ(CompareLookupCell(each.cell.Raw(), anyCase), each.anyCase) << index;
    EXPECT_EQ(CompareLookupCell(each.cell.Raw(), sensitive), each.caseSensitive) << index;
    EXPECT_EQ(EqualsLookupValue(each.cell.Raw(), anyCase), each.anyCase == 0) << index;
    EXPECT_EQ(EqualsLookupValue(each.cell.Raw(), sensitive), each.caseSensitive == 0) << index;
    ++index;
  }
  XLOPER12 malformed{};
  malformed.xltype = xltypeStr;
  const PreparedLookupValue lookup = PrepareLookupValue(CXlOper::Text(XTEXT("a")).Raw(), false, room);
  EXPECT_THROW(CompareLookupCell(malformed, lookup), CXlBadOperTypeException);
  EXPECT_THROW(EqualsLookupValue(malformed, lookup), CXlBadOperTypeException);
  malformed.xltype = xltypeMulti;
  EXPECT_THROW(CompareLookupCell(malformed, lookup), CXlBadOperTypeException);
}

TEST(ParseSortOrder, ReadsNumbersTextsAndBooleans) {
  for (const XStringView text : {XTEXT("asc"), XTEXT("Ascending"), XTEXT("True"), XTEXT("yEs"), XTEXT("Yesterday")})
    EXPECT_EQ(ParseSortOrder(CXlOper::Text(text)), SortOrder::kAscending);
  for (const XStringView text : {XTEXT("Des"), XTEXT("DESC"), XTEXT("Desk")})
    EXPECT_EQ(ParseSortOrder(CXlOper::Text(text)), SortOrder::kDescending);
  for (const XStringView text :
       {XTEXT(""), XTEXT("De"), XTEXT("No"), XTEXT("False"), XTEXT("A"), XTEXT(" asc"), XTEXT("a\u017Fc"), XTEXT("1")})
    EXPECT_EQ(ParseSortOrder(CXlOper::Text(text)), SortOrder::kUnsorted);
  for (const double number : {0.0, 0.4, -0.9, 1e300, -1e300})
    EXPECT_EQ(ParseSortOrder(CXlOper::Number(number)), SortOrder::kUnsorted) << number;
  EXPECT_EQ(ParseSortOrder(CXlOper::Number(1.9)), SortOrder::kAscending);
  EXPECT_EQ(ParseSortOrder(CXlOper::Integer(-7)), SortOrder::kDescending);
  EXPECT_EQ(ParseSortOrder(CXlOper::Boolean(true)), SortOrder::kAscending);
  EXPECT_EQ(ParseSortOrder(CXlOper::Boolean(false)), SortOrder::kUnsorted);
  EXPECT_EQ(ParseSortOrder(CXlOper()), SortOrder::kUnsorted);
  EXPECT_EQ(ParseSortOrder(CXlOper::Missing()), SortOrder::kUnsorted);
  EXPECT_EQ(ParseSortOrder(CXlOper::Error(xlerrNA)), SortOrder::kUnsorted);
  EXPECT_EQ(ParseSortOrder(CXlOper::Reference({0, 0, 0, 0})), SortOrder::kUnsorted);
  std::vector<XLOPER12> cells = {NumberCell(-1), NumberCell(-1)};
  const XLOPER12 pair = Array(cells, 1, 2);
  const XLOPER12 single = Array(cells, 1, 1);
  EXPECT_EQ(ParseSortOrder(CXlOper::Borrow(&pair)), SortOrder::kUnsorted);
  EXPECT_EQ(ParseSortOrder(CXlOper::Borrow(&single)), SortOrder::kDescending);
}

}  // namespace
}  // namespace quillmere::testing
