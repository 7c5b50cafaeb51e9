// The host's own functions of the macro language, by the cases of the companion's.
#include "host/addin/workbook_macros.h"

#include "tests/companion/companion_cases.h"
#include "tests/host/model_fixture.h"

namespace qcalc {
namespace {

Area Exchanged(const Area& area) {
  const auto bounded = [](std::int32_t line, std::int32_t most) { return std::min(line, most - 1); };
  return {area.firstColumn, area.lastColumn == kXlMaxColumns - 1 ? kXlMaxRows - 1 : area.lastColumn,
          bounded(area.firstRow, kXlMaxColumns), bounded(area.lastRow, kXlMaxColumns)};
}

class WorkbookMacroTest : public ModelTest {
 protected:
  WorkbookMacroTest() : across(workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Across"))) {
    for (const auto& [place, content] : CasesOf(kCompanionCells)) {
      Put(sheet, AreaOf(place), content);
      Put(across, Exchanged(AreaOf(place)), content);
    }
    for (const auto& [line, hidden] : CasesOf(kCompanionHidden)) {
      sheet.HideRows(std::stoi(line) - 1, std::stoi(line) - 1, true);
      across.HideColumns(std::stoi(line) - 1, std::stoi(line) - 1, true);
    }
  }

  static void Put(Sheet& target, const Area& area, const std::string& content) {
    const CellPosition first{area.firstRow, area.firstColumn};
    const auto formula = [&](const std::string& text) { return *ParseFormula(text); };
    if (content.starts_with("{")) {
      target.PutFormula(first, formula(content.substr(1, content.size() - 2)), FormulaForm::kArray, area);
      target.Fill(area, Value::Number(2));
    } else if (content.starts_with("=")) {
      target.SetFormula(area, formula(content));
    } else {
      target.Set(area, Value::Text(WideText(content)));
    }
  }

  std::string Call(const std::string& name, const Value& operand) {
    return PrintLiteral(CallWorkbookMacro(WideText(name + "vba"), operand, context));
  }
  Value ReferenceTo(const Sheet& target, const std::string& references, bool isExchanged) {
    Reference reference{target.Id(), {}};
    const Parsed<std::vector<ReferenceText>> parsed = ParseReferences("(" + references + ")");
    for (const ReferenceText& text : *parsed) reference.areas.push_back(isExchanged ? Exchanged(text.area) : text.area);
    return Value::OfReference(std::move(reference));
  }
  std::string Evaluated(std::string_view text) { return Call("EVAL", Value::Text(WideText(text))); }

  Sheet& across;
};

TEST_F(WorkbookMacroTest, CountsAsTheCompanion) {
  for (const auto& [asked, expected] : CasesOf(kCompanionCases)) {
    const std::string name = asked.substr(0, asked.find(' ')), reference = asked.substr(asked.find(' ') + 1);
    const std::string result = name == "HASFORMULA" ? (expected == "1" ? "TRUE" : "FALSE") : expected;
    std::string inColumns = name;
    if (const auto rows = name.find("ROWS"); rows != name.npos) inColumns.replace(rows, 4, "COLS");
    EXPECT_EQ(Call(name, ReferenceTo(sheet, reference, false)), result) << asked;
    EXPECT_EQ(Call(inColumns, ReferenceTo(across, reference, true)), result) << asked << " in columns";
    const Sheet& empty = workbooks.BookNamed(XTEXT("Book1")).SheetNamed(XTEXT("Empty"));
    for (const std::string& each : {name, inColumns}) {
      EXPECT_EQ(Call(each, ReferenceTo(empty, "A1:Z9", false)), name == "HASFORMULA" ? "FALSE" : "0") << each;
      EXPECT_EQ(Call(each, Value::Number(3)), "#VALUE!") << each;
    }
  }
}

TEST_F(WorkbookMacroTest, TextsAreEvaluated) {
  Set("H1", "{1.5,\"=H1*2\";TRUE,\" H1:H2 \";empty,#N/A}");
  for (const auto& [text, result] : CasesOf(R"(
      =H1*2 -> 3 | SUM(H1,2) -> 3.5 | H1:H2 -> {1.5;TRUE} | (H1,H2) -> #VALUE! | =1+ -> #VALUE! | = -> #VALUE!
      NOTHING() -> #NAME? | Across!A1 -> "1")"))
    EXPECT_EQ(Evaluated(text), result) << text;
  for (const auto& [cell, result] : CasesOf(
           R"(H1 -> 1.5 | H2 -> TRUE | I1 -> 3 | I2 -> {1.5;TRUE} | H3 -> #VALUE! | I3 -> #VALUE! | H1:I1 -> #VALUE!)"))
    EXPECT_EQ(Call("EVAL", ReferenceTo(sheet, cell, false)), result) << cell;
  EXPECT_EQ(Evaluated("=" + std::string(253, ' ') + "H1"), "1.5");
  EXPECT_EQ(Evaluated("=" + std::string(254, ' ') + "H1"), "#VALUE!");
  SetFormula("H1", "=1+1");
  EXPECT_THROW(Evaluated("=H1*2"), UncalculatedCell);
}

}  // namespace
}  // namespace qcalc
