// C++ source text under construction, which knows its own lines.
#pragma once

#include <string>
#include <string_view>

namespace quillmere::generator {

/// Collects lines; `#line` leads the compiler's messages to the table and back.
class SourceText {
 public:
  /// `name`: the file's own name in messages.
  explicit SourceText(std::string name) : name_(std::move(name)) {}

  void Line(std::string_view text = "") {
    text_ += text;
    text_ += '\n';
    ++lines_;
  }

  /// One line of code that the compiler reports as that line of a table.
  void LineOf(const std::string& file, int line, std::string_view text) {
    Line("#line " + std::to_string(line) + " \"" + file + "\"");
    Line(text);
    Line("#line " + std::to_string(lines_ + 2) + " \"" + name_ + "\"");
  }

  const std::string& Text() const { return text_; }

 private:
  std::string name_;
  std::string text_;
  int lines_ = 0;
};

}  // namespace quillmere::generator
