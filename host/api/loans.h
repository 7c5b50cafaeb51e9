// The account of memory that changes hands between the host and the add-in.
//
// What the host lends (texts, arrays and reference lists of callback results) stands here until the add-in gives it
// back; what the add-in returns to be freed by itself (xlbitDLLFree) and has no way to free is counted.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "host/api/complaints.h"
#include "host/api/junk_block.h"
#include "host/process/brief_mutex.h"

namespace qcalc {

/// Where a lent value came from: the function or entry point that made the callback, and the callback.
struct LoanOrigin {
  std::string function;
  std::string_view callback;
};

class Loans {
 public:
  explicit Loans(Complaints& complaints) : complaints_(complaints) {}
  Loans(const Loans&) = delete;
  Loans& operator=(const Loans&) = delete;

  /// A new block of that many bytes on loan to the add-in, known by its address.
  std::byte* Lend(std::size_t bytes, LoanOrigin origin);

  /// Whether a block that begins at that address is on loan, or one that holds the address.
  bool IsLent(const void* address) const;
  bool IsInLoan(const void* address) const;
  /// Whether a block that began at that address came back, and its address has not been lent again.
  bool CameBack(const void* address) const;

  enum class Receipt { kTaken, kTakenBefore, kUnknown };

  /// Takes a block back, whose memory is poisoned at once. A write past its end goes to the complaints.
  Receipt TakeBack(const void* address);

  /// Notes a result that the add-in was to free and exports no way to.
  void NoteNeverFreed(const std::string& function);

  /// What is out of balance: a sentence for each function and callback whose loans never came back, and for each
  /// function whose results were not freed. The account is empty afterwards.
  std::vector<std::string> Close();

 private:
  struct Loan {
    JunkBlock block;
    LoanOrigin origin;
  };

  void CheckGuard(const Loan& loan);
  void ReleaseOldest();
  void Quarantine(Loan loan);

  Complaints& complaints_;
  mutable BriefMutex mutex_;
  std::map<const void*, Loan, std::less<>> loans_;
  // Blocks that came back are kept a while, poisoned: an address stays unique and a late write shows.
  std::deque<Loan> returned_;
  std::unordered_map<const void*, LoanOrigin> returnedOrigins_;
  std::size_t returnedBytes_ = 0;
  std::map<std::string, long long> neverFreed_;
};

}  // namespace qcalc
