#include "frame/text/string_formatter.h"

#include <gtest/gtest.h>

#include <limits>
#include <optional>

#include "frame/errors/messages.h"

namespace quillmere::psl {
namespace {

/// The fault that a pattern is refused with; nothing when it formats.
std::optional<FormatFault> FaultOf(XStringView pattern) {
  try {
    Format(pattern, {XTEXT("zero"), XTEXT("one")});
  } catch (const StringFormatterError& error) {
    EXPECT_STREQ(error.what(), "Error in string format");
    return error.Fault();
  }
  return std::nullopt;
}

TEST(StringFormatter, ReplacesPlaceholdersAndDoubledBraces) {
  EXPECT_EQ(Format(XTEXT(""), {}), XTEXT(""));
  EXPECT_EQ(Format(XTEXT("plain {1}{0}{1}, a{0}b{1}c, {00001}"), {XTEXT("zero"), XTEXT("one")}),
            XTEXT("plain onezeroone, azerobonec, one"));
  EXPECT_EQ(Format(XTEXT("{{0}}, {{{0}}}, }}{{, {0}}}"), {XTEXT("zero")}), XTEXT("{0}, {zero}, }{, zero}"));
  EXPECT_EQ(Format("{0}-{1}", {"eight", -12}), "eight--12");
  EXPECT_EQ(Format(XTEXT("{0} {1}"), {XTEXT("{1}"), XTEXT("}{{")}), XTEXT("{1} }{{")) << "they stand for themselves";
  EXPECT_EQ(Format(XTEXT("{0} {1} {2}"), {std::numeric_limits<std::int64_t>::min(),
                                          std::numeric_limits<std::uint64_t>::max(), std::int16_t{0}}),
            XTEXT("-9223372036854775808 18446744073709551615 0"));
}

TEST(StringFormatter, RefusesMalformedPatterns) {
  for (const XStringView pattern : {XTEXT("{"), XTEXT("}"), XTEXT("{0"), XTEXT("{a"), XTEXT("0}"), XTEXT("{0{1}}"),
                                    XTEXT("{{{"), XTEXT("{0}}"), XTEXT("a}b")})
    EXPECT_EQ(FaultOf(pattern), FormatFault::kUnbalancedBrace);
  for (const XStringView pattern :
       {XTEXT("{}"), XTEXT("{a}"), XTEXT("{0a}"), XTEXT("{ 0}"), XTEXT("{-1}"), XTEXT("{0x1}")})
    EXPECT_EQ(FaultOf(pattern), FormatFault::kBadIndex);
  for (const XStringView pattern :
       {XTEXT("{2}"), XTEXT("{65535}"), XTEXT("{65536}"), XTEXT("{4294967296}"), XTEXT("{18446744073709551616}")})
    EXPECT_EQ(FaultOf(pattern), FormatFault::kIndexOutOfRange);
}

TEST(Messages, FormatByNumber) {
  EXPECT_EQ(FormatCatalogue(MessageId::kScalarNotInitialized, XTEXT("Sorted"), MessageText(MessageId::kLongInteger)),
            XTEXT("Sorted is not initialized. Expected long integer."));
  EXPECT_EQ(CatalogueText(66), XTEXT("Message #66 not found"));
  EXPECT_EQ(CatalogueText(-1), XTEXT("Message #-1 not found"));
  EXPECT_THROW(FormatCatalogue(MessageId::kExpectedFor, XTEXT("only one")), StringFormatterError);
}

}  // namespace
}  // namespace quillmere::psl
