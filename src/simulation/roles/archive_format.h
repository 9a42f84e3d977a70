#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace linewatch::simulation::archive {

/// The kinds of value in an archive; `SimulatedKeyedArchiver` shows their layout.
enum class Kind : std::uint8_t {
  falseValue = 1,
  trueValue,
  signedInteger,
  unsignedInteger,
  floatingPoint,
  text,
  bytes,
  array,
  dictionary,
  error,
  list,
  object
};

inline constexpr std::array<std::uint8_t, 5> kMagic = {'L', 'W', 'K', 'A', 1};
inline constexpr std::size_t kHeaderSize = kMagic.size() + sizeof(std::uint64_t);
/// Ends an object's parts; the names of keys are counted from 1.
inline constexpr std::uint64_t kEndOfObject = 0;
inline constexpr int kMaximumDepth = 200;

constexpr std::uint64_t zigzag(std::int64_t value) {
  return (static_cast<std::uint64_t>(value) << 1) ^ static_cast<std::uint64_t>(value >> 63);
}
constexpr std::int64_t unzigzag(std::uint64_t value) {
  return static_cast<std::int64_t>((value >> 1) ^ (~(value & 1) + 1));
}

}  // namespace linewatch::simulation::archive
