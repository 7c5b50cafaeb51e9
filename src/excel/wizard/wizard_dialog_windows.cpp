#include "excel/wizard/wizard_dialog_windows.h"

#include <algorithm>

namespace quillmere {
namespace {

/// An edit box of the dialog and the list that it is to have.
struct WantedComboBox {
  HWND box;
  const CXlWizExUIListProvider* list;
};

std::vector<WantedComboBox> WantedComboBoxes(const SeenDialog& seen, const CXlWizExUIFunctionRegistry& registry) {
  std::vector<WantedComboBox> wanted;
  const DialogArguments arguments = FindArguments(seen.facts, registry);
  for (std::size_t i = 0; i < arguments.positions.size(); ++i)
    if (arguments.positions[i])
      if (const auto* const list = arguments.function->List(*arguments.positions[i]))
        wanted.push_back({seen.boxes[i], list});
  return wanted;
}

/// Types a code in place of what an edit box holds. Excel is told by the characters, one by one, as it is when a user
/// types: a text that is merely set it does not read, and neither the formula nor the values that the dialog shows
/// would follow. In a real Excel the value beside the box and the result at the foot of the dialog must show the new
/// code.
void Type(HWND box, XStringView code) {
  if (GetFocus() != box) SetFocus(box);
  SendMessageW(box, EM_SETSEL, 0, -1);
  for (const XCHAR unit : code) SendMessageW(box, WM_CHAR, unit, 1);
}

/// Lets Excel move on from a box: it had no Tab key from the keyboard.
void PostTab(HWND box) noexcept {
  constexpr LPARAM kPressed = 0x000F0001;
  constexpr LPARAM kReleased = static_cast<LPARAM>(0xC00F0001);
  PostMessageW(box, WM_KEYDOWN, VK_TAB, kPressed);
  PostMessageW(box, WM_KEYUP, VK_TAB, kReleased);
}

}  // namespace

void CWizardDialog::Look() {
  const std::vector<WantedComboBox> wanted = WantedComboBoxes(reader_.Read(dialog_), registry_);
  std::erase_if(comboBoxes_, [&wanted](const auto& present) {
    return !present->Handle() || std::ranges::none_of(wanted, [&present](const WantedComboBox& each) {
      return each.box == present->Box() && each.list == &present->List();
    });
  });
  for (const WantedComboBox& each : wanted) {
    if (CWizardComboBox* const present = ComboBoxOf(each.box))
      present->Follow();
    else
      comboBoxes_.push_back(
          std::make_unique<CWizardComboBox>(classes_.comboBox, style_, each.box, *each.list, notified_));
  }
  if (!list_) return;
  const CWizardComboBox* const opened = ComboBoxOf(list_->Box());
  if (!opened || !list_->BelongsTo(*opened) || GetFocus() != list_->Box()) CloseList();
}

CWizardComboBox* CWizardDialog::ComboBoxOf(HWND box) const noexcept {
  const auto found = std::ranges::find(comboBoxes_, box, [](const auto& each) { return each->Box(); });
  return found == comboBoxes_.end() ? nullptr : found->get();
}

// ---- Keys

bool CWizardDialog::TakesKey(UINT key, bool withAlt) {
  const bool isOpen = opening_ || (list_ && list_->Handle());
  const bool takes = isOpen ? TakesKeyOfList(key, withAlt) : OpensList(key, withAlt);
  if (!takes) return false;
  opening_ = opening_ || !isOpen;
  PostMessageW(notified_, kKeyTaken, key, withAlt);
  return true;
}

bool CWizardDialog::TakesKeyOfList(UINT key, bool withAlt) noexcept {
  switch (key) {
    case VK_UP:
    case VK_DOWN:
      return true;
    case VK_HOME:
    case VK_END:
    case VK_RETURN:
    case VK_ESCAPE:
    case VK_TAB:
    case VK_F4:
      if (!withAlt) return true;
      break;
    case VK_SHIFT:
    case VK_CONTROL:
    case VK_MENU:
      return false;
    default:
      break;
  }
  // Whoever types on wants the box.
  PostMessageW(notified_, kLeaveList, 0, 0);
  return false;
}

/// Alt+Down opens a list. So does F4, but where the box holds a reference, in which Excel turns it into an absolute
/// one.
bool CWizardDialog::OpensList(UINT key, bool withAlt) const {
  if (key != (withAlt ? VK_DOWN : VK_F4)) return false;
  const CWizardComboBox* const comboBox = ComboBoxOf(GetFocus());
  return comboBox && (withAlt || comboBox->HoldsNoReference());
}

void CWizardDialog::HandleKey(UINT key, bool withAlt) {
  if (!list_) {
    opening_ = false;
    OpenList(GetFocus());
    return;
  }
  switch (key) {
    case VK_ESCAPE:
      return CloseList();
    case VK_TAB: {
      const HWND box = list_->Box();
      TakeMarked();
      return PostTab(box);
    }
    case VK_RETURN:
    case VK_F4:
      return TakeMarked();
    default:
      return withAlt ? TakeMarked() : list_->MarkByKey(key);
  }
}

// ---- The list

void CWizardDialog::OpenList(HWND box) {
  CloseList();
  Look();
  CWizardComboBox* comboBox = ComboBoxOf(box);
  if (!comboBox) return;
  if (GetFocus() != box) {
    SetFocus(box);
    // Leaving another box may have changed the dialog.
    Look();
    comboBox = ComboBoxOf(box);
    if (!comboBox) return;
  }
  list_ = std::make_unique<CWizardList>(classes_.list, style_, *comboBox, notified_);
  comboBox->ShowPressed(true);
}

void CWizardDialog::CloseList() noexcept {
  if (!list_) return;
  if (CWizardComboBox* const comboBox = ComboBoxOf(list_->Box())) comboBox->ShowPressed(false);
  list_.reset();
}

void CWizardDialog::TakeMarked() {
  if (const auto marked = list_->Marked()) return Take(*marked);
  CloseList();
}

void CWizardDialog::Take(std::size_t entry) {
  // The dialog may show another function by now.
  Look();
  if (!list_) return;
  const HWND box = list_->Box();
  const auto& entries = ComboBoxOf(box)->List().Entries();
  CloseList();
  if (entry < entries.size() && TextOf(box) != entries[entry].code) Type(box, entries[entry].code);
}

}  // namespace quillmere
