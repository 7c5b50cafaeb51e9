// The ribbon through the shared ribbon server, a COM server of real-time data outside the add-in.
#pragma once

#include "frame/app/excel_interfaces.h"

namespace quillmere {

/// Tells the server each operation by one call of Excel's RTD function, with the add-in's name and one value as the
/// topics. A server that is not there is no error: nothing is raised and nobody is told.
class CXlpRibbonImplShared final : public IXlpRibbonImpl {
 public:
  bool WantsConnection() const override { return wantsConnection_; }
  bool SetWantsConnection(bool wanted) override;
  bool IsExcel12OrLater() const override;
  bool Connect() override;
  void Disconnect() override;
  void SendNothing() override;
  void SendTitle() override;
  void SendNumber(double number) override;

 private:
  bool wantsConnection_ = true;
};

}  // namespace quillmere
