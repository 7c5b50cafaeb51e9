#include "last_words.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace qcalc::fault {
namespace {

// Fixed memory, since the heap may be what has broken.
using Words = std::array<char, 2000>;
std::array<Words, kMostThreads> words;

}  // namespace

void NoteLastWords(int thread, const std::string& what) {
  Words& own = words[static_cast<std::size_t>(thread)];
  const std::size_t length = std::min(what.size(), own.size() - 1);
  std::copy_n(what.data(), length, own.data());
  own[length] = '\0';
}

void PrintLastWords() {
  for (int thread = 0; thread < kMostThreads; ++thread)
    if (const char* const what = words[static_cast<std::size_t>(thread)].data(); *what)
      std::fprintf(stderr, "the program died; thread %d was at: %s\n", thread, what);
  std::fflush(stderr);
}

}  // namespace qcalc::fault
