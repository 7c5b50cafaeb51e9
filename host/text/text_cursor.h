// The place in a text that is being parsed; shared by the parsers of literals and formulas.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <string_view>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/syntax_error.h"

namespace qcalc {

/// Reads bytes from front to back. Fail throws a SyntaxError with the place, which the parsers' entry points catch.
class TextCursor {
 public:
  explicit TextCursor(std::string_view text) : text_(text) {}

  bool AtEnd() const { return at_ >= text_.size(); }
  /// The byte `ahead` of the place; 0 beyond the end.
  char Peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
  std::string_view Rest() const { return text_.substr(at_); }
  std::size_t Position() const { return at_; }
  void MoveTo(std::size_t position) { at_ = position; }
  void Advance(std::size_t bytes = 1) { at_ = std::min(at_ + bytes, text_.size()); }
  bool Accept(char byte) {
    if (AtEnd() || text_[at_] != byte) return false;
    ++at_;
    return true;
  }
  void SkipBlanks() {
    while (!AtEnd() && (text_[at_] == ' ' || text_[at_] == '\t' || text_[at_] == '\n' || text_[at_] == '\r')) ++at_;
  }
  std::string_view Slice(std::size_t from) const { return text_.substr(from, at_ - from); }

  [[noreturn]] void Fail(std::string message) const { FailAt(at_, std::move(message)); }
  [[noreturn]] void FailAt(std::size_t position, std::string message) const {
    SyntaxError error;
    const std::string_view before = text_.substr(0, position);
    error.line = 1 + static_cast<int>(std::count(before.begin(), before.end(), '\n'));
    const std::size_t lineStart = before.rfind('\n');
    error.column = 1 + static_cast<int>(lineStart == std::string_view::npos ? position : position - lineStart - 1);
    error.message = std::move(message);
    throw error;
  }
  /// "expected X, found Y".
  [[noreturn]] void FailExpecting(const std::string& what) const { Fail("expected " + what + ", found " + Found()); }

  /// What stands here, for messages: a word, or one character that is part of none.
  std::string Found() const {
    if (AtEnd()) return "the end";
    std::size_t end = at_;
    while (end < text_.size() && IsPartOfWord(text_[end])) ++end;
    if (end == at_) ++end;
    return "'" + std::string(text_.substr(at_, end - at_)) + "'";
  }

 private:
  static bool IsPartOfWord(char byte) {
    return IsLetter(byte) || IsDigit(byte) || static_cast<unsigned char>(byte) >= 0x80 || byte == '_' || byte == '.' ||
           byte == '$';
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace qcalc
