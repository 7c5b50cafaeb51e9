#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

bool isBeingUnloaded = false;

// A library that is unloaded ends with the functions that are marked so, and destroys its static objects as the last of
// them. A process that ends destroys static objects first, among its exit handlers.
[[gnu::destructor]] void NoteUnloading() { isBeingUnloaded = true; }

}  // namespace

bool ProcessEnds() noexcept { return !isBeingUnloaded; }

}  // namespace quillmere
