// The order of texts in the user's language, as the system knows it: accented letters beside their plain ones.
#pragma once

#include <string>

#include "xlcall/xchar.h"

namespace quillmere {

enum class LetterCase { kIgnored, kCounts };

/// Makes a key for comparing a text many times: keys stand in the order of std::string as the texts do in the user's
/// language, and are equal where the language does not tell texts apart; none has a zero, and the empty text's is
/// empty. The language is the system's on Windows (which looks at hyphens and apostrophes last), elsewhere that which
/// LC_ALL, LC_COLLATE or LANG names, "C" and "POSIX" being American English. What `key` held is lost, its memory used
/// again. Throws std::runtime_error where the system has no order.
void MakeCollationKey(XStringView text, LetterCase letterCase, std::string& key);

/// The key of a text.
inline std::string CollationKey(XStringView text, LetterCase letterCase) {
  std::string key;
  MakeCollationKey(text, letterCase, key);
  return key;
}

}  // namespace quillmere
