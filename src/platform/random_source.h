#pragma once

#include <cstdint>

namespace linewatch {

/// A uniform source of random numbers. Main thread.
class RandomSource {
 public:
  virtual ~RandomSource() = default;
  virtual std::uint32_t next() = 0;
};

}  // namespace linewatch
