#pragma once

#include <cstdlib>

#include <benchmark/benchmark.h>
#include <malloc.h>

namespace linewatch {

/// Keeps freed memory in the process. Otherwise it returns to the kernel after each round, and the kernel
/// zeroes it again at the cost of the next round.
inline void keepHeap() {
  constexpr int kNever = 2'000'000'000;
  mallopt(M_TRIM_THRESHOLD, kNever);
  mallopt(M_MMAP_THRESHOLD, kNever);
}

/// Makes the allocator join the freed blocks now. It would do so at the next large request and charge the
/// code that is measured then.
inline void settleHeap() {
  constexpr std::size_t kLargeRequest = std::size_t{1} << 20U;
  void* const memory = std::malloc(kLargeRequest);
  benchmark::DoNotOptimize(memory);
  std::free(memory);
}

}  // namespace linewatch
