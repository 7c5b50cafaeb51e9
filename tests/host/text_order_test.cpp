// The order of texts in operators and sorted lookups. It is that of American English, which the tests run in.
#include "host/text/text_order.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/text/collation.h"
#include "host/text/letter_case.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class TextOrderTest : public ModelTest {};

TEST_F(TextOrderTest, AccentedLettersStandBesidePlainOnes) {
  const std::string words = R"({"","&","1","10","9","a","b","coop","co-op","coops","cote","coté","côte","côté",)"
                            R"("Élan","elbow","Émile","zoé","Жук","я"})";
  const auto count = static_cast<int>(ValueOf("=COLUMNS(" + words + ")").AsNumber());
  for (int place = 1; place <= count; ++place) {
    names[XTEXT("word")] = ValueOf("=INDEX(" + words + ",1," + std::to_string(place) + ")");
    EXPECT_EQ(Eval("=MATCH(word," + words + ",1)"), std::to_string(place));
    EXPECT_EQ(Eval("=SUM(IF(word>" + words + ",1,0))"), std::to_string(place - 1));
  }
  Check(R"(
      ="É"="é" -> TRUE | ="Ж"="ж" -> TRUE | ="Ǆ"="ǆ" -> TRUE | ="ẞ"="ß" -> TRUE | ="ß"="ss" -> FALSE
      ="é"="e" -> FALSE | ="é"="e"&UNICHAR(769) -> FALSE | ="co-op"="coop" -> FALSE | ="a-b"="a'b" -> FALSE
      =MATCH("ÉLAN",{"elan","élan"},0) -> 2 | =MATCH("É?A*",{"elan","élan"},0) -> 2
      =MATCH("ss",{"ß","ss"},0) -> 2 | =VLOOKUP("ÉMILE",{"Elan",1;"émile",2},2,FALSE) -> 2
      =MATCH("eM",{"zoé","Émile","élan","a"},-1) -> 2)");
}

// Much is compared without the system; what is equal is decided without it, too.
TEST_F(TextOrderTest, IsOneOrderWithAndWithoutTheSystem) {
  std::mt19937 random(3);
  const auto draw = [&random](XStringView units) {
    XString text(random() % 6, XCHAR{});
    for (XCHAR& unit : text) unit = units[random() % units.size()];
    return text;
  };
  std::vector<XString> texts;
  for (int i = 0; i < 300; ++i)
    texts.push_back(draw(i % 2 ? XTEXT("aAbzZ 019") : XTEXT("aAlLéÉ\u0301\u030A\u00B7ß-'_ 1æ")));
  std::stable_sort(texts.begin(), texts.end(),
                   [](const XString& left, const XString& right) { return CompareTexts(left, right) < 0; });
  for (std::size_t i = 0; i < texts.size(); ++i)
    for (std::size_t j = i; j < texts.size(); ++j) {
      EXPECT_TRUE(CompareTexts(texts[i], texts[j]) <= 0) << ToUtf8(texts[i]) << " | " << ToUtf8(texts[j]);
      EXPECT_TRUE(CompareInLanguage(FoldCase(texts[i]), FoldCase(texts[j])) <= 0)
          << ToUtf8(texts[i]) << " | " << ToUtf8(texts[j]);
      EXPECT_EQ(CompareTexts(texts[i], texts[j]) == 0, EqualsIgnoringCase(texts[i], texts[j]));
    }
}

}  // namespace
}  // namespace qcalc
