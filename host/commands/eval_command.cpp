// qcalc eval.
#include <iostream>

#include "host/commands/commands.h"
#include "host/values/literal.h"

namespace qcalc {
namespace {

/// Evaluates one formula and prints its result. False, with the reason printed, when it cannot be evaluated.
bool PrintResult(Session& session, const Formula& formula) {
  try {
    const Value result = session.Contents(session.Evaluate(formula));
    std::cout << PrintLiteral(result) << std::endl;
    for (const std::string& hint : session.TakeHints()) std::cerr << formula.Text() << ": " << hint << std::endl;
    return !PrintComplaints(session);
  } catch (const AddinFailure&) {
    throw;
  } catch (const std::exception& error) {
    std::cerr << formula.Text() << ": " << error.what() << std::endl;
  } catch (const UncalculatedCell& cell) {
    std::cerr << formula.Text() << ": " << session.Describe(cell) << std::endl;
  }
  return false;
}

ExitStatus Eval(const std::filesystem::path& addin, const std::vector<std::string>& texts, std::size_t first) {
  std::vector<Formula> formulas;
  for (const std::string& text : texts) {
    const Parsed<Formula> formula = ParseFormula(text);
    if (!formula) {
      std::cerr << text << ": " << formula.Error().ToString() << std::endl;
      return kUnusable;
    }
    formulas.push_back(*formula);
  }
  return WithAddin(addin, [&](Session& session) {
    bool isWell = true;
    for (std::size_t i = first; i < formulas.size(); ++i) {
      ProcessJournal().item = static_cast<std::int32_t>(i);
      isWell = PrintResult(session, formulas[i]) && isWell;
    }
    return isWell ? kAllWell : kFailed;
  });
}

}  // namespace

Work EvalWork(const std::filesystem::path& addin, const std::vector<std::string>& formulas) {
  return {formulas,
          [=](std::size_t first) { return Eval(addin, formulas, first); },
          [=](Journal& journal, const std::string& sentence) {
            std::cerr << formulas[static_cast<std::size_t>(journal.item)] << ": " << sentence << std::endl;
          },
          {}};
}

}  // namespace qcalc
