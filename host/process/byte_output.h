// Where bytes go that are written piece by piece.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace qcalc {

/// Gathers what is written and sends it on in large pieces. What is not finished may be lost.
class ByteOutput {
 public:
  virtual ~ByteOutput() = default;
  ByteOutput(const ByteOutput&) = delete;
  ByteOutput& operator=(const ByteOutput&) = delete;

  void Write(std::string_view bytes) {
    buffer_ += bytes;
    Note();
  }
  /// What is sent next: who writes many small pieces appends them here, and calls Note after a few.
  std::string& Buffer() { return buffer_; }
  void Note() {
    if (buffer_.size() >= kBufferBytes) Flush();
  }
  /// Bytes written so far.
  std::uint64_t Size() const { return sent_ + buffer_.size(); }
  /// Sends what is left.
  virtual void Finish() { Flush(); }

 protected:
  ByteOutput() { buffer_.reserve(2 * kBufferBytes); }
  /// Throws OutputFailure.
  virtual void Send(std::string_view bytes) = 0;

 private:
  static constexpr std::size_t kBufferBytes = 1u << 20;

  void Flush() {
    Send(buffer_);
    sent_ += buffer_.size();
    buffer_.clear();
  }

  std::string buffer_;
  std::uint64_t sent_ = 0;
};

/// Standard output.
class PrintedOutput final : public ByteOutput {
 private:
  void Send(std::string_view bytes) override;
};

}  // namespace qcalc
