// Which function and which of its arguments a Function Arguments dialog shows.
#pragma once

#include <cstddef>
#include <optional>
#include <vector>

#include "excel/wizard/function_registry.h"

namespace quillmere {

/// A place on the screen, in pixels; right and bottom lie outside.
struct ScreenPlace {
  int left = 0;
  int top = 0;
  int right = 0;
  int bottom = 0;
};

/// Something that the dialog shows, with its text.
struct ShownText {
  XString text;
  ScreenPlace place;
};

/// What is seen of the dialog.
struct DialogFacts {
  std::vector<ShownText> texts;
  std::vector<ScreenPlace> boxes;  ///< the visible edit boxes, in any order
  bool hasScrollBar = false;       ///< there are more arguments than boxes
  /// The position of the argument in the topmost box; nothing when the scroll bar does not tell.
  std::optional<std::size_t> first = 0;
};

/// What the edit boxes are for.
struct DialogArguments {
  const CXlWizExUIFunctionDescriptor* function = nullptr;  ///< null: none that has a list
  std::vector<std::optional<std::size_t>> positions = {};  ///< the argument of each box, in the order of the facts
};

/// Finds function and arguments: by the labels left of the boxes; where the dialog tells no label and has as many boxes
/// as that function has arguments, by their order from top to bottom.
DialogArguments FindArguments(const DialogFacts& dialog, const CXlWizExUIFunctionRegistry& registry);

}  // namespace quillmere
