// Standard output on which nothing is lost: what cannot be written ends the program.
#pragma once

#include <streambuf>
#include <string>

namespace qcalc {

/// Standard output could not be written. No std::exception, so that nobody takes it for the failure of a formula.
struct OutputFailure {
  std::string reason;
};

/// Stands behind std::cout for as long as the object lives: a write that the system refuses throws an OutputFailure out
/// of the statement that wrote or flushed, and each flush hands everything over to the system.
/// Messages on std::cerr do not wait for it, and take the line of progress away first.
class CheckedOutput : public std::streambuf {
 public:
  CheckedOutput();
  ~CheckedOutput() override;
  CheckedOutput(const CheckedOutput&) = delete;
  CheckedOutput& operator=(const CheckedOutput&) = delete;

 protected:
  int_type overflow(int_type unit) override;
  std::streamsize xsputn(const char* text, std::streamsize count) override;
  int sync() override;

 private:
  /// Stands behind std::cerr.
  class Messages : public std::streambuf {
   public:
    Messages();
    ~Messages() override;
    Messages(const Messages&) = delete;
    Messages& operator=(const Messages&) = delete;

   protected:
    int_type overflow(int_type unit) override;
    std::streamsize xsputn(const char* text, std::streamsize count) override;

   private:
    std::streambuf* before_;
  };

  std::streambuf* before_;
  Messages messages_;
};

}  // namespace qcalc
