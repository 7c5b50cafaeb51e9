// Excel's windows and the objects behind them: what an add-in finds in Excel's process beside the C API.
//
// Only Windows has them. Natively nothing is shown, and nothing is ever asked for.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "host/addin/host_state.h"

namespace qcalc {

/// How the host initialises COM on its main thread before it loads the add-in.
enum class ComMode {
  kSingleThreaded,  ///< as Excel does
  kMultiThreaded,
  kNone,
};

struct ObjectSettings {
  ComMode mode = ComMode::kSingleThreaded;
  /// Whether the books that are open at the start have windows; otherwise they get theirs with the first new book.
  bool hasBookWindows = true;
  /// Under which program id Application stands in the running object table; empty for none.
  XString runningAs;
};

/// All on the main thread, but for the calls that the add-in makes into the objects.
class ObjectModel {
 public:
  /// Becomes the host's `objects`; the host outlives this.
  explicit ObjectModel(HostState& host);
  ~ObjectModel();
  ObjectModel(const ObjectModel&) = delete;
  ObjectModel& operator=(const ObjectModel&) = delete;

  /// Why this build has none; empty when it has.
  static std::string WhyNotOffered();

  /// What counts when the add-in is loaded next.
  ObjectSettings& Settings() { return settings_; }

  /// Before the add-in is loaded: COM is initialised, and the windows are there.
  void Begin();
  /// After it was unloaded: what it still holds of the objects, its macros in properties, and COM that it left
  /// initialised or took away from the host, go to the complaints. With `keepsApplication` one reference to Application
  /// is no matter: functions may be called after closing, and need it until the library is gone.
  void End(bool keepsApplication);

  /// The main window's handle. Natively a number that is no window's.
  std::int32_t MainWindow() const;

  /// Each open book gets its window, and that of a closed one goes.
  void ShowBooks();
  /// From now on every open book has a window.
  void AllowBookWindows();

  /// How many references to objects the add-in holds.
  int CountReferences() const;
  /// The same by kinds: "2 to Application, 1 to Range".
  std::string DescribeReferences() const;

 private:
  class Windows;

  HostState& host_;
  ObjectSettings settings_;
  std::unique_ptr<Windows> windows_;
};

}  // namespace qcalc
