// Writing zip files of the entries of others, and of new bytes for some of them.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>
#include <vector>

#include "host/process/byte_output.h"
#include "host/zip/zip_reader.h"

namespace qcalc {

/// Writes entries one after the other, without going back. Throws OutputFailure for what cannot be written: also for
/// entries and files of 4 GiB and more, and for more than 65,534 entries.
class ZipWriter {
 public:
  explicit ZipWriter(ByteOutput& file);
  ~ZipWriter();
  ZipWriter(const ZipWriter&) = delete;
  ZipWriter& operator=(const ZipWriter&) = delete;

  /// An entry of `reader` with its bytes as they are stored there. Throws ZipFault where those are not all there.
  void Copy(const ZipReader& reader, const ZipEntry& entry);

  /// An entry with the name and the time of `entry`, whose bytes follow: Write, and End behind the last of them.
  void Begin(const ZipEntry& entry);
  void Write(std::string_view bytes);
  void End();

  /// The directory: the end of the zip file.
  void Finish();

 private:
  class Deflater;
  void WriteHeader(const ZipEntry& entry);
  void Put(std::uint64_t number, int bytes);

  ByteOutput& file_;
  std::uint64_t start_;  // of the zip file in `file_`
  std::vector<ZipEntry> entries_;
  std::unique_ptr<Deflater> deflater_;
};

}  // namespace qcalc
