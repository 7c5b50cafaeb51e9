#include <unicode/ucol.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>

#include "frame/entry/process_end.h"
#include "frame/locale/collation.h"

namespace quillmere {
namespace {

std::string UserLanguage() {
  for (const char* name : {"LC_ALL", "LC_COLLATE", "LANG"}) {
    const char* value = std::getenv(name);
    if (!value || !*value) continue;
    // Without the encoding and the variant: "de_DE.UTF-8", "de_AT@euro".
    const std::string locale = std::string(value).substr(0, std::strcspn(value, ".@"));
    return locale == "C" || locale == "POSIX" ? "en_US" : locale;
  }
  return "en_US";
}

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

Collator OpenCollator(UColAttributeValue strength) {
  UErrorCode status = U_ZERO_ERROR;
  Collator collator(ucol_open(UserLanguage().c_str(), &status), ucol_close);
  if (U_FAILURE(status)) throw std::runtime_error(std::string("ICU cannot order texts: ") + u_errorName(status));
  ucol_setStrength(collator.get(), strength);
  return collator;
}

/// Any number of threads may make keys by them.
struct Collators {
  Collator withoutCase = OpenCollator(UCOL_SECONDARY);
  Collator withCase = OpenCollator(UCOL_TERTIARY);
};

}  // namespace

void MakeCollationKey(XStringView text, LetterCase letterCase, std::string& key) {
  key.clear();
  if (text.empty()) return;
  static CUntilUnloaded<Collators> collators;
  const Collator& collator = letterCase == LetterCase::kIgnored ? collators->withoutCase : collators->withCase;
  constexpr std::size_t kBytesPerUnit = 4, kEnds = 8;  // enough for most texts
  key.resize(text.size() * kBytesPerUnit + kEnds);
  const auto make = [&] {
    return static_cast<std::size_t>(ucol_getSortKey(collator.get(), text.data(), static_cast<std::int32_t>(text.size()),
                                                    reinterpret_cast<std::uint8_t*>(key.data()),
                                                    static_cast<std::int32_t>(key.size())));
  };
  std::size_t size = make();
  if (size > key.size()) {
    key.resize(size);
    size = make();
  }
  if (size == 0) throw std::runtime_error("ICU cannot order a text");
  key.resize(size - 1);  // without the zero at the end
}

}  // namespace quillmere
