// MATCH and VLOOKUP: the rules as formulas, and the searches against a plain model of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include "host/calculation/lookup_search.h"
#include "host/text/letter_case.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

using Cases = std::initializer_list<std::pair<std::string, std::string>>;

class LookupTest : public ModelTest {
 protected:
  void Check(const Cases& cases) {
    for (const auto& [formula, result] : cases) EXPECT_EQ(Eval(formula), result) << formula;
  }
  /// MATCH of each lookup value in the array, written as an array and standing in a column and in a row of the sheet.
  void CheckMatch(const std::string& array, const std::string& type, const Cases& cases) {
    sheet.Clear({0, kXlMaxRows - 1, 0, kXlMaxColumns - 1});
    Set("C5", array);
    const auto count = static_cast<std::int32_t>(ValueOf("=COLUMNS(" + array + ")").AsNumber());
    for (std::int32_t place = 0; place < count; ++place) sheet.Cells().Set(100 + place, 0, sheet.Get(4, 2 + place));
    const std::string row = AreaToText({4, 4, 2, 1 + count}), column = AreaToText({100, 99 + count, 0, 0});
    for (const auto& [key, result] : cases)
      for (const std::string& source : {array, row, column})
        EXPECT_EQ(Eval("=MATCH(" + key + "," + source + "," + type + ")"), result) << key << " in " << array;
  }
};

TEST_F(LookupTest, RecordedMatchesOfTexts) {
  const std::string people = "{\"Albert\",\"Charles\",\"Ed\",\"Greg\",\"Ian\",\"Cedric\"}";
  CheckMatch(people, "0",
             {{"\"ed*\"", "3"}, {"\"??eg\"", "4"}, {"\"G?eg\"", "4"}, {"\"*Ian*\"", "5"}, {"\"Ian*\"", "5"}});
  CheckMatch(people, "1",
             {{"\"ed*\"", "3"}, {"\"??eg\"", "#N/A"}, {"\"G?eg\"", "3"}, {"\"*Ian*\"", "#N/A"}, {"\"Ian*\"", "6"}});
  CheckMatch(people, "-1",
             {{"\"ed*\"", "#N/A"}, {"\"??eg\"", "6"}, {"\"G?eg\"", "#N/A"}, {"\"*Ian*\"", "6"}, {"\"Ian*\"", "#N/A"}});
}

TEST_F(LookupTest, RecordedApproximateMatches) {
  const auto repeat = [](int count, const char* text) {
    std::string all;
    for (int i = 0; i < count; ++i) all += text;
    return all;
  };
  CheckMatch("{4,5,10,10,25}", "1", {{"10", "4"}, {"20", "4"}, {"3", "#N/A"}, {"25", "5"}, {"1E9", "5"}});
  CheckMatch("{1,\"\",1,\"\",1,\"\",1,\"\",2}", "1", {{"2", "9"}, {"1.5", "7"}, {"1", "5"}});
  CheckMatch("{40,20,2,1}", "1", {{"41", "4"}});
  CheckMatch("{empty,32,14,empty}", "1", {{"33", "3"}});
  CheckMatch("{33,33,33,100,33,33,33,33,33,33}", "1", {{"33", "10"}});
  CheckMatch("{33,33,33,33,100,33,33,33,33,33}", "1", {{"33", "4"}});
  CheckMatch("{33,33,33,33,33,33,5,33,100,33}", "1", {{"33", "6"}});
  CheckMatch("{32,32,32,31,100,32,32,32,32,32}", "1", {{"33", "4"}});
  CheckMatch("{" + repeat(10, "33,") + "8,33,33,6,33,33,4,33,33,33,33}", "1", {{"33", "16"}, {"10", "11"}});
  CheckMatch("{33,33,33,33,10,33,33,33,5,33,100," + repeat(9, "33,") + "22}", "1", {{"33", "8"}});
  CheckMatch("{25,10,10,10,4}", "-1", {{"10", "2"}, {"9", "4"}, {"20", "1"}, {"3", "5"}, {"26", "#N/A"}, {"25", "1"}});
}

