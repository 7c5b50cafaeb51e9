#include "frame/errors/exceptions.h"

#include <gtest/gtest.h>

#include "frame/text/error_text.h"
#include "xlcall/xlcall.h"

namespace quillmere {
namespace {

TEST(Exceptions, CarryTheirMessageWideAndNarrow) {
  const CXlRuntimeException accented(XTEXT("caf\u00E9 \u20AC \U0001F600"));
  EXPECT_EQ(accented.Message(), XTEXT("caf\u00E9 \u20AC \U0001F600"));
  EXPECT_STREQ(accented.what(), "caf\xC3\xA9 \xE2\x82\xAC \xF0\x9F\x98\x80");
  const XCHAR loneHalf[] = {XTEXT('a'), static_cast<XCHAR>(0xD83D), XTEXT('b')};
  EXPECT_STREQ(CXlRuntimeException(XStringView(loneHalf, 3)).what(),
               "a\xEF\xBF\xBD"
               "b");
}

TEST(Exceptions, NameTheirCodes) {
  EXPECT_EQ(CXlErrorException(45).Message(), XTEXT("Threw Excel error Unknown"));
  EXPECT_EQ(CXlStructuredException(0x1F).Message(), XTEXT("'C' exception 0x1F"));
  const CXlComException call(XTEXT("Range"), static_cast<std::int32_t>(0x8001010A));
  EXPECT_EQ(call.Message(), XTEXT("Range failed with error code 0x8001010A"));
  EXPECT_EQ(CXlComException(XTEXT(""), 1).Message(), XTEXT("COM call failed"));
}

TEST(ErrorText, ReadsBothWays) {
  EXPECT_EQ(ErrorText8(44), "Unknown");
  EXPECT_EQ(ErrorCodeOf(XTEXT("#n/a")), xlerrNA);
  EXPECT_EQ(ErrorCodeOf(XTEXT("#N/A ")), std::nullopt);
  EXPECT_EQ(ErrorCodeOf(XTEXT("Unknown")), std::nullopt);
}

}  // namespace
}  // namespace quillmere
