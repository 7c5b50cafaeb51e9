// The events of Excel's application object, sent to commands of the add-in.
#pragma once

#include <memory>
#include <vector>

#include "excel/com/com_values_windows.h"
#include "frame/registration/registration.h"

namespace quillmere {

/// An event of the application object is wired by a property of the event's name that holds a macro's name. All on
/// Excel's main thread.
class CApplicationEvents {
 public:
  /// For each event registers the add-in's command and names it in the event's property. A property that names somebody
  /// else's macro is left alone, and that event is not heard. CXlComException, with what was done until then in place.
  void Connect(IDispatch& application, XStringView addinName, XStringView modulePath);
  /// Undoes it: empties the properties that still name our commands, and unregisters those. Failures are passed over.
  /// `application` may be none, and is released where Excel's object model turns out to have vanished.
  void Disconnect(ComReference<IDispatch>& application, XStringView modulePath) noexcept;

 private:
  struct Wired {
    const XCHAR* property;
    std::unique_ptr<CXllRegistrable> command;
  };

  std::vector<Wired> wired_;
};

}  // namespace quillmere
