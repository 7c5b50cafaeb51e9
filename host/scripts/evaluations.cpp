// Script commands that evaluate, measure and print.
#include <iostream>

#include "host/scripts/runner.h"
#include "host/scripts/show_table.h"
#include "host/text/shown_text.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

constexpr std::int32_t kMostReloads = 500;
constexpr std::int32_t kMostThreads = 256;
constexpr std::int32_t kShownRows = 10;

ScriptAction ParseEval(ScriptLine& line) {
  return [formula = line.FormulaText()](ScriptRunner& runner) {
    runner.Evaluate(formula.Text(), [&] { return runner.ItsSession().Evaluate(formula); });
  };
}

ScriptAction ParseRecalc(ScriptLine& line) {
  const std::int32_t count = line.WholeNumber("a number of recalculations", 1, kMostCount);
  return [count, formula = line.FormulaText()](ScriptRunner& runner) {
    runner.Evaluate(formula.Text(), [&] { return runner.ItsSession().Recalculate(count, formula); });
  };
}

ScriptAction ParseParallel(ScriptLine& line) {
  const std::int32_t threads = line.WholeNumber("a number of threads", 1, kMostThreads);
  const std::int32_t count = line.WholeNumber("a number of evaluations", 1, kMostCount);
  return [threads, count, formula = line.FormulaText()](ScriptRunner& runner) {
    runner.Evaluate(formula.Text(), [&] {
      const std::vector<Value> results = runner.ItsSession().EvaluateInParallel(threads, count, formula);
      const std::string first = PrintLiteral(runner.ItsSession().Contents(results[0]));
      const std::string other = PrintLiteral(runner.ItsSession().Contents(results.back()));
      runner.Expect(results.size() == 1, "all results equal to " + first,
                    std::to_string(results.size() - 1) + " others, such as " + other);
      return results[0];
    });
  };
}

ScriptAction ParseTime(ScriptLine& line) {
  const std::int32_t count = line.WholeNumber("a number of calls", 1, kMostCount);
  return [count, formula = line.FormulaText()](ScriptRunner& runner) {
    runner.Evaluate(formula.Text(), [&] {
      std::string function;
      Timing timing = runner.ItsSession().Time(count, formula, function);
      std::cout << "time " << PrintNumber(timing.median) << " " << PrintNumber(timing.minimum) << " " << function
                << std::endl;
      return std::move(timing.result);
    });
  };
}

ScriptAction ParseOpen(ScriptLine&) {
  return [](ScriptRunner& runner) {
    runner.Evaluate("xlAutoOpen", [&] { return Value::Number(runner.ItsSession().CallOpen()); });
  };
}

ScriptAction CallOf(const char* name) {
  return [name](ScriptRunner& runner) {
    runner.Evaluate(name, [&] { return Value::Number(runner.ItsSession().CallEntryPoint(name).value_or(0)); });
  };
}

ScriptAction ParseClose(ScriptLine&) { return CallOf("xlAutoClose"); }
ScriptAction ParseAdd(ScriptLine&) { return CallOf("xlAutoAdd"); }
ScriptAction ParseRemove(ScriptLine&) { return CallOf("xlAutoRemove"); }

ScriptAction ParseRun(ScriptLine& line) {
  return [formula = line.FormulaText()](ScriptRunner& runner) {
    runner.Evaluate(formula.Text(), [&] { return runner.ItsSession().Run(formula); });
  };
}

ScriptAction ParseReload(ScriptLine& line) {
  const std::int32_t count = line.WholeNumber("a number of loadings", 1, kMostReloads);
  return [count](ScriptRunner& runner) { runner.ItsSession().Reload(count); };
}

ScriptAction ParsePrint(ScriptLine&) {
  return [](ScriptRunner& runner) {
    if (runner.Result())
      std::cout << PrintLiteral(runner.Contents()) << std::endl;
    else
      runner.Fail("there is no result to print");
  };
}

ScriptAction ParseShow(ScriptLine& line) {
  const std::int32_t rows = line.IsAtEnd() ? kShownRows : line.WholeNumber("a number of rows", 1, kMostCount);
  return [rows](ScriptRunner& runner) {
    if (!runner.Result()) return runner.Fail("there is no result to show");
    if (const std::string heading = runner.TakeHeading(); !heading.empty())
      std::cout << "\n" << ShownMessage(heading) << "\n";
    std::cout << "\n" << ShownMessage(runner.LastFormula()) << "\n" << ShowTable(runner.Contents(), rows) << std::flush;
  };
}

constexpr ScriptCommandForm kEvaluationCommands[] = {
    {"eval", "eval =FORMULA", ParseEval},
    {"recalc", "recalc N =FORMULA", ParseRecalc},
    {"parallel", "parallel T N =FORMULA", ParseParallel},
    {"time", "time N =FORMULA", ParseTime},
    {"open", "open", ParseOpen},
    {"close", "close", ParseClose},
    {"add", "add", ParseAdd},
    {"remove", "remove", ParseRemove},
    {"run", "run =NAME(ARGUMENTS)", ParseRun},
    {"reload", "reload N", ParseReload},
    {"print", "print", ParsePrint},
    {"show", "show [ROWS]", ParseShow},
};

}  // namespace

std::span<const ScriptCommandForm> EvaluationCommands() { return kEvaluationCommands; }

}  // namespace qcalc
