// What each thread is doing, told when the program dies of it: a failing call is known even where nothing can be
// checked after it.
#pragma once

#include <string>

namespace qcalc::fault {

/// The most threads that may have something to say.
constexpr int kMostThreads = 8;

/// Has the program print, to standard error, what every thread last noted, when it ends by a fault, an abort, a
/// sanitizer's finding or a termination from outside.
void TellLastWords();

/// Notes what the thread of that number (below kMostThreads) does now.
void NoteLastWords(int thread, const std::string& what);

/// Prints what was noted. Allocates nothing.
void PrintLastWords();

}  // namespace qcalc::fault
