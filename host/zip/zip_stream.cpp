// zlib declares what it reads as bytes that it may write, unless told otherwise.
#define ZLIB_CONST
#include <zlib.h>

#include <algorithm>
#include <array>
#include <new>
#include <optional>

#include "host/zip/zip_format.h"
#include "host/zip/zip_reader.h"

namespace qcalc {

// Bytes without zlib's own header and checksum, as zip files hold them.
class ZipStream::Inflater {
 public:
  Inflater() {
    if (inflateInit2(&stream_, -MAX_WBITS) != Z_OK) throw std::bad_alloc();
  }
  ~Inflater() { inflateEnd(&stream_); }
  Inflater(const Inflater&) = delete;
  Inflater& operator=(const Inflater&) = delete;

  bool NeedsInput() const { return stream_.avail_in == 0; }
  std::span<char> InputBuffer() { return input_; }
  void HasInput(std::size_t bytes) {
    stream_.next_in = reinterpret_cast<const Bytef*>(input_.data());
    stream_.avail_in = static_cast<uInt>(bytes);
  }
  // How many bytes came out; nothing for what does not inflate.
  std::optional<std::size_t> Inflate(std::span<char> into) {
    stream_.next_out = reinterpret_cast<Bytef*>(into.data());
    stream_.avail_out = static_cast<uInt>(into.size());
    const int outcome = inflate(&stream_, Z_NO_FLUSH);
    if (outcome == Z_MEM_ERROR) throw std::bad_alloc();
    if (outcome != Z_OK && outcome != Z_STREAM_END && outcome != Z_BUF_ERROR) return std::nullopt;
    isAtEnd_ = outcome == Z_STREAM_END;
    return into.size() - stream_.avail_out;
  }
  bool IsAtEnd() const { return isAtEnd_; }

 private:
  z_stream stream_{};
  std::array<char, 1 << 16> input_;
  bool isAtEnd_ = false;
};

ZipStream::ZipStream(IByteSource& source, const ZipEntry& entry, std::uint64_t offset, bool isRaw)
    : source_(&source), entry_(&entry), isRaw_(isRaw), offset_(offset), storedLeft_(entry.storedSize) {
  if (!isRaw && entry.method == zip::kDeflated) inflater_ = std::make_unique<Inflater>();
}
ZipStream::ZipStream(ZipStream&&) noexcept = default;
ZipStream::~ZipStream() = default;

void ZipStream::Fail(const std::string& what) const { throw ZipFault("its entry \"" + entry_->name + "\" " + what); }

std::size_t ZipStream::ReadStored(std::span<char> into) {
  const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(into.size(), storedLeft_));
  source_->Read(offset_, into.first(bytes));
  offset_ += bytes;
  storedLeft_ -= bytes;
  return bytes;
}

std::size_t ZipStream::ReadInflated(std::span<char> into) {
  while (!inflater_->IsAtEnd()) {
    if (inflater_->NeedsInput()) {
      const std::size_t bytes = ReadStored(inflater_->InputBuffer());
      if (bytes == 0) Fail("ends in the middle");
      inflater_->HasInput(bytes);
    }
    const std::optional<std::size_t> bytes = inflater_->Inflate(into);
    if (!bytes) Fail("does not inflate");
    if (*bytes > 0) return *bytes;
  }
  return 0;
}

std::size_t ZipStream::Read(std::span<char> into) {
  // zlib counts in 32 bits.
  into = into.first(std::min<std::size_t>(into.size(), 1 << 30));
  if (isRaw_) return ReadStored(into);
  const std::size_t bytes = inflater_ ? ReadInflated(into) : ReadStored(into);
  read_ += bytes;
  if (read_ > entry_->size) Fail("has more bytes than the directory says");
  crc_ = static_cast<std::uint32_t>(crc32(crc_, reinterpret_cast<const Bytef*>(into.data()), static_cast<uInt>(bytes)));
  if (bytes > 0) return bytes;
  if (read_ < entry_->size) Fail("has fewer bytes than the directory says");
  if (crc_ != entry_->crc) Fail("is damaged: its checksum is another");
  return 0;
}

}  // namespace qcalc
