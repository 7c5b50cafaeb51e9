#include <windows.h>

#include <stdexcept>

#include "frame/locale/collation.h"

namespace quillmere {

std::string CollationKey(XStringView text, LetterCase letterCase) {
  if (text.empty()) return {};
  const DWORD flags = LCMAP_SORTKEY | (letterCase == LetterCase::kIgnored ? NORM_IGNORECASE : 0);
  const auto map = [&](std::string& key) {
    return LCMapStringEx(LOCALE_NAME_USER_DEFAULT, flags, text.data(), static_cast<int>(text.size()),
                         reinterpret_cast<wchar_t*>(key.data()), static_cast<int>(key.size()), nullptr, nullptr, 0);
  };
  // For sort keys the size is one of bytes, the zero at the end included; with no room at all it is only told.
  std::string key;
  const int size = map(key);
  key.resize(static_cast<std::size_t>(size));
  if (size == 0 || map(key) == 0) throw std::runtime_error("Windows cannot order texts");
  key.pop_back();
  return key;
}

}  // namespace quillmere
