// qcalc functions.
#include <iostream>

#include "host/commands/commands.h"
#include "host/commands/function_list.h"
#include "host/text/letter_case.h"
#include "host/text/near_names.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"

namespace qcalc {

namespace {

ExitStatus List(Session& session, const FunctionPages& pages, const std::string& name) {
  session.Open();
  const std::vector<const RegisteredFunction*> all = session.Host().registry.All();
  if (name.empty()) {
    std::cout << ShownMessage(ListByFamily(all, pages)) << std::flush;
    return kAllWell;
  }
  std::vector<std::string> known;
  for (const RegisteredFunction* function : all) {
    if (EqualsIgnoringCase(function->name, FromUtf8(name).value_or(XString()))) {
      std::cout << ShownMessage(DescribeFully(*function, pages)) << std::flush;
      return kAllWell;
    }
    known.push_back(ToUtf8(function->name));
  }
  std::cerr << ShownMessage("the add-in registered no function named " + name + NearNamesHint(name, known))
            << std::endl;
  return kFailed;
}

}  // namespace

Work FunctionsWork(const std::filesystem::path& addin, const std::string& name) {
  const auto list = [=](Session& session) { return List(session, ReadFunctionPages(addin), name); };
  return {{"functions"},
          [=](std::size_t) { return WithAddin(addin, list); },
          [](Journal&, const std::string& sentence) { std::cerr << sentence << std::endl; },
          {}};
}

}  // namespace qcalc
