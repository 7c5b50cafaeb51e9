// What is written of sheets.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

#include "host/files/file_text.h"
#include "host/output/comparison.h"
#include "host/output/iso_date.h"
#include "host/output/sheet_text.h"
#include "host/process/checked_output.h"
#include "host/process/output_file.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

class OutputTest : public ModelTest {
 protected:
  OutputTest() : path(std::filesystem::temp_directory_path() / u8"qcalc-\u00E4.out") {}
  ~OutputTest() override { std::filesystem::remove(path); }

  template <typename Write>
  std::string Written(Write&& write) {
    OutputFile file(path);
    write(file);
    file.Finish();
    return std::get<std::string>(ReadFile(path));
  }

  std::filesystem::path path;
};

TEST(Dates, ByIso8601) {
  for (const auto& [serial, text] : CasesOf(R"(
      46349 -> 2026-11-23 | 46349.586805555556 -> 2026-11-23T14:05:00 | 0.5868113425925926 -> 14:05:00.500 | 0 -> 00:00:00
      59 -> 1900-02-28 | 60 -> none | 61.5 -> 1900-03-01T12:00:00 | 0.9999999999 -> 1900-01-01 | 2.9999999999 -> 1900-01-03
      2958465 -> 9999-12-31 | 2958465.9999999999 -> none | 2958466 -> none | -1 -> none | 1e300 -> none)")) {
    std::string out;
    EXPECT_EQ(AppendIsoDate(out, std::stod(serial), false) ? out : "none", text) << serial;
  }
  std::string out;
  EXPECT_TRUE(AppendIsoDate(out, 44887.25, true) && !AppendIsoDate(out, 2958465, true));
  EXPECT_EQ(out, "2026-11-23T06:00:00");
}

TEST_F(OutputTest, SheetsAsCsvAndJson) {
  Set("A2", "46349");
  Set("C1", "46349");
  Set("B3", "\"\"\"x\\\"U+0001U+000A\"\u00E4\"");
  const WrittenSheet written{&sheet, [](CellPosition position) { return position.column == 0; }};
  EXPECT_EQ(Written([&](OutputFile& file) { WriteCsv(file, written); }),
            ",,46349\n2026-11-23,,\n,\"\"\"x\\\x01\n\u00E4\",\n");
  Set("Far!XFD1048576", "#CALC!");
  Sheet& far = SheetAt("Far!A1");
  EXPECT_THROW(Written([&](OutputFile& file) { WriteCsv(file, {&far}); }), OutputFailure);
  const WrittenSheet sheets[] = {written, {&far}};
  const std::string json =
      "{\"sheets\":[\n{\"name\":\"Sheet1\",\"cells\":{\n\"A2\":\"2026-11-23\",\n\"B3\":\"\\\"x\\\\\\u0001\\n\u00E4\",\n"
      "\"C1\":46349}},\n{\"name\":\"Far\",\"cells\":{\n\"XFD1048576\":{\"error\":\"#CALC!\"}}}]}\n";
  EXPECT_EQ(Written([&](OutputFile& file) { WriteJson(file, sheets); }), json);
  // What is not finished leaves what was there.
  OutputFile(path).Write("half");
  EXPECT_EQ(std::get<std::string>(ReadFile(path)), json);
  EXPECT_THROW(OutputFile(std::filesystem::temp_directory_path()), OutputFailure);
}

TEST_F(OutputTest, ComparisonWithWhatTheFileHad) {
  Set("A1:A3", "{0.3;\"old\";5}");
  Set("C1", "#VALUE!");
  Set("D1", "2");
  const Area spill = AreaOf("A1:A3");
  CachedValues cached(sheet);
  SheetResults results{&sheet, {{{0, 0}, true, spill, AreaOf("A1:B2")}}};
  for (const std::int32_t column : {2, 3, 4})
    results.formulas.push_back({{0, column}, column != 3, Area::OfCell(0, column), Area::OfCell(0, column)});
  for (const FormulaResult& formula : results.formulas) cached.Note(formula.filledBefore);
  Set("A1:B2", "{0.30000000000000004,TRUE;\"new\",#N/A}");
  Set("A3", "empty");
  Set("C1:E1", "{#SPILL!,3,4}");
  Comparison comparison;
  Compare(results, cached, comparison);
  EXPECT_THAT(comparison.lines,
              testing::ElementsAre("Sheet1!B1: TRUE, the book has empty", "Sheet1!A2: \"new\", the book has \"old\"",
                                   "Sheet1!B2: #N/A, the book has empty", "Sheet1!A3: empty, the book has 5"));
  EXPECT_EQ(comparison.compared * 100 + comparison.different * 10 + comparison.withoutValue, 641);
  const auto equal = [](double left, double right) {
    return EqualsStored(CellView::Number(left), CellView::Number(right));
  };
  EXPECT_TRUE(equal(-0.0, 0) && equal(123456789012345, 123456789012345.3) && !equal(0.1, -0.1));
  EXPECT_FALSE(equal(1.23456789012345, 1.23456789012346) || equal(0, 1e-300) || equal(12, 120));
}

}  // namespace
}  // namespace qcalc
