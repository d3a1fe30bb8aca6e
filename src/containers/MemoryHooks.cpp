// MemoryHooks.cpp - the installed allocate/release pair, the C heap until a host replaces it.
#include "VeloraUtils/MemoryHooks.h"

#include <atomic>
#include <cstdlib>

namespace {

void* HeapAllocate(std::size_t size) {
    return std::malloc(size);
}

void HeapRelease(void* memory) {
    std::free(memory);
}

std::atomic<VeloraMemory::AllocateFunction> installedAllocate{HeapAllocate};
std::atomic<VeloraMemory::ReleaseFunction> installedRelease{HeapRelease};

} // namespace

void* VeloraMemory::nedmalloc(std::size_t size) noexcept {
    return installedAllocate.load(std::memory_order_acquire)(size == 0 ? 1 : size);
}

void VeloraMemory::nedfree(void* memory) noexcept {
    if (memory != nullptr) installedRelease.load(std::memory_order_acquire)(memory);
}

VeloraMemory::AllocatorHooks VeloraMemory::SetAllocatorHooks(AllocatorHooks hooks) noexcept {
    if (hooks.allocate == nullptr || hooks.release == nullptr) hooks = {HeapAllocate, HeapRelease};
    return {installedAllocate.exchange(hooks.allocate, std::memory_order_acq_rel),
            installedRelease.exchange(hooks.release, std::memory_order_acq_rel)};
}
