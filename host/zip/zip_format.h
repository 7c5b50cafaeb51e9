// The records of zip files (PKWARE's application note), by the offsets of their fields. All numbers are little-endian.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace qcalc::zip {

constexpr std::uint32_t kLocalMark = 0x04034b50;
constexpr std::uint32_t kCentralMark = 0x02014b50;
constexpr std::uint32_t kEndMark = 0x06054b50;
constexpr std::uint32_t kEnd64Mark = 0x06064b50;
constexpr std::uint32_t kEnd64LocatorMark = 0x07064b50;

/// The fixed parts; names, extra fields and comments follow.
constexpr std::size_t kLocalBytes = 30;
constexpr std::size_t kCentralBytes = 46;
constexpr std::size_t kEndBytes = 22;
constexpr std::size_t kEnd64Bytes = 56;
constexpr std::size_t kEnd64LocatorBytes = 20;

/// The extra field that holds what does not fit into 32 bits, whose own field is then all ones.
constexpr std::uint16_t kExtra64 = 1;
constexpr std::uint32_t kIn64 = 0xFFFF'FFFF;
constexpr std::uint16_t kCountIn64 = 0xFFFF;

constexpr std::uint16_t kEncryptedFlags = 0x2041;  ///< encrypted, strongly, or its header masked
constexpr std::uint16_t kSizesBehindFlag = 0x0008;

constexpr std::uint16_t kStored = 0;
constexpr std::uint16_t kDeflated = 8;

/// The number of `size` bytes at that offset, which lies within the record.
constexpr std::uint64_t NumberAt(std::string_view record, std::size_t offset, std::size_t size) {
  std::uint64_t number = 0;
  for (std::size_t i = size; i-- > 0;) number = number << 8 | static_cast<unsigned char>(record[offset + i]);
  return number;
}
constexpr std::uint16_t Number16(std::string_view record, std::size_t offset) {
  return static_cast<std::uint16_t>(NumberAt(record, offset, 2));
}
constexpr std::uint32_t Number32(std::string_view record, std::size_t offset) {
  return static_cast<std::uint32_t>(NumberAt(record, offset, 4));
}
constexpr std::uint64_t Number64(std::string_view record, std::size_t offset) { return NumberAt(record, offset, 8); }

}  // namespace qcalc::zip
