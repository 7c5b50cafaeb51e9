#include "samples/writer/text_lines.h"

#include <algorithm>

#include "host/text/utf8.h"

namespace samples {

int LinesOf(std::string_view text, int width) {
  const auto isFirst = [](char byte) { return !qcalc::IsInsideCharacter(byte); };
  int lines = 1, used = 0;
  while (!text.empty()) {
    const std::size_t end = text.find(' ');
    const std::string_view word = text.substr(0, end);
    const int length = static_cast<int>(std::count_if(word.begin(), word.end(), isFirst));
    const int wanted = used == 0 ? length : used + 1 + length;
    if (wanted > width && used > 0) {
      ++lines;
      used = length;
    } else {
      used = wanted;
    }
    lines += std::max(used - 1, 0) / width;
    used = used == 0 ? 0 : (used - 1) % width + 1;
    text.remove_prefix(end == text.npos ? text.size() : end + 1);
  }
  return lines;
}

}  // namespace samples
