#include "host/api/loans.h"

#include <iterator>
#include <utility>

#include "host/text/counted.h"

#if defined(__SANITIZE_ADDRESS__)
/// The sanitizer's own function; this compiler comes without the header that declares it.
extern "C" int __asan_address_is_poisoned(const volatile void* address);
#endif

namespace qcalc {
namespace {

constexpr std::size_t kQuarantineBytes = 16u << 20;
constexpr std::size_t kLargestQuarantined = 1u << 20;
constexpr std::size_t kMostQuarantined = 4096;  // small ones: beyond that they would fill the caches

}  // namespace

std::byte* Loans::Lend(std::size_t bytes, LoanOrigin origin) {
  JunkBlock block(bytes);
  std::byte* memory = block.data();
  const std::lock_guard lock(mutex_);
  returnedOrigins_.erase(memory);
  loans_.emplace(memory, Loan{std::move(block), std::move(origin)});
  return memory;
}

bool Loans::IsLent(const void* address) const {
  const std::lock_guard lock(mutex_);
  return loans_.contains(address);
}

bool Loans::IsInLoan(const void* address) const {
  const std::lock_guard lock(mutex_);
  const auto next = loans_.upper_bound(address);
  if (next == loans_.begin()) return false;
  const JunkBlock& block = std::prev(next)->second.block;
  return static_cast<const std::byte*>(address) < block.data() + block.size();
}

bool Loans::CameBack(const void* address) const {
  const std::lock_guard lock(mutex_);
#if defined(__SANITIZE_ADDRESS__)
  // The sanitizer lets others have its address one day.
  return returnedOrigins_.contains(address) && __asan_address_is_poisoned(address) != 0;
#else
  return returnedOrigins_.contains(address);
#endif
}

Loans::Receipt Loans::TakeBack(const void* address) {
  const std::lock_guard lock(mutex_);
  auto node = loans_.extract(address);
  if (node.empty()) return returnedOrigins_.contains(address) ? Receipt::kTakenBefore : Receipt::kUnknown;
  CheckGuard(node.mapped());
  returnedOrigins_.emplace(address, node.mapped().origin);
  Quarantine(std::move(node.mapped()));
  return Receipt::kTaken;
}

void Loans::CheckGuard(const Loan& loan) {
  if (!loan.block.IsGuardIntact())
    complaints_.Add(loan.origin.function + " wrote past the end of a value of " + std::string(loan.origin.callback));
}

void Loans::Quarantine(Loan loan) {
#if defined(__SANITIZE_ADDRESS__)
  // The sanitizer keeps freed memory back itself, and sees reads of it as well as writes.
  static_cast<void>(loan);
#else
  if (loan.block.size() > kLargestQuarantined) {
    returnedOrigins_.erase(loan.block.data());  // an address that may be somebody else's at once
    return;
  }
  loan.block.Poison();
  returnedBytes_ += loan.block.size();
  returned_.push_back(std::move(loan));
  while (returnedBytes_ > kQuarantineBytes || returned_.size() > kMostQuarantined) ReleaseOldest();
#endif
}

void Loans::ReleaseOldest() {
  const Loan& oldest = returned_.front();
  if (!oldest.block.IsPoisoned())
    complaints_.Add(oldest.origin.function + " wrote to memory of " + std::string(oldest.origin.callback) +
                    " after giving it back through xlFree");
  returnedBytes_ -= oldest.block.size();
  returnedOrigins_.erase(oldest.block.data());
  returned_.pop_front();
}

void Loans::NoteNeverFreed(const std::string& function) {
  const std::lock_guard lock(mutex_);
  ++neverFreed_[function];
}

std::vector<std::string> Loans::Close() {
  const std::lock_guard lock(mutex_);
  while (!returned_.empty()) ReleaseOldest();
  std::map<std::pair<std::string, std::string_view>, long long> kept;
  for (const auto& [address, loan] : loans_) {
    CheckGuard(loan);
    ++kept[{loan.origin.function, loan.origin.callback}];
  }
  std::vector<std::string> sentences;
  for (const auto& [origin, count] : kept)
    sentences.push_back(origin.first + " kept " + std::to_string(count) + " " + NounFor(count, "value") + " of " +
                        std::string(origin.second) + ": never given back through xlFree");
  for (const auto& [function, count] : neverFreed_)
    sentences.push_back(function + " returned " + std::to_string(count) + " " + NounFor(count, "value") +
                        " with xlbitDLLFree, and the add-in exports no way to free them");
  loans_.clear();
  returnedOrigins_.clear();
  neverFreed_.clear();
  return sentences;
}

}  // namespace qcalc
