// The boundary inside which a fault of the processor belongs to the function that is being called.
#pragma once

namespace quillmere {

/// Calls `body(context)`. `body` lets no exception out.
void CallProtected(void (*body)(void*), void* context);

}  // namespace quillmere
