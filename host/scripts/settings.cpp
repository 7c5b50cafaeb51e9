// Script commands that set up the workbook, the host and what it answers.

#include "host/calculation/dependencies.h"
#include "host/library/answers.h"
#include "host/scripts/runner.h"
#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/path_text.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

XString Units(std::string_view text) { return *FromUtf8(text); }

Sheet& SheetOf(ScriptRunner& runner, const Reference& reference) {
  return *runner.ItsSession().ItsWorkbooks().FindSheet(reference.sheet);
}

/// Settings that the add-in reads when it opens come too late afterwards.
HostSettings& SettingsBeforeOpening(ScriptRunner& runner, const char* command) {
  HostState& host = runner.ItsSession().Host();
  if (host.library) throw ScriptError(std::string(command) + " must come before the first evaluation");
  return host.settings;
}

ScriptAction ParseCase(ScriptLine& line) {
  return [name = std::string(line.Rest("the name of the case"))](ScriptRunner& runner) { runner.BeginCase(name); };
}

ScriptAction ParseBook(ScriptLine& line) {
  return [name = Units(line.Rest("a workbook's name"))](ScriptRunner& runner) {
    Book& book = runner.ItsSession().ItsWorkbooks().BookNamed(name);
    runner.ItsSession().SelectSheet(book.Sheets().empty() ? book.SheetNamed(XTEXT("Sheet1")) : *book.Sheets().front());
  };
}

ScriptAction ParseSheet(ScriptLine& line) {
  return [name = Units(line.Rest("a sheet's name"))](ScriptRunner& runner) {
    Session& session = runner.ItsSession();
    session.SelectSheet(session.CurrentSheet().ItsBook().SheetNamed(name));
  };
}

ScriptAction ParseSet(ScriptLine& line) {
  const ReferenceText target = line.ReferenceIn(line.BeforeEquals("a reference"));
  const auto write = [target](ScriptRunner& runner, const auto& writeInto) {
    const Reference cells = runner.Resolve(target);
    try {
      writeInto(SheetOf(runner, cells), cells.areas[0]);
    } catch (const std::length_error& error) {
      throw ScriptError(error.what());
    }
  };
  if (line.StartsFormula()) {
    return [write, formula = line.FormulaText()](ScriptRunner& runner) {
      write(runner, [&](Sheet& sheet, const Area& area) { sheet.SetFormula(area, formula); });
    };
  }
  return [write, value = line.Literal()](ScriptRunner& runner) {
    write(runner, [&](Sheet& sheet, const Area& area) { sheet.Set(area, value); });
  };
}

ScriptAction ParseLoad(ScriptLine& line) {
  const ReferenceText target = line.ReferenceIn(line.Word("a reference"));
  return [target, request = line.File()](ScriptRunner& runner) {
    const Reference cells = runner.Resolve(target);
    const auto loaded = LoadCsvFile(runner.Folder() / PathOf(request.path), SheetOf(runner, cells),
                                    cells.areas[0].firstRow, cells.areas[0].firstColumn, request.options);
    if (const auto* error = std::get_if<CsvError>(&loaded)) throw ScriptError(error->ToString(request.path));
  };
}

/// `3:5`, or with a sheet `Data!3:5`.
ScriptAction ParseRowsHidden(ScriptLine& line, bool isHidden) {
  const std::string_view part = line.Rest("rows");
  ReferenceText rows;
  if (part.find('!') == std::string_view::npos)
    rows.area = line.RowsIn(part);
  else
    rows = line.ReferenceIn(part);
  if (rows.area.Columns() != kXlMaxColumns) line.FailIn(part, "expected whole rows, found '" + std::string(part) + "'");
  return [rows, isHidden](ScriptRunner& runner) {
    const Reference cells = runner.Resolve(rows);
    SheetOf(runner, cells).HideRows(cells.areas[0].firstRow, cells.areas[0].lastRow, isHidden);
  };
}

ScriptAction ParseHide(ScriptLine& line) { return ParseRowsHidden(line, true); }
ScriptAction ParseUnhide(ScriptLine& line) { return ParseRowsHidden(line, false); }

ScriptAction ParseAt(ScriptLine& line) {
  return [cells = line.ReferenceIn(line.Rest("a reference"))](ScriptRunner& runner) {
    runner.ItsSession().SetCaller(runner.Resolve(cells));
  };
}

