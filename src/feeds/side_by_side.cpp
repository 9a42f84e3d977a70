#include "feeds/side_by_side.h"

#include <algorithm>
#include <atomic>
#include <thread>
#include <vector>

namespace linewatch {

void runSideBySide(std::size_t count, const std::function<void(std::size_t)>& task) {
  constexpr std::size_t kMostThreads = 8;
  std::atomic<std::size_t> next = 0;
  const auto work = [&] {
    for (std::size_t index = next++; index < count; index = next++) task(index);
  };
  std::vector<std::jthread> others;
  for (std::size_t thread = 1; thread < std::min(count, kMostThreads); ++thread) others.emplace_back(work);
  work();
}

}  // namespace linewatch
