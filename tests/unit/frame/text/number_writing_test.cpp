#include "frame/text/number_writing.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "frame/convert/cell_text.h"
#include "frame/text/number_reading.h"
#include "frame/text/white_space.h"
#include "frame/values/cell.h"

namespace quillmere {
namespace {

XString Written(double number, XCHAR separator = XTEXT('.')) {
  NumberTextBuffer buffer;
  return XString(NumberText(number, buffer, separator));
}

TEST(NumberText, WritesAsExcelDoes) {
  const struct {
    double number;
    XStringView text;
  } cases[] = {{0, XTEXT("0")},
               {-0.0, XTEXT("0")},
               {4e-310, XTEXT("0")},
               {1, XTEXT("1")},
               {-12.5, XTEXT("-12.5")},
               {0.1 + 0.2, XTEXT("0.3")},
               {1234567.8901234567, XTEXT("1234567.89012346")},
               {999999.9999999999, XTEXT("1000000")},
               {0.9999999999999999, XTEXT("1")},
               {1.2345678901234568E15, XTEXT("1234567890123460")},
               {1.2345678901234567E19, XTEXT("12345678901234600000")},
               {1.2345678901234568E20, XTEXT("1.23456789012346E+20")},
               {99999999999999999999.0, XTEXT("1E+20")},
               {2E50, XTEXT("2E+50")},
               {-1E100, XTEXT("-1E+100")},
               {1.23456789E-5, XTEXT("0.0000123456789")},
               {1.2345678901234568E-5, XTEXT("1.23456789012346E-05")},
               {5.6789012345E-8, XTEXT("0.000000056789012345")},
               {5.67890123456E-8, XTEXT("5.67890123456E-08")},
               {9.999999999999999E-19, XTEXT("0.000000000000000001")},
               {9.999999999999999E-20, XTEXT("1E-19")},
               {1.0000000000001235E-99, XTEXT("1.0000000000001E-99")},
               {9.99999999999996E-120, XTEXT("1E-119")},
               {1.7976931348623157E308, XTEXT("1.7976931348623E+308")},
               {std::numeric_limits<double>::infinity(), XTEXT("#NUM!")}};
  for (const auto& one : cases) EXPECT_EQ(Written(one.number), one.text);
  EXPECT_EQ(Written(-0.25, XTEXT(',')), XTEXT("-0,25"));
  EXPECT_EQ(Written(1.5E300, XTEXT(',')), XTEXT("1,5E+300"));
}

TEST(NumberText, TextFormOfEveryKind) {
  NumberTextBuffer buffer;
  EXPECT_EQ(TextForm(IntegerCell(-7), buffer), XTEXT("-7"));
  EXPECT_EQ(TextForm(BooleanCell(true), buffer), XTEXT("TRUE"));
  EXPECT_EQ(TextForm(BooleanCell(false), buffer), XTEXT("FALSE"));
  EXPECT_EQ(TextForm(ErrorCell(xlerrRef), buffer), XTEXT("#REF!"));
  EXPECT_EQ(TextForm(EmptyCell(), buffer), XTEXT(""));
  XLOPER12 array{};
  array.xltype = xltypeMulti;
  EXPECT_THROW(TextForm(array, buffer), CXlBadOperTypeException);
}

TEST(TextNumber, ReadsPlainNotation) {
  const struct {
    XStringView text;
    double number;
  } cases[] = {{XTEXT("12"), 12},
               {XTEXT("-0.5"), -0.5},
               {XTEXT("+.5"), 0.5},
               {XTEXT("5."), 5},
               {XTEXT(" \t1e3\u00A0\u3000"), 1000},
               {XTEXT("1E-3"), 0.001},
               {XTEXT("1e+02"), 100},
               {XTEXT("0000000000000000000012"), 12},
               {XTEXT("1e308"), 1e308},
               {XTEXT("1e-400"), 0},
               {XTEXT("4e-310"), 0},
               {XTEXT("0e999999999999"), 0},
               {XTEXT("9007199254740993"), 9007199254740992},
               {XTEXT("9007199254740993.00000000000000000000001"), 9007199254740994}};
  for (const auto& one : cases) EXPECT_EQ(ReadPlainNumber(one.text, XTEXT('.')), one.number);
  EXPECT_EQ(ReadPlainNumber(XTEXT("1,5"), XTEXT(',')), 1.5);
  EXPECT_EQ(ReadPlainNumber(XTEXT("1.5"), XTEXT(',')), std::nullopt);
  for (const XStringView text :
       {XTEXT(""), XTEXT(" "), XTEXT("."), XTEXT("-"), XTEXT("--1"), XTEXT("1.2.3"), XTEXT("1e"), XTEXT("1e+"),
        XTEXT("e5"), XTEXT("1 000"), XTEXT("1,000"), XTEXT("0x10"), XTEXT("inf"), XTEXT("nan"), XTEXT("10%"),
        XTEXT("\uFF11"), XTEXT("1e309"), XTEXT("-1e99999999999999999999")})
    EXPECT_EQ(ReadPlainNumber(text, XTEXT('.')), std::nullopt);
}

TEST(TextNumber, RoundsTextsOfAnyLength) {
  // Exactly halfway between 1 and the next double, then one more digit far behind.
  const XString half = XTEXT("1.00000000000000011102230246251565404236316680908203125");
  EXPECT_EQ(ReadPlainNumber(half, XTEXT('.')), 1.0);
  EXPECT_EQ(ReadPlainNumber(half + XString(30'000, XTEXT('0')) + XTEXT("1"), XTEXT('.')), std::nextafter(1.0, 2.0));
  EXPECT_EQ(ReadPlainNumber(half + XString(30'000, XTEXT('0')), XTEXT('.')), 1.0);
  EXPECT_EQ(ReadPlainNumber(XTEXT("0.") + XString(30'000, XTEXT('0')) + XTEXT("1e30001"), XTEXT('.')), 1.0);
  EXPECT_EQ(ReadPlainNumber(XTEXT("1") + XString(30'000, XTEXT('0')) + XTEXT("e-30000"), XTEXT('.')), 1.0);
}

TEST(WhiteSpace, IsTheSameOnEveryBuild) {
  int count = 0;
  for (std::uint32_t unit = 0; unit <= 0xFFFF; ++unit) count += IsWhiteSpace(static_cast<XCHAR>(unit)) ? 1 : 0;
  EXPECT_EQ(count, 25);
  EXPECT_FALSE(IsWhiteSpace(0x200B));
  EXPECT_FALSE(IsWhiteSpace(0xFEFF));
  EXPECT_EQ(TrimWhiteSpace(XTEXT("\u2003 a b\u0085\v")), XTEXT("a b"));
  EXPECT_EQ(TrimWhiteSpace(XTEXT(" \u2028")), XTEXT(""));
}

}  // namespace
}  // namespace quillmere
