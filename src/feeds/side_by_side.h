#pragma once

#include <cstddef>
#include <functional>

namespace linewatch {

/// Runs the task once for each index below `count`, on up to 8 threads, and returns when all are done: the
/// waits for several servers overlap. One task runs on the caller's thread.
void runSideBySide(std::size_t count, const std::function<void(std::size_t)>& task);

}  // namespace linewatch
