// What the program's exit status says.
#pragma once

namespace qcalc {

/// One meaning each. Of several the highest is the program's.
enum ExitStatus : int {
  kAllWell = 0,
  kFailed = 1,    ///< an expectation failed, a formula could not be evaluated, the add-in broke a rule
  kUnusable = 2,  ///< arguments that cannot be used, a file that cannot be read, a script that does not parse
  kNoAddin = 3,   ///< the add-in did not load, or xlAutoOpen failed
};

}  // namespace qcalc
