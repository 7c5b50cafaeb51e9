// What a Function Arguments dialog holds: a function, what was typed for each argument, and which stand in the boxes.
#pragma once

#include <cstddef>
#include <vector>

#include "host/addin/registry.h"

namespace qcalc {

/// Arguments are counted from 0, in the order of registration.
class DialogPage {
 public:
  /// Excel's dialog has no more boxes than this; further arguments are scrolled to.
  static constexpr std::size_t kMostBoxes = 5;

  DialogPage() = default;
  /// Copies what it shows.
  explicit DialogPage(const RegisteredFunction& function);

  const XString& FunctionName() const { return name_; }
  const XString& FunctionHelp() const { return help_; }
  std::size_t Count() const { return arguments_.size(); }
  const XString& NameOf(std::size_t argument) const { return arguments_[argument].name; }
  const XString& HelpOf(std::size_t argument) const { return arguments_[argument].help; }
  /// What the dialog noticed being typed.
  const XString& TextOf(std::size_t argument) const { return arguments_[argument].text; }
  void SetText(std::size_t argument, XString text) { arguments_[argument].text = std::move(text); }

  std::size_t Boxes() const { return Count() < kMostBoxes ? Count() : kMostBoxes; }
  bool IsScrolled() const { return Count() > kMostBoxes; }
  /// The argument in the topmost box.
  std::size_t First() const { return first_; }
  /// Brings that argument, or as near as can be, into the topmost box.
  void ScrollTo(std::size_t first);

  /// The formula that OK would enter: arguments at the end that are empty are left out.
  XString Formula() const;

 private:
  struct Argument {
    XString name;
    XString help;
    XString text;
  };

  XString name_;
  XString help_;
  std::vector<Argument> arguments_;
  std::size_t first_ = 0;
};

}  // namespace qcalc
