// Paths of files as scripts and command lines write them.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

namespace qcalc {

/// The path that a text in UTF-8 names.
inline std::filesystem::path PathOf(std::string_view text) { return std::u8string(text.begin(), text.end()); }

/// The path in UTF-8, as messages name it.
inline std::string TextOf(const std::filesystem::path& path) {
  const std::u8string text = path.u8string();
  return {text.begin(), text.end()};
}

}  // namespace qcalc
