#include "frame/errors/current_exception.h"

#include <exception>
#include <new>

#include "frame/errors/exceptions.h"
#include "frame/text/ansi_text.h"

namespace quillmere {

XString MessageOfCurrentException() {
  try {
    throw;
  } catch (const CXlRuntimeException& error) {
    return XString(error.Message());
  } catch (const std::bad_alloc&) {
    return XString(MessageText(MessageId::kMemoryAllocationFailed));
  } catch (const std::exception& error) {
    return WidenAnsi(error.what());
  } catch (...) {
    return XTEXT("Unknown error");
  }
}

}  // namespace quillmere
