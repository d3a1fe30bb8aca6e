// MemoryHooks.h - the allocation pair behind nedmalloc and nedfree, from which the library takes the
// small objects it hands to callers for deletion through their own destructor (the ring-vector
// iterators). The C heap by default; a host that runs its own memory library installs its pair.
#pragma once

#include <cstddef>

#include "VeloraUtils/Export.h"

namespace VeloraMemory {

using AllocateFunction = void* (*)(std::size_t size);
using ReleaseFunction = void (*)(void* memory);

// An allocate/release pair. `allocate` returns memory aligned for any fundamental type, or null
// when it has none; `release` takes back what `allocate` returned.
struct AllocatorHooks {
    AllocateFunction allocate;
    ReleaseFunction release;
};

// `size` bytes (at least one) from the installed allocate function; null when it fails. Never throws.
VELORA_API void* nedmalloc(std::size_t size) noexcept;

// Gives memory from nedmalloc back to the installed release function; null is ignored.
VELORA_API void nedfree(void* memory) noexcept;

// Installs `hooks` for the following nedmalloc/nedfree calls and returns the pair it replaces; a pair
// with a null member restores the C heap. Install at start-up, before other threads allocate: memory
// must go back to the pair that gave it, so keep a pair installed while its memory is alive.
VELORA_API AllocatorHooks SetAllocatorHooks(AllocatorHooks hooks) noexcept;

} // namespace VeloraMemory
