#include <csignal>

#include "last_words.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizers' own functions; this compiler comes without the headers that declare them. That for undefined
// behaviour has a run-time library of its own, which knows nothing of the other's callback: it is told to abort.
extern "C" {
void __sanitizer_set_death_callback(void (*callback)());
const char* __ubsan_default_options();
const char* __ubsan_default_options() { return "abort_on_error=1"; }
}
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
