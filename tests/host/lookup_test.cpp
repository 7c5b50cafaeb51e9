// MATCH and VLOOKUP: the rules as formulas, and the index of a column against plain searches.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/calculation/lookup_search.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class LookupTest : public ModelTest {
 protected:
  /// MATCH of each key of a table in the array, written as an array and standing in a column and in a row of the sheet.
  void CheckMatch(const std::string& array, const std::string& type, std::string_view cases) {
    sheet.Clear({0, kXlMaxRows - 1, 0, kXlMaxColumns - 1});
    Set("C5", array);
    const auto count = static_cast<std::int32_t>(ValueOf("=COLUMNS(" + array + ")").AsNumber());
    for (std::int32_t place = 0; place < count; ++place) sheet.Cells().Set(100 + place, 0, sheet.Get(4, 2 + place));
    const std::string row = AreaToText({4, 4, 2, 1 + count}), column = AreaToText({100, 99 + count, 0, 0});
    for (const auto& [key, result] : CasesOf(cases))
      for (const std::string& source : {array, row, column})
        EXPECT_EQ(Eval("=MATCH(" + key + "," + source + "," + type + ")"), result) << key << " in " << array;
  }
};

TEST_F(LookupTest, RecordedMatches) {
  const std::string people = R"({"Albert","Charles","Ed","Greg","Ian","Cedric"})";
  CheckMatch(people, "0", R"("ed*" -> 3 | "??eg" -> 4 | "G?eg" -> 4 | "*Ian*" -> 5 | "Ian*" -> 5)");
  CheckMatch(people, "1", R"("ed*" -> 3 | "??eg" -> #N/A | "G?eg" -> 3 | "*Ian*" -> #N/A | "Ian*" -> 6)");
  CheckMatch(people, "-1", R"("ed*" -> #N/A | "??eg" -> 6 | "G?eg" -> #N/A | "*Ian*" -> 6 | "Ian*" -> #N/A)");
  CheckMatch("{4,5,10,10,25}", "1", "10 -> 4 | 20 -> 4 | 3 -> #N/A | 25 -> 5 | 1E9 -> 5");
  CheckMatch(R"({1,"",1,"",1,"",1,"",2})", "1", "2 -> 9 | 1.5 -> 7 | 1 -> 5");
  CheckMatch("{40,20,2,1}", "1", "41 -> 4");
  CheckMatch("{empty,32,14,empty}", "1", "33 -> 3");
  CheckMatch("{33,33,33,100,33,33,33,33,33,33}", "1", "33 -> 10");
  CheckMatch("{33,33,33,33,100,33,33,33,33,33}", "1", "33 -> 4");
  CheckMatch("{33,33,33,33,33,33,5,33,100,33}", "1", "33 -> 6");
  CheckMatch("{32,32,32,31,100,32,32,32,32,32}", "1", "33 -> 4");
  CheckMatch("{33,33,33,33,33,33,33,33,33,33,8,33,33,6,33,33,4,33,33,33,33}", "1", "33 -> 16 | 10 -> 11");
  CheckMatch("{33,33,33,33,10,33,33,33,5,33,100,33,33,33,33,33,33,33,33,33,22}", "1", "33 -> 8");
  CheckMatch("{25,10,10,10,4}", "-1", "10 -> 2 | 9 -> 4 | 20 -> 1 | 3 -> 5 | 26 -> #N/A | 25 -> 1");
}

