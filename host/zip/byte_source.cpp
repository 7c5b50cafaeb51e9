#include "host/zip/byte_source.h"

#include <cerrno>
#include <system_error>

#include "host/zip/zip_fault.h"

namespace qcalc {

FileBytes::FileBytes(const std::filesystem::path& path) {
  std::error_code unknown;
  if (std::filesystem::is_directory(path, unknown)) throw ZipFault("it is a folder");
  errno = 0;
  stream_.open(path, std::ios::binary);
  if (!stream_) throw ZipFault("it cannot be read: " + std::generic_category().message(errno));
  stream_.seekg(0, std::ios::end);
  const std::streamoff size = stream_.tellg();
  if (size < 0) throw ZipFault("it cannot be read from any place on, as a file can");
  size_ = static_cast<std::uint64_t>(size);
}

void FileBytes::Read(std::uint64_t offset, std::span<char> into) {
  if (offset > size_ || into.size() > size_ - offset) throw ZipFault("it ends too early");
  stream_.seekg(static_cast<std::streamoff>(offset));
  stream_.read(into.data(), static_cast<std::streamsize>(into.size()));
  if (!stream_) throw ZipFault("it cannot be read to its end");
}

void MemoryBytes::Read(std::uint64_t offset, std::span<char> into) {
  if (offset > bytes_.size() || into.size() > bytes_.size() - offset) throw ZipFault("it ends too early");
  bytes_.copy(into.data(), into.size(), static_cast<std::size_t>(offset));
}

}  // namespace qcalc
