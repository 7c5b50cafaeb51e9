#include <windows.h>

#include "host/objects/object_model.h"
// Behind it: this one needs its types.
#include <ole2.h>

#include "host/objects/excel_frame_windows.h"
#include "host/objects/running_object_windows.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

HRESULT Initialise(ComMode mode) {
  switch (mode) {
    case ComMode::kSingleThreaded:
      return OleInitialize(nullptr);
    case ComMode::kMultiThreaded:
      return CoInitializeEx(nullptr, COINIT_MULTITHREADED);
    case ComMode::kNone:
      break;
  }
  return S_OK;
}

void Uninitialise(ComMode mode) {
  if (mode == ComMode::kSingleThreaded) OleUninitialize();
  if (mode == ComMode::kMultiThreaded) CoUninitialize();
}

/// Whether COM is initialised on this thread.
bool IsInitialised() {
  const HRESULT code = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
  if (SUCCEEDED(code)) CoUninitialize();
  return code != S_OK;
}

}  // namespace

class ObjectModel::Windows {
 public:
  explicit Windows(HostState& host) : office(std::make_shared<ObjectOffice>(host)) {}
  ~Windows() {
    frame.reset();
    office->host = nullptr;
  }

  const std::shared_ptr<ObjectOffice> office;
  std::unique_ptr<ExcelFrame> frame;
  std::unique_ptr<RunningObject> running;
  bool showsBooks = false;
  bool hasBegun = false;
  ComMode mode = ComMode::kNone;
};

ObjectModel::ObjectModel(HostState& host) : host_(host), windows_(std::make_unique<Windows>(host)) {
  host_.objects = this;
}

ObjectModel::~ObjectModel() {
  End(false);
  host_.objects = nullptr;
}

std::string ObjectModel::WhyNotOffered() { return {}; }

void ObjectModel::Begin() {
  if (windows_->hasBegun) return ShowBooks();
  windows_->mode = settings_.mode;
  if (const HRESULT code = Initialise(windows_->mode); code != S_OK)
    host_.complaints.Add("COM was initialised before the add-in was loaded");
  windows_->hasBegun = true;
  if (!windows_->frame) {
    windows_->frame = std::make_unique<ExcelFrame>(windows_->office);
    windows_->showsBooks = settings_.hasBookWindows;
  }
  ShowBooks();
  if (!settings_.runningAs.empty())
    windows_->running =
        std::make_unique<RunningObject>(settings_.runningAs, *windows_->office, windows_->frame->Application());
}

void ObjectModel::End(bool keepsApplication) {
  if (!windows_->hasBegun) return;
  windows_->hasBegun = false;
  windows_->running.reset();
  std::atomic<int>& toApplication = windows_->office->ReferencesTo(ObjectKind::kApplication);
  if (keepsApplication && toApplication > 0) --toApplication;
  if (const std::string left = DescribeReferences(); !left.empty())
    host_.complaints.Add("the add-in was unloaded and held references to objects: " + left);
  for (const XStringView event : ApplicationState::kEvents) {
    const Value macro = *host_.application.Property(event);
    if (!macro.IsText() || macro.AsText().empty() || host_.application.IsForeign(macro.AsText())) continue;
    host_.complaints.Add("the add-in was unloaded and left " + ToUtf8(macro.AsText()) + " in " + ToUtf8(event));
    host_.application.PutProperty(event, Value::Text({}));
  }
  if (windows_->mode != ComMode::kNone && !IsInitialised())
    host_.complaints.Add("the add-in took COM away from the host's main thread");
  Uninitialise(windows_->mode);
  if (!IsInitialised()) return;
  host_.complaints.Add("the add-in left COM initialised on the host's main thread");
  while (IsInitialised()) CoUninitialize();
}

std::int32_t ObjectModel::MainWindow() const {
  return static_cast<std::int32_t>(reinterpret_cast<INT_PTR>(windows_->office->mainWindow.load()));
}

void ObjectModel::ShowBooks() {
  if (!windows_->frame) return;
  std::vector<const Book*> books;
  if (windows_->showsBooks && !host_.refusals.HidesBookWindows())
    for (const auto& book : host_.workbooks.Books()) books.push_back(book.get());
  windows_->frame->Show(books);
}

void ObjectModel::AllowBookWindows() {
  windows_->showsBooks = true;
  ShowBooks();
}

int ObjectModel::CountReferences() const { return windows_->office->CountReferences(); }
std::string ObjectModel::DescribeReferences() const { return windows_->office->DescribeReferences(); }

}  // namespace qcalc
