// The functions whose arguments the function wizard offers lists for.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "excel/wizard/list_provider.h"
#include "frame/registration/descriptor.h"

namespace quillmere {

/// One function as the wizard shows it. Positions of arguments are 0-based, in registered order.
class CXlWizExUIFunctionDescriptor {
 public:
  /// Names and defaults are those that the descriptor tells, the lists those of the declared choices.
  CXlWizExUIFunctionDescriptor(DescribedFunction described, std::span<const ArgumentDeclaration> declared);

  XStringView Name() const noexcept { return name_; }
  std::size_t ArgumentCount() const noexcept { return arguments_.size(); }
  /// The position of the argument of that name.
  std::optional<std::size_t> PositionOf(XStringView argumentName) const noexcept;
  /// The list of an argument; null when it has none, and beyond the last argument.
  const CXlWizExUIListProvider* List(std::size_t position) const noexcept;

 private:
  struct Argument {
    XString name;
    std::optional<CXlWizExUIListProvider> list;
  };

  XString name_;
  std::vector<Argument> arguments_;
};

/// The functions by the names that Excel shows.
class CXlWizExUIFunctionRegistry {
 public:
  /// Is told of each function whose descriptor cannot be read.
  using Report = void (*)(XStringView text);

  explicit CXlWizExUIFunctionRegistry(Report report) : report_(report) {}

  /// Adds all functions that are declared in this library.
  void AddDeclared();
  /// Adds a function if it has a list, with what `descriptor`, the text that carries it to the wizard, says of it. One
  /// that cannot be read leaves the function without lists.
  void Add(const FunctionDeclaration& declaration, XStringView descriptor);

  /// The function of that name; null when there is none with a list. It stays where it is until another is added.
  const CXlWizExUIFunctionDescriptor* Find(XStringView name) const noexcept;

 private:
  Report report_;
  std::vector<CXlWizExUIFunctionDescriptor> functions_;
};

}  // namespace quillmere
