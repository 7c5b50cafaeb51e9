#include "host/process/checked_output.h"

#include <cerrno>
#include <cstdio>
#include <iostream>
#include <system_error>

#include "host/process/journal.h"
#include "host/process/progress_line.h"

namespace qcalc {
namespace {

[[noreturn]] void Fail() { throw OutputFailure{std::generic_category().message(errno)}; }

}  // namespace

CheckedOutput::CheckedOutput() : before_(std::cout.rdbuf(this)) {
  // The stream passes on what its buffer throws only when it is told to.
  std::cout.exceptions(std::ios::badbit);
}

CheckedOutput::~CheckedOutput() {
  std::cout.exceptions(std::ios::goodbit);
  std::cout.rdbuf(before_);
}

CheckedOutput::int_type CheckedOutput::overflow(int_type unit) {
  if (traits_type::eq_int_type(unit, traits_type::eof())) return traits_type::not_eof(unit);
  const char byte = traits_type::to_char_type(unit);
  xsputn(&byte, 1);
  return unit;
}

std::streamsize CheckedOutput::xsputn(const char* text, std::streamsize count) {
  EraseProgress(ProcessJournal());
  if (std::fwrite(text, 1, static_cast<std::size_t>(count), stdout) != static_cast<std::size_t>(count)) Fail();
  return count;
}

int CheckedOutput::sync() {
  if (std::fflush(stdout) != 0) Fail();
  return 0;
}

CheckedOutput::Messages::Messages() : before_(std::cerr.rdbuf(this)) {
  // A message about lost output must not try to flush it first.
  std::cerr.tie(nullptr);
}

CheckedOutput::Messages::~Messages() {
  std::cerr.tie(&std::cout);
  std::cerr.rdbuf(before_);
}

CheckedOutput::Messages::int_type CheckedOutput::Messages::overflow(int_type unit) {
  if (traits_type::eq_int_type(unit, traits_type::eof())) return traits_type::not_eof(unit);
  EraseProgress(ProcessJournal());
  return before_->sputc(traits_type::to_char_type(unit));
}

std::streamsize CheckedOutput::Messages::xsputn(const char* text, std::streamsize count) {
  EraseProgress(ProcessJournal());
  return before_->sputn(text, count);
}

}  // namespace qcalc
