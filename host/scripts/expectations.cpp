// Script commands that hold the last result against what it should be.
#include "host/scripts/runner.h"
#include "host/text/utf8.h"
#include "host/values/literal.h"
#include "host/values/value_order.h"

namespace qcalc {
namespace {

constexpr Tolerance kNearly{1e-9, 1e-12};

/// Whether there is a result to look at; without one the expectation has failed.
bool HasResult(ScriptRunner& runner, const std::string& expected) {
  if (runner.Result()) return true;
  runner.Expect(false, expected, "no result");
  return false;
}

void ExpectContents(ScriptRunner& runner, const Value& expected, const Tolerance& tolerance) {
  const std::string printed = PrintLiteral(expected);
  if (!HasResult(runner, printed)) return;
  const Value contents = runner.Contents();
  const bool isMet = SameValue(expected, contents, tolerance);
  runner.Expect(isMet, printed, isMet ? std::string() : PrintLiteral(contents));
}

ScriptAction ParseExpectation(ScriptLine& line, const Tolerance& tolerance) {
  if (!line.StartsFormula())
    return [value = line.Literal(), tolerance](ScriptRunner& runner) { ExpectContents(runner, value, tolerance); };
  return [formula = line.FormulaText(), tolerance](ScriptRunner& runner) {
    if (!HasResult(runner, formula.Text())) return;
    // Only the result counts: what the expected value's formula did is not looked at.
    Session& session = runner.ItsSession();
    try {
      ExpectContents(runner, session.Contents(session.EvaluateQuietly(formula)), tolerance);
    } catch (const FormulaError& error) {
      runner.Expect(false, formula.Text() + ", which could not be evaluated: " + error.what(), "a result");
    }
  };
}

ScriptAction ParseExpect(ScriptLine& line) { return ParseExpectation(line, {}); }
ScriptAction ParseExpectNearly(ScriptLine& line) { return ParseExpectation(line, kNearly); }

std::string PrintReference(ScriptRunner& runner, const Reference& reference) {
  return ReferenceToText(reference, runner.ItsSession().ItsWorkbooks());
}

/// The references of one command as one: all on the sheet of the first.
Reference ResolveAll(ScriptRunner& runner, const std::vector<ReferenceText>& texts) {
  Reference all = runner.Resolve(texts[0]);
  for (std::size_t i = 1; i < texts.size(); ++i) {
    ReferenceText text = texts[i];
    if (text.sheet.empty() && text.book.empty()) {
      text.book = texts[0].book;
      text.sheet = texts[0].sheet;
    }
    const Reference next = runner.Resolve(text);
    if (next.sheet != all.sheet) throw ScriptError("the areas of a reference must lie on one sheet");
    all.areas.insert(all.areas.end(), next.areas.begin(), next.areas.end());
  }
  return all;
}

ScriptAction ParseExpectRef(ScriptLine& line) {
  return [texts = line.References()](ScriptRunner& runner) {
    const Reference expected = ResolveAll(runner, texts);
    const std::string printed = PrintReference(runner, expected);
    if (!HasResult(runner, printed)) return;
    const Value& result = *runner.Result();
    runner.Expect(result.IsReference() && result.AsReference() == expected, printed,
                  result.IsReference() ? PrintReference(runner, result.AsReference())
                                       : "no reference but " + PrintLiteral(result));
  };
}

ScriptAction ParseExpectShape(ScriptLine& line) {
  const ScriptSize size = line.SizeIn(line.Rest("a size"), 1);
  return [size](ScriptRunner& runner) {
    const auto print = [](std::int32_t r, std::int32_t c) { return std::to_string(r) + "x" + std::to_string(c); };
    if (!HasResult(runner, print(size.rows, size.columns))) return;
    const Value contents = runner.Contents();
    const std::int32_t gotRows = contents.IsArray() ? contents.AsArray()->Rows() : 1;
    const std::int32_t gotColumns = contents.IsArray() ? contents.AsArray()->Columns() : 1;
    const bool isMet = gotRows == size.rows && gotColumns == size.columns;
    runner.Expect(isMet, print(size.rows, size.columns),
                  isMet ? std::string() : print(gotRows, gotColumns) + ": " + PrintLiteral(contents));
  };
}

ScriptAction ParseExpectErrorText(ScriptLine& line) {
  return [prefix = std::string(line.Rest("the beginning of a text"))](ScriptRunner& runner) {
    const std::string expected = "a text that begins with " + prefix;
    if (!HasResult(runner, expected)) return;
    const Value contents = runner.Contents();
    runner.Expect(contents.IsText() && ToUtf8(contents.AsText()).starts_with(prefix), expected, PrintLiteral(contents));
  };
}

ScriptAction ParseExpectCalls(ScriptLine& line) {
  const XlCallback& callback = line.Callback();
  const std::int32_t count = line.WholeNumber("a number of calls", 0, kMostCount);
  return [&callback, count](ScriptRunner& runner) {
    const int calls = runner.ItsSession().Host().meter.Calls(callback);
    const auto print = [&](int number) { return std::to_string(number) + " calls of " + std::string(callback.name); };
    runner.Expect(calls == count, print(count), print(calls));
  };
}

ScriptAction ParseExpectUdf(ScriptLine& line) {
  // A reference where one stands, else a literal: no text is both.
  const std::string_view part = line.Rest("a literal or a reference");
  if (const auto references = ParseReferences(part)) {
    return [texts = *references](ScriptRunner& runner) {
      const Reference expected = ResolveAll(runner, texts);
      const std::optional<Value> got = runner.ItsSession().Host().macroFunctions.lastArgument;
      const bool isReference = got && got->IsReference();
      runner.Expect(isReference && got->AsReference() == expected, PrintReference(runner, expected),
                    isReference ? PrintReference(runner, got->AsReference())
                                : (got ? "no reference but " + PrintLiteral(*got) : "no call"));
    };
  }
  const Parsed<Value> value = ParseLiteral(part);
  if (!value) line.FailIn(part, "expected a reference or a literal: " + value.Error().message);
  return [expected = *value](ScriptRunner& runner) {
    const std::optional<Value> got = runner.ItsSession().Host().macroFunctions.lastArgument;
    const bool isReference = got && got->IsReference();
    runner.Expect(got && SameValue(expected, *got), PrintLiteral(expected),
                  isReference ? PrintReference(runner, got->AsReference())
                  : got       ? PrintLiteral(*got)
                              : "no call");
  };
}

constexpr ScriptCommandForm kExpectationCommands[] = {
    {"expect", "expect LITERAL or expect =FORMULA", ParseExpect},
    {"expect~", "expect~ LITERAL", ParseExpectNearly},
    {"expect-ref", "expect-ref REF", ParseExpectRef},
    {"expect-shape", "expect-shape RxC", ParseExpectShape},
    {"expect-error-text", "expect-error-text PREFIX", ParseExpectErrorText},
    {"expect-calls", "expect-calls NAME N", ParseExpectCalls},
    {"expect-udf", "expect-udf LITERAL or expect-udf REF", ParseExpectUdf},
};

}  // namespace

std::span<const ScriptCommandForm> ExpectationCommands() { return kExpectationCommands; }

}  // namespace qcalc
