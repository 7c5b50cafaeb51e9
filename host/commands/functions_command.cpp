// qcalc functions.
#include <iostream>

#include "host/commands/commands.h"
#include "host/commands/function_list.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

namespace {

ExitStatus List(Session& session, const std::string& name) {
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
  return isFound ? kAllWell : kFailed;
}

}  // namespace

Work FunctionsWork(const std::filesystem::path& addin, const std::string& name) {
  const auto list = [=](Session& session) { return List(session, name); };
  return {{"functions"},
          [=](std::size_t) { return WithAddin(addin, list); },
          [](Journal&, const std::string& sentence) { std::cerr << sentence << std::endl; },
          {}};
}

}  // namespace qcalc
