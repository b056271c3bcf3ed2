#include "Allocator.h"

#include <cstdint>
#include <cstdlib>

namespace kzm::Testing {

namespace {

thread_local std::size_t allocations = 0;
thread_local std::size_t firstFailure = 0;  // 0: none
thread_local std::size_t lastFailure = 0;

bool IsToFail() {
    ++allocations;
    return firstFailure != 0 && allocations >= firstFailure && allocations <= lastFailure;
}

}  // namespace

std::size_t CountAllocations() {
    return allocations;
}

MemoryShortage::MemoryShortage(std::size_t n, bool isLasting) {
    firstFailure = allocations + n;
    lastFailure = isLasting ? SIZE_MAX : firstFailure;
}

MemoryShortage::~MemoryShortage() {
    firstFailure = 0;
}

bool MemoryShortage::HasStruck() const {
    return allocations >= firstFailure;
}

}  // namespace kzm::Testing

// Complete, because a sanitizer supplies each one that is missing. Not inlined, or GCC warns of mismatched allocators.
[[gnu::noinline]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return kzm::Testing::IsToFail() ? nullptr : std::malloc(size);
}
[[gnu::noinline]] void* operator new(std::size_t size) {
    if (void* const memory = operator new(size, std::nothrow)) {
        return memory;
    }
    throw std::bad_alloc();
}
[[gnu::noinline]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return operator new(size, std::nothrow);
}
[[gnu::noinline]] void* operator new[](std::size_t size) {
    return operator new(size);
}
[[gnu::noinline]] void operator delete(void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete[](void* memory) noexcept {
    std::free(memory);
}
[[gnu::noinline]] void operator delete[](void* memory, std::size_t) noexcept {
    std::free(memory);
}
