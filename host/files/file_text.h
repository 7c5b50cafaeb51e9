// A whole file as a text.
#pragma once

#include <filesystem>
#include <string>
#include <variant>

namespace qcalc {

/// Why a file could not be read, as words that may follow its name.
struct FileFailure {
  std::string reason;
};

std::variant<std::string, FileFailure> ReadFile(const std::filesystem::path& path);

}  // namespace qcalc
