#include <unicode/ucol.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>

#include "host/text/collation.h"

namespace qcalc {

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

// Any number of threads may compare by it.
const UCollator* UserCollator() {
  static const Collator collator = [] {
    UErrorCode status = U_ZERO_ERROR;
    Collator opened(ucol_open(UserLanguage().c_str(), &status), ucol_close);
    if (U_FAILURE(status)) throw std::runtime_error(std::string("ICU cannot order texts: ") + u_errorName(status));
    return opened;
  }();
  return collator.get();
}

std::weak_ordering Collate(XStringView left, XStringView right) {
  return ucol_strcoll(UserCollator(), left.data(), static_cast<std::int32_t>(left.size()), right.data(),
                      static_cast<std::int32_t>(right.size())) <=> 0;
}

bool IsIgnorable(XCHAR unit) { return unit == XTEXT('-') || unit == XTEXT('\''); }

XString WithoutIgnorable(XStringView text) {
  XString rest(text);
  std::erase_if(rest, IsIgnorable);
  return rest;
}

// As Windows orders texts that are equal but for such marks: at the first place where one has a mark and the other has
// none, or another, the mark comes later, and the hyphen later than the apostrophe.
std::weak_ordering CompareIgnorable(XStringView left, XStringView right) {
  const auto rankOf = [](XStringView text, std::size_t place) {
    return place >= text.size() || !IsIgnorable(text[place]) ? 0 : text[place] == XTEXT('-') ? 2 : 1;
  };
  for (std::size_t place = 0; place < std::max(left.size(), right.size()); ++place)
    if (const auto order = rankOf(left, place) <=> rankOf(right, place); order != 0) return order;
  return std::weak_ordering::equivalent;
}

}  // namespace

std::weak_ordering CompareInLanguage(XStringView left, XStringView right) {
  if (std::none_of(left.begin(), left.end(), IsIgnorable) && std::none_of(right.begin(), right.end(), IsIgnorable))
    return Collate(left, right);
  const auto order = Collate(WithoutIgnorable(left), WithoutIgnorable(right));
  return order != 0 ? order : CompareIgnorable(left, right);
}

}  // namespace qcalc
