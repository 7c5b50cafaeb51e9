// Windows by their class.
#pragma once

#include <windows.h>

#include <cstddef>
#include <iterator>

#include "xlcall/xchar.h"

namespace quillmere {

/// The class of a window, as far as it counts: its first 50 units. Allocates nothing.
class ClassName {
 public:
  explicit ClassName(HWND window) noexcept
      : length_(static_cast<std::size_t>(GetClassNameW(window, units_, static_cast<int>(std::size(units_))))) {}
  XStringView View() const noexcept { return {units_, length_}; }

 private:
  static constexpr std::size_t kUnitsRead = 50;

  XCHAR units_[kUnitsRead + 1];
  std::size_t length_;
};

}  // namespace quillmere
