// The event observer: a hidden command by which add-ins of this framework, and macros, tell of events.
#pragma once

#include <atomic>

#include "frame/app/excel_interfaces.h"

namespace quillmere {

/// An instance lives from the opening that created its command to the closing, and again once it is marked as live:
/// Excel may go on with an add-in that it has closed.
class CXllObserver final : public IXllObserver {
 public:
  std::unique_ptr<CXllRegistrable> CreateCommand(XStringView addinName) override;
  void MarkLive() override { isLive_ = isCreated_; }
  void End() override { isLive_ = false; }

  /// Acts on the event of that number, counted from 1 in the event table. False when there is none such, and when the
  /// observer does not live.
  bool OnEvent(std::int32_t eventNumber) noexcept;

 private:
  bool isCreated_ = false;
  std::atomic<bool> isLive_ = false;
};

/// The observer of this process.
CXllObserver& Observer() noexcept;

}  // namespace quillmere
