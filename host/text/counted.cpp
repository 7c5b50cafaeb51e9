#include "host/text/counted.h"

namespace qcalc {

std::string Grouped(std::int64_t count) {
  const std::string digits = std::to_string(count);
  std::string text;
  for (std::size_t i = 0; i < digits.size(); ++i) {
    if (i > 0 && (digits.size() - i) % 3 == 0) text += ',';
    text += digits[i];
  }
  return text;
}

std::string NounFor(std::int64_t count, const std::string& noun) { return count == 1 ? noun : noun + "s"; }

}  // namespace qcalc