TEST_F(LookupTest, TypesNeverMix) {
  CheckMatch("{\"1\",TRUE,empty,#N/A,1,\"true\",\"\",FALSE,0}", "0",
             {{"1", "5"},
              {"\"1\"", "1"},
              {"TRUE", "2"},
              {"\"TRUE\"", "6"},
              {"FALSE", "8"},
              {"0", "9"},
              {"\"\"", "7"},
              {"empty", "9"},
              {"\"*\"", "1"},
              {"\"?\"", "1"},
              {"\"0\"", "#N/A"}});
  CheckMatch("{empty,FALSE,1,#DIV/0!,\"a\",2,\"b\",empty,TRUE}", "1",
             {{"1.5", "3"}, {"9", "6"}, {"0", "#N/A"}, {"\"A\"", "5"}, {"\"z\"", "7"}, {"FALSE", "2"}, {"TRUE", "9"}});
  CheckMatch("{3,1,\"x\",empty,2}", "1", {{"1", "#N/A"}, {"2", "5"}});
  CheckMatch("{\"x\",9,empty,TRUE,5,#N/A,\"a\",1}", "-1",
             {{"6", "2"}, {"2", "5"}, {"0", "8"}, {"\"b\"", "1"}, {"\"A\"", "7"}, {"FALSE", "4"}, {"10", "#N/A"}});
  Check({{"=MATCH(1+14*0.01,{1.14},0)", "#N/A"}, {"=1+14*0.01=1.14", "TRUE"}, {"=MATCH(1.14,{1.14},0)", "1"}});
}

TEST_F(LookupTest, Wildcards) {
  CheckMatch("{4567,\"4*7\",\"4567\",\"a?\",\"ab~c\",\"AbC\",\"\u00C4rger\",\"a\nb\"}", "0",
             {{"\"4*7\"", "2"},
              {"\"4~*7\"", "2"},
              {"\"45*\"", "3"},
              {"\"a~?\"", "4"},
              {"\"a?\"", "4"},
              {"\"ab~~c\"", "5"},
              {"\"a~b~c\"", "6"},
              {"\"abc~\"", "6"},
              {"\"?b?\"", "6"},
              {"\"\u00E4*\"", "7"},
              {"\"a?b\"", "8"},
              {"\"b*\"", "#N/A"},
              {"\"*b\"", "8"},
              {"\"*a*b*c*\"", "5"},
              {"\"??????????\"", "#N/A"}});
  Check({{"=MATCH(\"*a*a*a*a*b\",{\"x\"}&REPT(\"a\",30000),0)", "#N/A"},
         {"=MATCH(REPT(\"*\",255),{1,\"\"},0)", "2"},
         {"=MATCH(REPT(\"a\",255),{\"b\",\"a\"}&REPT(\"a\",254),0)", "2"},
         {"=MATCH(REPT(\"a\",256),{\"b\",\"a\"}&REPT(\"a\",255),0)", "#VALUE!"},
         {"=VLOOKUP(REPT(\"a\",256),A1:B2,1)", "#VALUE!"}});
}

TEST_F(LookupTest, MatchReadsItsArguments) {
  Set("A1", "{10;20;empty;30}");
  Set("C1", "{20,empty;5,30}");
  Check({{"=MATCH(25,A1:A4)", "2"},
         {"=MATCH(20,A1:A4,7)", "2"},
         {"=MATCH(25,{30,20},-0.5)", "1"},
         {"=MATCH(20,A1:A4,)", "2"},
         {"=MATCH(25,A1:A4,)", "#N/A"},
         {"=MATCH(25,A1:A4,Z9)", "#N/A"},
         {"=MATCH(25,A1:A4,\"1\")", "2"},
         {"=MATCH(25,A1:A4,TRUE)", "2"},
         {"=MATCH(25,A1:A4,FALSE)", "#N/A"},
         {"=MATCH(25,A1:A4,\"x\")", "#REF!"},
         {"=MATCH(25,A1:A4,#DIV/0!)", "#REF!"},
         {"=MATCH(10,A1:B4,0)", "#N/A"},
         {"=MATCH(1,{1,2;3,4},1)", "#N/A"},
         {"=MATCH(10,A1,0)", "1"},
         {"=MATCH(5,5,0)", "1"},
         {"=MATCH(6,5)", "1"},
         {"=MATCH(5,\"5\",0)", "#VALUE!"},
         {"=MATCH(5,#REF!,0)", "#REF!"},
         {"=MATCH(5,(A1:A2,C1:C2),0)", "#VALUE!"},
         {"=MATCH(#DIV/0!,A1:A4,0)", "#DIV/0!"},
         {"=MATCH(0,A1:A9,0)", "#N/A"},
         {"=MATCH(B1,A1:A9,0)", "#N/A"},
         {"=MATCH(,{5,0},0)", "2"},
         {"=MATCH(\"\",A1:A9,0)", "#N/A"},
         {"=MATCH(C1:D2,A1:A4,0)", "{2,#N/A;#N/A,4}"},
         {"=MATCH(\"b\",{\"a\";\"B\"},{0,1,-1})", "{2,2,#N/A}"},
         {"=MATCH(1)", "!MATCH at column 2 takes 2 to 3 arguments, found 1"}});
}

