#include <windows.h>

#include "frame/text/ansi_text.h"

namespace quillmere {

XString WidenAnsi(std::string_view text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
  XString wide(static_cast<std::size_t>(units > 0 ? units : 0), XCHAR{});
  if (units > 0) MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), units);
  return wide;
}

std::string NarrowToAnsi(XStringView text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int bytes = WideCharToMultiByte(CP_ACP, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
  std::string narrow(static_cast<std::size_t>(bytes > 0 ? bytes : 0), '\0');
  if (bytes > 0) WideCharToMultiByte(CP_ACP, 0, text.data(), size, narrow.data(), bytes, nullptr, nullptr);
  return narrow;
}

}  // namespace quillmere
