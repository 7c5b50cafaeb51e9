// What the frame knows of Excel beyond its C API: the COM bridge, the ribbon and the event observer, each by an
// interface, with a null form for where there is none.
#pragma once

#include <memory>

#include "frame/registration/registration.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// The ribbon of the add-in. All calls on Excel's main thread.
class IXlpRibbonImpl {
 public:
  virtual ~IXlpRibbonImpl() = default;
  /// Whether the ribbon wants to be connected when the add-in opens.
  virtual bool WantsConnection() const = 0;
  /// Sets that wish; returns the previous one.
  virtual bool SetWantsConnection(bool wanted) = 0;
  virtual bool IsExcel12OrLater() const = 0;
  /// Connects to the ribbon server; false when it cannot be reached.
  virtual bool Connect() = 0;
  virtual void Disconnect() = 0;
  virtual void SendNothing() = 0;
  /// Starts the ribbon: announces the add-in by its title.
  virtual void SendTitle() = 0;
  virtual void SendNumber(double number) = 0;
};

/// No ribbon: never connected, says nothing.
class CXlpRibbonImplNull final : public IXlpRibbonImpl {
 public:
  bool WantsConnection() const override { return false; }
  bool SetWantsConnection(bool) override { return false; }
  bool IsExcel12OrLater() const override { return false; }
  bool Connect() override { return false; }
  void Disconnect() override {}
  void SendNothing() override {}
  void SendTitle() override {}
  void SendNumber(double) override {}
};

/// The bridge to Excel's object model. All calls on Excel's main thread; failures are CXlComException.
class IXllCom {
 public:
  virtual ~IXllCom() = default;
  /// Prepares COM on this thread; once between two calls of DisconnectAndUninitialise.
  virtual void Initialise() = 0;
  /// Whether Initialise was called with success, and not undone since.
  virtual bool IsInitialised() const = 0;
  /// Finds and holds Excel's Application object.
  virtual void Connect() = 0;
  /// Has the application's events sent to the add-in. `name` is the add-in's name.
  virtual void ConnectEvents(XStringView name) = 0;
  /// Undoes the above, as far as it was done. Where the functions go on being called (`removed` is false) who reads
  /// used rows keeps the Application object, until Connect brings another.
  virtual void DisconnectAndUninitialise(bool removed) = 0;
  /// Attaches a connected ribbon, or detaches it (null). It must outlive the attachment.
  virtual void AttachRibbon(IXlpRibbonImpl* ribbon) = 0;
  virtual IXlpRibbonImpl* AttachedRibbon() const = 0;
};

/// No bridge: holds the ribbon's attachment, nothing else.
class CXllComNull final : public IXllCom {
 public:
  void Initialise() override {}
  bool IsInitialised() const override { return false; }
  void Connect() override {}
  void ConnectEvents(XStringView) override {}
  void DisconnectAndUninitialise(bool) override {}
  void AttachRibbon(IXlpRibbonImpl* ribbon) override { ribbon_ = ribbon; }
  IXlpRibbonImpl* AttachedRibbon() const override { return ribbon_; }

 private:
  IXlpRibbonImpl* ribbon_ = nullptr;
};

/// The receiver of the framework's events: a hidden command that is registered with the functions.
class IXllObserver {
 public:
  virtual ~IXllObserver() = default;
  /// The command to be registered, named after the add-in; null when there is none.
  virtual std::unique_ptr<CXllRegistrable> CreateCommand(XStringView addinName) = 0;
  /// Marks the present instance as live.
  virtual void MarkLive() = 0;
  /// The add-in is closed: events are no longer acted on, unless the instance is marked as live again.
  virtual void End() = 0;
};

/// No observer.
class CXllObserverNull final : public IXllObserver {
 public:
  std::unique_ptr<CXllRegistrable> CreateCommand(XStringView) override { return nullptr; }
  void MarkLive() override {}
  void End() override {}
};

}  // namespace quillmere