TEST_F(LookupTest, Vlookup) {
  Set("A1", "{1,\"one\",TRUE;3,empty,2;3,\"three\",#NUM!;\"Key\",\"text\",5;#N/A,6,7;TRUE,8,9}");
  const std::string parts = "{\"BLA16\";\"BLA23567\";\"BLA245\";\"BLA\";\"BLATST234\";\"MEIER3456\";\"SOMEBLA\"}";
  Check({{"=VLOOKUP(3,A1:C6,2,FALSE)", "empty"},
         {"=VLOOKUP(3,A1:C6,2,FALSE)&\"\"", "\"\""},
         {"=VLOOKUP(3,A:C,2)", "\"three\""},
         {"=VLOOKUP(2,A1:C6,2)", "\"one\""},
         {"=VLOOKUP(2,A1:C6,2,)", "#N/A"},
         {"=VLOOKUP(2,A1:C6,2,Z9)", "#N/A"},
         {"=VLOOKUP(2,A1:C6,2,-1)", "\"one\""},
         {"=VLOOKUP(2,A1:C6,2,\"true\")", "\"one\""},
         {"=VLOOKUP(2,A1:C6,2,\"FALSE\")", "#N/A"},
         {"=VLOOKUP(1,A1:C6,2,\"1\")", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,2,\"\")", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,2,#DIV/0!)", "#DIV/0!"},
         {"=VLOOKUP(0,A1:C6,2)", "#N/A"},
         {"=VLOOKUP(\"K*\",A1:C6,2,0)", "\"text\""},
         {"=VLOOKUP(\"key\",A1:C6,{3,1},0)", "{5,\"Key\"}"},
         {"=VLOOKUP({1;9;\"key\"},A1:C6,3,0)", "{TRUE;#N/A;5}"},
         {"=VLOOKUP(TRUE,A1:C6,3,0)", "9"},
         {"=VLOOKUP(#NULL!,A1:C6,2,0)", "#NULL!"},
         {"=VLOOKUP(Z9,{0,\"zero\"},2,0)", "\"zero\""},
         {"=VLOOKUP(3,A1:C6,3)", "#NUM!"},
         {"=VLOOKUP(1,A1:C6,0)", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,-1)", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,0.9)", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,FALSE)", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,)", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,4)", "#REF!"},
         {"=VLOOKUP(1,A1:C6,1E300)", "#REF!"},
         {"=VLOOKUP(1,A1:C6,3.9)", "TRUE"},
         {"=VLOOKUP(1,A1:C6,\"2\")", "\"one\""},
         {"=VLOOKUP(1,A1:C6,\"29.9e-1\")", "\"one\""},
         {"=VLOOKUP(1,A1:C6,TRUE)", "1"},
         {"=VLOOKUP(1,A1:C6,\"x\")", "#VALUE!"},
         {"=VLOOKUP(1,A1:C6,#NUM!)", "#NUM!"},
         {"=VLOOKUP(9,A1:C6,4,FALSE)", "#N/A"},
         {"=VLOOKUP(2,{1,\"a\";2,\"b\"},2,0)", "\"b\""},
         {"=VLOOKUP(1,(A1:B2,C1:C2),2)", "#VALUE!"},
         {"=MATCH(VLOOKUP(\"Bla*\"," + parts + ",1,TRUE)," + parts + ",0)", "4"},
         {"=VLOOKUP(\"Bla*\"," + parts + ",1,FALSE)", "\"BLA16\""}});
}

