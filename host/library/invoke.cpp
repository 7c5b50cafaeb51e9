#include "host/library/invoke.h"

#include <array>
#include <cstddef>
#include <stdexcept>
#include <string>
#include <utility>

#include "xlcall/xlcall.h"

namespace qcalc {
namespace {

template <std::size_t>
using Word = std::uintptr_t;

template <std::size_t... index>
std::uintptr_t InvokeWith(void* entry, std::span<const std::uintptr_t> words, std::index_sequence<index...>) {
  std::array<std::uintptr_t, sizeof...(index)> all{};
  for (std::size_t i = 0; i < words.size(); ++i) all[i] = words[i];
  return reinterpret_cast<std::uintptr_t (*)(Word<index>...)>(entry)(all[index]...);
}

}  // namespace

std::uintptr_t Invoke(void* entry, std::span<const std::uintptr_t> words) {
  // A few sizes, so that a call with few arguments does not pay for the longest.
  if (words.size() <= 4) return InvokeWith(entry, words, std::make_index_sequence<4>());
  if (words.size() <= 8) return InvokeWith(entry, words, std::make_index_sequence<8>());
  if (words.size() <= 32) return InvokeWith(entry, words, std::make_index_sequence<32>());
  if (words.size() <= kXlMaxArguments) return InvokeWith(entry, words, std::make_index_sequence<kXlMaxArguments>());
  throw std::length_error("more than " + std::to_string(kXlMaxArguments) + " arguments");
}

}  // namespace qcalc
