// The list of an argument that takes one of a few coded values, as the function wizard offers it.
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "frame/registration/function_declaration.h"

namespace quillmere {

/// One entry of a list: what is written into the argument's edit box, and what it means.
struct WizardListEntry {
  XString code;
  XString text;
};

/// The entries of one argument, in the order in which they are shown.
class CXlWizExUIListProvider {
 public:
  /// `defaultCode` is what the argument stands for when it is left out; empty: nothing that the list has.
  CXlWizExUIListProvider(std::vector<WizardListEntry> entries, XString defaultCode)
      : entries_(std::move(entries)), defaultCode_(std::move(defaultCode)) {}

  std::span<const WizardListEntry> Entries() const noexcept { return entries_; }

  /// The place (0-based) of the entry that an edit box with this text stands for: the one of its code, in an empty box
  /// the one of the default. Nothing when it holds anything else, a reference for example.
  std::optional<std::size_t> EntryOf(XStringView boxText) const noexcept;

 private:
  std::vector<WizardListEntry> entries_;
  XString defaultCode_;
};

/// Makes lists from what is declared of an argument.
class CXlWizExUIArgumentListCreator {
 public:
  /// The list of the declared choices. `defaultText` is the default as a descriptor writes it.
  static CXlWizExUIListProvider Create(std::span<const ArgumentChoice> choices, XString defaultText);
};

/// An entry as the list shows it: "1  Vertical Lookup".
XString ShownEntry(const WizardListEntry& entry);

}  // namespace quillmere
