// A library built from the add-in's own frame whose functions do what no function may: for the tests of the frame
// alone.
#include <windows.h>

#include <array>
#include <chrono>
#include <cstring>
#include <exception>
#include <string>
#include <string_view>

#include "frame/call/store_lock.h"
#include "frame/call/thread_record.h"
#include "frame/call/wrapper.h"
#include "frame/callbacks/callbacks.h"
#include "frame/entry/export.h"
#include "frame/registration/function_record.h"
#include "frame/values/array_builder.h"
#include "frame/values/cell_copy.h"

// A leaf, which has no unwind data at all, and a function that faults before its prologue has ended.
asm(R"(
    .text
    .globl ReadInLeaf
ReadInLeaf:
    mov (%rcx), %eax
    ret

    .globl ReadInPrologue
    .seh_proc ReadInPrologue
ReadInPrologue:
    push %rbx
    .seh_pushreg %rbx
    mov (%rcx), %ebx
    sub $32, %rsp
    .seh_stackalloc 32
    .seh_endprologue
    mov %ebx, %eax
    add $32, %rsp
    pop %rbx
    ret
    .seh_endproc

    .globl ReadAtEpilogueBytes
    .seh_proc ReadAtEpilogueBytes
ReadAtEpilogueBytes:
    push %rbx
    .seh_pushreg %rbx
    .seh_endprologue
    mov %rcx, %rax
    .byte 0x8B, 0x58, 0xC3
    mov %ebx, %eax
    pop %rbx
    ret
    .seh_endproc
)");
extern "C" {
int ReadInLeaf(const void* address);
int ReadInPrologue(const void* address);
/// mov ebx, [rax - 61], whose last two bytes read as pop and ret.
int ReadAtEpilogueBytes(const void* address);
}

