// Zip files made in memory, entries as they are.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qcalc {

/// What an entry says of itself where that is not the truth.
struct ZipClaim {
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::int64_t size = -1;  ///< inflated
};

/// The names and bytes of the entries, in order.
using ZipContent = std::vector<std::pair<std::string, std::string>>;

/// The zip file of those entries. `claim` is that of the last.
inline std::string ZipOf(const ZipContent& content, const ZipClaim& claim = {}) {
  std::string file, directory;
  const auto put = [](std::string& to, std::uint64_t number, int bytes) {
    for (int i = 0; i < bytes; ++i) to += static_cast<char>(number >> (8 * i));
  };
  for (const auto& [name, bytes] : content) {
    const ZipClaim& said = &name == &content.back().first ? claim : ZipClaim();
    const std::uint32_t offset = static_cast<std::uint32_t>(file.size());
    const auto crc = crc32(0, reinterpret_cast<const Bytef*>(bytes.data()), static_cast<uInt>(bytes.size()));
    std::string fields;
    put(fields, 20, 2);
    put(fields, said.flags, 2);
    put(fields, said.method, 2);
    put(fields, 0, 4);
    put(fields, crc, 4);
    put(fields, bytes.size(), 4);
    put(fields, said.size < 0 ? bytes.size() : static_cast<std::uint64_t>(said.size), 4);
    put(fields, name.size(), 2);
    put(fields, 0, 2);
    file += "PK\3\4" + fields + name + bytes;
    directory += std::string("PK\1\2\24\0", 6) + fields + std::string(10, '\0');
    put(directory, offset, 4);
    directory += name;
  }
  const std::size_t start = file.size();
  file += directory + std::string("PK\5\6\0\0\0\0", 8);
  for (int i = 0; i < 2; ++i) put(file, content.size(), 2);
  put(file, directory.size(), 4);
  put(file, start, 4);
  return file + std::string(2, '\0');
}

}  // namespace qcalc
