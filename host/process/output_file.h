// A file that is there as a whole or not at all.
#pragma once

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

namespace qcalc {

/// Writes beside the file's place, and moves what was written there at the end: until then, and whatever goes wrong,
/// the file that stood there is whole, and may be read. What is no plain file, a pipe say, is written to as it is.
/// Throws OutputFailure, whose reason names the file.
class OutputFile {
 public:
  explicit OutputFile(const std::filesystem::path& path);
  /// Takes away what was not finished.
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  void Write(std::string_view bytes) {
    buffer_ += bytes;
    if (buffer_.size() >= kBufferBytes) Flush();
  }
  /// What goes to the file next: who writes many small pieces appends them here, and calls Note after a few.
  std::string& Buffer() { return buffer_; }
  void Note() {
    if (buffer_.size() >= kBufferBytes) Flush();
  }
  /// Bytes written so far.
  std::uint64_t Size() const { return flushed_ + buffer_.size(); }
  /// Puts the file in its place.
  void Finish();

 private:
  static constexpr std::size_t kBufferBytes = 1u << 20;

  void Flush();
  [[noreturn]] void Fail(std::string_view what) const;

  std::filesystem::path path_;
  std::filesystem::path written_;  ///< the same where that is no plain file; empty once it is in its place
  std::ofstream stream_;
  std::string buffer_;
  std::uint64_t flushed_ = 0;
};

}  // namespace qcalc
