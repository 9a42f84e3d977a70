#pragma once

#include <cstddef>
#include <cstdint>

namespace linewatch {

/// Spreads every bit of `value` over all bits of the result, for tables that choose a slot by a hash's low
/// bits, e.g. when keys are multiples of a power of two.
constexpr std::uint64_t mixedHash(std::uint64_t value) {
  value = (value ^ (value >> 32)) * 0xD6E8FEB86659FD93ULL;
  value = (value ^ (value >> 32)) * 0xD6E8FEB86659FD93ULL;
  return value ^ (value >> 32);
}

/// Adds the hash of one more value to `seed`. The order counts, and equal hashes do not cancel.
constexpr std::uint64_t mixedHash(std::uint64_t seed, std::uint64_t value) {
  return mixedHash(seed + 0x9E3779B97F4A7C15ULL) ^ value;
}

/// The hash function of tables whose keys are identifiers.
struct IdentifierHash {
  std::size_t operator()(std::uint64_t identifier) const { return mixedHash(identifier); }
};

}  // namespace linewatch
