// What the add-in did against the rules of Excel's C API, noted where it happens and taken up by the script runner.
#pragma once

#include <mutex>
#include <string>
#include <utility>
#include <vector>

namespace qcalc {

/// A list of sentences, written to from any thread.
class Complaints {
 public:
  void Add(std::string text) {
    const std::lock_guard lock(mutex_);
    texts_.push_back(std::move(text));
  }

  /// Hands over what has been noted since the last time.
  std::vector<std::string> Take() {
    const std::lock_guard lock(mutex_);
    return std::exchange(texts_, {});
  }

 private:
  std::mutex mutex_;
  std::vector<std::string> texts_;
};

}  // namespace qcalc
