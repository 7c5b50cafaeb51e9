// qcalc eval.
#include <algorithm>
#include <iostream>

#include "host/commands/commands.h"
#include "host/text/path_text.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

/// Tells on standard error what there is to say of a formula.
void Tell(const std::string& formula, const std::string& what) {
  std::cerr << ShownMessage(formula + ": " + what) << std::endl;
}

/// Evaluates one formula and prints its result, or why there is none.
ExitStatus PrintResult(Session& session, const std::string& text, ResultFormat format) {
  const Parsed<Formula> formula = ParseFormula(text);
  if (!formula) {
    Tell(text, formula.Error().ToString());
    return kUnusable;
  }
  try {
    const Value result = session.Contents(session.Evaluate(*formula));
    std::cout << FormatResult(result, format) << std::flush;
    for (const std::string& hint : session.TakeHints()) Tell(text, hint);
    return PrintComplaints(session) ? kFailed : kAllWell;
  } catch (const AddinFailure&) {
    throw;
  } catch (const std::exception& error) {
    Tell(text, error.what());
  } catch (const UncalculatedCell& cell) {
    Tell(text, session.Describe(cell));
  }
  return kFailed;
}

/// False, with the reason told, when a file cannot be loaded.
bool Load(Session& session, const std::vector<CsvLoad>& loads) {
  for (const CsvLoad& load : loads) {
    const XString name = *FromUtf8(load.sheet);
    const auto [book, sheet] = SplitSheetName(name);
    const auto loaded =
        LoadCsvFile(PathOf(load.file.path), session.ItsWorkbooks().SheetNamed(book, sheet, session.CurrentSheet()), 0,
                    0, load.file.options);
    if (const auto* error = std::get_if<CsvError>(&loaded)) {
      std::cerr << ShownMessage(error->ToString(load.file.path)) << std::endl;
      return false;
    }
  }
  return true;
}

ExitStatus Eval(const std::filesystem::path& addin, const EvalRequest& request, std::size_t first) {
  return WithAddin(addin, [&](Session& session) {
    if (!Load(session, request.loads)) return kUnusable;
    ExitStatus worst = kAllWell;
    for (std::size_t i = first; i < request.formulas.size(); ++i) {
      ProcessJournal().item = static_cast<std::int32_t>(i);
      if (i > 0 && request.format == ResultFormat::kCsv) std::cout << "\n";
      worst = std::max(worst, PrintResult(session, request.formulas[i], request.format));
    }
    return worst;
  });
}

}  // namespace

Work EvalWork(const std::filesystem::path& addin, const EvalRequest& request) {
  return {request.formulas,
          [=](std::size_t first) { return Eval(addin, request, first); },
          [=](Journal& journal, const std::string& sentence) {
            Tell(request.formulas[static_cast<std::size_t>(journal.item)], sentence);
          },
          {}};
}

}  // namespace qcalc
