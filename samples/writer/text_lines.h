// How many lines a text takes where it is wrapped.
#pragma once

#include <string_view>

namespace samples {

/// The lines that a text of UTF-8 takes in a column of that many characters, a longer word broken.
int LinesOf(std::string_view text, int width);

}  // namespace samples
