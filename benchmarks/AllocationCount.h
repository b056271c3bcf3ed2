#pragma once

#include <cstddef>

namespace kzm::Benchmark {

// Calls of operator new on this thread so far, by whichever library.
std::size_t AllocationCount();

}  // namespace kzm::Benchmark
