#pragma once

#include <cmath>
#include <cstdint>

namespace linewatch {

/// The hash of a whole number, modulo 2^64.
inline std::uint64_t hashOfNumber(std::uint64_t value) { return value * 2654435761U; }

/// The hash of |value|: the hash of the rounded number, plus the remainder scaled to 64 bits if it is
/// positive. A number and its negative hash equally, and whole numbers hash as integers do. Numbers that are
/// not finite hash to 0.
inline std::uint64_t hashOfNumber(double value) {
  constexpr double kTwoTo64 = 18446744073709551616.0;
  const double amount = std::fabs(value);
  if (!std::isfinite(amount)) return 0;
  const double rounded = std::floor(amount + 0.5);
  const double left = (amount - rounded) * kTwoTo64;
  return hashOfNumber(static_cast<std::uint64_t>(std::fmod(rounded, kTwoTo64))) +
         (left > 0 ? static_cast<std::uint64_t>(left) : 0);
}

}  // namespace linewatch
