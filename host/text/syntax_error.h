// What a parser of the host hands back: a value, or where and why it could not read on.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace qcalc {

/// Why a text could not be read. `line` and `column` are 1-based; columns count bytes of the UTF-8 text.
struct SyntaxError {
  int line = 1;
  int column = 1;
  std::string message;  ///< what was expected and what was found

  /// "line 1, column 7: expected ')', found end of formula".
  std::string ToString() const {
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": " + message;
  }
};

/// A parsed `T` or the error that kept it from being read.
template <typename T>
class Parsed {
 public:
  Parsed(T value) : content_(std::move(value)) {}
  Parsed(SyntaxError error) : content_(std::move(error)) {}

  explicit operator bool() const { return content_.index() == 0; }
  const T& operator*() const { return std::get<0>(content_); }
  T& operator*() { return std::get<0>(content_); }
  const T* operator->() const { return &std::get<0>(content_); }
  const SyntaxError& Error() const { return std::get<1>(content_); }

 private:
  std::variant<T, SyntaxError> content_;
};

}  // namespace qcalc
