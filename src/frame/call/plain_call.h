// The frame around exports that are no worksheet functions: plain arguments in, an integer out. VBA code declares and
// calls them, with whatever pointers it has. Nothing, of any kind, leaves it.
#pragma once

#include <cstdint>

namespace quillmere {

/// What an export answers when its body failed.
constexpr std::int32_t kPlainCallFailed = -1;

/// The out-of-line core of CallPlain.
std::int32_t RunPlainCall(std::int32_t (*body)(void*), void* context) noexcept;

/// Runs `body` inside a guard of its own and returns its answer; kPlainCallFailed after an exception or a fault of the
/// processor in it, and without a call when the thread can have no record.
template <class Body>
std::int32_t CallPlain(Body body) noexcept {
  return RunPlainCall([](void* context) -> std::int32_t { return (*static_cast<Body*>(context))(); }, &body);
}

}  // namespace quillmere
