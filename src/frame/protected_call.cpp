#include "frame/protected_call.h"

namespace quillmere {

void CallProtected(void (*body)(void*), void* context) { body(context); }

}  // namespace quillmere
