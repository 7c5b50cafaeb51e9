// operator new and delete on pages of their own, for a build of the add-in that is only tested.
//
// Each block ends, to the 16 bytes that its alignment asks for, at a page without access, so that reading or writing
// beyond it faults at once. The bytes between the block and that page, and those before it on its first page, hold a
// pattern that is looked at when the block is deleted. Deleted blocks lose their memory but keep their addresses for a
// while, so that a late use faults too and a second deletion is told from a first. Blocks beyond kMostGuarded lie on
// the plain heap between patterns: each guarded one takes the system several mappings, of which a process has few.
#include <windows.h>

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>

#include "frame/values/kept_blocks.h"

namespace {

constexpr std::size_t kPage = 4096;
constexpr std::size_t kAlignment = 16;
constexpr int kMostGuarded = 15'000;
constexpr std::size_t kMostKept = 1024;
constexpr unsigned char kPattern = 0xDB;
constexpr std::uint64_t kMark = 0x51A7'0DB1'0C4E'AD01;
constexpr UINT kBrokenBlock = 97;

/// What is known of a block. It comes from malloc, so that whoever counts the library's allocations, or lets them fail,
/// meets every block once.
struct Ticket {
  std::uint64_t mark;
  unsigned char* pages;  ///< null on the plain heap
  unsigned char* first;  ///< of the bytes that belong to the block, patterns included
  unsigned char* end;    ///< behind the last of them
  unsigned char* block;
  std::size_t bytes;
};

/// What stands right before a block.
struct alignas(kAlignment) Header {
  std::uint64_t mark;
  Ticket* ticket;
};

std::atomic<int> guardedBlocks{0};

/// The addresses of the blocks deleted last, given up when the library is unloaded.
class KeptPages {
 public:
  constexpr KeptPages() = default;
  KeptPages(const KeptPages&) = delete;
  KeptPages& operator=(const KeptPages&) = delete;
  ~KeptPages() {
    for (unsigned char* const pages : pages_)
      if (pages) VirtualFree(pages, 0, MEM_RELEASE);
    std::fill(std::begin(pages_), std::end(pages_), nullptr);
  }

  void Add(unsigned char* pages) {
    AcquireSRWLockExclusive(&lock_);
    std::swap(pages, pages_[next_]);
    next_ = (next_ + 1) % kMostKept;
    ReleaseSRWLockExclusive(&lock_);
    if (pages) VirtualFree(pages, 0, MEM_RELEASE);
  }

 private:
  SRWLOCK lock_ = SRWLOCK_INIT;
  unsigned char* pages_[kMostKept] = {};
  std::size_t next_ = 0;
};

constinit KeptPages keptPages;

[[noreturn]] void Report(const char* what, const void* block, std::size_t bytes) {
  char text[160];
  const int length = std::snprintf(text, sizeof text, "guarded memory: %s, block %p of %llu bytes\n", what, block,
                                   static_cast<unsigned long long>(bytes));
  DWORD written = 0;
  WriteFile(GetStdHandle(STD_ERROR_HANDLE), text, static_cast<DWORD>(length), &written, nullptr);
  TerminateProcess(GetCurrentProcess(), kBrokenBlock);
  std::abort();
}

std::size_t RoundUp(std::size_t bytes, std::size_t unit) { return (bytes + unit - 1) / unit * unit; }

/// Pages for `room` bytes with one of no access behind them; null when there is no memory.
unsigned char* TakePages(std::size_t room) {
  const std::size_t size = RoundUp(room, kPage);
  void* const pages = VirtualAlloc(nullptr, size + kPage, MEM_RESERVE, PAGE_NOACCESS);
  if (!pages) return nullptr;
  if (!VirtualAlloc(pages, size, MEM_COMMIT, PAGE_READWRITE)) {
    VirtualFree(pages, 0, MEM_RELEASE);
    return nullptr;
  }
  return static_cast<unsigned char*>(pages);
}

/// Finds room for the ticket's block: `first` to `end` is what it may lie in.
bool TakeRoom(Ticket& ticket) {
  const std::size_t used = RoundUp(ticket.bytes, kAlignment);
  if (used < ticket.bytes || used > SIZE_MAX - 4 * kPage) return false;
  const std::size_t room = sizeof(Header) + used;
  if (guardedBlocks.fetch_add(1) < kMostGuarded) {
    ticket.pages = TakePages(room);
    ticket.first = ticket.pages;
    ticket.end = ticket.pages + RoundUp(room, kPage);
  } else {
    // Without a page behind it the block gets a strip of pattern there.
    ticket.first = static_cast<unsigned char*>(HeapAlloc(GetProcessHeap(), 0, room + kAlignment));
    ticket.end = ticket.first + room + kAlignment;
  }
  if (!ticket.first) {
    --guardedBlocks;
    return false;
  }
  ticket.block = ticket.pages ? ticket.end - used : ticket.first + sizeof(Header);
  return true;
}

void* Allocate(std::size_t bytes) noexcept {
  Ticket* const ticket = static_cast<Ticket*>(std::malloc(sizeof(Ticket)));
  if (!ticket) return nullptr;
  *ticket = {kMark, nullptr, nullptr, nullptr, nullptr, bytes};
  if (!TakeRoom(*ticket)) {
    std::free(ticket);
    return nullptr;
  }
  unsigned char* const header = ticket->block - sizeof(Header);
  std::memset(ticket->first, kPattern, static_cast<std::size_t>(header - ticket->first));
  ::new (header) Header{kMark, ticket};
  std::memset(ticket->block + bytes, kPattern, static_cast<std::size_t>(ticket->end - ticket->block) - bytes);
  return ticket->block;
}

bool IsPattern(const unsigned char* first, const unsigned char* end) {
  return std::all_of(first, end, [](unsigned char byte) { return byte == kPattern; });
}

void Free(void* pointer) noexcept {
  if (!pointer) return;
  unsigned char* const block = static_cast<unsigned char*>(pointer);
  Header* const header = reinterpret_cast<Header*>(block - sizeof(Header));
  // Of a block that was deleted before, this read faults or finds another mark.
  if (header->mark != kMark || header->ticket->mark != kMark || header->ticket->block != block)
    Report("deleted what is no block, was deleted before, or was written to before its start", pointer, 0);
  Ticket* const ticket = header->ticket;
  if (!IsPattern(ticket->first, block - sizeof(Header))) Report("written to before its start", block, ticket->bytes);
  if (!IsPattern(block + ticket->bytes, ticket->end)) Report("written to behind its end", block, ticket->bytes);
  header->mark = ~kMark;
  if (ticket->pages) {
    VirtualFree(ticket->pages, static_cast<std::size_t>(ticket->end - ticket->pages), MEM_DECOMMIT);
    keptPages.Add(ticket->pages);
  } else {
    std::memset(block, kPattern, ticket->bytes);
    HeapFree(GetProcessHeap(), 0, ticket->first);
  }
  --guardedBlocks;
  ticket->mark = ~kMark;
  std::free(ticket);
}

/// Each result has pages of its own.
[[maybe_unused]] const bool keepsNothing = (quillmere::StopKeepingBlocks(), true);

}  // namespace

#include "tests/replaced_new.h"
