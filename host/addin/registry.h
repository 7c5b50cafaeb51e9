// What the add-in registered with xlfRegister, and the names that stand for it.
#pragma once

#include <memory>
#include <shared_mutex>
#include <vector>

#include "host/api/type_text.h"
#include "host/calculation/addin_functions.h"
#include "host/text/letter_case.h"

namespace qcalc {

/// One registration. `name` is the function text.
struct RegisteredFunction : AddinFunction {
  double id = 0;  ///< negative for some, as Excel's ids are
  int useCount = 1;
  XString procedure;
  XString typeText;
  TypeText type;
  void* entry = nullptr;
  XString argumentNames;  ///< comma-separated
  int macroType = 1;      ///< 0 hidden function, 1 function, 2 command
  XString category;       ///< a name, or a built-in category's number
  XString shortcut;
  XString helpTopic;
  XString help;
  std::vector<XString> argumentHelp;
  /// The same function by its 8-bit entry point, under that one's own name and with the marks of this registration;
  /// null where the library has none.
  std::shared_ptr<RegisteredFunction> narrow;

  bool IsCommand() const { return macroType == 2; }
  bool IsHidden() const { return macroType == 0; }
};

/// Functions are found from any thread; registering and unregistering happen while none calculates.
class Registry {
 public:
  /// Enters a registration and gives it an id, or raises the use count of the one that is there for the same procedure,
  /// type and name. The function text, if any, is from now on a name for it.
  const RegisteredFunction& Add(std::unique_ptr<RegisteredFunction> function);

  /// Lowers the use count. False when there is no registration of that id.
  bool Remove(double id);

  /// Removes a name; its registration stays. False when there is none.
  bool RemoveName(XStringView name);

  /// Forgets everything: the library is unloaded, and its exports are gone.
  void Clear();

  /// The registration that a name stands for, in any case, or that has the id, while its use count is above 0; else
  /// null.
  RegisteredFunction* Find(XStringView name) const;
  RegisteredFunction* Find(double id) const;

  /// All with a use count above 0, in the order of registration.
  std::vector<const RegisteredFunction*> All() const;

 private:
  double NextId();

  mutable std::shared_mutex mutex_;
  // Registrations stay in memory when their use count is 0: a formula may still hold one.
  std::vector<std::unique_ptr<RegisteredFunction>> functions_;
  CaselessMap<XString, RegisteredFunction*> names_;
  int idsGiven_ = 0;
};

}  // namespace qcalc
