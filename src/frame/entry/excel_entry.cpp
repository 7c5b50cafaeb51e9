#include "frame/entry/excel_entry.h"

#include <atomic>

#include "frame/entry/callback_scope.h"
#include "frame/entry/host_entry.h"

namespace quillmere {
namespace {

/// Functions run on several threads, so the pointers are published atomically; all threads find the same ones.
std::atomic<XlMdCallBack12> excel12Entry{nullptr};
std::atomic<XlExcel4v> excel4Entry{nullptr};

XlMdCallBack12 Excel12Entry() noexcept {
  XlMdCallBack12 entry = excel12Entry.load(std::memory_order_acquire);
  if (!entry) {
    entry = FindMdCallBack12();
    if (entry) excel12Entry.store(entry, std::memory_order_release);
  }
  return entry;
}

XlExcel4v Excel4Entry() noexcept {
  XlExcel4v entry = excel4Entry.load(std::memory_order_acquire);
  if (!entry) {
    entry = FindExcel4v();
    if (entry) excel4Entry.store(entry, std::memory_order_release);
  }
  return entry;
}

}  // namespace

void InstallExcel12Entry(XlMdCallBack12 passedIn) noexcept {
  if (!Excel12Entry()) excel12Entry.store(passedIn, std::memory_order_release);
}

int Excel12v(int xlfn, XLOPER12* result, int count, XLOPER12* arguments[]) noexcept {
  const XlMdCallBack12 entry = Excel12Entry();
  if (!entry) return xlretFailed;
  const CallbackScope hostRuns;
  return entry(xlfn, count, arguments, result);
}

int Excel4v(int xlfn, XLOPER* result, int count, XLOPER* arguments[]) noexcept {
  const XlExcel4v entry = Excel4Entry();
  if (!entry) return xlretFailed;
  const CallbackScope hostRuns;
  return entry(xlfn, result, count, arguments);
}

}  // namespace quillmere
