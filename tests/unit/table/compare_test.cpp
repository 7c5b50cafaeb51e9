// The comparisons of cell values: texts held against the plain rules, the orders against lists that are in order.
#include "table/compare.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <random>
#include <vector>

#include "tests/unit/fixtures/raw_values.h"

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
  const auto order = std::lexicographical_compare_three_way(
      a.begin(), a.end(), b.begin(), b.end(),
      [](XCHAR x, XCHAR y) { return static_cast<std::uint16_t>(x) <=> static_cast<std::uint16_t>(y); });
  return order < 0 ? -1 : order > 0;
}

TEST(FoldCase, TextsOfAllLengthsAndPlacesAreComparedByThePlainRules) {
  static const XCHAR kUnits[] = {XTEXT('A'), XTEXT('a'), XTEXT('Z'), XTEXT('z'), XTEXT('@'), XTEXT('`'), XTEXT('['),
                                 XTEXT('{'), 0,          0x0141,     0x0161,     0x4141,     0x7FFF,     0x8041,
                                 0x8061,     0xFF21,     0xFF41,     0xFFFF,     0x00C9,     0x00E9};
  std::mt19937 random(11);
  const auto draw = [&random] {
    return random() % 8 == 0 ? static_cast<XCHAR>(random()) : kUnits[random() % std::size(kUnits)];
  };
  for (int round = 0; round < 30'000; ++round) {
    XString a(random() % 41, XCHAR{});
    for (XCHAR& unit : a) unit = draw();
    XString b = a;
    if (random() % 2 == 0) b = PlainFold(b);
    if (!b.empty() && random() % 4 != 0) b[random() % b.size()] = draw();
    if (!b.empty() && random() % 8 == 0) b.resize(random() % b.size());
    const Placed placedA(a, random() % 9);
    const Placed placedB(b, random() % 9);
    const XStringView viewA = placedA.View(), viewB = placedB.View();
    ASSERT_EQ(EqualExact(viewA, viewB), a == b) << round;
    ASSERT_EQ(EqualFolded(viewA, viewB), PlainFold(a) == PlainFold(b)) << round;
    ASSERT_EQ(CompareExact(viewA, viewB), PlainOrder(a, b)) << round;
    ASSERT_EQ(CompareFolded(viewA, viewB), PlainOrder(PlainFold(a), PlainFold(b))) << round;
    const std::unique_ptr<XCHAR[]> folded(new XCHAR[a.size()]);
    FoldTo(folded.get(), viewA);
    ASSERT_EQ(XString(folded.get(), a.size()), PlainFold(a)) << round;
    FoldCase(b);
    ASSERT_EQ(b, PlainFold(XString(viewB))) << round;
  }
}

/// Values in strictly ascending order, behind an absent one.
std::vector<CXlOper> OrderedValues() {
  static XLOPER12 small[] = {NumberCell(9), NumberCell(9)}, larger[] = {NumberCell(9), BooleanCell(true)};
  static const XLOPER12 wide = RawArray(small, 1, 2), wideAndLarger = RawArray(larger, 1, 2),
                        high = RawArray(small, 2, 1);
  const XLREF12 area{5, 5, 1, 2}, wider{0, 0, 1, 3}, taller{3, 9, 2, 2}, further{4, 4, 2, 2};
  std::vector<CXlOper> values;
  const auto add = [&values](auto... next) { (values.push_back(std::move(next)), ...); };
  for (const double number : {-1e300, -0.5, 0.0, 1.0, 1 + 1e-15}) add(CXlOper::Number(number));
  for (const XStringView text : {XTEXT(""), XTEXT("Z"), XTEXT("a"), XTEXT("\uFF21"), XTEXT("AA"), XTEXT("Aa")})
    add(CXlOper::Text(text));
  add(CXlOper::Boolean(false), CXlOper::Boolean(true));
  add(CXlOper::Reference(1, {{further}}), CXlOper::Reference(2, {{area}}), CXlOper::Reference(2, {{wider}}),
      CXlOper::Reference(2, {{area, area}}));
  add(CXlOper::Error(xlerrNull), CXlOper::Error(xlerrValue), CXlOper::Error(xlerrNA));
  add(CXlOper::Borrow(&wide), CXlOper::Borrow(&wideAndLarger), CXlOper::Borrow(&high));
  add(CXlOper::Missing(), CXlOper::Empty());
  add(CXlOper::Reference(area), CXlOper::Reference(wider), CXlOper::Reference(taller), CXlOper::Reference(further));
  add(CXlOper::Integer(-3), CXlOper::Integer(2));
  return values;
}

TEST(CompareOpers, OrdersAnyTwoValues) {
  const std::vector<CXlOper> values = OrderedValues();
  EXPECT_EQ(CompareOpers(nullptr, nullptr), 0);
  for (std::size_t a = 0; a < values.size(); ++a) {
    EXPECT_EQ(CompareOpers(nullptr, &values[a].Raw()), -1);
    EXPECT_EQ(CompareOpers(&values[a].Raw(), nullptr), 1);
    for (std::size_t b = 0; b < values.size(); ++b) {
      // Ownership bits have no say.
      XLOPER12 other = values[b].Raw();
      other.xltype |= xlbitXLFree | xlbitDLLFree;
      const int order = a < b ? -1 : a > b;
      EXPECT_EQ(CompareOpers(&values[a].Raw(), &other), order) << a << ", " << b;
      EXPECT_EQ(CompareOpers(&other, &values[a].Raw()), -order) << a << ", " << b;
    }
  }
}

TEST(CompareOpers, TreatsTheOddOnesAsTold) {
  const auto compare = [](const CXlOper& a, const CXlOper& b) { return CompareOpers(&a.Raw(), &b.Raw()); };
  EXPECT_EQ(compare(CXlOper::Number(0.0), CXlOper::Number(-0.0)), 0);
  const XLOPER12 nan = RawNumber(std::numeric_limits<double>::quiet_NaN()), one = NumberCell(1);
  EXPECT_EQ(CompareOpers(&nan, &one), 0);
  const XStringView withNul(XTEXT("a\0b"), 3);
  EXPECT_EQ(compare(CXlOper::Text(withNul), CXlOper::Text({XTEXT("a\0c"), 3})), 0);
  EXPECT_EQ(compare(CXlOper::Text(withNul), CXlOper::Text(XTEXT("aab"))), -1);

  XLOPER12 handle = RawValue(xltypeBigData), longer = handle;
  EXPECT_EQ(CompareOpers(&handle, &longer), 0);
  longer.val.bigdata.cbData = 4;
  EXPECT_EQ(CompareOpers(&handle, &longer), -1);

  XLOPER12 nested = RawArray(&nested, 1, 1), alike = RawArray(&nested, 1, 1);
  EXPECT_THROW(CompareOpers(&nested, &alike), CXlBadOperTypeException);
}

}  // namespace
}  // namespace quillmere::testing
