// PlatformTypes.h - the operating-system types that appear in the public API.
// On Windows these are the system's own; on POSIX the library defines same-named stand-ins with
// the same field names, so code using them compiles unchanged on both.
#pragma once

#include <cstdint>

#if defined(_WIN32)
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
#include <winsock2.h>
#else
// POSIX stand-ins; filled in as the families that need them arrive.
#endif
