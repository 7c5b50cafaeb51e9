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
    return !PrintComplaints(session);
  } catch (const AddinFailure&) {
    throw;
  } catch (const std::exception& error) {
    std::cerr << formula.Text() << ": " << error.what() << std::endl;
  } catch (const UncalculatedCell&) {
    std::cerr << formula.Text() << ": it reads a cell that could not be calculated" << std::endl;
  }
  return false;
}

}  // namespace

ExitStatus RunEval(const std::filesystem::path& addin, const std::vector<std::string>& texts) {
  std::vector<Formula> formulas;
  for (const std::string& text : texts) {
    const Parsed<Formula> formula = ParseFormula(text);
    if (!formula) {
      std::cerr << text << ": " << formula.Error().ToString() << std::endl;
      return kUnusable;
    }
    formulas.push_back(*formula);
  }
  Session session(addin);
  bool isWell = true;
  for (const Formula& formula : formulas) isWell = PrintResult(session, formula) && isWell;
  session.Finish();
  return !PrintComplaints(session) && isWell ? kAllWell : kFailed;
}

}  // namespace qcalc
