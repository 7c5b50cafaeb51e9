// The arguments of one call into the add-in: operands of a formula, converted and laid out as the type text says.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <vector>

#include "host/addin/registry.h"
#include "host/api/junk_block.h"
#include "host/api/marshal.h"
#include "host/faults/argument_fault.h"
#include "host/faults/spoilt_memory.h"
#include "host/values/number_marks.h"

namespace qcalc {

/// A large array, laid out once as XLOPER12 and handed over many times.
class ArgumentCache {
 public:
  struct Entry {
    explicit Entry(std::size_t bytes) : block(bytes) {}
    JunkBlock block;
    XLOPER12 oper;
    std::uint64_t checksum = 0;
  };
  /// The block and value for that array; null when it is too small to be worth keeping.
  std::shared_ptr<const Entry> Find(const ArrayPtr& array);

 private:
  struct Kept {
    std::weak_ptr<const Array> array;
    std::shared_ptr<const Entry> entry;
  };
  std::mutex mutex_;
  std::vector<Kept> kept_;
};

/// Owns all that the machine words point at. The add-in may read it during the call and change nothing; at the end of
/// the object's life it is poisoned.
class Arguments {
 public:
  /// `cache`, which outlives this, `form` and `marks` as the add-in's host keeps them.
  Arguments(ArgumentCache& cache, const ReferenceForm& form, NumberMarks marks)
      : cache_(cache), form_(form), marks_(marks) {}

  /// Lays out the operands for that function. Where Excel converts an argument itself and cannot, the error that the
  /// formula then gives without a call (#VALUE!, #NUM!).
  std::optional<std::int32_t> Build(const RegisteredFunction& function, std::span<const Value> operands);

  /// Spoils one argument that has been laid out for that function, in a copy: what was laid out, and what others may
  /// share, stays. Why it cannot be spoilt so; empty when it has been.
  std::string Spoil(const RegisteredFunction& function, const ArgumentFault& fault);

  std::span<const std::uintptr_t> Words() const { return words_; }

  /// The 1-based number of the first argument that differs from what was laid out, 0 when none does. `withLarge` takes
  /// in the arrays of the cache.
  int FirstChanged(bool withLarge) const;

  /// Whether an address lies in memory of the arguments'.
  bool Contains(const void* address) const;

 private:
  struct Laid {
    std::vector<JunkBlock> blocks;
    std::vector<SpoiltMemory> spoilt;
    std::shared_ptr<const ArgumentCache::Entry> cached;
    std::uint64_t checksum = 0;
  };

  std::optional<std::int32_t> AddByLetter(TypeLetter letter, const Value& operand, Laid& laid);
  template <typename Width>
  std::optional<std::int32_t> AddOper(const Value& operand, Laid& laid);
  std::optional<std::int32_t> AddInteger(TypeLetter letter, const Value& operand);
  std::optional<std::int32_t> AddText(TypeLetter letter, const Value& operand, Laid& laid);
  std::optional<std::int32_t> AddMatrix(const Value& operand, Laid& laid);
  template <typename Width>
  std::string SpoilOper(const ArgumentFault& fault, std::size_t index);
  static std::byte* NewBlock(std::size_t bytes, Laid& laid);
  static std::uint64_t ChecksumOf(const Laid& laid, bool withLarge);

  ArgumentCache& cache_;
  const ReferenceForm form_;
  const NumberMarks marks_;
  std::vector<std::uintptr_t> words_;
  std::vector<Laid> laid_;
};

}  // namespace qcalc
