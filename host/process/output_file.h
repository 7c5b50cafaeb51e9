// A file that is there as a whole or not at all.
#pragma once

#include <filesystem>
#include <fstream>
#include <string_view>

#include "host/process/byte_output.h"

namespace qcalc {

/// Writes beside the file's place, and moves what was written there at the end: until then, and whatever goes wrong,
/// the file that stood there is whole, and may be read. What is no plain file, a pipe say, is written to as it is.
/// Throws OutputFailure, whose reason names the file.
class OutputFile final : public ByteOutput {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  /// Takes away what was not finished.
  ~OutputFile() override;
  /// Puts the file in its place.
  void Finish() override;

 private:
  void Send(std::string_view bytes) override;
  [[noreturn]] void Fail(std::string_view what) const;

  std::filesystem::path path_;
  std::filesystem::path written_;  ///< the same where that is no plain file; empty once it is in its place
  std::ofstream stream_;
};

}  // namespace qcalc
