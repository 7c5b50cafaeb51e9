// Large blocks of memory that results gave back, kept for the results to come: fresh pages cost more than most of what
// is written to them.
//
// What is kept goes back to the system when memory cannot be had, ten seconds after the last use, when the add-in is
// closed and when it is unloaded. While the host watches the add-in's memory nothing is kept. Any thread may call.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quillmere {

/// Blocks of fewer bytes are not kept.
constexpr std::size_t kLeastKeptBytes = std::size_t{1} << 20;
/// No more than so many bytes are kept in all; the block given back first goes first, but none for a
/// smaller one.
constexpr std::size_t kMostKeptBytes = std::size_t{256} << 20;
/// Milliseconds without use after which nothing is kept any more.
constexpr std::uint64_t kMostIdleTime = 10'000;

/// A block and its size in bytes, which may be more than was asked for.
struct MemoryBlock {
  void* memory = nullptr;
  std::size_t bytes = 0;
};

/// A block of at least `bytes`, its contents undefined; std::bad_alloc. A kept block serves requests of half its size
/// and more.
MemoryBlock TakeBlock(std::size_t bytes);

/// Takes back what TakeBlock gave.
void GiveBlock(MemoryBlock block) noexcept;

/// Gives all kept blocks back to the system; whether there were any.
bool ReleaseKeptBlocks() noexcept;

/// The same if they have not been used for a while. To be called whenever Excel calls in.
void ReleaseIdleBlocks() noexcept;
/// The same at a time given as CoarseTime() gives it.
void ReleaseIdleBlocks(std::uint64_t now) noexcept;

/// Gives all kept blocks back; from then on nothing is kept.
void StopKeepingBlocks() noexcept;

}  // namespace quillmere
