#include "frame/locale/regex_library.h"

#include <atomic>
#include <new>

#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

/// Blocks that wait for the next match, about one for each thread that may be matching.
class IdleBlocks {
 public:
  constexpr IdleBlocks() = default;
  IdleBlocks(const IdleBlocks&) = delete;
  IdleBlocks& operator=(const IdleBlocks&) = delete;
  ~IdleBlocks() {
    for (std::atomic<void*>& block : blocks_) ::operator delete(block.load());
  }

  void* Take() {
    for (std::atomic<void*>& idle : blocks_)
      if (idle.load(std::memory_order_relaxed))
        if (void* const block = idle.exchange(nullptr)) return block;
    return ::operator new(BOOST_REGEX_BLOCKSIZE);
  }
  void Keep(void* block) {
    for (std::atomic<void*>& idle : blocks_)
      if (void* none = nullptr; !idle.load(std::memory_order_relaxed) && idle.compare_exchange_strong(none, block))
        return;
    ::operator delete(block);
  }

 private:
  std::atomic<void*> blocks_[BOOST_REGEX_MAX_CACHE_BLOCKS] = {};
};

CUntilUnloaded<IdleBlocks> idleBlocks;

}  // namespace
}  // namespace quillmere

namespace boost {

void assertion_failed(const char* expression, const char*, const char*, long) { throw regex_error(expression); }

namespace BOOST_REGEX_DETAIL_NS {

void* get_mem_block() { return quillmere::idleBlocks->Take(); }
void put_mem_block(void* block) { quillmere::idleBlocks->Keep(block); }

}  // namespace BOOST_REGEX_DETAIL_NS
}  // namespace boost
