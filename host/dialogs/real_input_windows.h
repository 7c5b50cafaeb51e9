// Keys and clicks that go through the system, as a person's do: hooks see no others.
#pragma once

#include <windows.h>

#include <functional>

#include "host/dialogs/key_strokes.h"

namespace qcalc {

/// The right to send input, for as long as this lives: keyboard and foreground are there once for all programs. Waits
/// for other processes; throws std::runtime_error when that takes too long.
class InputTurn {
 public:
  InputTurn();
  ~InputTurn();
  InputTurn(const InputTurn&) = delete;
  InputTurn& operator=(const InputTurn&) = delete;

 private:
  HANDLE mutex_;
};

/// Presses a key and lets it go, with those held that the stroke names.
void SendStroke(const KeyStroke& stroke);

/// Moves the mouse to that place of the screen and clicks.
void SendClick(POINT place);

/// Hands out messages until none has come for a moment; those that `takes` returns true for are not handed on. Throws
/// std::runtime_error when there is no end of them.
void HandOutMessages(const std::function<bool(const MSG&)>& takes);

}  // namespace qcalc
