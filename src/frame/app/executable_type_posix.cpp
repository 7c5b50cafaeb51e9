// Natively the type is read from the file, as Windows would.
#include <array>
#include <cstdio>
#include <memory>

#include "frame/app/executable_type.h"

namespace quillmere {
namespace {

// Answers of GetBinaryType.
constexpr std::int32_t kNoBinary = -1;
constexpr std::int32_t kBinary32 = 0;
constexpr std::int32_t kBinaryDos = 1;
constexpr std::int32_t kBinary64 = 6;

// Layout of an executable file.
constexpr long kOffsetOfHeaderPlace = 0x3C;
constexpr unsigned kMachineX86 = 0x014C;
constexpr unsigned kMachineX64 = 0x8664;
constexpr unsigned kIsLibrary = 0x2000;

struct FileCloser {
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

template <std::size_t count>
bool ReadAt(std::FILE* file, long place, std::array<unsigned char, count>& bytes) {
  return std::fseek(file, place, SEEK_SET) == 0 && std::fread(bytes.data(), 1, count, file) == count;
}

unsigned Word(const unsigned char* bytes) { return bytes[0] | static_cast<unsigned>(bytes[1]) << 8; }

}  // namespace

std::int32_t BinaryTypeOf(const char* path) {
  const File file(std::fopen(path, "rb"));
  std::array<unsigned char, 2> dosMark{};
  if (!file || !ReadAt(file.get(), 0, dosMark) || dosMark != std::array<unsigned char, 2>{'M', 'Z'}) return kNoBinary;
  std::array<unsigned char, 4> headerPlace{};
  std::array<unsigned char, 24> header{};
  if (!ReadAt(file.get(), kOffsetOfHeaderPlace, headerPlace)) return kBinaryDos;
  const long place = static_cast<long>(Word(headerPlace.data())) | static_cast<long>(Word(headerPlace.data() + 2))
                                                                       << 16;
  if (!ReadAt(file.get(), place, header) || header[0] != 'P' || header[1] != 'E') return kBinaryDos;
  if (Word(header.data() + 22) & kIsLibrary) return kNoBinary;
  switch (Word(header.data() + 4)) {
    case kMachineX64:
      return kBinary64;
    case kMachineX86:
      return kBinary32;
    default:
      return kNoBinary;
  }
}

}  // namespace quillmere
