#include <memory>
#include <new>

#include "engine/CContext.h"

IterfaceContext* CreateContextObject() {
    return new (std::nothrow) CContext;
}

// Only `lastError` and the memory go, by design: the host unloads first. The storage is given back
// without a destructor, since IterfaceContext has no virtual one.
void FreeContextObject(IterfaceContext* context) {
    if (context == nullptr)
        return;
    std::destroy_at(&context->lastError);
    ::operator delete(static_cast<CContext*>(context));
}
