#include <csignal>

#include "last_words.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
/// The sanitizers' own function; this compiler comes without the header that declares it.
extern "C" void __sanitizer_set_death_callback(void (*callback)());
#endif

namespace qcalc::fault {
namespace {

void OnSignal(int number) {
  PrintLastWords();
  std::signal(number, SIG_DFL);
  std::raise(number);
}

}  // namespace

void TellLastWords() {
  // A sanitizer handles faults of the processor itself and then ends the program.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
  __sanitizer_set_death_callback(&PrintLastWords);
#else
  for (const int number : {SIGSEGV, SIGBUS, SIGILL, SIGFPE}) std::signal(number, &OnSignal);
#endif
  for (const int number : {SIGABRT, SIGTERM}) std::signal(number, &OnSignal);
}

}  // namespace qcalc::fault
