// What a library sets up in the system and must take away before it is unloaded: the system would go on calling it.
#pragma once

#include <string>

#include "host/library/library.h"

namespace qcalc {

/// Notes hooks, window classes and timers of that library from now on. To be called before any of its code makes one.
void NoteSystemObjects(const Library& library);

/// Takes away what it made and has not taken away itself, so that nothing calls into code that is gone, and says what
/// that was: "1 hook, 2 window classes"; empty when it was nothing. Natively there is nothing to set up.
std::string TakeAwayLeftBehind();

}  // namespace qcalc
