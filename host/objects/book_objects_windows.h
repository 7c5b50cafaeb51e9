// Books and their sheets. A calculation thread may ask them while others calculate: nobody writes then.
#pragma once

#include "host/objects/dispatch_object_windows.h"

namespace qcalc {

class WorkbooksObject final : public DispatchObject {
 public:
  explicit WorkbooksObject(std::shared_ptr<ObjectOffice> office);

  Variant Item(const ObjectCall& call);
  Variant Count(const ObjectCall& call);
};

/// A book by its name: it may be closed meanwhile.
class WorkbookObject final : public DispatchObject {
 public:
  WorkbookObject(std::shared_ptr<ObjectOffice> office, XString book);

  Variant Name(const ObjectCall& call);
  Variant Worksheets(const ObjectCall& call);

 private:
  const XString book_;
};

class WorksheetsObject final : public DispatchObject {
 public:
  WorksheetsObject(std::shared_ptr<ObjectOffice> office, XString book);

  Variant Item(const ObjectCall& call);
  Variant Count(const ObjectCall& call);

 private:
  const XString book_;
};

/// A sheet by its id.
class WorksheetObject final : public DispatchObject {
 public:
  WorksheetObject(std::shared_ptr<ObjectOffice> office, IDSHEET sheet);

  Variant Name(const ObjectCall& call);
  Variant Parent(const ObjectCall& call);
  /// What the sheet holds; A1 of an empty one.
  Variant UsedRange(const ObjectCall& call);

 private:
  const IDSHEET sheet_;
};

}  // namespace qcalc
