#include "functions/generator/function_table.h"

#include <algorithm>

namespace quillmere::generator {

std::string Function::Procedure() const {
  std::string procedure = name;
  std::replace(procedure.begin(), procedure.end(), '.', '_');
  return procedure;
}

std::vector<Argument> Function::AllArguments() const {
  std::vector<Argument> all;
  for (const ArgumentGroup& group : arguments) {
    if (!group.IsRun()) {
      all.push_back(group.each.front());
      continue;
    }
    for (int round = 1; round <= group.rounds; ++round) {
      for (Argument argument : group.each) {
        argument.name.replace(argument.name.find("{}"), 2, std::to_string(round));
        if (round > group.helped) argument.help.clear();
        argument.required = round <= group.required;
        all.push_back(std::move(argument));
      }
    }
  }
  return all;
}

}  // namespace quillmere::generator
