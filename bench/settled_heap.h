#pragma once

#include <cstdlib>

#include <benchmark/benchmark.h>
#include <malloc.h>

namespace linewatch {

/// Keeps freed memory in the process. Otherwise it goes back to the kernel after each round, and the next one
/// is charged for having it zeroed again: more of it the more a round needs, whatever the code does.
inline void keepHeap() {
  constexpr int kNever = 2'000'000'000;
  mallopt(M_TRIM_THRESHOLD, kNever);
  mallopt(M_MMAP_THRESHOLD, kNever);
}

/// Makes the allocator coalesce freed memory now. It defers this until a large request, and the work measured
/// next would pay for it.
inline void settleHeap() {
  constexpr std::size_t kLargeRequest = std::size_t{1} << 20U;
  void* const memory = std::malloc(kLargeRequest);
  benchmark::DoNotOptimize(memory);
  std::free(memory);
}

}  // namespace linewatch
