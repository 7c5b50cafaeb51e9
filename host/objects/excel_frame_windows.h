// The windows of Excel's classes: the main window, its desktop, and one for each open book.
#pragma once

#include <windows.h>

#include <memory>
#include <vector>

#include "host/objects/application_object_windows.h"

namespace qcalc {

/// Made and ended on the main thread. None of them is shown on a screen.
class ExcelFrame {
 public:
  explicit ExcelFrame(std::shared_ptr<ObjectOffice> office);
  ~ExcelFrame();
  ExcelFrame(const ExcelFrame&) = delete;
  ExcelFrame& operator=(const ExcelFrame&) = delete;

  ApplicationObject& Application() const { return *application_.Get(); }

  /// From now on those books have windows, and no others.
  void Show(const std::vector<const Book*>& books);

 private:
  struct BookWindow {
    XString book;
    HWND handle;
    Kept<WindowObject> object;
  };

  static LRESULT CALLBACK BookProcedure(HWND window, UINT message, WPARAM wide, LPARAM narrow);

  const std::shared_ptr<ObjectOffice> office_;
  Kept<ApplicationObject> application_;
  HWND main_ = nullptr;
  HWND desktop_ = nullptr;
  std::vector<BookWindow> books_;
};

}  // namespace qcalc
