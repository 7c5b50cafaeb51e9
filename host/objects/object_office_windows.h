// What all objects of one session share.
#pragma once

#include <windows.h>
// Behind it: this one needs its types.
#include <oleauto.h>

#include <array>
#include <atomic>
#include <cstdint>
#include <string>

#include "host/addin/host_state.h"

namespace qcalc {

enum class ObjectKind : std::uint8_t { kApplication, kWindow, kWorkbooks, kWorkbook, kWorksheets, kWorksheet, kRange };

/// Outlives the session when an object does that somebody still holds.
struct ObjectOffice {
  explicit ObjectOffice(HostState& itsHost) : host(&itsHost) {}

  /// Null once the session is over: Excel has gone.
  std::atomic<HostState*> host;
  std::atomic<HWND> mainWindow{nullptr};
  /// The one Application object, null like the host.
  std::atomic<IDispatch*> application{nullptr};

  /// References that are held from outside, by kinds. May change on any thread.
  std::array<std::atomic<int>, 7> references{};

  std::atomic<int>& ReferencesTo(ObjectKind kind) { return references[static_cast<std::size_t>(kind)]; }
  int CountReferences() const;
  /// "2 to Application, 1 to Range"; empty when there are none.
  std::string DescribeReferences() const;
};

/// Its name in messages.
const char* NameOf(ObjectKind kind);

}  // namespace qcalc