ScriptAction ParseVersion(ScriptLine& line) {
  const std::string_view part = line.Rest("a version");
  std::string version(part);
  if (version.find_first_not_of("0123456789.") != std::string::npos)
    line.FailIn(part, "expected a version such as 16 or 15.0, found '" + version + "'");
  if (version.find('.') == std::string::npos) version += ".0";
  return
      [version = Units(version)](ScriptRunner& runner) { SettingsBeforeOpening(runner, "version").version = version; };
}

ScriptAction ParseDecimal(ScriptLine& line) {
  const std::string_view part = line.Rest("a decimal separator");
  const XString separator = Units(part);
  if (separator.size() != 1) line.FailIn(part, "expected one character, found '" + std::string(part) + "'");
  return [unit = separator[0]](ScriptRunner& runner) { SettingsBeforeOpening(runner, "decimal").marks.decimal = unit; };
}

ScriptAction ParseUdf(ScriptLine& line) {
  const XString name = FoldCase(Units(line.Word("a function's name")));
  return [name, value = line.Literal()](ScriptRunner& runner) {
    runner.ItsSession().Host().macroFunctions.results[name] = value;
  };
}

ScriptAction ParseRefs(ScriptLine& line) {
  const bool isShort = line.Choice({"SRef", "Ref"}) == 0;
  return [isShort](ScriptRunner& runner) { runner.ItsSession().Host().settings.shortReferences = isShort; };
}

ScriptAction ParseInterface(ScriptLine& line) {
  const bool isNarrow = line.Choice({"12", "4"}) == 1;
  return [isNarrow](ScriptRunner& runner) { runner.ItsSession().Host().settings.narrowCalls = isNarrow; };
}

ScriptAction ParseAnswer(ScriptLine& line) {
  constexpr Answer kAnswers[] = {Answer::kYes, Answer::kNo, Answer::kOk};
  return [answer = kAnswers[line.Choice({"yes", "no", "ok"})]](ScriptRunner&) { ProcessAnswers().SetNext(answer); };
}

ScriptAction ParseLet(ScriptLine& line) {
  const std::string_view part = line.BeforeEquals("a name");
  const XString name = FoldCase(Units(part));
  const std::size_t bad = part.find_first_of(" \t!'\"(),;{}[]:+-*/^&<>%#");
  if (bad != std::string_view::npos)
    line.FailIn(part.substr(bad), "expected a name, found '" + std::string(1, part[bad]) + "' in it");
  if (IsDigit(part.front())) line.FailIn(part, "expected a name, which begins with no digit");
  if (ParseReference(part)) line.FailIn(part, "expected a name, found '" + std::string(part) + "', a reference");
  if (ParseLiteral(part)) line.FailIn(part, "expected a name, found '" + std::string(part) + "', a value");
  const auto bind = [name](ScriptRunner& runner, Value value) {
    runner.ItsSession().Names()[name] = std::move(value);
    NoteNameChange(runner.ItsSession().ItsWorkbooks(), name);
  };
  if (!line.StartsFormula()) return [bind, value = line.Literal()](ScriptRunner& runner) { bind(runner, value); };
  return [bind, formula = line.FormulaText()](ScriptRunner& runner) {
    Session& session = runner.ItsSession();
    bind(runner, session.Contents(session.EvaluateQuietly(formula)));
  };
}

constexpr ScriptCommandForm kSettingCommands[] = {
    {"case", "case TEXT", ParseCase},
    {"book", "book NAME", ParseBook},
    {"sheet", "sheet NAME", ParseSheet},
    {"set", "set REF = LITERAL or set REF = =FORMULA", ParseSet},
    {"load", "load REF FILE [separator C] [text COLUMNS]", ParseLoad},
    {"hide", "hide ROWS, as in hide 3:5", ParseHide},
    {"unhide", "unhide ROWS, as in unhide 3:5", ParseUnhide},
    {"at", "at REF", ParseAt},
    {"version", "version N", ParseVersion},
    {"decimal", "decimal C", ParseDecimal},
    {"udf", "udf NAME LITERAL", ParseUdf},
    {"refs", "refs SRef or refs Ref", ParseRefs},
    {"interface", "interface 12 or interface 4", ParseInterface},
    {"answer", "answer yes, answer no or answer ok", ParseAnswer},
    {"let", "let NAME = LITERAL or let NAME = =FORMULA", ParseLet},
};

}  // namespace

std::span<const ScriptCommandForm> SettingCommands() { return kSettingCommands; }

}  // namespace qcalc