// A column of random cells on a sheet, copied into plain values to be searched by the rules word by word.
class RandomColumn : public ModelTest {
 protected:
  static constexpr std::int32_t kRows = 5000;
  static constexpr std::int32_t kColumn = 3;

  Value RandomValue() {
    switch (Below(12)) {
      case 0:
        return {};
      case 1:
        return Value::Error(xlerrNA);
      case 2:
        return Value::Boolean(Below(2) == 0);
      case 3:
      case 4:
      case 5:
        return Value::Text(Wide(std::string(1, Below(2) ? 'k' : 'K') + std::to_string(Below(kinds_))));
      default:
        return Value::Number(Below(9) == 0 ? -0.0 : Below(kinds_));
    }
  }
  int Below(int bound) { return static_cast<int>(random_() % static_cast<unsigned>(bound)); }
  void Write(std::int32_t row, const Value& value) {
    sheet.Set({row, row, kColumn, kColumn}, value);
    column_[static_cast<std::size_t>(row)] = value;
  }
  // Runs of equal cells, long ones too; ordered by number if asked for.
  void Fill(bool sorted) {
    std::vector<Value> values;
    while (values.size() < kRows) {
      const Value value = RandomValue();
      const int length = Below(20) == 0 ? 300 + Below(900) : 1 + Below(4);
      for (int i = 0; i < length; ++i) values.push_back(value);
    }
    values.resize(kRows);
    if (sorted)
      std::stable_sort(values.begin(), values.end(), [](const Value& left, const Value& right) {
        return left.IsNumber() && right.IsNumber() && left.AsNumber() < right.AsNumber();
      });
    for (std::int32_t row = 0; row < kRows; ++row) Write(row, values[static_cast<std::size_t>(row)]);
  }

  const Value& Cell(std::int32_t first, std::int32_t place) const {
    return column_[static_cast<std::size_t>(first + place)];
  }
  // Less, equal, greater as -1, 0, 1; the random texts have no marks and their numbers few digits.
  static int Order(const Value& key, const Value& cell) {
    const auto sign = [](auto left, auto right) { return left < right ? -1 : left > right ? 1 : 0; };
    if (key.IsText()) return sign(FoldCase(key.AsText()), FoldCase(cell.AsText()));
    return key.IsNumber() ? sign(key.AsNumber(), cell.AsNumber()) : sign(key.AsBoolean(), cell.AsBoolean());
  }
  bool IsEqual(const Value& key, const Value& cell) const { return key.Kind() == cell.Kind() && Order(key, cell) == 0; }

  std::int32_t Unsorted(const Value& key, std::int32_t first, std::int32_t count) const {
    for (std::int32_t place = 0; place < count; ++place)
      if (IsEqual(key, Cell(first, place))) return place;
    return -1;
  }
  std::int32_t Ascending(const Value& key, std::int32_t first, std::int32_t count) const {
    std::int32_t low = -1, high = count;
    while (high - low > 1) {
      std::int32_t middle = low + (high - low) / 2;
      if (Cell(first, middle).Kind() != key.Kind()) {
        std::int32_t next = middle + 1;
        while (next < high && Cell(first, next).Kind() != key.Kind()) ++next;
        if (next == high || (next == high - 1 && Order(key, Cell(first, next)) < 0)) {
          high = middle;
          continue;
        }
        middle = next;
      }
      const int order = Order(key, Cell(first, middle));
      if (order == 0) {
        while (middle + 1 < high && IsEqual(key, Cell(first, middle + 1))) ++middle;
        return middle;
      }
      (order < 0 ? high : low) = middle;
    }
    return low;
  }
  std::int32_t Descending(const Value& key, std::int32_t first, std::int32_t count) const {
    std::int32_t best = -1;
    for (std::int32_t place = 0; place < count; ++place) {
      if (Cell(first, place).Kind() != key.Kind()) continue;
      const int order = Order(key, Cell(first, place));
      if (order > 0) break;
      best = place;
      if (order == 0) break;
    }
    return best;
  }

