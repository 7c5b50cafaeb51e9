#include "excel/wizard/dialog_arguments.h"

#include <algorithm>

namespace quillmere {
namespace {

using Function = CXlWizExUIFunctionDescriptor;

const Function* FindFunction(const DialogFacts& dialog, const CXlWizExUIFunctionRegistry& registry) {
  for (const ShownText& each : dialog.texts)
    if (const Function* const function = registry.Find(each.text)) return function;
  return nullptr;
}

/// Whether something stands in the line of a box and begins left of it.
bool IsLeftOf(const ScreenPlace& box, const ScreenPlace& place) {
  const int middle = box.top + (box.bottom - box.top) / 2;
  return place.left < box.left && place.top <= middle && middle < place.bottom;
}

std::optional<std::size_t> PositionByLabel(const ScreenPlace& box, const DialogFacts& dialog,
                                           const Function& function) {
  for (const ShownText& each : dialog.texts)
    if (IsLeftOf(box, each.place))
      if (const auto position = function.PositionOf(each.text)) return position;
  return std::nullopt;
}

/// Whether the boxes may be those of the function's arguments. Other dialogs name functions too.
bool HasBoxesOf(const DialogFacts& dialog, const Function& function) {
  return dialog.hasScrollBar ? dialog.boxes.size() < function.ArgumentCount()
                             : dialog.boxes.size() == function.ArgumentCount();
}

std::optional<std::size_t> PositionByOrder(const ScreenPlace& box, const DialogFacts& dialog,
                                           const Function& function) {
  if (!dialog.first || !HasBoxesOf(dialog, function)) return std::nullopt;
  const auto above =
      std::ranges::count_if(dialog.boxes, [&box](const ScreenPlace& each) { return each.top < box.top; });
  return *dialog.first + static_cast<std::size_t>(above);
}

}  // namespace

DialogArguments FindArguments(const DialogFacts& dialog, const CXlWizExUIFunctionRegistry& registry) {
  DialogArguments found{.function = FindFunction(dialog, registry)};
  if (!found.function) return found;
  for (const auto position : {&PositionByLabel, &PositionByOrder}) {
    found.positions.clear();
    for (const ScreenPlace& box : dialog.boxes) found.positions.push_back(position(box, dialog, *found.function));
    if (std::ranges::any_of(found.positions, [](const auto& each) { return each.has_value(); })) break;
  }
  return found;
}

}  // namespace quillmere
