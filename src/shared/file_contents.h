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
#include "shared/value.h"

namespace linewatch {

/// The size limit for files of the user. A larger file is an error.
inline constexpr std::size_t kLargestFile = 64 * kMebibyte;

/// The limits for reading one file. A file that exceeds them, e.g. an endless device, is an error.
struct ReadingLimits {
  std::size_t bytes = kLargestFile;
  /// The time for the whole file, including the wait for the writer of a pipe; absent: no limit.
  std::optional<Seconds> time = {};
  /// A stop request, on any thread, ends the reading with an error.
  std::stop_token stop = {};
};

/// The bytes of a file, or an error that reads "FILE: why".
Outcome<std::string> contentsOf(const std::filesystem::path& file, const ReadingLimits& limits = {});
/// The same for a binary file.
Outcome<Bytes> bytesOf(const std::filesystem::path& file, const ReadingLimits& limits = {});

/// Writes a file whole or not at all: the old contents stay until the new ones are on the disk, where they
/// outlast a power cut. A link stays a link: its target is written. A pipe, a device or /dev/stdout is
/// written in place. The error of a failure reads "FILE: why".
std::optional<Error> writeWhole(const std::filesystem::path& file, std::string_view bytes);

/// Makes the folder, and those above it that do not exist. They outlast a power cut. The error reads "FOLDER:
/// why".
std::optional<Error> makeFolders(const std::filesystem::path& folder);

/// Why `writeWhole` would fail as things stand, e.g. because the folder does not exist; absent when nothing
/// speaks against it. Writes nothing.
std::optional<Error> whyNotWritable(const std::filesystem::path& file);

}  // namespace linewatch
