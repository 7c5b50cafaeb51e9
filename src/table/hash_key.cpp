#include "table/hash_key.h"

#include <atomic>
#include <chrono>
#include <random>

#include "frame/errors/attempt.h"

namespace quillmere {
namespace {

// 0: not drawn yet. A word and no object that is made when it is first needed: such a one has a lock, which a call that
// ends by a fault would leave locked.
std::atomic<std::uint64_t> drawnKey{0};

std::uint64_t Draw() noexcept {
  std::uint64_t drawn = static_cast<std::uint64_t>(std::chrono::steady_clock::now().time_since_epoch().count());
  drawn ^= std::rotl(static_cast<std::uint64_t>(reinterpret_cast<std::uintptr_t>(&drawn)), 32);
  // Where there is no such source, the clock and the place of the stack are a key as well.
  Attempt([&drawn] {
    std::random_device source;
    drawn ^= std::uint64_t{source()} << 32 ^ source();
  });
  return drawn == 0 ? 1 : drawn;
}

/// The next of the words that one word stands for: SplitMix64.
std::uint64_t Spread(std::uint64_t& state) noexcept {
  state += 0x9E37'79B9'7F4A'7C15;
  std::uint64_t word = state;
  word = (word ^ word >> 30) * 0xBF58'476D'1CE4'E5B9;
  word = (word ^ word >> 27) * 0x94D0'49BB'1331'11EB;
  return word ^ word >> 31;
}

}  // namespace

HashKey HashKey::OfProcess() noexcept {
  std::uint64_t key = drawnKey.load(std::memory_order_relaxed);
  if (key == 0) {
    const std::uint64_t drawn = Draw();
    // Another thread may have been first: then `key` becomes what it drew.
    if (drawnKey.compare_exchange_strong(key, drawn, std::memory_order_relaxed)) key = drawn;
  }
  return HashKey(key);
}

HashKey::HashKey(std::uint64_t drawn) noexcept : first_(Spread(drawn) | 1), second_(Spread(drawn)) {}

}  // namespace quillmere
