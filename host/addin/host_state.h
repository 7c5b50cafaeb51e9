// What the host keeps for the add-in that it holds: what callbacks are answered from, and what is noted of them.
#pragma once

#include "host/addin/application_state.h"
#include "host/addin/host_settings.h"
#include "host/addin/registry.h"
#include "host/addin/threads.h"
#include "host/api/complaints.h"
#include "host/api/loans.h"
#include "host/api/marshal.h"
#include "host/calculation/evaluation_context.h"
#include "host/faults/callback_meter.h"
#include "host/faults/fault_switches.h"
#include "host/faults/object_refusals.h"
#include "host/library/library.h"

namespace qcalc {

class ObjectModel;  // host/objects/object_model.h

/// Calling in, callbacks and scripts share this, and need nothing else of each other. Made on the main thread; what may
/// be touched while other threads calculate, each member says itself.
struct HostState {
  Workbooks workbooks;
  /// Books that commands of the add-in made, the active one last: the book of a script is active when there is none.
  std::vector<XString> newBooks;
  ApplicationState application;

  /// What callbacks are answered from: read while threads calculate, changed only between evaluations.
  HostSettings settings;
  MacroFunctions macroFunctions;
  DataServers dataServers;           ///< called on the main thread alone
  const Library* library = nullptr;  ///< the add-in's; null while none is loaded
  Registry registry;

  /// What the add-in owes and did wrong.
  Complaints complaints;
  Loans loans{complaints};

  /// What is counted and goes wrong on purpose during an evaluation.
  CallbackMeter meter;
  FaultSwitches faults;
  ObjectRefusals refusals;

  /// Excel's windows and objects; null outside of sessions.
  ObjectModel* objects = nullptr;

  /// Where work goes that is not thread-safe.
  MainThread mainThread;

  /// How references are handed over in that context.
  ReferenceForm FormOf(const EvaluationContext& context) const {
    return {settings.shortReferences && context.sheet ? context.sheet->Id() : 0};
  }

  /// The one whose add-in is loaded, or being loaded, in this process; null when there is none. For callbacks from
  /// outside any call of the host's.
  static HostState* Loaded();
  static void SetLoaded(HostState* state);
};

}  // namespace qcalc
