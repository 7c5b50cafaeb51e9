// Reading zip files: their entries, and the bytes of each, inflated or as they are stored.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/zip/byte_source.h"
#include "host/zip/zip_fault.h"

namespace qcalc {

/// An entry as the directory at the file's end has it.
struct ZipEntry {
  std::string name;  ///< as stored, folders parted by "/"
  std::uint16_t flags = 0;
  std::uint16_t method = 0;
  std::uint32_t modified = 0;  ///< the time in its low half, the date in its high one
  std::uint32_t crc = 0;       ///< of the inflated bytes
  std::uint64_t storedSize = 0;
  std::uint64_t size = 0;  ///< inflated
  std::uint64_t offset = 0;
  std::uint64_t limit = 0;  ///< the offset that the entry ends before: that of the next one, or of the directory
};

/// The bytes of one entry, once, from front to back. Its reader outlives it.
class ZipStream {
 public:
  ZipStream(ZipStream&&) noexcept;
  ~ZipStream();

  /// Puts the next bytes into `into`, at least one; how many, which is 0 at the end alone. Throws ZipFault, which
  /// names the entry, for bytes that do not inflate, for more or fewer than the directory says, and at the end where
  /// their checksum is another.
  std::size_t Read(std::span<char> into);

 private:
  friend class ZipReader;
  class Inflater;
  ZipStream(IByteSource& source, const ZipEntry& entry, std::uint64_t offset, bool isRaw);
  std::size_t ReadStored(std::span<char> into);
  std::size_t ReadInflated(std::span<char> into);
  [[noreturn]] void Fail(const std::string& what) const;

  IByteSource* source_;
  const ZipEntry* entry_;
  bool isRaw_;
  std::uint64_t offset_;
  std::uint64_t storedLeft_;
  std::uint64_t read_ = 0;
  std::uint32_t crc_ = 0;
  std::unique_ptr<Inflater> inflater_;
};

/// A zip file that is open for reading. Throws ZipFault for what is no zip file, for entries that lie outside the file
/// or overlap, for two of one name, and for what would inflate to more than 1 GiB or to hundreds of times its size.
class ZipReader {
 public:
  explicit ZipReader(const std::filesystem::path& path);
  /// Of bytes in memory, which outlive the reader.
  explicit ZipReader(std::string_view bytes);

  /// In the order of the directory.
  const std::vector<ZipEntry>& Entries() const { return entries_; }
  /// The entry of that name, in any case of A to Z, or null.
  const ZipEntry* Find(std::string_view name) const;

  /// The entry's inflated bytes. Throws ZipFault for one that is encrypted or packed by an unknown method.
  ZipStream Open(const ZipEntry& entry) const { return Stream(entry, false); }
  /// The entry's bytes as they are stored, to be copied.
  ZipStream OpenRaw(const ZipEntry& entry) const { return Stream(entry, true); }
  /// All inflated bytes; ZipFault beyond `limit` of them.
  std::string ReadWhole(const ZipEntry& entry, std::size_t limit) const;

 private:
  struct Directory {
    std::uint64_t offset = 0;
    std::uint64_t size = 0;
    std::uint64_t entries = 0;
  };

  explicit ZipReader(std::unique_ptr<IByteSource> source);
  std::string Bytes(std::uint64_t offset, std::uint64_t size) const;
  Directory FindDirectory() const;
  Directory FindDirectory64(std::uint64_t endOffset) const;
  void ReadDirectory(const Directory& directory);
  void LimitEntries(std::uint64_t directoryOffset);
  ZipStream Stream(const ZipEntry& entry, bool isRaw) const;

  std::unique_ptr<IByteSource> source_;
  std::vector<ZipEntry> entries_;
  std::unordered_map<std::string, std::size_t> byName_;  // in small letters
};

}  // namespace qcalc
