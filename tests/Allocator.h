#pragma once

#include <cstddef>
#include <initializer_list>
#include <new>

// The test programs' operator new counts allocations and can be made to fail.
namespace kzm::Testing {

// The number of allocations of this thread so far.
std::size_t CountAllocations();

// While this object lives, the n-th allocation of this thread fails; if lasting, all later ones fail, too.
class MemoryShortage {
public:
    MemoryShortage(std::size_t n, bool isLasting);
    ~MemoryShortage();
    MemoryShortage(const MemoryShortage&) = delete;
    MemoryShortage& operator=(const MemoryShortage&) = delete;

    bool HasStruck() const;
};

// Runs an action with its first allocation failing, then its second and so on until none is left to fail, and `check`
// after each run. The action may throw std::bad_alloc and nothing else. Returns the number of failed allocations.
template <typename Action, typename Check>
std::size_t RunShortOfMemory(Action action, Check check) {
    std::size_t shortages = 0;
    for (const bool isLasting : {false, true}) {
        bool hasStruck = true;
        for (std::size_t n = 1; hasStruck; ++n) {
            {
                const MemoryShortage shortage(n, isLasting);
                try {
                    action();
                } catch (const std::bad_alloc&) {
                }
                hasStruck = shortage.HasStruck();
            }
            check();
            shortages += hasStruck ? 1 : 0;
        }
    }
    return shortages;
}

}  // namespace kzm::Testing
