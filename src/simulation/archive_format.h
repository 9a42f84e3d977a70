#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace linewatch::simulation {

inline constexpr std::string_view kArchiveErrorDomain = "KeyedArchiveErrorDomain";
/// Codes of the errors that reading an archive reports. Each has a debug description.
enum class ArchiveErrorCode : std::int64_t {
  /// The bytes are not as an archive's are.
  malformed = 1,
  /// An object is not of an allowed class, or of another kind than was asked for.
  notAllowed = 2,
  /// An object's class has no factory, or its parts do not make one.
  notMade = 3,
};

}  // namespace linewatch::simulation

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
