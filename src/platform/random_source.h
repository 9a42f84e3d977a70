#pragma once

#include <cstdint>

namespace linewatch {

/// A source of random numbers. Main thread; does not fail.
class RandomSource {
 public:
  virtual ~RandomSource() = default;

  /// The next number, uniform over all values.
  virtual std::uint32_t next() = 0;
};

}  // namespace linewatch
