// Reads the arguments of a table: those shared by its entries and those written out in an entry.
#pragma once

#include <toml++/toml.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "functions/generator/diagnostics.h"
#include "functions/generator/function_table.h"
#include "functions/generator/strict_table.h"

namespace quillmere::generator {

class ArgumentReader {
 public:
  ArgumentReader(const std::string& file, Diagnostics& diagnostics) : file_(file), diagnostics_(&diagnostics) {}

  /// [argument.ID]: may be `like` those read before.
  void ReadShared(const std::string& id, const toml::table& table);

  /// The shared argument of that ID, which counts as used from now on, or null.
  const ArgumentGroup* Find(const std::string& id);

  /// An argument written out in an entry.
  ArgumentGroup ReadInPlace(const toml::table& table);

  /// Shared arguments that nobody asked for.
  std::vector<const ArgumentGroup*> Unused() const;

 private:
  ArgumentGroup ReadGroup(const std::string& id, const toml::table& table);
  ArgumentGroup ReadRun(const std::string& id, const toml::table& table);
  Argument ReadArgument(const std::string& id, const toml::table& table, bool inRun);
  void ReadChoices(Argument& argument, const StrictTable& fields);
  void CheckArgument(const Argument& argument, const StrictTable& fields, bool inRun);
  void CheckPresence(const Argument& argument, const StrictTable& fields, bool inRun);
  void CheckCodes(const Argument& argument, const StrictTable& fields);

  std::string file_;
  Diagnostics* diagnostics_;
  std::map<std::string, ArgumentGroup> shared_;
  std::set<std::string> used_;
};

}  // namespace quillmere::generator
