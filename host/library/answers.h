// Message boxes and alerts answer themselves: nobody sits before the host.
#pragma once

#include <mutex>
#include <optional>

#include "xlcall/xchar.h"

namespace qcalc {

enum class Answer { kYes, kNo, kOk };

class Answers {
 public:
  /// Forgets an answer that no box has taken.
  void Reset();

  /// The answer to the next box; without one a question is answered no, all else ok.
  void SetNext(Answer answer);

  /// Prints a box to standard error and takes the answer to it.
  Answer Take(XStringView kind, XStringView text, XStringView caption, bool isQuestion);

 private:
  std::mutex mutex_;
  std::optional<Answer> next_;
};

/// The answers that the boxes of this process get.
Answers& ProcessAnswers();

}  // namespace qcalc
