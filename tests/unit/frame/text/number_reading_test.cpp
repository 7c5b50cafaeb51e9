// Texts and numbers where no script shows them: what is refused, what only doubles tell apart, white space.
#include "frame/text/number_reading.h"

#include <gtest/gtest.h>

#include <cmath>

#include "frame/convert/cell_text.h"
#include "frame/text/white_space.h"
#include "frame/values/cell.h"
#include "tests/unit/fixtures/raw_values.h"

namespace quillmere {
namespace {

TEST(TextNumber, IsADoubleInPlainNotation) {
  const auto read = [](XStringView text, XCHAR separator = XTEXT('.')) { return ReadPlainNumber(text, separator); };
  EXPECT_EQ(read(XTEXT("1e308")), 1e308);
  EXPECT_EQ(read(XTEXT("4e-310")), 0);
  EXPECT_EQ(read(XTEXT("9007199254740993")), 9007199254740992);
  EXPECT_EQ(read(XTEXT("-1,5"), XTEXT(',')), -1.5);
  EXPECT_EQ(read(XTEXT("1.5"), XTEXT(',')), std::nullopt);
  for (const XStringView text :
       {XTEXT(""), XTEXT(" "), XTEXT("."), XTEXT("-"), XTEXT("--1"), XTEXT("1.2.3"), XTEXT("1e"), XTEXT("1e+"),
        XTEXT("e5"), XTEXT("1 000"), XTEXT("1,000"), XTEXT("0x10"), XTEXT("inf"), XTEXT("nan"), XTEXT("10%"),
        XTEXT("\uFF11"), XTEXT("2e308"), XTEXT("-1e99999999999999999999")})
    EXPECT_EQ(read(text), std::nullopt);

  // Exactly halfway between 1 and the next double, then one more digit far behind.
  const XString half = XTEXT("1.00000000000000011102230246251565404236316680908203125"), zeros(30'000, XTEXT('0'));
  EXPECT_EQ(read(half + zeros), 1.0);
  EXPECT_EQ(read(half + zeros + XTEXT("1")), std::nextafter(1.0, 2.0));
  EXPECT_EQ(read(XTEXT("0.") + zeros + XTEXT("1e30001")), 1.0);
  EXPECT_EQ(read(XTEXT("1") + zeros + XTEXT("e-30000")), 1.0);
}

TEST(TextForm, OfAnErrorIsItsNameAndAnArrayHasNone) {
  NumberTextBuffer buffer;
  EXPECT_EQ(TextForm(ErrorCell(xlerrRef), buffer), XTEXT("#REF!"));
  EXPECT_THROW(TextForm(testing::RawValue(xltypeMulti), buffer), CXlBadOperTypeException);
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
