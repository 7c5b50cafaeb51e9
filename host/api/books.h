// The books over memory that changes hands between the host and the add-in.
//
// What the host lends (texts, arrays and reference lists of callback results) stands here until the add-in gives it
// back; what the add-in returns to be freed by itself (xlbitDLLFree) and has no way to free is counted.
#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/api/complaints.h"

namespace qcalc {

/// What memory of the host's is filled with at birth.
inline constexpr int kJunk = 0xA7;

/// Overwrites memory that is about to be released, so that whoever still reads it reads rubbish.
void Poison(void* memory, std::size_t bytes);

/// Memory of the host's that the add-in may look at. It is filled with junk at birth and poisoned at its end.
class JunkBlock {
 public:
  explicit JunkBlock(std::size_t bytes);
  ~JunkBlock();
  JunkBlock(JunkBlock&& other) noexcept;
  JunkBlock& operator=(JunkBlock&&) = delete;

  std::byte* data() const { return data_; }
  std::size_t size() const { return size_; }

 private:
  std::byte* data_;
  std::size_t size_;
};

/// Where a lent value came from: the function or entry point that made the callback, and the callback.
struct LoanOrigin {
  std::string function;
  std::string_view callback;
};

class Books {
 public:
  explicit Books(Complaints& complaints) : complaints_(complaints) {}
  ~Books();
  Books(const Books&) = delete;
  Books& operator=(const Books&) = delete;

  /// A new block of that many bytes on loan to the add-in, known by its address.
  std::byte* Lend(std::size_t bytes, LoanOrigin origin);

  /// Whether a block that begins at that address is on loan.
  bool IsLent(const void* address) const;

  enum class Receipt { kTaken, kTakenBefore, kUnknown };

  /// Takes a block back, whose memory is poisoned at once.
  Receipt TakeBack(const void* address);

  /// Notes a result that the add-in was to free and exports no way to.
  void NoteNeverFreed(const std::string& function);

  /// What is out of balance: a sentence for each function and callback whose loans never came back, and for each
  /// function whose results were not freed. The books are empty afterwards.
  std::vector<std::string> Close();

 private:
  struct Loan {
    JunkBlock block;
    LoanOrigin origin;
  };

  void ReleaseOldest();
  void Quarantine(Loan loan);

  Complaints& complaints_;
  mutable std::mutex mutex_;
  std::unordered_map<const void*, Loan> loans_;
  // Blocks that came back are kept a while, poisoned: an address stays unique and a late write shows.
  std::deque<Loan> returned_;
  std::unordered_map<const void*, LoanOrigin> returnedOrigins_;
  std::size_t returnedBytes_ = 0;
  std::map<std::string, long long> neverFreed_;
};

}  // namespace qcalc
