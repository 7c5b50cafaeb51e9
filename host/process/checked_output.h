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
  std::streambuf* before_;
};

}  // namespace qcalc
