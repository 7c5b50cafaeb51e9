// The handlers of the callbacks. The dispatcher has checked the number, the place and the count of arguments before.
#pragma once

#include "host/callbacks/request.h"

namespace qcalc {

CallbackAnswer HandleStack(CallbackRequest& request);
CallbackAnswer HandleCoerce(CallbackRequest& request);
CallbackAnswer HandleSet(CallbackRequest& request);
CallbackAnswer HandleSheetId(CallbackRequest& request);
CallbackAnswer HandleSheetName(CallbackRequest& request);
CallbackAnswer HandleAbort(CallbackRequest& request);
CallbackAnswer HandleGetInstance(CallbackRequest& request);
CallbackAnswer HandleGetInstancePointer(CallbackRequest& request);
CallbackAnswer HandleGetWindow(CallbackRequest& request);
CallbackAnswer HandleGetName(CallbackRequest& request);
CallbackAnswer HandleNothing(CallbackRequest& request);

CallbackAnswer HandleWorksheetFunction(CallbackRequest& request);
CallbackAnswer HandleEvaluate(CallbackRequest& request);
CallbackAnswer HandleUdf(CallbackRequest& request);
CallbackAnswer HandleRtd(CallbackRequest& request);

CallbackAnswer HandleCaller(CallbackRequest& request);
CallbackAnswer HandleReftext(CallbackRequest& request);
CallbackAnswer HandleGetCell(CallbackRequest& request);
CallbackAnswer HandleGetDocument(CallbackRequest& request);
CallbackAnswer HandleGetWorkbook(CallbackRequest& request);
CallbackAnswer HandleGetWorkspace(CallbackRequest& request);
CallbackAnswer HandleVolatile(CallbackRequest& request);

CallbackAnswer HandleRegister(CallbackRequest& request);
CallbackAnswer HandleUnregister(CallbackRequest& request);
CallbackAnswer HandleSetName(CallbackRequest& request);

CallbackAnswer HandleAlert(CallbackRequest& request);
CallbackAnswer HandleMessage(CallbackRequest& request);
CallbackAnswer HandleEcho(CallbackRequest& request);
CallbackAnswer HandleNew(CallbackRequest& request);
CallbackAnswer HandleFileClose(CallbackRequest& request);

}  // namespace qcalc
