// What was not understood in a book.
#pragma once

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace qcalc {

/// Sentences about a book, of which the first thousand are kept and the others counted.
class Remarks {
 public:
  void Add(std::string sentence) {
    if (sentences_.size() < kMost)
      sentences_.push_back(std::move(sentence));
    else
      ++more_;
  }
  std::vector<std::string> Take() {
    if (more_ > 0) sentences_.push_back("... and " + std::to_string(more_) + " more such places");
    return std::exchange(sentences_, {});
  }

 private:
  static constexpr std::size_t kMost = 1000;
  std::vector<std::string> sentences_;
  std::size_t more_ = 0;
};

}  // namespace qcalc
