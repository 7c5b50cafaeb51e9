// What the add-in did against the rules of Excel's C API, noted where it happens and taken up by the script runner.
#pragma once

#include <algorithm>
#include <mutex>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/text/shown_text.h"

namespace qcalc {

/// A list of sentences, each once with the number of times it came; written to from any thread.
class Complaints {
 public:
  using Counted = std::vector<std::pair<std::string, int>>;

  /// The text, UTF-8, is kept as it can be shown (ShownMessage).
  void Add(std::string_view written) {
    std::string text = ShownMessage(written);
    const std::lock_guard lock(mutex_);
    const auto same = [&](const auto& other) { return other.first == text; };
    if (const auto found = std::find_if(counted_.begin(), counted_.end(), same); found != counted_.end())
      ++found->second;
    else
      counted_.emplace_back(std::move(text), 1);
  }

  /// Hands over what has been noted since the last time, in the order in which the sentences first came.
  Counted TakeCounted() {
    const std::lock_guard lock(mutex_);
    return std::exchange(counted_, {});
  }

  /// The same as texts; one that came more often says so.
  std::vector<std::string> Take() {
    std::vector<std::string> texts;
    for (const auto& [text, count] : TakeCounted())
      texts.push_back(count == 1 ? text : text + " (" + std::to_string(count) + " times)");
    return texts;
  }

 private:
  std::mutex mutex_;
  Counted counted_;
};

}  // namespace qcalc