TEST_F(LookupTest, TypesNeverMix) {
  CheckMatch(R"({"1",TRUE,empty,#N/A,1,"true","",FALSE,0})", "0", R"(
      1 -> 5 | "1" -> 1 | TRUE -> 2 | "TRUE" -> 6 | FALSE -> 8 | 0 -> 9 | "" -> 7 | empty -> 9 | "*" -> 1
      "?" -> 1 | "0" -> #N/A)");
  CheckMatch(R"({empty,FALSE,1,#DIV/0!,"a",2,"b",empty,TRUE})", "1", R"(
      1.5 -> 3 | 9 -> 6 | 0 -> #N/A | "A" -> 5 | "z" -> 7 | FALSE -> 2 | TRUE -> 9)");
  CheckMatch(R"({3,1,"x",empty,2})", "1", "1 -> #N/A | 2 -> 5");
  CheckMatch(R"({"x",9,empty,TRUE,5,#N/A,"a",1})", "-1", R"(
      6 -> 2 | 2 -> 5 | 0 -> 8 | "b" -> 1 | "A" -> 7 | FALSE -> 4 | 10 -> #N/A)");
  Check("=MATCH(1+14*0.01,{1.14},0) -> #N/A | =1+14*0.01=1.14 -> TRUE | =MATCH(1.14,{1.14},0) -> 1");
}

TEST_F(LookupTest, Wildcards) {
  CheckMatch("{4567,\"4*7\",\"4567\",\"a?\",\"ab~c\",\"AbC\",\"\u00C4rger\",\"a\nb\"}", "0", R"(
      "4*7" -> 2 | "4~*7" -> 2 | "45*" -> 3 | "a~?" -> 4 | "a?" -> 4 | "ab~~c" -> 5 | "a~b~c" -> 6 | "abc~" -> 6
      "?b?" -> 6 | UNICHAR(228)&"*" -> 7 | "a?b" -> 8 | "b*" -> #N/A | "*b" -> 8 | "*a*b*c*" -> 5
      "??????????" -> #N/A)");
  Check(R"(
      =MATCH("*a*a*a*a*b",{"x"}&REPT("a",30000),0) -> #N/A | =MATCH(REPT("*",255),{1,""},0) -> 2
      =MATCH(REPT("a",255),{"b","a"}&REPT("a",254),0) -> 2 | =VLOOKUP(REPT("a",256),A1:B2,1) -> #VALUE!
      =MATCH(REPT("a",256),{"b","a"}&REPT("a",255),0) -> #VALUE!)");
}

TEST_F(LookupTest, MatchReadsItsArguments) {
  Set("A1", "{10;20;empty;30}");
  Set("C1", "{20,empty;5,30}");
  Check(R"(
      =MATCH(25,A1:A4) -> 2 | =MATCH(20,A1:A4,7) -> 2 | =MATCH(25,{30,20},-0.5) -> 1 | =MATCH(20,A1:A4,) -> 2
      =MATCH(25,A1:A4,) -> #N/A | =MATCH(25,A1:A4,Z9) -> #N/A | =MATCH(25,A1:A4,"1") -> 2
      =MATCH(25,A1:A4,TRUE) -> 2 | =MATCH(25,A1:A4,FALSE) -> #N/A | =MATCH(25,A1:A4,"x") -> #REF!
      =MATCH(25,A1:A4,#DIV/0!) -> #REF! | =MATCH(10,A1:B4,0) -> #N/A | =MATCH(1,{1,2;3,4},1) -> #N/A
      =MATCH(10,A1,0) -> 1 | =MATCH(5,5,0) -> 1 | =MATCH(6,5) -> 1 | =MATCH(5,"5",0) -> #VALUE!
      =MATCH(5,#REF!,0) -> #REF! | =MATCH(5,(A1:A2,C1:C2),0) -> #VALUE! | =MATCH(#DIV/0!,A1:A4,0) -> #DIV/0!
      =MATCH(0,A1:A9,0) -> #N/A | =MATCH(B1,A1:A9,0) -> #N/A | =MATCH(,{5,0},0) -> 2 | =MATCH("",A1:A9,0) -> #N/A
      =MATCH(C1:D2,A1:A4,0) -> {2,#N/A;#N/A,4} | =MATCH("b",{"a";"B"},{0,1,-1}) -> {2,2,#N/A}
      =MATCH(1) -> !MATCH at column 2 takes 2 to 3 arguments, found 1)");
}

TEST_F(LookupTest, Vlookup) {
  Set("A1", "{1,\"one\",TRUE;3,empty,2;3,\"three\",#NUM!;\"Key\",\"text\",5;#N/A,6,7;TRUE,8,9}");
  names[XTEXT("parts")] = *ParseLiteral(R"({"BLA16";"BLA23567";"BLA245";"BLA";"BLATST234";"MEIER3456";"SOMEBLA"})");
  Check(R"(
      =VLOOKUP(3,A1:C6,2,FALSE) -> empty | =VLOOKUP(3,A1:C6,2,FALSE)&"" -> "" | =VLOOKUP(3,A:C,2) -> "three"
      =VLOOKUP(2,A1:C6,2) -> "one" | =VLOOKUP(2,A1:C6,2,) -> #N/A | =VLOOKUP(2,A1:C6,2,Z9) -> #N/A
      =VLOOKUP(2,A1:C6,2,-1) -> "one" | =VLOOKUP(2,A1:C6,2,"true") -> "one" | =VLOOKUP(2,A1:C6,2,"FALSE") -> #N/A
      =VLOOKUP(1,A1:C6,2,"1") -> #VALUE! | =VLOOKUP(1,A1:C6,2,"") -> #VALUE!
      =VLOOKUP(1,A1:C6,2,#DIV/0!) -> #DIV/0! | =VLOOKUP(0,A1:C6,2) -> #N/A | =VLOOKUP("K*",A1:C6,2,0) -> "text"
      =VLOOKUP("key",A1:C6,{3,1},0) -> {5,"Key"} | =VLOOKUP({1;9;"key"},A1:C6,3,0) -> {TRUE;#N/A;5}
      =VLOOKUP(TRUE,A1:C6,3,0) -> 9 | =VLOOKUP(#NULL!,A1:C6,2,0) -> #NULL! | =VLOOKUP(Z9,{0,"zero"},2,0) -> "zero"
      =VLOOKUP(3,A1:C6,3) -> #NUM! | =VLOOKUP(1,A1:C6,0) -> #VALUE! | =VLOOKUP(1,A1:C6,-1) -> #VALUE!
      =VLOOKUP(1,A1:C6,0.9) -> #VALUE! | =VLOOKUP(1,A1:C6,FALSE) -> #VALUE! | =VLOOKUP(1,A1:C6,) -> #VALUE!
      =VLOOKUP(1,A1:C6,4) -> #REF! | =VLOOKUP(1,A1:C6,1E300) -> #REF! | =VLOOKUP(1,A1:C6,3.9) -> TRUE
      =VLOOKUP(1,A1:C6,"2") -> "one" | =VLOOKUP(1,A1:C6,"29.9e-1") -> "one" | =VLOOKUP(1,A1:C6,TRUE) -> 1
      =VLOOKUP(1,A1:C6,"x") -> #VALUE! | =VLOOKUP(1,A1:C6,#NUM!) -> #NUM! | =VLOOKUP(9,A1:C6,4,FALSE) -> #N/A
      =VLOOKUP(2,{1,"a";2,"b"},2,0) -> "b" | =VLOOKUP(1,(A1:B2,C1:C2),2) -> #VALUE!
      =MATCH(VLOOKUP("Bla*",parts,1,TRUE),parts,0) -> 4 | =VLOOKUP("Bla*",parts,1,FALSE) -> "BLA16")");
}

/// A column of random cells with runs of equal ones, long ones too.
class RandomColumn : public ModelTest {
 protected:
  static constexpr std::int32_t kRows = 5000;
  static constexpr std::int32_t kColumn = 3;

  int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  Value RandomKey() {
    switch (Below(8)) {
      case 0:
        return Value::Boolean(Below(2) == 0);
      case 1:
      case 2:
        return Value::Text(WideText((Below(2) ? "k" : "K") + std::to_string(Below(kinds_))));
      default:
        return Value::Number(Below(9) == 0 ? -0.0 : Below(kinds_));
    }
  }
  void Write(std::int32_t first, std::int32_t count) {
    const Value value = Below(6) == 0 ? Value::Error(xlerrNA) : Below(6) == 0 ? Value() : RandomKey();
    sheet.Set({first, std::min(first + count, kRows) - 1, kColumn, kColumn}, value);
  }
  void Fill() {
    for (std::int32_t row = 0, count = 0; row < kRows; row += count) {
      count = Below(20) == 0 ? 300 + Below(900) : 1 + Below(4);
      Write(row, count);
    }
  }
  /// One random search in a part of the column, which may go by the index, and in a copy of it, which has none.
  void SearchOnce() {
    const std::int32_t first = Below(3) == 0 ? 0 : Below(kRows);
    const Area part{first, first + Below(kRows - first), kColumn, kColumn};
    // Often what stands where an index begins to be asked, or right behind the part.
    constexpr std::int32_t kShortSearch = 64;
    const Value there = Value::OfCell(sheet.Get(Below(2) == 0 ? first + kShortSearch : part.lastRow + 1, kColumn));
    const Value key = Below(3) != 0 || there.IsEmpty() || there.IsError() ? RandomKey() : there;
    const auto order = static_cast<LookupOrder>(Below(3));
    const ArrayPtr copy = sheet.ReadArray(part);
    ASSERT_EQ(FindInLine(key.AsCell(), CellLine(sheet, part), order),
              FindInLine(key.AsCell(), CellLine::ColumnOf(*copy, 0), order))
        << PrintLiteral(key) << " in " << AreaToText(part) << ", order " << static_cast<int>(order);
  }
  bool HasIndex() const { return sheet.Indexes().Find(sheet.Cells(), kColumn) != nullptr; }

  int kinds_ = 400;
  std::mt19937 random_{17};
};

TEST_F(RandomColumn, AnIndexFindsWhatASearchFinds) {
  int indexed = 0;
  for (int round = 0; round < 12; ++round) {
    kinds_ = round % 3 == 0 ? 3 : 400;
    Fill();
    for (int i = 0; i < 1000; ++i) {
      SearchOnce();
      indexed += HasIndex() ? 1 : 0;
      // A change throws the index away: the next searches must see it.
      if (Below(200) != 0) continue;
      Write(Below(kRows), 1);
      ASSERT_FALSE(HasIndex());
    }
  }
  EXPECT_GT(indexed, 4000) << "too few searches went by an index to tell anything";
  for (int i = 0; i < 1000 && !HasIndex(); ++i) SearchOnce();
  Set("A1:C9", "5");
  EXPECT_TRUE(HasIndex()) << "other columns leave it";
}

TEST_F(RandomColumn, ThreadsSearchAtOnce) {
  Fill();
  const CellLine line(sheet, {1, kRows - 1, kColumn, kColumn});
  std::vector<std::vector<std::optional<std::int32_t>>> found(4);
  std::vector<std::thread> threads;
  for (auto& places : found)
    threads.emplace_back([&] {
      for (int i = 0; i < 64; ++i) places.push_back(FindInLine(CellView::Number(i), line, LookupOrder::kUnsorted));
    });
  for (std::thread& thread : threads) thread.join();
  EXPECT_TRUE(HasIndex());
  for (const auto& places : found) EXPECT_EQ(places, found[0]);
}

}  // namespace
}  // namespace qcalc
