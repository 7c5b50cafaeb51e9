// What the process that works notes about itself where it survives that process: how far it is, and in which call.
#pragma once

#include <array>
#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

namespace qcalc {

/// A text of at most `capacity` bytes; what is longer is cut. Written by one thread.
template <std::size_t capacity>
class JournalText {
 public:
  void Set(std::string_view text) { length_ = text.copy(bytes_, capacity); }
  void Append(std::string_view text) { length_ += text.copy(bytes_ + length_, capacity - length_); }
  std::string Get() const { return {bytes_, length_}; }

 private:
  std::size_t length_ = 0;
  char bytes_[capacity] = {};
};

/// Expectations that were met and that failed.
struct Tally {
  std::atomic<std::int64_t> passed{0};
  std::atomic<std::int64_t> failed{0};
};

/// Lies in memory that the process that works shares with the one that supervises it, so it holds no pointers.
struct Journal {
  /// The script or formula in work: its 0-based number, the line, the case.
  std::atomic<std::int32_t> item{0};
  std::atomic<std::int32_t> line{0};
  JournalText<256> caseName;
  Tally tally;

  /// What has been done, for those who wait.
  std::atomic<std::int64_t> rowsLoaded{0};
  std::atomic<std::int64_t> formulasCalculated{0};
  /// How many there are to be, where that is known; else 0.
  std::atomic<std::int64_t> formulasDue{0};
  /// How many columns the line takes up that tells so on the terminal; 0 when none stands there.
  std::atomic<std::int32_t> progressWidth{0};

  /// A call into the add-in that has not returned yet. `order` grows from call to call; 0 is no call.
  struct Call {
    std::atomic<std::uint64_t> order{0};
    std::uint64_t thread = 0;
    JournalText<1024> name;
  };
  std::array<Call, 1024> calls;
  std::atomic<std::uint64_t> callsMade{0};

  /// Why the process gave up, where it knows: an exception's text.
  JournalText<512> lastWords;

  /// Set at the end of all work: the exit status.
  std::atomic<bool> isFinished{false};
  std::atomic<std::int32_t> status{0};

  /// The calls that have not returned, each thread's from the innermost on: "A, within B" or, for several threads,
  /// "A, within B; or C"; empty when there are none.
  std::string OpenCalls() const;
  /// Forgets the calls and the last words, before another process goes on.
  void BeginProcess();
};

/// The journal of this process. One that nobody supervises keeps its own.
Journal& ProcessJournal();
/// Makes `journal` the one of this process. To be called before all work.
void SetProcessJournal(Journal& journal);

/// Notes in the journal that this thread is in a call, for as long as the object lives.
class CallNote {
 public:
  /// `about` is said before the name.
  explicit CallNote(std::string_view name, std::string_view about = {});
  ~CallNote();
  CallNote(const CallNote&) = delete;
  CallNote& operator=(const CallNote&) = delete;

 private:
  Journal::Call* call_;  // null when too many are open
};

}  // namespace qcalc
