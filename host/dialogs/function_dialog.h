// A look-alike of Excel's Function Arguments dialog, for an add-in that extends it.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>

#include "host/api/complaints.h"
#include "host/dialogs/dialog_page.h"
#include "host/dialogs/key_strokes.h"

namespace qcalc {

/// What a dialog shows.
struct DialogContents {
  DialogPage page;
  XString title;           ///< Excel's Find dialog is of the same class and has another
  bool isLabelled = true;  ///< whether the arguments' names can be asked for
};

/// Part of a window that is clicked on.
enum class WindowSpot { kCenter, kLeft, kRight, kTop, kBottom };

/// One dialog, which lives on the thread that opens it; destroying it closes it. It is made of the same windows as
/// Excel's, draws its labels itself and lets them be asked for as Excel does: as the accessible elements of its client
/// area. Input is real: it goes through the system to the window with the focus, and while it lasts no other such
/// dialog, of any process, is open. Functions throw std::runtime_error when input does not get there.
class IFunctionDialog {
 public:
  virtual ~IFunctionDialog() = default;

  /// Shows something else in the same windows, as Excel does when another function is chosen.
  virtual void Change(DialogContents contents) = 0;
  /// Presses the keys one after the other, each after all that came of the one before.
  virtual void Press(std::span<const KeyStroke> strokes) = 0;
  /// Clicks on the `nth` (0-based, from above) visible window of that class. False when there is none.
  virtual bool Click(XStringView windowClass, std::size_t nth, WindowSpot spot) = 0;

  virtual bool IsOpen() const = 0;
  /// "=F(1)", made of the texts that the dialog noticed while it is open; afterwards "entered =F(1)" or "cancelled".
  virtual XString Outcome() const = 0;
  /// How many windows of that class are seen, in any letter case, the dialog's and those that belong to it.
  virtual std::size_t CountWindows(XStringView windowClass) const = 0;
  /// What is not as the dialog made it: a window too many, another place, style or window procedure; empty when
  /// nothing is.
  virtual std::string FirstChange() const = 0;
};

/// Whether this build has windows: natively there are none.
bool CanOpenDialogs();

/// Opens a dialog of the window whose handle is `owner` and waits until all that comes of it is done. What went wrong
/// when it is closed goes to the complaints, which outlive it.
std::unique_ptr<IFunctionDialog> OpenFunctionDialog(DialogContents contents, std::int32_t owner,
                                                    Complaints& complaints);

}  // namespace qcalc
