#pragma once

#include <cstddef>
#include <string>

namespace linewatch {

inline constexpr std::size_t kMebibyte = std::size_t{1} << 20U;

/// A byte limit as text for a message, e.g. "64 MiB".
inline std::string sizeInWords(std::size_t bytes) {
  return bytes % kMebibyte == 0 ? std::to_string(bytes / kMebibyte) + " MiB"
                                : std::to_string(bytes) + " bytes";
}

}  // namespace linewatch
