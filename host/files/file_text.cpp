#include "host/files/file_text.h"

#include <cerrno>
#include <fstream>
#include <system_error>
#include <vector>

namespace qcalc {
namespace {

constexpr std::size_t kChunkBytes = 1u << 20;

}  // namespace

std::variant<std::string, FileFailure> ReadFile(const std::filesystem::path& path) {
  const auto failure = [] { return FileFailure{"it cannot be read: " + std::generic_category().message(errno)}; };
  std::error_code unknown;
  if (std::filesystem::is_directory(path, unknown)) return FileFailure{"it is a folder"};
  errno = 0;
  std::ifstream stream(path, std::ios::binary);
  if (!stream) return failure();
  std::string text;
  if (const std::uintmax_t size = std::filesystem::file_size(path, unknown); !unknown) text.reserve(size);
  std::vector<char> chunk(kChunkBytes);
  do {
    stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
    text.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
  } while (stream);
  if (stream.bad()) return failure();
  return text;
}

}  // namespace qcalc
