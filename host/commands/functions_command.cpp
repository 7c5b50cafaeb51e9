// qcalc functions.
#include <iostream>

#include "host/commands/commands.h"
#include "host/commands/function_list.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

ExitStatus ListFunctions(const std::filesystem::path& addin, const std::string& name) {
  Session session(addin);
  session.Open();
  bool isFound = name.empty();
  for (const RegisteredFunction* function : session.Host().registry.All()) {
    if (name.empty()) {
      std::cout << DescribeBriefly(*function) << "\n";
    } else if (const auto units = FromUtf8(name); units && EqualsIgnoringCase(function->name, *units)) {
      std::cout << DescribeFully(*function);
      isFound = true;
    }
  }
  std::cout << std::flush;
  if (!isFound) std::cerr << "the add-in registered no function named " << name << std::endl;
  session.Finish();
  return !PrintComplaints(session) && isFound ? kAllWell : kFailed;
}

}  // namespace qcalc
