// RingBufferEvents.cpp - the exported event calls that ring-buffer readers wait on, over the
// platform layer's event objects.
#include "VeloraUtils/Events.h"
#include "platform/Events.h"

namespace vp = velora::platform;

HANDLE U_CreateEvent(bool manualReset, bool initiallySet) {
    return vp::CreateEventObject(manualReset, initiallySet);
}

bool U_SetEvent(HANDLE event) {
    return vp::SignalEvent(event);
}

bool U_ResetEvent(HANDLE event) {
    return vp::UnsignalEvent(event);
}

int U_WaitForEvent(HANDLE event, unsigned int timeoutMilliseconds) {
    return vp::WaitForEvent(event, timeoutMilliseconds);
}

bool U_CloseEvent(HANDLE event) {
    return vp::CloseEvent(event);
}

int U_GetEventDescriptor(HANDLE event) {
    return vp::EventDescriptor(event);
}