namespace quillmere {
namespace {

CStoreMutex store;

int* volatile badAddress = reinterpret_cast<int*>(8);
void (*volatile badFunction)() = nullptr;
volatile int zero = 0;
volatile double quotient = 0;
volatile std::size_t someBytes = 1'000;

struct FaultsWhenDestroyed {
  ~FaultsWhenDestroyed() { *badAddress = 1; }
};

[[gnu::noinline]] void FaultWithoutExceptions() noexcept { *badAddress = 1; }

/// The compiler takes memcpy for a function that never throws: with something to destroy beside it, a fault in it
/// cannot unwind.
[[gnu::always_inline]] inline void CopyFromBadAddress() {
  std::array<char, 1'000> buffer;
  std::memcpy(buffer.data(), badAddress, someBytes);
  asm volatile("" : : "r"(buffer.data()) : "memory");
}

[[gnu::noinline]] int Recurse(int depth) {
  std::array<volatile char, 200> frame{};
  frame[depth % frame.size()] = 1;
  return depth < 0 ? 0 : Recurse(depth + 1) + frame[depth % frame.size()];
}

[[gnu::noinline]] int RecurseInLargeFrames(int depth) {
  std::array<volatile char, 20'000> frame;
  frame[depth % frame.size()] = 1;
  return depth < 0 ? 0 : RecurseInLargeFrames(depth + 1) + frame[depth % frame.size()];
}

using Provocation = void (*)();
struct NamedProvocation {
  XStringView name;
  Provocation provoke;
};

const NamedProvocation kProvocations[] = {
    {XTEXT("nothing"), [] {}},
    // Where all is well these two do not fault either.
    {XTEXT("held store"), [] { quotient = 5 / CStoreLock(store, std::chrono::milliseconds(100)).HoldsLock(); }},
    {XTEXT("float division"), [] { quotient = 1.0 / zero; }},
    {XTEXT("read"), [] { static_cast<void>(*static_cast<int volatile*>(badAddress)); }},
    {XTEXT("write"), [] { *badAddress = 1; }},
    {XTEXT("divide"), [] { zero = 5 / zero; }},
    {XTEXT("call"), [] { badFunction(); }},
    {XTEXT("instruction"), [] { __builtin_trap(); }},
    {XTEXT("leaf"), [] { ReadInLeaf(badAddress); }},
    {XTEXT("prologue"), [] { ReadInPrologue(badAddress); }},
    {XTEXT("epilogue bytes"), [] { ReadAtEpilogueBytes(badAddress); }},
    {XTEXT("host copy"),
     [] {
       std::array<XCHAR, 1'000> buffer;
       CopyText(buffer.data(), reinterpret_cast<const XCHAR*>(badAddress), buffer.size() - 1);
     }},
    {XTEXT("locked read"),
     [] {
       const CStoreLock lock(store);
       static_cast<void>(*static_cast<int volatile*>(badAddress));
     }},
    // After a call of PROVOKE on the same thread that faulted as well.
    {XTEXT("nested"),
     [] {
       const CXlOper inner =
           CallExcel(xlUDF, CXlOper::Text(XTEXT("PROVOKE")), CXlOper::Text(XTEXT("read")), CXlOper::Number(7));
       if (inner.AsText() == XTEXT("#ERROR: 'C' exception 0xC0000005")) *badAddress = 1;
     }},
    // From here on C++ cannot throw.
    {XTEXT("copy"),
     [] {
       const std::string beside(100, 'x');
       CopyFromBadAddress();
     }},
    {XTEXT("locked copy"),
     [] {
       const CStoreLock lock(store);
       CopyFromBadAddress();
     }},
    {XTEXT("destructor"), [] { const FaultsWhenDestroyed object; }},
    {XTEXT("noexcept"), FaultWithoutExceptions},
    {XTEXT("terminate"), [] { std::terminate(); }},
    {XTEXT("overflow"), [] { zero = Recurse(1) & 0; }},
    {XTEXT("large overflow"), [] { zero = RecurseInLargeFrames(1) & 0; }},
};

/// Provokes what `kind` names with a text to be destroyed on the way, and returns `value` if it comes back.
void Provoke(CXlOper& result, const CXlOper* arguments) {
  const XStringView kind = arguments[0].AsText();
  const std::string destroyedByUnwinding(100, 'x');
  for (const NamedProvocation& each : kProvocations)
    if (each.name == kind) each.provoke();
  asm volatile("" : : "r"(destroyedByUnwinding.data()));
  result.SetNumber(arguments[1].AsNumber());
}

double NanosecondsOf(std::chrono::steady_clock::duration duration, double calls) {
  return std::chrono::duration<double, std::nano>(duration).count() / calls;
}

/// Nanoseconds that a call inside a guard takes, and one without: two columns.
void GuardCost(CXlOper& result, const CXlOper* arguments) {
  const auto calls = static_cast<std::int64_t>(arguments[0].AsNumber());
  using Body = void (*)(void*);
  const volatile Body body = [](void*) { asm volatile(""); };
  ThreadRecord& record = *CurrentThreadRecord();
  const auto begin = std::chrono::steady_clock::now();
  for (std::int64_t i = 0; i < calls; ++i) {
    FaultGuard guard;
    CallProtected(body, nullptr, record, guard);
  }
  const auto middle = std::chrono::steady_clock::now();
  for (std::int64_t i = 0; i < calls; ++i) body(nullptr);
  const auto end = std::chrono::steady_clock::now();
  CXlArrayBuilder costs(1, 2);
  costs.PutNumber(0, 0, NanosecondsOf(middle - begin, static_cast<double>(calls)));
  costs.PutNumber(0, 1, NanosecondsOf(end - middle, static_cast<double>(calls)));
  result = costs.Finish();
}

constexpr ArgumentDeclaration kProvokeArguments[] = {{.name = XTEXT("Kind")}, {.name = XTEXT("Value")}};
constexpr ArgumentDeclaration kCallsArgument[] = {{.name = XTEXT("Calls")}};

constexpr FunctionDeclaration Declaration(std::string_view procedure, XStringView name,
                                          std::span<const ArgumentDeclaration> arguments) {
  return {.procedure = procedure, .name = name, .category = 14, .flags = kThreadSafe, .arguments = arguments};
}

constexpr FunctionDeclaration kProvoke = Declaration("PROVOKE", XTEXT("PROVOKE"), kProvokeArguments);
constexpr FunctionDeclaration kGuardCost = Declaration("GUARD_COST", XTEXT("GUARD.COST"), kCallsArgument);

const CXllFunctionRecord records[] = {CXllFunctionRecord(kProvoke), CXllFunctionRecord(kGuardCost)};

}  // namespace
}  // namespace quillmere

using quillmere::CallFunction12;

XLL_EXPORT XLOPER12* PROVOKE_12(XLOPER12* kind, XLOPER12* value) {
  return CallFunction12(&quillmere::Provoke, kind, value);
}
XLL_EXPORT XLOPER12* GUARD_COST_12(XLOPER12* calls) { return CallFunction12(&quillmere::GuardCost, calls); }
