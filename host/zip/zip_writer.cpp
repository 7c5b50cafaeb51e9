#include "host/zip/zip_writer.h"

#include <zlib.h>

#include <algorithm>
#include <array>
#include <limits>
#include <new>
#include <string>

#include "host/process/checked_output.h"
#include "host/zip/zip_format.h"

namespace qcalc {
namespace {

constexpr std::uint16_t kVersion = 20;  // of what is needed to read it: deflated entries, and folders
constexpr std::uint32_t kSizesMark = 0x08074b50;
constexpr std::uint64_t kMostBytes = zip::kIn64 - 1;
// Twice as fast as the library's own choice, for a fifth more bytes.
constexpr int kLevel = 3;

void RequireSize(std::uint64_t size, std::string_view what) {
  if (size > kMostBytes) throw OutputFailure{std::string(what) + " would have more than 4 GiB"};
}

}  // namespace

class ZipWriter::Deflater {
 public:
  explicit Deflater(ByteOutput& file) : file_(file) {
    constexpr int kNoHeader = -15, kMemory = 9;
    if (deflateInit2(&stream_, kLevel, Z_DEFLATED, kNoHeader, kMemory, Z_DEFAULT_STRATEGY) != Z_OK)
      throw std::bad_alloc();
  }
  ~Deflater() { deflateEnd(&stream_); }
  Deflater(const Deflater&) = delete;
  Deflater& operator=(const Deflater&) = delete;

  void Begin() {
    deflateReset(&stream_);
    crc_ = static_cast<std::uint32_t>(crc32(0, nullptr, 0));
    size_ = storedSize_ = 0;
  }

  void Write(std::string_view bytes, bool isLast) {
    constexpr std::size_t kMostAtOnce = std::size_t{1} << 30;
    size_ += bytes.size();
    do {
      const std::string_view some = bytes.substr(0, kMostAtOnce);
      bytes.remove_prefix(some.size());
      // Without bytes the library would begin anew.
      if (!some.empty())
        crc_ = static_cast<std::uint32_t>(
            crc32(crc_, reinterpret_cast<const Bytef*>(some.data()), static_cast<uInt>(some.size())));
      // The library takes no constant bytes, and changes none.
      stream_.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(some.data()));
      stream_.avail_in = static_cast<uInt>(some.size());
      Deflate(isLast && bytes.empty() ? Z_FINISH : Z_NO_FLUSH);
    } while (!bytes.empty());
  }

  std::uint32_t Crc() const { return crc_; }
  std::uint64_t Size() const { return size_; }
  std::uint64_t StoredSize() const { return storedSize_; }

 private:
  void Deflate(int flush) {
    do {
      stream_.next_out = reinterpret_cast<Bytef*>(buffer_.data());
      stream_.avail_out = static_cast<uInt>(buffer_.size());
      deflate(&stream_, flush);
      const std::size_t made = buffer_.size() - stream_.avail_out;
      file_.Write({buffer_.data(), made});
      storedSize_ += made;
    } while (stream_.avail_out == 0);
  }

  ByteOutput& file_;
  z_stream stream_{};
  std::array<char, 1u << 16> buffer_;
  std::uint32_t crc_ = 0;
  std::uint64_t size_ = 0;
  std::uint64_t storedSize_ = 0;
};

ZipWriter::ZipWriter(ByteOutput& file) : file_(file), start_(file.Size()) {}

ZipWriter::~ZipWriter() = default;

void ZipWriter::Put(std::uint64_t number, int bytes) {
  for (; bytes > 0; --bytes, number >>= 8) file_.Buffer() += static_cast<char>(number & 0xFF);
}

void ZipWriter::WriteHeader(const ZipEntry& entry) {
  entries_.push_back(entry);
  ZipEntry& made = entries_.back();
  made.offset = file_.Size() - start_;
  RequireSize(made.offset, "it");
  // Sizes that are known later stand behind the bytes.
  const bool isLater = (made.flags & zip::kSizesBehindFlag) != 0;
  Put(zip::kLocalMark, 4);
  Put(kVersion, 2);
  Put(made.flags, 2);
  Put(made.method, 2);
  Put(made.modified, 4);
  Put(isLater ? 0 : made.crc, 4);
  Put(isLater ? 0 : made.storedSize, 4);
  Put(isLater ? 0 : made.size, 4);
  Put(made.name.size(), 2);
  Put(0, 2);
  file_.Write(made.name);
}

void ZipWriter::Copy(const ZipReader& reader, const ZipEntry& entry) {
  RequireSize(std::max(entry.size, entry.storedSize), entry.name);
  ZipEntry made = entry;
  made.flags &= static_cast<std::uint16_t>(~zip::kSizesBehindFlag);
  WriteHeader(made);
  ZipStream stream = reader.OpenRaw(entry);
  std::array<char, 1u << 16> bytes;
  while (const std::size_t size = stream.Read(bytes)) file_.Write({bytes.data(), size});
}

void ZipWriter::Begin(const ZipEntry& entry) {
  ZipEntry made = entry;
  made.flags |= zip::kSizesBehindFlag;
  made.method = zip::kDeflated;
  WriteHeader(made);
  if (!deflater_) deflater_ = std::make_unique<Deflater>(file_);
  deflater_->Begin();
}

void ZipWriter::Write(std::string_view bytes) { deflater_->Write(bytes, false); }

void ZipWriter::End() {
  deflater_->Write({}, true);
  ZipEntry& made = entries_.back();
  made.crc = deflater_->Crc();
  made.size = deflater_->Size();
  made.storedSize = deflater_->StoredSize();
  RequireSize(std::max(made.size, made.storedSize), made.name);
  Put(kSizesMark, 4);
  Put(made.crc, 4);
  Put(made.storedSize, 4);
  Put(made.size, 4);
  file_.Note();
}

void ZipWriter::Finish() {
  const std::uint64_t offset = file_.Size() - start_;
  for (const ZipEntry& entry : entries_) {
    Put(zip::kCentralMark, 4);
    Put(kVersion, 2);
    Put(kVersion, 2);
    Put(entry.flags, 2);
    Put(entry.method, 2);
    Put(entry.modified, 4);
    Put(entry.crc, 4);
    Put(entry.storedSize, 4);
    Put(entry.size, 4);
    Put(entry.name.size(), 2);
    Put(0, 12);  // no extra field, no comment, the only disk, no attributes
    Put(entry.offset, 4);
    file_.Write(entry.name);
  }
  const std::uint64_t size = file_.Size() - start_ - offset;
  RequireSize(offset + size, "it");
  if (entries_.size() >= zip::kCountIn64) throw OutputFailure{"it would have more than 65,534 entries"};
  Put(zip::kEndMark, 4);
  Put(0, 4);  // the only disk
  Put(entries_.size(), 2);
  Put(entries_.size(), 2);
  Put(size, 4);
  Put(offset, 4);
  Put(0, 2);
}

}  // namespace qcalc
