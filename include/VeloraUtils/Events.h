// Events.h - events one thread sets and another waits on, with the same calls on both systems: on
// Windows they are the system's event objects; on POSIX they are library objects over an eventfd,
// so a waiter can also watch them with poll/epoll beside its sockets.
#pragma once

#include "VeloraUtils/Export.h"
#include "VeloraUtils/PlatformTypes.h"

// Timeout value of U_WaitForEvent that waits without limit.
inline constexpr unsigned int kVeloraWaitForever = 0xFFFFFFFFu;

// Creates an event, set at once when `initiallySet`. A manual-reset event stays set until
// U_ResetEvent; an auto-reset event is reset by the wait that it releases (one waiter per set).
// Returns the event's handle, or null when the system refuses. Close it with U_CloseEvent.
VELORA_C_API HANDLE U_CreateEvent(bool manualReset, bool initiallySet);

// Sets the event (setting a set event changes nothing). Any thread may call. False for a null or
// failed handle.
VELORA_C_API bool U_SetEvent(HANDLE event);

// Resets the event to not set. False for a null or failed handle.
VELORA_C_API bool U_ResetEvent(HANDLE event);

// Waits up to `timeoutMilliseconds` (kVeloraWaitForever: no limit; 0: just test) for the event to
// be set. Returns 1 when it was set (an auto-reset event is reset by this wait), 0 on timeout, -1
// on failure (a null handle included).
VELORA_C_API int U_WaitForEvent(HANDLE event, unsigned int timeoutMilliseconds);

// Releases the event; the handle must not be used afterwards. False for a null or failed handle.
VELORA_C_API bool U_CloseEvent(HANDLE event);

// POSIX: the descriptor that poll/epoll report readable while the event is set (valid until
// U_CloseEvent; an auto-reset event is still reset only by U_WaitForEvent). Windows, or a null
// handle: -1 (wait on the handle itself with the system's wait functions).
VELORA_C_API int U_GetEventDescriptor(HANDLE event);
