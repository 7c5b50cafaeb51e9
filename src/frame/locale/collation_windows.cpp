#include <windows.h>

#include <stdexcept>

#include "frame/locale/collation.h"

namespace quillmere {

void MakeCollationKey(XStringView text, LetterCase letterCase, std::string& key) {
  key.clear();
  if (text.empty()) return;
  const DWORD flags = LCMAP_SORTKEY | (letterCase == LetterCase::kIgnored ? NORM_IGNORECASE : 0);
  const auto map = [&](wchar_t* to, std::size_t bytes) {
    return static_cast<std::size_t>(LCMapStringEx(LOCALE_NAME_USER_DEFAULT, flags, text.data(),
                                                  static_cast<int>(text.size()), to, static_cast<int>(bytes), nullptr,
                                                  nullptr, 0));
  };
  // For sort keys the size is one of bytes, the zero at the end included; with no room at all it is only told.
  constexpr std::size_t kBytesPerUnit = 3, kEnds = 16;  // enough for most texts
  key.resize(text.size() * kBytesPerUnit + kEnds);
  std::size_t size = map(reinterpret_cast<wchar_t*>(key.data()), key.size());
  if (size == 0) {
    key.resize(map(nullptr, 0));
    if (!key.empty()) size = map(reinterpret_cast<wchar_t*>(key.data()), key.size());
  }
  if (size == 0) throw std::runtime_error("Windows cannot order texts");
  key.resize(size - 1);
}

}  // namespace quillmere
