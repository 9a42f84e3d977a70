#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <stop_token>
#include <string>
#include <string_view>

#include "shared/byte_size.h"
#include "shared/date.h"
#include "shared/error.h"
#include "shared/outcome.h"

namespace linewatch {

/// No file that the user names is read beyond this.
inline constexpr std::size_t kLargestFile = 64 * kMebibyte;

/// How far a file is read. One that goes on beyond it, as some devices do for ever, is an error.
struct ReadingLimits {
  std::size_t bytes = kLargestFile;
  /// For the whole of it, from before anyone has begun to write into a pipe; absent: as long as it takes.
  std::optional<Seconds> time = {};
  /// Once a stop is requested, on any thread, the reading ends with an error.
  std::stop_token stop = {};
};

/// The bytes of a file, or an error that reads "FILE: why".
Outcome<std::string> contentsOf(const std::filesystem::path& file, const ReadingLimits& limits = {});

/// Writes a file whole or not at all: what it held stays until the new bytes are on the disk. A link stays
/// one, and what is no plain file, a pipe or /dev/stdout, is written as it is. An error reads "FILE: why".
std::optional<Error> writeWhole(const std::filesystem::path& file, std::string_view bytes);

}  // namespace linewatch
