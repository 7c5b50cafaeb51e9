#include "host/addin/arguments.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "host/faults/argument_damage.h"
#include "host/text/ansi_text.h"
#include "host/values/conversion.h"

namespace qcalc {
namespace {

constexpr std::size_t kCachedElements = 4096;
// What stands in a register above a short integer: the callee must not look there.
constexpr std::uintptr_t kRegisterJunk = kJunk * std::uintptr_t{0x0101010101010101};

std::uint64_t Mix(std::uint64_t sum, const std::byte* data, std::size_t bytes) {
  constexpr std::uint64_t kPrime = 0x100000001B3;
  std::size_t i = 0;
  for (; i + 8 <= bytes; i += 8) {
    std::uint64_t word;
    std::memcpy(&word, data + i, 8);
    sum = (sum ^ word) * kPrime;
    sum ^= sum >> 29;
  }
  for (; i < bytes; ++i) sum = (sum ^ static_cast<std::uint64_t>(data[i])) * kPrime;
  return sum;
}

std::uint64_t ChecksumOfEntry(const ArgumentCache::Entry& entry) {
  return Mix(Mix(0, entry.block.Guarded().data(), entry.block.Guarded().size()),
             reinterpret_cast<const std::byte*>(&entry.oper), sizeof entry.oper);
}

/// A value where one cell is wanted: the scalar, a missing argument as an empty cell, the first element of an array.
CellView TopLeft(const Value& operand) {
  if (operand.IsArray()) return operand.AsArray()->At(0, 0);
  if (operand.IsReference()) return CellView::Error(xlerrValue);
  return operand.AsCell();
}

}  // namespace

std::shared_ptr<const ArgumentCache::Entry> ArgumentCache::Find(const ArrayPtr& array) {
  if (array->Size() < kCachedElements) return nullptr;
  const std::lock_guard lock(mutex_);
  std::erase_if(kept_, [](const Kept& kept) { return kept.array.expired(); });
  for (const Kept& kept : kept_)
    if (kept.array.lock() == array) return kept.entry;
  const Value value = Value::OfArray(array);
  const auto entry = std::make_shared<Entry>(Marshal<Wide>::BlockBytes(value, {}));
  Marshal<Wide>::Write(value, {}, entry->block.data(), entry->oper);
  entry->checksum = ChecksumOfEntry(*entry);
  kept_.push_back({array, entry});
  return entry;
}

std::optional<std::int32_t> Arguments::Build(const RegisteredFunction& function, std::span<const Value> operands) {
  const Value missing = Value::Missing();
  const std::vector<TypeLetter>& letters = function.type.arguments;
  words_.reserve(letters.size());
  laid_.resize(letters.size());
  for (std::size_t i = 0; i < letters.size(); ++i) {
    Laid& laid = laid_[i];
    if (auto error = AddByLetter(letters[i], i < operands.size() ? operands[i] : missing, laid)) return error;
    laid.checksum = ChecksumOf(laid, false);
  }
  return std::nullopt;
}

std::optional<std::int32_t> Arguments::AddByLetter(TypeLetter letter, const Value& operand, Laid& laid) {
  switch (PassingOf(letter)) {
    case Passing::kOper12:
      return AddOper<Wide>(operand, laid);
    case Passing::kOper:
      return AddOper<Narrow>(operand, laid);
    case Passing::kText:
      return AddText(letter, operand, laid);
    case Passing::kMatrix:
      return AddMatrix(operand, laid);
    case Passing::kInteger:
      break;
  }
  return AddInteger(letter, operand);
}

template <typename Width>
std::optional<std::int32_t> Arguments::AddOper(const Value& operand, Laid& laid) {
  if (!Marshal<Width>::Fits(operand)) return xlerrValue;
  if constexpr (std::is_same_v<Width, Wide>) {
    if (operand.IsArray()) laid.cached = cache_.Find(operand.AsArray());
    if (laid.cached) {
      words_.push_back(reinterpret_cast<std::uintptr_t>(&laid.cached->oper));
      return std::nullopt;
    }
  }
  const std::size_t bytes = Marshal<Width>::BlockBytes(operand, form_);
  std::byte* block = bytes ? NewBlock(bytes, laid) : nullptr;
  auto* oper = reinterpret_cast<typename Width::Oper*>(NewBlock(sizeof(typename Width::Oper), laid));
  Marshal<Width>::Write(operand, form_, block, *oper);
  words_.push_back(reinterpret_cast<std::uintptr_t>(oper));
  return std::nullopt;
}

std::optional<std::int32_t> Arguments::AddInteger(TypeLetter letter, const Value& operand) {
  const CellView cell = TopLeft(operand);
  if (letter.letter == 'A') {
    const Value truth = ToBoolean(cell);
    if (!truth.IsBoolean()) return truth.AsError();
    words_.push_back((kRegisterJunk << 16) | (truth.AsBoolean() ? 1 : 0));
    return std::nullopt;
  }
  const Value converted = ToNumber(cell, marks_);
  if (!converted.IsNumber()) return converted.AsError();
  const double number = std::trunc(converted.AsNumber());
  const auto within = [&](auto limits) {
    return number >= static_cast<double>(limits.min()) && number <= static_cast<double>(limits.max());
  };
  if (letter.letter == 'J') {
    if (!within(std::numeric_limits<std::int32_t>())) return xlerrNum;
    words_.push_back((kRegisterJunk << 32) | static_cast<std::uint32_t>(static_cast<std::int32_t>(number)));
    return std::nullopt;
  }
  const bool isSigned = letter.letter == 'I';
  if (isSigned ? !within(std::numeric_limits<std::int16_t>()) : !within(std::numeric_limits<std::uint16_t>()))
    return xlerrNum;
  words_.push_back((kRegisterJunk << 16) | static_cast<std::uint16_t>(static_cast<std::int32_t>(number)));
  return std::nullopt;
}

std::optional<std::int32_t> Arguments::AddText(TypeLetter letter, const Value& operand, Laid& laid) {
  const Value converted = ToText(TopLeft(operand), marks_);
  if (!converted.IsText()) return converted.AsError();
  const XString& text = converted.AsText();
  if (text.size() > static_cast<std::size_t>(letter.isWide ? kXlMaxText : kXlMaxText4)) return xlerrValue;
  const bool isCounted = letter.letter == 'D';
  const std::size_t unit = letter.isWide ? sizeof(XCHAR) : 1;
  // Counted: the length before the text and junk behind it. Else a zero behind it.
  std::byte* block = NewBlock((text.size() + 2) * unit, laid);
  const std::size_t start = isCounted ? 1 : 0;
  if (letter.isWide) {
    auto* units = reinterpret_cast<XCHAR*>(block);
    std::copy(text.begin(), text.end(), units + start);
    units[isCounted ? 0 : text.size()] = isCounted ? static_cast<XCHAR>(text.size()) : XCHAR{0};
  } else {
    const std::string bytes = ToAnsi(text);
    std::memcpy(block + start, bytes.data(), bytes.size());
    block[isCounted ? 0 : text.size()] = isCounted ? static_cast<std::byte>(text.size()) : std::byte{0};
  }
  words_.push_back(reinterpret_cast<std::uintptr_t>(block));
  return std::nullopt;
}

std::optional<std::int32_t> Arguments::AddMatrix(const Value& operand, Laid& laid) {
  const bool isArray = operand.IsArray();
  if (operand.IsReference()) return xlerrValue;
  const CellView single = isArray ? CellView() : operand.AsCell();
  const std::span<const CellView> cells = isArray ? operand.AsArray()->Cells() : std::span(&single, 1);
  for (const CellView& cell : cells)
    if (!cell.IsNumber()) return xlerrValue;
  std::byte* block = NewBlock(offsetof(FP12, array) + cells.size() * sizeof(double), laid);
  auto* matrix = reinterpret_cast<FP12*>(block);
  matrix->rows = isArray ? operand.AsArray()->Rows() : 1;
  matrix->columns = isArray ? operand.AsArray()->Columns() : 1;
  auto* numbers = reinterpret_cast<double*>(block + offsetof(FP12, array));
  for (std::size_t i = 0; i < cells.size(); ++i) numbers[i] = cells[i].AsNumber();
  words_.push_back(reinterpret_cast<std::uintptr_t>(block));
  return std::nullopt;
}

std::string Arguments::Spoil(const RegisteredFunction& function, const ArgumentFault& fault) {
  const auto index = static_cast<std::size_t>(fault.argument - 1);
  const std::string which = "argument " + std::to_string(fault.argument);
  if (fault.argument < 1 || index >= words_.size()) return which + " does not exist";
  if (std::string reason = WhyNotOffered(fault); !reason.empty()) return reason;
  std::string reason;
  switch (PassingOf(function.type.arguments[index])) {
    case Passing::kOper12:
      reason = SpoilOper<Wide>(fault, index);
      break;
    case Passing::kOper:
      reason = SpoilOper<Narrow>(fault, index);
      break;
    case Passing::kText:
    case Passing::kMatrix:
      if (fault.kind == ArgumentFaultKind::kNull)
        words_[index] = 0;
      else
        reason = "it is a pointer to bare data: only null makes sense";
      break;
    case Passing::kInteger:
      reason = "it is passed by value";
  }
  laid_[index].checksum = ChecksumOf(laid_[index], false);
  return reason.empty() ? reason : which + " cannot be spoilt so: " + reason;
}

template <typename Width>
std::string Arguments::SpoilOper(const ArgumentFault& fault, std::size_t index) {
  using Oper = typename Width::Oper;
  const auto* oper = reinterpret_cast<const Oper*>(words_[index]);
  Oper* spoilt = nullptr;
  std::string reason;
  if (fault.kind != ArgumentFaultKind::kNull) {
    if (!oper) return "it is null";
    spoilt = SpoiltCopy<Width>(*oper, fault, laid_[index].spoilt, reason);
    if (!spoilt) return reason;
  }
  words_[index] = reinterpret_cast<std::uintptr_t>(spoilt);
  return reason;
}

std::byte* Arguments::NewBlock(std::size_t bytes, Laid& laid) { return laid.blocks.emplace_back(bytes).data(); }

std::uint64_t Arguments::ChecksumOf(const Laid& laid, bool withLarge) {
  std::uint64_t sum = 0;
  for (const JunkBlock& block : laid.blocks) sum = Mix(sum, block.Guarded().data(), block.Guarded().size());
  for (const SpoiltMemory& memory : laid.spoilt) sum = Mix(sum, memory.data(), memory.size());
  return laid.cached && withLarge ? sum ^ ChecksumOfEntry(*laid.cached) : sum;
}

int Arguments::FirstChanged(bool withLarge) const {
  for (std::size_t i = 0; i < laid_.size(); ++i) {
    const std::uint64_t expected =
        laid_[i].cached && withLarge ? laid_[i].checksum ^ laid_[i].cached->checksum : laid_[i].checksum;
    if (ChecksumOf(laid_[i], withLarge) != expected) return static_cast<int>(i) + 1;
  }
  return 0;
}

bool Arguments::Contains(const void* address) const {
  const auto* byte = static_cast<const std::byte*>(address);
  const auto within = [byte](const auto& block) { return byte >= block.data() && byte < block.data() + block.size(); };
  return std::any_of(laid_.begin(), laid_.end(), [&](const Laid& laid) {
    return std::any_of(laid.blocks.begin(), laid.blocks.end(), within) ||
           std::any_of(laid.spoilt.begin(), laid.spoilt.end(), within) || (laid.cached && within(laid.cached->block));
  });
}

}  // namespace qcalc
