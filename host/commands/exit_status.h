// What the program's exit status says.
#pragma once

#include <functional>

namespace qcalc {

/// One meaning each. Of several the highest is the program's.
enum ExitStatus : int {
  kAllWell = 0,
  kFailed = 1,  ///< an expectation failed, a formula could not be evaluated, the add-in broke a rule
  kUnusable =
      2,         ///< arguments that cannot be used, a file that cannot be read, a formula or script that does not parse
  kNoAddin = 3,  ///< the add-in did not load, or xlAutoOpen failed
  kLostOutput = 4,  ///< the output could not be written
  kDied = 5,        ///< the add-in died, and the process with it
  kHostFailed = 6,  ///< qcalc itself failed: no memory is left, say
};

/// Does a part of the program's work. Exceptions that would end the program are told on standard error and become
/// statuses.
ExitStatus StatusOf(const std::function<ExitStatus()>& part);

}  // namespace qcalc
