#pragma once

#include <cstddef>
#include <initializer_list>
#include <new>

// The operator new of the test programs: it counts, and fails when it is told to.
namespace kzm::Testing {

// How often this thread has asked for memory.
std::size_t CountAllocations();

// For the life of this object memory runs short for this thread: at the n-th time that it asks, or from then on.
class MemoryShortage {
public:
    MemoryShortage(std::size_t n, bool isLasting);
    ~MemoryShortage();
    MemoryShortage(const MemoryShortage&) = delete;
    MemoryShortage& operator=(const MemoryShortage&) = delete;

    bool HasStruck() const;
};

// Runs an action with its first allocation failing, its second and so on, and `check` after each: until the action asks
// for no more. An action may end with std::bad_alloc and with nothing else. Returns how many shortages there were.
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
