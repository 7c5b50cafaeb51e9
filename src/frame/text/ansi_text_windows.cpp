#include <windows.h>

#include "frame/text/ansi_text.h"

namespace quillmere {
namespace {

/// `text` with "?" for each surrogate pair: no other code page of Windows has these characters, and Windows would put a
/// default for each half.
XString WithoutPairs(XStringView text) {
  XString single;
  single.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isPair = i + 1 < text.size() && IS_SURROGATE_PAIR(text[i], text[i + 1]);
    single.push_back(isPair ? XTEXT('?') : text[i]);
    if (isPair) ++i;
  }
  return single;
}

std::string Narrow(XStringView text, DWORD flags, const char* missing) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int bytes = WideCharToMultiByte(CP_ACP, flags, text.data(), size, nullptr, 0, missing, nullptr);
  std::string narrow(static_cast<std::size_t>(bytes > 0 ? bytes : 0), '\0');
  if (bytes > 0) WideCharToMultiByte(CP_ACP, flags, text.data(), size, narrow.data(), bytes, missing, nullptr);
  return narrow;
}

}  // namespace

XString WidenAnsi(std::string_view text) {
  if (text.empty()) return {};
  const int size = static_cast<int>(text.size());
  const int units = MultiByteToWideChar(CP_ACP, 0, text.data(), size, nullptr, 0);
  XString wide(static_cast<std::size_t>(units > 0 ? units : 0), XCHAR{});
  if (units > 0) MultiByteToWideChar(CP_ACP, 0, text.data(), size, wide.data(), units);
  return wide;
}

std::string NarrowToAnsi(XStringView text) {
  // UTF-8 has every character, and takes neither the flag nor a default.
  if (GetACP() == CP_UTF8) return Narrow(text, 0, nullptr);
  return Narrow(WithoutPairs(text), WC_NO_BEST_FIT_CHARS, "?");
}

}  // namespace quillmere
