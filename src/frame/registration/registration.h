// What is registered with Excel, and how it is registered and unregistered.
#pragma once

#include <vector>

#include "frame/registration/function_record.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// The arguments of xlfRegister as the add-in keeps them. Texts may be longer than Excel takes: they are cut in the
/// call.
struct RegistrationTexts {
  XString procedure = {};
  XString typeText = {};
  XString name = {};
  XString argumentText = {};
  MacroType macroType = MacroType::kFunction;
  XString category = {};  ///< a category's name
  XString shortcut = {};
  int helpId = 0;
  XString help = {};
  std::vector<XString> argumentHelp;  ///< one for each argument
};

/// The help topic of xlfRegister: `helpFile`, "!", the id; empty when the id is 0, when there is no file, or when the
/// whole is more than Excel takes.
XString HelpTopic(XStringView helpFile, int helpId);

/// Something that is registered with Excel under a name: a function or a command. Keeps the id that Excel gives.
class CXllRegistrable {
 public:
  enum class State { kNew, kRegistered, kFailed };

  explicit CXllRegistrable(RegistrationTexts texts) : texts_(std::move(texts)) {}
  CXllRegistrable(const CXllRegistrable&) = delete;
  CXllRegistrable& operator=(const CXllRegistrable&) = delete;
  virtual ~CXllRegistrable() = default;

  const RegistrationTexts& Texts() const noexcept { return texts_; }
  XStringView Name() const noexcept { return texts_.name; }
  State GetState() const noexcept { return state_; }
  bool IsRegistered() const noexcept { return state_ == State::kRegistered; }

  void SetCategory(XStringView category) { texts_.category = category; }

  /// Registers with Excel; anything but a number as the answer is a failure, which is only noted. `modulePath` is the
  /// add-in's path as Excel has it.
  void Register(XStringView modulePath, XStringView helpFile);

  /// Unregisters what is registered; failures of single steps are passed over. Excel 12 and later keep a function in
  /// the wizard unless its name is first made that of a hidden command and then deleted.
  void Unregister(XStringView modulePath, bool excel12OrLater) noexcept;

 private:
  RegistrationTexts texts_;
  State state_ = State::kNew;
  double registerId_ = 0;  ///< Excel's, which may be negative; of use only while registered
};

/// One worksheet function or command, built from its record.
class CXllFunction final : public CXllRegistrable {
 public:
  explicit CXllFunction(const CXllFunctionRecord& record);

  const FunctionDeclaration& Declaration() const noexcept { return declaration_; }

 private:
  const FunctionDeclaration& declaration_;
};

}  // namespace quillmere
