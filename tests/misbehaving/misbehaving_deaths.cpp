// Ways in which an add-in takes its process with it.
#include <cstdint>
#include <cstdlib>
#include <stdexcept>
#include <thread>

#include "host/library/export.h"
#include "xlcall/callback_list.h"

namespace {

volatile std::uintptr_t nowhere = 16;

int Overflow(volatile char* above);
int (*volatile recurse)(volatile char*) = Overflow;  // through which the compiler does not see that it never ends

int Overflow(volatile char* above) {
  volatile char frame[4096];
  frame[0] = above ? above[0] : '\0';
  return recurse(frame) + frame[0];
}

}  // namespace

#pragma GCC diagnostic ignored "-Wmissing-declarations"  // the host finds it by its name
QCALC_EXPORT XLOPER12* Die(std::int32_t how) {
  switch (how) {
    case 1:
      *reinterpret_cast<volatile int*>(nowhere) = 1;
      break;
    case 2:
      std::exit(Overflow(nullptr));
    case 3:
      std::exit(0);
    case 4:
      throw std::runtime_error("thrown out of an export");
    case 5:
      throw 5;
    case 6:
      std::abort();
    default:
      std::thread([] { std::_Exit(7); }).join();
  }
  return nullptr;
}
