#include "host/zip/zip_reader.h"

#include <algorithm>

#include "host/text/letter_case.h"
#include "host/zip/zip_format.h"

namespace qcalc {

using namespace zip;

namespace {

constexpr std::uint64_t kMostEntries = 100'000;
constexpr std::uint64_t kMostDirectoryBytes = std::uint64_t{1} << 25;
// Ten million numbers in a sheet take half of this, which is read in seconds. And the markup of sheets shrinks to a
// tenth or a twentieth, not to the thousandth that deflating can reach; where there is little of it all, any rate will
// do.
constexpr std::uint64_t kMostInflatedBytes = std::uint64_t{1} << 30;
constexpr std::uint64_t kMostInflation = 100;
constexpr std::uint64_t kBytesOfAnyInflation = std::uint64_t{1} << 28;

std::string Small(std::string_view name) {
  std::string small(name);
  std::transform(small.begin(), small.end(), small.begin(), SmallLetter<char>);
  return small;
}

// Takes from the extra field what the fixed part of the entry has no room for, in the order of the fixed fields.
void TakeFieldsOf64(std::string_view extra, ZipEntry& entry) {
  while (extra.size() >= 4) {
    const std::size_t size = Number16(extra, 2);
    if (size > extra.size() - 4) break;
    std::string_view field = extra.substr(4, size);
    if (Number16(extra, 0) == kExtra64)
      for (std::uint64_t* number : {&entry.size, &entry.storedSize, &entry.offset}) {
        if (*number != kIn64 || field.size() < 8) continue;
        *number = Number64(field, 0);
        field.remove_prefix(8);
      }
    extra.remove_prefix(4 + size);
  }
}

}  // namespace

ZipReader::ZipReader(const std::filesystem::path& path) : ZipReader(std::make_unique<FileBytes>(path)) {}

ZipReader::ZipReader(std::string_view bytes) : ZipReader(std::make_unique<MemoryBytes>(bytes)) {}

ZipReader::ZipReader(std::unique_ptr<IByteSource> source) : source_(std::move(source)) {
  const Directory directory = FindDirectory();
  ReadDirectory(directory);
  LimitEntries(directory.offset);
}

std::string ZipReader::Bytes(std::uint64_t offset, std::uint64_t size) const {
  std::string bytes(static_cast<std::size_t>(size), '\0');
  source_->Read(offset, bytes);
  return bytes;
}

// The directory's place stands at the file's end, before a comment of up to 65,535 bytes.
ZipReader::Directory ZipReader::FindDirectory() const {
  constexpr std::uint64_t kMostTail = kEndBytes + 0xFFFF;
  const std::uint64_t tailSize = std::min(source_->Size(), kMostTail), tailOffset = source_->Size() - tailSize;
  const std::string tail = Bytes(tailOffset, tailSize);
  for (std::size_t at = tail.size() < kEndBytes ? 0 : tail.size() - kEndBytes + 1; at-- > 0;) {
    const std::string_view end = std::string_view(tail).substr(at);
    if (Number32(end, 0) != kEndMark || Number16(end, 20) > end.size() - kEndBytes) continue;
    Directory directory{Number32(end, 16), Number32(end, 12), Number16(end, 10)};
    if (directory.offset == kIn64 || directory.size == kIn64 || directory.entries == kCountIn64)
      directory = FindDirectory64(tailOffset + at);
    const std::uint64_t room = tailOffset + at;
    if (directory.offset > room || directory.size > room - directory.offset)
      throw ZipFault("its directory lies outside the file");
    return directory;
  }
  throw ZipFault("it is no zip file, or its end is missing");
}

ZipReader::Directory ZipReader::FindDirectory64(std::uint64_t endOffset) const {
  if (endOffset < kEnd64LocatorBytes) throw ZipFault("its directory cannot be found");
  const std::string locator = Bytes(endOffset - kEnd64LocatorBytes, kEnd64LocatorBytes);
  if (Number32(locator, 0) != kEnd64LocatorMark) throw ZipFault("its directory cannot be found");
  const std::string end = Bytes(Number64(locator, 8), kEnd64Bytes);
  if (Number32(end, 0) != kEnd64Mark) throw ZipFault("its directory cannot be found");
  return {Number64(end, 48), Number64(end, 40), Number64(end, 32)};
}

void ZipReader::ReadDirectory(const Directory& directory) {
  if (directory.entries > kMostEntries || directory.size > kMostDirectoryBytes)
    throw ZipFault("it has " + std::to_string(directory.entries) + " entries, of at most " +
                   std::to_string(kMostEntries));
  const std::string bytes = Bytes(directory.offset, directory.size);
  std::string_view rest = bytes;
  for (std::uint64_t i = 0; i < directory.entries; ++i) {
    if (rest.size() < kCentralBytes || Number32(rest, 0) != kCentralMark)
      throw ZipFault("its directory ends before its last entry");
    const std::size_t name = Number16(rest, 28), extra = Number16(rest, 30), comment = Number16(rest, 32);
    if (name + extra + comment > rest.size() - kCentralBytes)
      throw ZipFault("its directory ends before its last entry");
    ZipEntry entry{std::string(rest.substr(kCentralBytes, name)),
                   Number16(rest, 8),
                   Number16(rest, 10),
                   Number32(rest, 12),
                   Number32(rest, 16),
                   Number32(rest, 20),
                   Number32(rest, 24),
                   Number32(rest, 42)};
    TakeFieldsOf64(rest.substr(kCentralBytes + name, extra), entry);
    if (!byName_.emplace(Small(entry.name), entries_.size()).second)
      throw ZipFault("it has two entries \"" + entry.name + "\"");
    entries_.push_back(std::move(entry));
    rest.remove_prefix(kCentralBytes + name + extra + comment);
  }
}

// What a hostile file would have inflated many times over is found before any of it is.
void ZipReader::LimitEntries(std::uint64_t directoryOffset) {
  std::vector<ZipEntry*> ordered;
  std::uint64_t sum = 0;
  for (ZipEntry& entry : entries_) {
    ordered.push_back(&entry);
    if (entry.size > kMostInflatedBytes || (sum += entry.size) > kMostInflatedBytes)
      throw ZipFault("it would inflate to more than " + std::to_string(kMostInflatedBytes >> 20) + " MiB");
  }
  if (sum > kBytesOfAnyInflation && sum / kMostInflation > source_->Size())
    throw ZipFault("it would inflate to " + std::to_string(sum / source_->Size()) + " times its size");
  std::sort(ordered.begin(), ordered.end(), [](const auto* a, const auto* b) { return a->offset > b->offset; });
  std::uint64_t limit = directoryOffset;
  for (ZipEntry* entry : ordered) {
    entry->limit = limit;
    if (entry->offset > limit || limit - entry->offset < kLocalBytes + entry->name.size() ||
        limit - entry->offset - kLocalBytes - entry->name.size() < entry->storedSize)
      throw ZipFault("its entry \"" + entry->name + "\" overlaps another or lies outside the file");
    limit = entry->offset;
  }
}

const ZipEntry* ZipReader::Find(std::string_view name) const {
  const auto found = byName_.find(Small(name));
  return found == byName_.end() ? nullptr : &entries_[found->second];
}

// The header before an entry's bytes says again what the directory says; the lengths of name and extra field are its
// own.
ZipStream ZipReader::Stream(const ZipEntry& entry, bool isRaw) const {
  const auto fail = [&entry](const char* what) { throw ZipFault("its entry \"" + entry.name + "\" " + what); };
  const std::string header = Bytes(entry.offset, kLocalBytes);
  if (Number32(header, 0) != kLocalMark) fail("is not where the directory says");
  const std::uint64_t data = entry.offset + kLocalBytes + Number16(header, 26) + Number16(header, 28);
  if (data > entry.limit || entry.storedSize > entry.limit - data) fail("overlaps another or lies outside the file");
  if (!isRaw) {
    if ((entry.flags | Number16(header, 6)) & kEncryptedFlags) fail("is encrypted");
    if (entry.method != kStored && entry.method != kDeflated) fail("is packed by an unknown method");
    if (entry.method == kStored && entry.storedSize != entry.size) fail("has two sizes");
  }
  return {*source_, entry, data, isRaw};
}

std::string ZipReader::ReadWhole(const ZipEntry& entry, std::size_t limit) const {
  if (entry.size > limit)
    throw ZipFault("its entry \"" + entry.name + "\" has " + std::to_string(entry.size) + " bytes, of at most " +
                   std::to_string(limit));
  std::string bytes(static_cast<std::size_t>(entry.size), '\0');
  ZipStream stream = Open(entry);
  std::span<char> rest = bytes;
  while (!rest.empty()) rest = rest.subspan(stream.Read(rest));
  char none = 0;
  stream.Read({&none, 1});
  return bytes;
}

}  // namespace qcalc