  // One random lookup in a random part of the column, by the sheet and by the model.
  testing::AssertionResult SearchesAlike() {
    Value key = RandomValue();
    while (key.IsEmpty() || key.IsError()) key = RandomValue();
    const std::int32_t first = Below(3) == 0 ? 0 : Below(kRows);
    const std::int32_t last = first + Below(Below(2) == 0 ? kRows - first : std::min(30, kRows - first));
    const CellLine line(sheet, {first, last, kColumn, kColumn});
    const std::int32_t count = last - first + 1;
    const LookupOrder order = static_cast<LookupOrder>(Below(3));
    const std::int32_t expected = order == LookupOrder::kUnsorted    ? Unsorted(key, first, count)
                                  : order == LookupOrder::kAscending ? Ascending(key, first, count)
                                                                     : Descending(key, first, count);
    const std::int32_t found = FindInLine(key.AsCell(), line, order).value_or(-1);
    if (found == expected) return testing::AssertionSuccess();
    return testing::AssertionFailure() << PrintLiteral(key) << " in rows " << first << " to " << last << ", order "
                                       << static_cast<int>(order) << ": " << found << ", not " << expected;
  }
  bool HasIndex() const { return sheet.Indexes().Find(sheet.Cells(), kColumn) != nullptr; }

  int kinds_ = 40;
  std::mt19937 random_{17};
  std::vector<Value> column_{kRows};
};

TEST_F(RandomColumn, EveryPartIsSearchedAsTheRulesSay) {
  int indexed = 0;
  for (int round = 0; round < 24; ++round) {
    kinds_ = round % 3 == 0 ? 3 : 400;
    Fill(round % 4 == 0);
    for (int i = 0; i < 1500; ++i) {
      ASSERT_TRUE(SearchesAlike()) << "round " << round;
      indexed += HasIndex() ? 1 : 0;
      // A change throws the index away: the next searches must see it.
      if (Below(200) != 0) continue;
      Write(Below(kRows), RandomValue());
      ASSERT_FALSE(HasIndex());
    }
  }
  EXPECT_GT(indexed, 5000) << "too few searches went by an index to tell anything";
}

TEST_F(RandomColumn, AnotherColumnsChangesLeaveTheIndex) {
  Fill(false);
  for (int i = 0; i < 3000 && !HasIndex(); ++i) SearchesAlike();
  ASSERT_TRUE(HasIndex());
  Set("A1:C9", "5");
  EXPECT_TRUE(HasIndex());
  sheet.Clear({kRows - 1, kRows - 1, kColumn, kColumn});
  sheet.Set({kRows, kRows, kColumn, kColumn}, Value::Number(1));
  EXPECT_FALSE(HasIndex());
}

TEST_F(RandomColumn, ThreadsSearchAtOnce) {
  Fill(false);
  for (int round = 0; round < 5; ++round) {
    Write(Below(kRows), RandomValue());
    std::vector<Value> keys;
    for (int i = 0; i < 64; ++i) keys.push_back(Value::Number(i));
    std::vector<std::vector<std::int32_t>> found(4, std::vector<std::int32_t>(keys.size()));
    std::vector<std::thread> threads;
    for (std::vector<std::int32_t>& places : found)
      threads.emplace_back([&] {
        const CellLine line(sheet, {1, kRows - 1, kColumn, kColumn});
        for (std::size_t i = 0; i < keys.size(); ++i)
          places[i] = FindInLine(keys[i].AsCell(), line, LookupOrder::kUnsorted).value_or(-1);
      });
    for (std::thread& thread : threads) thread.join();
    EXPECT_TRUE(HasIndex());
    for (std::size_t i = 0; i < keys.size(); ++i)
      for (const auto& places : found) ASSERT_EQ(places[i], Unsorted(keys[i], 1, kRows - 1));
  }
}

}  // namespace
}  // namespace qcalc
