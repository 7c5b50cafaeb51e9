// Mistakes found in tables, each with the line that a developer has to change.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace quillmere::generator {

/// A line of a table. Lines count from 1.
struct Place {
  std::string file;
  int line = 0;
};

struct Diagnostic {
  Place place;
  std::string message;
};

/// All mistakes of one run: a table is read to its end, so that one build shows every mistake.
class Diagnostics {
 public:
  void Add(Place place, std::string message) { all_.push_back({std::move(place), std::move(message)}); }
  const std::vector<Diagnostic>& All() const { return all_; }

  /// One line each, as compilers write them: "file:line: error: message".
  std::string Text() const {
    std::string text;
    for (const Diagnostic& each : all_) {
      text += each.place.file + ":" + std::to_string(each.place.line) + ": error: " + each.message + "\n";
    }
    return text;
  }

 private:
  std::vector<Diagnostic> all_;
};

}  // namespace quillmere::generator
