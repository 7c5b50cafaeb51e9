// Bytes that may be read at any place: of a file, or in memory.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <span>
#include <string_view>

namespace qcalc {

/// Bytes at offsets from 0 to Size().
class IByteSource {
 public:
  virtual ~IByteSource() = default;
  virtual std::uint64_t Size() const = 0;
  /// Fills `into` with the bytes from `offset` on. Throws ZipFault where they are not all there.
  virtual void Read(std::uint64_t offset, std::span<char> into) = 0;
};

/// A file, open as long as the object lives. Throws ZipFault when it cannot be opened.
class FileBytes : public IByteSource {
 public:
  explicit FileBytes(const std::filesystem::path& path);
  std::uint64_t Size() const override { return size_; }
  void Read(std::uint64_t offset, std::span<char> into) override;

 private:
  std::ifstream stream_;
  std::uint64_t size_ = 0;
};

/// Views bytes that outlive it.
class MemoryBytes : public IByteSource {
 public:
  explicit MemoryBytes(std::string_view bytes) : bytes_(bytes) {}
  std::uint64_t Size() const override { return bytes_.size(); }
  void Read(std::uint64_t offset, std::span<char> into) override;

 private:
  std::string_view bytes_;
};

}  // namespace qcalc
